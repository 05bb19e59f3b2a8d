// Which addresses an update may come from.
#pragma once

#include <optional>
#include <string_view>

#include "updates/UpdateRefusal.h"

namespace tarvix {

constexpr int kMostRedirects = 5;

// Absent when it is a whole HTTPS address of a host, without a user name, and a path that means the same to everybody:
// no step upwards, no encoded slash or control character.
std::optional<UpdateRefusal> refuseAddress(std::string_view address);

// `count` is this redirect's number, from 1 on; `target` is the whole address that it leads to.
std::optional<UpdateRefusal> refuseRedirect(std::string_view target, int count);

}  // namespace tarvix
