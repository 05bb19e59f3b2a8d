// What the keys of a search do to real applications, told by the applications themselves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "linux/x11/X11Windows.h"
#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Program.h"
#include "tests/desktop/play/ScreenImage.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

using Keys = std::vector<std::uint32_t>;
using Lines = std::vector<std::string>;

constexpr double nearby = 2;  // pixels between the centre of what a toolkit tells and the centre of what it draws

// Holds modifiers down as long as it lives.
class Held {
public:
    Held(Keyboard& keyboard, Keys keys) : keyboard_(keyboard), keys_(std::move(keys)) { keyboard_.hold(keys_); }
    ~Held() { keyboard_.release(keys_); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

private:
    Keyboard& keyboard_;
    Keys keys_;
};

// The settings of the program that is started next: one of them switched on.
class Settings {
public:
    explicit Settings(const std::string& on) {
        std::filesystem::create_directories(path().parent_path());
        std::ofstream(path()) << nlohmann::json{{on, true}};
    }
    ~Settings() { std::filesystem::remove(path()); }
    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;

    static std::filesystem::path path() {
        return std::filesystem::path(std::getenv("XDG_CONFIG_HOME")) / "tarvix/tarvix.json";
    }
};

struct Press {
    int button = 0;
    int count = 0;
    std::string modifiers;
    ScreenPoint at;
};

std::ostream& operator<<(std::ostream& out, const Press& press) {
    return out << "button " << press.button << ", count " << press.count << ", " << press.modifiers << " at "
               << press.at.x << "," << press.at.y;
}

bool isPress(const std::string& line) { return line.starts_with("press "); }

// The presses in lines of the journal. Where a toolkit tells of a double click after the second press, that press and
// the telling are one.
std::vector<Press> pressesIn(const Lines& lines) {
    std::vector<Press> presses;
    for (const std::string& line : lines) {
        if (!isPress(line)) continue;
        Press press;
        char comma = 0;
        std::istringstream(line.substr(6)) >> press.button >> press.count >> press.modifiers >> press.at.x >> comma >>
            press.at.y;
        if (press.count == 2 && presses.size() == 2) presses.pop_back();
        presses.push_back(press);
    }
    return presses;
}

class ActionsOnDesktop : public ::testing::Test {
protected:
    void play(const std::string& script, const Process::Environment& changes = {}) {
        fixture_.emplace(script, Lines{"journal"});
        ASSERT_TRUE(fixture_->isReady()) << script;
        // Without a window manager the pointer alone gives the window the keyboard.
        keyboard_.movePointer(centre("Nettle"));
        program_.emplace(TARVIX_PROGRAM, changes);
        ASSERT_TRUE(program_->isReady());
        seen_ = fixture_->journal().size();
    }

    // What each side saw, beside a failure.
    void TearDown() override {
        if (!HasFailure() || !fixture_ || !program_) return;
        for (const std::string& line : fixture_->journal()) std::cout << "    journal: " << line << "\n";
        for (const Moment& moment : program_->log().all())
            std::cout << "    " << moment.microseconds / 1000 << " ms: " << moment.name << " " << moment.count << "\n";
    }

    AxRect frameOf(const std::string& name) const {
        for (const KnownControl& control : fixture_->controls())
            if (control.name == name) return control.frame;
        ADD_FAILURE() << name;
        return {};
    }
    ScreenPoint centre(const std::string& name) const {
        const AxRect frame = frameOf(name);
        return {static_cast<int>(frame.minX() + frame.width() / 2),
                static_cast<int>(frame.minY() + frame.height() / 2)};
    }

    void open() {
        ASSERT_TRUE(await(20s, [&] { return opensWithCandidates(); }));
    }
    // On a busy machine an application may be too slow to answer: then the search is put away again.
    bool opensWithCandidates() {
        const Program::Step opened = program_->pressHotKey(keyboard_);
        if (!opened) return false;
        const auto read = program_->reached(milestone::candidatesRead, opened.pressed);
        if (read && read->count > 0) return true;
        program_->press(keyboard_, keysym::escape, milestone::inputHidden);
        return false;
    }
    void search(const std::string& query) {
        open();
        const Program::Step typed = program_->type(keyboard_, query);
        ASSERT_TRUE(typed);
        ASSERT_GT(typed.answered->count, 0u);
    }
    // Presses a key that ends the search.
    void confirm(std::uint32_t key) { ASSERT_TRUE(program_->press(keyboard_, key, milestone::inputHidden)); }
    bool isOpen() const {
        const std::vector<Moment> moments = program_->log().all();
        const auto last = std::find_if(moments.rbegin(), moments.rend(), [](const Moment& moment) {
            return moment.name == milestone::inputShown || moment.name == milestone::inputHidden;
        });
        return last != moments.rend() && last->name == milestone::inputShown;
    }

    // What has come into the journal since the last look that took something.
    Lines news() const {
        Lines lines = fixture_->journal();
        lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(seen_));
        return lines;
    }
    // One press, and nothing else since the last look.
    void expectPress(int button, const std::string& modifiers, ScreenPoint at) {
        EXPECT_TRUE(await(5s, [&] { return !pressesIn(news()).empty(); }));
        const std::vector<Press> presses = pressesIn(news());
        ASSERT_EQ(presses.size(), 1u) << ::testing::PrintToString(presses);
        expect(presses.front(), button, 1, modifiers, at);
        seen_ += news().size();
    }
    void expectDoubleClick(ScreenPoint at) {
        EXPECT_TRUE(await(5s, [&] {
            const std::vector<Press> presses = pressesIn(news());
            return !presses.empty() && presses.back().count == 2;
        }));
        const std::vector<Press> presses = pressesIn(news());
        ASSERT_EQ(presses.size(), 2u) << ::testing::PrintToString(presses);
        expect(presses.front(), 1, 1, "-", at);
        expect(presses.back(), 1, 2, "-", at);
        seen_ += news().size();
    }
    static void expect(const Press& press, int button, int count, const std::string& modifiers, ScreenPoint at) {
        EXPECT_EQ(press.button, button) << press;
        EXPECT_EQ(press.count, count) << press;
        EXPECT_EQ(press.modifiers, modifiers) << press;
        EXPECT_NEAR(press.at.x, at.x, nearby) << press;
        EXPECT_NEAR(press.at.y, at.y, nearby) << press;
    }
    // These lines, and nothing else since the last look.
    void expectNews(const Lines& wanted) {
        EXPECT_TRUE(await(5s, [&] { return news().size() >= wanted.size(); }));
        EXPECT_EQ(news(), wanted);
        seen_ += news().size();
    }
    // A radio button, last of all. The answer is what else there was.
    Lines expectChosen(const std::string& name) {
        EXPECT_TRUE(await(5s, [&] { return !news().empty() && news().back() == "chosen " + name; })) << name;
        Lines before = news();
        seen_ += before.size();
        if (!before.empty()) before.pop_back();
        return before;
    }
    // An ordinary click somewhere else, to see that nothing came before it and that no modifier has stayed behind.
    void expectNothingBeforeTheNextClick() {
        search("dogwood");
        confirm(keysym::returnKey);
        expectPress(1, "-", centre("Dogwood"));
    }
    void expectPointer(ScreenPoint at) {
        EXPECT_TRUE(await(5s,
                          [&] {
                              const ScreenPoint now = keyboard_.pointer();
                              return std::abs(now.x - at.x) <= nearby && std::abs(now.y - at.y) <= nearby;
                          }))
            << keyboard_.pointer().x << "," << keyboard_.pointer().y << " instead of " << at.x << "," << at.y;
    }

    // What another program gets that pastes now.
    static std::optional<std::string> pasted() { return outputOf({std::string(TARVIX_FIXTURES) + "/clipboard.py"}); }
    static void expectPasted(const std::string& wanted) {
        std::optional<std::string> text;
        EXPECT_TRUE(await(10s, [&] { return (text = pasted()) == wanted; })) << text.value_or("nothing");
    }

    Keyboard keyboard_;
    std::optional<Fixture> fixture_;
    std::optional<Program> program_;
    std::size_t seen_ = 0;  // lines of the journal
};

// Clicks, on each toolkit ---------------------------------------------------------------------------------------------

struct Toolkit {
    const char* name;
    const char* script;
};
void PrintTo(const Toolkit& toolkit, std::ostream* out) { *out << toolkit.name; }

class ClickActions : public ActionsOnDesktop, public ::testing::WithParamInterface<Toolkit> {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(play(GetParam().script)); }
};

TEST_P(ClickActions, TheModifiersOfReturnStayOnTheClick) {
    struct Row {
        Keys keys;
        std::string query, name;
        int button;
        std::string modifiers;
    };
    // One control for each: clicks on the same one would be a double click.
    for (const Row& row :
         {Row{{}, "elder", "Elder", 1, "-"}, Row{{keysym::shift}, "fennel", "Fennel", 1, "shift"},
          Row{{keysym::alt}, "nettle", "Nettle", 1, "alt"}, Row{{keysym::super}, "basil", "Basil", 1, "super"},
          Row{{keysym::control}, "moss 02", "Moss 02", 3, "control"}}) {
        search(row.query);
        const Held held(keyboard_, row.keys);
        confirm(keysym::returnKey);
        expectPress(row.button, row.modifiers, centre(row.name));
    }
    expectNothingBeforeTheNextClick();
}

TEST_P(ClickActions, ShiftSuperReturnMovesThePointerAndNoMore) {
    search("elder");
    {
        const Held held(keyboard_, {keysym::shift, keysym::super});
        confirm(keysym::returnKey);
        expectPointer(centre("Elder"));
    }
    expectNothingBeforeTheNextClick();
}

TEST_P(ClickActions, WithAnEmptyQueryThePointerIsWhereItHappens) {
    const ScreenPoint pointer = centre("Nettle");
    open();
    confirm(keysym::returnKey);
    expectPress(1, "-", pointer);
    open();
    {
        const Held held(keyboard_, {keysym::control});
        confirm(keysym::returnKey);
        expectPress(3, "control", pointer);
    }
    open();
    {
        const Held held(keyboard_, {keysym::shift, keysym::super});
        confirm(keysym::returnKey);
    }
    expectPointer(pointer);
    expectNothingBeforeTheNextClick();
}

TEST_P(ClickActions, ATabIsClicked) {
    search("clover");
    confirm(keysym::returnKey);
    EXPECT_TRUE(await(5s, [&] { return news().size() >= 2; }));
    // Which of the two is told first is the toolkit's affair.
    EXPECT_THAT(news(), UnorderedElementsAre(StartsWith("press 1 1 - "), "page Clover"));
}

// GTK 4 tells of check boxes only, and gives them no action.
TEST_P(ClickActions, ARadioButtonIsChosen) {
    search("larch");
    confirm(keysym::returnKey);
    expectChosen("Larch");
    expectPointer(centre("Larch"));
}

// Where no window manager takes the presses into its hands: openbox, on a machine that is busy, still passes on only
// one of two now and then.
class DoubleClicks : public ClickActions {};

TEST_P(DoubleClicks, KeypadEnterDoubleClicks) {
    search("nettle");
    confirm(keysym::keypadEnter);
    expectDoubleClick(centre("Nettle"));
    expectNothingBeforeTheNextClick();
}

TEST_P(DoubleClicks, ControlAltSuperReturnDoubleClicksWithoutThemThoughTheyAreHeld) {
    search("nettle");
    {
        const Held held(keyboard_, {keysym::control, keysym::alt, keysym::super});
        confirm(keysym::returnKey);
        expectDoubleClick(centre("Nettle"));
    }
    expectNothingBeforeTheNextClick();
}

TEST_P(DoubleClicks, WithAnEmptyQueryThePointerIsWhereTheyHappen) {
    open();
    confirm(keysym::keypadEnter);
    expectDoubleClick(centre("Nettle"));
    expectNothingBeforeTheNextClick();
}

// An application that doesn't answer in time gets a click instead of the press, and on a busy machine that may be any;
// so there is more than one try, each with the button that isn't chosen yet.
class RadioButtons : public ClickActions {
public:
    // Whether one try of several chooses a button without any click.
    bool pressOne(const Keys& keys, void (RadioButtons::*begin)(const std::string& name)) {
        for (int tries = 0; tries < 5; ++tries) {
            std::swap(next_, chosen_);
            (this->*begin)(chosen_);
            const Held held(keyboard_, keys);
            confirm(keysym::returnKey);
            if (expectChosen(chosen_).empty()) return true;
        }
        return false;
    }
    void searchFor(const std::string& name) { search(name == "Kale" ? "kale" : "larch"); }
    void openOver(const std::string& name) {
        keyboard_.movePointer(centre(name));
        open();
    }

private:
    std::string chosen_ = "Kale", next_ = "Larch";
};

TEST_P(RadioButtons, ArePressedByTheirOwnAction) {
    EXPECT_TRUE(pressOne({}, &RadioButtons::searchFor));
    expectNothingBeforeTheNextClick();
}

TEST_P(RadioButtons, ArePressedAndNotRightClickedWithControl) {
    EXPECT_TRUE(pressOne({keysym::control}, &RadioButtons::searchFor));
    expectNothingBeforeTheNextClick();
}

TEST_P(RadioButtons, ArePressedUnderThePointerToo) {
    EXPECT_TRUE(pressOne({}, &RadioButtons::openOver));
    expectNothingBeforeTheNextClick();
}

std::string toolkitName(const ::testing::TestParamInfo<Toolkit>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Gtk3, ClickActions, ::testing::Values(Toolkit{"Gtk3", "gtk3.py"}), toolkitName);
INSTANTIATE_TEST_SUITE_P(Gtk4, ClickActions, ::testing::Values(Toolkit{"Gtk4", "gtk4.py"}), toolkitName);
INSTANTIATE_TEST_SUITE_P(Qt6, ClickActions, ::testing::Values(Toolkit{"Qt6", "qt6.py"}), toolkitName);
INSTANTIATE_TEST_SUITE_P(Gtk3, DoubleClicks, ::testing::Values(Toolkit{"Gtk3", "gtk3.py"}), toolkitName);
INSTANTIATE_TEST_SUITE_P(Gtk4, DoubleClicks, ::testing::Values(Toolkit{"Gtk4", "gtk4.py"}), toolkitName);
INSTANTIATE_TEST_SUITE_P(Qt6, DoubleClicks, ::testing::Values(Toolkit{"Qt6", "qt6.py"}), toolkitName);
INSTANTIATE_TEST_SUITE_P(Gtk3, RadioButtons, ::testing::Values(Toolkit{"Gtk3", "gtk3.py"}), toolkitName);
INSTANTIATE_TEST_SUITE_P(Qt6, RadioButtons, ::testing::Values(Toolkit{"Qt6", "qt6.py"}), toolkitName);

// What doesn't depend on the toolkit ----------------------------------------------------------------------------------

TEST_F(ActionsOnDesktop, ThePointerGoesBackWhereTheSettingsSaySo) {
    const Settings settings("repositionMouseAfterClick");
    play("gtk3.py");
    const ScreenPoint before = centre("Nettle");
    search("elder");
    confirm(keysym::returnKey);
    expectPress(1, "-", centre("Elder"));
    expectPointer(before);
    search("larch");
    confirm(keysym::returnKey);
    expectChosen("Larch");
    expectPointer(before);
    search("dogwood");
    keyboard_.movePointer(centre("Fennel"));  // it goes back where it was last, not where the search began
    {
        const Held held(keyboard_, {keysym::control});
        confirm(keysym::returnKey);
        expectPress(3, "control", centre("Dogwood"));
    }
    expectPointer(centre("Fennel"));
}

TEST_F(ActionsOnDesktop, WhatIsCopiedIsPastedByAnotherProgram) {
    const Settings settings("allowCopyingOfTextAndMetadata");
    play("gtk3.py");
    search("elder");
    {
        const Held held(keyboard_, {keysym::super});
        confirm('c');
    }
    expectPasted("Elder");
    // A check box has its state behind it.
    for (const Keys& keys :
         {Keys{keysym::control, keysym::super}, Keys{keysym::alt, keysym::super}, Keys{keysym::shift, keysym::super}}) {
        for (const auto& [query, state] : {std::pair("juniper", "1"), std::pair("iris", "0")}) {
            search(query);
            const Held held(keyboard_, keys);
            confirm('c');
            expectPasted(state);
        }
    }
    search("quince");
    confirm(keysym::returnKey);
    expectPress(1, "-", centre("Quince"));
    keyboard_.chord({keysym::control, 'v'});
    expectNews({"text Quince 0"});
}

TEST_F(ActionsOnDesktop, CopyingWithAnEmptyQueryEndsTheSearchAndCopiesNothing) {
    const Settings settings("allowCopyingOfTextAndMetadata");
    play("gtk3.py");
    search("elder");
    keyboard_.hold({keysym::super});
    confirm('c');
    keyboard_.release({keysym::super});
    open();
    keyboard_.hold({keysym::super});
    confirm('c');
    keyboard_.release({keysym::super});
    expectPasted("Elder");
    expectNothingBeforeTheNextClick();
}

TEST_F(ActionsOnDesktop, WithoutThatSettingTheFieldCopiesItsOwnTextAndTheSearchGoesOn) {
    play("gtk3.py");
    search("elder");
    keyboard_.chord({keysym::super, 'a'});
    keyboard_.chord({keysym::super, 'c'});
    expectPasted("elder");
    for (const std::uint32_t more : {keysym::control, keysym::alt, keysym::shift})
        keyboard_.chord({more, keysym::super, 'c'});
    expectPasted("elder");
    EXPECT_TRUE(isOpen());
    confirm(keysym::returnKey);
    expectPress(1, "-", centre("Elder"));
}

TEST_F(ActionsOnDesktop, TheDumpOfTheTargetsIsCopiedAndTheSearchGoesOn) {
    play("gtk3.py");
    search("elder");
    keyboard_.chord({keysym::control, keysym::alt, keysym::super, keysym::keypadEnter});
    std::optional<std::string> dump;
    EXPECT_TRUE(await(10s, [&] { return (dump = pasted()) && !dump->empty(); }));
    EXPECT_THAT(*dump, StartsWith("AccessibilityElement(\n    role: .button,\n"));
    EXPECT_THAT(*dump, HasSubstr("title: Optional(\"Elder\")"));
    EXPECT_TRUE(isOpen());
    confirm(keysym::returnKey);
    expectPress(1, "-", centre("Elder"));
}

TEST_F(ActionsOnDesktop, SuperCommaEndsTheSearchAndOpensTheSettings) {
    play("gtk3.py");
    search("elder");
    {
        const Held held(keyboard_, {keysym::super});
        confirm(',');
    }
    const auto windows = std::move(X11Windows::open().value());
    ASSERT_TRUE(await(10s, [&] {
        const auto active = windows->active();
        return active && active->title.starts_with("Settings") && active->pid == program_->process().pid();
    }));
    keyboard_.chord({keysym::escape});
    ASSERT_TRUE(await(10s, [&] {
        const auto active = windows->active();
        return active && active->number == fixture_->window();
    })) << "the focus goes back";
    expectNothingBeforeTheNextClick();
}

TEST_F(ActionsOnDesktop, SuperQDoesNothingAtAll) {
    play("gtk3.py");
    search("elder");
    keyboard_.chord({keysym::super, 'q'});
    const Program::Step typed = program_->type(keyboard_, " button");
    ASSERT_TRUE(typed);
    EXPECT_EQ(typed.answered->count, 1u);
    EXPECT_TRUE(isOpen());
    EXPECT_TRUE(program_->process().isRunning());
    confirm(keysym::returnKey);
    expectPress(1, "-", centre("Elder"));
}

// The inspector -------------------------------------------------------------------------------------------------------

class InspectorOnDesktop : public ActionsOnDesktop {
protected:
    void hover(const std::string& name) {
        const std::int64_t from = monotonicMicroseconds();
        keyboard_.movePointer(centre(name));
        ASSERT_TRUE(program_->reached(milestone::inspectorMarkerDrawn, from));
        ASSERT_TRUE(program_->reached(milestone::inspectorShown, from));
    }
    // The marker's translucent yellow: much less blue than anything in the fixture.
    bool isMarked(const std::string& name) const {
        const AxRect frame = frameOf(name);
        const auto screen = captureScreen();
        if (!screen) return false;
        const std::uint32_t pixel = screen->at(static_cast<int>(frame.minX()) + 8, static_cast<int>(frame.minY()) + 6);
        return (pixel >> 16) - (pixel & 0xff) > 80 && (pixel >> 16) > (pixel & 0xff);
    }
    // Pixels of the view's ground in the stretch below a control.
    int paperBelow(const std::string& name) const {
        const AxRect frame = frameOf(name);
        const auto screen = captureScreen();
        int count = 0;
        if (!screen) return count;
        for (int y = static_cast<int>(frame.maxY()) + 6; y < static_cast<int>(frame.maxY()) + 40; ++y)
            for (int x = static_cast<int>(frame.minX()); x < static_cast<int>(frame.maxX()); ++x)
                count += screen->at(x, y) == 0xfafafa ? 1 : 0;
        return count;
    }
};

TEST_F(InspectorOnDesktop, TheCandidateUnderThePointerIsPickedOutWithItsTextsBelowIt) {
    play("gtk3.py");
    search("moss");
    const int before = paperBelow("Elder");
    EXPECT_FALSE(isMarked("Elder"));
    hover("Elder");
    EXPECT_TRUE(await(5s, [&] { return isMarked("Elder"); }));
    EXPECT_TRUE(await(5s, [&] { return paperBelow("Elder") > before + 1000; })) << before << " " << paperBelow("Elder");
    hover("Hazel");
    EXPECT_TRUE(await(5s, [&] { return isMarked("Hazel") && !isMarked("Elder"); }));
    EXPECT_TRUE(await(5s, [&] { return paperBelow("Elder") <= before; })) << before << " " << paperBelow("Elder");
    confirm(keysym::escape);
    EXPECT_TRUE(await(5s, [&] { return !isMarked("Hazel"); }));
    EXPECT_THAT(pressesIn(news()), IsEmpty());
}

}  // namespace
}  // namespace tarvix
