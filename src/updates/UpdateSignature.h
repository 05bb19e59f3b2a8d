// Ed25519: whether a file is one that the holder of the key has released.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace tarvix {

using UpdateKey = std::array<std::uint8_t, 32>;
using UpdateSignature = std::array<std::uint8_t, 64>;

// From base64, padded; absent for everything that isn't a public key.
std::optional<UpdateKey> updateKeyFrom(std::string_view base64);
std::optional<UpdateSignature> updateSignatureFrom(std::string_view base64);

// Any thread.
bool isSignedBy(const UpdateKey& key, const UpdateSignature& signature, std::span<const std::uint8_t> file);

}  // namespace tarvix
