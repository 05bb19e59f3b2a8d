// What the doctor sees of a program, and the switches by which one is woken.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "linux/atspi/AtspiService.h"
#include "linux/doctor/Survey.h"
#include "tests/desktop/AtspiFake.h"
#include "tests/desktop/X11Victim.h"
#include "tests/desktop/play/Activation.h"
#include "tests/desktop/play/Await.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using namespace atspi;
using Controls = SurveyedProgram::Controls;

// This process has a window, and a fake application on the bus where a test starts one.
class SurveyTest : public ::testing::Test {
protected:
    void SetUp() override {
        victim_.setText("WM_NAME", "fake");
        ASSERT_TRUE(victim_.show());
        ASSERT_TRUE(becomesActive(*windows_, victim_.window()));
        window_ = *windows_->active();
    }

    RawBox box(int x, int y, int width, int height) const {
        return {static_cast<std::int32_t>(window_.client.origin.x) + x,
                static_cast<std::int32_t>(window_.client.origin.y) + y, width, height};
    }
    void start(const std::string& toolkit, const std::vector<std::string>& buttons) {
        app_.emplace(toolkit);
        ASSERT_TRUE(app_->isInRegistry());
        app_->set("frame", {.role = Role::frame,
                            .name = "fake",
                            .box = box(0, 0, static_cast<int>(window_.client.size.width),
                                       static_cast<int>(window_.client.size.height)),
                            .children = {"panel"}});
        app_->set("panel", {.role = Role::panel, .box = box(0, 0, 200, 100), .children = buttons});
        for (std::size_t i = 0; i < buttons.size(); ++i)
            app_->set(
                buttons[i],
                {.role = Role::pushButton, .name = buttons[i], .box = box(5, 5 + static_cast<int>(i) * 6, 80, 5)});
    }

    Controls seen() {
        const ProgramSurvey survey = surveyPrograms(*windows_);
        EXPECT_TRUE(survey.busIsThere);
        EXPECT_TRUE(survey.isEnabled);
        const auto own = std::ranges::find(survey.programs, getpid(), &SurveyedProgram::pid);
        EXPECT_NE(own, survey.programs.end()) << "a window of this process is on the screen";
        return own == survey.programs.end() ? Controls::shown : own->controls;
    }

    const std::unique_ptr<X11Windows> windows_ = std::move(X11Windows::open().value());
    X11Victim victim_;
    X11Window window_;
    std::optional<AtspiFake> app_;
};

TEST_F(SurveyTest, AProgramWithAButtonShowsItsControls) {
    start("gtk", {"a"});
    EXPECT_EQ(seen(), Controls::shown);
}

TEST_F(SurveyTest, AProgramWithNothingInItsWindowIsBare) {
    start("gtk", {});
    EXPECT_EQ(seen(), Controls::bare);
}

TEST_F(SurveyTest, AProgramThatIsNotOnTheBusShowsNone) { EXPECT_EQ(seen(), Controls::none); }

TEST_F(SurveyTest, AProgramThatDoesNotAnswerIsSilent) {
    start("gtk", {"a"});
    app_->stopAfter(0);
    EXPECT_EQ(seen(), Controls::silent);
    app_->answerAgain();
    EXPECT_EQ(seen(), Controls::shown);
}

class SwitchTest : public SurveyTest {
protected:
    AxResult<AxValue> read(std::string_view name) { return service_->attribute(application(), name); }
    UIElement application() { return service_->application(getpid()); }
    bool isAwake() {
        const AxResult<AxValue> read = this->read(ax::enhancedUserInterface);
        EXPECT_EQ(read.status, AxStatus::success);
        return read.value == AxValue(true);
    }
    static std::vector<std::string> manyButtons() {
        std::vector<std::string> buttons;
        for (int i = 0; i < 12; ++i) buttons.push_back("button" + std::to_string(i));
        return buttons;
    }

    const std::unique_ptr<AtspiService> service_ = std::move(AtspiService::open(*windows_).value());
};

TEST_F(SwitchTest, AnApplicationIsAwakeOnceItHasBeenAskedAndItsTreeIsComplete) {
    start("Chromium", manyButtons());
    EXPECT_FALSE(isAwake());
    EXPECT_EQ(app_->count("GetAttributes"), 0U) << "reading wakes nobody";
    EXPECT_EQ(service_->setAttribute(application(), ax::enhancedUserInterface, true), AxStatus::success);
    EXPECT_TRUE(await(10s, [this] { return isAwake(); }));
    EXPECT_GE(app_->count("GetAttributes"), 1U);
    app_.reset();
    EXPECT_EQ(service_->setAttribute(application(), ax::enhancedUserInterface, true), AxStatus::success);
    start("Chromium", manyButtons());
    EXPECT_TRUE(await(10s, [this] { return isAwake() && app_->count("GetAttributes") >= 1; }))
        << "one that was started anew is woken anew";
}

TEST_F(SwitchTest, TheOtherSwitchWakesToo) {
    start("Chromium", manyButtons());
    EXPECT_EQ(service_->setAttribute(application(), ax::manualAccessibility, true), AxStatus::success);
    EXPECT_TRUE(await(10s, [this] { return isAwake(); }));
}

TEST_F(SwitchTest, AnApplicationThatIsNotOnTheBusYetIsWokenWhenItComes) {
    EXPECT_EQ(service_->setAttribute(application(), ax::enhancedUserInterface, true), AxStatus::success);
    EXPECT_FALSE(isAwake());
    start("Chromium", manyButtons());
    EXPECT_TRUE(await(10s, [this] { return isAwake(); }));
}

TEST_F(SwitchTest, AnApplicationThatDoesNotAnswerIsWokenWhenItDoes) {
    start("Chromium", manyButtons());
    app_->stopAfter(0);
    EXPECT_EQ(service_->setAttribute(application(), ax::enhancedUserInterface, true), AxStatus::success);
    EXPECT_FALSE(isAwake());
    app_->answerAgain();
    EXPECT_TRUE(await(10s, [this] { return isAwake(); }));
}

TEST_F(SwitchTest, OnlyTrueIsASwitchAndOnlyOfApplications) {
    start("Chromium", manyButtons());
    EXPECT_EQ(service_->setAttribute(application(), ax::enhancedUserInterface, false), AxStatus::success);
    EXPECT_EQ(service_->setAttribute(application(), ax::enhancedUserInterface, std::string("true")),
              AxStatus::attributeUnsupported);
    EXPECT_EQ(service_->setAttribute(application(), ax::title, true), AxStatus::attributeUnsupported);
    EXPECT_EQ(service_->setAttribute(service_->systemWide(), ax::enhancedUserInterface, true),
              AxStatus::attributeUnsupported);
    EXPECT_FALSE(isAwake());
}

TEST_F(SwitchTest, WhatHasTheFocusCanBeReadOfAnApplication) {
    start("Qt", {"a"});
    EXPECT_EQ(read(ax::focusedWindow).status, AxStatus::success);
    EXPECT_EQ(read(ax::focusedUIElement).status, AxStatus::noValue) << "nothing in the window has it";
    const AxResult<AxValue> nobodys = service_->attribute(service_->application(1), ax::focusedUIElement);
    EXPECT_EQ(nobodys.status, AxStatus::noValue) << "it has no window";
    app_->stopAfter(0);
    EXPECT_NE(read(ax::focusedUIElement).status, AxStatus::success);
}

}  // namespace
}  // namespace tarvix
