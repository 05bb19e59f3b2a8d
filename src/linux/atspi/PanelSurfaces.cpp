#include "linux/atspi/PanelSurfaces.h"

#include <algorithm>

#include "linux/atspi/Plank.h"
#include "linux/atspi/TreeReads.h"
#include "linux/x11/Panels.h"

namespace tarvix::atspi {

namespace {

constexpr Milliseconds kLimit{400};
constexpr std::string_view kPlank = "Plank", kXfcePanel = "Xfce4-panel";
constexpr int kContainer = 1;

// A tree of three levels: the window, the row, its elements.
Surface surfaceOfItems(std::int32_t pid, const X11Window& panel, std::vector<PanelItem> items) {
    WindowTree tree;
    tree.application.pid = pid;
    for (const int parent : {-1, 0}) {
        Node& node = tree.nodes.emplace_back();
        node.parent = parent;
        node.role = parent < 0 ? Role::frame : Role::menuBar;
        node.reference.path = "/row/" + std::to_string(panel.number);
        node.frame = panel.clickable;
        node.shows = true;
    }
    tree.nodes[0].children = {kContainer};
    for (PanelItem& item : items) {
        tree.nodes[kContainer].children.push_back(static_cast<int>(tree.nodes.size()));
        item.node.parent = kContainer;
        tree.nodes.push_back(std::move(item.node));
    }
    return {std::make_shared<TreeReads>(std::move(tree), panel), kContainer};
}

}  // namespace

DesktopEntries& PanelSurfaces::entries() {
    const std::lock_guard lock(mutex_);
    if (!entries_) entries_ = std::make_unique<DesktopEntries>();
    return *entries_;
}

std::vector<PanelItem> PanelSurfaces::itemsOf(std::int32_t pid, const std::vector<X11Window>& panels,
                                              std::vector<X11Window> clients) {
    std::vector<std::vector<X11Window>> embedded;
    for (const X11Window& panel : panels) embedded.push_back(windows_.embeddedIn(panel.number));
    std::vector<NodeTree> trees = trees_.fetch(pid, panels, embedded, Clock::now() + kLimit);
    const bool isXfce = panels.front().windowClass == kXfcePanel;
    PanelSurroundings around;
    around.clients = std::move(clients);
    around.isApplication = [this](const std::string& name) { return !name.empty() && entries().named(name); };
    around.notifiers = [this] { return notifiers_.items(); };
    if (isXfce && std::ranges::any_of(trees, hasNamelessButtons)) around.order = notifiers_.xfceOrder();
    std::vector<PanelItem> items;
    for (std::size_t i = 0; i < panels.size(); ++i) {
        const PanelSeen seen{panels[i], std::move(trees[i]), std::move(embedded[i])};
        std::ranges::move(panelItems(seen, around), std::back_inserter(items));
    }
    return items;
}

std::optional<Surface> PanelSurfaces::surfaceOf(std::int32_t pid, PanelRow row) {
    const std::vector<X11Window> windows = windows_.onScreen();
    std::vector<X11Window> panels = panelsThatShow(windows);
    std::erase_if(panels, [pid](const X11Window& each) { return each.pid != pid; });
    if (panels.empty()) return std::nullopt;
    std::vector<X11Window> clients = windows_.clients();
    const bool isDock = dockProcess(windows, clients) == pid;
    if (row == PanelRow::dock && !isDock) return std::nullopt;
    const auto nameOf = [this](std::string_view id) {
        const auto entry = entries().withId(id);
        return entry ? entry->name : std::string();
    };
    std::vector<PanelItem> items = panels.front().windowClass == kPlank ? plankRow(readPlankItems(), panels, nameOf)
                                                                        : itemsOf(pid, panels, std::move(clients));
    if (isDock) std::erase_if(items, [row](const PanelItem& item) { return item.row != row; });
    if (items.empty()) return std::nullopt;
    return surfaceOfItems(pid, panels.front(), std::move(items));
}

}  // namespace tarvix::atspi
