// Operations on texts that need Unicode's tables. All texts are UTF-8; bytes that aren't count as U+FFFD. Any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarvix {

// Takes the marks off letters: é becomes e, Å becomes A; case stays. What Unicode decomposes into a base and nonspacing
// marks loses the marks; a letter that is drawn with a stroke but has no decomposition (ø, ł) stays, and ı is not i.
std::string foldDiacritics(std::string_view text);

// Unicode's lower case, the same in every locale.
std::string lower(std::string_view text);

// The first letter of each word as a capital and the others small, the same in every locale.
std::string capitalized(std::string_view text);

// What two texts are compared in: folded, then lower-cased.
std::string normalForm(std::string_view text);

// Without white space at both ends: Unicode's space separators and the tab. Line ends are not among them.
std::string_view trimWhitespaces(std::string_view text);

// The characters as a reader counts them (extended grapheme clusters), as pieces of the text.
std::vector<std::string_view> graphemes(std::string_view text);

// The length in UTF-16 code units.
std::size_t utf16Length(std::string_view text);

}  // namespace tarvix
