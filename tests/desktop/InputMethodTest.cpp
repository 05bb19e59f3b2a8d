// The Input with an input method of ibus, which composes letters before it hands them over.
#include "tests/desktop/InputDesk.h"

namespace tarvix {
namespace {

// "shch" composes one letter, "щ", by way of "с" and "ш".
constexpr auto engine = "m17n:ru:translit";

class InputMethodTest : public InputDesk {
protected:
    void SetUp() override {
        ibus_.emplace(std::vector<std::string>{"ibus-daemon", "--panel=disable", "--config=disable",
                                               "--emoji-extension=disable", "--cache=none"});
        // Its status says nothing of the engine.
        const std::string select = std::string("ibus engine ") + engine + " >/dev/null 2>&1; ibus engine 2>/dev/null";
        ASSERT_TRUE(await(std::chrono::seconds(20), [&] {
            return outputOf({"sh", "-c", select}).value_or("").starts_with(engine);
        }));
        play("gtk3-field.py");
        startProgram({{"QT_IM_MODULE", "ibus"}});
    }
    void TearDown() override {
        InputDesk::TearDown();
        ibus_.reset();
    }

    // The width of The Input's window; 0 while it isn't there.
    int width() {
        X11Connection& x = hand_.connection();
        const auto tree = x.reply<xcb_query_tree_reply>(xcb_query_tree(x.get(), x.root()));
        const xcb_window_t* windows = xcb_query_tree_children(tree.get());
        for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
            if (!x.text(windows[i], "_NET_WM_NAME").value_or("").starts_with("The Input")) continue;
            const auto attributes =
                x.reply<xcb_get_window_attributes_reply>(xcb_get_window_attributes(x.get(), windows[i]));
            const auto geometry = x.reply<xcb_get_geometry_reply>(xcb_get_geometry(x.get(), windows[i]));
            if (attributes && geometry && attributes->map_state == XCB_MAP_STATE_VIEWABLE) return geometry->width;
        }
        return 0;
    }
    std::size_t textChanges(std::int64_t since) const {
        std::size_t changes = 0;
        for (const Moment& moment : program_->log().all())
            if (moment.name == milestone::textChanged && moment.microseconds >= since) ++changes;
        return changes;
    }

    std::optional<Process> ibus_;
};

TEST_F(InputMethodTest, WhatIsComposedShowsInTheFieldAndIsSearchedWhenItIsHandedOver) {
    open();
    const int empty = width();
    ASSERT_GT(empty, 0);
    const std::int64_t start = monotonicMicroseconds();
    tap({place::s, place::h});
    EXPECT_TRUE(await(std::chrono::seconds(5), [&] { return width() > empty; })) << "it makes room for the letter";
    EXPECT_EQ(textChanges(start), 0u) << "which isn't there yet";
    tap({place::c, place::h});
    const auto changed = program_->reached(milestone::textChanged, start);
    ASSERT_TRUE(changed);
    // What was drawn earlier may be the empty search's, on a busy machine.
    const auto drawn = program_->reached(milestone::markersDrawn, changed->microseconds);
    ASSERT_TRUE(drawn);
    EXPECT_EQ(drawn->count, 1u);
    after(milestone::inputHidden, [&] { tap({place::return_}); });
    expectClick("Щука");
}

TEST_F(InputMethodTest, KeysThatComeAllAtOnceAreTakenInTheirOrder) {
    for (std::size_t i = 1; i <= 5; ++i) {
        open();
        after(milestone::inputHidden, [&] { tap({place::s, place::h, place::c, place::h, place::u, place::return_}); });
        EXPECT_TRUE(await(std::chrono::seconds(5), [&] { return fixture_->clicks().size() >= i; }));
        ASSERT_EQ(fixture_->clicks().size(), i);
        EXPECT_EQ(fixture_->clicks().back().name, "Щука");
    }
}

TEST_F(InputMethodTest, RoutedKeysAreMetWhileALetterIsComposed) {
    open();
    const int empty = width();
    const std::int64_t start = monotonicMicroseconds();
    tap({place::s, place::h, place::c, place::h});
    awaitTextChanges(1, start);
    const int committed = width();
    tap({place::s});
    EXPECT_TRUE(await(std::chrono::seconds(5), [&] { return width() > committed; }));
    tap({place::down});
    after(milestone::inputHidden, [&] { tap({place::return_}); });
    expectClick("Щука");
    open();
    EXPECT_EQ(width(), empty) << "nothing is left of it";
    const std::int64_t again = monotonicMicroseconds();
    tap({place::k, place::a});
    awaitTextChanges(1, again);
    EXPECT_EQ(takeInputText(), "ка");
}

TEST_F(InputMethodTest, ADeleteTakesBackWhatIsComposed) {
    open();
    const int empty = width();
    tap({place::s});
    EXPECT_TRUE(await(std::chrono::seconds(5), [&] { return width() > empty; }));
    tap({place::backspace});
    EXPECT_TRUE(await(std::chrono::seconds(5), [&] { return width() == empty; }));
    const std::int64_t start = monotonicMicroseconds();
    tap({place::k, place::a});
    awaitTextChanges(1, start);
    EXPECT_EQ(takeInputText(), "ка");
}

TEST_F(InputMethodTest, EscapePutsTheInputAway) {
    open();
    tap({place::s});
    close();
}

}  // namespace
}  // namespace tarvix
