// Which processes run in one sandbox.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarvix::atspi {

// The instance of a Flatpak sandbox that a process runs in, the one that guards its door to the bus included. Absent
// outside of any, and when the process has gone. Any thread.
std::optional<std::string> flatpakInstance(std::int32_t pid);
// The same of the description that the sandbox holds.
std::optional<std::string> flatpakInstanceIn(std::string_view description);

}  // namespace tarvix::atspi
