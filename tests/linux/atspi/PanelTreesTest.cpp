#include <gtest/gtest.h>

#include "linux/atspi/PanelTrees.h"

namespace tarvix::atspi {
namespace {

TEST(PanelTrees, APartInAWindowOfItsOwnIsNamedByTheBusNameAndThePath) {
    EXPECT_EQ(plugOf(":1.28:/org/a11y/atspi/accessible/1"), (Reference{":1.28", "/org/a11y/atspi/accessible/1"}));
    for (const char* other : {"", ":1.28", "/org/a11y/atspi/accessible/1", ":/org/a11y/atspi/accessible/1"})
        EXPECT_FALSE(plugOf(other)) << other;
}

}  // namespace
}  // namespace tarvix::atspi
