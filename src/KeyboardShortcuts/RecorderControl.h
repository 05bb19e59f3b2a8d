// The search field that a shortcut is recorded in, as the recorder's logic uses it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "KeyboardShortcuts/LocalEventMonitor.h"

namespace tarvix {

// What the user is told in a dialog of its own.
struct RecorderAlert {
    std::string title;
    std::string informativeText;
    std::vector<std::string> buttons;  // the first is what Return and Escape press
    friend bool operator==(const RecorderAlert&, const RecorderAlert&) = default;
};

// The answers to an alert, by the button's place.
namespace alertResponse {
inline constexpr int first = 1000;
inline constexpr int second = 1001;
}  // namespace alertResponse

enum class FirstResponder { control, none };

// Main thread. The control tells its recorder of what the user does with it; each operation here may make it do so
// before it returns.
class RecorderControl : public LocalEvents {
public:
    // What the field shows, and the same in words for whoever hears it.
    virtual void setText(const std::string& text, const std::string& spoken) = 0;
    virtual bool isEmpty() const = 0;
    virtual void setPlaceholder(const std::string& text) = 0;
    virtual void showCancelButton(bool isShown) = 0;
    // As if the user pressed the cancel button: empties the text and tells of it.
    virtual void clickCancelButton() = 0;
    virtual void showInsertionPoint(bool isShown) = 0;
    // The control's bounds in its own plane.
    virtual ControlRect bounds() const = 0;
    // Gives the window's keyboard to the control, or takes it from it. Nothing when there is no window.
    virtual void makeFirstResponder(FirstResponder responder) = 0;
    // Shows an alert before the control's window, which has to be answered before the window can be used again, and
    // returns at once. An alert that goes along with its window is never answered.
    virtual void runAlert(const RecorderAlert& alert, std::function<void(int response)> answered) = 0;
    virtual void beep() = 0;
};

}  // namespace tarvix
