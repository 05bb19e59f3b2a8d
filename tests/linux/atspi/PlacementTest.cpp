#include <gtest/gtest.h>

#include <climits>

#include "linux/atspi/Placement.h"

namespace tarvix::atspi {
namespace {

X11Window window(AxRect client) {
    X11Window made;
    made.client = client;
    return made;
}

TEST(Placement, Gtk3TellsPlacesOnTheScreenInItsOwnUnits) {
    const Placement plain = place(Toolkit::gtk3, window({{100, 50}, {800, 600}}), {100, 50, 800, 600});
    EXPECT_EQ(plain.toRoot({110, 70, 30, 20}, false), (AxRect{{110, 70}, {30, 20}}));
    const Placement doubled = place(Toolkit::gtk3, window({{200, 100}, {1600, 1200}}), {100, 50, 800, 600});
    EXPECT_EQ(doubled.toRoot({110, 70, 30, 20}, false), (AxRect{{220, 140}, {60, 40}}));
}

// 101 pixels are 50 of its units, and the pixel between is lost to all that is in the window.
TEST(Placement, Gtk3RoundsThePlaceOfItsWindowAndThatOfAllInItAlike) {
    const Placement odd = place(Toolkit::gtk3, window({{101, 53}, {1600, 1200}}), {50, 26, 800, 600});
    EXPECT_EQ(odd.toRoot({60, 36, 30, 20}, false), (AxRect{{121, 73}, {60, 40}}));
    const Placement left = place(Toolkit::gtk3, window({{-101, 53}, {1600, 1200}}), {-50, 26, 800, 600});
    EXPECT_EQ(left.toRoot({-40, 36, 30, 20}, false), (AxRect{{-81, 73}, {60, 40}}));
}

TEST(Placement, AnEdgeBetweenTwoPixelsIsThatOfTheNextOne) {
    const Placement half = place(Toolkit::qt, window({{300, 150}, {1500, 900}}), {200, 100, 1000, 600});
    EXPECT_EQ(half.toRoot({201, 101, 1, 1}, false), (AxRect{{302, 152}, {1, 1}}));
    EXPECT_EQ(half.toRoot({202, 103, 43, 19}, false), (AxRect{{303, 155}, {65, 28}}));
}

// Of 1001 units, 1251.25 pixels.
TEST(Placement, AScaleIsNotThatOfAWindowWhoseSizeWasRounded) {
    const Placement quarter = place(Toolkit::qt, window({{0, 0}, {1251, 750}}), {0, 0, 1001, 600});
    EXPECT_EQ(quarter.scale, 1.25);
    EXPECT_EQ(place(Toolkit::qt, window({{0, 0}, {1100, 660}}), {0, 0, 1000, 600}).scale, 1.1) << "no whole dots";
}

TEST(Placement, TheDecorationThatGtk3CountsInIsNoScale) {
    const Placement decorated = place(Toolkit::gtk3, window({{300, 100}, {1200, 800}}), {295, 71, 1210, 834});
    EXPECT_EQ(decorated.toRoot({310, 120, 30, 20}, false), (AxRect{{310, 120}, {30, 20}}));
}

TEST(Placement, Gtk4IsInsideTheShadowThatItDraws) {
    X11Window shadowed = window({{100, 50}, {852, 652}});
    shadowed.gtkFrameExtents = X11Window::Extents{26, 26, 23, 29};
    const Placement plain = place(Toolkit::gtk4, shadowed, {0, 0, 800, 600});
    EXPECT_EQ(plain.toRoot({10, 20, 30, 20}, false), (AxRect{{136, 93}, {30, 20}}));
    shadowed.client.size = {1704, 1304};
    shadowed.gtkFrameExtents = X11Window::Extents{52, 52, 46, 58};
    const Placement doubled = place(Toolkit::gtk4, shadowed, {0, 0, 800, 600});
    EXPECT_EQ(doubled.toRoot({10, 20, 30, 20}, false), (AxRect{{172, 136}, {60, 40}}));
}

TEST(Placement, Gtk4WithoutAShadowIsInsideItsBorder) {
    const Placement bordered = place(Toolkit::gtk4, window({{100, 50}, {810, 610}}), {0, 0, 800, 600});
    EXPECT_EQ(bordered.toRoot({10, 20, 30, 20}, false), (AxRect{{115, 75}, {30, 20}}));
    const Placement bare = place(Toolkit::gtk4, window({{100, 50}, {800, 600}}), {0, 0, 800, 600});
    EXPECT_EQ(bare.toRoot({10, 20, 30, 20}, false), (AxRect{{110, 70}, {30, 20}}));
}

TEST(Placement, Gtk4AloneIsAskedForPlacesInTheWindow) {
    EXPECT_EQ(coordinatesOf(Toolkit::gtk4), Coordinates::window);
    for (const Toolkit toolkit : {Toolkit::gtk3, Toolkit::qt, Toolkit::chromium, Toolkit::gecko, Toolkit::libreOffice,
                                  Toolkit::clutter, Toolkit::other})
        EXPECT_EQ(coordinatesOf(toolkit), Coordinates::screen);
}

TEST(Placement, QtScalesDistancesWithinTheWindowOnly) {
    // On a second screen at 1920, of scale 2: its logical origin is its physical one.
    const Placement second = place(Toolkit::qt, window({{2120, 200}, {800, 600}}), {2020, 100, 400, 300});
    EXPECT_EQ(second.toRoot({2030, 110, 40, 20}, false), (AxRect{{2140, 220}, {80, 40}}));
    const Placement first = place(Toolkit::qt, window({{100, 50}, {800, 600}}), {100, 50, 800, 600});
    EXPECT_EQ(first.toRoot({110, 60, 40, 20}, false), (AxRect{{110, 60}, {40, 20}}));
}

TEST(Placement, QtsScaleNeedNotBeWhole) {
    const Placement between = place(Toolkit::qt, window({{0, 0}, {1200, 900}}), {0, 0, 800, 600});
    EXPECT_EQ(between.toRoot({100, 40, 20, 10}, false), (AxRect{{150, 60}, {30, 15}}));
}

TEST(Placement, ChromiumsPagesAreInPixelsAndItsToolbarInUnits) {
    const Placement doubled = place(Toolkit::chromium, window({{20, 20}, {1880, 1040}}), {10, 10, 940, 520});
    EXPECT_EQ(doubled.toRoot({15, 12, 30, 20}, false), (AxRect{{30, 24}, {60, 40}}));
    EXPECT_EQ(doubled.toRoot({15, 212, 30, 20}, true), (AxRect{{15, 212}, {30, 20}}));
}

TEST(Placement, FirefoxAndLibreOfficeHaveWholeScales) {
    for (const Toolkit toolkit : {Toolkit::gecko, Toolkit::libreOffice}) {
        const Placement doubled = place(toolkit, window({{200, 100}, {1600, 1200}}), {100, 50, 800, 600});
        EXPECT_EQ(doubled.toRoot({110, 70, 30, 20}, false), (AxRect{{220, 140}, {60, 40}}));
        EXPECT_EQ(doubled.toRoot({110, 70, 30, 20}, true), (AxRect{{220, 140}, {60, 40}}));
    }
}

TEST(Placement, AnUnknownToolkitIsTakenAtItsWord) {
    const Placement plain = place(Toolkit::other, window({{200, 100}, {1600, 1200}}), {100, 50, 800, 600});
    EXPECT_EQ(plain.toRoot({110, 70, 30, 20}, false), (AxRect{{110, 70}, {30, 20}}));
}

TEST(Placement, AFrameWithoutSizeHasNoScale) {
    for (const Toolkit toolkit : {Toolkit::gtk3, Toolkit::gtk4, Toolkit::qt, Toolkit::chromium, Toolkit::gecko})
        EXPECT_EQ(place(toolkit, window({{200, 100}, {1600, 1200}}), {0, 0, 0, 0}).scale, 1)
            << static_cast<int>(toolkit);
}

TEST(Placement, APointOfTheScreenIsAPointOfTheToolkitAgain) {
    const Placement placement = place(Toolkit::qt, window({{2120, 200}, {800, 600}}), {2020, 100, 400, 300});
    EXPECT_EQ(placement.fromRoot({2140, 220}, false), (RawBox{2030, 110, 0, 0}));
    EXPECT_EQ(placement.fromRoot({2141, 221}, false), (RawBox{2030, 110, 0, 0}));
    EXPECT_EQ(placement.fromRoot({2139, 219}, false), (RawBox{2029, 109, 0, 0}));
}

struct BoxCase {
    RawBox box;
    bool sane;
    const char* what;
};

class SaneBoxTest : public ::testing::TestWithParam<BoxCase> {};

TEST_P(SaneBoxTest, IsTakenForAnAnswerOrNot) { EXPECT_EQ(isSane(GetParam().box), GetParam().sane) << GetParam().what; }

INSTANTIATE_TEST_SUITE_P(Placement, SaneBoxTest,
                         ::testing::Values(BoxCase{{10, 20, 30, 40}, true, "a control"},
                                           BoxCase{{0, 0, 0, 0}, true, "an empty container"},
                                           BoxCase{{-500, -300, 30, 40}, true, "left of and above the screen"},
                                           BoxCase{{0, 150122, 300, 24}, true, "row 5000 of a list"},
                                           BoxCase{{0, -2000000, 1200, 33554428}, true, "a long page"},
                                           BoxCase{{-1, 20, 30, 40}, true, "one pixel outside"},
                                           BoxCase{{INT_MIN, INT_MIN, 1, 1}, false, "not visible in GTK 3"},
                                           BoxCase{{INT_MIN, INT_MIN, 80, 30}, false, "the same with its size"},
                                           BoxCase{{10, INT_MIN, 80, 30}, false, "half a place"},
                                           BoxCase{{INT_MAX, 0, 80, 30}, false, "far away"},
                                           BoxCase{{-1, -1, -1, -1}, false, "not made yet in Firefox"},
                                           BoxCase{{-1, -1, 1, 1}, false, "not made yet"},
                                           BoxCase{{-1, -1, 0, 0}, false, "not made yet"},
                                           BoxCase{{10, 20, -5, 40}, false, "a negative width"},
                                           BoxCase{{10, 20, 5, INT_MIN}, false, "a negative height"},
                                           BoxCase{{0, 0, 1372435568, 21904}, false, "uninitialised, GTK 4.18"},
                                           BoxCase{{0, 0, 21904, 1372435568}, false, "uninitialised, GTK 4.18"}));

}  // namespace
}  // namespace tarvix::atspi
