// Hot keys by passive grabs, and raw keys where another program's grab keeps those from firing.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "base/Listeners.h"
#include "base/Outcome.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11KeyEvent.h"
#include "linux/x11/X11Modifiers.h"
#include "linux/x11/X11RawKeys.h"
#include "linux/x11/XInputKeyboards.h"
#include "platform/HotKeys.h"

namespace tarvix {

// A hot key is grabbed on each keyboard by itself, so that it fires while a menu or another program holds the keyboard
// as a whole, and on the root window too, which keeps other programs from taking it. Without XInput there is the latter
// alone, and no raw keys.
//
// What does keep it from firing is another program's grab of a single keyboard, and a keyboard that is held back.
// Nobody tells of either. So each raw press of a hot key is followed by a message to ourselves: if that arrives before
// the hot key, the press was kept from it, and counts as one in an open menu until the key is up. Main thread.
class X11HotKeys final : public HotKeys {
public:
    // The connection outlives the hot keys. X11Keyboard, if any, is opened later on the same connection: a hot key is
    // recognised before a key goes to a panel.
    static Outcome<std::unique_ptr<X11HotKeys>> open(X11Connection& connection);
    ~X11HotKeys() override;

    bool registerHotKey(std::uint32_t id, std::uint32_t keyCode, std::uint32_t modifiers) override;
    void unregisterHotKey(std::uint32_t id) override;
    Subscription onHotKey(std::function<void(HotKeyEvent, std::uint32_t)> seen) override;
    Subscription onMenuTracking(std::function<void(MenuTracking)> seen) override;
    // Nothing can be consumed: the keys are whoever's they are.
    Subscription onRawKey(std::function<Verdict(const RawKeyEvent&)> seen) override;
    std::optional<std::vector<SymbolicHotKey>> symbolicHotKeys() override;

private:
    struct HotKey {
        std::uint8_t keycode = 0;
        std::uint32_t carbon = 0;
        std::uint32_t since = 0;  // the request after which a press is its own
        bool isSameKey(const HotKey& other) const { return keycode == other.keycode && carbon == other.carbon; }
    };
    // One press of a key, which a hot key may be told of in two ways.
    struct Press {
        std::uint8_t keycode = 0;
        std::uint8_t modifiers = 0;
        xcb_timestamp_t time = 0;
    };
    struct Held {
        std::uint8_t keycode = 0;
        std::optional<std::uint32_t> id;  // of the hot key whose release is still to be told
    };

    X11HotKeys(X11Connection& connection, bool hasXInput);
    X11Connection::Handled handle(const xcb_generic_event_t& event);
    X11Connection::Handled handleKey(const X11KeyEvent& key);
    X11Connection::Handled handlePress(const X11KeyEvent& key);
    X11Connection::Handled handleRelease(const X11KeyEvent& key);
    void handleRaw(const X11RawKey& key);
    void askWhetherItFires(const Press& press);
    void handleAnswer(const xcb_client_message_event_t& message);
    void servePressInMenu(const Press& press);
    void endMenu();
    void tellRaw(HotKeyEvent event, const Press& press);
    void listenForRawKeys();
    std::optional<std::uint32_t> idOf(std::uint8_t keycode, std::uint8_t modifiers) const;
    void keyboardsChanged();
    void mappingChanged();

    std::uint8_t maskOf(const HotKey& hotKey) const { return modifiers_.maskOfCarbon(hotKey.carbon); }
    std::vector<std::uint32_t> lockVariants(const HotKey& hotKey) const;
    bool grab(const HotKey& hotKey);
    void ungrab(const HotKey& hotKey);
    bool grabOnRoot(const HotKey& hotKey);
    bool grabOn(std::uint16_t device, const HotKey& hotKey);

    X11Connection& x_;
    bool hasXInput_;
    XInputKeyboards keyboards_;
    X11Modifiers modifiers_;
    std::map<std::uint32_t, HotKey> hotKeys_;
    std::optional<Held> held_;
    Listeners<HotKeyEvent, std::uint32_t> listeners_;

    X11RawKeys rawKeys_;
    std::shared_ptr<std::function<Verdict(const RawKeyEvent&)>> rawKey_;
    Listeners<MenuTracking> menuTracking_;
    xcb_window_t asking_ = XCB_WINDOW_NONE;  // gets the messages to ourselves
    std::optional<Press> asked_;             // the press that a message is under way for
    std::optional<Press> inMenu_;            // the press that is served as one in a menu
    std::optional<Press> served_;            // the last such one, which may reach the hot key all the same
    Subscription events_, deviceChanges_;
};

}  // namespace tarvix
