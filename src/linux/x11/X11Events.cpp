#include "linux/x11/X11Events.h"

#include <xcb/shape.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <limits>
#include <thread>
#include <utility>

#include "linux/x11/EvdevKeyCodes.h"
#include "linux/x11/X11KeyState.h"
#include "linux/x11/XInputKeyboards.h"

namespace tarvix {

namespace {

constexpr std::size_t kMostPressesKept = 64;

constexpr std::chrono::milliseconds kBetweenClicks{30}, kLongestClick{200};
// A time long past: a grab asked for then is always refused, and the refusal tells whether somebody else has one.
constexpr xcb_timestamp_t kLongPast = 1;

struct ButtonRow {
    MouseEventType type;
    std::uint8_t event;
    std::uint8_t button;
};
constexpr std::array<ButtonRow, 4> kButtons{{
    {MouseEventType::leftMouseDown, XCB_BUTTON_PRESS, 1},
    {MouseEventType::leftMouseUp, XCB_BUTTON_RELEASE, 1},
    {MouseEventType::rightMouseDown, XCB_BUTTON_PRESS, 3},
    {MouseEventType::rightMouseUp, XCB_BUTTON_RELEASE, 3},
}};

std::optional<std::int16_t> pixelOf(double coordinate) {
    const double pixel = std::round(coordinate);
    using Limits = std::numeric_limits<std::int16_t>;
    if (!(pixel >= Limits::min() && pixel <= Limits::max())) return std::nullopt;  // not a number included
    return static_cast<std::int16_t>(pixel);
}

}  // namespace

Outcome<std::unique_ptr<X11Events>> X11Events::open(X11Connection& connection) {
    if (!connection.extension(xcb_test_id)) return Fault{"the X server lets no program post events (no XTEST)"};
    return std::unique_ptr<X11Events>(new X11Events(connection, startXInput(connection)));
}

X11Events::X11Events(X11Connection& connection, bool hasXInput)
    : x_(connection), modifiers_(X11Modifiers::read(connection)) {
    if (hasXInput) poster_.emplace(x_, standIns_.emplace(x_));
    events_ = x_.onEvent([this](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) == XCB_MAPPING_NOTIFY) modifiers_ = X11Modifiers::read(x_);
        return X11Connection::Handled::no;
    });
}

unsigned X11Events::fake(std::uint8_t type, std::uint8_t detail, std::int16_t x, std::int16_t y) {
    return xcb_test_fake_input(x_.get(), type, detail, XCB_CURRENT_TIME, x_.root(), x, y, 0).sequence;
}

bool X11Events::post(const MouseEvent& event) {
    const auto x = pixelOf(event.point.x), y = pixelOf(event.point.y);
    if (!x || !y || !x_.isAlive()) return false;
    makeWay_();
    clickThroughPanel();
    const auto row = std::ranges::find(kButtons, event.type, &ButtonRow::type);
    if (row == kButtons.end()) {
        fake(XCB_MOTION_NOTIFY, 0, *x, *y);
    } else {
        fake(XCB_MOTION_NOTIFY, 0, *x, *y);
        if (row->event == XCB_BUTTON_PRESS && event.clickState > 1) awaitFormerClick();
        std::uint8_t locked = 0;
        if (standIns_ && event.flags) locked = setModifiers(*event.flags);
        // Modifiers that a hand holds are unknown to the applications while the keyboards are grabbed one by one, and
        // belong to the click all the same.
        if (standIns_ && !event.flags) standIns_->standIn(modifiers_.four());
        if (row->event == XCB_BUTTON_PRESS) x_.remains().noteButton(row->button, true);
        const unsigned sequence = fake(row->event, row->button);
        lockModifiers(x_, locked, 0);
        if (row->event == XCB_BUTTON_PRESS) ownPresses_.push_back(sequence);
        if (ownPresses_.size() > kMostPressesKept) ownPresses_.erase(ownPresses_.begin());
        x_.sync();
        if (locked != 0) x_.remains().lockedModifiers = 0;
        if (row->event == XCB_BUTTON_RELEASE) x_.remains().noteButton(row->button, false);
    }
    x_.flush();
    return true;
}

// A window manager takes each press into its hands before it passes it on. With openbox on a busy machine one press of
// every third double click was lost when they came within a few milliseconds; no hand is that fast.
void X11Events::awaitFormerClick() {
    std::this_thread::sleep_for(kBetweenClicks);
    const auto end = std::chrono::steady_clock::now() + kLongestClick;
    while (isPointerGrabbed() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

bool X11Events::isPointerGrabbed() {
    const auto asked = xcb_grab_pointer(x_.get(), 0, x_.root(), 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                                        XCB_WINDOW_NONE, XCB_CURSOR_NONE, kLongPast);
    const auto reply = x_.reply<xcb_grab_pointer_reply>(asked);
    return reply && reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
}

void X11Events::setPanel(std::uint32_t panel) {
    panel_ = panel;
    if (panel == 0 || panel != clickedThrough_) return;
    xcb_shape_mask(x_.get(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, panel, 0, 0, XCB_NONE);
    clickedThrough_ = 0;
}

// The server works through what is posted at once, before the panel could be put away.
void X11Events::clickThroughPanel() {
    if (panel_ == 0 || clickedThrough_ == panel_) return;
    clickedThrough_ = panel_;
    xcb_shape_rectangles(x_.get(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED, panel_, 0, 0, 0,
                         nullptr);
}

std::uint8_t X11Events::setModifiers(std::uint64_t flags) {
    standIns_->suspend();
    const auto devices = readKeyboards(x_).all();
    const ModifierState master = modifierStates(x_, {kMasterKeyboard}).front();
    const std::uint8_t wanted = modifiers_.maskOfEventFlags(flags);
    const std::uint8_t unwanted = master.held & modifiers_.four() & static_cast<std::uint8_t>(~wanted);
    if (unwanted != 0) liftKeys(unwanted, devices);
    const std::uint8_t missing = wanted & static_cast<std::uint8_t>(~master.effective());
    if (missing != 0) x_.remains().lockedModifiers = missing;
    lockModifiers(x_, missing, missing);
    return missing;
}

// Each key goes up on the keyboard that holds it, so that its own later release finds nothing to do. It isn't put down
// again: a window manager may hold the click back until after that.
void X11Events::liftKeys(std::uint8_t mask, const std::vector<std::uint16_t>& devices) {
    const int release = x_.extension(xcb_input_id)->first_event + XCB_INPUT_DEVICE_KEY_RELEASE;
    for (const std::uint16_t device : devices) {
        const Keycodes down = keysDownOn(x_, {device});
        for (std::size_t k = 0; k < down.size(); ++k) {
            const auto keycode = static_cast<std::uint8_t>(k);
            if (down[k] && (modifiers_.maskOfKey(keycode) & mask) != 0)
                xcb_test_fake_input(x_.get(), static_cast<std::uint8_t>(release), keycode, XCB_CURRENT_TIME,
                                    XCB_WINDOW_NONE, 0, 0, static_cast<std::uint8_t>(device));
        }
    }
}

bool X11Events::post(const KeyEvent& event) {
    const auto keycode = x11OfKeyCode(event.keyCode);
    if (!keycode || !poster_ || !x_.isAlive()) return false;
    const std::uint8_t type = event.type == KeyEventType::keyUp ? XCB_KEY_RELEASE : XCB_KEY_PRESS;
    const std::uint8_t wanted = modifiers_.maskOfEventFlags(event.flags);
    if (panel_ == 0) {
        poster_->post(type, *keycode, wanted,
                      isOnKeypad(event.keyCode) ? X11KeyPoster::NumLock::on : X11KeyPoster::NumLock::asItIs,
                      modifiers_);
        return true;
    }
    // It comes back to us, who have the keyboard, and that is soon enough for its modifiers.
    const std::uint8_t numLock = isOnKeypad(event.keyCode) ? modifiers_.numLock : 0;
    if (type == XCB_KEY_PRESS) x_.remains().noteKey(*keycode, true);
    ownKeys_.push_back({fake(type, *keycode), static_cast<std::uint8_t>(wanted | numLock)});
    if (ownKeys_.size() > kMostPressesKept) ownKeys_.erase(ownKeys_.begin());
    x_.sync();
    if (type == XCB_KEY_RELEASE) x_.remains().noteKey(*keycode, false);
    return true;
}

std::optional<std::uint8_t> X11Events::takeOwnKey(std::uint32_t sequence) {
    const auto found = std::ranges::find(ownKeys_, sequence, &OwnKey::sequence);
    if (found == ownKeys_.end()) return std::nullopt;
    const std::uint8_t modifiers = found->modifiers;
    ownKeys_.erase(found);
    return modifiers;
}

Subscription X11Events::monitorKeyDown(std::function<Verdict(const KeyEvent&)> seen) {
    monitor_ = std::make_shared<std::function<Verdict(const KeyEvent&)>>(std::move(seen));
    return Subscription([this, mine = std::weak_ptr(monitor_)] {
        if (mine.lock() == monitor_) monitor_.reset();
    });
}

Verdict X11Events::offer(const KeyEvent& event) {
    const auto monitor = monitor_;
    return monitor ? (*monitor)(event) : Verdict::pass;
}

bool X11Events::tookOwnPress(std::uint32_t sequence) {
    const auto found = std::ranges::find(ownPresses_, sequence);
    if (found == ownPresses_.end()) return false;
    ownPresses_.erase(found);
    return true;
}

}  // namespace tarvix
