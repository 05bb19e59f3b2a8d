// How the panels show in this program's accessible tree.
#pragma once

namespace tarvix {

// A screen reader finds The Input, a dialog with a field, and nothing of the panels that are only looked at: they would
// be windows without content, and coming and going would be told. To be called before the first panel is made.
void describePanelsToScreenReaders();

}  // namespace tarvix
