#include "KeyboardShortcuts/RecorderCocoa.h"

#include <algorithm>
#include <array>
#include <utility>

#include "KeyboardShortcuts/MenuSearch.h"
#include "KeyboardShortcuts/ShortcutText.h"

namespace tarvix {

namespace {

constexpr LocalEventMask kEvents =
    maskOf(LocalEventType::keyDown) | maskOf(LocalEventType::leftMouseUp) | maskOf(LocalEventType::rightMouseUp);
static_assert(kEvents == 0x414);

// How far beside the control a click still belongs to it.
constexpr double kMargin = 3;

// What of the modifiers makes a key press other than plain: the modifiers of a shortcut and whatever else a device may
// say, without caps lock, the keypad and the function key.
constexpr std::uint64_t kDeviceIndependent = 0xffff0000;
constexpr std::uint64_t kMeaningless = 0xa10000;

constexpr std::uint16_t kEscape = 53;

bool isPlain(std::uint64_t flags) { return (flags & kDeviceIndependent & ~kMeaningless) == 0; }
bool hasAtMostShift(std::uint64_t flags) { return isPlain(flags & ~eventFlag::shift); }

bool isMouseUp(LocalEventType type) {
    return type == LocalEventType::leftMouseUp || type == LocalEventType::rightMouseUp;
}
bool isKey(LocalEventType type) { return type == LocalEventType::keyDown || type == LocalEventType::keyUp; }
bool deletes(const LocalEvent& event) {
    return event.specialKey == SpecialKey::delete_ || event.specialKey == SpecialKey::deleteForward ||
           event.specialKey == SpecialKey::backspace;
}

// A function key may stand alone or with Shift.
bool canBeShortcut(const LocalEvent& event) {
    return event.keyCode && (!hasAtMostShift(event.modifierFlags) || event.specialKey == SpecialKey::function);
}

bool isNear(ControlPoint point, ControlRect bounds) {
    return point.x >= bounds.minX() - kMargin && point.x < bounds.maxX() + kMargin &&
           point.y >= bounds.minY() - kMargin && point.y < bounds.maxY() + kMargin;
}

std::optional<SpecialKey> specialKeyAt(std::uint32_t keyCode) {
    constexpr auto functionKeys = std::to_array<std::uint32_t>(
        {122, 120, 99, 118, 96, 97, 98, 100, 101, 109, 103, 111, 105, 107, 113, 106, 64, 79, 80, 90});
    constexpr std::uint32_t tab = 48, backwards = 51, forward = 117;
    if (std::ranges::find(functionKeys, keyCode) != functionKeys.end()) return SpecialKey::function;
    if (keyCode == tab) return SpecialKey::tab;
    if (keyCode == backwards) return SpecialKey::delete_;
    if (keyCode == forward) return SpecialKey::deleteForward;
    return std::nullopt;
}

// The press of a hot key, as the event that would have come without it.
LocalEvent eventOf(const Shortcut& shortcut) {
    LocalEvent event;
    event.keyCode = static_cast<std::uint16_t>(shortcut.carbonKeyCode);
    event.modifierFlags = ModifierTransformer::eventFlags(shortcut.carbonModifiers);
    event.specialKey = specialKeyAt(shortcut.carbonKeyCode);
    return event;
}

}  // namespace

RecorderCocoa::RecorderCocoa(RecorderControl& control, RecorderParts parts, ShortcutName name, OnChange onChange)
    : control_(control), parts_(std::move(parts)), onChange_(std::move(onChange)), shortcutName_(std::move(name)) {
    control_.setPlaceholder(recorderString(recorderKey::recordShortcut, parts_.language));
    showShortcut();
    shortcutsNameChangeObserver_ = parts_.shortcuts.onShortcutByNameDidChange([this](const ShortcutName& changed) {
        if (changed == shortcutName_) showShortcut();
    });
}

RecorderCocoa::~RecorderCocoa() {
    if (isRecording()) parts_.shortcuts.isPaused = false;
}

void RecorderCocoa::setShortcutName(const ShortcutName& name) {
    if (name == shortcutName_) return;
    shortcutName_ = name;
    showShortcut();
}

void RecorderCocoa::showShortcut() {
    if (const auto shortcut = parts_.shortcuts.getShortcut(shortcutName_))
        showText(*shortcut);
    else
        control_.setText("", "");
    showCancelButtonByText();
}

void RecorderCocoa::showText(const Shortcut& shortcut) {
    control_.setText(displayText(shortcut, parts_.inputSources), spokenText(shortcut, parts_.inputSources));
}

// The recorder may go while the desktop still holds what it was asked to call back.
template <class Body>
auto RecorderCocoa::whileAlive(Body body) {
    return [body = std::move(body), life = std::weak_ptr(life_)](auto&&... arguments) {
        if (!life.expired()) body(std::forward<decltype(arguments)>(arguments)...);
    };
}

// Recording -----------------------------------------------------------------------------------------------------------

void RecorderCocoa::becomeFirstResponder() {
    control_.setPlaceholder(recorderString(recorderKey::pressShortcut, parts_.language));
    showCancelButtonByText();
    control_.showInsertionPoint(false);
    parts_.shortcuts.isPaused = true;
    eventMonitor_ = std::make_unique<LocalEventMonitor>(control_, kEvents,
                                                        [this, life = std::weak_ptr(life_)](const LocalEvent& event) {
                                                            return life.expired() ? Verdict::consume : handle(event);
                                                        });
    eventMonitor_->start();
    // A hot key of ours doesn't come as a key press. Not within its own handler: what follows may register it anew.
    pressedWhilePaused_ = parts_.shortcuts.onPressWhilePaused([this](const Shortcut& pressed) {
        parts_.runLoop.onMain(whileAlive([this, pressed] {
            if (isRecording()) handle(eventOf(pressed));
        }));
    });
    learnReserved();
}

void RecorderCocoa::controlTextDidEndEditing() {
    eventMonitor_.reset();
    pressedWhilePaused_.reset();
    waiting_.reset();
    control_.setPlaceholder(recorderString(recorderKey::recordShortcut, parts_.language));
    showCancelButtonByText();
    control_.showInsertionPoint(true);
    parts_.shortcuts.isPaused = false;
}

void RecorderCocoa::controlTextDidChange() {
    const bool isEmpty = control_.isEmpty();
    if (isEmpty) {
        parts_.shortcuts.setShortcut(std::nullopt, shortcutName_);
        if (onChange_) onChange_(std::nullopt);
    }
    showCancelButtonByText();
    if (isEmpty) control_.makeFirstResponder(FirstResponder::control);
}

void RecorderCocoa::viewDidMoveToWindow(bool hasWindow) {
    if (!hasWindow) controlTextDidEndEditing();
}

void RecorderCocoa::windowDidResignKey() { endRecording(); }

// The system is asked when recording begins and not when a key has been pressed, since it may take its time.
void RecorderCocoa::learnReserved() {
    reserved_.reset();
    parts_.runLoop.inBackground(
        [&shortcuts = parts_.shortcuts, &runLoop = parts_.runLoop,
         answered = whileAlive([this](const std::vector<Shortcut>& reserved) {
             reserved_ = reserved;
             if (const auto shortcut = std::exchange(waiting_, std::nullopt)) askTheSystem(*shortcut);
         })] { runLoop.onMain([answered, reserved = shortcuts.systemReservedShortcuts()] { answered(reserved); }); });
}

// A key press ---------------------------------------------------------------------------------------------------------

Verdict RecorderCocoa::handle(const LocalEvent& event) {
    if (isMouseUp(event.type) && !isNear(event.location, control_.bounds())) {
        endRecording();
        return Verdict::pass;
    }
    return isKey(event.type) ? handleKey(event) : Verdict::consume;
}

Verdict RecorderCocoa::handleKey(const LocalEvent& event) {
    const bool plain = isPlain(event.modifierFlags);
    if (plain && event.specialKey == SpecialKey::tab) {
        endRecording();
        return Verdict::pass;
    }
    if (plain && event.keyCode == kEscape) {
        endRecording();
    } else if (plain && deletes(event)) {
        control_.clickCancelButton();
    } else if (!canBeShortcut(event)) {
        control_.beep();
    } else {
        record(Shortcut::withEventFlags(*event.keyCode, event.modifierFlags));
    }
    return Verdict::consume;
}

void RecorderCocoa::record(const Shortcut& shortcut) {
    const Menu menu = parts_.mainMenu ? parts_.mainMenu() : Menu{};
    const MenuItem* const item = itemWithShortcut(menu, shortcut, keyText(shortcut.carbonKeyCode, parts_.inputSources));
    if (item)
        tellOfMenuItem(*item);
    else
        askTheSystem(shortcut);
}

void RecorderCocoa::askTheSystem(const Shortcut& shortcut) {
    if (!reserved_) {
        waiting_ = shortcut;
    } else if (std::ranges::find(*reserved_, shortcut) != reserved_->end()) {
        tellOfSystem(shortcut);
    } else {
        save(shortcut);
    }
}

void RecorderCocoa::tellOfMenuItem(const MenuItem& item) {
    const RecorderAlert alert{recorderString(recorderKey::usedByMenuItem, parts_.language, item.title),
                              "",
                              {recorderString(recorderKey::ok, parts_.language)}};
    endRecording();
    control_.runAlert(alert, whileAlive([this](int) { control_.makeFirstResponder(FirstResponder::control); }));
}

void RecorderCocoa::tellOfSystem(const Shortcut& shortcut) {
    const auto text = [&](std::string_view key) { return recorderString(key, parts_.language); };
    const RecorderAlert alert{text(recorderKey::usedBySystem),
                              text(recorderKey::canBeChanged),
                              {text(recorderKey::ok), text(recorderKey::forceUseShortcut)}};
    endRecording();
    control_.runAlert(alert, whileAlive([this, shortcut](int response) {
                          control_.makeFirstResponder(FirstResponder::control);
                          if (response == alertResponse::second) save(shortcut);
                      }));
}

void RecorderCocoa::save(const Shortcut& shortcut) {
    showText(shortcut);
    control_.showCancelButton(true);
    parts_.shortcuts.setShortcut(shortcut, shortcutName_);
    if (onChange_) onChange_(shortcut);
    endRecording();
}

}  // namespace tarvix
