#include "updates/UpdateAddress.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

namespace tarvix {

namespace {

constexpr std::string_view kScheme = "https://";
constexpr std::size_t kLongest = 2048;

std::string lowerCase(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c | 0x20);
    return result;
}

bool hasScheme(std::string_view address) {
    const std::size_t colon = address.find(':');
    return colon != std::string_view::npos && colon > 0 && colon < address.find_first_of("/?#");
}

// Printable, and without what different readers of addresses take differently.
bool isPlain(std::string_view address) {
    return std::ranges::all_of(address, [](char c) {
        return c > ' ' && c < 0x7f && std::string_view("\\\"<>^`{|}").find(c) == std::string_view::npos;
    });
}

bool hidesCharacters(std::string_view path) {
    static constexpr auto kHidden = std::to_array<std::string_view>({"%2f", "%5c", "%2e", "%7f", "%25"});
    return std::ranges::any_of(kHidden, [&](auto hidden) { return path.find(hidden) != std::string_view::npos; }) ||
           path.find("%0") != std::string_view::npos || path.find("%1") != std::string_view::npos;
}

bool climbs(std::string_view path) {
    while (!path.empty()) {
        const std::size_t slash = std::min(path.find('/'), path.size());
        if (const auto step = path.substr(0, slash); step == "." || step == "..") return true;
        path.remove_prefix(std::min(slash + 1, path.size()));
    }
    return false;
}

}  // namespace

std::optional<UpdateRefusal> refuseAddress(std::string_view address) {
    if (address.size() > kLongest || !isPlain(address) || !hasScheme(address)) return UpdateRefusal::hostileAddress;
    const std::string known = lowerCase(address);
    if (!known.starts_with(kScheme)) return UpdateRefusal::insecureAddress;
    const std::string_view rest = std::string_view(known).substr(kScheme.size());
    const std::string_view host = rest.substr(0, rest.find_first_of("/?#"));
    const std::string_view path = rest.substr(host.size(), rest.find_first_of("?#") - host.size());
    if (host.empty() || host.starts_with(':') || host.find_first_of("@%") != std::string_view::npos ||
        hidesCharacters(path) || climbs(path))
        return UpdateRefusal::hostileAddress;
    return std::nullopt;
}

std::optional<UpdateRefusal> refuseRedirect(std::string_view target, int count) {
    if (count > kMostRedirects) return UpdateRefusal::tooManyRedirects;
    const auto refusal = refuseAddress(target);
    return refusal == UpdateRefusal::insecureAddress ? UpdateRefusal::insecureRedirect : refusal;
}

}  // namespace tarvix
