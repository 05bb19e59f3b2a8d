// A menu of ours that opens beside an icon, or at a point.
#pragma once

#include <QMenu>
#include <QRect>
#include <memory>

#include "platform/Menu.h"

namespace tarvix {

// Main thread. Actions run in a later pass of the loop, when the menu has closed.
class PopUpMenu {
public:
    // In root pixels. One that is open closes first.
    void open(const Menu& menu, const QRect& beside);
    void close();

private:
    std::unique_ptr<QMenu> menu_;
};

}  // namespace tarvix
