// The pointer's way over the desktop during a search.
#include <gmock/gmock.h>

#include "tests/scenarios/SearchScenario.h"

namespace tarvix {
namespace {

using testing::IsEmpty;

class InspectorScenario : public SearchScenario {
protected:
    InspectorScenario() { mail.button("Archive", {{10, 20}, {60, 20}}).button("Send later", {{90, 20}, {80, 20}}); }

    void hover(AxPoint point) {
        desk.movePointer(point);
        desk.settle();
        desk.turnClock(std::chrono::milliseconds(0));
    }
    SimulatedInspectorPanel& inspector() { return desk.panels.inspector(); }
    bool marks(AxRect frame) {
        SimulatedCanvasPanel& canvas = desk.panels.inspectorCanvas();
        return canvas.isVisible() && canvas.markers().size() == 1 && flip(canvas.frame(), 1000) == frame;
    }

    SimulatedWindow mail = desk.window("Mail");
};

TEST_F(InspectorScenario, WhatIsUnderThePointerIsPickedOutWhetherItIsATargetOrNot) {
    search("send");
    hover({30, 30});
    EXPECT_TRUE(marks({{10, 20}, {60, 20}}));
    EXPECT_TRUE(inspector().isVisible());
    EXPECT_THAT(inspector().content().body, testing::HasSubstr("≢ Archive\n"));
    EXPECT_EQ(targets(), Texts{"Send later"});
}

TEST_F(InspectorScenario, MarkerAndTextsFollowThePointerAndStayOverNothing) {
    open();
    hover({30, 30});
    hover({100, 30});
    EXPECT_TRUE(marks({{90, 20}, {80, 20}}));
    EXPECT_THAT(inspector().content().body, testing::HasSubstr("≢ Send later\n"));
    hover({1500, 900});
    EXPECT_TRUE(marks({{90, 20}, {80, 20}}));
}

TEST_F(InspectorScenario, ABurstOfMovesInOnePassIsOneUpdate) {
    open();
    desk.clearJournal();
    for (double x = 12; x < 160; x += 2) desk.movePointer({x, 30});
    EXPECT_THAT(desk.journal({Topic::inspector}), IsEmpty());
    desk.turnClock(std::chrono::milliseconds(0));
    const Texts effects = desk.journal({Topic::inspector});
    EXPECT_EQ(std::count(effects.begin(), effects.end(), "inspector in front"), 1);
    EXPECT_TRUE(marks({{90, 20}, {80, 20}}));
}

TEST_F(InspectorScenario, ItGoesWithTheSearchAndTheNextOneBeginsWithoutIt) {
    open();
    hover({30, 30});
    press(Key::escape);
    EXPECT_FALSE(inspector().isVisible());
    EXPECT_FALSE(desk.panels.inspectorCanvas().isVisible());
    EXPECT_THAT(desk.panels.inspectorCanvas().markers(), IsEmpty());
    open();
    EXPECT_FALSE(inspector().isVisible());
}

TEST_F(InspectorScenario, AHoverThatComesTooLateShowsNothing) {
    open();
    desk.movePointer({30, 30});
    press(Key::escape);
    desk.turnClock(std::chrono::milliseconds(0));
    EXPECT_FALSE(inspector().isVisible());
    EXPECT_FALSE(desk.panels.hasInspectorCanvas());
}

TEST_F(InspectorScenario, WithoutASearchThePointerGoesItsWayUnseen) {
    hover({30, 30});
    EXPECT_FALSE(inspector().isVisible());
    EXPECT_FALSE(desk.panels.hasInspectorCanvas());
}

}  // namespace
}  // namespace tarvix
