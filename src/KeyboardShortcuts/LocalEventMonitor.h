// The key presses and mouse ups of this program's own windows, seen before a window gets them.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

#include "base/Geometry.h"
#include "base/Subscription.h"
#include "platform/Events.h"

namespace tarvix {

// By the numbers that an event type's bit in a mask has.
enum class LocalEventType : std::uint8_t { leftMouseUp = 2, rightMouseUp = 4, keyDown = 10, keyUp = 11 };

using LocalEventMask = std::uint32_t;
constexpr LocalEventMask maskOf(LocalEventType type) { return 1u << static_cast<unsigned>(type); }

// Keys that are known by what they do rather than by their place, so that one that was moved to another place is known
// there. `function` stands for all of F1 to F35, `delete_` for the key that deletes backwards.
enum class SpecialKey : std::uint8_t { tab, delete_, backspace, deleteForward, function };

// The plane of one control, in points: its top left is the origin, y points down.
using ControlPoint = Point<struct ControlPlane>;
using ControlRect = Rect<struct ControlPlane>;

struct LocalEvent {
    LocalEventType type = LocalEventType::keyDown;
    ControlPoint location;                 // of a mouse event, in the control that listens
    std::optional<std::uint16_t> keyCode;  // a position on the table of `Key`; a media key has none
    std::uint64_t modifierFlags = 0;       // eventFlag bits
    std::optional<SpecialKey> specialKey;
};

class LocalEvents {
public:
    virtual ~LocalEvents() = default;
    // Offers each event of the mask before its window sees it; a consumed one never gets there. Dropping the token
    // ends that, also from within `seen`. Main thread.
    [[nodiscard]] virtual Subscription addLocalMonitor(LocalEventMask events,
                                                       std::function<Verdict(const LocalEvent&)> seen) = 0;
};

// Listens from start() until its destruction.
class LocalEventMonitor {
public:
    using Callback = std::function<Verdict(const LocalEvent&)>;

    LocalEventMonitor(LocalEvents& source, LocalEventMask events, Callback callback)
        : source_(source), events_(events), callback_(std::move(callback)) {}

    void start() { monitor_ = source_.addLocalMonitor(events_, callback_); }

private:
    LocalEvents& source_;
    LocalEventMask events_;
    Callback callback_;
    Subscription monitor_;
};

}  // namespace tarvix
