// Posting through the server's test extension, and the offering of keys to the monitor.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "base/Listeners.h"
#include "base/Outcome.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11KeyPoster.h"
#include "linux/x11/X11Modifiers.h"
#include "linux/x11/X11StandIns.h"
#include "platform/Events.h"

namespace tarvix {

// Main thread. Nothing is posted into windows, everything as if it came from the hardware: it goes through grabs and
// menus as a hand's click does, and below click-through panels. The second press of a double click comes 30 ms after
// the first click, and not before that is through or another fifth of a second is over. A window manager that looks at
// a click first may pass it on without flags that were given for it and that no hand holds.
class X11Events final : public Events {
public:
    // The connection outlives the events.
    static Outcome<std::unique_ptr<X11Events>> open(X11Connection& connection);

    bool post(const MouseEvent& event) override;
    bool post(const KeyEvent& event) override;
    Subscription monitorKeyDown(std::function<Verdict(const KeyEvent&)> seen) override;

    // A panel of ours that lies over the applications and takes clicks itself; none (0) where there is no such panel.
    // What is posted from now on goes through it, from its first event on: it takes clicks again when it is set anew.
    void setPanel(std::uint32_t panel);
    std::uint32_t panel() const { return panel_; }
    // Called before each mouse event that is posted: what else of ours lies over the applications gets out of its way.
    [[nodiscard]] Subscription beforeMouse(std::function<void()> makeWay) { return makeWay_.add(std::move(makeWay)); }

    // What the monitor says to a key press; pass where there is none. The monitor may do anything meanwhile, ending the
    // panel's hold of the keyboard included.
    Verdict offer(const KeyEvent& event);
    // The modifiers that a hand holds while the keyboards are grabbed; null without XInput.
    X11StandIns* standIns() { return standIns_ ? &*standIns_ : nullptr; }
    // Whether a raw button press, which tells the sequence number of the last request before it, was posted by us. True
    // once for each.
    bool tookOwnPress(std::uint32_t sequence);
    // Of a key event that came while a panel has the keyboard: the modifiers that it was posted with, if it was posted
    // by us. Once for each.
    std::optional<std::uint8_t> takeOwnKey(std::uint32_t sequence);

private:
    X11Events(X11Connection& connection, bool hasXInput);
    unsigned fake(std::uint8_t type, std::uint8_t detail, std::int16_t x = 0, std::int16_t y = 0);
    void clickThroughPanel();
    void awaitFormerClick();
    // By another program, or by an application that has a button's press and not yet its release.
    bool isPointerGrabbed();
    // Has the applications see exactly these modifiers. What has been locked for it is returned.
    std::uint8_t setModifiers(std::uint64_t flags);
    void liftKeys(std::uint8_t mask, const std::vector<std::uint16_t>& devices);

    struct OwnKey {
        std::uint32_t sequence;
        std::uint8_t modifiers;
    };

    X11Connection& x_;
    std::optional<X11StandIns> standIns_;  // with XInput
    std::optional<X11KeyPoster> poster_;   // likewise
    X11Modifiers modifiers_;
    std::uint32_t panel_ = 0;
    std::uint32_t clickedThrough_ = 0;  // the panel whose input shape is empty
    Listeners<> makeWay_;
    std::vector<unsigned> ownPresses_;
    std::vector<OwnKey> ownKeys_;
    std::shared_ptr<std::function<Verdict(const KeyEvent&)>> monitor_;
    Subscription events_;
};

}  // namespace tarvix
