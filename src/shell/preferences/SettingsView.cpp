#include "shell/preferences/SettingsView.h"

namespace tarvix {

std::vector<Tab> settingsView() {
    return {
        {"General", "gearshape", generalPane()},  {"Search", "magnifyingglass", searchPane()},
        {"Looks", "mouth", looksPane()},          {"Position", "mappin", positionPane()},
        {"Extra", "wand.and.stars", extraPane()},
    };
}

}  // namespace tarvix
