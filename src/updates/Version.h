// Versions of this program, as texts with an order.
#pragma once

#include <compare>
#include <string_view>

namespace tarvix {

// Begins with a digit and holds nothing but letters, digits and ". - + ~ _", 64 of them at most: it may stand in the
// name of a file.
bool isVersion(std::string_view text);

// Numbers are compared as numbers and words as words, place by place; what stands between them only separates. A word
// makes a pre-release: 1.0-beta.2 < 1.0-rc < 1.0 = 1.0.0 < 1.0.1. Any texts.
std::weak_ordering compareVersions(std::string_view left, std::string_view right);

}  // namespace tarvix
