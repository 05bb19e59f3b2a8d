// The Input's window and text field, typed into by the test.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/Listeners.h"
#include "platform/Events.h"
#include "platform/Panels.h"
#include "simulated/Journal.h"

namespace tarvix {

// The caret stands at the end of the text, or the whole text is selected. Every character is `characterWidth` wide.
class SimulatedInputPanel : public InputPanel {
public:
    static constexpr double characterWidth = 8;

    explicit SimulatedInputPanel(Journal& journal) : journal_(journal) {}

    PanelRect frame() const override { return frame_; }
    void setFrame(PanelRect frame) override { frame_ = frame; }
    bool isVisible() const override { return visible_; }
    void makeKeyAndOrderFront() override;
    void orderFrontRegardless() override;
    void orderOut() override;
    void setText(const std::string& text) override;
    void setShowsProgress(bool shows) override { showsProgress_ = shows; }
    void setLook(const InputLook& look) override { look_ = look; }
    [[nodiscard]] Subscription onTextChanged(std::function<void(const std::string& text)> changed) override {
        return textChanged_.add(std::move(changed));
    }
    [[nodiscard]] Subscription onMeasured(std::function<void(double width)> measured) override {
        measured(measuredWidth());
        return measured_.add(std::move(measured));
    }
    [[nodiscard]] Subscription onResignKey(std::function<void()> resigned) override {
        return resigned_.add(std::move(resigned));
    }
    [[nodiscard]] Subscription onCancel(std::function<void()> cancelled) override {
        return cancelled_.add(std::move(cancelled));
    }

    // A key press that no monitor has consumed; `text` is what it types on the present layout. Escape cancels, delete
    // takes a character away, command-A selects; a text without command or control is typed; all else does nothing.
    void handleKey(const KeyEvent& event, const std::string& text);
    // A text from an input method, as if typed.
    void insert(const std::string& text);
    // Another window takes the keyboard; nothing when the panel doesn't have it.
    void takeKeyboardAway();

    bool isKey() const { return key_; }
    // The presses that no monitor has consumed.
    const std::vector<KeyEvent>& keys() const { return keys_; }
    const std::string& text() const { return text_; }
    bool isTextSelected() const { return selected_; }
    bool showsProgress() const { return showsProgress_; }
    const InputLook& look() const { return look_; }
    // Of "X", the text and "XX".
    double measuredWidth() const;

private:
    void edit(std::string text);
    void change(std::string text);
    void deleteBackwards();

    Journal& journal_;
    PanelRect frame_{{0, 0}, {0, 36}};
    bool visible_ = false;
    bool key_ = false;
    std::vector<KeyEvent> keys_;
    std::string text_;
    bool selected_ = false;
    bool showsProgress_ = false;
    InputLook look_;
    Listeners<const std::string&> textChanged_;
    Listeners<double> measured_;
    Listeners<> resigned_;
    Listeners<> cancelled_;
};

}  // namespace tarvix
