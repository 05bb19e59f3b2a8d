// Asking an application for its tree: a small task on the main run loop that writes an attribute again and again until
// a test says that the application has understood, or it has been tried often enough.
#include <chrono>
#include <cstdio>
#include <memory>
#include <utility>
#include <variant>

#include "ax/AXEngine2.h"
#include "base/Subscription.h"
#include "platform/RunLoop.h"

namespace tarvix {

namespace {

using namespace std::chrono_literals;

// Owned by its timer, which it owns in turn: it lasts until the timer is ended, by its own last tick.
struct Switch {
    AccessibilityService& service;
    UIElement application;
    int tries = 0;
    Subscription timer = {};

    void write(std::string_view attribute) { service.setAttribute(application, attribute, true); }
    AxResult<AxValue> read(std::string_view attribute) { return service.attribute(application, attribute); }
};

enum class Tick { more, last };

// Flushed, so that whoever reads along sees each line when it is written.
void print(const char* line) {
    std::puts(line);
    std::fflush(stdout);
}

// The one switch that tells whether it is on: it is looked at before it is thrown.
Tick enhancedUserInterfaceTick(Switch& that) {
    constexpr int limit = 12;
    print("getting AXEnhanced");
    if (that.read(ax::enhancedUserInterface).value == AxValue(true)) return Tick::last;
    if (that.tries == limit) return Tick::last;
    print("setting AXEnhanced");
    that.write(ax::enhancedUserInterface);
    ++that.tries;
    return Tick::more;
}

Tick manualTick(Switch& that) {
    constexpr int limit = 16;
    print("setting AXManual");
    that.write(ax::manualAccessibility);
    ++that.tries;
    print("getting FocusedWindow");
    return that.read(ax::focusedWindow).ok() || that.tries == limit ? Tick::last : Tick::more;
}

Tick bothTick(Switch& that) {
    constexpr int limit = 6;
    print("double special AX Combo for you");
    that.write(ax::enhancedUserInterface);
    that.write(ax::manualAccessibility);
    ++that.tries;
    return that.read(ax::focusedUIElement).ok() || that.tries == limit ? Tick::last : Tick::more;
}

// The first tick takes place before this returns.
void start(RunLoop& runLoop, AccessibilityService& service, std::int32_t pid, std::chrono::milliseconds interval,
           Tick (*tick)(Switch&)) {
    const auto thrown = std::make_shared<Switch>(Switch{service, service.application(pid)});
    const auto ticks = [thrown, tick] {
        if (tick(*thrown) == Tick::last) thrown->timer.reset();
    };
    thrown->timer = runLoop.timer(interval, RunLoop::Repeat::forever, ticks);
    ticks();
}

}  // namespace

void AXEngine2::keepEnhancedUserInterfaceSet(std::int32_t processIdentifier) const {
    start(*runLoop_, *service_, processIdentifier, 280ms, enhancedUserInterfaceTick);
}

void AXEngine2::keepManualAccessibilitySet(std::int32_t processIdentifier) const {
    start(*runLoop_, *service_, processIdentifier, 440ms, manualTick);
}

void AXEngine2::keepBothAttributesSet(std::int32_t processIdentifier) const {
    start(*runLoop_, *service_, processIdentifier, 880ms, bothTick);
}

}  // namespace tarvix
