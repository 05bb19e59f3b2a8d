// The texts of the settings, in which backticks mark code, as Qt shows them.
#pragma once

#include <QString>
#include <string_view>

namespace tarvix {

QString plainText(std::string_view text);  // without the backticks
QString richText(std::string_view text);
inline bool hasCode(std::string_view text) { return text.find('`') != std::string_view::npos; }

}  // namespace tarvix
