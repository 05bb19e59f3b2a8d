#include "linux/x11/X11Events.h"

#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "linux/x11/EvdevKeyCodes.h"
#include "linux/x11/X11KeyState.h"
#include "linux/x11/XInputKeyboards.h"

namespace tarvix {

namespace {

constexpr std::size_t kMostPressesKept = 64;

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
    : x_(connection), hasXInput_(hasXInput), modifiers_(X11Modifiers::read(connection)) {
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
    const auto row = std::ranges::find(kButtons, event.type, &ButtonRow::type);
    if (row == kButtons.end()) {
        fake(XCB_MOTION_NOTIFY, 0, *x, *y);
    } else {
        const auto change = changeFor(event.flags);
        fake(XCB_MOTION_NOTIFY, 0, *x, *y);
        apply(change);
        const unsigned sequence = fake(row->event, row->button);
        undo(change);
        if (row->event == XCB_BUTTON_PRESS) ownPresses_.push_back(sequence);
        if (ownPresses_.size() > kMostPressesKept) ownPresses_.erase(ownPresses_.begin());
    }
    x_.flush();
    return true;
}

// Modifiers that a hand holds are unknown to the applications while the keyboards are grabbed one by one, and belong to
// the click all the same.
X11Events::ModifierChange X11Events::changeFor(const std::optional<std::uint64_t>& flags) {
    if (!hasXInput_) return {};
    const auto devices = readKeyboards(x_).all();
    auto asked = devices;
    asked.push_back(kMasterKeyboard);
    auto states = modifierStates(x_, asked);
    const ModifierState master = states.back();
    states.pop_back();

    std::uint8_t wanted = flags ? modifiers_.maskOfEventFlags(*flags) : master.effective();
    if (!flags)
        for (const ModifierState& state : states) wanted |= state.held;
    wanted &= modifiers_.four();

    ModifierChange change;
    change.add = wanted & static_cast<std::uint8_t>(~master.effective());
    const std::uint8_t unwanted = modifiers_.four() & static_cast<std::uint8_t>(~wanted);
    change.unlock = master.locked & unwanted;
    if ((master.held & unwanted) != 0) change.lifted = keysDownWith(master.held & unwanted, devices);
    return change;
}

std::vector<X11Events::ModifierChange::Lifted> X11Events::keysDownWith(std::uint8_t mask,
                                                                       const std::vector<std::uint16_t>& devices) {
    std::vector<ModifierChange::Lifted> found;
    for (const std::uint16_t device : devices) {
        const Keycodes down = keysDownOn(x_, {device});
        for (std::size_t bit = 0; bit < modifiers_.keys.size(); ++bit)
            for (const std::uint8_t keycode : modifiers_.keys[bit])
                if ((mask >> bit & 1) != 0 && down[keycode]) found.push_back({device, keycode});
    }
    return found;
}

void X11Events::apply(const ModifierChange& change) {
    for (const auto& key : change.lifted) fakeOn(key, XCB_INPUT_DEVICE_KEY_RELEASE);
    lockModifiers(x_, change.unlock, 0);
    lockModifiers(x_, change.add, change.add);
}

void X11Events::undo(const ModifierChange& change) {
    lockModifiers(x_, change.add, 0);
    lockModifiers(x_, change.unlock, change.unlock);
    for (const auto& key : change.lifted) fakeOn(key, XCB_INPUT_DEVICE_KEY_PRESS);
}

// An event of the keyboard that holds the key: its own later release then finds everything as it left it.
void X11Events::fakeOn(const ModifierChange::Lifted& key, int type) {
    const int first = x_.extension(xcb_input_id)->first_event;
    xcb_test_fake_input(x_.get(), static_cast<std::uint8_t>(first + type), key.keycode, XCB_CURRENT_TIME,
                        XCB_WINDOW_NONE, 0, 0, static_cast<std::uint8_t>(key.device));
}

bool X11Events::post(const KeyEvent& event) {
    const auto keycode = x11OfKeyCode(event.keyCode);
    if (!keycode || !x_.isAlive()) return false;
    if (event.type == KeyEventType::keyUp) {
        fake(XCB_KEY_RELEASE, *keycode);
        x_.flush();
        return true;
    }
    std::uint8_t there = 0;
    if (hasXInput_) {
        auto devices = std::vector<std::uint16_t>{kMasterKeyboard};
        if (const auto keyboards = readKeyboards(x_); keyboards.xtest) devices.push_back(*keyboards.xtest);
        for (const ModifierState& state : modifierStates(x_, devices)) there |= state.effective();
    }
    std::vector<std::uint8_t> pressed;
    const std::uint8_t missing = modifiers_.maskOfEventFlags(event.flags) & static_cast<std::uint8_t>(~there);
    for (unsigned bit = 0; bit < 8; ++bit)
        if ((missing >> bit & 1) != 0)
            if (const auto key = modifiers_.keyOf(static_cast<std::uint8_t>(1u << bit))) pressed.push_back(*key);
    for (const std::uint8_t key : pressed) fake(XCB_KEY_PRESS, key);
    fake(XCB_KEY_PRESS, *keycode);
    for (const std::uint8_t key : pressed) fake(XCB_KEY_RELEASE, key);
    x_.flush();
    return true;
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
