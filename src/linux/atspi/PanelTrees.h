// The accessible trees of a panel, with the parts that other processes put into it.
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "linux/atspi/Applications.h"
#include "linux/atspi/Node.h"
#include "linux/x11/X11Windows.h"

namespace tarvix::atspi {

// Any thread. A panel's plugins and the icons of its tray are often other processes' (AtkPlug), which may put such
// parts into theirs: all are asked over the bus, each by its own name.
class PanelTrees {
public:
    explicit PanelTrees(Applications& applications) : applications_(applications) {}

    // The tree of each of these panels of one process; without nodes where it shows none. `embedded` are the windows
    // that others have put into each: a part that the panel has missed, as it does when it starts along with it, is
    // known by its window. What had arrived by the deadline stands. Who has let one pass is asked whether it is there
    // before anything else is asked of it.
    std::vector<NodeTree> fetch(std::int32_t pid, const std::vector<X11Window>& panels,
                                const std::vector<std::vector<X11Window>>& embedded, Clock::time_point deadline);

private:
    std::set<std::string> stillSilent();
    void fetchFrom(const Application& application, const std::vector<X11Window>& panels,
                   const std::vector<std::vector<X11Window>>& embedded, const std::set<std::string>& silent,
                   Clock::time_point deadline, std::vector<NodeTree>& trees);
    void noteSilent(const std::string& bus);

    Applications& applications_;
    std::mutex mutex_;
    std::set<std::string> silent_;  // bus names; guarded by mutex_
};

// The object that an embedded window stands for, of "name:path"; absent where that is something else.
std::optional<Reference> plugOf(const std::string& accessiblePath);

}  // namespace tarvix::atspi
