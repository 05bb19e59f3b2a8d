// Mouse and key events: posting them, seeing the keys that are about to reach a panel of ours, and the pointer and the
// wheel wherever they go.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "base/Geometry.h"
#include "base/Subscription.h"

namespace tarvix {

enum class MouseEventType : std::uint8_t {
    leftMouseDown = 1,
    leftMouseUp = 2,
    rightMouseDown = 3,
    rightMouseUp = 4,
    mouseMoved = 5,
};

// The modifier bits of events.
namespace eventFlag {
inline constexpr std::uint64_t shift = 0x20000;
inline constexpr std::uint64_t control = 0x40000;
inline constexpr std::uint64_t option = 0x80000;
inline constexpr std::uint64_t command = 0x100000;
inline constexpr std::uint64_t secondaryFn = 0x800000;
}  // namespace eventFlag

struct MouseEvent {
    MouseEventType type = MouseEventType::mouseMoved;
    AxPoint point;
    int button = 0;      // 0 left, 1 right
    int clickState = 0;  // 1 for the first click, 2 for the second of a double click, 0 for a move
    std::optional<std::uint64_t> flags = std::nullopt;  // absent: the modifiers that the user holds stay in effect
    friend bool operator==(const MouseEvent&, const MouseEvent&) = default;
};

enum class KeyEventType : std::uint8_t { keyDown = 10, keyUp = 11 };

struct KeyEvent {
    KeyEventType type = KeyEventType::keyDown;
    std::uint16_t keyCode = 0;  // a position on the table of `Key`
    std::uint64_t flags = 0;    // eventFlag bits
    friend bool operator==(const KeyEvent&, const KeyEvent&) = default;
};

enum class Verdict { pass, consume };

// Main thread.
class Events {
public:
    virtual ~Events() = default;

    // Posts one event as if the hardware had made it, and returns before it is delivered. False when the event could
    // not be made; nothing is posted then.
    virtual bool post(const MouseEvent& event) = 0;
    virtual bool post(const KeyEvent& event) = 0;

    // Offers each key press that is about to reach one of our panels, before the panel sees it; a consumed one never
    // reaches it. One monitor at a time.
    [[nodiscard]] virtual Subscription monitorKeyDown(std::function<Verdict(const KeyEvent&)> seen) = 0;
};

// A view of the pointer and the wheel over the whole desktop, wherever their events go.
enum class TapEventType : std::int8_t { disabledByTimeout = -2, mouseMoved = 5, scrollWheel = 22 };

// What becomes of the wheel while the tap is enabled.
enum class WheelFate : std::uint8_t {
    passes,  // and nobody looks: costs nothing
    seen,    // each step is told, and goes on to the application unharmed
    swallowed
};

// What a tap looks at. A desktop has to know beforehand: it can't hold an event back until somebody has decided.
struct TapInterest {
    bool moves = false;
    WheelFate wheel = WheelFate::passes;
    friend bool operator==(TapInterest, TapInterest) = default;
};

// Main thread. Ends with its destruction.
class EventTap {
public:
    virtual ~EventTap() = default;
    // A disabled tap sees and swallows nothing. Enabled to begin with.
    virtual void enable(bool isEnabled) = 0;
    // Nothing at all to begin with. May be called while an event is told, for a wheel step ends a search.
    virtual void setInterest(TapInterest interest) = 0;
};

// Main thread.
class EventTaps {
public:
    virtual ~EventTaps() = default;
    // `seen` is told each event of the tap's interest; what it answers to a wheel step agrees with the wheel's fate,
    // which decides. Null when there can be no tap.
    [[nodiscard]] virtual std::unique_ptr<EventTap> createEventTap(std::function<Verdict(TapEventType)> seen) = 0;
};

}  // namespace tarvix
