#include <gtest/gtest.h>

#include "linux/desktops/DesktopAppearance.h"

namespace tarvix {
namespace {

constexpr Color kRed{1, 0, 0, 1}, kBlue{0, 0, 1, 1}, kGreen{0, 1, 0, 1}, kGray{0.5, 0.5, 0.5, 1};
constexpr Color kPaleRed{1, 0.5, 0.5, 1}, kDeepRed{0.5, 0, 0, 1};
constexpr AppearanceTold kNothing{}, kDark{true, {}, {}}, kLight{false, {}, {}};
constexpr AppearanceValues kToolkit{false, kGray, kGray};

struct Row {
    const char* what;
    AppearanceTold portal, xsettings, kde, gtk;
    const char* desktop;
    AppearanceValues wanted;
};

AppearanceTold accent(Color color) { return {{}, color, {}}; }
AppearanceTold selection(Color color) { return {{}, {}, color}; }

TEST(DesktopAppearance, EachValueComesFromTheFirstThatTellsIt) {
    const Row rows[] = {
        {"nobody says anything", kNothing, kNothing, kNothing, kNothing, "", kToolkit},
        {"the portal", kDark, kLight, kLight, kLight, "GNOME", {true, kGray, kGray}},
        {"the portal over the file of KDE", kLight, kDark, kDark, kDark, "KDE", {false, kGray, kGray}},
        {"no preference at the portal", kNothing, kDark, kLight, kLight, "XFCE", {true, kGray, kGray}},
        {"GTK's theme on KDE says less than KDE", kNothing, kLight, kDark, kLight, "KDE", {true, kGray, kGray}},
        {"KDE among other names", kNothing, kLight, kDark, kLight, "X-Own:KDE", {true, kGray, kGray}},
        {"a name that only begins so", kNothing, kLight, kDark, kLight, "KDEISH", {false, kGray, kGray}},
        {"what KDE has left behind", kNothing, kLight, kDark, kLight, "XFCE", {false, kGray, kGray}},
        {"KDE's file alone", kNothing, kNothing, kDark, kLight, "", {true, kGray, kGray}},
        {"GTK's file alone", kNothing, kNothing, kNothing, kDark, "", {true, kGray, kGray}},
        {"an accent without a selection", accent(kRed), kNothing, kNothing, kNothing, "", {false, kRed, kPaleRed}},
        {"the same in the dark", {true, kRed, {}}, kNothing, kNothing, kNothing, "", {true, kRed, kDeepRed}},
        {"a selection without an accent", kNothing, selection(kBlue), kNothing, kNothing, "", {false, kGray, kBlue}},
        {"each from another", accent(kRed), kDark, selection(kBlue), accent(kGreen), "", {true, kRed, kBlue}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(appearanceOf({row.portal, row.xsettings, row.kde, row.gtk, kToolkit}, row.desktop), row.wanted)
            << row.what;
}

class Source : public AppearanceSource {
public:
    explicit Source(const AppearanceTold& told = {}) : told_(told) {}
    AppearanceTold told() const override { return told_; }
    Subscription onChange(std::function<void()> changed) override { return changed_.add(std::move(changed)); }
    void change(const AppearanceTold& told) {
        told_ = told;
        changed_();
    }

private:
    AppearanceTold told_;
    Listeners<> changed_;
};

TEST(DesktopAppearance, AChangeThatMakesNoDifferenceIsNotTold) {
    Source portal, xsettings, kde, gtk, toolkit(AppearanceTold{false, kGray, kGray});
    DesktopAppearance appearance({portal, xsettings, kde, gtk, toolkit}, "");
    EXPECT_EQ(appearance.values(), kToolkit);
    int changes = 0;
    const Subscription changed = appearance.onChange([&] { ++changes; });
    portal.change(kDark);
    EXPECT_TRUE(appearance.values().isDark);
    EXPECT_EQ(changes, 1);
    gtk.change(kLight);
    toolkit.change({true, kGray, kGray});
    EXPECT_EQ(changes, 1);
    portal.change(kNothing);
    EXPECT_FALSE(appearance.values().isDark);
    EXPECT_EQ(changes, 2);
    toolkit.change({true, kRed, kBlue});
    EXPECT_EQ(appearance.values(), (AppearanceValues{false, kRed, kBlue}));
    EXPECT_EQ(changes, 3);
}

}  // namespace
}  // namespace tarvix
