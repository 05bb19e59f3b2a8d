// The accessibility service of the desktop keeps to the contract, on windows of two toolkits that have nothing in
// common.
#include <signal.h>

#include <memory>

#include "linux/atspi/AtspiService.h"
#include "tests/contract/AccessibilityContract.h"
#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;

struct World {
    explicit World(const std::string& script) : fixture(script) {}

    Fixture fixture;
    std::unique_ptr<X11Windows> windows = std::move(X11Windows::open().value());
    std::unique_ptr<AtspiService> service = std::move(AtspiService::open(*windows).value());
};

AccessibilityFactory fixture(const std::string& script) {
    return [script] {
        const auto world = std::make_shared<World>(script);
        EXPECT_TRUE(world->fixture.isReady());
        EXPECT_TRUE(await(10s, [&] {
            const auto active = world->windows->active();
            return active && active->number == world->fixture.window();
        })) << "the fixture's window is not the active one";
        const auto window = world->windows->active();
        const std::int32_t pid = world->fixture.pid();
        return AccessibilitySubject{
            world, *world->service, pid, window ? window->title : std::string(), [world, pid] {
                kill(pid, SIGKILL);
                EXPECT_TRUE(await(10s, [&] { return !world->windows->window(world->fixture.window()); }));
            }};
    };
}

INSTANTIATE_TEST_SUITE_P(Gtk3, AccessibilityContract, testing::Values(fixture("gtk3.py")));
INSTANTIATE_TEST_SUITE_P(Qt6, AccessibilityContract, testing::Values(fixture("qt6.py")));

}  // namespace
}  // namespace tarvix
