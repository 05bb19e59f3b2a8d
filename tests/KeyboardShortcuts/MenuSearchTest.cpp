#include <gtest/gtest.h>

#include "KeyboardShortcuts/MenuSearch.h"

namespace tarvix {
namespace {

constexpr std::uint64_t command = eventFlag::command, shift = eventFlag::shift, option = eventFlag::option;
constexpr std::uint32_t s = 1;

MenuItem item(const char* title, const char* equivalent, std::uint64_t mask = command, Menu submenu = {}) {
    MenuItem made;
    made.title = title;
    made.keyEquivalent = equivalent;
    made.keyEquivalentModifierMask = mask;
    made.submenu = std::move(submenu);
    return made;
}

std::string found(const Menu& menu, std::uint64_t flags, const std::optional<std::string>& keyText) {
    const MenuItem* hit = itemWithShortcut(menu, Shortcut::withEventFlags(s, flags), keyText);
    return hit ? hit->title : "none";
}

TEST(MenuSearch, KeyAndModifiersMustBeThoseOfTheItem) {
    const Menu menu{item("Save", "s")};
    EXPECT_EQ(found(menu, command, "s"), "Save");
    EXPECT_EQ(found(menu, command, "t"), "none");
    EXPECT_EQ(found(menu, command | option, "s"), "none");
    EXPECT_EQ(found(menu, command | shift, "s"), "none");
    EXPECT_EQ(found(menu, 0, "s"), "none");
}

TEST(MenuSearch, ACapitalMeansShiftBesides) {
    const Menu menu{item("Save As", "S")};
    EXPECT_EQ(found(menu, command | shift, "s"), "Save As");
    EXPECT_EQ(found(menu, command, "s"), "none");
    EXPECT_EQ(found({item("Plain", "S", 0)}, shift, "s"), "Plain");
    EXPECT_EQ(found({item("Both", "S", command | shift)}, command | shift, "s"), "Both");
}

TEST(MenuSearch, ASmallLetterMayNameShiftInItsMask) {
    EXPECT_EQ(found({item("Save As", "s", command | shift)}, command | shift, "s"), "Save As");
}

TEST(MenuSearch, CapitalsBeyondAsciiCountToo) { EXPECT_EQ(found({item("Über", "Ü")}, command | shift, "ü"), "Über"); }

TEST(MenuSearch, TheFirstHitInDepthFirstOrderWins) {
    const Menu menu{item("File", "", command, {item("New", "n"), item("More", "", command, {item("Deep", "s")})}),
                    item("Shallow", "s")};
    EXPECT_EQ(found(menu, command, "s"), "Deep");
    const Menu withParent{item("Parent", "s", command, {item("Child", "s")})};
    EXPECT_EQ(found(withParent, command, "s"), "Parent");
}

TEST(MenuSearch, AKeyWithoutTextMatchesNothing) {
    EXPECT_EQ(found({item("Nothing", "")}, command, std::nullopt), "none");
}

TEST(MenuSearch, AnEmptyMenuHasNothing) { EXPECT_EQ(found({}, command, "s"), "none"); }

}  // namespace
}  // namespace tarvix
