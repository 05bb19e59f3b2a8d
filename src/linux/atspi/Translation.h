// From the roles, states and fields of accessible objects to attribute names and values: the one table of both
// vocabularies.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "linux/atspi/Node.h"
#include "platform/Accessibility.h"

namespace tarvix::atspi {

// What the name of an object of this role stands for.
enum class NameIs : std::uint8_t { title, description, value };

struct RoleRow {
    Role role;
    std::string_view axRole;
    std::string_view subrole;  // empty: none
    NameIs nameIs;
};

const RoleRow& rowOf(Role role);

// The attribute "AXRole" of a node, its states considered.
std::string_view axRole(const Node& node);

// A text attribute, or a number, a boolean or a URL; `monostate` where the node has none. Positions, sizes and elements
// aren't asked of this function. An unknown name gives nothing at all.
std::optional<AxValue> translate(const Node& node, std::string_view attribute);

// Whether a structural node shows a text of its own that no child carries, so that the text needs an element to stand
// for it; `hasChildren`: some child of it shows.
bool needsTextElement(const Node& node, bool hasChildren);
// What such an element says.
std::string ownText(const Node& node);

// Whether a node of its role and place may show such a text.
bool isTextCarrier(const Node& node);

// What has to be read of a node of this role besides the fields that all have.
bool wantsText(Toolkit toolkit, const Node& node);
bool wantsValue(const Node& node);
bool wantsUri(Toolkit toolkit, const Node& node);

}  // namespace tarvix::atspi
