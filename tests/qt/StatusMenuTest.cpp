// The status item's menu as other programs get it, and its symbol.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QList>
#include <QStringList>
#include <cmath>

#include "qt/BusMenuEntries.h"
#include "qt/MenuKeys.h"
#include "qt/WindSymbol.h"

namespace tarvix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

MenuItem item(const std::string& title, const std::string& key = {}, std::uint64_t mask = eventFlag::command) {
    MenuItem made;
    made.title = title;
    made.keyEquivalent = key;
    made.keyEquivalentModifierMask = mask;
    made.action = [] {};
    return made;
}

MenuItem disabled(const std::string& title) {
    MenuItem made;
    made.title = title;
    return made;
}

MenuItem withSubmenu(const std::string& title, Menu submenu) {
    MenuItem made = disabled(title);
    made.submenu = std::move(submenu);
    return made;
}

TEST(BusMenuEntries, AnEntryComesBeforeItsSubmenuAndAfterWhatStandsAboveIt) {
    const auto entries =
        busMenuEntries({item("A"), disabled(""), withSubmenu("B", {item("C"), disabled("D")}), item("E")});
    ASSERT_EQ(entries.size(), 7u);
    EXPECT_THAT(entries[0].children, ElementsAre(1, 2, 3, 6));
    EXPECT_THAT(entries[3].children, ElementsAre(4, 5));
    EXPECT_EQ(entries[4].properties["label"], "C");
    EXPECT_EQ(entries[6].properties["label"], "E");
    EXPECT_TRUE(entries[1].action);
    EXPECT_FALSE(entries[5].action);
}

TEST(BusMenuEntries, OnlyWhatIsUnusualIsSaid) {
    const auto entries = busMenuEntries({item("A"), disabled(""), withSubmenu("B", {item("C")}), disabled("D")});
    EXPECT_EQ(entries[0].properties, (QVariantMap{{"children-display", "submenu"}}));
    EXPECT_EQ(entries[1].properties, (QVariantMap{{"label", "A"}}));
    EXPECT_EQ(entries[2].properties, (QVariantMap{{"type", "separator"}}));
    EXPECT_EQ(entries[3].properties, (QVariantMap{{"label", "B"}, {"children-display", "submenu"}}));
    EXPECT_EQ(entries[5].properties, (QVariantMap{{"label", "D"}, {"enabled", false}}));
}

TEST(BusMenuEntries, AnUnderscoreStaysOne) {
    EXPECT_EQ(busMenuEntries({item("a_b & c")})[1].properties["label"], "a__b & c");
}

TEST(BusMenuEntries, WhatHasChangedIsKnownByItsNumber) {
    const Menu before{item("A"), withSubmenu("B", {item("C")})};
    Menu after = before;
    EXPECT_THAT(changedEntries(busMenuEntries(before), busMenuEntries(after)), IsEmpty());
    after[1].title = "B too";
    after[1].submenu[0].action = nullptr;
    ASSERT_TRUE(haveSameStructure(busMenuEntries(before), busMenuEntries(after)));
    EXPECT_THAT(changedEntries(busMenuEntries(before), busMenuEntries(after)), ElementsAre(2, 3));
    after.push_back(item("D"));
    EXPECT_FALSE(haveSameStructure(busMenuEntries(before), busMenuEntries(after)));
    EXPECT_FALSE(
        haveSameStructure(busMenuEntries({item("A"), item("B")}), busMenuEntries({withSubmenu("A", {item("B")})})));
}

TEST(MenuKeys, CommandIsSuper) {
    EXPECT_THAT(keyNamesOf(item("", ",")), ElementsAre("Super", "comma"));
    EXPECT_THAT(keyNamesOf(item("", "q")), ElementsAre("Super", "q"));
    EXPECT_EQ(keySequenceOf(item("", ",")), QKeySequence("Meta+,"));
    EXPECT_EQ(keySequenceOf(item("", "u")), QKeySequence("Meta+U"));
}

TEST(MenuKeys, AnUpperCaseLetterMeansShiftBesides) {
    EXPECT_THAT(keyNamesOf(item("", "Z")), ElementsAre("Shift", "Super", "z"));
    EXPECT_EQ(keySequenceOf(item("", "Z")), QKeySequence("Meta+Shift+Z"));
}

TEST(MenuKeys, OtherModifiersReplaceCommand) {
    const auto key = item("", "x", eventFlag::control | eventFlag::option);
    EXPECT_THAT(keyNamesOf(key), ElementsAre("Control", "Alt", "x"));
    EXPECT_EQ(keySequenceOf(key), QKeySequence("Ctrl+Alt+X"));
    EXPECT_THAT(keyNamesOf(item("", "x", 0)), ElementsAre("x"));
}

TEST(MenuKeys, WithoutAKeyThereIsNone) {
    for (const char* none : {"", "two"}) {
        EXPECT_THAT(keyNamesOf(item("", none)), IsEmpty());
        EXPECT_TRUE(keySequenceOf(item("", none)).isEmpty());
    }
}

// The symbol
// ------------------------------------------------------------------------------------------------------------

double luminance(QRgb color) {
    const auto part = [](int value) {
        const double share = value / 255.0;
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(qRed(color)) + 0.7152 * part(qGreen(color)) + 0.0722 * part(qBlue(color));
}

double contrast(QRgb a, QRgb b) {
    const double one = luminance(a) + 0.05, other = luminance(b) + 0.05;
    return std::max(one, other) / std::min(one, other);
}

// The strongest contrast that a pixel of the picture has with the ground below it.
double contrastOn(QColor ground, int size, bool isOnDark) {
    QImage picture(size, size, QImage::Format_RGB32);
    picture.fill(ground);
    const QImage symbol = windSymbol(size, symbolColors(isOnDark));
    double best = 1;
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const QRgb above = symbol.pixel(x, y);
            const auto mixed = [&](int top, int below) {
                return (top * qAlpha(above) + below * (255 - qAlpha(above))) / 255;
            };
            const QRgb shown = qRgb(mixed(qRed(above), ground.red()), mixed(qGreen(above), ground.green()),
                                    mixed(qBlue(above), ground.blue()));
            best = std::max(best, contrast(shown, ground.rgb()));
        }
    return best;
}

TEST(WindSymbol, StandsOutOnPanelsOfAnyLightness) {
    for (const int size : {16, 22, 24, 32})
        for (int gray = 0; gray <= 255; gray += 15) {
            const QColor ground(gray, gray, gray);
            EXPECT_GE(contrastOn(ground, size, isDark(ground)), 3) << "of lightness " << gray << " at " << size;
            EXPECT_GE(contrastOn(ground, size, !isDark(ground)), 2)
                << "of lightness " << gray << " at " << size << ", taken for the other kind";
        }
}

TEST(WindSymbol, LeavesTheCornersFree) {
    for (const int size : {16, 22, 24, 32, 64}) {
        const QImage symbol = windSymbol(size, symbolColors(true));
        EXPECT_EQ(symbol.size(), QSize(size, size));
        for (const QPoint& corner :
             {QPoint(0, 0), QPoint(size - 1, 0), QPoint(0, size - 1), QPoint(size - 1, size - 1)})
            EXPECT_EQ(qAlpha(symbol.pixel(corner)), 0) << size;
    }
}

}  // namespace
}  // namespace tarvix
