#include "simulated/SimulatedAccessibility.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace tarvix {

class SimulatedAccessibility::Identity : public UIElement::Identity {
public:
    explicit Identity(Id id) : id_(id) {}

    Id id() const { return id_; }
    bool equals(const UIElement::Identity& other) const override {
        return static_cast<const Identity&>(other).id_ == id_;
    }
    std::size_t hash() const override { return std::hash<Id>{}(id_); }

private:
    Id id_;
};

// Reads that fetch nothing ahead.
class SimulatedAccessibility::Onward : public AccessibilityReads {
public:
    explicit Onward(AccessibilityReads& service) : service_(service) {}

    AxResult<AxValue> attribute(const UIElement& element, std::string_view name) override {
        return service_.attribute(element, name);
    }
    AxResult<std::vector<AxValue>> attributes(const UIElement& element,
                                              std::span<const std::string_view> names) override {
        return service_.attributes(element, names);
    }

private:
    AccessibilityReads& service_;
};

namespace {

constexpr std::int64_t applicationOfProcess0 = -(std::int64_t{1} << 32);

bool isRows(std::string_view name) { return name == ax::visibleRows || name == ax::rows; }

bool contains(AxRect frame, AxPoint point) {
    return point.x >= frame.minX() && point.x < frame.maxX() && point.y >= frame.minY() && point.y < frame.maxY();
}

std::string described(const std::string& role, const std::string& title) {
    return title.empty() ? role : "'" + title + "'";
}

}  // namespace

SimulatedAccessibility::SimulatedAccessibility(Journal& journal, Faults& faults) : journal_(journal), faults_(faults) {
    nodes_[0].role = "AXSystemWide";
    setFocusedApplication(std::nullopt);
    setFocusedElement(std::nullopt);
}

SimulatedAccessibility::Id SimulatedAccessibility::idOf(const UIElement& element) {
    return static_cast<const Identity&>(element.identity()).id();
}

SimulatedAccessibility::Id SimulatedAccessibility::idOfApplication(std::int32_t pid) {
    return applicationOfProcess0 - pid;
}

UIElement SimulatedAccessibility::handle(Id id) { return UIElement(std::make_shared<Identity>(id)); }

std::vector<UIElement> SimulatedAccessibility::handles(const std::vector<Id>& ids) {
    std::vector<UIElement> all;
    all.reserve(ids.size());
    for (const Id id : ids) all.push_back(handle(id));
    return all;
}

// --- Stating the desktop.

SimulatedAccessibility::Node& SimulatedAccessibility::applicationNode(std::int32_t pid) {
    const auto [found, isNew] = nodes_.try_emplace(idOfApplication(pid));
    Node& application = found->second;
    if (isNew) {
        application.pid = pid;
        application.role = "AXApplication";
        for (const std::string_view name : {ax::focusedWindow, ax::mainWindow})
            application.attributes[std::string(name)] = {AxStatus::noValue, {}};
    }
    return application;
}

SimulatedAccessibility::Id SimulatedAccessibility::insert(Id parent, std::int32_t pid,
                                                          const SimulatedElement& element) {
    const Id id = ++lastId_;
    Node& made = nodes_[id];
    made.parent = parent;
    made.pid = pid;
    made.role = element.role;
    made.title = element.title;
    made.frame = element.frame;
    made.actions = element.actions;
    for (const auto& [name, value] : element.attributes) made.attributes[name] = {AxStatus::success, value};
    for (const SimulatedElement& child : element.children) {
        const Id childId = insert(id, pid, child);
        made.children.push_back(childId);
    }
    return id;
}

UIElement SimulatedAccessibility::addApplication(std::int32_t pid) {
    const std::lock_guard lock(mutex_);
    applicationNode(pid);
    return handle(idOfApplication(pid));
}

UIElement SimulatedAccessibility::addWindow(std::int32_t pid, const SimulatedElement& window,
                                            std::uint32_t windowNumber) {
    const std::lock_guard lock(mutex_);
    Node& application = applicationNode(pid);
    const Id id = insert(idOfApplication(pid), pid, window);
    nodes_.at(id).windowNumber = windowNumber;
    if (windowsAmong(application.children).empty())
        for (const std::string_view name : {ax::focusedWindow, ax::mainWindow})
            application.attributes[std::string(name)] = {AxStatus::success, handle(id)};
    application.children.push_back(id);
    windows_.insert(windows_.begin(), id);
    return handle(id);
}

UIElement SimulatedAccessibility::add(const UIElement& parent, const SimulatedElement& element) {
    const std::lock_guard lock(mutex_);
    Node& above = node(parent);
    const Id id = insert(idOf(parent), above.pid, element);
    above.children.push_back(id);
    return handle(id);
}

UIElement SimulatedAccessibility::child(const UIElement& parent, std::size_t n) const {
    const std::lock_guard lock(mutex_);
    return handle(nodes_.at(idOf(parent)).children.at(n));
}

UIElement SimulatedAccessibility::titled(std::string_view title) const {
    const std::lock_guard lock(mutex_);
    const auto found =
        std::find_if(nodes_.begin(), nodes_.end(), [title](const auto& each) { return each.second.title == title; });
    if (found == nodes_.end()) throw std::out_of_range("no element is titled '" + std::string(title) + "'");
    return handle(found->first);
}

void SimulatedAccessibility::erase(Id id) {
    const auto children = nodes_.at(id).children;
    for (const Id childId : children) erase(childId);
    nodes_.erase(id);
    std::erase(windows_, id);
}

void SimulatedAccessibility::remove(const UIElement& element) {
    const std::lock_guard lock(mutex_);
    const Id parent = node(element).parent;
    if (const auto above = nodes_.find(parent); above != nodes_.end())
        std::erase(above->second.children, idOf(element));
    erase(idOf(element));
}

void SimulatedAccessibility::setFocusedApplication(std::optional<std::int32_t> pid) {
    set(systemWide(), ax::focusedApplication, application(pid.value_or(0)));
}

void SimulatedAccessibility::setFocusedElement(const std::optional<UIElement>& element) {
    if (element)
        set(systemWide(), ax::focusedUIElement, *element);
    else
        setStatus(systemWide(), ax::focusedUIElement, AxStatus::noValue);
}

void SimulatedAccessibility::setOnApplication(std::int32_t pid, std::string_view name,
                                              const std::optional<UIElement>& window) {
    const UIElement owner = addApplication(pid);
    if (window)
        set(owner, name, *window);
    else
        setStatus(owner, name, AxStatus::noValue);
}

void SimulatedAccessibility::setFocusedWindow(std::int32_t pid, const std::optional<UIElement>& window) {
    setOnApplication(pid, ax::focusedWindow, window);
}

void SimulatedAccessibility::setMainWindow(std::int32_t pid, const std::optional<UIElement>& window) {
    setOnApplication(pid, ax::mainWindow, window);
}

void SimulatedAccessibility::set(const UIElement& element, std::string_view name, AxValue value) {
    const std::lock_guard lock(mutex_);
    node(element).attributes.insert_or_assign(std::string(name),
                                              AxResult<AxValue>{AxStatus::success, std::move(value)});
}

void SimulatedAccessibility::setStatus(const UIElement& element, std::string_view name, AxStatus status) {
    const std::lock_guard lock(mutex_);
    node(element).attributes.insert_or_assign(std::string(name), AxResult<AxValue>{status, {}});
}

// --- Breaking it.

void SimulatedAccessibility::failNthRead(const UIElement& element, int n, AxStatus status) {
    const std::lock_guard lock(mutex_);
    node(element).failures.push_back({n, status});
}

void SimulatedAccessibility::failReads(const UIElement& element, AxStatus status) { failNthRead(element, 0, status); }

void SimulatedAccessibility::mendReads() {
    const std::lock_guard lock(mutex_);
    for (auto& [id, node] : nodes_) node.failures.clear();
}

void SimulatedAccessibility::quit(std::int32_t pid) {
    const std::lock_guard lock(mutex_);
    if (nodes_.contains(idOfApplication(pid))) erase(idOfApplication(pid));
    hanging_.erase(pid);
}

void SimulatedAccessibility::hang(std::int32_t pid, bool hangs) {
    const std::lock_guard lock(mutex_);
    if (hangs)
        hanging_.insert(pid);
    else
        hanging_.erase(pid);
}

AxStatus SimulatedAccessibility::strike(std::string_view operation, Id id) {
    if (faults_.strike(operation)) return AxStatus::cannotComplete;
    if (!trusted) return AxStatus::apiDisabled;
    const auto found = nodes_.find(id);
    if (found == nodes_.end()) return id < 0 ? AxStatus::cannotComplete : AxStatus::invalidElement;
    return hanging_.contains(found->second.pid) ? AxStatus::cannotComplete : AxStatus::success;
}

AxStatus SimulatedAccessibility::strikeRead(std::string_view operation, const UIElement& element,
                                            std::vector<std::string> names) {
    reads_.push_back({element, std::move(names)});
    const AxStatus status = strike(operation, idOf(element));
    if (status != AxStatus::success) return status;
    for (Failure& failure : node(element).failures) {
        if (failure.reads == 0) return failure.status;
        if (failure.reads > 0 && --failure.reads == 0) {
            failure.reads = -1;
            return failure.status;
        }
    }
    return AxStatus::success;
}

// --- What has been asked.

std::vector<SimulatedAccessibility::Read> SimulatedAccessibility::reads() const {
    const std::lock_guard lock(mutex_);
    return reads_;
}

void SimulatedAccessibility::forgetReads() {
    const std::lock_guard lock(mutex_);
    reads_.clear();
    readsAhead_ = 0;
}

std::size_t SimulatedAccessibility::readsOf(const UIElement& element) const {
    const std::lock_guard lock(mutex_);
    return static_cast<std::size_t>(
        std::count_if(reads_.begin(), reads_.end(), [&](const Read& read) { return read.element == element; }));
}

std::size_t SimulatedAccessibility::readsAhead() const {
    const std::lock_guard lock(mutex_);
    return readsAhead_;
}

// --- The service.

UIElement SimulatedAccessibility::systemWide() { return handle(0); }

UIElement SimulatedAccessibility::application(std::int32_t pid) { return handle(idOfApplication(pid)); }

std::unique_ptr<AccessibilityReads> SimulatedAccessibility::readAhead(const UIElement&) {
    const std::lock_guard lock(mutex_);
    ++readsAhead_;
    return std::make_unique<Onward>(*this);
}

AxResult<AxValue> SimulatedAccessibility::ordinaryValue(const Node& node, std::string_view name) {
    const auto text = [](const std::string& given) {
        return given.empty() ? AxResult<AxValue>{AxStatus::attributeUnsupported, {}}
                             : AxResult<AxValue>{AxStatus::success, given};
    };
    if (name == ax::role) return text(node.role);
    if (name == ax::title) return text(node.title);
    if (name == ax::position) return {AxStatus::success, node.frame.origin};
    if (name == ax::size) return {AxStatus::success, node.frame.size};
    if (name == ax::parent && node.parent != 0) return {AxStatus::success, handle(node.parent)};
    if (name == ax::visibleChildren || name == ax::childrenInNavigationOrder || name == ax::children ||
        (isRows(name) && (node.role == "AXTable" || node.role == "AXOutline")))
        return {AxStatus::success, handles(node.children)};
    return {AxStatus::attributeUnsupported, {}};
}

AxResult<AxValue> SimulatedAccessibility::valueOf(Id id, std::string_view name) const {
    const Node& of = nodes_.at(id);
    const auto stated = of.attributes.find(name);
    if (stated != of.attributes.end()) return stated->second;
    return id < 0 && name == ax::windows ? AxResult<AxValue>{AxStatus::success, handles(windowsAmong(of.children))}
                                         : ordinaryValue(of, name);
}

std::vector<SimulatedAccessibility::Id> SimulatedAccessibility::windowsAmong(const std::vector<Id>& ids) const {
    std::vector<Id> windows;
    std::copy_if(ids.begin(), ids.end(), std::back_inserter(windows),
                 [&](Id each) { return nodes_.at(each).windowNumber.has_value(); });
    return windows;
}

AxResult<AxValue> SimulatedAccessibility::attribute(const UIElement& element, std::string_view name) {
    const std::lock_guard lock(mutex_);
    const AxStatus status = strikeRead("attribute", element, {std::string(name)});
    if (status != AxStatus::success) return {status, {}};
    return valueOf(idOf(element), name);
}

AxResult<std::vector<AxValue>> SimulatedAccessibility::attributes(const UIElement& element,
                                                                  std::span<const std::string_view> names) {
    const std::lock_guard lock(mutex_);
    const AxStatus status = strikeRead("attributes", element, {names.begin(), names.end()});
    if (status != AxStatus::success) return {status, {}};
    AxResult<std::vector<AxValue>> result{AxStatus::success, {}};
    for (const std::string_view name : names) {
        AxResult<AxValue> value = valueOf(idOf(element), name);
        result.value.push_back(value.ok() ? std::move(value.value) : AxValue());
    }
    return result;
}

AxResult<AxValue> SimulatedAccessibility::parameterizedAttribute(const UIElement& element, std::string_view name,
                                                                 const AxValue&) {
    const std::lock_guard lock(mutex_);
    const AxStatus status = strikeRead("parameterizedAttribute", element, {std::string(name)});
    if (status != AxStatus::success) return {status, {}};
    return valueOf(idOf(element), name);
}

SimulatedAccessibility::Id SimulatedAccessibility::innermostAt(Id id, AxPoint point) const {
    const Node& of = nodes_.at(id);
    const auto inner = std::find_if(of.children.rbegin(), of.children.rend(),
                                    [&](Id each) { return contains(nodes_.at(each).frame, point); });
    return inner == of.children.rend() ? id : innermostAt(*inner, point);
}

AxResult<std::optional<UIElement>> SimulatedAccessibility::elementAt(AxPoint point) {
    const std::lock_guard lock(mutex_);
    const auto window =
        std::find_if(windows_.begin(), windows_.end(), [&](Id each) { return contains(nodes_.at(each).frame, point); });
    const AxStatus status = strike("elementAt", window == windows_.end() ? 0 : *window);
    if (status != AxStatus::success) return {status, std::nullopt};
    if (window == windows_.end()) return {AxStatus::noValue, std::nullopt};
    return {AxStatus::success, handle(innermostAt(*window, point))};
}

AxStatus SimulatedAccessibility::perform(const UIElement& element, std::string_view action) {
    const std::lock_guard lock(mutex_);
    const AxStatus status = strike("perform", idOf(element));
    if (status != AxStatus::success) return status;
    const Node& of = node(element);
    if (std::find(of.actions.begin(), of.actions.end(), action) == of.actions.end()) return AxStatus::actionUnsupported;
    journal_.note(Topic::accessibility, std::string(action) + " on " + described(of.role, of.title));
    return AxStatus::success;
}

AxStatus SimulatedAccessibility::setAttribute(const UIElement& element, std::string_view name, const AxValue& value) {
    if (onSetAttribute) onSetAttribute(element, name, value);
    const std::lock_guard lock(mutex_);
    const AxStatus status = strike("setAttribute", idOf(element));
    if (status != AxStatus::success) return status;
    const auto* truth = std::get_if<bool>(&value);
    const bool isSwitch = name == ax::enhancedUserInterface || name == ax::manualAccessibility;
    if (idOf(element) >= 0 || !isSwitch || !truth) return AxStatus::attributeUnsupported;
    journal_.note(Topic::accessibility, std::string(name) + " of process " + std::to_string(node(element).pid) +
                                            (*truth ? " set" : " cleared"));
    return AxStatus::success;
}

std::optional<std::int32_t> SimulatedAccessibility::pid(const UIElement& element) {
    const std::lock_guard lock(mutex_);
    if (faults_.strike("pid") || !trusted) return std::nullopt;
    const Id id = idOf(element);
    if (id < 0) return static_cast<std::int32_t>(applicationOfProcess0 - id);
    const auto found = nodes_.find(id);
    return id == 0 || found == nodes_.end() ? std::nullopt : std::optional(found->second.pid);
}

std::optional<std::uint32_t> SimulatedAccessibility::windowNumber(const UIElement& window) {
    const std::lock_guard lock(mutex_);
    if (strike("windowNumber", idOf(window)) != AxStatus::success) return std::nullopt;
    return node(window).windowNumber;
}

bool SimulatedAccessibility::isTrusted() { return trusted; }

void SimulatedAccessibility::askForTrust() {
    journal_.note(Topic::accessibility, "asked for the accessibility privilege");
}

}  // namespace tarvix
