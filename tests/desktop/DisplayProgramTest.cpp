// The real program on two monitors, and on a scaled desktop.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/DesktopScale.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Program.h"
#include "tests/desktop/play/ScreenImage.h"

namespace tarvix {

// As GoogleTest prints it.
inline void PrintTo(const AxRect& rect, std::ostream* out) {
    *out << rect.size.width << "x" << rect.size.height << "+" << rect.origin.x << "+" << rect.origin.y;
}

namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;

constexpr auto kLimit = 10s;

// The margin of The Input's frame that isn't painted, at a scale of 1.
constexpr double kUnpainted = 15;

bool isWithin(const AxRect& inner, const AxRect& outer) {
    return inner.minX() >= outer.minX() && inner.maxX() <= outer.maxX() && inner.minY() >= outer.minY() &&
           inner.maxY() <= outer.maxY();
}

class DisplayProgramTest : public testing::Test {
protected:
    DisplayProgramTest() : x_(xcb_connect(nullptr, nullptr)) {
        root_ = xcb_setup_roots_iterator(xcb_get_setup(x_)).data->root;
    }
    ~DisplayProgramTest() override {
        program_.reset();
        fixture_.reset();
        removeMonitors();
        xcb_disconnect(x_);
    }

    void play(const std::string& script, const std::vector<std::string>& more = {}) {
        fixture_.emplace(script, more);
        ASSERT_TRUE(fixture_->isReady()) << script;
    }
    void startProgram(const std::string& settings = "{}", const Process::Environment& changes = {}) {
        std::filesystem::create_directories(settingsFile().parent_path());
        std::ofstream(settingsFile()) << settings;
        Process::Environment environment = changes;
        environment.insert_or_assign("XDG_CONFIG_HOME", folder_.file("configuration"));
        program_.emplace(TARVIX_PROGRAM, environment);
        ASSERT_TRUE(program_->isReady());
    }
    std::filesystem::path settingsFile() const {
        return std::filesystem::path(folder_.file("configuration")) / "tarvix/tarvix.json";
    }
    // As the user's own hand would: the program's other settings stay.
    void setInputPosition(const std::string& position) {
        nlohmann::json settings = nlohmann::json::parse(std::ifstream(settingsFile()));
        settings["inputPosition"] = position;
        const std::string changed = settingsFile().string() + ".changed";
        std::ofstream(changed) << settings;
        std::filesystem::rename(changed, settingsFile());
    }

    // Monitors as a user may define them over parts of the root window.
    struct Monitor {
        std::string name;
        AxRect area;
        bool isPrimary = false;
    };
    void setMonitors(const std::vector<Monitor>& monitors) {
        removeMonitors();
        bool isFirst = true;
        for (const Monitor& monitor : monitors) {
            const auto whole = [](double value) { return std::to_string(static_cast<int>(value)); };
            const AxRect& area = monitor.area;
            // With the server's own output, the first one takes the place of the server's own monitor.
            const std::string command = std::string("xrandr --setmonitor '") + (monitor.isPrimary ? "*" : "") +
                                        monitor.name + "' " + whole(area.width()) + "/300x" + whole(area.height()) +
                                        "/200+" + whole(area.minX()) + "+" + whole(area.minY()) +
                                        (isFirst ? " screen" : " none");
            ASSERT_EQ(std::system(command.c_str()), 0) << command;
            monitors_.insert(monitor.name);
            isFirst = false;
        }
    }
    void removeMonitors() {
        for (const std::string& name : monitors_) EXPECT_EQ(std::system(("xrandr --delmonitor " + name).c_str()), 0);
        monitors_.clear();
    }

    // Moves the fixture's window, as its user would, and waits until it knows its new place.
    void moveWindow(int x, int y) {
        const std::vector<KnownControl> before = fixture_->controls();
        const std::uint32_t place[] = {static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y)};
        xcb_configure_window(x_, fixture_->window(), XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, place);
        xcb_flush(x_);
        const auto places = [](const std::vector<KnownControl>& controls) {
            std::vector<AxPoint> origins;
            for (const KnownControl& control : controls)
                if (control.visible == KnownControl::Visible::yes) origins.push_back(control.frame.origin);
            return origins;
        };
        ASSERT_TRUE(await(kLimit, [&] { return places(fixture_->controls()) != places(before); }));
    }
    AxRect frameOf(const std::string& name) const {
        for (const KnownControl& control : fixture_->controls())
            if (control.name == name) return control.frame;
        ADD_FAILURE() << name;
        return {};
    }
    // The fixture's window without its title bar.
    AxRect windowFrame() const {
        AxRect frame = geometryOf(fixture_->window());
        if (auto* place = xcb_translate_coordinates_reply(
                x_, xcb_translate_coordinates(x_, fixture_->window(), root_, 0, 0), nullptr)) {
            frame.origin = {double(place->dst_x), double(place->dst_y)};
            std::free(place);
        }
        return frame;
    }

    // Opens The Input, types a control's name, and looks at the screen before and after its marker came.
    void search(const std::string& name, const AxRect& dimmed) {
        ASSERT_TRUE(await(kLimit, [] { return captureScreen() == captureScreen(); })) << "the screen doesn't rest";
        bright_ = captureScreen();
        ASSERT_TRUE(bright_);
        ASSERT_NO_FATAL_FAILURE(openWithCandidates());
        ASSERT_TRUE(await(kLimit, [&] {
            const auto before = dark_;
            dark_ = captureScreen();
            return dark_ && isDimmed(*dark_, dimmed) && before &&
                   cornersOf(*before, dimmed) == cornersOf(*dark_, dimmed);
        })) << "nothing is dimmed";
        ASSERT_TRUE(program_->type(keyboard_, name)) << history();
    }
    // An application on a busy machine may not answer the first searches in time.
    void openWithCandidates() {
        std::size_t candidates = 0;
        ASSERT_TRUE(await(20s, [&] {
            const Program::Step opened = program_->pressHotKey(keyboard_);
            const auto read = program_->reached(milestone::candidatesRead, opened.pressed);
            candidates = read ? read->count : 0;
            if (candidates == 0) program_->press(keyboard_, keysym::escape, milestone::inputHidden);
            return candidates > 0;
        })) << history();
    }
    void expectMarkerAt(const AxRect& frame, const AxRect& monitors) {
        // A strip from which The Input, which changes too, is far.
        const AxRect strip{{monitors.minX(), frame.minY() - 10}, {monitors.width(), frame.height() + 20}};
        std::optional<AxRect> changed;
        EXPECT_TRUE(await(kLimit,
                          [&] {
                              const auto now = captureScreen();
                              changed = now ? difference(*dark_, *now, strip) : std::nullopt;
                              return changed == frame;
                          }))
            << "marked is " << testing::PrintToString(changed) << ", and the control stands at "
            << testing::PrintToString(frame);
    }
    void confirmAndExpectClicks(const std::vector<std::string>& names) {
        ASSERT_TRUE(program_->press(keyboard_, keysym::returnKey, milestone::inputHidden));
        std::vector<FixtureClick> wanted;
        for (const std::string& name : names) wanted.push_back({name, 1, 1, ""});
        EXPECT_TRUE(await(kLimit, [&] { return fixture_->clicks().size() >= wanted.size(); }));
        EXPECT_EQ(fixture_->clicks(), wanted);
        // The next search is to find the screen bright.
        EXPECT_TRUE(await(kLimit, [&] { return isBright(); })) << "the dimming doesn't go";
    }

    // What the program has told so far, for the message of a failure.
    std::string history() const {
        std::string lines;
        for (const Moment& moment : program_->log().all())
            lines +=
                std::to_string(moment.microseconds) + " " + moment.name + " " + std::to_string(moment.count) + "\n";
        return lines;
    }

    // The program's windows that are on the screen, in root pixels, those whose title begins so.
    std::vector<AxRect> ownWindows(const std::string& title = "") {
        std::vector<AxRect> found;
        for (const xcb_window_t window : childrenOf(root_)) {
            const auto pid = property(window, "_NET_WM_PID");
            std::uint32_t number = 0;
            if (pid.size() >= 4) std::copy_n(pid.begin(), 4, reinterpret_cast<char*>(&number));
            const bool isOurs = static_cast<pid_t>(number) == program_->process().pid();
            if (isOurs && isViewable(window) && property(window, "_NET_WM_NAME").starts_with(title))
                found.push_back(geometryOf(window));
        }
        return found;
    }
    AxRect theInput() {
        const std::vector<AxRect> found = ownWindows("The Input");
        EXPECT_EQ(found.size(), 1u);
        return found.empty() ? AxRect{} : found.front();
    }

    static std::vector<std::uint32_t> cornersOf(const ScreenImage& image, const AxRect& area) {
        std::vector<std::uint32_t> corners;
        for (const double x : {area.minX(), area.maxX() - 1})
            for (const double y : {area.minY(), area.maxY() - 1})
                corners.push_back(image.at(static_cast<int>(x), static_cast<int>(y)));
        return corners;
    }
    bool isDimmed(const ScreenImage& image, const AxRect& area) const {
        const auto before = cornersOf(*bright_, area), now = cornersOf(image, area);
        return std::equal(before.begin(), before.end(), now.begin(), [](auto a, auto b) { return a != b; });
    }
    bool isUntouched(const ScreenImage& image, const AxRect& area) const {
        return cornersOf(image, area) == cornersOf(*bright_, area);
    }
    bool isBright() const {
        const auto now = captureScreen();
        if (!now) return false;
        for (const AxRect& area : areas_)
            if (!isUntouched(*now, area)) return false;
        return true;
    }

    Keyboard keyboard_;
    std::optional<Fixture> fixture_;
    std::optional<Program> program_;
    std::vector<AxRect> areas_;  // whose brightness counts
    std::optional<ScreenImage> bright_, dark_;

private:
    std::vector<xcb_window_t> childrenOf(xcb_window_t window) const {
        std::vector<xcb_window_t> children;
        if (auto* tree = xcb_query_tree_reply(x_, xcb_query_tree(x_, window), nullptr)) {
            children.assign(xcb_query_tree_children(tree), xcb_query_tree_children(tree) + tree->children_len);
            std::free(tree);
        }
        return children;
    }
    AxRect geometryOf(xcb_window_t window) const {
        AxRect rect;
        if (auto* geometry = xcb_get_geometry_reply(x_, xcb_get_geometry(x_, window), nullptr)) {
            rect = {{double(geometry->x), double(geometry->y)}, {double(geometry->width), double(geometry->height)}};
            std::free(geometry);
        }
        return rect;
    }
    bool isViewable(xcb_window_t window) const {
        bool viewable = false;
        if (auto* attributes = xcb_get_window_attributes_reply(x_, xcb_get_window_attributes(x_, window), nullptr)) {
            viewable = attributes->map_state == XCB_MAP_STATE_VIEWABLE;
            std::free(attributes);
        }
        return viewable;
    }
    std::string property(xcb_window_t window, const std::string& name) const {
        std::string value;
        auto* atom = xcb_intern_atom_reply(
            x_, xcb_intern_atom(x_, 0, static_cast<std::uint16_t>(name.size()), name.c_str()), nullptr);
        if (!atom) return value;
        if (auto* reply = xcb_get_property_reply(
                x_, xcb_get_property(x_, 0, window, atom->atom, XCB_GET_PROPERTY_TYPE_ANY, 0, 256), nullptr)) {
            value.assign(static_cast<const char*>(xcb_get_property_value(reply)),
                         static_cast<std::size_t>(xcb_get_property_value_length(reply)));
            std::free(reply);
        }
        std::free(atom);
        return value;
    }

    ScratchFolder folder_;
    xcb_connection_t* x_;
    xcb_window_t root_;
    std::set<std::string> monitors_;
};

// Two monitors -------------------------------------------------------------------------------------------------------

struct TwoMonitors {
    std::string name;
    AxRect first, second;
    ScreenPoint onSecond, across;       // places of a window
    std::string nearSecond, nearFirst;  // controls of the window that stands across: one on either half

    friend std::ostream& operator<<(std::ostream& out, const TwoMonitors& monitors) { return out << monitors.name; }
};

class MonitorsTest : public DisplayProgramTest, public testing::WithParamInterface<TwoMonitors> {
protected:
    void SetUp() override {
        areas_ = {GetParam().first, GetParam().second};
        setMonitors({{"FIRST", GetParam().first, true}, {"SECOND", GetParam().second}});
        play("gtk3.py");
    }
    void moveTo(ScreenPoint place) { moveWindow(place.x, place.y); }

    const AxRect& first = GetParam().first;
    const AxRect& second = GetParam().second;
};

TEST_P(MonitorsTest, AWindowOnTheSecondMonitorIsSearchedThere) {
    moveTo(GetParam().onSecond);
    ASSERT_TRUE(isWithin(windowFrame(), second)) << testing::PrintToString(windowFrame());
    startProgram();
    const AxRect hazel = frameOf("Hazel");
    ASSERT_NO_FATAL_FAILURE(search("hazel", second));
    EXPECT_TRUE(isUntouched(*dark_, first)) << "only the monitor of the window is dimmed";
    EXPECT_TRUE(isWithin(theInput(), second)) << testing::PrintToString(theInput());
    EXPECT_EQ(theInput().minX(), windowFrame().minX() + kUnpainted);
    EXPECT_EQ(theInput().maxY(), windowFrame().minY() - kUnpainted);
    EXPECT_THAT(ownWindows(), Contains(second)) << "the canvas";
    expectMarkerAt(hazel, second);
    confirmAndExpectClicks({"Hazel"});
}

TEST_P(MonitorsTest, AWindowAcrossBothIsSearchedOnBoth) {
    moveTo(GetParam().across);
    startProgram();
    const AxRect window = windowFrame();
    ASSERT_TRUE(intersects(window, first) && intersects(window, second));
    std::vector<std::string> clicked;
    for (const std::string& name : {GetParam().nearSecond, GetParam().nearFirst}) {
        const AxRect frame = frameOf(name);
        ASSERT_TRUE(isWithin(frame, name == GetParam().nearFirst ? first : second)) << name;
        ASSERT_NO_FATAL_FAILURE(search(name, second));
        EXPECT_TRUE(isUntouched(*dark_, first)) << "the monitor of the window's first corner is dimmed";
        EXPECT_THAT(ownWindows(), Contains(unite(second, window))) << "the canvas";
        expectMarkerAt(frame, window);
        clicked.push_back(name);
        confirmAndExpectClicks(clicked);
    }
}

TEST_P(MonitorsTest, BetweenTwoSearchesMonitorsAreUnpluggedAndChangeTheirSizes) {
    moveTo(GetParam().onSecond);
    startProgram();
    ASSERT_NO_FATAL_FAILURE(search("elder", second));
    expectMarkerAt(frameOf("Elder"), second);
    confirmAndExpectClicks({"Elder"});

    areas_ = {first};
    setMonitors({{"FIRST", first, true}});
    moveWindow(static_cast<int>(first.minX()) + 300, static_cast<int>(first.minY()) + 150);
    ASSERT_NO_FATAL_FAILURE(search("fennel", first));
    EXPECT_TRUE(isWithin(theInput(), first)) << testing::PrintToString(theInput());
    EXPECT_EQ(theInput().maxY(), windowFrame().minY() - kUnpainted);
    expectMarkerAt(frameOf("Fennel"), first);
    confirmAndExpectClicks({"Elder", "Fennel"});

    const AxRect smaller{first.origin, {first.width() - 100, first.height() - 60}};
    areas_ = {smaller};
    setMonitors({{"FIRST", smaller, true}});
    ASSERT_NO_FATAL_FAILURE(search("hazel", smaller));
    EXPECT_EQ(theInput().maxY(), windowFrame().minY() - kUnpainted);
    EXPECT_THAT(ownWindows(), Contains(smaller)) << "the canvas";
    expectMarkerAt(frameOf("Hazel"), smaller);
    confirmAndExpectClicks({"Elder", "Fennel", "Hazel"});
}

TEST_P(MonitorsTest, WhereItWasLeftTheInputIsAlwaysSeen) {
    moveTo(GetParam().onSecond);
    startProgram(R"({"inputPosition": "fixed"})");
    const auto openAndClose = [this] {
        EXPECT_TRUE(program_->pressHotKey(keyboard_)) << history();
        const AxRect place = theInput();
        EXPECT_TRUE(program_->press(keyboard_, keysym::escape, milestone::inputHidden));
        return place;
    };
    // Nobody has moved it: the first monitor's bottom left corner, wherever that is among the pixels.
    AxRect place = openAndClose();
    EXPECT_EQ(place.minX(), first.minX() + kUnpainted);
    EXPECT_EQ(place.maxY(), first.maxY() - kUnpainted);

    setInputPosition("aboveWindow");
    ASSERT_TRUE(await(kLimit, [&] { return isWithin(place = openAndClose(), second); }));
    setInputPosition("fixed");
    moveTo({GetParam().onSecond.x + 20, GetParam().onSecond.y + 20});
    ASSERT_TRUE(await(kLimit, [&] { return openAndClose() == place; })) << "it stays";

    setMonitors({{"FIRST", first, true}});
    EXPECT_TRUE(isWithin(openAndClose(), first)) << "its monitor has gone";
}

INSTANTIATE_TEST_SUITE_P(
    TheSecond, MonitorsTest,
    testing::Values(
        TwoMonitors{
            "left", {{1280, 0}, {1920, 1200}}, {{0, 500}, {1280, 1024}}, {150, 650}, {1000, 540}, "Hazel", "Moss 02"},
        TwoMonitors{
            "above", {{0, 1000}, {1920, 950}}, {{400, 0}, {1600, 1000}}, {600, 150}, {600, 800}, "Elder", "Maple"}),
    [](const auto& monitors) { return monitors.param.name; });

// The Input's scale --------------------------------------------------------------------------------------------------

class InputScaleTest : public DisplayProgramTest {
protected:
    void SetUp() override {
        areas_ = {{{0, 0}, {1920, 1080}}};
        play("gtk3.py");
        moveWindow(500, 250);
    }
    // The size of The Input as it opens, with an empty text.
    Size openAndClose() {
        bright_ = captureScreen();
        EXPECT_TRUE(program_->pressHotKey(keyboard_));
        const Size size = theInput().size;
        EXPECT_TRUE(program_->press(keyboard_, keysym::escape, milestone::inputHidden));
        EXPECT_TRUE(await(kLimit, [&] { return isBright(); })) << "the dimming doesn't go";
        return size;
    }
    Size unscaled() {
        startProgram();
        const Size size = openAndClose();
        program_.reset();
        return size;
    }
    static bool isScaled(Size size, Size from, double scale) {
        // The height of a line is rounded, and so are the width of the letters, the paddings and the border.
        return std::abs(size.height - scale * from.height) <= 3 && std::abs(size.width - scale * from.width) <= 6;
    }
};

// Outlined and filled alike: the border, the paddings and the letters are as many times as large.
TEST_F(InputScaleTest, AtTwiceTheDotsPerInchItIsTwiceAsLargeAndMarkersAreExact) {
    const Size plain = unscaled();
    const ResourceDpi resources(192);
    startProgram();
    const Size large = openAndClose();
    EXPECT_TRUE(isScaled(large, plain, 2))
        << large.width << "x" << large.height << " instead of twice " << plain.width << "x" << plain.height;
    ASSERT_NO_FATAL_FAILURE(search("hazel", areas_.front()));
    expectMarkerAt(frameOf("Hazel"), areas_.front());
    confirmAndExpectClicks({"Hazel"});
}

TEST_F(InputScaleTest, TheDotsPerInchAreFollowedWhileItRuns) {
    std::optional<ResourceDpi> resources(std::in_place, 96);
    startProgram();
    const Size plain = openAndClose();
    const auto becomes = [&](double scale) {
        return await(kLimit, [&] { return isScaled(openAndClose(), plain, scale); });
    };
    resources.emplace(144);
    EXPECT_TRUE(becomes(1.5)) << "by the resources";
    SettingsManager settings(192);
    ASSERT_TRUE(settings.isReady());
    EXPECT_TRUE(becomes(2)) << "by the settings manager";
    settings.setDpi(120);
    EXPECT_TRUE(becomes(1.25)) << "by the settings manager";
}

TEST_F(InputScaleTest, WithoutDotsPerInchTheToolkitsVariablesTell) {
    const Size plain = unscaled();
    for (const auto& [name, value, scale] :
         {std::tuple{"GDK_SCALE", "2", 2.0}, std::tuple{"QT_SCALE_FACTOR", "1.5", 1.5}}) {
        startProgram("{}", {{name, value}});
        const Size size = openAndClose();
        EXPECT_TRUE(isScaled(size, plain, scale))
            << name << ": " << size.width << "x" << size.height << " of " << plain.width << "x" << plain.height;
        program_.reset();
    }
}

}  // namespace
}  // namespace tarvix
