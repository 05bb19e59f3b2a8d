// The installed program: from the menu, by the session bus and by its addresses.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <string>
#include <vector>

#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/package/InstalledProgram.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::vector<std::uint32_t> kHotKey{keysym::shift, keysym::super, keysym::space};

class InstalledProgramTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(fixture.isReady());
        ASSERT_THAT(program.processes(), IsEmpty());
        filesBefore = InstalledProgram::filesOfTheUser();
        const std::int64_t starting = monotonicMicroseconds();
        ASSERT_TRUE(program.chooseFromMenu());
        ASSERT_TRUE(program.reached(milestone::ready, starting));
    }

    void expectClicks(const std::vector<FixtureClick>& wanted) {
        await(5s, [&] { return fixture.clicks().size() >= wanted.size(); });
        EXPECT_EQ(fixture.clicks(), wanted);
    }

    std::vector<std::string> filesSince() const {
        std::vector<std::string> more;
        std::ranges::set_difference(InstalledProgram::filesOfTheUser(), filesBefore, std::back_inserter(more));
        return more;
    }

    Fixture fixture{"gtk3.py"};
    InstalledProgram program;
    std::vector<std::string> filesBefore;
};

TEST_F(InstalledProgramTest, AfterTheMenusEntryASearchClicksAndQuitLeavesNothingRunning) {
    EXPECT_EQ(program.windows().active()->number, fixture.window()) << "it starts in the background";
    ASSERT_EQ(program.search(kHotKey, "elder"), 1u);
    ASSERT_TRUE(program.press({keysym::returnKey}, milestone::inputHidden));
    expectClicks({{"Elder", 1, 1, ""}});
    EXPECT_TRUE(program.quit());
    EXPECT_THAT(program.processes(), IsEmpty());
    EXPECT_THAT(filesSince(), AnyOf(IsEmpty(), ElementsAre("config/tarvix/tarvix.json"))) << "settings, and no more";
}

TEST_F(InstalledProgramTest, TheMenusEntryOpensTheSettingsOfTheOneThatRuns) {
    const auto running = program.processes();
    ASSERT_TRUE(program.chooseFromMenu());
    EXPECT_TRUE(program.hasInFront("Settings"));
    EXPECT_EQ(program.processes(), running);
}

TEST_F(InstalledProgramTest, TheEntrysCommandOpensTheSettingsOfTheOneThatRuns) {
    ASSERT_TRUE(program.runEntry());
    EXPECT_TRUE(program.hasInFront("Settings"));
}

TEST_F(InstalledProgramTest, AnAddressOfItsSchemeReachesTheOneThatRuns) {
    const std::int64_t opening = monotonicMicroseconds();
    ASSERT_TRUE(program.openAddress("tarvix://openTheInput?with=elder"));
    ASSERT_TRUE(program.reached(milestone::inputShown, opening));
    ASSERT_TRUE(program.drewMarkers(1, opening));
    ASSERT_TRUE(program.press({keysym::returnKey}, milestone::inputHidden));
    expectClicks({{"Elder", 1, 1, ""}});
}

}  // namespace
}  // namespace tarvix
