// What a handle of this service stands for.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "linux/atspi/Node.h"
#include "platform/Accessibility.h"

namespace tarvix::atspi {

class AtspiElement : public UIElement::Identity {
public:
    enum class Kind : std::uint8_t { systemWide, application, window, object };

    Kind kind = Kind::object;
    std::int32_t pid = -1;
    std::uint32_t window = 0;  // the X window that it is or lies in
    Reference reference;       // of an object
    bool synthetic = false;    // the text of the object rather than the object
    int node = -1;             // its place in the tree that it was read from; a hint for reads from that tree
    std::uint64_t tree = 0;    // the number of that tree

    bool equals(const Identity& other) const override {
        const auto& o = static_cast<const AtspiElement&>(other);
        return kind == o.kind && pid == o.pid && synthetic == o.synthetic &&
               (kind == Kind::object ? reference == o.reference : window == o.window);
    }
    std::size_t hash() const override {
        const std::size_t which = kind == Kind::object ? std::hash<std::string>{}(reference.bus + reference.path)
                                                       : static_cast<std::size_t>(window) << 8U;
        return which ^ static_cast<std::size_t>(pid) ^ static_cast<std::size_t>(kind);
    }
};

inline const AtspiElement& identityOf(const UIElement& element) {
    return static_cast<const AtspiElement&>(element.identity());
}

}  // namespace tarvix::atspi
