// The keyboard for a panel of ours while the application stays the active one, and the panels' places in the stack.
#pragma once

#include <xcb/xinput.h>

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "base/Outcome.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Events.h"
#include "linux/x11/X11KeyEvent.h"
#include "linux/x11/X11KeyState.h"
#include "linux/x11/X11Modifiers.h"
#include "linux/x11/X11StackKeeper.h"
#include "platform/Panels.h"

namespace tarvix {

// The keyboards are grabbed one by one, below the master keyboard that applications know: their focus isn't touched, an
// open menu stays open, and even a program that holds the keyboard as a whole doesn't get the keys. Each key press is
// offered to the monitor of X11Events and then sent to the panel as an ordinary event. Where that can't be done the
// keyboard is grabbed as a whole, and where that can't be done either it is taken by the input focus. Main thread.
class X11Keyboard final : public PanelWindowing {
public:
    // The connection is the one of the hot keys, which are opened before this: only the client whose hot key is held
    // may grab that keyboard, and a hot key comes before the panel. Connection and events outlive the keyboard.
    static Outcome<std::unique_ptr<X11Keyboard>> open(X11Connection& connection, X11Events& events);
    ~X11Keyboard() override;

    bool takeKeyboard(std::uint32_t window, std::function<void()> lost) override;
    void releaseKeyboard() override;
    void readyForKeyPress() override;
    void stackOnTop(std::uint32_t window) override { stack_.keepOnTop(window); }
    std::unique_ptr<HazeSurface> makeHazeSurface() override;
    bool isComposited() override;

private:
    enum class Way { eachKeyboard, wholeKeyboard, focus };

    // While a panel has the keyboard.
    struct Taken {
        xcb_window_t panel = XCB_WINDOW_NONE;
        std::function<void()> lost;
        Way way = Way::eachKeyboard;
        std::vector<std::uint16_t> keyboards;  // those that are grabbed
        std::uint32_t since = 0;               // the sequence number of the request that began it
        xcb_window_t activeWindow = XCB_WINDOW_NONE;
        xcb_window_t focus = XCB_WINDOW_NONE;                            // the application's window that has the focus
        xcb_window_t focusTop = XCB_WINDOW_NONE;                         // the child of the root that holds it
        Keycodes down;                                                   // keys that went down since
        Keycodes forwarded;                                              // those of them that the panel knows of
        std::map<std::uint16_t, ModifierState> states;                   // of each grabbed keyboard
        bool isPaced = false;                                            // the panel says when it is ready
        std::optional<std::chrono::steady_clock::time_point> busySince;  // it has a press that it hasn't dealt with
        std::deque<X11KeyEvent> waiting;
        ModifierState locksBefore, locks;  // the applications' locks, and as they would be now without the grab
    };

    X11Keyboard(X11Connection& connection, X11Events& events, bool hasXInput);

    bool grabEachKeyboard(Taken& taken);
    bool grabKeyboards(Taken& taken, const std::vector<std::uint16_t>& devices);
    bool grabWholeKeyboard();
    void takeFocus(const Taken& taken);
    void watchForLoss(const Taken& taken, bool on);
    void endGrabs(const Taken& taken);
    std::vector<X11KeyEvent> keysSince(const Taken& taken);
    void passOn(const std::vector<X11KeyEvent>& keys);

    X11Connection::Handled handle(const xcb_generic_event_t& event);
    X11Connection::Handled handleKey(const X11KeyEvent& key);
    void process(const X11KeyEvent& key);
    void processWaiting();
    bool panelIsBusy() const;
    void waitForPanel();
    bool isConsumed(const X11KeyEvent& key);
    void forward(const X11KeyEvent& key);
    std::uint8_t modifiersOf(const X11KeyEvent& key) const;
    void noteState(std::uint16_t device, const ModifierState& now);
    void noteModifierKey(const X11KeyEvent& key);
    void noteStates();

    void keyboardsChanged();
    void activeWindowChanged();
    void focusLeft(const xcb_focus_out_event_t& event);
    void buttonPressed(const xcb_input_raw_button_press_event_t& event);
    bool pointerIsIn(xcb_window_t window);
    void lose();

    X11Connection& x_;
    X11Events& panelKeys_;
    bool hasXInput_;
    X11Modifiers modifiers_;
    X11StackKeeper stack_;
    std::optional<Taken> taken_;
    bool isOffering_ = false;                     // a key press to the monitor
    xcb_window_t focusWindow_ = XCB_WINDOW_NONE;  // gets the keys of the last way; made when first needed
    Subscription events_, buttonPresses_, busyLimit_;
};

}  // namespace tarvix
