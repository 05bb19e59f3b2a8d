// One user-interface element of another application, as the system carries it: texts and geometry, read once.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "ax/AccessibilityElementRole.h"
#include "base/Geometry.h"
#include "platform/Accessibility.h"

namespace tarvix {

// A plain value without a handle to the live element: to act on it later is to find it again by its position. Texts are
// as the application gave them, neither trimmed nor made absent when empty; position and size are in accessibility
// coordinates.
struct AccessibilityElement {
    AccessibilityElementRole role = AccessibilityElementRole::someOtherShit;
    std::string roleDescription;
    std::optional<std::string> subrole;
    std::optional<std::string> label;  // the platform's description attribute
    std::optional<std::string> title;
    std::optional<std::string> help;
    AxPoint position;
    Size size;
    std::optional<std::string> value;
    std::optional<std::string> valueDescription;
    std::optional<std::string> placeholder;
    std::optional<Url> url;
    std::optional<std::string> identifier;

    AxRect frame() const { return {position, size}; }

    // All texts that a search looks at, absent ones as empty, with one blank between neighbours: seven blanks always.
    std::string searchableText() const;
    // The same without roleDescription and subrole: five blanks always.
    std::string fuzzySearchableText() const;
    // The element as a constructor call over several lines, to be pasted by a developer.
    std::string metadataDump() const;

    // Same role and same frame, whatever the texts: such elements are one element everywhere. A coordinate that is not
    // a number makes an element unequal to everything, itself included.
    friend bool operator==(const AccessibilityElement& a, const AccessibilityElement& b) {
        return a.role == b.role && a.position == b.position && a.size == b.size;
    }
};

}  // namespace tarvix

template <>
struct std::hash<tarvix::AccessibilityElement> {
    std::size_t operator()(const tarvix::AccessibilityElement& element) const;
};
