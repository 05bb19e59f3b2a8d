// The geometry of the desktop, from the platform's screens, pointer and accessibility reads.
#pragma once

#include "ax/AXEngine2.h"
#include "display/DisplayEngineProtocol.h"
#include "platform/Platform.h"

namespace tarvix {

class DisplayEngine : public DisplayEngineProtocol {
public:
    explicit DisplayEngine(const Platform& platform);

    std::vector<Screen> screens() override;
    std::optional<Screen> firstScreen() override;
    std::optional<Screen> mainScreen() override;
    bool screensHaveSeparateSpaces() override;
    FocusedMouse focusedMouse() override;
    std::optional<FocusedCaret> focusedCaret() override;
    std::optional<FocusedInput> focusedInput() override;
    std::optional<FocusedWindow> focusedWindow() override;
    std::optional<FocusedWindow> mainWindow() override;
    std::optional<FocusedWindow> mainWindowOf(std::int32_t pid) override;
    std::optional<std::uint32_t> windowNumber(const UIElement& element) override;
    std::optional<Screen> screenContaining(double x, double y) override;
    std::optional<Screen> screenFor(const std::optional<FocusedWindow>& window) override;
    void resetCaches() override;

private:
    std::optional<FocusedWindow> readWindow(std::int32_t pid, std::string_view attribute);

    AccessibilityService& accessibility_;
    Workspace& workspace_;
    Screens& screens_;
    AXEngine2 axEngine_;
};

}  // namespace tarvix
