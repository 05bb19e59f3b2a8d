// The Qt services keep to the contracts that the simulated ones keep to.
#include <QTemporaryDir>

#include "qt/QtPanels.h"
#include "qt/QtRunLoop.h"
#include "qt/QtUserDefaults.h"
#include "tests/contract/PanelsContract.h"
#include "tests/contract/RunLoopContract.h"
#include "tests/contract/UserDefaultsContract.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

// The application has to be there before the service is.
class Application : private QtTest {
    void TestBody() override {}
};

ContractSubject<RunLoop> runLoop() {
    struct World {
        Application application;
        QtRunLoop loop;
    };
    const auto world = std::make_shared<World>();
    return {world, world->loop, runUntil};
}

ContractSubject<UserDefaults> userDefaults() {
    struct World {
        Application application;
        QTemporaryDir folder;
        QtUserDefaults defaults{folder.path() + "/tarvix.json"};
    };
    const auto world = std::make_shared<World>();
    return {world, world->defaults, runUntil};
}

ContractSubject<Panels> panels() {
    struct World {
        Application application;
        TestWindowing windowing;
        TestScreens screens;
        TestMilestones milestones;
        TestAppearance appearance;
        QtPanels panels{{windowing, screens, milestones, appearance}};
    };
    const auto world = std::make_shared<World>();
    return {world, world->panels, runUntil};
}

INSTANTIATE_TEST_SUITE_P(Qt, RunLoopContract, testing::Values(runLoop));
INSTANTIATE_TEST_SUITE_P(Qt, UserDefaultsContract, testing::Values(userDefaults));
INSTANTIATE_TEST_SUITE_P(Qt, PanelsContract, testing::Values(panels));

}  // namespace
}  // namespace tarvix
