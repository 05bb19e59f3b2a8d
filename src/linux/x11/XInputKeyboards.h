// The keyboards of the X server, one by one.
#pragma once

#include <xcb/xinput.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <vector>

#include "linux/x11/X11Connection.h"

namespace tarvix {

// The devices behind the keyboard of the client's pointer. A device that somebody has grabbed is floating for as long,
// so floating keyboards count as physical ones.
struct XInputKeyboards {
    std::uint16_t master = 0;
    std::vector<std::uint16_t> physical;
    std::optional<std::uint16_t> xtest;  // where keys come from that programs post

    std::vector<std::uint16_t> all() const;
    friend bool operator==(const XInputKeyboards&, const XInputKeyboards&) = default;
};

// Whether the server has XInput 2.2 and XKB, which the grabs of single keyboards need. To be called once for each
// connection before any other request of the two.
bool startXInput(X11Connection& connection);

// One or two round trips.
XInputKeyboards readKeyboards(X11Connection& connection);

// The event as an XInput 2 one of some type, else null.
const xcb_ge_generic_event_t* asXInput(const X11Connection& connection, const xcb_generic_event_t& event,
                                       std::initializer_list<std::uint16_t> types);

}  // namespace tarvix
