#include "ax/AXEngine2.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/Workspace.h"

namespace tarvix {

namespace {

using Role = AccessibilityElementRole;

// A set of roles, as bits.
constexpr std::uint32_t roles(std::initializer_list<Role> members) {
    std::uint32_t bits = 0;
    for (const Role role : members) bits |= 1U << static_cast<unsigned>(role);
    return bits;
}
constexpr bool isIn(std::uint32_t set, Role role) { return (set >> static_cast<unsigned>(role) & 1U) != 0; }

// Structure: never kept itself.
constexpr std::uint32_t nonTargetRoles =
    roles({Role::column, Role::group, Role::heading, Role::list, Role::opaqueProviderGroup, Role::outline, Role::row,
           Role::scrollArea, Role::scrollBar, Role::splitGroup, Role::splitter, Role::table, Role::tabGroup,
           Role::toolbar, Role::webArea, Role::window});
// With two children or more these stand in for it.
constexpr std::uint32_t splitWhenManyChildrenRoles = roles({Role::button, Role::textArea});
// With fewer than two children the walk doesn't go below.
constexpr std::uint32_t leafWhenFewChildrenRoles = roles({Role::button});
// The walk never goes below.
constexpr std::uint32_t opaqueRoles = roles({Role::comboBox, Role::link});

// A browser's address field is left out of every search.
constexpr std::string_view kAddressField = "WEB_BROWSER_ADDRESS_AND_SEARCH_FIELD";

// The order of the fields in a read of an element.
constexpr auto kElementAttributes = std::to_array<std::string_view>(
    {ax::role, ax::roleDescription, ax::subrole, ax::description, ax::title, ax::help, ax::position, ax::size,
     ax::value, ax::valueDescription, ax::placeholderValue, ax::url, ax::identifier});

std::optional<std::string> text(AxValue& value) {
    if (auto* held = std::get_if<std::string>(&value)) return std::move(*held);
    return std::nullopt;
}

Role roleOf(const AxValue& value) {
    const auto* name = std::get_if<std::string>(&value);
    return accessibilityElementRoleFromRawValue(name ? std::string_view(*name) : std::string_view())
        .value_or(Role::someOtherShit);
}

// A number counts if it is a whole one.
std::optional<std::string> valueText(AxValue& value) {
    if (auto held = text(value)) return held;
    if (const auto* integer = std::get_if<std::int64_t>(&value)) return std::to_string(*integer);
    if (const auto* truth = std::get_if<bool>(&value)) return *truth ? "1" : "0";
    constexpr double limit = 9'223'372'036'854'775'808.0;  // the first number that no longer fits
    if (const auto* number = std::get_if<double>(&value);
        number && *number >= -limit && *number < limit && std::trunc(*number) == *number)
        return std::to_string(static_cast<std::int64_t>(*number));
    return std::nullopt;
}

AxRect frameOf(const AxValue& position, const AxValue& size) {
    AxRect frame;
    if (const auto* point = std::get_if<AxPoint>(&position)) frame.origin = *point;
    if (const auto* extent = std::get_if<Size>(&size)) frame.size = *extent;
    return frame;
}

std::optional<AxRect> scrollAreaAround(AccessibilityReads& reads, const UIElement& textArea) {
    const AxResult<AxValue> parent = reads.attribute(textArea, ax::parent);
    const auto* element = parent.ok() ? std::get_if<UIElement>(&parent.value) : nullptr;
    if (!element || AXEngine2::readRole(reads, *element) != Role::scrollArea) return std::nullopt;
    return AXEngine2::readFrame(reads, *element);
}

std::vector<UIElement> listOf(AxResult<AxValue>& result) {
    auto* list = result.ok() ? std::get_if<std::vector<UIElement>>(&result.value) : nullptr;
    return list ? std::move(*list) : std::vector<UIElement>();
}

bool isKept(const AccessibilityElement& record, std::size_t children) {
    return !isIn(nonTargetRoles, record.role) && (!isIn(splitWhenManyChildrenRoles, record.role) || children < 2) &&
           record.identifier != kAddressField;
}

bool isGoneBelow(const AccessibilityElement& record, std::size_t children) {
    return children > 0 && !isIn(opaqueRoles, record.role) &&
           (!isIn(leafWhenFewChildrenRoles, record.role) || children >= 2);
}

// The walk below one element. A child that can't be read ends its row of siblings, and nothing else.
void collect(AccessibilityReads& reads, const UIElement& element, AxRect frame,
             OrderedSet<AccessibilityElement>& result) {
    std::optional<AccessibilityElement> record = AXEngine2::readElement(reads, element);
    if (!record) return;
    const std::vector<UIElement> children = AXEngine2::readChildren(reads, *record, element);
    const bool goesBelow = isGoneBelow(*record, children.size());
    if (isKept(*record, children.size())) result.insert(std::move(*record));
    if (!goesBelow) return;
    for (const UIElement& child : children) {
        const std::optional<Role> role = AXEngine2::readRole(reads, child);
        if (!role) return;
        const std::optional<AxRect> childFrame = AXEngine2::readFrame(reads, child);
        if (!childFrame) return;
        if (!intersects(*childFrame, frame)) continue;
        if (childFrame->height() <= 1.0 && role != Role::group) continue;
        if (child == element) continue;
        collect(reads, child, frame, result);
    }
}

}  // namespace

std::optional<AccessibilityElement> AXEngine2::readElement(AccessibilityReads& reads, const UIElement& element) {
    AxResult<std::vector<AxValue>> read = reads.attributes(element, kElementAttributes);
    if (!read.ok() || read.value.size() != kElementAttributes.size()) return std::nullopt;
    std::vector<AxValue>& values = read.value;
    AccessibilityElement record;
    record.role = roleOf(values[0]);
    record.roleDescription = text(values[1]).value_or("");
    record.subrole = text(values[2]);
    record.label = text(values[3]);
    record.title = text(values[4]);
    record.help = text(values[5]);
    record.value = valueText(values[8]);
    record.valueDescription = text(values[9]);
    record.placeholder = text(values[10]);
    if (auto* url = std::get_if<Url>(&values[11])) record.url = std::move(*url);
    record.identifier = text(values[12]);
    const std::optional<AxRect> around =
        record.role == Role::textArea ? scrollAreaAround(reads, element) : std::nullopt;
    const AxRect frame = around ? *around : frameOf(values[6], values[7]);
    record.position = frame.origin;
    record.size = frame.size;
    return record;
}

std::optional<AccessibilityElementRole> AXEngine2::readRole(AccessibilityReads& reads,
                                                            const std::optional<UIElement>& element) {
    if (!element) return std::nullopt;
    const AxResult<AxValue> role = reads.attribute(*element, ax::role);
    if (!role.ok() || !std::holds_alternative<std::string>(role.value)) return std::nullopt;
    return roleOf(role.value);
}

std::optional<AxRect> AXEngine2::readFrame(AccessibilityReads& reads, const std::optional<UIElement>& element) {
    if (!element) return std::nullopt;
    static constexpr std::array<std::string_view, 2> names = {ax::position, ax::size};
    const AxResult<std::vector<AxValue>> read = reads.attributes(*element, names);
    if (!read.ok() || read.value.size() != names.size()) return std::nullopt;
    return frameOf(read.value[0], read.value[1]);
}

std::optional<std::int32_t> AXEngine2::focusedApplicationProcessIdentifier() const {
    const AxResult<AxValue> focused = service_->attribute(service_->systemWide(), ax::focusedApplication);
    if (focused.status != AxStatus::success && focused.status != AxStatus::noValue) return std::nullopt;
    const auto* application = std::get_if<UIElement>(&focused.value);
    if (!application) {
        // Somebody always has the focus; a service that says otherwise is broken beyond going on.
        std::fputs("big issue: no focused application\n", stderr);
        std::abort();
    }
    const std::optional<std::int32_t> pid = service_->pid(*application);
    return pid == -1 ? std::nullopt : pid;
}

std::optional<UIElement> AXEngine2::windowToWalk(std::int32_t processIdentifier) const {
    const UIElement application = service_->application(processIdentifier);
    const auto frontmost = workspace_->frontmostApplication();
    const std::optional<std::string> bundle = frontmost ? frontmost->bundleIdentifier : std::nullopt;
    const bool isOurs = bundle && *bundle == workspace_->ownBundleIdentifier();
    const AxResult<AxValue> read = service_->attribute(application, isOurs ? ax::mainWindow : ax::focusedWindow);
    const auto* window = read.ok() ? std::get_if<UIElement>(&read.value) : nullptr;
    if (!window) return std::nullopt;
    if (bundle == "com.apple.finder") {  // its desktop is a window too, one without a title
        const AxResult<AxValue> title = service_->attribute(*window, ax::title);
        if (!title.ok() || std::holds_alternative<std::monostate>(title.value)) return std::nullopt;
    }
    return *window;
}

OrderedSet<AccessibilityElement> AXEngine2::frontmostWindowElements(std::int32_t processIdentifier) const {
    const std::optional<UIElement> window = windowToWalk(processIdentifier);
    if (!window) return {};
    const std::unique_ptr<AccessibilityReads> reads = service_->readAhead(*window);
    const std::optional<AxRect> frame = readFrame(*reads, *window);
    if (!frame) return {};
    return collectElements(*reads, *window, *frame);
}

OrderedSet<AccessibilityElement> AXEngine2::collectElements(AccessibilityReads& reads, const UIElement& element,
                                                            AxRect frame) {
    OrderedSet<AccessibilityElement> result;
    collect(reads, element, frame, result);
    return result;
}

std::vector<UIElement> AXEngine2::readChildren(AccessibilityReads& reads, const AccessibilityElement& record,
                                               const UIElement& element) {
    if (record.role == Role::table || record.role == Role::outline) {
        AxResult<AxValue> rows = reads.attribute(element, ax::visibleRows);
        // Only an application that has no visible rows to tell at present is asked for all of them.
        if (rows.status == AxStatus::noValue) rows = reads.attribute(element, ax::rows);
        return listOf(rows);
    }
    AxResult<AxValue> visible = reads.attribute(element, ax::visibleChildren);
    if (visible.ok()) {
        const auto* list = std::get_if<std::vector<UIElement>>(&visible.value);
        if (!list || !list->empty()) return listOf(visible);
    }
    AxResult<AxValue> all = reads.attribute(element, ax::childrenInNavigationOrder);
    return listOf(all);
}

}  // namespace tarvix
