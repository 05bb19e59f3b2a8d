// The control with which the user picks a shortcut.
#pragma once

#include <QLineEdit>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "KeyboardShortcuts/RecorderCocoa.h"
#include "KeyboardShortcuts/RecorderControl.h"

class QAction;

namespace tarvix {

class Application;

// What a field works with. Everything outlives it.
struct RecorderServices {
    KeyboardShortcuts& shortcuts;
    InputSources& inputSources;
    Application& application;
    RunLoop& runLoop;
    // The position on the table of `Key` of a key by its native scan code; absent for a key that has none.
    std::function<std::optional<std::uint16_t>(std::uint32_t scanCode)> keyCodeOf;
};

// Looks like a search field: centred, with a cancel button while there is something to clear. It records while it has
// the keyboard, which it doesn't take by itself when its window comes to the front. Name it by a label's buddy; what it
// holds is its description, in words.
class RecorderField final : public QLineEdit, private RecorderControl {
public:
    RecorderField(const RecorderServices& services, const ShortcutName& name, QWidget* parent = nullptr);
    ~RecorderField() override;

    void setShortcutName(const ShortcutName& name) { recorder_->setShortcutName(name); }
    bool isRecording() const { return recorder_->isRecording(); }

    // Wide enough for its texts, and 130 points at least, where a point is a thirteenth of the font's size.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent*) override {}
    void mouseDoubleClickEvent(QMouseEvent*) override {}
    void hideEvent(QHideEvent* event) override;

private:
    using Seen = std::function<Verdict(const LocalEvent&)>;
    struct Monitor {
        LocalEventMask events = 0;
        Seen seen;
    };

    Subscription addLocalMonitor(LocalEventMask events, Seen seen) override;
    void setText(const std::string& text, const std::string& spoken) override;
    bool isEmpty() const override { return text().isEmpty(); }
    void setPlaceholder(const std::string& text) override;
    void showCancelButton(bool isShown) override;
    void clickCancelButton() override;
    void showInsertionPoint(bool) override {}  // a field that only shows its text has none
    ControlRect bounds() const override;
    void makeFirstResponder(FirstResponder responder) override;
    void runAlert(const RecorderAlert& alert, std::function<void(int response)> answered) override;
    void beep() override;

    bool filterKey(const QKeyEvent& event);
    bool filterMouseUp(const QMouseEvent& event);
    Verdict tell(const LocalEvent& event);
    void startRecording();
    void endEditing();
    double pixelsOfAPoint() const;
    int pixels(double points) const;
    ControlPoint inPoints(QPointF at) const;

    RecorderServices services_;
    QAction* cancelButton_;
    RecorderLanguage language_ = RecorderLanguage::english;
    std::shared_ptr<Monitor> monitor_;
    bool isAwaited_ = false;  // recording goes on once the window has the keyboard again
    bool movesOn_ = false;    // the focus is on its way to the next control
    std::unique_ptr<RecorderCocoa> recorder_;
};

}  // namespace tarvix
