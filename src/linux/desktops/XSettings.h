// The settings that a desktop hands to all programs on an X server.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>

#include "linux/desktops/GtkAppearance.h"

namespace tarvix {

using XSetting = std::variant<std::int32_t, std::string>;
using XSettings = std::map<std::string, XSetting, std::less<>>;

// From the property _XSETTINGS_SETTINGS. Colours are left out, since nobody sends any; what follows a setting that
// can't be read is lost.
XSettings xSettings(std::string_view bytes);

// What they say of GTK's theme.
GtkChoice gtkChoice(const XSettings& settings);

}  // namespace tarvix
