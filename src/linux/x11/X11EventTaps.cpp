#include "linux/x11/X11EventTaps.h"

#include <xcb/xinput.h>

#include <chrono>
#include <cstdint>
#include <utility>

#include "linux/x11/RestingWatcher.h"
#include "linux/x11/X11WheelShield.h"
#include "linux/x11/XInputKeyboards.h"
#include "linux/x11/XInputPointer.h"

namespace tarvix {

using Handled = X11Connection::Handled;

namespace {

// A mouse may report thousands of times a second, and a picture of the screen lasts about as long as this.
constexpr auto kRest = std::chrono::milliseconds(16);

// The tap's eyes are a connection of their own. Keys have to be handled at once, and come by the other one; here a
// flood of moves can wait for the end of a rest.
class Tap final : public EventTap {
public:
    Tap(std::unique_ptr<X11Connection> eyes, X11Connection& connection, X11Events& events, ReadWatcher& loop,
        std::function<Verdict(TapEventType)> seen)
        : eyes_(std::move(eyes)),
          wheels_(*eyes_),
          shield_(connection, events),
          resting_(loop, kRest, [this] { tell(); }),
          seen_(std::make_shared<std::function<Verdict(TapEventType)>>(std::move(seen))) {
        arriving_ = eyes_->onEvent([this](const xcb_generic_event_t& event) {
            take(event);
            return Handled::no;
        });
        eyes_->watch(resting_);
    }

    void enable(bool isEnabled) override {
        isEnabled_ = isEnabled;
        adopt();
    }
    void setInterest(TapInterest interest) override {
        interest_ = interest;
        adopt();
    }

private:
    TapInterest wanted() const { return isEnabled_ ? interest_ : TapInterest{}; }

    void adopt() {
        const TapInterest wanted = this->wanted();
        if (wanted == adopted_) return;
        const bool begins = adopted_ == TapInterest{};
        const bool wasSwallowed = adopted_.wheel == WheelFate::swallowed;
        adopted_ = wanted;
        if (begins) wheels_.forget();
        select();
        if (wanted.wheel == WheelFate::swallowed) shield_.raise();
        if (wanted.wheel != WheelFate::swallowed && wasSwallowed) shield_.lower();
    }

    void select() {
        const bool wheel = adopted_.wheel != WheelFate::passes;
        std::uint32_t raw = 0;
        if (adopted_.moves || wheel) raw |= XCB_INPUT_XI_EVENT_MASK_RAW_MOTION;
        if (wheel) raw |= XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS;
        raw_ = eyes_->selectXInputOnRoot(XCB_INPUT_DEVICE_ALL_MASTER, raw);
        const std::uint32_t stack =
            adopted_.wheel == WheelFate::swallowed ? XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY : XCB_EVENT_MASK_NO_EVENT;
        xcb_change_window_attributes(eyes_->get(), eyes_->root(), XCB_CW_EVENT_MASK, &stack);
        eyes_->flush();
    }

    void take(const xcb_generic_event_t& event) {
        if (const auto* raw = asXInput(*eyes_, event, {XCB_INPUT_RAW_MOTION, XCB_INPUT_RAW_BUTTON_PRESS})) {
            takeRaw(raw->event_type, *reinterpret_cast<const xcb_input_raw_button_press_event_t*>(raw));
            return;
        }
        switch (event.response_type & 0x7f) {
            case XCB_MAP_NOTIFY:
                return shield_.restacked(reinterpret_cast<const xcb_map_notify_event_t&>(event).window);
            case XCB_CONFIGURE_NOTIFY:
                return shield_.restacked(reinterpret_cast<const xcb_configure_notify_event_t&>(event).window);
            case XCB_CIRCULATE_NOTIFY:
                return shield_.restacked(reinterpret_cast<const xcb_circulate_notify_event_t&>(event).window);
        }
    }

    void takeRaw(std::uint16_t type, const xcb_input_raw_button_press_event_t& raw) {
        if (type == XCB_INPUT_RAW_BUTTON_PRESS) {
            scrolled_ = scrolled_ || isWheelButton(raw.detail);
            return;
        }
        const RawMotion motion = wheels_.read(raw);
        moved_ = moved_ || motion.moves;
        scrolled_ = scrolled_ || motion.scrolls;
    }

    // An answer may change the interest, or end the tap.
    void tell() {
        const bool moved = std::exchange(moved_, false), scrolled = std::exchange(scrolled_, false);
        const std::weak_ptr alive = seen_;
        const auto tellOne = [&](TapEventType type) {
            if (const auto seen = alive.lock()) (*seen)(type);
        };
        if (scrolled && adopted_.wheel != WheelFate::passes) tellOne(TapEventType::scrollWheel);
        if (moved && !alive.expired() && adopted_.moves) tellOne(TapEventType::mouseMoved);
    }

    std::unique_ptr<X11Connection> eyes_;
    XInputWheels wheels_;
    X11WheelShield shield_;
    RestingWatcher resting_;
    std::shared_ptr<std::function<Verdict(TapEventType)>> seen_;
    bool isEnabled_ = true;
    TapInterest interest_;
    TapInterest adopted_;                    // of the two above what is in effect
    bool moved_ = false, scrolled_ = false;  // since the last telling
    Subscription raw_, arriving_;
};

class BlindTap final : public EventTap {
public:
    void enable(bool) override {}
    void setInterest(TapInterest) override {}
};

}  // namespace

Outcome<std::unique_ptr<X11EventTaps>> X11EventTaps::open(X11Connection& connection, X11Events& events,
                                                          ReadWatcher& loop) {
    if (!connection.isAlive()) return Fault{"the X server has gone"};
    return std::unique_ptr<X11EventTaps>(new X11EventTaps(connection, events, loop, startXInput(connection)));
}

std::unique_ptr<EventTap> X11EventTaps::createEventTap(std::function<Verdict(TapEventType)> seen) {
    if (!hasXInput_) return std::make_unique<BlindTap>();
    auto eyes = X11Connection::open();
    if (!eyes || !startXInput(*eyes.value())) return nullptr;
    return std::make_unique<Tap>(std::move(eyes.value()), x_, events_, loop_, std::move(seen));
}

}  // namespace tarvix
