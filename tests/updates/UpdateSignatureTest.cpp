#include <gtest/gtest.h>

#include <numeric>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tests/updates/SigningKey.h"
#include "updates/UpdateSignature.h"

namespace tarvix {
namespace {

std::span<const std::uint8_t> bytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

TEST(UpdateSignature, HoldsForTheVeryFileAndKeyAlone) {
    const SigningKey key, otherKey;
    const auto signature = updateSignatureFrom(key.sign("a file"));
    ASSERT_TRUE(signature);
    EXPECT_TRUE(isSignedBy(*updateKeyFrom(key.publicKey()), *signature, bytes("a file")));
    EXPECT_FALSE(isSignedBy(*updateKeyFrom(otherKey.publicKey()), *signature, bytes("a file")));
    for (const std::string_view other : {"", "a fil", "a file ", "A file"})
        EXPECT_FALSE(isSignedBy(*updateKeyFrom(key.publicKey()), *signature, bytes(other))) << other;
}

TEST(UpdateSignature, HoldsForNothingOnceOneBitHasChanged) {
    const SigningKey key;
    const auto signature = updateSignatureFrom(key.sign("a file"));
    ASSERT_TRUE(signature);
    for (std::size_t i = 0; i < signature->size() * 8; ++i) {
        UpdateSignature changed = *signature;
        changed[i / 8] = static_cast<std::uint8_t>(changed[i / 8] ^ (1U << (i % 8)));
        EXPECT_FALSE(isSignedBy(*updateKeyFrom(key.publicKey()), changed, bytes("a file"))) << i;
    }
}

// Of RFC 8032, section 7.1, test 2: that we and others mean the same.
TEST(UpdateSignature, IsTheEd25519OfEverybody) {
    const auto key = updateKeyFrom("PUAXw+hDiVqStwqnTRt+vJyYLM8uxJaMwM1V8Sr0Zgw=");
    const auto signature =
        updateSignatureFrom("kqAJqfDUyrhyDoILX2QlQKKye1QWUD+Ps3YiI+vbadoIWsHkPhWZbkWPNhPQ8R2MOHsurrQwKu6wDSkWErsMAA==");
    ASSERT_TRUE(key && signature);
    EXPECT_TRUE(isSignedBy(*key, *signature, bytes("\x72")));
}

TEST(UpdateKey, IsAPointOfTheCurveInBase64) {
    const std::string key = SigningKey().publicKey();
    EXPECT_TRUE(updateKeyFrom(key));
    for (const std::string& text :
         {std::string(), std::string("not a key"), key.substr(1), key + key, key.substr(0, 43), key + "\n", " " + key,
          // All zeros and one: both of small order.
          std::string("AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA="),
          std::string("AQAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA=")})
        EXPECT_FALSE(updateKeyFrom(text)) << text;
}

TEST(UpdateSignature, IsSixtyFourBytesInBase64) {
    const std::string signature = SigningKey().sign("x");
    EXPECT_TRUE(updateSignatureFrom(signature));
    for (const std::string& text : {std::string(), std::string("!"), signature.substr(4), signature + "AAAA",
                                    signature.substr(0, 86), SigningKey().publicKey()})
        EXPECT_FALSE(updateSignatureFrom(text)) << text;
}

}  // namespace
}  // namespace tarvix
