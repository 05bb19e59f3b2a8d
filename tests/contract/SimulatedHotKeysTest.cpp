#include "simulated/SimulatedHotKeys.h"
#include "tests/contract/HotKeysContract.h"

namespace tarvix {
namespace {

HotKeysSubject simulated() {
    struct World {
        Faults faults;
        SimulatedHotKeys hotKeys{faults};
    };
    auto world = std::make_shared<World>();
    SimulatedHotKeys& hotKeys = world->hotKeys;
    return {world, hotKeys,
            [&hotKeys](std::uint32_t keyCode, std::uint32_t modifiers) {
                hotKeys.press({keyCode, modifiers});
            },
            [&hotKeys](std::uint32_t keyCode, std::uint32_t modifiers) {
                hotKeys.takenByOthers.insert({keyCode, modifiers});
            },
            [&hotKeys] { hotKeys.takenByOthers.clear(); }};
}

INSTANTIATE_TEST_SUITE_P(Simulated, HotKeysContract, testing::Values(simulated));

}  // namespace
}  // namespace tarvix
