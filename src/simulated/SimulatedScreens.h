// The screens and the pointer, as the test has stated them.
#pragma once

#include "platform/Screens.h"

namespace tarvix {

class SimulatedScreens : public Screens {
public:
    std::vector<PanelRect> frames() override { return screens; }
    std::optional<PanelRect> mainFrame() override { return main; }
    bool haveSeparateSpaces() override { return separateSpaces; }
    PanelPoint mouseLocation() override { return pointer; }

    // One screen, or none.
    void setOnly(std::optional<PanelRect> screen) {
        screens.clear();
        if (screen) screens.push_back(*screen);
        main = screen;
    }
    double firstHeight() const { return screens.empty() ? 0 : screens.front().height(); }

    std::vector<PanelRect> screens = {{{0, 0}, {1600, 1000}}};
    std::optional<PanelRect> main = PanelRect{{0, 0}, {1600, 1000}};
    bool separateSpaces = false;
    PanelPoint pointer = {800, 500};
};

}  // namespace tarvix
