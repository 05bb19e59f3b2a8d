// The ordinary windows of this program, which the window manager treats like those of any other.
#pragma once

#include <QList>

class QWidget;

namespace tarvix {

// Those that show, in no order; without those that stay on top, the panels, menus and the like.
QList<QWidget*> ordinaryWindows();

// The one that activation is about: the one that the others wait for, one that stays on top and is no panel, an
// ordinary one. Null when none shows.
QWidget* frontWindow();

// Raises it and has it made the active one, as a task bar would: window managers that keep new windows from stealing
// the focus do this, from another workspace too.
void makeActive(QWidget& window);

}  // namespace tarvix
