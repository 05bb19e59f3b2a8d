// What files and settings of desktops say of their appearance.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "linux/desktops/ColorText.h"
#include "linux/desktops/GtkAppearance.h"
#include "linux/desktops/IniText.h"
#include "linux/desktops/KdeAppearance.h"
#include "linux/desktops/XSettings.h"

namespace tarvix {
namespace {

constexpr Color kRed{1, 0, 0, 1}, kBlue{0, 0, 1, 1}, kGreen{0, 1, 0, 1};

TEST(ColorText, NumbersAndDigits) {
    EXPECT_EQ(colorOfText("255,0,0"), kRed);
    EXPECT_EQ(colorOfText(" 0, 0 ,255 "), kBlue);
    EXPECT_EQ(colorOfText("0,255,0,128"), kGreen) << "an opacity is left out";
    EXPECT_EQ(colorOfText("#0000ff"), kBlue);
    EXPECT_EQ(colorOfText("#00F"), kBlue);
}

TEST(ColorText, WhatIsNoColourIsNone) {
    for (const char* broken : {"", ",", "1,2", "1,2,3,4,5", "256,0,0", "-1,0,0", "1,2,x", "#", "#12345", "#gg0000",
                               "red", "#0000f ", "1;2;3"})
        EXPECT_EQ(colorOfText(broken), std::nullopt) << broken;
}

TEST(ColorText, AGroundIsDarkAsTheEyeTakesIt) {
    EXPECT_TRUE(isDarkGround({0.13, 0.15, 0.18, 1}));
    EXPECT_TRUE(isDarkGround(kBlue));
    EXPECT_FALSE(isDarkGround(kGreen));
    EXPECT_FALSE(isDarkGround({0.94, 0.94, 0.95, 1}));
}

TEST(IniText, AValueBelongsToItsGroup) {
    constexpr auto text = "key=before\n[One]\nkey=1\n[Two]\r\n key = 2 \r\n[One]\nkey=3\nother\n[One][More]\nkey=4\n";
    EXPECT_EQ(iniValue(text, "One", "key"), "3");
    EXPECT_EQ(iniValue(text, "Two", "key"), "2");
    EXPECT_EQ(iniValue(text, "Three", "key"), std::nullopt);
    EXPECT_EQ(iniValue(text, "One", "other"), std::nullopt);
}

TEST(KdeAppearance, TheSchemesColours) {
    constexpr auto file =
        "[Colors:Selection]\nBackgroundNormal=0,0,255\n[Colors:View]\nBackgroundNormal=255,255,255\n"
        "[Colors:Window]\nBackgroundNormal=42,46,50\n[General]\nAccentColor=255,0,0\n";
    EXPECT_EQ(kdeAppearance(file), (AppearanceTold{true, kRed, kBlue}));
    EXPECT_EQ(kdeAppearance("[Colors:Window]\nBackgroundNormal=239,240,241\n"), (AppearanceTold{false, {}, {}}));
}

TEST(KdeAppearance, WithoutAnAccentOfTheUsersTheActiveColourStandsForIt) {
    constexpr auto selection = "[Colors:Selection]\nBackgroundNormal=0,0,255\n";
    EXPECT_EQ(kdeAppearance(selection), (AppearanceTold{{}, kBlue, kBlue}));
    EXPECT_EQ(kdeAppearance(std::string(selection) + "[Colors:View]\nDecorationFocus=0,255,0\n"),
              (AppearanceTold{{}, kGreen, kBlue}));
}

TEST(KdeAppearance, BrokenValuesTellNothing) {
    EXPECT_EQ(kdeAppearance(""), AppearanceTold());
    EXPECT_EQ(kdeAppearance("[Colors:Window]\nBackgroundNormal=1,2\n[General]\nAccentColor=blue\n"), AppearanceTold());
    EXPECT_EQ(kdeAppearance("\0\xff[[[Colors:Window]\nBackgroundNormal"), AppearanceTold());
}

std::string noSheet(const std::string&, bool) { return {}; }

TEST(GtkAppearance, TheFilesChoice) {
    EXPECT_EQ(gtkChoice("[Settings]\ngtk-theme-name=Arc-Dark\ngtk-application-prefer-dark-theme=1\n"),
              (GtkChoice{"Arc-Dark", true}));
    EXPECT_EQ(gtkChoice("[Settings]\ngtk-application-prefer-dark-theme=false\n"), (GtkChoice{{}, false}));
    EXPECT_EQ(gtkChoice("[Settings]\ngtk-theme-name=\ngtk-application-prefer-dark-theme=perhaps\n"), GtkChoice());
    EXPECT_EQ(gtkChoice("gtk-theme-name=Arc\n"), GtkChoice());
}

TEST(GtkAppearance, AThemeGoesByItsName) {
    struct Row {
        GtkChoice choice;
        std::optional<bool> isDark;
    };
    const Row rows[] = {
        {{}, std::nullopt},           {{"Adwaita", {}}, false},
        {{"Adwaita-dark", {}}, true}, {{"Yaru-Dark-blue", {}}, true},
        {{"Adwaita:dark", {}}, true}, {{"Darkness", {}}, false},
        {{"Adwaita", true}, true},    {{"Adwaita-dark", false}, true},
        {{{}, true}, true},           {{{}, false}, false},
    };
    for (const Row& row : rows)
        EXPECT_EQ(gtkAppearance(row.choice, noSheet).isDark, row.isDark) << row.choice.theme.value_or("no theme");
}

TEST(GtkAppearance, ItsSheetKnowsBetter) {
    const auto sheet = [](const std::string& theme, bool isDark) {
        if (theme != "Coal" || isDark) return std::string();
        return std::string(
            "@define-color theme_bg_color rgb(30, 30, 30);\n"
            "@define-color selected #00f;\n"
            "  @define-color theme_selected_bg_color\n @selected;\n"
            "@define-color theme_selected_bg_color_backdrop red;");
    };
    EXPECT_EQ(gtkAppearance({"Coal", {}}, sheet), (AppearanceTold{true, kBlue, kBlue}));
    EXPECT_EQ(gtkAppearance({"Snow", {}}, sheet), (AppearanceTold{false, {}, {}}));
}

TEST(GtkAppearance, AnAccentOfItsOwnIsTaken) {
    const auto sheet = [](const std::string&, bool) {
        return std::string("@define-color accent_bg_color #ff0000;@define-color theme_selected_bg_color #0000ff;");
    };
    EXPECT_EQ(gtkAppearance({"New", {}}, sheet), (AppearanceTold{false, kRed, kBlue}));
}

TEST(GtkAppearance, NamesInACircleAndMixedColoursTellNothing) {
    const auto sheet = [](const std::string&, bool) {
        return std::string(
            "@define-color theme_bg_color @other;@define-color other @theme_bg_color;\n"
            "@define-color theme_selected_bg_color shade(@blue, 0.9);@define-color");
    };
    EXPECT_EQ(gtkAppearance({"Broken", {}}, sheet), (AppearanceTold{false, {}, {}}));
}

TEST(GtkAppearance, AnInstalledThemeWithWhatItIncludes) {
    char folder[] = "/tmp/themes-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    const std::filesystem::path theme = std::filesystem::path(folder) / "themes/Meadow/gtk-3.0";
    std::filesystem::create_directories(theme);
    std::ofstream(theme / "gtk.css") << "@import url(\"colors.css\");\n@import url('resource:///org/other.css');\n";
    std::ofstream(theme / "colors.css") << "@define-color theme_bg_color #111111;\n";
    setenv("XDG_DATA_HOME", folder, 1);
    EXPECT_EQ(gtkAppearance({"Meadow", true}, installedGtkThemeSheet).isDark, true);
    EXPECT_NE(installedGtkThemeSheet("Meadow", false).find("#111111"), std::string::npos);
    EXPECT_EQ(installedGtkThemeSheet("../themes/Meadow", false), "");
    EXPECT_EQ(installedGtkThemeSheet("Desert", false), "");
    unsetenv("XDG_DATA_HOME");
    std::filesystem::remove_all(folder);
}

// X settings
// --------------------------------------------------------------------------------------------------------------

// As a desktop's service writes them.
class SettingsMaker {
public:
    explicit SettingsMaker(bool isBigEndian) : isBigEndian_(isBigEndian) {}

    SettingsMaker& number(const std::string& name, std::uint32_t value) { return begin(0, name).put(value, 4); }
    SettingsMaker& text(const std::string& name, const std::string& value) {
        begin(1, name).put(static_cast<std::uint32_t>(value.size()), 4);
        return fill(value);
    }
    SettingsMaker& color(const std::string& name) { return begin(2, name).put(0, 4).put(0, 4); }
    std::string bytes() const {
        SettingsMaker head(isBigEndian_);
        head.bytes_ = std::string(1, isBigEndian_ ? '\1' : '\0') + std::string(3, '\0');
        head.put(7, 4).put(count_, 4);
        return head.bytes_ + bytes_;
    }

private:
    SettingsMaker& begin(char kind, const std::string& name) {
        ++count_;
        bytes_ += kind;
        bytes_ += '\0';
        return put(static_cast<std::uint32_t>(name.size()), 2).fill(name).put(3, 4);
    }
    SettingsMaker& fill(const std::string& text) {
        bytes_ += text;
        bytes_.append((4 - text.size() % 4) % 4, '\0');
        return *this;
    }
    SettingsMaker& put(std::uint32_t value, unsigned width) {
        for (unsigned i = 0; i < width; ++i)
            bytes_ += static_cast<char>(value >> (8 * (isBigEndian_ ? width - 1 - i : i)));
        return *this;
    }

    bool isBigEndian_;
    std::uint32_t count_ = 0;
    std::string bytes_;
};

TEST(XSettings, InBothOrdersOfBytes) {
    for (const bool isBigEndian : {false, true}) {
        const auto settings = xSettings(SettingsMaker(isBigEndian)
                                            .number("Xft/DPI", 98304)
                                            .color("Net/Unused")
                                            .text("Net/ThemeName", "Arc-Dark")
                                            .number("Gtk/ApplicationPreferDarkTheme", 0)
                                            .bytes());
        EXPECT_EQ(
            settings,
            (XSettings{{"Xft/DPI", 98304}, {"Net/ThemeName", "Arc-Dark"}, {"Gtk/ApplicationPreferDarkTheme", 0}}));
        EXPECT_EQ(gtkChoice(settings), (GtkChoice{"Arc-Dark", false}));
    }
}

TEST(XSettings, WhatIsCutOffKeepsWhatCameBefore) {
    const std::string whole =
        SettingsMaker(false).text("Net/ThemeName", "Arc").text("Net/IconThemeName", "Moka").bytes();
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_LE(xSettings(whole.substr(0, length)).size(), 1u) << length;
    EXPECT_EQ(xSettings(whole.substr(0, whole.size() - 1)), (XSettings{{"Net/ThemeName", "Arc"}}));
}

TEST(XSettings, OfAnotherTypeTheyTellNothing) {
    EXPECT_EQ(gtkChoice(XSettings{{"Net/ThemeName", 3}, {"Gtk/ApplicationPreferDarkTheme", "yes"}}), GtkChoice());
    EXPECT_EQ(gtkChoice(XSettings{{"Net/ThemeName", ""}}), GtkChoice());
}

}  // namespace
}  // namespace tarvix
