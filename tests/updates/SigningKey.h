// A key that releases are signed with, made for one test.
#pragma once

#include <sodium.h>

#include <array>
#include <string>
#include <string_view>

namespace tarvix {

class SigningKey {
public:
    SigningKey() { crypto_sign_keypair(public_.data(), secret_.data()); }

    // Both in base64.
    std::string publicKey() const { return base64(public_); }
    std::string sign(std::string_view file) const {
        std::array<unsigned char, crypto_sign_BYTES> signature{};
        crypto_sign_detached(signature.data(), nullptr, reinterpret_cast<const unsigned char*>(file.data()),
                             file.size(), secret_.data());
        return base64(signature);
    }

private:
    template <class Bytes>
    static std::string base64(const Bytes& bytes) {
        std::string text(sodium_base64_ENCODED_LEN(bytes.size(), sodium_base64_VARIANT_ORIGINAL), '\0');
        sodium_bin2base64(text.data(), text.size(), bytes.data(), bytes.size(), sodium_base64_VARIANT_ORIGINAL);
        text.pop_back();  // the NUL that the function writes
        return text;
    }

    std::array<unsigned char, crypto_sign_PUBLICKEYBYTES> public_{};
    std::array<unsigned char, crypto_sign_SECRETKEYBYTES> secret_{};
};

}  // namespace tarvix
