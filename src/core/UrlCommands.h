// What scripts, launchers and other programs ask for by an address of this program's scheme.
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "core/AppCore.h"

namespace tarvix {

// No address that anybody means is longer, in bytes.
inline constexpr std::size_t kLongestUrl = 8192;

// Acts on the first address alone: "tarvix://openTheInput", "tarvix://closeTheInput" or "tarvix://toggleTheInput",
// whatever follows these words. "with" in the query of the first and the last is the text to search for. Nothing
// happens while the program waits for the accessibility privilege, the first time or again, nor for what isn't an
// address (see UrlComponents) or is too long for one. Main thread.
void handleURLs(std::span<const std::string> urls, AppCore& core);

}  // namespace tarvix
