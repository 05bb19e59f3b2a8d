// The program's icon, for where no icon theme is at hand.
#pragma once

#include <QPixmap>

namespace tarvix {

// A square of this many pixels.
QPixmap programIcon(int pixels);

}  // namespace tarvix
