// The three switches: how often, in which order, and what is written of it on the standard output.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "ax/AXEngine2.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Texts = std::vector<std::string>;

constexpr auto kEnhancedInterval = 280ms, kManualInterval = 440ms, kBothInterval = 880ms;

class AccessibilitySwitches : public testing::Test {
protected:
    // A write as it was tried, and how many reads had been tried before.
    struct Write {
        UIElement element;
        std::string name;
        AxValue value;
        std::size_t readsBefore;
    };

    AccessibilitySwitches() {
        service_.onSetAttribute = [this](const UIElement& element, std::string_view name, const AxValue& value) {
            writes_.push_back({element, std::string(name), value, service_.readsOf(element)});
        };
    }

    // The lines that something writes on the standard output.
    template <class Doing>
    static Texts lines(Doing doing) {
        testing::internal::CaptureStdout();
        doing();
        std::istringstream output(testing::internal::GetCapturedStdout());
        Texts all;
        for (std::string line; std::getline(output, line);) all.push_back(line);
        return all;
    }
    template <class Doing>
    static std::string output(Doing doing) {
        testing::internal::CaptureStdout();
        doing();
        return testing::internal::GetCapturedStdout();
    }
    Texts turn(std::chrono::milliseconds by) {
        return lines([&] { desk_.turnClock(by); });
    }

    Texts written() const {
        Texts names;
        for (const Write& write : writes_) names.push_back(write.name);
        return names;
    }
    std::size_t runningTimers() const { return desk_.runLoop.timers(); }

    SimulatedDesktop desk_;
    SimulatedAccessibility& service_ = desk_.accessibility;
    AXEngine2 engine_{desk_.platform()};
    std::int32_t pid_ = desk_.launch("Browser");
    UIElement application_ = service_.addApplication(pid_);
    std::vector<Write> writes_;
};

// --- The one that looks before it writes.

TEST_F(AccessibilitySwitches, AnApplicationThatHasTheEnhancedInterfaceSetIsAskedOnceAndNothingIsWritten) {
    service_.set(application_, ax::enhancedUserInterface, true);
    EXPECT_EQ(output([&] { engine_.keepEnhancedUserInterfaceSet(pid_); }), "getting AXEnhanced\n");
    EXPECT_EQ(runningTimers(), 0u);
    EXPECT_THAT(turn(60s), IsEmpty());
    EXPECT_EQ(service_.readsOf(application_), 1u);
    EXPECT_THAT(writes_, IsEmpty());
}

TEST_F(AccessibilitySwitches, TheFirstTickOfTheEnhancedInterfaceIsBeforeTheCallReturns) {
    EXPECT_EQ(output([&] { engine_.keepEnhancedUserInterfaceSet(pid_); }), "getting AXEnhanced\nsetting AXEnhanced\n");
    EXPECT_THAT(written(), ElementsAre("AXEnhancedUserInterface"));
    EXPECT_EQ(writes_.front().element, application_);
    EXPECT_EQ(writes_.front().value, AxValue(true));
    EXPECT_EQ(writes_.front().readsBefore, 1u);
    EXPECT_EQ(runningTimers(), 1u);
}

TEST_F(AccessibilitySwitches, TheEnhancedInterfaceIsSetTwelveTimesAndTheThirteenthTickEndsIt) {
    lines([&] { engine_.keepEnhancedUserInterfaceSet(pid_); });
    EXPECT_THAT(turn(11 * kEnhancedInterval), SizeIs(22));
    EXPECT_THAT(writes_, SizeIs(12));
    EXPECT_THAT(turn(kEnhancedInterval - 1ms), IsEmpty());
    EXPECT_EQ(runningTimers(), 1u);
    EXPECT_THAT(turn(1ms), ElementsAre("getting AXEnhanced"));
    EXPECT_EQ(desk_.runLoop.now(), 3360ms);
    EXPECT_EQ(runningTimers(), 0u);
    EXPECT_THAT(turn(60s), IsEmpty());
    EXPECT_THAT(writes_, SizeIs(12));
    EXPECT_EQ(service_.readsOf(application_), 13u);
}

TEST_F(AccessibilitySwitches, TheEnhancedInterfaceIsNotSetAgainOnceItReadsAsTrue) {
    int tries = 0;
    service_.onSetAttribute = [&](const UIElement& element, std::string_view name, const AxValue& value) {
        if (++tries == 3) service_.set(element, name, value);
    };
    const Texts all = lines([&] {
        engine_.keepEnhancedUserInterfaceSet(pid_);
        desk_.turnClock(60s);
    });
    EXPECT_EQ(all, (Texts{"getting AXEnhanced", "setting AXEnhanced", "getting AXEnhanced", "setting AXEnhanced",
                          "getting AXEnhanced", "setting AXEnhanced", "getting AXEnhanced"}));
    EXPECT_EQ(tries, 3);
    EXPECT_EQ(runningTimers(), 0u);
}

TEST_F(AccessibilitySwitches, AnEnhancedInterfaceThatReadsAsTrueAtTheThirteenthTickEndsItJustAsWell) {
    int tries = 0;
    service_.onSetAttribute = [&](const UIElement& element, std::string_view name, const AxValue& value) {
        if (++tries == 12) service_.set(element, name, value);
    };
    EXPECT_THAT(lines([&] {
                    engine_.keepEnhancedUserInterfaceSet(pid_);
                    desk_.turnClock(60s);
                }),
                SizeIs(25));
    EXPECT_EQ(tries, 12);
}

TEST_F(AccessibilitySwitches, OnlyABooleanTrueCountsAsTheEnhancedInterfaceSet) {
    for (const AxValue& value : std::vector<AxValue>{false, std::int64_t{1}, 1.0, "true", "1", std::monostate()}) {
        writes_.clear();
        service_.set(application_, ax::enhancedUserInterface, value);
        lines([&] { engine_.keepEnhancedUserInterfaceSet(pid_); });
        EXPECT_THAT(writes_, SizeIs(1)) << value.index();
    }
}

TEST_F(AccessibilitySwitches, WhyTheEnhancedInterfaceCannotBeReadDoesNotMatter) {
    for (const AxStatus status : {AxStatus::noValue, AxStatus::attributeUnsupported, AxStatus::cannotComplete,
                                  AxStatus::apiDisabled, AxStatus::failure}) {
        writes_.clear();
        service_.setStatus(application_, ax::enhancedUserInterface, status);
        lines([&] { engine_.keepEnhancedUserInterfaceSet(pid_); });
        EXPECT_THAT(writes_, SizeIs(1));
    }
}

// --- The two that write before they look.

TEST_F(AccessibilitySwitches, AFocusedWindowThatCanBeReadAtOnceIsTheEndOfTheManualSwitch) {
    service_.addWindow(pid_, {.role = "AXWindow", .title = "Page"}, 7);
    EXPECT_EQ(output([&] { engine_.keepManualAccessibilitySet(pid_); }), "setting AXManual\ngetting FocusedWindow\n");
    EXPECT_THAT(written(), ElementsAre("AXManualAccessibility"));
    EXPECT_EQ(writes_.front().value, AxValue(true));
    EXPECT_EQ(writes_.front().readsBefore, 0u);
    EXPECT_EQ(runningTimers(), 0u);
    EXPECT_THAT(turn(60s), IsEmpty());
}

TEST_F(AccessibilitySwitches, TheManualSwitchIsThrownSixteenTimesAndEndsWithTheSixteenthTick) {
    service_.setStatus(application_, ax::focusedWindow, AxStatus::cannotComplete);
    lines([&] { engine_.keepManualAccessibilitySet(pid_); });
    turn(14 * kManualInterval);
    EXPECT_THAT(writes_, SizeIs(15));
    EXPECT_THAT(turn(kManualInterval - 1ms), IsEmpty());
    EXPECT_EQ(runningTimers(), 1u);
    EXPECT_THAT(turn(1ms), ElementsAre("setting AXManual", "getting FocusedWindow"));
    EXPECT_EQ(desk_.runLoop.now(), 6600ms);
    EXPECT_EQ(runningTimers(), 0u);
    EXPECT_THAT(turn(60s), IsEmpty());
    EXPECT_THAT(written(), AllOf(SizeIs(16), Each(std::string("AXManualAccessibility"))));
    for (std::size_t i = 0; i < writes_.size(); ++i)
        EXPECT_EQ(writes_[i].readsBefore, i) << "it writes before it reads";
}

TEST_F(AccessibilitySwitches, TheManualSwitchEndsWhenTheApplicationAtLastHasAFocusedWindow) {
    lines([&] { engine_.keepManualAccessibilitySet(pid_); });
    turn(2 * kManualInterval);
    service_.addWindow(pid_, {.role = "AXWindow", .title = "Page"}, 7);
    EXPECT_THAT(turn(60s), ElementsAre("setting AXManual", "getting FocusedWindow"));
    EXPECT_THAT(writes_, SizeIs(4));
    EXPECT_EQ(runningTimers(), 0u);
}

TEST_F(AccessibilitySwitches, AnApplicationWhoseFocusedElementCanBeReadAtOnceGetsBothAttributesOnce) {
    service_.set(application_, ax::focusedUIElement, application_);
    EXPECT_EQ(output([&] { engine_.keepBothAttributesSet(pid_); }), "double special AX Combo for you\n");
    EXPECT_THAT(written(), ElementsAre("AXEnhancedUserInterface", "AXManualAccessibility"));
    for (const Write& write : writes_) {
        EXPECT_EQ(write.value, AxValue(true));
        EXPECT_EQ(write.readsBefore, 0u);
    }
    EXPECT_EQ(runningTimers(), 0u);
    EXPECT_THAT(turn(60s), IsEmpty());
}

TEST_F(AccessibilitySwitches, BothAttributesAreSetSixTimesAndTheSixthTickEndsIt) {
    lines([&] { engine_.keepBothAttributesSet(pid_); });
    turn(4 * kBothInterval);
    EXPECT_THAT(turn(kBothInterval - 1ms), IsEmpty());
    EXPECT_THAT(turn(1ms), ElementsAre("double special AX Combo for you"));
    EXPECT_EQ(desk_.runLoop.now(), 4400ms);
    EXPECT_EQ(runningTimers(), 0u);
    EXPECT_THAT(turn(60s), IsEmpty());
    ASSERT_THAT(writes_, SizeIs(12));
    for (std::size_t i = 0; i < writes_.size(); ++i) {
        EXPECT_EQ(writes_[i].name, i % 2 == 0 ? "AXEnhancedUserInterface" : "AXManualAccessibility");
        EXPECT_EQ(writes_[i].readsBefore, i / 2);
    }
    const auto reads = service_.reads();
    EXPECT_EQ(reads.size(), 6u);
    for (const auto& read : reads) EXPECT_THAT(read.names, ElementsAre("AXFocusedUIElement"));
}

TEST_F(AccessibilitySwitches, AReadThatSucceedsWithoutAValueIsEnoughForTheTwo) {
    service_.set(application_, ax::focusedWindow, std::monostate());
    service_.set(application_, ax::focusedUIElement, std::monostate());
    lines([&] { engine_.keepManualAccessibilitySet(pid_); });
    lines([&] { engine_.keepBothAttributesSet(pid_); });
    EXPECT_EQ(runningTimers(), 0u);
}

TEST_F(AccessibilitySwitches, AReadThatSaysThatThereIsNoValueIsNotEnough) {
    service_.setStatus(application_, ax::focusedWindow, AxStatus::noValue);
    service_.setStatus(application_, ax::focusedUIElement, AxStatus::noValue);
    lines([&] { engine_.keepManualAccessibilitySet(pid_); });
    lines([&] { engine_.keepBothAttributesSet(pid_); });
    EXPECT_EQ(runningTimers(), 2u);
}

// --- All three.

using Keep = void (AXEngine2::*)(std::int32_t) const;
struct Kind {
    Keep keep;
    std::chrono::milliseconds interval;
    int ticks;
    std::size_t writes;
};
constexpr Kind kEnhanced = {&AXEngine2::keepEnhancedUserInterfaceSet, kEnhancedInterval, 13, 12};
constexpr Kind kManual = {&AXEngine2::keepManualAccessibilitySet, kManualInterval, 16, 16};
constexpr Kind kBoth = {&AXEngine2::keepBothAttributesSet, kBothInterval, 6, 12};

class EachSwitch : public AccessibilitySwitches, public testing::WithParamInterface<Kind> {
protected:
    void start() {
        lines([&] { (engine_.*GetParam().keep)(pid_); });
    }
    // To its end, if nothing ends it before.
    void expectToEndByItsLimit() {
        const Kind& kind = GetParam();
        turn((kind.ticks - 1) * kind.interval - 1ms);
        EXPECT_EQ(runningTimers(), 1u);
        turn(1ms);
        EXPECT_EQ(runningTimers(), 0u);
        EXPECT_THAT(writes_, SizeIs(kind.writes));
    }
};

TEST_P(EachSwitch, EndsByItsLimitIfTheApplicationHasQuit) {
    service_.quit(pid_);
    start();
    expectToEndByItsLimit();
}

TEST_P(EachSwitch, EndsByItsLimitIfTheApplicationQuitsMeanwhile) {
    start();
    service_.quit(pid_);
    expectToEndByItsLimit();
}

TEST_P(EachSwitch, EndsByItsLimitIfTheApplicationHangs) {
    service_.hang(pid_);
    start();
    expectToEndByItsLimit();
}

TEST_P(EachSwitch, DoesNotCareWhetherItsWritesSucceed) {
    desk_.faults.fail("setAttribute");
    start();
    expectToEndByItsLimit();
}

TEST_P(EachSwitch, GoesOnWhenAnotherApplicationBecomesActive) {
    start();
    desk_.launch("Another");
    expectToEndByItsLimit();
}

TEST_P(EachSwitch, OnlyEverWritesTrue) {
    start();
    turn(60s);
    for (const Write& write : writes_) EXPECT_EQ(write.value, AxValue(true));
}

TEST_P(EachSwitch, IsThrownForAProcessThatHasNeverBeen) {
    lines([&] { (engine_.*GetParam().keep)(-1); });
    turn(60s);
    EXPECT_EQ(runningTimers(), 0u);
    EXPECT_THAT(writes_, SizeIs(GetParam().writes));
}

TEST_P(EachSwitch, CountsItsTriesForItself) {
    const Kind& kind = GetParam();
    start();
    turn(kind.interval + kind.interval / 2);
    start();
    EXPECT_EQ(runningTimers(), 2u);
    turn((kind.ticks - 1) * kind.interval - kind.interval / 2);
    EXPECT_EQ(runningTimers(), 1u) << "the older one has ended";
    turn(60s);
    EXPECT_EQ(runningTimers(), 0u);
    EXPECT_THAT(writes_, SizeIs(2 * kind.writes));
}

TEST_P(EachSwitch, IsDroppedWithTheRunLoop) {
    auto desk = std::make_unique<SimulatedDesktop>();
    const std::int32_t pid = desk->launch("Browser");
    lines([&] { (AXEngine2(desk->platform()).*GetParam().keep)(pid); });
    EXPECT_EQ(desk->runLoop.timers(), 1u) << "it outlives the engine that has thrown it";
    desk.reset();  // the sanitizer would find what is left of it
}

INSTANTIATE_TEST_SUITE_P(Kinds, EachSwitch, testing::Values(kEnhanced, kManual, kBoth), [](const auto& kind) {
    return kind.param.keep == kEnhanced.keep ? "Enhanced" : kind.param.keep == kManual.keep ? "Manual" : "Both";
});

TEST_F(AccessibilitySwitches, SwitchesOfSeveralApplicationsDoNotDisturbEachOther) {
    const std::int32_t editor = desk_.launch("Editor"), player = desk_.launch("Player");
    lines([&] {
        engine_.keepEnhancedUserInterfaceSet(pid_);
        engine_.keepManualAccessibilitySet(editor);
        engine_.keepBothAttributesSet(player);
    });
    EXPECT_EQ(runningTimers(), 3u);
    turn(60s);
    EXPECT_EQ(runningTimers(), 0u);
    const auto writesTo = [&](std::int32_t pid) {
        return std::ranges::count(writes_, service_.application(pid), &Write::element);
    };
    EXPECT_EQ(writesTo(pid_), 12);
    EXPECT_EQ(writesTo(editor), 16);
    EXPECT_EQ(writesTo(player), 12);
}

}  // namespace
}  // namespace tarvix
