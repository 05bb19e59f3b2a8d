// Addresses: what is one, what it asks for, and how a text is put into one.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvix {

struct QueryItem {
    std::string name;                  // without percent signs
    std::optional<std::string> value;  // the same; absent without an equals sign
    friend bool operator==(const QueryItem&, const QueryItem&) = default;
};

// An absolute address. Any thread.
class UrlComponents {
public:
    // Nothing for a text that isn't an address: without a scheme, with characters that have to be written with percent
    // signs, or with a percent sign that no two hexadecimal digits follow. Letters of any script may stand as they are,
    // as UTF-8. Nor is it one when what stands behind its percent signs isn't UTF-8 or has control characters: no
    // person means them, and nobody would see them.
    static std::optional<UrlComponents> parse(std::string_view text);

    // In their order; empty without a query. A plus sign is no blank.
    const std::vector<QueryItem>& queryItems() const { return queryItems_; }

private:
    UrlComponents() = default;

    std::vector<QueryItem> queryItems_;
};

// With percent signs for whatever may not stand in a query. An ampersand may, and stays. Nothing for a text that isn't
// UTF-8.
std::optional<std::string> encodedForQuery(std::string_view text);

}  // namespace tarvix
