#include <gtest/gtest.h>

#include <vector>

#include "linux/atspi/FrameMatching.h"

namespace tarvix::atspi {
namespace {

X11Window window(std::uint32_t number, const std::string& title, AxRect client) {
    X11Window made;
    made.number = number;
    made.title = title;
    made.client = client;
    return made;
}

FrameTraits frame(const std::string& title, RawBox box, bool active = false) {
    FrameTraits made;
    made.role = Role::frame;
    made.title = title;
    made.isActive = active;
    made.isShowing = true;
    made.box = box;
    return made;
}

// As GTK 4 tells it: a size and no place.
FrameTraits sizedFrame(const std::string& title, std::int32_t width, std::int32_t height, bool active = false) {
    FrameTraits made = frame(title, {0, 0, width, height}, active);
    made.isPlaced = false;
    return made;
}

constexpr int kNone = -1;

int chosen(std::size_t asked, const std::vector<WindowTraits>& windows, const std::vector<FrameTraits>& frames) {
    const auto match = frameOf(asked, windows, frames);
    return match ? static_cast<int>(match->frame) : kNone;
}

const X11Window kHeath = window(1, "Heath", {{100, 50}, {800, 600}});

TEST(FrameMatching, TheOnlyFrameOfTheOnlyWindowIsItsWhateverItSays) {
    EXPECT_EQ(chosen(0, {{kHeath, true}}, {frame("", {7, 7, 30, 20})}), 0);
}

TEST(FrameMatching, AFrameThatCannotBeReadIsNone) {
    FrameTraits unread = frame("Heath", {});
    unread.box.reset();
    EXPECT_EQ(chosen(0, {{kHeath, true}}, {unread}), kNone);
    EXPECT_EQ(chosen(0, {{kHeath, true}}, {}), kNone);
}

TEST(FrameMatching, SeveralWindowsOfAProcessAreKnownByTheirTitles) {
    const std::vector<WindowTraits> windows = {{kHeath, true}, {window(2, "Moor", {{100, 50}, {800, 600}}), false}};
    const std::vector<FrameTraits> frames = {sizedFrame("Moor", 800, 600), sizedFrame("Heath", 800, 600)};
    EXPECT_EQ(chosen(0, windows, frames), 1);
    EXPECT_EQ(chosen(1, windows, frames), 0);
}

TEST(FrameMatching, ATitleOutweighsAnActivityThatLagsBehind) {
    const std::vector<WindowTraits> windows = {{kHeath, true}, {window(2, "Moor", {{100, 50}, {800, 600}}), false}};
    const std::vector<FrameTraits> frames = {sizedFrame("Moor", 800, 600, true), sizedFrame("Heath", 800, 600)};
    EXPECT_EQ(chosen(0, windows, frames), 1);
    EXPECT_EQ(chosen(1, windows, frames), 0);
}

TEST(FrameMatching, ATitleThatHasJustChangedIsMadeUpForByActivityAndSize) {
    const std::vector<WindowTraits> windows = {{kHeath, true}, {window(2, "Moor", {{100, 50}, {800, 600}}), false}};
    const std::vector<FrameTraits> frames = {sizedFrame("Moor", 800, 600), sizedFrame("*Heath", 800, 600, true)};
    EXPECT_EQ(chosen(0, windows, frames), 1);
    EXPECT_EQ(chosen(1, windows, frames), 0);
}

TEST(FrameMatching, OfTwoWithTheSameTitleAndSizeTheActiveWindowHasTheActiveFrame) {
    const std::vector<WindowTraits> windows = {{kHeath, false}, {window(2, "Heath", {{300, 90}, {800, 600}}), true}};
    for (const int active : {0, 1}) {
        const std::vector<FrameTraits> frames = {sizedFrame("Heath", 800, 600, active == 0),
                                                 sizedFrame("Heath", 800, 600, active == 1)};
        EXPECT_EQ(chosen(1, windows, frames), active);
        EXPECT_EQ(chosen(0, windows, frames), 1 - active) << "the other one is left for the other one";
    }
}

TEST(FrameMatching, OfTwoWithTheSameTitleAndSizeThePlaceTellsWhereNoneIsActive) {
    const std::vector<WindowTraits> windows = {{kHeath, false}, {window(2, "Heath", {{300, 90}, {800, 600}}), false}};
    const std::vector<FrameTraits> frames = {frame("Heath", {300, 90, 800, 600}), frame("Heath", {100, 50, 800, 600})};
    EXPECT_EQ(chosen(0, windows, frames), 1);
    EXPECT_EQ(chosen(1, windows, frames), 0);
}

TEST(FrameMatching, WhatNothingTellsApartIsInTheOrderInWhichItWasMade) {
    // The second one is in front, and so stands first among the windows.
    const std::vector<WindowTraits> windows = {{window(2, "Heath", {{300, 90}, {800, 600}}), false}, {kHeath, false}};
    const std::vector<FrameTraits> frames = {sizedFrame("Heath", 800, 600), sizedFrame("Heath", 800, 600)};
    EXPECT_EQ(chosen(0, windows, frames), 1);
    EXPECT_EQ(chosen(1, windows, frames), 0);
}

TEST(FrameMatching, ADialogOverItsParentWithTheSameTitleIsKnownByItsSizeAndActivity) {
    X11Window dialog = window(2, "Heath", {{200, 150}, {400, 300}});
    dialog.types = {"DIALOG"};
    const std::vector<WindowTraits> windows = {{dialog, true}, {kHeath, false}};
    FrameTraits box = sizedFrame("Heath", 400, 300, true);
    box.role = Role::dialog;
    EXPECT_EQ(chosen(0, windows, {sizedFrame("Heath", 800, 600), box}), 1);
    EXPECT_EQ(chosen(1, windows, {sizedFrame("Heath", 800, 600), box}), 0);
}

TEST(FrameMatching, ADialogAsLargeAsItsParentIsKnownByItsKind) {
    X11Window dialog = window(2, "Heath", {{100, 50}, {800, 600}});
    dialog.types = {"DIALOG"};
    const std::vector<WindowTraits> windows = {{dialog, false}, {kHeath, false}};
    FrameTraits box = frame("Heath", {100, 50, 800, 600});
    box.role = Role::dialog;
    EXPECT_EQ(chosen(0, windows, {frame("Heath", {100, 50, 800, 600}), box}), 1);
    EXPECT_EQ(chosen(1, windows, {frame("Heath", {100, 50, 800, 600}), box}), 0);
}

TEST(FrameMatching, AWindowThatHasNoFrameDoesNotGetThatOfAnother) {
    const std::vector<WindowTraits> windows = {{window(2, "Splash", {{400, 400}, {300, 200}}), true}, {kHeath, false}};
    const std::vector<FrameTraits> frames = {frame("Heath", {100, 50, 800, 600})};
    EXPECT_EQ(chosen(0, windows, frames), kNone);
    EXPECT_EQ(chosen(1, windows, frames), 0);
}

TEST(FrameMatching, ABrowsersOtherRootViewsAreNotItsWindow) {
    const std::vector<FrameTraits> frames = {frame("", {0, 0, 1, 1}), frame("Heath", {100, 50, 800, 600}, true),
                                             frame("", {0, 0, 1, 1})};
    EXPECT_EQ(chosen(0, {{kHeath, true}}, frames), 1);
}

TEST(FrameMatching, TheShadowAndTheDecorationMayBeCountedIn) {
    X11Window shadowed = kHeath;
    shadowed.gtkFrameExtents = {{26, 26, 23, 29}};
    X11Window decorated = kHeath;
    decorated.frameExtents = {{5, 5, 21, 5}};
    const auto isPlacedWithItsSize = [](const X11Window& of, RawBox box) {
        const Likeness found = likeness(frame("", box), {of, false});
        return found.size && found.place;
    };
    EXPECT_TRUE(isPlacedWithItsSize(shadowed, {100, 50, 800, 600}));
    EXPECT_TRUE(isPlacedWithItsSize(shadowed, {126, 73, 748, 548}));
    EXPECT_TRUE(isPlacedWithItsSize(decorated, {95, 29, 810, 626}));
    EXPECT_FALSE(isPlacedWithItsSize(decorated, {95, 29, 800, 626}));
}

TEST(FrameMatching, AScaledWindowHasTheShapeOfItsFrame) {
    const Likeness whole = likeness(frame("", {50, 25, 400, 300}), {kHeath, false});
    EXPECT_TRUE(whole.shape && whole.place && !whole.size);
    const Likeness fraction = likeness(frame("", {67, 33, 533, 400}), {kHeath, false});
    EXPECT_TRUE(fraction.shape && fraction.place && !fraction.size);
    EXPECT_FALSE(likeness(frame("", {50, 25, 400, 290}), {kHeath, false}).shape);
    EXPECT_FALSE(likeness(frame("", {50, 25, 80, 60}), {kHeath, false}).shape) << "nobody scales by ten";
}

TEST(FrameMatching, APopupsFrameBelongsToNoManagedWindow) {
    FrameTraits popup = frame("Heath", {100, 50, 800, 600}, true);
    popup.role = Role::window;
    popup.isPopup = true;
    EXPECT_EQ(chosen(0, {{kHeath, true}}, {popup, frame("Heath", {100, 50, 800, 600})}), 1);
    X11Window menu = window(3, "", {{120, 80}, {200, 300}});
    menu.isOverrideRedirect = true;
    popup.box = RawBox{120, 80, 200, 300};
    EXPECT_EQ(chosen(0, {{menu, false}, {kHeath, true}}, {frame("Heath", {100, 50, 800, 600}), popup}), 1);
}

TEST(FrameMatching, NotificationsThatLieOneBelowTheOtherAreKnownByTheirPlaces) {
    X11Window first = window(1, "notifyd", {{1699, 16}, {205, 103}}),
              second = window(2, "notifyd", {{1699, 135}, {205, 103}});
    first.isOverrideRedirect = second.isOverrideRedirect = true;
    const std::vector<FrameTraits> frames = {frame("", {1699, 16, 205, 103}), frame("", {1699, 135, 205, 103})};
    EXPECT_EQ(chosen(0, {{second, false}, {first, false}}, frames), 1);
    EXPECT_EQ(chosen(1, {{second, false}, {first, false}}, frames), 0);
}

TEST(FrameMatching, ATooltipIsNoFrame) {
    FrameTraits tip = frame("Heath", {100, 50, 800, 600});
    tip.role = Role::toolTip;
    EXPECT_EQ(chosen(0, {{kHeath, true}}, {tip}), kNone);
    EXPECT_EQ(chosen(0, {{kHeath, true}}, {tip, frame("Heath", {100, 50, 800, 600})}), 1);
}

TEST(FrameMatching, TheOneWithTitleAndSizeIsObvious) {
    const FrameTraits other = frame("Moor", {0, 0, 30, 20}), same = frame("Heath", {100, 50, 800, 600});
    const auto obvious = obviousFrameOf(kHeath, std::vector{other, same});
    ASSERT_TRUE(obvious);
    EXPECT_EQ(obvious->frame, 1u);
    EXPECT_FALSE(obviousFrameOf(kHeath, std::vector{same, same}));
    EXPECT_FALSE(obviousFrameOf(kHeath, std::vector{same, frame("Moor", {0, 0, 800, 600})})) << "it has the size";
    EXPECT_FALSE(obviousFrameOf(kHeath, std::vector{same, frame("Heath", {0, 0, 30, 20})})) << "it has the title";
    EXPECT_FALSE(obviousFrameOf(kHeath, std::vector{other}));
}

TEST(FrameMatching, AnotherProcessSpeaksForAWindowByTitleAndSizeOrByActivitySizeAndPlace) {
    const auto may = [](const FrameTraits& of, bool active) { return maySpeakFor(likeness(of, {kHeath, active})); };
    EXPECT_TRUE(may(sizedFrame("Heath", 800, 600), false));
    EXPECT_TRUE(may(sizedFrame("Heath", 400, 300), true));
    EXPECT_TRUE(may(frame("", {100, 50, 800, 600}, true), true));
    EXPECT_FALSE(may(frame("", {100, 50, 800, 600}, true), false)) << "another window is the active one";
    EXPECT_FALSE(may(frame("", {100, 50, 800, 600}), true));
    EXPECT_FALSE(may(sizedFrame("", 800, 600, true), true));
    EXPECT_FALSE(may(sizedFrame("Heath", 800, 500, true), true));
}

}  // namespace
}  // namespace tarvix::atspi
