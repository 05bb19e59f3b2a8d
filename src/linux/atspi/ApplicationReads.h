// Reads of what an application shows besides the contents of its windows.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "linux/atspi/TreeReads.h"
#include "platform/Accessibility.h"

namespace tarvix::atspi {

// One row of elements on the desktop: a menu bar, a tray, a dock.
struct Surface {
    std::shared_ptr<TreeReads> reads;
    int container = 0;  // the node whose children the row is
};

// For one thread. A surface is fetched when it is first asked for.
class ApplicationReads : public AccessibilityReads {
public:
    struct Sources {
        // For ax::menuBar, ax::extrasMenuBar and ax::visibleChildren, which holds the dock's row of items; absent where
        // the application has no such surface, or doesn't answer.
        std::function<std::optional<Surface>(std::string_view attribute)> surface;
        std::function<std::vector<UIElement>()> windows;
    };
    explicit ApplicationReads(Sources sources) : sources_(std::move(sources)) {}

    AxResult<AxValue> attribute(const UIElement& element, std::string_view name) override;
    AxResult<std::vector<AxValue>> attributes(const UIElement& element,
                                              std::span<const std::string_view> names) override;

private:
    AxResult<AxValue> ofApplication(std::string_view name);

    Sources sources_;
    std::vector<Surface> surfaces_;
};

}  // namespace tarvix::atspi
