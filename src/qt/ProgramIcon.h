// The program's icon, for where no icon theme is at hand.
#pragma once

#include <QIcon>
#include <QPixmap>

namespace tarvix {

// A square of this many pixels.
QPixmap programIcon(int pixels);
// In the sizes that window managers and task bars show.
QIcon programIcon();

}  // namespace tarvix
