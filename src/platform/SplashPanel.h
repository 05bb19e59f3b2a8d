// The panel that explains the accessibility privilege while it is missing.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string_view>

namespace tarvix {

enum class SplashAction : std::uint8_t { grantPrivileges, quit };

struct SplashButton {
    std::string_view title;
    SplashAction action;
    bool isDefault;  // Return presses it
};

// From top to bottom: the icon, the title, the text and the buttons, which take the full width. Lengths in points.
struct SplashContent {
    std::string_view icon, title;
    double spaceBelowTitle;
    std::string_view text;
    std::array<SplashButton, 2> buttons;
    double width, cornerRadius;
};

// Centred on the main screen, movable by its background, above the windows of applications; can't be closed by the
// user. Main thread.
class SplashPanel {
public:
    virtual ~SplashPanel() = default;
    // Replaces the whole content.
    virtual void setContent(const SplashContent& content, std::function<void(SplashAction)> pressed) = 0;
    virtual void orderFrontRegardless() = 0;
    virtual void orderOut() = 0;
};

}  // namespace tarvix
