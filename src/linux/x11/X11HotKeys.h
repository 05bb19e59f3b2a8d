// Hot keys by passive grabs.
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
#include "linux/x11/XInputKeyboards.h"
#include "platform/HotKeys.h"

namespace tarvix {

// A hot key is grabbed on each keyboard by itself, so that it fires while a menu or another program holds the keyboard
// as a whole, and on the root window too, which keeps other programs from taking it. Without XInput there is the latter
// alone. Main thread.
class X11HotKeys final : public HotKeys {
public:
    // The connection outlives the hot keys. X11Keyboard, if any, is opened later on the same connection: a hot key is
    // recognised before a key goes to a panel.
    static Outcome<std::unique_ptr<X11HotKeys>> open(X11Connection& connection);
    ~X11HotKeys() override;

    bool registerHotKey(std::uint32_t id, std::uint32_t keyCode, std::uint32_t modifiers) override;
    void unregisterHotKey(std::uint32_t id) override;
    Subscription onHotKey(std::function<void(HotKeyEvent, std::uint32_t)> seen) override;

private:
    struct HotKey {
        std::uint8_t keycode = 0;
        std::uint32_t carbon = 0;
        friend bool operator==(const HotKey&, const HotKey&) = default;
    };

    X11HotKeys(X11Connection& connection, bool hasXInput);
    X11Connection::Handled handle(const xcb_generic_event_t& event);
    X11Connection::Handled handleKey(const X11KeyEvent& key);
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
    std::optional<std::uint32_t> pressed_;
    Listeners<HotKeyEvent, std::uint32_t> listeners_;
    Subscription events_, deviceChanges_;
};

}  // namespace tarvix
