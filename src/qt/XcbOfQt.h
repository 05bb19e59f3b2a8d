// Qt's own connection to the X server: what is asked there comes after what Qt has asked before.
#pragma once

#include <xcb/xcb.h>

#include <string_view>

namespace tarvix {

// Null without an application, or on another windowing system.
xcb_connection_t* connectionOfQt();

xcb_atom_t atomOf(xcb_connection_t* connection, std::string_view name);

}  // namespace tarvix
