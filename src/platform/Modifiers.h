// The carbon coding of modifiers, in which hot keys are kept, and its conversion from and to the coding of events.
#pragma once

#include <array>
#include <cstdint>

#include "platform/Events.h"

namespace tarvix {

namespace carbonModifier {
inline constexpr std::uint32_t command = 0x100;
inline constexpr std::uint32_t shift = 0x200;
inline constexpr std::uint32_t option = 0x800;
inline constexpr std::uint32_t control = 0x1000;
}  // namespace carbonModifier

// Both ways carry these four bits and drop every other.
struct ModifierTransformer {
    static constexpr std::uint32_t carbonFlags(std::uint64_t eventFlags) {
        std::uint32_t carbon = 0;
        for (const Pair& pair : pairs) carbon |= (eventFlags & pair.event) ? pair.carbon : 0;
        return carbon;
    }
    static constexpr std::uint64_t eventFlags(std::uint64_t carbonFlags) {
        std::uint64_t event = 0;
        for (const Pair& pair : pairs) event |= (carbonFlags & pair.carbon) ? pair.event : 0;
        return event;
    }

private:
    struct Pair {
        std::uint64_t event;
        std::uint32_t carbon;
    };
    static constexpr std::array<Pair, 4> pairs = {{
        {eventFlag::command, carbonModifier::command},
        {eventFlag::shift, carbonModifier::shift},
        {eventFlag::option, carbonModifier::option},
        {eventFlag::control, carbonModifier::control},
    }};
};

}  // namespace tarvix
