#include "updates/UpdateSignature.h"

#include <sodium.h>

#include <cstddef>

namespace tarvix {

namespace {

static_assert(std::tuple_size_v<UpdateKey> == crypto_sign_PUBLICKEYBYTES);
static_assert(std::tuple_size_v<UpdateSignature> == crypto_sign_BYTES);

// Chooses the fastest implementation for this processor; without it the plain one serves.
void initialise() { [[maybe_unused]] static const int done = sodium_init(); }

template <std::size_t Size>
std::optional<std::array<std::uint8_t, Size>> bytesFrom(std::string_view base64) {
    std::array<std::uint8_t, Size> bytes{};
    std::size_t count = 0;
    const int failure = sodium_base642bin(bytes.data(), bytes.size(), base64.data(), base64.size(), nullptr, &count,
                                          nullptr, sodium_base64_VARIANT_ORIGINAL);
    return failure == 0 && count == Size ? std::optional(bytes) : std::nullopt;
}

}  // namespace

// A point of small order would take signatures that nobody made.
std::optional<UpdateKey> updateKeyFrom(std::string_view base64) {
    initialise();
    const auto key = bytesFrom<std::tuple_size_v<UpdateKey>>(base64);
    return key && crypto_core_ed25519_is_valid_point(key->data()) == 1 ? key : std::nullopt;
}

std::optional<UpdateSignature> updateSignatureFrom(std::string_view base64) {
    return bytesFrom<std::tuple_size_v<UpdateSignature>>(base64);
}

bool isSignedBy(const UpdateKey& key, const UpdateSignature& signature, std::span<const std::uint8_t> file) {
    initialise();
    return crypto_sign_verify_detached(signature.data(), file.data(), file.size(), key.data()) == 0;
}

}  // namespace tarvix
