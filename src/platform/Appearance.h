// How the desktop looks at present: light or dark, its colours, and its scale.
#pragma once

#include <functional>
#include <optional>

#include "base/Subscription.h"
#include "platform/Panels.h"

namespace tarvix {

struct AppearanceValues {
    bool isDark = false;
    Color accent;
    Color selection;   // the ground of what is selected
    double scale = 1;  // pixels for a point: text of 16 points is 16 pixels high where it is 1
    friend bool operator==(const AppearanceValues&, const AppearanceValues&) = default;
};

// What one part of a desktop says of it; absent is what it doesn't say, or not in a way that makes sense.
struct AppearanceTold {
    std::optional<bool> isDark;
    std::optional<Color> accent, selection;
    friend bool operator==(const AppearanceTold&, const AppearanceTold&) = default;
};

// One that says something. Main thread; it answers from memory.
class AppearanceSource {
public:
    virtual ~AppearanceSource() = default;
    virtual AppearanceTold told() const = 0;
    [[nodiscard]] virtual Subscription onChange(std::function<void()> changed) = 0;
};

// All of them together. Main thread; the values are held, so that asking costs nothing.
class Appearance {
public:
    virtual ~Appearance() = default;
    virtual const AppearanceValues& values() const = 0;
    // The values are others than before.
    [[nodiscard]] virtual Subscription onChange(std::function<void()> changed) = 0;
};

}  // namespace tarvix
