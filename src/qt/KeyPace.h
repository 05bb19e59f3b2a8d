// When a key press on its way into a text field has been dealt with.
#pragma once

#include <QTimer>
#include <functional>

namespace tarvix {

// An input method outside of the process answers in its own time, and tells by nothing but what it does to the field
// that it has kept a key. Main thread.
class KeyPace {
public:
    KeyPace();

    // A press has reached the window, and goes its way into the field right after this.
    void pressed();
    // The field has got a key.
    void typed();
    // The field has got something from the input method.
    void composed();

    std::function<void()> onDealtWith;

private:
    void tellSoon();

    QTimer waiting_;  // runs while the input method has a press
    bool isOutside_;
};

}  // namespace tarvix
