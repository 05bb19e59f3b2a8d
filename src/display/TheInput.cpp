#include "display/TheInput.h"

#include <algorithm>

#include "base/Text.h"
#include "display/FocusedApplication.h"
#include "display/InputPlacement.h"
#include "keys/KeyCombinationAdaptor.h"
#include "platform/Events.h"
#include "platform/NotificationCenter.h"
#include "platform/UserDefaults.h"

namespace tarvix {

namespace {

constexpr double kLeastWidth = 32;
constexpr double kLeastTextSize = 1;
constexpr double kMostPoints = 400;

// What the settings' file says may be anything, and a panel that is larger than every screen takes all memory.
InputLook drawable(const InputLook& wanted) {
    return {.textSize = std::clamp(wanted.textSize, kLeastTextSize, kMostPoints),
            .backgroundOpacity = std::clamp(wanted.backgroundOpacity, 0.0, 1.0),
            .cornerRadius = std::clamp(wanted.cornerRadius, 0.0, kMostPoints),
            .borderThickness = std::clamp(wanted.borderThickness, 0.0, kMostPoints)};
}

}  // namespace

TheInput::TheInput(const Platform& platform, DisplayEngineProtocol& displayEngine, QuerySession& session,
                   const Sauce& sauce)
    : platform_(platform),
      displayEngine_(displayEngine),
      session_(session),
      sauce_(sauce),
      inputPosition_(platform.userDefaults, {"inputPosition", InputPosition::aboveWindow}),
      dontFlushTheInput_(platform.userDefaults, {"dontFlushTheInput", false}),
      inputTextSize_(platform.userDefaults, {"inputTextSize", InputLook().textSize}),
      inputBackgroundOpacity_(platform.userDefaults, {"inputBackgroundOpacity", InputLook().backgroundOpacity}),
      inputCornerRadius_(platform.userDefaults, {"inputCornerRadius", InputLook().cornerRadius}),
      inputBorderThickness_(platform.userDefaults, {"inputBorderThickness", InputLook().borderThickness}),
      panel_(platform.panels.makeInputPanel()) {
    applyLook();
    stayInSight();
    subscriptions_.push_back(platform.userDefaults.onChange([this](std::string_view) { applyLook(); }));
    subscriptions_.push_back(panel_->onMeasured([this](double width) { widthChanged(width); }));
    subscriptions_.push_back(panel_->onTextChanged([this](const std::string& text) { valueChanged(text); }));
    subscriptions_.push_back(panel_->onResignKey([this] { close(); }));
    subscriptions_.push_back(panel_->onCancel([this] { close(); }));
}

// The text is selected and the notification goes out also when the panel has stayed hidden: whoever waits for it learns
// that a session has begun.
void TheInput::open() {
    placeAndShow(Keyboard::taken);
    if (dontFlushTheInput_.value()) selectText();
    appeared();
}

// No text is selected: the key for that would go to whoever has the keyboard.
void TheInput::openPlaced(const std::string& text) {
    setValue(text);
    placeAndShow(Keyboard::left);
    appeared();
}

void TheInput::openInPlace(const std::string& text) {
    setValue(text);
    stayInSight();
    show(Keyboard::left);
    appeared();
}

void TheInput::show(Keyboard keyboard) {
    if (keyboard == Keyboard::taken) {
        panel_->makeKeyAndOrderFront();
    } else {
        panel_->orderFrontRegardless();
    }
    visibilityChanged_();
}

void TheInput::appeared() { platform_.notificationCenter.post(inputNotification::didAppear); }

// The text of the last search is there again; selected, it goes with the first character that is typed. The panel sends
// itself the key for that, as the field has the only selection there is.
void TheInput::selectText() {
    const KeyCombination commandA(Key::a, {.command = true});
    for (const KeyEvent& event : KeyCombinationAdaptor::toCGEvents(commandA, sauce_)) platform_.events.post(event);
}

void TheInput::close() {
    if (!isVisible()) return;
    session_.endSession();
    panel_->orderOut();
    visibilityChanged_();
    if (!dontFlushTheInput_.value()) setValue("");
    platform_.notificationCenter.post(inputNotification::didDisappear);
}

void TheInput::placeAndShow(Keyboard keyboard) {
    stayInSight();
    if (place(inputPosition_.value())) show(keyboard);
}

bool TheInput::place(InputPosition position) {
    switch (position) {
        case InputPosition::fixed:
            return true;
        case InputPosition::aboveWindow:
        case InputPosition::aboveInput:
            return placeAtWindow(position);
        case InputPosition::aboveMouse:
            placeAtMouse();
            return true;
    }
    return true;
}

bool TheInput::placeAtWindow(InputPosition position) {
    const auto application = focusedApplication(platform_);
    if (!application) return false;
    const auto window = windowOf(*application, displayEngine_);
    if (position == InputPosition::aboveInput) {
        const auto input = displayEngine_.focusedInput();
        const auto screen = input && window ? displayEngine_.screenFor(window) : std::nullopt;
        if (screen) moveTo(topLeft(*input), *screen);
    } else {
        const auto screen = window ? displayEngine_.screenFor(window) : std::nullopt;
        if (screen) moveTo(topLeft(*window), *screen);
    }
    return true;
}

void TheInput::placeAtMouse() {
    const FocusedMouse mouse = displayEngine_.focusedMouse();
    if (const auto screen = displayEngine_.screenContaining(mouse.minX, mouse.maxY)) moveTo(topLeft(mouse), *screen);
}

void TheInput::moveTo(PanelPoint objectTopLeft, const Screen& screen) {
    const Size size = panel_->frame().size;
    panel_->setFrame({clampedOrigin(objectTopLeft, size, screen), size});
}

// Monitors come, go and change their sizes. Its place is kept by the pixels that it is on, which are counted from the
// upper edge; in panel coordinates they are others when the first screen is of another height.
void TheInput::stayInSight() {
    const std::vector<Screen> screens = displayEngine_.screens();
    if (screens.empty()) return;
    const PanelRect frame = panel_->frame();
    const Screen& first = screens.front();
    PanelPoint origin = frame.origin;
    if (origin == corner_) {
        origin = corner_ = first.frame.origin;
    } else {
        origin.y += first.height() - firstScreenHeight_;
    }
    firstScreenHeight_ = first.height();
    origin = visibleOrigin({origin, frame.size}, screens);
    if (origin != frame.origin) panel_->setFrame({origin, frame.size});
}

void TheInput::setShowPreloading(bool shows) {
    showPreloading_ = shows;
    panel_->setShowsProgress(shows);
}

void TheInput::setValue(const std::string& text) {
    value_ = text;
    panel_->setText(text);
}

void TheInput::enter(const std::string& text) {
    if (text == value_) return;
    setValue(text);
    valueChanged(text);
}

// No debounce: the markers follow each key press before the next event is handled.
void TheInput::valueChanged(const std::string& text) {
    value_ = text;
    const OrderedSet<AccessibilityElement> elements = session_.filteredElements(trimWhitespaces(value_));
    session_.removeTargets();
    session_.showTargets(elements);
}

void TheInput::widthChanged(double width) {
    const PanelRect frame = panel_->frame();
    panel_->setFrame({frame.origin, {std::max(width, kLeastWidth), frame.size.height}});
}

void TheInput::applyLook() {
    const InputLook look = drawable({.textSize = inputTextSize_.value(),
                                     .backgroundOpacity = inputBackgroundOpacity_.value(),
                                     .cornerRadius = inputCornerRadius_.value(),
                                     .borderThickness = inputBorderThickness_.value()});
    if (look != look_) panel_->setLook(look);
    look_ = look;
}

}  // namespace tarvix
