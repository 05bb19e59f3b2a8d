// The program on a window with a text field, its keys pressed by a hand.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Milestones.h"
#include "tests/desktop/X11Victim.h"
#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Program.h"

namespace tarvix {

// Keys by the X server's keycodes, which are places.
namespace place {
inline constexpr std::uint8_t shift = 50, control = 37, alt = 64, altGr = 108, level3 = 92, super = 133, capsLock = 66;
inline constexpr std::uint8_t escape = 9, tab = 23, return_ = 36, space = 65, backspace = 22, delete_ = 119;
inline constexpr std::uint8_t left = 113, right = 114, up = 111, down = 116, home = 110;
// By what they type on the US layout.
inline constexpr std::uint8_t a = 38, c = 54, e = 26, h = 43, k = 45, n = 57, o = 32, p = 33, s = 39, u = 30, v = 55,
                              x = 53, slash = 61, quote = 48, equal = 21, grave = 49;
}  // namespace place

class InputDesk : public testing::Test {
protected:
    void TearDown() override {
        program_.reset();
        fixture_.reset();
        setLayout("us");
    }

    void play(const std::string& script) {
        fixture_.emplace(script);
        ASSERT_TRUE(fixture_->isReady()) << script;
    }
    // With settings as a JSON object.
    void startProgram(const Process::Environment& environment = {}, const std::string& settings = "{}") {
        const auto path = std::filesystem::path(std::getenv("XDG_CONFIG_HOME")) / "tarvix/tarvix.json";
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << settings;
        program_.emplace(TARVIX_PROGRAM, environment);
        ASSERT_TRUE(program_->isReady());
    }

    void setLayout(const std::string& layouts, const std::string& variants = {}, const std::string& option = {}) {
        const std::string command =
            "setxkbmap -layout '" + layouts + "' -variant '" + variants + "' -option '' -option '" + option + "'";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
    }

    // Keys that go down one after the other and up in the opposite order.
    void chord(std::initializer_list<std::uint8_t> keys) {
        for (const std::uint8_t key : keys) hand_.keyDown(key);
        for (auto key = std::rbegin(keys); key != std::rend(keys); ++key) hand_.keyUp(*key);
    }
    void tap(std::initializer_list<std::uint8_t> keys) {
        for (const std::uint8_t key : keys) hand_.tap(key);
    }
    // A key after which the program has to reach something.
    std::optional<Moment> after(std::string_view moment, const std::function<void()>& press) {
        const std::int64_t pressed = monotonicMicroseconds();
        press();
        const auto reached = program_->reached(moment, pressed);
        EXPECT_TRUE(reached) << moment;
        return reached;
    }

    // The Input, with something there to search: an application that is slow may have told nothing in the time it has.
    void open() {
        for (int tries = 0; tries < 10; ++tries) {
            const std::int64_t pressed = monotonicMicroseconds();
            ASSERT_TRUE(after(milestone::inputShown, [&] { chord({place::shift, place::super, place::space}); }));
            const auto read = program_->reached(milestone::candidatesRead, pressed);
            ASSERT_TRUE(read);
            if (read->count > 0) return;
            close();
        }
        FAIL() << "nothing to search";
    }
    void close() {
        after(milestone::inputHidden, [&] { tap({place::escape}); });
    }
    // Waits until the text of The Input has been changed so many times since a moment.
    void awaitTextChanges(std::size_t count, std::int64_t since) {
        const auto changes = [&] {
            std::size_t seen = 0;
            for (const Moment& moment : program_->log().all())
                if (moment.name == milestone::textChanged && moment.microseconds >= since) ++seen;
            return seen;
        };
        EXPECT_TRUE(await(std::chrono::seconds(5), [&] { return changes() >= count; })) << changes();
    }

    // What stands in The Input, by way of the clipboard into the window's field; it is closed then. On a layout with
    // the letters of the US one in their places.
    std::string takeInputText() {
        chord({place::control, place::a});
        chord({place::control, place::c});
        close();
        const std::size_t before = texts().size();
        chord({place::control, place::a});
        chord({place::control, place::v});
        EXPECT_TRUE(await(std::chrono::seconds(5), [&] {
            const auto now = texts();
            return now.size() > before && !now.back().empty();
        }));
        return texts().empty() ? std::string() : texts().back();
    }
    // What the window's field has held, change by change.
    std::vector<std::string> texts() const {
        std::vector<std::string> texts;
        for (const FixtureClick& line : fixture_->clicks())
            if (line.name == "text") texts.push_back(line.modifiers);
        return texts;
    }
    void expectClick(const std::string& name) {
        const auto clicked = [&] {
            for (const FixtureClick& click : fixture_->clicks())
                if (click.name == name) return true;
            return false;
        };
        EXPECT_TRUE(await(std::chrono::seconds(5), clicked)) << name;
    }

    Hardware hand_;
    std::optional<Fixture> fixture_;
    std::optional<Program> program_;
};

}  // namespace tarvix
