// The items of Plank, a dock that shows no accessible tree: by its own interface on the session bus.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "linux/atspi/PanelItems.h"
#include "linux/x11/X11Windows.h"

namespace tarvix::atspi {

// An item by the file that it stands for, and the middle of the dock's edge at which its tooltip would be.
struct PlankItem {
    enum class Edge : int { left = 0, right = 1, top = 2, bottom = 3 };  // of the screen, where the dock is

    std::string uri;
    AxPoint tip;
    Edge edge = Edge::bottom;
};

// What the running Plank tells; empty when it doesn't answer within a seventh of a second. What has no file, such as
// its clock, isn't told.
std::vector<PlankItem> readPlankItems();

// The items as they stand in the dock's windows, in the order of their places. Each is as wide as its distance from the
// next one, and reaches over the whole of what takes clicks. `nameOf` gives the name of a desktop file's id, or
// nothing.
std::vector<PanelItem> plankRow(const std::vector<PlankItem>& items, const std::vector<X11Window>& panels,
                                const std::function<std::string(std::string_view id)>& nameOf);

}  // namespace tarvix::atspi
