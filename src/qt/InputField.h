// The text field of The Input.
#pragma once

#include <QLineEdit>
#include <functional>

namespace tarvix {

// A plain line edit without frame and background. Return does nothing in it; the command key (Super) does what it does
// on a text field and never types.
class InputField : public QLineEdit {
public:
    explicit InputField(QWidget* parent);

    // What the field shows: its text with what an input method is composing at the caret.
    QString shownText() const;
    // Forgets what an input method is composing, and what it may still hand over of it until the next key.
    void dropComposition();
    // A key is on its way into the field.
    void keyComes() { isComposable_ = true; }

    std::function<void()> onEdited;     // the user changed the text; not by setText()
    std::function<void()> onComposing;  // shownText() may have changed while the text hasn't
    std::function<void()> onCancel;     // the cancel key
    std::function<void()> onKey;        // a key press that no input method has kept

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;

private:
    QString composing_;
    bool isComposable_ = false;
};

}  // namespace tarvix
