// Colours as the files of desktops write them.
#pragma once

#include <optional>
#include <string_view>

#include "platform/Panels.h"

namespace tarvix {

// "61,174,233", which may have an opacity behind it, or "#3daee9". Absent for anything else.
std::optional<Color> colorOfText(std::string_view text);

// Whether a ground of this colour makes a dark appearance.
bool isDarkGround(Color color);

}  // namespace tarvix
