// The geometry of the desktop, and how long an answer stands.
#include <gtest/gtest.h>

#include "display/DisplayEngine.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

constexpr PanelRect kFirst{{0, 0}, {1600, 1000}};
constexpr PanelRect kRight{{1600, 200}, {800, 800}};
constexpr PanelRect kAbove{{0, 1000}, {1600, 900}};
constexpr PanelRect kLeft{{-800, 0}, {800, 600}};

FocusedWindow windowAt(PanelRect frame) {
    FocusedWindow window;
    window.minX = frame.minX();
    window.maxY = frame.maxY();
    window.width = frame.width();
    window.height = frame.height();
    return window;
}

class DisplayEngineTest : public testing::Test {
protected:
    void setScreens(std::vector<PanelRect> frames, std::optional<PanelRect> main = kFirst) {
        desk.screens.screens = std::move(frames);
        desk.screens.main = main;
    }
    std::optional<PanelRect> frameFor(PanelRect window) {
        engine.resetCaches();
        const auto screen = engine.screenFor(windowAt(window));
        return screen ? std::optional(screen->frame) : std::nullopt;
    }

    SimulatedDesktop desk;
    DisplayEngine engine{desk.platform()};
};

TEST_F(DisplayEngineTest, ScreensComeInTheDesktopsOrder) {
    setScreens({kFirst, kRight}, kRight);
    EXPECT_EQ(engine.screens(), (std::vector<Screen>{{kFirst}, {kRight}}));
    EXPECT_EQ(engine.firstScreen(), Screen{kFirst});
    EXPECT_EQ(engine.mainScreen(), Screen{kRight});
}

TEST_F(DisplayEngineTest, WithoutScreensThereIsNone) {
    desk.screens.setOnly(std::nullopt);
    EXPECT_TRUE(engine.screens().empty());
    EXPECT_EQ(engine.firstScreen(), std::nullopt);
    EXPECT_EQ(engine.mainScreen(), std::nullopt);
    EXPECT_EQ(engine.screenContaining(1, 1), std::nullopt);
    EXPECT_EQ(engine.screenFor(windowAt({{1, 1}, {2, 2}})), std::nullopt);
}

TEST_F(DisplayEngineTest, TheOnlyScreenIsTheAnswerWithoutALookAtThePoint) {
    EXPECT_EQ(engine.screenContaining(-5000, 9000), Screen{kFirst});
    EXPECT_EQ(engine.screenFor(windowAt({{-5000, 9000}, {10, 10}})), Screen{kFirst});
}

TEST_F(DisplayEngineTest, TheMouseIsWhereItWasWhenTheSessionFirstAsked) {
    desk.screens.pointer = {10, 20};
    EXPECT_EQ(engine.focusedMouse(), (FocusedMouse{10, 20}));
    desk.screens.pointer = {30, 40};
    EXPECT_EQ(engine.focusedMouse(), (FocusedMouse{10, 20}));
    engine.resetCaches();
    EXPECT_EQ(engine.focusedMouse(), (FocusedMouse{30, 40}));
}

TEST_F(DisplayEngineTest, TheScreenOfAPointIsTheFirstThatHoldsItWithItsLeftAndTopEdge) {
    setScreens({kFirst, kRight});
    const auto at = [&](double x, double y) {
        engine.resetCaches();
        return engine.screenContaining(x, y);
    };
    EXPECT_EQ(at(1599, 500), Screen{kFirst});
    EXPECT_EQ(at(1600, 500), Screen{kRight});
    EXPECT_EQ(at(0, 1000), Screen{kFirst});
    EXPECT_EQ(at(0, 0), std::nullopt);
    EXPECT_EQ(at(2400, 500), std::nullopt);
}

TEST_F(DisplayEngineTest, TheFirstAnswerForAPointStandsAndAnAbsentOneIsAskedForAgain) {
    setScreens({kFirst, kRight});
    EXPECT_EQ(engine.screenContaining(9000, 9000), std::nullopt);
    EXPECT_EQ(engine.screenContaining(1700, 500), Screen{kRight});
    EXPECT_EQ(engine.screenContaining(10, 10), Screen{kRight});
}

TEST_F(DisplayEngineTest, TheScreenOfAWindowIsThatOfItsFirstCornerOnAny) {
    setScreens({kFirst, kRight}, kFirst);
    EXPECT_EQ(frameFor({{100, 100}, {200, 200}}), kFirst);
    EXPECT_EQ(frameFor({{1700, 300}, {200, 200}}), kRight);
    EXPECT_EQ(frameFor({{1500, 300}, {400, 200}}), kFirst) << "the top left corner decides";
    EXPECT_EQ(frameFor({{1500, 900}, {400, 200}}), kFirst) << "bottom left, as both top corners are above";
    EXPECT_EQ(frameFor({{-100, 900}, {200, 200}}), kFirst) << "bottom right alone";
    EXPECT_EQ(frameFor({{-500, 5000}, {10, 10}}), kFirst) << "no corner: the main screen";
}

TEST_F(DisplayEngineTest, TopRightCountsWhenTopLeftIsOffAllScreens) {
    setScreens({kFirst, kRight}, kRight);
    for (const bool separate : {false, true}) {
        desk.screens.separateSpaces = separate;
        EXPECT_EQ(frameFor({{-100, 300}, {200, 200}}), kFirst) << separate;
    }
}

TEST_F(DisplayEngineTest, WithSeparateSpacesAWindowBelongsToTheScreenOfBothItsTopCorners) {
    setScreens({kFirst, kRight}, kFirst);
    desk.screens.separateSpaces = true;
    EXPECT_EQ(frameFor({{1700, 300}, {200, 200}}), kRight);
}

TEST_F(DisplayEngineTest, WithSeparateSpacesAWindowAcrossTwoScreensIsOnTheMainOne) {
    setScreens({kFirst, kRight, kLeft}, kLeft);
    desk.screens.separateSpaces = true;
    EXPECT_EQ(frameFor({{1500, 300}, {400, 200}}), kLeft);
}

TEST_F(DisplayEngineTest, WithSeparateSpacesTopLeftCountsWhenTopRightIsOffAllScreens) {
    setScreens({kFirst, kRight}, kFirst);
    desk.screens.separateSpaces = true;
    EXPECT_EQ(frameFor({{2300, 300}, {400, 200}}), kRight);
}

TEST_F(DisplayEngineTest, WithSeparateSpacesAWindowWithoutATopCornerOnAnyScreenIsOnTheMainOne) {
    setScreens({kFirst, kRight}, kRight);
    desk.screens.separateSpaces = true;
    EXPECT_EQ(frameFor({{100, 900}, {200, 200}}), kRight);
}

// Its top right corner is on the excluded edge, where the screen beside it begins.
TEST_F(DisplayEngineTest, AFullScreenWindowIsFoundByItsFrame) {
    constexpr PanelRect farRight{{2400, 200}, {800, 800}};
    setScreens({kFirst, kRight, farRight}, farRight);
    desk.screens.separateSpaces = true;
    EXPECT_EQ(frameFor(kFirst), kFirst);
    EXPECT_EQ(frameFor(kRight), kRight);
    EXPECT_EQ(frameFor(farRight), farRight);
}

TEST_F(DisplayEngineTest, WithoutAWindowItIsTheFirstScreen) {
    setScreens({kFirst, kRight}, kRight);
    EXPECT_EQ(engine.screenFor(std::nullopt), Screen{kFirst});
}

TEST_F(DisplayEngineTest, AWindowOnNoScreenWithoutAMainScreenHasNoneAndIsAskedForAgain) {
    setScreens({kFirst, kRight}, std::nullopt);
    EXPECT_EQ(engine.screenFor(windowAt({{-500, 5000}, {10, 10}})), std::nullopt);
    EXPECT_EQ(engine.screenFor(windowAt({{1700, 300}, {200, 200}})), Screen{kRight});
}

TEST_F(DisplayEngineTest, TheFirstScreenOfAWindowStandsWhateverWindowComesLater) {
    setScreens({kFirst, kRight});
    EXPECT_EQ(engine.screenFor(windowAt({{1700, 300}, {200, 200}})), Screen{kRight});
    EXPECT_EQ(engine.screenFor(windowAt({{100, 100}, {200, 200}})), Screen{kRight});
}

TEST_F(DisplayEngineTest, TheMainWindowIsTheFrontmostApplications) {
    const SimulatedWindow window = desk.window("Mail", {{100, 50}, {800, 600}});
    const FocusedWindow expected{window.number, 100, 950, 800, 600, false};
    EXPECT_EQ(engine.mainWindow(), expected);
    EXPECT_EQ(engine.mainWindow()->frame(), (PanelRect{{100, 350}, {800, 600}}));
}

TEST_F(DisplayEngineTest, TheFocusedWindowIsTheFocusedApplications) {
    const SimulatedWindow panel = desk.window("Panel", {{300, 200}, {400, 100}});
    const SimulatedWindow front = desk.window("Mail", {{100, 50}, {800, 600}});
    desk.accessibility.setFocusedApplication(panel.pid);
    EXPECT_EQ(engine.focusedWindow()->number, panel.number);
    EXPECT_EQ(engine.mainWindow()->number, front.number);
}

TEST_F(DisplayEngineTest, AWindowIsReadOnceForASession) {
    SimulatedWindow window = desk.window("Mail", {{100, 50}, {800, 600}});
    engine.mainWindow();
    engine.focusedWindow();
    window.set(ax::position, AxPoint{500, 50});
    EXPECT_EQ(engine.mainWindow()->minX, 100);
    EXPECT_EQ(engine.focusedWindow()->minX, 100);
    engine.resetCaches();
    EXPECT_EQ(engine.mainWindow()->minX, 500);
    EXPECT_EQ(engine.focusedWindow()->minX, 500);
}

TEST_F(DisplayEngineTest, AWindowThatCouldNotBeReadIsAskedForAgain) {
    SimulatedWindow window = desk.window("Mail");
    desk.accessibility.hang(window.pid);
    EXPECT_EQ(engine.mainWindow(), std::nullopt);
    desk.accessibility.hang(window.pid, false);
    EXPECT_TRUE(engine.mainWindow());
}

TEST_F(DisplayEngineTest, AWindowOnAScreenAboveOrToTheLeftIsFlippedByTheFirstScreensHeight) {
    setScreens({kFirst, kAbove, kLeft});
    desk.window("Above", {{10, -500}, {100, 100}});
    EXPECT_EQ(engine.mainWindow()->maxY, 1500);
    engine.resetCaches();
    desk.window("Left", {{-700, 500}, {100, 100}});
    EXPECT_EQ(engine.mainWindow()->minX, -700);
    EXPECT_EQ(engine.mainWindow()->maxY, 500);
}

TEST_F(DisplayEngineTest, AWindowWithoutPositionOrSizeOrWithOneOfTheWrongKindIsNone) {
    for (const std::string_view attribute : {ax::position, ax::size}) {
        desk.window("Lacking").set(attribute, std::monostate{});
        EXPECT_EQ(engine.mainWindow(), std::nullopt) << attribute;
        desk.window("Lying").set(attribute, std::string("here"));
        EXPECT_EQ(engine.mainWindow(), std::nullopt) << attribute;
    }
}

TEST_F(DisplayEngineTest, WithoutAScreenThereIsNoWindow) {
    desk.window("Mail");
    desk.screens.setOnly(std::nullopt);
    EXPECT_EQ(engine.mainWindow(), std::nullopt);
    EXPECT_EQ(engine.focusedWindow(), std::nullopt);
}

TEST_F(DisplayEngineTest, AnUnreadableNumberIsZeroAndAnUnreadableFullScreenStateIsAbsent) {
    desk.window("Mail").set(ax::fullScreen, std::monostate{});
    desk.faults.fail("windowNumber");
    EXPECT_EQ(engine.mainWindow()->number, 0u);
    EXPECT_EQ(engine.mainWindow()->isInFullScreenMode, std::nullopt);
}

TEST_F(DisplayEngineTest, WithoutAFrontmostOrFocusedApplicationThereIsNoWindow) {
    desk.window("Mail");
    desk.activate(std::nullopt);
    EXPECT_EQ(engine.mainWindow(), std::nullopt);
    EXPECT_EQ(engine.focusedWindow(), std::nullopt);
}

TEST_F(DisplayEngineTest, TheInputIsTheFocusedElementsTopLeftCorner) {
    SimulatedWindow window = desk.window("Mail");
    window.add({.role = "AXTextField", .title = "To", .frame = {{120, 80}, {300, 20}}, .children = {}});
    desk.accessibility.setFocusedElement(window.last);
    EXPECT_EQ(engine.focusedInput(), (FocusedInput{120, 920}));
    desk.accessibility.setFocusedElement(std::nullopt);
    EXPECT_EQ(engine.focusedInput(), (FocusedInput{120, 920}));
    engine.resetCaches();
    EXPECT_EQ(engine.focusedInput(), std::nullopt);
}

TEST_F(DisplayEngineTest, TheInputOfATextAreaIsItsParent) {
    SimulatedWindow window = desk.window("Mail");
    const UIElement scrollArea = desk.accessibility.add(
        window.element, {.role = "AXScrollArea", .title = "", .frame = {{50, 100}, {500, 400}}, .children = {}});
    const UIElement textArea = desk.accessibility.add(
        scrollArea, {.role = "AXTextArea", .title = "", .frame = {{50, -900}, {500, 9000}}, .children = {}});
    desk.accessibility.setFocusedElement(textArea);
    EXPECT_EQ(engine.focusedInput(), (FocusedInput{50, 900}));
    desk.accessibility.setStatus(textArea, ax::parent, AxStatus::noValue);
    engine.resetCaches();
    EXPECT_EQ(engine.focusedInput(), std::nullopt) << "without a parent there is none";
}

TEST_F(DisplayEngineTest, AnInputWithoutARoleIsWhereItSaysAndOneWithoutAPositionIsNowhere) {
    SimulatedWindow window = desk.window("Mail");
    window.add({.role = "AXTextField", .title = "To", .frame = {{120, 80}, {300, 20}}, .children = {}});
    desk.accessibility.setFocusedElement(window.last);
    desk.accessibility.setStatus(window.last, ax::role, AxStatus::failure);
    EXPECT_EQ(engine.focusedInput(), (FocusedInput{120, 920}));
    engine.resetCaches();
    desk.accessibility.setStatus(window.last, ax::position, AxStatus::failure);
    EXPECT_EQ(engine.focusedInput(), std::nullopt);
}

TEST_F(DisplayEngineTest, TheCaretIsTheTopLeftCornerOfTheSelectionAndIsNotRemembered) {
    SimulatedWindow window = desk.window("Mail");
    window.add({.role = "AXTextField", .title = "To", .frame = {{120, 80}, {300, 20}}, .children = {}});
    desk.accessibility.setFocusedElement(window.last);
    EXPECT_EQ(engine.focusedCaret(), std::nullopt) << "no selection";
    desk.accessibility.set(window.last, ax::selectedTextRange, TextRange{3, 0});
    EXPECT_EQ(engine.focusedCaret(), std::nullopt) << "no bounds";
    desk.accessibility.set(window.last, ax::boundsForRange, AxRect{{140, 84}, {1, 16}});
    EXPECT_EQ(engine.focusedCaret(), (FocusedCaret{140, 916}));
    desk.accessibility.set(window.last, ax::boundsForRange, AxRect{{150, 84}, {1, 16}});
    EXPECT_EQ(engine.focusedCaret(), (FocusedCaret{150, 916}));
    desk.screens.setOnly(std::nullopt);
    EXPECT_EQ(engine.focusedCaret(), std::nullopt) << "no screen";
}

TEST_F(DisplayEngineTest, ResettingForgetsAllSix) {
    SimulatedWindow window = desk.window("Mail");
    window.button("To", {{120, 80}, {300, 20}});
    desk.accessibility.setFocusedElement(window.last);
    engine.focusedMouse();
    engine.focusedInput();
    engine.focusedWindow();
    engine.mainWindow();
    engine.screenContaining(1, 1);
    engine.screenFor(std::nullopt);
    EXPECT_TRUE(engine.cachedFocusedMouse && engine.cachedFocusedInput && engine.cachedFocusedWindow &&
                engine.cachedMainWindow && engine.cachedScreenForPoint && engine.cachedScreenForWindow);
    engine.resetCaches();
    EXPECT_FALSE(engine.cachedFocusedMouse || engine.cachedFocusedInput || engine.cachedFocusedWindow ||
                 engine.cachedMainWindow || engine.cachedScreenForPoint || engine.cachedScreenForWindow);
}

}  // namespace
}  // namespace tarvix
