#include <gtest/gtest.h>

#include "updates/UpdatePackage.h"

namespace tarvix {
namespace {

TEST(UpdatePackage, TellsItsNameAndVersion) {
    EXPECT_EQ(packageFieldsFrom("Package: tarvix\nVersion: 1.2-1\n"), (PackageFields{"tarvix", "1.2-1"}));
    EXPECT_EQ(packageFieldsFrom("Version: 2\nPackage: other"), (PackageFields{"other", "2"}));
    for (const char* control :
         {"", "Package: tarvix\n", "Version: 1\n", "Package: \nVersion: \n", "XPackage: a\nVersion: 1"})
        EXPECT_EQ(packageFieldsFrom(control), std::nullopt) << control;
}

TEST(UpdatePackage, IsTheOneThatWasOffered) {
    for (const char* version : {"2.0", "2.0.0", "2.0-1", "1:2.0-1", "2.0-1~bpo12"})
        EXPECT_EQ(refusePackage({"tarvix", version}, "2.0", "1.0"), std::nullopt) << version;
    EXPECT_EQ(refusePackage({"tarvix", "2.0~beta.1-1"}, "2.0-beta.1", "1.0"), std::nullopt);
    EXPECT_EQ(refusePackage({"tarvix", "2.0-beta.1"}, "2.0-beta.1", "1.0"), std::nullopt);
    EXPECT_EQ(refusePackage({"another", "2.0"}, "2.0", "1.0"), UpdateRefusal::otherFile);
    EXPECT_EQ(refusePackage({"tarvix", "1.5"}, "2.0", "1.0"), UpdateRefusal::otherFile);
    EXPECT_EQ(refusePackage({"tarvix", "2.1"}, "2.0", "1.0"), UpdateRefusal::otherFile);
}

// With a signature that is right.
TEST(UpdatePackage, AnOldReleaseUnderANewVersionIsSeenThrough) {
    EXPECT_EQ(refusePackage({"tarvix", "0.9-1"}, "2.0", "1.0"), UpdateRefusal::downgrade);
    EXPECT_EQ(refusePackage({"tarvix", "1.0~rc1-1"}, "2.0", "1.0"), UpdateRefusal::downgrade);
    EXPECT_EQ(refusePackage({"tarvix", "1.0-3"}, "2.0", "1.0"), UpdateRefusal::sameVersion);
    EXPECT_EQ(refusePackage({"tarvix", "9:1.0"}, "2.0", "1.0"), UpdateRefusal::sameVersion);
}

}  // namespace
}  // namespace tarvix
