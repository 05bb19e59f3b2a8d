// Reads answered from a fetched tree.
#pragma once

#include <cstdint>
#include <memory>

#include "linux/atspi/AtspiElement.h"
#include "linux/atspi/WindowFetch.h"
#include "linux/x11/X11Windows.h"
#include "platform/Accessibility.h"

namespace tarvix::atspi {

// The reads of one walk over one tree, for one thread; the tree itself may be read by several. The window's own
// position and size are the X server's, with the open popups that hang out of it: a walk leaves out what lies outside
// of its window.
class TreeReads : public AccessibilityReads {
public:
    TreeReads(std::shared_ptr<const WindowTree> tree, X11Window window);
    TreeReads(WindowTree tree, X11Window window)
        : TreeReads(std::make_shared<const WindowTree>(std::move(tree)), std::move(window)) {}

    AxResult<AxValue> attribute(const UIElement& element, std::string_view name) override;
    AxResult<std::vector<AxValue>> attributes(const UIElement& element,
                                              std::span<const std::string_view> names) override;

    std::size_t calls() const { return tree_->calls; }
    // The handle of a node; the window's own for index 0.
    UIElement elementOf(int node) const;
    const NodeTree& nodes() const { return tree_->nodes; }
    bool holds(const UIElement& element) const { return nodeOf(element) != nullptr; }

private:
    const Node* nodeOf(const UIElement& element) const;
    AxResult<AxValue> read(const Node& node, std::string_view name) const;
    std::vector<UIElement> childrenOf(const Node& node) const;

    std::shared_ptr<const WindowTree> tree_;
    X11Window window_;
    std::uint64_t number_;
};

// The attributes of a window that the X server knows without asking its application; absent for any other.
std::optional<AxValue> windowAttribute(const X11Window& window, std::string_view name);

}  // namespace tarvix::atspi
