// What the keys of a hand do in The Input, on each layout.
#include "linux/x11/X11KeyState.h"
#include "tests/desktop/InputDesk.h"

namespace tarvix {
namespace {

using InputKeysTest = InputDesk;

constexpr auto keepsItsText = R"({"dontFlushTheInput": true})";

TEST_F(InputKeysTest, LettersArrowsAndDeletesAreTheFields) {
    play("gtk3-field.py");
    startProgram();
    open();
    const std::int64_t start = monotonicMicroseconds();
    tap({place::p, place::o, place::left, place::n, place::right, place::e, place::e});
    chord({place::shift, place::k});
    tap({place::backspace, place::left, place::delete_});
    tap({place::capsLock, place::h, place::capsLock});
    awaitTextChanges(9, start);
    EXPECT_EQ(takeInputText(), "pnoeH");
}

TEST_F(InputKeysTest, DeadKeysComposeWithTheLetterAfterThem) {
    play("gtk3-field.py");
    startProgram();
    setLayout("de");
    open();
    tap({place::equal, place::e, place::grave, place::o, place::equal, place::space});
    chord({place::shift, place::equal});
    tap({place::a});
    EXPECT_EQ(takeInputText(), "éô'à");
    setLayout("us", "intl");
    open();
    tap({place::quote, place::e});
    chord({place::shift, place::quote});
    tap({place::u});
    EXPECT_EQ(takeInputText(), "éü");
}

TEST_F(InputKeysTest, TheComposeKeyComposes) {
    play("gtk3-field.py");
    setLayout("us", "", "compose:ralt");
    startProgram();
    open();
    const std::int64_t start = monotonicMicroseconds();
    tap({place::s, place::altGr, place::slash, place::o});
    awaitTextChanges(2, start);
    const auto drawn = program_->reached(milestone::markersDrawn, start);
    ASSERT_TRUE(drawn);
    EXPECT_EQ(takeInputText(), "sø");
}

TEST_F(InputKeysTest, TheThirdLevelTypes) {
    play("gtk3-field.py");
    setLayout("de");
    startProgram();
    open();
    chord({place::level3, place::e});
    chord({place::level3, place::s});
    EXPECT_EQ(takeInputText(), "€ſ");
}

// The hand may still hold the shortcut when the text of last time is selected by a posted command-A.
TEST_F(InputKeysTest, TheKeptTextIsSelectedThoughTheShortcutIsHeld) {
    play("gtk3-field.py");
    startProgram({}, keepsItsText);
    open();
    tap({place::s, place::o});
    close();
    for (const std::uint8_t letter : {place::p, place::e}) {
        const std::int64_t pressed = monotonicMicroseconds();
        for (const std::uint8_t key : {place::shift, place::super, place::space}) hand_.keyDown(key);
        ASSERT_TRUE(program_->reached(milestone::inputShown, pressed));
        for (const std::uint8_t key : {place::space, place::super, place::shift}) hand_.keyUp(key);
        after(milestone::textChanged, [&] { tap({letter}); });
        EXPECT_EQ(takeInputText(), letter == place::p ? "p" : "e") << "in place of the text of last time";
    }
}

TEST_F(InputKeysTest, TheKeptTextIsSelectedOnALayoutWithoutLatinLettersToo) {
    play("gtk3-field.py");
    setLayout("us,ru");
    startProgram({}, keepsItsText);
    const auto x = std::move(X11Connection::open().value());
    ASSERT_TRUE(startXInput(*x));
    lockGroup(*x, 1);
    x->sync();
    open();
    tap({place::s, place::o});
    close();
    open();
    after(milestone::textChanged, [&] { tap({place::p}); });
    EXPECT_EQ(takeInputText(), "з") << "in place of the text of last time";
}

TEST_F(InputKeysTest, TabStaysInTheField) {
    play("gtk3-field.py");
    startProgram();
    open();
    const std::int64_t start = monotonicMicroseconds();
    tap({place::p, place::tab, place::o});
    chord({place::shift, place::tab});
    tap({place::n});
    awaitTextChanges(3, start);
    EXPECT_EQ(takeInputText(), "pon");
}

struct KeysOfLayout {
    const char* layouts;
    const char* variants;
    std::uint8_t group;
    std::vector<std::uint8_t> query;  // types "moss", or what matches everything
    std::uint8_t n, p, c;             // the places of these letters
};

// The program goes on running while the layouts change.
TEST_F(InputKeysTest, OnEveryLayoutARoutedKeyIsThatOfItsLetter) {
    const std::vector<KeysOfLayout> layouts = {{"us", "", 0, {58, 32, 39, 39}, 57, 33, 54},
                                               {"us", "dvorak", 0, {58, 39, 47, 47}, 46, 27, 31},
                                               {"us", "colemak", 0, {58, 47, 40, 40}, 44, 27, 54},
                                               {"fr", "", 0, {47, 32, 39, 39}, 57, 33, 54},
                                               {"de", "", 0, {58, 32, 39, 39}, 57, 33, 54},
                                               {"jp", "", 0, {58, 32, 39, 39}, 57, 33, 54},
                                               {"us,ru", "", 0, {58, 32, 39, 39}, 57, 33, 54},
                                               {"us,ru", "", 1, {63}, 57, 33, 54},
                                               {"ru,us", "", 0, {63}, 57, 33, 54},
                                               {"ru,us", "", 1, {58, 32, 39, 39}, 57, 33, 54},
                                               {"de,us", ",dvorak", 1, {58, 39, 47, 47}, 46, 27, 31}};
    play("gtk3.py");
    startProgram({}, R"({"allowCopyingOfTextAndMetadata": true})");
    const auto x = std::move(X11Connection::open().value());
    ASSERT_TRUE(startXInput(*x));
    std::size_t clicks = 0;
    for (const KeysOfLayout& keys : layouts) {
        SCOPED_TRACE(std::string(keys.layouts) + " " + keys.variants + " " + std::to_string(keys.group));
        setLayout(keys.layouts, keys.variants);
        lockGroup(*x, keys.group);
        x->sync();
        open();
        const bool isRussian = keys.query.size() == 1;  // the multiplication sign of the keypad
        const std::int64_t typing = monotonicMicroseconds();
        for (const std::uint8_t key : keys.query) hand_.tap(key);
        awaitTextChanges(keys.query.size(), typing);
        ASSERT_TRUE(after(milestone::markersDrawn, [&] { chord({place::control, keys.n}); }));
        ASSERT_TRUE(after(milestone::markersDrawn, [&] { chord({place::control, keys.n}); }));
        ASSERT_TRUE(after(milestone::markersDrawn, [&] { chord({place::control, keys.p}); }));
        if (isRussian) {
            // The first of everything is no control that clicks are known of.
            close();
            continue;
        }
        after(milestone::inputHidden, [&] { tap({place::return_}); });
        ++clicks;
        EXPECT_TRUE(await(std::chrono::seconds(5), [&] { return fixture_->clicks().size() == clicks; }));
        EXPECT_EQ(fixture_->clicks().back().name, "Moss 02");
        // Command with c ends the search and copies.
        open();
        for (const std::uint8_t key : keys.query) hand_.tap(key);
        after(milestone::inputHidden, [&] { chord({place::super, keys.c}); });
    }
    EXPECT_EQ(fixture_->clicks().size(), clicks);
}

}  // namespace
}  // namespace tarvix
