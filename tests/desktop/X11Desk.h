// The services of the X server as the program has them, on a loop of the test's own.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Events.h"
#include "linux/x11/X11HotKeys.h"
#include "linux/x11/X11KeyEvent.h"
#include "linux/x11/X11KeyState.h"
#include "linux/x11/X11Keyboard.h"
#include "linux/x11/X11WindowTree.h"
#include "tests/desktop/PollLoop.h"
#include "tests/desktop/X11Victim.h"

namespace tarvix {

using Lines = std::vector<std::string>;

// Keys by the X server's keycodes.
namespace key {
inline constexpr std::uint8_t a = 38, s = 39, space = 65, return_ = 36, down = 116;
inline constexpr std::uint8_t shift = 50, control = 37, alt = 64, super = 133, capsLock = 66, numLock = 77;
}  // namespace key

// The bits of the X server's modifiers.
namespace mask {
inline constexpr unsigned shift = 1, capsLock = 2, control = 4, alt = 8, numLock = 16, super = 64;
}  // namespace mask

class X11Desk : public testing::Test {
protected:
    X11Desk()
        : connection(std::move(X11Connection::open().value())),
          events(std::move(X11Events::open(*connection).value())),
          counting_(connection->onEvent([this](const xcb_generic_event_t& event) {
              if (const auto k = keyEventOf(*connection, event); k && k->isRepeat) ++repeats;
              return X11Connection::Handled::no;
          })),
          hotKeys(std::move(X11HotKeys::open(*connection).value())),
          keyboard(std::move(X11Keyboard::open(*connection, *events).value())),
          panel({600, 100, 300, 40, true}) {
        connection->watch(loop);
    }

    void SetUp() override {
        ASSERT_TRUE(application.show());
        ASSERT_TRUE(panel.show());
        ASSERT_TRUE(application.focus());
        hardware.movePointer(200, 200);
        settle();
        application.takeLog();
        panel.takeLog();
    }

    // Whatever a test did, nothing is held or locked afterwards.
    void TearDown() override {
        keyboard->releaseKeyboard();
        settle();
        EXPECT_TRUE(keysDownForApplications(*connection).none());
        EXPECT_EQ(modifierStates(*connection, {kMasterKeyboard}).front().effective(), 0);
    }

    // Has everything that was sent to us so far handled, and what we sent because of it.
    void settle() {
        connection->sync();
        loop.runPending();
        connection->sync();
    }

    bool take() {
        const bool taken = keyboard->takeKeyboard(panel.window(), [this] { ++losses; });
        settle();
        return taken;
    }
    Lines takePanelKeys() {
        settle();
        Lines keys;
        for (const std::string& line : panel.takeLog())
            if (line.starts_with("sent key")) keys.push_back(line.substr(5));
        return keys;
    }

    PollLoop loop;
    std::unique_ptr<X11Connection> connection;
    std::unique_ptr<X11Events> events;
    int repeats = 0;  // of held keys, as they arrive at our grabs

private:
    Subscription counting_;  // before the others, which keep events to themselves

protected:
    std::unique_ptr<X11HotKeys> hotKeys;
    std::unique_ptr<X11Keyboard> keyboard;
    Hardware hardware;
    X11Victim application;
    X11Victim panel;
    int losses = 0;
};

}  // namespace tarvix
