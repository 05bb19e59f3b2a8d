#include "display/DisplayEngine.h"

#include <algorithm>
#include <array>

#include "platform/Screens.h"
#include "platform/Workspace.h"

namespace tarvix {

namespace {

// The value of an attribute when it could be read and is of the kind expected.
template <class T>
std::optional<T> read(AccessibilityReads& reads, const UIElement& element, std::string_view name) {
    const AxResult<AxValue> result = reads.attribute(element, name);
    const T* value = result.ok() ? std::get_if<T>(&result.value) : nullptr;
    return value ? std::optional(*value) : std::nullopt;
}

template <class T>
std::optional<T> as(const AxValue& value) {
    const T* held = std::get_if<T>(&value);
    return held ? std::optional(*held) : std::nullopt;
}

std::optional<Screen> firstHolding(const std::vector<Screen>& screens, PanelPoint point) {
    const auto found =
        std::find_if(screens.begin(), screens.end(), [point](const Screen& screen) { return screen.contains(point); });
    return found == screens.end() ? std::nullopt : std::optional(*found);
}

// A window that may stand across two screens belongs to the one that holds the first of its corners to lie on any.
std::optional<Screen> screenOfSpanningWindow(const std::vector<Screen>& screens, const FocusedWindow& window) {
    const double left = window.minX, right = window.minX + window.width;
    const double top = window.maxY, bottom = window.maxY - window.height;
    for (const PanelPoint corner : {PanelPoint{left, top}, {right, top}, {left, bottom}, {right, bottom}})
        if (const auto screen = firstHolding(screens, corner)) return screen;
    return std::nullopt;
}

// A window that is shown on one screen only. A window with exactly a screen's frame has its top right corner on the
// screen's excluded right edge, so that only the comparison of frames finds it. Nothing for a window that straddles two
// screens: the one with the keyboard focus shows it.
std::optional<Screen> screenOfUndividedWindow(const std::vector<Screen>& screens, const FocusedWindow& window) {
    const PanelPoint left{window.minX, window.maxY};
    const PanelPoint right{window.minX + window.width, window.maxY};
    for (const Screen& screen : screens)
        if ((screen.contains(left) && screen.contains(right)) || screen.frame == window.frame()) return screen;
    const auto holdingLeft = firstHolding(screens, left);
    const auto holdingRight = firstHolding(screens, right);
    if (holdingLeft && holdingRight) return std::nullopt;
    return holdingLeft ? holdingLeft : holdingRight;
}

}  // namespace

DisplayEngine::DisplayEngine(const Platform& platform)
    : accessibility_(platform.accessibility),
      workspace_(platform.workspace),
      screens_(platform.screens),
      axEngine_(platform) {}

std::vector<Screen> DisplayEngine::screens() {
    std::vector<Screen> screens;
    for (const PanelRect& frame : screens_.frames()) screens.push_back({frame});
    return screens;
}

std::optional<Screen> DisplayEngine::firstScreen() {
    const std::vector<PanelRect> frames = screens_.frames();
    return frames.empty() ? std::nullopt : std::optional(Screen{frames.front()});
}

std::optional<Screen> DisplayEngine::mainScreen() {
    const std::optional<PanelRect> frame = screens_.mainFrame();
    return frame ? std::optional(Screen{*frame}) : std::nullopt;
}

bool DisplayEngine::screensHaveSeparateSpaces() { return screens_.haveSeparateSpaces(); }

FocusedMouse DisplayEngine::focusedMouse() {
    if (!cachedFocusedMouse) {
        const PanelPoint pointer = screens_.mouseLocation();
        cachedFocusedMouse = FocusedMouse{pointer.x, pointer.y};
    }
    return *cachedFocusedMouse;
}

std::optional<FocusedCaret> DisplayEngine::focusedCaret() {
    const auto element = read<UIElement>(accessibility_, accessibility_.systemWide(), ax::focusedUIElement);
    if (!element) return std::nullopt;
    const auto range = read<TextRange>(accessibility_, *element, ax::selectedTextRange);
    if (!range) return std::nullopt;
    const AxResult<AxValue> result = accessibility_.parameterizedAttribute(*element, ax::boundsForRange, *range);
    const auto bounds = result.ok() ? as<AxRect>(result.value) : std::nullopt;
    const auto first = firstScreen();
    if (!bounds || !first) return std::nullopt;
    return FocusedCaret{bounds->minX(), first->height() - bounds->minY()};
}

std::optional<FocusedInput> DisplayEngine::focusedInput() {
    if (cachedFocusedInput) return cachedFocusedInput;
    std::optional<UIElement> element =
        read<UIElement>(accessibility_, accessibility_.systemWide(), ax::focusedUIElement);
    const auto first = firstScreen();
    if (!element || !first) return std::nullopt;
    if (read<std::string>(accessibility_, *element, ax::role) == "AXTextArea") {
        element = read<UIElement>(accessibility_, *element, ax::parent);
        if (!element) return std::nullopt;
    }
    const auto position = read<AxPoint>(accessibility_, *element, ax::position);
    if (!position) return std::nullopt;
    cachedFocusedInput = FocusedInput{position->x, first->height() - position->y};
    return cachedFocusedInput;
}

std::optional<FocusedWindow> DisplayEngine::focusedWindow() {
    if (!cachedFocusedWindow) {
        const auto pid = axEngine_.focusedApplicationProcessIdentifier();
        if (pid) cachedFocusedWindow = readWindow(*pid, ax::focusedWindow);
    }
    return cachedFocusedWindow;
}

std::optional<FocusedWindow> DisplayEngine::mainWindow() {
    if (!cachedMainWindow) {
        const auto application = workspace_.frontmostApplication();
        if (application) cachedMainWindow = mainWindowOf(application->processIdentifier);
    }
    return cachedMainWindow;
}

std::optional<FocusedWindow> DisplayEngine::mainWindowOf(std::int32_t pid) { return readWindow(pid, ax::mainWindow); }

std::optional<FocusedWindow> DisplayEngine::readWindow(std::int32_t pid, std::string_view attribute) {
    const auto window = read<UIElement>(accessibility_, accessibility_.application(pid), attribute);
    if (!window) return std::nullopt;
    static constexpr std::array names = {ax::position, ax::size, ax::fullScreen};
    const AxResult<std::vector<AxValue>> values = accessibility_.attributes(*window, names);
    if (!values.ok()) return std::nullopt;
    const auto position = as<AxPoint>(values.value[0]);
    const auto size = as<Size>(values.value[1]);
    const auto first = firstScreen();
    if (!position || !size || !first) return std::nullopt;
    return FocusedWindow{
        windowNumber(*window).value_or(0), position->x, first->height() - position->y, size->width, size->height,
        as<bool>(values.value[2])};
}

std::optional<std::uint32_t> DisplayEngine::windowNumber(const UIElement& element) {
    return accessibility_.windowNumber(element);
}

std::optional<Screen> DisplayEngine::screenContaining(double x, double y) {
    if (cachedScreenForPoint) return cachedScreenForPoint;
    const std::vector<Screen> all = screens();
    cachedScreenForPoint = all.size() < 2 ? firstScreen() : firstHolding(all, {x, y});
    return cachedScreenForPoint;
}

std::optional<Screen> DisplayEngine::screenFor(const std::optional<FocusedWindow>& window) {
    if (cachedScreenForWindow) return cachedScreenForWindow;
    const std::vector<Screen> all = screens();
    if (all.size() < 2 || !window) {
        cachedScreenForWindow = firstScreen();
        return cachedScreenForWindow;
    }
    cachedScreenForWindow =
        screensHaveSeparateSpaces() ? screenOfUndividedWindow(all, *window) : screenOfSpanningWindow(all, *window);
    if (!cachedScreenForWindow) cachedScreenForWindow = mainScreen();
    return cachedScreenForWindow;
}

void DisplayEngine::resetCaches() {
    cachedFocusedMouse.reset();
    cachedFocusedInput.reset();
    cachedFocusedWindow.reset();
    cachedMainWindow.reset();
    cachedScreenForPoint.reset();
    cachedScreenForWindow.reset();
}

}  // namespace tarvix
