// Controls that GTK makes of several objects, and people see as one.
#pragma once

#include "linux/atspi/Node.h"

namespace tarvix::atspi {

// A control gets the text that is written on it, where its name says something else, and loses the objects that only
// draw it: labels, pictures, the boxes around them, and a button that is all of it. Else what can be used on its own
// stays. A cell that is made of cells becomes a group of them.
void joinParts(NodeTree& tree, Toolkit toolkit);

}  // namespace tarvix::atspi
