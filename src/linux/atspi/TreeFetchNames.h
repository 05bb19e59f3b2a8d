// What the parts of a tree's fetch have in common.
#pragma once

#include "base/Geometry.h"
#include "linux/atspi/Node.h"

namespace tarvix::atspi {

// Interfaces on the bus.
inline constexpr const char* kAccessible = "org.a11y.atspi.Accessible";
inline constexpr const char* kComponent = "org.a11y.atspi.Component";
inline constexpr const char* kProperties = "org.freedesktop.DBus.Properties";
inline constexpr const char* kText = "org.a11y.atspi.Text";

// Where nothing is cut off.
inline constexpr AxRect kEverywhere{{-1e6, -1e6}, {2e6, 2e6}};

inline bool isEmpty(RawBox box) { return box.width <= 0 || box.height <= 0; }

// In LibreOffice, whose other parts are drawn by itself.
inline bool isGtkPart(const Node& node) {
    const std::string* toolkit = node.attribute("toolkit");
    return toolkit && *toolkit == "gtk";
}

}  // namespace tarvix::atspi
