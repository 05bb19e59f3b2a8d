// The simulated desktop keeps to the contracts.
#include "simulated/Journal.h"
#include "simulated/SimulatedDesktop.h"
#include "simulated/SimulatedInputSources.h"
#include "simulated/SimulatedPanels.h"
#include "simulated/SimulatedRunLoop.h"
#include "simulated/SimulatedScreens.h"
#include "simulated/SimulatedUserDefaults.h"
#include "tests/contract/InputSourcesContract.h"
#include "tests/contract/PanelsContract.h"
#include "tests/contract/RunLoopContract.h"
#include "tests/contract/ScreensContract.h"
#include "tests/contract/UserDefaultsContract.h"
#include "tests/contract/WorkspaceContract.h"

namespace tarvix {
namespace {

bool atOnce(const std::function<bool()>& condition) { return condition() || condition(); }

ContractSubject<RunLoop> runLoop() {
    const auto loop = std::make_shared<SimulatedRunLoop>();
    return {loop, *loop, [loop](const std::function<bool()>& condition) {
                constexpr int limit = 1000;
                for (int i = 0; i < limit && !condition(); ++i) {
                    loop->settle();
                    loop->turnClock(std::chrono::milliseconds(1));
                }
                return condition();
            }};
}

ContractSubject<UserDefaults> userDefaults() {
    const auto defaults = std::make_shared<SimulatedUserDefaults>();
    return {defaults, *defaults, atOnce};
}

ContractSubject<Screens> screens() {
    const auto screens = std::make_shared<SimulatedScreens>();
    return {screens, *screens, atOnce};
}

ContractSubject<Panels> panels() {
    struct World {
        Journal journal;
        SimulatedPanels panels{journal};
    };
    const auto world = std::make_shared<World>();
    return {world, world->panels, atOnce};
}

ContractSubject<InputSources> inputSources() {
    const auto sources = std::make_shared<SimulatedInputSources>(
        std::vector{simulatedLayout::russian(), simulatedLayout::us(), simulatedLayout::dvorak(),
                    simulatedLayout::japanese(), simulatedLayout::inputMethod()});
    return {sources, *sources, atOnce};
}

WorkspaceSubject workspace() {
    const auto desk = std::make_shared<SimulatedDesktop>();
    const std::int32_t pid = desk->launch("Mail");
    return {desk, desk->workspace, pid, [desk] { return desk->launch("Editor"); }, atOnce};
}

INSTANTIATE_TEST_SUITE_P(Simulated, RunLoopContract, testing::Values(runLoop));
INSTANTIATE_TEST_SUITE_P(Simulated, UserDefaultsContract, testing::Values(userDefaults));
INSTANTIATE_TEST_SUITE_P(Simulated, WorkspaceContract, testing::Values(workspace));
INSTANTIATE_TEST_SUITE_P(Simulated, ScreensContract, testing::Values(screens));
INSTANTIATE_TEST_SUITE_P(Simulated, PanelsContract, testing::Values(panels));
INSTANTIATE_TEST_SUITE_P(Simulated, InputSourcesContract, testing::Values(inputSources));

}  // namespace
}  // namespace tarvix
