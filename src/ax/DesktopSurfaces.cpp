// What can be searched besides the focused window: menu bar, status items, notifications, dock.
#include <algorithm>
#include <memory>
#include <numeric>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "ax/AXEngine2.h"
#include "platform/Screens.h"
#include "platform/Workspace.h"

namespace tarvix {

namespace {

using Elements = OrderedSet<AccessibilityElement>;

constexpr std::string_view kDock = "com.apple.dock";
constexpr std::string_view kNotifications = "com.apple.notificationcenterui";
constexpr int kStatusItemLayer = 25;
constexpr std::int32_t kNobody = -1;

std::optional<UIElement> elementUnder(AccessibilityReads& reads, const UIElement& element, std::string_view name) {
    AxResult<AxValue> read = reads.attribute(element, name);
    auto* held = read.ok() ? std::get_if<UIElement>(&read.value) : nullptr;
    return held ? std::optional(std::move(*held)) : std::nullopt;
}

// Empty where there is no list.
std::vector<UIElement> listUnder(AccessibilityReads& reads, const UIElement& element, std::string_view name) {
    AxResult<AxValue> read = reads.attribute(element, name);
    auto* list = read.ok() ? std::get_if<std::vector<UIElement>>(&read.value) : nullptr;
    return list ? std::move(*list) : std::vector<UIElement>();
}

// Those that can be read, with no question of what they are.
Elements recordsOf(AccessibilityReads& reads, const std::vector<UIElement>& elements) {
    Elements records;
    for (const UIElement& element : elements)
        if (auto record = AXEngine2::readElement(reads, element)) records.insert(std::move(*record));
    return records;
}

// Once each; in the order of the list, which decides between items at the same place.
std::vector<std::int32_t> ownersOfStatusItems(std::span<const WindowInfo> windowList) {
    std::vector<std::int32_t> owners;
    std::set<std::int32_t> seen;
    for (const WindowInfo& window : windowList) {
        const bool hostsStatusItems = window.layer == kStatusItemLayer && window.bounds.origin.x >= 0;
        if (hostsStatusItems && window.ownerPid != kNobody && seen.insert(window.ownerPid).second)
            owners.push_back(window.ownerPid);
    }
    return owners;
}

Elements fromLeftToRight(const Elements& elements) {
    std::vector<std::uint32_t> places(elements.size());
    std::iota(places.begin(), places.end(), 0U);
    std::stable_sort(places.begin(), places.end(),
                     [&](std::uint32_t a, std::uint32_t b) { return elements[a].position.x < elements[b].position.x; });
    return elements.subset(places);
}

std::optional<UIElement> firstApplication(AccessibilityService& service, Workspace& workspace,
                                          std::string_view bundleIdentifier) {
    const auto running = workspace.runningApplications(bundleIdentifier);
    return running.empty() ? std::nullopt : std::optional(service.application(running.front().processIdentifier));
}

}  // namespace

Elements AXEngine2::appMenuElements() const {
    const auto owner = workspace_->menuBarOwningApplication();
    if (!owner) return {};
    const UIElement application = service_->application(owner->processIdentifier);
    const std::unique_ptr<AccessibilityReads> reads = service_->readAhead(application);
    const std::optional<UIElement> menuBar = elementUnder(*reads, application, ax::menuBar);
    return menuBar ? recordsOf(*reads, listUnder(*reads, *menuBar, ax::children)) : Elements();
}

Elements AXEngine2::statusItemElements(std::span<const WindowInfo> windowList) const {
    Elements items;
    for (const std::int32_t owner : ownersOfStatusItems(windowList)) {
        const auto running = workspace_->runningApplication(owner);
        const std::string name = running && !running->localizedName.empty() ? running->localizedName + " " : "";
        const UIElement application = service_->application(owner);
        const std::unique_ptr<AccessibilityReads> reads = service_->readAhead(application);
        const std::optional<UIElement> bar = elementUnder(*reads, application, ax::extrasMenuBar);
        if (!bar) continue;
        for (const UIElement& child : listUnder(*reads, *bar, ax::children)) {
            std::optional<AccessibilityElement> item = readElement(*reads, child);
            if (!item) continue;
            // Asked anew for each: the screens may change meanwhile. A horizontal place is the same in both planes.
            const std::optional<PanelRect> screen = screens_->mainFrame();
            if (!screen || !(screen->minX() < item->position.x)) continue;
            item->roleDescription.insert(0, name);
            items.insert(std::move(*item));
        }
    }
    return fromLeftToRight(items);
}

Elements AXEngine2::notificationElements() const {
    const auto application = firstApplication(*service_, *workspace_, kNotifications);
    if (!application) return {};
    Elements found;
    for (const UIElement& window : listUnder(*service_->readAhead(*application), *application, ax::windows)) {
        const std::unique_ptr<AccessibilityReads> reads = service_->readAhead(window);
        const std::optional<AxRect> frame = readFrame(*reads, window);
        if (!frame) return {};
        found.unite(collectElements(*reads, window, *frame));
    }
    return found;
}

Elements AXEngine2::dockElements() const {
    const auto application = firstApplication(*service_, *workspace_, kDock);
    if (!application) return {};
    const std::unique_ptr<AccessibilityReads> reads = service_->readAhead(*application);
    const std::vector<UIElement> containers = listUnder(*reads, *application, ax::visibleChildren);
    if (containers.empty()) return {};
    return recordsOf(*reads, listUnder(*reads, containers.front(), ax::visibleChildren));
}

}  // namespace tarvix
