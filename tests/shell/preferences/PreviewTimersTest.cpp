// When previews come and go, on a clock turned by hand.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "shell/preferences/ControlEffects.h"
#include "simulated/SimulatedRunLoop.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using namespace std::chrono_literals;

class PreviewTimersTest : public testing::Test, public InputPreview, public TargetsPreview {
public:
    void showPlaced(const std::string& text) override { note("The Input '" + text + "'"); }
    void showInPlace(const std::string& text) override { note("in place '" + text + "'"); }
    void preload(std::function<void()> preloaded) override {
        note("preload");
        preloaded_ = std::move(preloaded);
    }
    void show() override { note("targets"); }
    void hide() override { note("hidden"); }

protected:
    void note(const std::string& what) { log.push_back(std::to_string(runLoop.now().count()) + " " + what); }

    SimulatedRunLoop runLoop;
    std::vector<std::string> log;
    std::function<void()> preloaded_;
    ControlEffects effects{runLoop, *this, *this};
};

TEST_F(PreviewTimersTest, APositionShowsForItsTimeFromTheLastChangeOn) {
    effects.changed("inputPosition");
    runLoop.turnClock(1000ms);
    effects.changed("inputPosition");
    runLoop.turnClock(5s);
    EXPECT_THAT(log, ElementsAre("0 The Input ''", "1000 The Input ''", "2280 hidden"));
}

TEST_F(PreviewTimersTest, TargetsShowAtOnceAndAgainWhenTheyAreRead) {
    effects.changed("targetsColor");
    runLoop.turnClock(200ms);
    preloaded_();
    runLoop.turnClock(5s);
    EXPECT_THAT(log, ElementsAre("0 preload", "0 targets", "200 targets", "1480 hidden"));
}

TEST_F(PreviewTimersTest, WhileTheyShowTheyAreNotReadAgain) {
    effects.changed("targetsCustomColorHue");
    runLoop.turnClock(1279ms);
    effects.changed("targetsColor");
    runLoop.turnClock(1280ms);
    effects.changed("targetsColor");
    EXPECT_THAT(log,
                ElementsAre("0 preload", "0 targets", "1279 targets", "2559 hidden", "2559 preload", "2559 targets"));
}

TEST_F(PreviewTimersTest, TheTargetsAndTheBackgroundHaveATimerEach) {
    effects.changed("targetsColor");
    runLoop.turnClock(1000ms);
    effects.changed("hazeOverWindowOpacity");
    runLoop.turnClock(5s);
    EXPECT_THAT(log,
                ElementsAre("0 preload", "0 targets", "1000 preload", "1000 targets", "1280 hidden", "2280 hidden"));
}

}  // namespace
}  // namespace tarvix
