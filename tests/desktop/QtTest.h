// What the tests of the Qt services share: the application, waiting, and a windowing of their own.
#pragma once

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <QApplication>
#include <QImage>
#include <QScreen>
#include <QWidget>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/Listeners.h"
#include "platform/Milestones.h"
#include "platform/Panels.h"
#include "platform/Screens.h"
#include "qt/PanelServices.h"
#include "tests/TestAppearance.h"

namespace tarvix {

// Every test has the application; it is made once for the process and outlives all of them.
class QtTest : public testing::Test {
protected:
    QtTest();
};

// Runs the loop until the condition holds; false when it doesn't within ten seconds.
bool runUntil(const std::function<bool()>& condition);

// Runs the loop until all that was posted before has run.
void drain();

// The top-level widget of this object name.
QWidget* topLevel(const QString& name);

// The whole screen as it is shown now.
QImage screenshot();

// A connection of the test's own to the X server, other than Qt's.
class TestServer {
public:
    TestServer();
    ~TestServer();
    TestServer(const TestServer&) = delete;
    TestServer& operator=(const TestServer&) = delete;

    // Sends a window the press and the release of a key by its X key code, with modifiers in effect.
    void type(std::uint32_t window, std::uint8_t keyCode, std::uint16_t modifiers = 0);
    void sendFocus(std::uint32_t window, bool in);
    void movePointer(QPoint to);
    void button(bool press);
    void raise(std::uint32_t window);
    bool hasCompositor();
    std::uint32_t windowAt(QPoint point);  // the child of the root that gets the pointer's events there

private:
    void sync();
    void fake(std::uint8_t type, std::uint8_t detail, QPoint at = {});

    xcb_connection_t* connection_;
    std::uint32_t root_;
};

// What is done to a surface for dimming.
struct TestHaze {
    AxRect frame;
    double alpha = 1;
    bool isShown = false;
    std::vector<std::string> journal;  // of the showing and hiding
};

// Windowing that tells a window that it has the keyboard, without the desktop knowing of it. `composited` is what it
// answers; `lost` is what it would call.
class TestWindowing : public PanelWindowing {
public:
    bool takeKeyboard(std::uint32_t window, std::function<void()> lost) override;
    void releaseKeyboard() override;
    void stackOnTop(std::uint32_t window) override;
    std::unique_ptr<HazeSurface> makeHazeSurface() override;
    bool isComposited() override { return composited; }

    TestServer server;
    bool composited = server.hasCompositor();
    bool refusesKeyboard = false;
    std::uint32_t keyboardWindow = 0;
    std::function<void()> lost;
    std::vector<std::string> journal;
    TestHaze haze;
};

// One screen, as large as the X server's.
class TestScreens : public Screens {
public:
    std::vector<PanelRect> frames() override;
    std::optional<PanelRect> mainFrame() override { return frames().front(); }
    bool haveSeparateSpaces() override { return false; }
    PanelPoint mouseLocation() override { return {}; }
};

class TestMilestones : public Milestones {
public:
    void reached(std::string_view moment, std::size_t count) override {
        moments.push_back(std::string(moment) + " " + std::to_string(count));
    }
    bool has(const std::string& moment) const;

    std::vector<std::string> moments;
};

class QtPanelTest : public QtTest {
protected:
    TestWindowing windowing;
    TestScreens screens;
    TestMilestones milestones;
    TestAppearance appearance;
    PanelServices services{windowing, screens, milestones, appearance};
};

}  // namespace tarvix
