#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "shell/UpdaterController.h"
#include "simulated/Journal.h"
#include "simulated/SimulatedUpdater.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct UpdaterControllerTest : testing::Test {
    Journal journal;
    SimulatedUpdater updater{journal};
};

TEST_F(UpdaterControllerTest, StartsTheUpdaterAtOnceAndChecksOnlyWhenAsked) {
    UpdaterController controller(updater);
    EXPECT_THAT(journal.entries(), ElementsAre("updater started"));
    controller.checkForUpdates();
    EXPECT_THAT(journal.entries(), ElementsAre("updater started", "checked for updates"));
}

TEST_F(UpdaterControllerTest, HasTheUpdatersInitialValue) {
    EXPECT_TRUE(UpdaterController(updater).canCheckForUpdates());
    updater.setCanCheck(false);
    EXPECT_FALSE(UpdaterController(updater).canCheckForUpdates());
}

TEST_F(UpdaterControllerTest, FollowsTheUpdaterAndTellsEachChangeOnce) {
    UpdaterController controller(updater);
    std::vector<bool> told;
    const Subscription listening =
        controller.onCanCheckForUpdatesChanged([&](bool canCheck) { told.push_back(canCheck); });
    updater.setCanCheck(true);
    EXPECT_THAT(told, IsEmpty());
    updater.setCanCheck(false);
    EXPECT_FALSE(controller.canCheckForUpdates());
    updater.setCanCheck(false);
    updater.setCanCheck(true);
    EXPECT_TRUE(controller.canCheckForUpdates());
    EXPECT_THAT(told, ElementsAre(false, true));
}

}  // namespace
}  // namespace tarvix
