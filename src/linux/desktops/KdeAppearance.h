// The appearance of KDE Plasma.
#pragma once

#include <string_view>

#include "platform/Appearance.h"

namespace tarvix {

// From the file kdeglobals. Without an accent of the user's the scheme's colour of what is active stands for it.
AppearanceTold kdeAppearance(std::string_view kdeglobals);

}  // namespace tarvix
