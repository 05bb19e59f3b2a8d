// What a person sees in a panel, told apart by what it is for.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "linux/atspi/Node.h"
#include "linux/atspi/TrayNames.h"
#include "linux/x11/X11Windows.h"

namespace tarvix::atspi {

// Everything in a panel is in one of two rows, and nothing is in both. The dock's row holds the buttons of the open
// windows and the launchers of the panel that is the desktop's dock. The tray's row holds all the rest: the icons of
// the tray, clock, menus, pager, indicators; and in a panel that isn't the dock the buttons and launchers too.
enum class PanelRow : std::uint8_t { tray, dock };

struct PanelItem {
    Node node;  // without children; its frame in root pixels, cut to the panel
    PanelRow row = PanelRow::tray;
};

struct PanelSeen {
    X11Window window;
    NodeTree nodes;  // as fetched; empty where the panel's program shows no tree
    std::vector<X11Window> embedded;
};

// What is known of the desktop around.
struct PanelSurroundings {
    std::vector<X11Window> clients;  // all windows that may have a button
    std::function<bool(const std::string& name)> isApplication = [](const std::string&) { return false; };
    std::function<std::vector<NotifierItem>()> notifiers = [] { return std::vector<NotifierItem>(); };
    std::optional<TrayOrder> order;
};

// Whether some of its buttons need to be named by the items of the tray.
bool hasNamelessButtons(const NodeTree& nodes);

// The items of one panel. In a panel without a tree the tray's icons and the buttons of windows are still found, by the
// windows of the one and by what the other's panel notes at its windows.
std::vector<PanelItem> panelItems(const PanelSeen& panel, const PanelSurroundings& around);

}  // namespace tarvix::atspi
