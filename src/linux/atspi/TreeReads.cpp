#include "linux/atspi/TreeReads.h"

#include <atomic>

#include "linux/atspi/Translation.h"

namespace tarvix::atspi {

namespace {

std::uint64_t nextNumber() {
    static std::atomic<std::uint64_t> last = 0;
    return ++last;
}

bool isRows(std::string_view name) { return name == ax::visibleRows || name == ax::rows; }

bool isChildren(std::string_view name) {
    return name == ax::visibleChildren || name == ax::childrenInNavigationOrder || name == ax::children;
}

bool hasRows(const Node& node) {
    const std::string_view role = axRole(node);
    return role == "AXTable" || role == "AXOutline";
}

}  // namespace

std::optional<AxValue> windowAttribute(const X11Window& window, std::string_view name) {
    const AxRect visible = window.visible();
    if (name == ax::position) return visible.origin;
    if (name == ax::size) return visible.size;
    if (name == ax::title) return window.title;
    if (name == ax::fullScreen) return window.isFullScreen;
    return std::nullopt;
}

TreeReads::TreeReads(std::shared_ptr<const WindowTree> tree, X11Window window)
    : tree_(std::move(tree)), window_(std::move(window)), number_(nextNumber()) {}

UIElement TreeReads::elementOf(int node) const {
    auto identity = std::make_shared<AtspiElement>();
    const Node& of = tree_->nodes[static_cast<std::size_t>(node)];
    identity->kind = node == 0 ? AtspiElement::Kind::window : AtspiElement::Kind::object;
    identity->pid = window_.pid;
    identity->window = window_.number;
    identity->reference = of.reference;
    identity->synthetic = of.synthetic;
    identity->node = node;
    identity->tree = number_;
    return UIElement(std::move(identity));
}

const Node* TreeReads::nodeOf(const UIElement& element) const {
    const AtspiElement& identity = identityOf(element);
    if (identity.kind == AtspiElement::Kind::window && identity.window == window_.number && !tree_->nodes.empty())
        return &tree_->nodes.front();
    if (identity.tree != number_ || identity.node < 0) return nullptr;
    return &tree_->nodes[static_cast<std::size_t>(identity.node)];
}

std::vector<UIElement> TreeReads::childrenOf(const Node& node) const {
    std::vector<UIElement> children;
    children.reserve(node.children.size());
    for (const int child : node.children)
        if (tree_->nodes[static_cast<std::size_t>(child)].shows) children.push_back(elementOf(child));
    return children;
}

AxResult<AxValue> TreeReads::read(const Node& node, std::string_view name) const {
    const bool isWindow = &node == &tree_->nodes.front();
    if (isWindow && tree_->reach) {
        if (name == ax::position) return {AxStatus::success, tree_->reach->origin};
        if (name == ax::size) return {AxStatus::success, tree_->reach->size};
    }
    if (isWindow)
        if (std::optional<AxValue> known = windowAttribute(window_, name))
            return {AxStatus::success, std::move(*known)};
    if (name == ax::position) return {AxStatus::success, node.frame.origin};
    if (name == ax::size) return {AxStatus::success, node.frame.size};
    if (isRows(name)) {
        if (!hasRows(node)) return {AxStatus::attributeUnsupported, {}};
        return {AxStatus::success, childrenOf(node)};
    }
    if (isChildren(name)) return {AxStatus::success, childrenOf(node)};
    if (name == ax::parent) {
        if (node.parent < 0) return {AxStatus::noValue, {}};
        return {AxStatus::success, elementOf(node.parent)};
    }
    std::optional<AxValue> value = translate(node, name);
    if (!value) return {AxStatus::attributeUnsupported, {}};
    return {AxStatus::success, std::move(*value)};
}

AxResult<AxValue> TreeReads::attribute(const UIElement& element, std::string_view name) {
    const Node* node = nodeOf(element);
    if (!node) return {AxStatus::invalidElement, {}};
    return read(*node, name);
}

AxResult<std::vector<AxValue>> TreeReads::attributes(const UIElement& element,
                                                     std::span<const std::string_view> names) {
    const Node* node = nodeOf(element);
    if (!node) return {AxStatus::invalidElement, {}};
    AxResult<std::vector<AxValue>> result{AxStatus::success, {}};
    result.value.reserve(names.size());
    for (const std::string_view name : names) result.value.push_back(read(*node, name).value);
    return result;
}

}  // namespace tarvix::atspi
