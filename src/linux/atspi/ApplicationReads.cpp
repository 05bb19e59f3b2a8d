#include "linux/atspi/ApplicationReads.h"

#include <algorithm>

#include "linux/atspi/AtspiElement.h"

namespace tarvix::atspi {

AxResult<AxValue> ApplicationReads::ofApplication(std::string_view name) {
    if (name == ax::windows) return {AxStatus::success, sources_.windows()};
    if (name != ax::menuBar && name != ax::extrasMenuBar && name != ax::visibleChildren)
        return {AxStatus::attributeUnsupported, {}};
    const std::optional<Surface> surface = sources_.surface(name);
    if (!surface) return {AxStatus::noValue, {}};
    surfaces_.push_back(*surface);
    const UIElement container = surface->reads->elementOf(surface->container);
    if (name == ax::visibleChildren) return {AxStatus::success, std::vector<UIElement>{container}};
    return {AxStatus::success, container};
}

AxResult<AxValue> ApplicationReads::attribute(const UIElement& element, std::string_view name) {
    if (identityOf(element).kind == AtspiElement::Kind::application) return ofApplication(name);
    const auto surface = std::ranges::find_if(surfaces_, [&](const Surface& s) { return s.reads->holds(element); });
    if (surface == surfaces_.end()) return {AxStatus::invalidElement, {}};
    return surface->reads->attribute(element, name);
}

AxResult<std::vector<AxValue>> ApplicationReads::attributes(const UIElement& element,
                                                            std::span<const std::string_view> names) {
    const auto surface = std::ranges::find_if(surfaces_, [&](const Surface& s) { return s.reads->holds(element); });
    if (surface == surfaces_.end()) return {AxStatus::invalidElement, {}};
    return surface->reads->attributes(element, names);
}

}  // namespace tarvix::atspi
