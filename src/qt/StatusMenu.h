// The menu of the status item, and what brings it up to date.
#pragma once

#include <functional>
#include <utility>

#include "platform/Menu.h"

namespace tarvix {

// Main thread.
class StatusMenu {
public:
    void set(Menu menu, std::function<void(Menu&)> needsUpdate) {
        menu_ = std::move(menu);
        needsUpdate_ = std::move(needsUpdate);
    }
    // As it is to be shown now.
    const Menu& refreshed() {
        if (needsUpdate_) needsUpdate_(menu_);
        return menu_;
    }

private:
    Menu menu_;
    std::function<void(Menu&)> needsUpdate_;
};

}  // namespace tarvix
