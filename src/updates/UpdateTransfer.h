// How much of a file may arrive.
#pragma once

#include <cstdint>
#include <optional>

#include "updates/UpdateRefusal.h"

namespace tarvix {

constexpr std::uint64_t kLargestFeed = std::uint64_t{1024} * 1024;

// A feed tells no length: any is right up to the limit.
constexpr std::optional<UpdateRefusal> refuseFeed(std::uint64_t received) {
    return received > kLargestFeed ? std::optional(UpdateRefusal::feedTooLarge) : std::nullopt;
}

// At any time: what is too much is known at once.
constexpr std::optional<UpdateRefusal> refuseMore(std::uint64_t told, std::uint64_t received) {
    return received > told ? std::optional(UpdateRefusal::oversized) : std::nullopt;
}

// When no more comes.
constexpr std::optional<UpdateRefusal> refuseEnd(std::uint64_t told, std::uint64_t received) {
    return received < told ? std::optional(UpdateRefusal::truncated) : refuseMore(told, received);
}

}  // namespace tarvix
