#include <gtest/gtest.h>
#include <unistd.h>

#include "linux/atspi/Sandbox.h"

namespace tarvix::atspi {
namespace {

TEST(Sandbox, TheInstanceStandsInTheSandboxsDescription) {
    EXPECT_EQ(
        flatpakInstanceIn("[Application]\nname=org.example.Heath\n\n[Instance]\ninstance-id=1764\nbranch=stable\n"),
        "1764");
    EXPECT_EQ(flatpakInstanceIn("[Instance]\ninstance-id=1764"), "1764");
}

TEST(Sandbox, ItIsThatOfTheInstanceAlone) {
    EXPECT_EQ(flatpakInstanceIn("[Application]\ninstance-id=1\n[Instance]\nflatpak-version=1.14\n"), std::nullopt);
    EXPECT_EQ(flatpakInstanceIn("[Instance]\ninstance-id=\n"), std::nullopt);
    EXPECT_EQ(flatpakInstanceIn(""), std::nullopt);
}

TEST(Sandbox, AProcessOutsideOfAnyHasNone) {
    EXPECT_EQ(flatpakInstance(getpid()), std::nullopt);
    EXPECT_EQ(flatpakInstance(-1), std::nullopt);
}

}  // namespace
}  // namespace tarvix::atspi
