// Texts of the system as Qt has them.
#pragma once

#include <QString>
#include <string_view>

namespace tarvix {

// `from` is UTF-8.
inline QString textOf(std::string_view from) {
    return QString::fromUtf8(from.data(), static_cast<qsizetype>(from.size()));
}

}  // namespace tarvix
