// The colours of the desktop that markers may have.
#pragma once

#include "platform/Appearance.h"

namespace tarvix {

//   found text        no desktop has a colour for it, so it is ours: yellow
//   accent            the settings portal's; the "selected" ground of the GTK theme that the X settings name; KDE's
//   accent;
//                     that of GTK's own settings; the highlight of Qt's palette
//   selected control  the ground of selected text: that of the GTK theme or of KDE; where only an accent is known a
//   pale
//                     tint of it; the highlight of Qt's palette
// Which source decides is the appearance's business; it holds the values, so that each drawing can ask anew.
class QtSystemColors : public SystemColors {
public:
    explicit QtSystemColors(const Appearance& appearance) : appearance_(appearance) {}

    // The yellow of a marker pen, which stands out on light and on dark windows and from every accent in use.
    Color findHighlight() override { return {1, 1, 0, 1}; }
    Color controlAccent() override { return appearance_.values().accent; }
    Color selectedControl() override { return appearance_.values().selection; }

private:
    const Appearance& appearance_;
};

}  // namespace tarvix
