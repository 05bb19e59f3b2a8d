// What a search does to the brightness of the screen, read from its pixels.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "tests/desktop/X11Victim.h"
#include "tests/desktop/play/Activation.h"
#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Process.h"
#include "tests/desktop/play/Program.h"
#include "tests/desktop/play/ScreenImage.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using testing::Each;
using testing::ElementsAre;
using testing::Ge;
using testing::Le;

constexpr auto kLimit = 10s;
constexpr int kWhite = 255;
constexpr int kGrey = 128;
constexpr int kDimmed = 204;  // white under the default opacity of 0.2
constexpr int kBarHeight = 40;

constexpr std::uint32_t kBlack = 0, kRed = 0xff0000;

// Where each of the windows shows, whichever of the others are there.
constexpr ScreenPoint kInTarget{600, 800}, kBehind{150, 900}, kOnBar{1500, 1060}, kOnDesktop{1500, 200},
    kOnLater{850, 950};

constexpr X11Victim::Placement kTargetPlace{300, 500, 500, 400}, kBehindPlace{100, 600, 400, 350},
    kLaterPlace{700, 600, 400, 400}, kBarPlace{0, 1080 - kBarHeight, 1920, kBarHeight};

// The grey of a pixel, which may be off by one where it was blended; -1 for a colour.
int greyOf(std::uint32_t pixel) {
    const int red = static_cast<int>(pixel >> 16), green = static_cast<int>(pixel >> 8 & 255),
              blue = static_cast<int>(pixel & 255);
    return red == green && green == blue ? red : -1;
}

int greyIn(const ScreenImage& image, ScreenPoint at) { return greyOf(image.at(at.x, at.y)); }

bool isNear(int grey, int wanted) { return std::abs(grey - wanted) <= 1; }

class DimmingTest : public testing::Test {
protected:
    DimmingTest() : desktop_({0, 0, 1920, 1080}), behind_(kBehindPlace), bar_(kBarPlace), target_(kTargetPlace) {
        desktop_.set32("_NET_WM_WINDOW_TYPE", "ATOM", {desktop_.connection().atom("_NET_WM_WINDOW_TYPE_DESKTOP")});
        bar_.set32("_NET_WM_WINDOW_TYPE", "ATOM", {bar_.connection().atom("_NET_WM_WINDOW_TYPE_DOCK")});
        bar_.set32("_NET_WM_STRUT_PARTIAL", "CARDINAL", {0, 0, 0, kBarHeight, 0, 0, 0, 0, 0, 0, 0, 1919});
    }

    void SetUp() override {
        ASSERT_TRUE(desktop_.show());
        ASSERT_TRUE(behind_.show());
        ASSERT_TRUE(bar_.show());
        ASSERT_TRUE(target_.show());
        ASSERT_TRUE(target_.focus());
        for (const ScreenPoint place : {kOnDesktop, kBehind, kOnBar, kInTarget})
            ASSERT_TRUE(becomes(place, kWhite)) << place.x << "," << place.y << " is " << greyAt(place);
    }

    void startProgram(const std::string& settings = "{}") {
        const auto path = std::filesystem::path(std::getenv("XDG_CONFIG_HOME")) / "tarvix/tarvix.json";
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << settings;
        program_.emplace(TARVIX_PROGRAM);
        ASSERT_TRUE(program_->isReady());
    }
    void search() { ASSERT_TRUE(program_->pressHotKey(keyboard_)) << moments(); }
    void endSearch() { ASSERT_TRUE(program_->press(keyboard_, keysym::escape, milestone::inputHidden)); }

    // What the program has come through so far.
    std::string moments() const {
        std::string all;
        for (const Moment& moment : program_->log().all())
            all += moment.name + " " + std::to_string(moment.count) + "; ";
        return all;
    }

    static int greyAt(ScreenPoint at) {
        const auto pixel = capturePixel(at.x, at.y);
        return pixel ? greyOf(*pixel) : -1;
    }
    static bool becomes(ScreenPoint at, int grey) {
        return await(kLimit, [&] { return isNear(greyAt(at), grey); });
    }

    // Returns when all that the program and the compositor had to do for the search is on the screen: The Input takes
    // a key after the dimming has come, and a window that comes after that is shown.
    void settle() {
        ASSERT_TRUE(program_->type(keyboard_, "x", milestone::textChanged));
        X11Victim last({1880, 300, 30, 30, true});
        setBackground(last, kRed);
        ASSERT_TRUE(last.show());
        ASSERT_TRUE(await(kLimit, [] { return capturePixel(1890, 310) == kRed; }));
    }

    // Of the brightest channel of any pixel there.
    static int brightest(const ScreenImage& image, AxRect region) {
        std::uint32_t most = 0;
        for (int y = static_cast<int>(region.minY()); y < static_cast<int>(region.maxY()); ++y)
            for (int x = static_cast<int>(region.minX()); x < static_cast<int>(region.maxX()); ++x)
                for (const int shift : {0, 8, 16}) most = std::max(most, image.at(x, y) >> shift & 255);
        return static_cast<int>(most);
    }

    // In The Input, which stands above the target window, in front of nothing that is as bright.
    static std::optional<ScreenPoint> brightPlaceAboveTheTarget() {
        std::optional<ScreenPoint> place;
        await(kLimit, [&] {
            const auto now = captureScreen();
            for (int y = kTargetPlace.y - 120; y < kTargetPlace.y && !place; ++y)
                for (int x = kTargetPlace.x + 20; x < kTargetPlace.x + kTargetPlace.width - 20 && !place; ++x)
                    if (greyIn(*now, {x, y}) > kDimmed) place = ScreenPoint{x, y};
            return place.has_value();
        });
        return place;
    }

    // What a place goes through until it has come to a grey; each value once where it stays.
    static std::vector<int> greysUntil(ScreenPoint at, int grey) {
        std::vector<int> seen;
        await(kLimit, [&] {
            const int now = greyAt(at);
            if (seen.empty() || seen.back() != now) seen.push_back(now);
            return isNear(now, grey);
        });
        return seen;
    }

    static void setBackground(X11Victim& window, std::uint32_t pixel) {
        xcb_change_window_attributes(window.connection().get(), window.window(), XCB_CW_BACK_PIXEL, &pixel);
    }

    // A new window that becomes the active one would end the search.
    static void neverActivate(X11Victim& window) {
        window.set32("_NET_WM_USER_TIME", "CARDINAL", {0});
        window.set32("WM_HINTS", "WM_HINTS", {1, 0, 0, 0, 0, 0, 0, 0, 0});  // it takes no input
    }

    // As a taskbar does it; it comes to the front, even where it was active before.
    void activate(xcb_window_t window) {
        X11Connection& x = desktop_.connection();
        askForActivation(x, window);
        ASSERT_TRUE(await(kLimit, [&] {
            const auto active = x.items(x.root(), "_NET_ACTIVE_WINDOW");
            return !active.empty() && active.front() == window;
        }));
    }

    Keyboard keyboard_;
    X11Victim desktop_, behind_, bar_, target_;
    std::optional<Program> program_;
};

TEST_F(DimmingTest, TheTargetWindowAndTheDesktopsPanelStayBrightAndWhatIsBehindGoesDark) {
    startProgram();
    search();
    EXPECT_TRUE(becomes(kBehind, kDimmed)) << greyAt(kBehind);
    EXPECT_TRUE(isNear(greyAt(kOnDesktop), kDimmed)) << greyAt(kOnDesktop);
    EXPECT_EQ(greyAt(kInTarget), kWhite);
    EXPECT_EQ(greyAt(kOnBar), kWhite);
    endSearch();
    EXPECT_TRUE(becomes(kBehind, kWhite));
    EXPECT_EQ(greyAt(kInTarget), kWhite);
}

TEST_F(DimmingTest, ItReachesUnderTheDesktopsPanel) {
    startProgram();
    search();
    ASSERT_TRUE(becomes(kBehind, kDimmed));
    bar_.hide();
    EXPECT_TRUE(becomes(kOnBar, kDimmed)) << greyAt(kOnBar);
}

TEST_F(DimmingTest, TheOpacityOfEachSearchIsThatOfTheSettings) {
    startProgram(R"({"hazeOverWindowOpacity": 0.6})");
    search();
    EXPECT_TRUE(becomes(kBehind, 102)) << greyAt(kBehind);
    EXPECT_EQ(greyAt(kInTarget), kWhite);
}

TEST_F(DimmingTest, OverTheWholeScreenTheTargetAndThePanelAreDimmedToo) {
    startProgram(R"({"hazeOverWindowStyle": "fadeOutWholeScreen"})");
    search();
    for (const ScreenPoint place : {kInTarget, kBehind, kOnBar}) EXPECT_TRUE(becomes(place, kDimmed)) << greyAt(place);
}

TEST_F(DimmingTest, WithOnlyTheTargetsNothingIsDimmed) {
    startProgram(R"({"hazeOverWindowStyle": "onlyTargets"})");
    search();
    settle();
    const auto image = captureScreen();
    for (const ScreenPoint place : {kInTarget, kBehind, kOnBar}) EXPECT_EQ(greyIn(*image, place), kWhite);
}

TEST_F(DimmingTest, AFullScreenWindowGetsNoDimmingInEitherStyle) {
    X11Victim film({0, 0, 1920, 1080});
    film.set32("_NET_WM_STATE", "ATOM", {film.connection().atom("_NET_WM_STATE_FULLSCREEN")});
    ASSERT_TRUE(film.show());
    ASSERT_TRUE(film.focus());
    ASSERT_TRUE(becomes({20, 300}, kWhite));
    ASSERT_TRUE(becomes(kOnBar, kWhite));
    for (const auto* style : {"fadeOutExceptDockMenuBarAndFrontmostApp", "fadeOutWholeScreen"}) {
        program_.reset();
        startProgram(R"({"hazeOverWindowStyle": ")" + std::string(style) + "\"}");
        search();
        settle();
        const auto image = captureScreen();
        for (const ScreenPoint place : {kInTarget, kBehind, kOnBar, ScreenPoint{20, 300}})
            EXPECT_EQ(greyIn(*image, place), kWhite) << style;
    }
}

// A compositor that has much to do may leave out all pictures in between, so that it may have to be looked at again.
TEST_F(DimmingTest, ItComesAtOnceAndFadesAway) {
    startProgram(R"({"hazeOverWindowOpacity": 0.8})");
    bool wasBetween = false;
    for (int times = 0; times < 10 && !wasBetween; ++times) {
        search();
        const std::vector<int> coming = greysUntil(kBehind, 51);
        EXPECT_LE(coming.size(), 2u) << testing::PrintToString(coming);
        EXPECT_TRUE(isNear(coming.back(), 51)) << testing::PrintToString(coming);

        keyboard_.chord({keysym::escape});
        const std::vector<int> going = greysUntil(kBehind, kWhite);
        EXPECT_TRUE(std::ranges::is_sorted(going)) << testing::PrintToString(going);
        EXPECT_EQ(going.back(), kWhite);
        wasBetween = going.size() > 2;
    }
    EXPECT_TRUE(wasBetween);
}

TEST_F(DimmingTest, TheNextSearchBringsItBackBelowTheWindowThatIsActiveThen) {
    startProgram();
    for (int times = 0; times < 3; ++times) {
        search();
        EXPECT_TRUE(becomes(kBehind, kDimmed));
        EXPECT_EQ(greyAt(kInTarget), kWhite);
        endSearch();  // the next one comes while it still fades
    }
    ASSERT_TRUE(becomes(kBehind, kWhite));
    activate(behind_.window());
    search();
    EXPECT_TRUE(becomes(kInTarget, kDimmed));
    EXPECT_EQ(greyAt(kBehind), kWhite);
}

// A manager moves the windows alone, and would leave it where it was.
TEST_F(DimmingTest, AWindowThatComesBehindTheTargetDuringTheSearchIsDimmedToo) {
    startProgram();
    search();
    ASSERT_TRUE(becomes(kBehind, kDimmed));
    X11Victim later(kLaterPlace);
    neverActivate(later);
    ASSERT_TRUE(later.show());
    activate(target_.window());
    EXPECT_TRUE(becomes(kOnLater, kDimmed)) << greyAt(kOnLater);
    EXPECT_EQ(greyAt(kInTarget), kWhite);
}

TEST_F(DimmingTest, ADialogThatComesDuringTheSearchIsAboveIt) {
    startProgram();
    search();
    ASSERT_TRUE(becomes(kBehind, kDimmed));
    X11Victim dialog(kLaterPlace);
    dialog.set32("WM_TRANSIENT_FOR", "WINDOW", {target_.window()});
    neverActivate(dialog);
    ASSERT_TRUE(dialog.show());
    EXPECT_TRUE(becomes(kOnLater, kWhite)) << greyAt(kOnLater);
    EXPECT_TRUE(becomes(kBehind, kDimmed)) << greyAt(kBehind);
    EXPECT_EQ(greyAt(kInTarget), kWhite);
}

TEST_F(DimmingTest, TheInputStaysAboveAWindowThatComesOnTopLater) {
    startProgram();
    search();
    ASSERT_TRUE(becomes(kBehind, kDimmed));
    // It stands above the target window, and it alone changes anything there.
    const auto theInput = brightPlaceAboveTheTarget();
    ASSERT_TRUE(theInput);
    X11Victim notification({200, 300, 900, 250, true});
    notification.set32("_NET_WM_WINDOW_TYPE", "ATOM",
                       {notification.connection().atom("_NET_WM_WINDOW_TYPE_NOTIFICATION")});
    setBackground(notification, kBlack);
    ASSERT_TRUE(notification.show());
    EXPECT_TRUE(becomes({1050, 320}, 0));
    EXPECT_TRUE(await(kLimit, [&] { return greyAt(*theInput) > kGrey; })) << greyAt(*theInput);
}

// Under 0.6 nothing of the applications is brighter than this.
constexpr int kBrightestDimmed = 103;

TEST_F(DimmingTest, OverTheWholeScreenTheInputIsNotDimmed) {
    startProgram(R"({"hazeOverWindowStyle": "fadeOutWholeScreen", "hazeOverWindowOpacity": 0.6})");
    search();
    ASSERT_TRUE(becomes(kOnBar, 102)) << greyAt(kOnBar);
    // It stands at the target window's upper edge, and nothing else is bright.
    const auto image = captureScreen();
    const double top = kTargetPlace.y + 100, width = image->width;
    EXPECT_GT(brightest(*image, {{0, 0}, {width, top}}), kBrightestDimmed);
    EXPECT_LE(brightest(*image, {{0, top}, {width, image->height - top}}), kBrightestDimmed);
}

class DimmingOnTwoMonitorsTest : public DimmingTest {
protected:
    void SetUp() override {
        ASSERT_EQ(std::system("xrandr --setmonitor left 960/254x1080/286+0+0 screen"), 0);
        ASSERT_EQ(std::system("xrandr --setmonitor right 960/254x1080/286+960+0 none"), 0);
        DimmingTest::SetUp();
    }
    void TearDown() override {
        for (const auto* remove : {"xrandr --delmonitor right", "xrandr --delmonitor left"})
            EXPECT_EQ(std::system(remove), 0);
    }
};

TEST_F(DimmingOnTwoMonitorsTest, TheOtherMonitorIsLeftAloneInEitherStyle) {
    for (const auto* style : {"fadeOutExceptDockMenuBarAndFrontmostApp", "fadeOutWholeScreen"}) {
        program_.reset();
        ASSERT_TRUE(becomes(kBehind, kWhite));
        startProgram(R"({"hazeOverWindowStyle": ")" + std::string(style) + "\"}");
        const auto before = captureScreen();
        search();
        ASSERT_TRUE(becomes(kBehind, kDimmed));
        const auto during = captureScreen();
        const int edge = 960;
        EXPECT_TRUE(isNear(greyIn(*during, {edge - 1, 100}), kDimmed)) << greyIn(*during, {edge - 1, 100});
        bool isSame = true;
        for (int y = 0; y < during->height; ++y)
            for (int x = edge; x < during->width; ++x) isSame = isSame && during->at(x, y) == before->at(x, y);
        EXPECT_TRUE(isSame) << style;
    }
}

// On a desktop without a compositor
// -------------------------------------------------------------------------------------

class UncompositedDimmingTest : public DimmingTest {
protected:
    // Waits until windows are blended, or aren't any more. To and from that the server unmaps them for a moment, which
    // may cost the target the focus.
    void awaitBlending(bool isBlended) {
        X11Victim glass({1700, 300, 30, 30, true});
        setBackground(glass, kBlack);
        glass.set32("_NET_WM_WINDOW_OPACITY", "CARDINAL", {0x7fffffff});
        ASSERT_TRUE(glass.show());
        ASSERT_TRUE(becomes({1710, 310}, isBlended ? kGrey : 0)) << greyAt({1710, 310});
        ASSERT_TRUE(target_.focus());
    }
    void expectNothingIsDimmed() {
        search();
        settle();
        const auto image = captureScreen();
        for (const ScreenPoint place : {kOnDesktop, kInTarget, kBehind, kOnBar})
            EXPECT_EQ(greyIn(*image, place), kWhite);
        endSearch();
    }
};

TEST_F(UncompositedDimmingTest, NothingIsDimmedInEitherStyle) {
    for (const auto* style : {"fadeOutExceptDockMenuBarAndFrontmostApp", "fadeOutWholeScreen"}) {
        program_.reset();
        startProgram(R"({"hazeOverWindowStyle": ")" + std::string(style) + "\"}");
        expectNothingIsDimmed();
    }
}

TEST_F(UncompositedDimmingTest, ACompositorThatComesAndGoesWhileTheProgramRunsIsNoticed) {
    startProgram();
    expectNothingIsDimmed();
    {
        Process picom({"picom", "--config", std::string(std::getenv("XDG_CONFIG_HOME")) + "/picom.conf"});
        awaitBlending(true);
        search();
        EXPECT_TRUE(becomes(kBehind, kDimmed)) << greyAt(kBehind);
        EXPECT_EQ(greyAt(kInTarget), kWhite);
        endSearch();
        ASSERT_TRUE(becomes(kBehind, kWhite));
    }
    awaitBlending(false);
    expectNothingIsDimmed();
}

}  // namespace
}  // namespace tarvix
