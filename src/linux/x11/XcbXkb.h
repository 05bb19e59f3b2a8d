// xcb's header of the keyboard extension, which has a field of the name `explicit`.
#pragma once

#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
