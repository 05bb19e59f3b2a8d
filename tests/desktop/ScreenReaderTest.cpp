// What a screen reader gets of the real program: its tree, and what is announced to it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>

#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Program.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using Lines = std::vector<std::string>;

std::string script() { return std::string(TARVIX_FIXTURES) + "/screen-reader.py"; }

// Only ever on the bus of the virtual desktop.
void setScreenReaderEnabled(bool enabled) {
    ASSERT_TRUE(outputOf({"dbus-send", "--session", "--print-reply", "--dest=org.a11y.Bus", "/org/a11y/bus",
                          "org.freedesktop.DBus.Properties.Set", "string:org.a11y.Status", "string:ScreenReaderEnabled",
                          std::string("variant:boolean:") + (enabled ? "true" : "false")}));
}

std::string screenReaderEnabled() {
    return outputOf({"dbus-send", "--session", "--print-reply=literal", "--dest=org.a11y.Bus", "/org/a11y/bus",
                     "org.freedesktop.DBus.Properties.Get", "string:org.a11y.Status", "string:ScreenReaderEnabled"})
        .value_or("");
}

// A screen reader that hears of the program.
class Listener {
public:
    explicit Listener(Lines events) : log_(folder_.file("events")), process_(command(std::move(events), log_)) {}

    bool isReady() {
        return await(20s, [&] { return !lines().empty(); });
    }
    // The whole lines that have come so far.
    Lines lines() const {
        std::ifstream file(log_);
        Lines lines;
        for (std::string line; std::getline(file, line) && !file.eof();) lines.push_back(line);
        return lines;
    }

private:
    static Lines command(Lines events, const std::string& log) {
        Lines words{script(), "hear", "tarvix", log};
        words.insert(words.end(), events.begin(), events.end());
        return words;
    }

    ScratchFolder folder_;
    std::string log_;
    Process process_;
};

const std::string kShowing = "object:state-changed:showing";
const std::string kTextChanged = "object:text-changed";

class ScreenReaderTest : public ::testing::Test {
protected:
    void TearDown() override {
        setScreenReaderEnabled(false);
        if (!HasFailure() || !program_ || !listener_) return;
        for (const Moment& moment : program_->log().all())
            std::cout << "    " << moment.microseconds / 1000 << " ms: " << moment.name << " " << moment.count << "\n";
        for (const std::string& line : listener_->lines()) std::cout << "    heard: " << line << "\n";
    }

    void start(Lines events = {}) {
        events.insert(events.end(), {"window:activate", "window:deactivate"});
        events.push_back(kShowing);
        events.push_back(kTextChanged);
        listener_.emplace(events);
        ASSERT_TRUE(listener_->isReady());
        fixture_.emplace("gtk3.py");
        ASSERT_TRUE(fixture_->isReady());
        // Without a window manager the pointer alone gives the window the keyboard.
        const AxRect label = known("Nettle");
        keyboard_.movePointer({static_cast<int>(label.origin.x) + 3, static_cast<int>(label.origin.y) + 3});
        program_.emplace(TARVIX_PROGRAM);
        ASSERT_TRUE(program_->isReady());
    }
    void play(const Lines& events) {
        ASSERT_NO_FATAL_FAILURE(start(events));
        // It takes Qt a moment to learn what is listened to.
        ASSERT_TRUE(await(20s, [&] {
            searchInVain("#");
            return await(300ms, [&] { return !texts(kTextChanged).empty(); });
        }));
    }

    AxRect known(const std::string& name) const {
        for (const KnownControl& control : fixture_->controls())
            if (control.name == name) return control.frame;
        ADD_FAILURE() << name;
        return {};
    }

    // On a machine that is busy the application may not be in time with its window.
    void open() {
        ASSERT_TRUE(await(20s, [&] {
            const Program::Step opened = program_->pressHotKey(keyboard_);
            const auto read = program_->reached(milestone::candidatesRead, opened.pressed);
            if (read && read->count > 0) return true;
            close();
            return false;
        }));
    }
    void type(const std::string& query) { ASSERT_TRUE(program_->type(keyboard_, query, milestone::textChanged)); }
    void type(const std::string& query, std::size_t targets) {
        type(query);
        EXPECT_TRUE(await(5s, [&] { return markersDrawn() == targets; })) << markersDrawn();
    }
    void press(std::uint32_t keysym) { keyboard_.chord({keysym}); }
    void close() { EXPECT_TRUE(program_->press(keyboard_, keysym::escape, milestone::inputHidden)); }

    // Searches for the one Acorn until that is heard, since it takes the program a moment to learn of the reader.
    void searchUntilHeard() {
        open();
        type("acorn", 1);
        EXPECT_TRUE(await(10s, [&] {
            press(keysym::home);
            return await(200ms, [&] { return !texts("Acorn").empty(); });
        }));
        close();
    }
    void search() {
        open();
        type("ha", 2);
        for (const auto keysym : {keysym::down, keysym::up, keysym::pageDown, keysym::pageUp}) press(keysym);
        close();
    }
    // A search that finds nothing.
    void searchInVain(const std::string& query) {
        open();
        type(query);
        close();
    }
    // All that was told before another search was is heard when that is.
    void waitUntilAllIsHeard() {
        searchInVain("##");
        EXPECT_TRUE(await(10s, [&] { return !texts(kTextChanged + ":delete\ttext\tThe Input\t0\t##").empty(); }));
    }

    // All lines but those of The Input's coming and going and its text; the ones that come after the last with a text
    // in it.
    Lines heardAfter(const std::string& text) const {
        Lines heard;
        for (const std::string& line : listener_->lines()) {
            if (line != "listening" && !line.starts_with("window:") && !line.starts_with(kShowing) &&
                !line.starts_with(kTextChanged))
                heard.push_back(line);
            if (!text.empty() && line.find(text) != std::string::npos) heard.clear();
        }
        return heard;
    }
    Lines texts(const std::string& text) const {
        Lines lines = listener_->lines();
        std::erase_if(lines, [&](const std::string& line) { return line.find(text) == std::string::npos; });
        return lines;
    }

    std::size_t markersDrawn() const {
        const std::vector<Moment> all = program_->log().all();
        const auto last = std::find_if(all.rbegin(), all.rend(),
                                       [](const Moment& moment) { return moment.name == milestone::markersDrawn; });
        return last == all.rend() ? 0 : last->count;
    }

    // The program's tree, as screen-reader.py prints it.
    static Lines tree() {
        std::istringstream printed(outputOf({script(), "see", "tarvix"}).value_or(""));
        Lines lines;
        for (std::string line; std::getline(printed, line);) lines.push_back(line);
        return lines;
    }

    Keyboard keyboard_;
    std::optional<Fixture> fixture_;
    std::optional<Program> program_;
    std::optional<Listener> listener_;
};

TEST_F(ScreenReaderTest, ThePrimaryTargetIsAnnouncedAsItMovesHalfwayDownTwice) {
    play({"object:announcement", "object:property-change"});
    setScreenReaderEnabled(true);
    searchUntilHeard();
    search();
    EXPECT_TRUE(await(10s, [&] { return heardAfter("Acorn").size() >= 7; }));
    waitUntilAllIsHeard();
    const auto said = [](const char* text) { return std::string("object:announcement\ttext\tThe Input\t2\t") + text; };
    EXPECT_THAT(heardAfter("Acorn"), ElementsAre(said(" Birch "), said(" Hazel 0"), said(" Habitat "), said(" Hazel 0"),
                                                 said(" Habitat "), said(" Habitat "), said(" Hazel 0")));
}

TEST_F(ScreenReaderTest, AReaderThatKnowsNoAnnouncementsHearsAChangedDescription) {
    play({"object:property-change:accessible-description"});
    setScreenReaderEnabled(true);
    searchUntilHeard();
    search();
    EXPECT_TRUE(await(10s, [&] { return heardAfter("Acorn").size() >= 7; }));
    waitUntilAllIsHeard();
    const auto said = [](const char* text) {
        return std::string("object:property-change:accessible-description\ttext\tThe Input\t0\t") + text;
    };
    EXPECT_THAT(heardAfter("Acorn"), ElementsAre(said(" Birch "), said(" Hazel 0"), said(" Habitat "), said(" Hazel 0"),
                                                 said(" Habitat "), said(" Habitat "), said(" Hazel 0")));
}

TEST_F(ScreenReaderTest, WithoutAScreenReaderNothingIsAnnounced) {
    play({"object:announcement", "object:property-change"});
    search();
    waitUntilAllIsHeard();
    EXPECT_THAT(heardAfter(""), IsEmpty());
    EXPECT_THAT(screenReaderEnabled(), HasSubstr("boolean false"));
}

TEST_F(ScreenReaderTest, TheInputIsADialogWithOneFieldAndNoOtherPanelIsThere) {
    start();
    open();
    type("ha", 2);
    const std::int64_t from = monotonicMicroseconds();
    const AxRect button = known("Elder");
    keyboard_.movePointer({static_cast<int>(button.origin.x) + 9, static_cast<int>(button.origin.y) + 9});
    ASSERT_TRUE(program_->reached(milestone::inspectorShown, from));
    EXPECT_THAT(tree(),
                ElementsAre("application\ttarvix\tenabled,sensitive,showing,visible\t",
                            "  dialog\tThe Input\tactive,enabled,focused,resizable,sensitive,showing,visible\t",
                            "    text\tThe Input\teditable,enabled,focusable,focused,sensitive,showing,visible\tha"));
    close();
    for (const std::string& line : tree()) {
        if (line.starts_with("application")) continue;
        EXPECT_THAT(line, Not(HasSubstr("showing")));
        EXPECT_THAT(line, Not(HasSubstr("focused")));
    }
}

TEST_F(ScreenReaderTest, WhatIsTypedAndThatItHasTheKeyboardIsTold) {
    play({"object:state-changed:focused"});
    open();
    type("h");
    close();
    waitUntilAllIsHeard();
    Lines ours = texts("The Input");
    EXPECT_THAT(ours, testing::IsSupersetOf({"window:activate\tdialog\tThe Input\t0\tThe Input",
                                             "object:state-changed:focused\ttext\tThe Input\t1\t",
                                             "object:text-changed:insert\ttext\tThe Input\t0\th"}));
    for (const std::string& line : texts(kShowing)) EXPECT_THAT(line, HasSubstr("\tThe Input\t"));
}

TEST_F(ScreenReaderTest, NoPanelOfOursIsAmongTheCandidates) {
    start();
    open();
    type("in", 3);
    type("put", 0);
    close();
}

}  // namespace
}  // namespace tarvix
