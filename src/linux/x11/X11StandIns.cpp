#include "linux/x11/X11StandIns.h"

#include <xcb/xinput.h>

#include "linux/x11/X11KeyState.h"
#include "linux/x11/XInputKeyboards.h"

namespace tarvix {

namespace {

constexpr auto kSuspension = std::chrono::seconds(1);

}

X11StandIns::X11StandIns(X11Connection& connection) : x_(connection) {
    events_ = x_.onEvent([this](const xcb_generic_event_t& event) {
        if (modifiers_ != 0 && asXInput(x_, event, {XCB_INPUT_RAW_KEY_RELEASE})) check();
        return X11Connection::Handled::no;
    });
}

// The server drops what a client has sent last when it can't write to it any more.
X11StandIns::~X11StandIns() {
    if (modifiers_ == 0) return;
    clear();
    x_.sync();
}

void X11StandIns::standIn(std::uint8_t mask) {
    if (isSuspended_) {
        wantedLater_ = mask;
        return;
    }
    const auto keyboards = readKeyboards(x_);
    const std::uint8_t held = modifiersHeldOn(x_, keyboards.all()) & mask;
    if (held != 0 && modifiers_ == 0) {
        keyReleases_ = x_.selectXInputOnRoot(keyboards.master, XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE);
    }
    set(held);
    if (held != 0) check();  // the hand may have been quicker than the selection
}

void X11StandIns::clear() { set(0); }

void X11StandIns::suspend() {
    clear();
    isSuspended_ = true;
    wantedLater_ = 0;
    suspension_ = x_.after(kSuspension, [this] {
        const std::uint8_t wanted = wantedLater_;
        resume();
        standIn(wanted);
    });
}

void X11StandIns::resume() {
    isSuspended_ = false;
    wantedLater_ = 0;
    suspension_.reset();
}

void X11StandIns::check() { set(modifiers_ & modifiersHeldOn(x_, readKeyboards(x_).all())); }

void X11StandIns::set(std::uint8_t modifiers) {
    if (modifiers == modifiers_) return;
    x_.remains().lockedModifiers = modifiers_ | modifiers;
    lockModifiers(x_, static_cast<std::uint8_t>(modifiers_ & ~modifiers), 0);
    lockModifiers(x_, modifiers, modifiers);
    modifiers_ = modifiers;
    if (modifiers_ == 0) keyReleases_.reset();
    x_.sync();
    x_.remains().lockedModifiers = modifiers_;
}

}  // namespace tarvix
