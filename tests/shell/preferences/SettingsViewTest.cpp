// The settings window word for word.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "shell/preferences/ControlValues.h"
#include "shell/preferences/SettingsView.h"
#include "simulated/SimulatedUserDefaults.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::string_view>;

template <class T>
const T& at(const Section& section, std::size_t place) {
    return std::get<T>(section.controls.at(place));
}

Texts displayTexts(const Picker& picker) {
    Texts texts;
    for (const SettingCase& each : picker.cases) texts.push_back(each.displayText);
    return texts;
}

TEST(SettingsView, HasFiveTabsEachWithItsSymbol) {
    std::vector<std::pair<std::string_view, std::string_view>> tabs;
    for (const Tab& tab : settingsView()) tabs.emplace_back(tab.label, tab.symbol);
    EXPECT_THAT(tabs, ElementsAre(std::pair("General", "gearshape"), std::pair("Search", "magnifyingglass"),
                                  std::pair("Looks", "mouth"), std::pair("Position", "mappin"),
                                  std::pair("Extra", "wand.and.stars")));
}

TEST(SettingsView, SectionsHaveTheirTitlesAndThoseOfTheLooksDividersBetween) {
    struct Row {
        std::string_view title;
        bool hasDividerAbove;
        bool operator==(const Row&) const = default;
    };
    std::vector<std::vector<Row>> titles;
    for (const Tab& tab : settingsView()) {
        auto& pane = titles.emplace_back();
        for (const Section& section : tab.pane.sections) pane.push_back({section.title, section.hasDividerAbove});
    }
    EXPECT_THAT(titles,
                ElementsAre(ElementsAre(Row{"", false}), ElementsAre(Row{"The Scope", false}, Row{"The Flavor", false}),
                            ElementsAre(Row{"The Menu Bar Icon", false}, Row{"The Input", true},
                                        Row{"The Targets", true}, Row{"The Background", true}),
                            ElementsAre(Row{"", false}), ElementsAre(Row{"", false})));
}

TEST(GeneralPane, HasTheRecorderThenADividerThenTheTwoToggles) {
    const Section section = generalPane().sections.at(0);
    ASSERT_EQ(section.controls.size(), 4u);
    EXPECT_EQ(at<Recorder>(section, 0).label, "Start Tarvixing with:");
    EXPECT_EQ(at<Recorder>(section, 0).shortcutName, "toggleWith");
    EXPECT_TRUE(std::holds_alternative<Divider>(section.controls[1]));
    EXPECT_EQ(at<LoginToggle>(section, 2).label, "Launch at login");
    const Toggle& updates = at<Toggle>(section, 3);
    EXPECT_EQ(updates.label, "Automatically check for updates");
    EXPECT_EQ(updates.setting.key, "SUEnableAutomaticChecks");
    EXPECT_TRUE(updates.setting.defaultValue);
    SimulatedUserDefaults store;
    EXPECT_EQ(footnote(updates, store),
              "You may want to disable automatic checks if you're updating through other tools like Homebrew.");
}

struct ToggleRow {
    std::string_view label, key, footnote;
};

void expectToggles(const Section& section, const std::vector<ToggleRow>& rows) {
    SimulatedUserDefaults store;
    ASSERT_EQ(section.controls.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Toggle& toggle = at<Toggle>(section, i);
        EXPECT_EQ(toggle.label, rows[i].label);
        EXPECT_EQ(toggle.setting.key, rows[i].key);
        EXPECT_EQ(footnote(toggle, store), rows[i].footnote);
    }
}

TEST(SearchPane, TheScopeHasFiveToggles) {
    const Section scope = searchPane().sections.at(0);
    expectToggles(scope,
                  {{"the App Menus (left of Menu Bar)", "searchIncludesAppMenus", ""},
                   {"the Status Items (right of Menu Bar)", "searchIncludesStatusItems", ""},
                   {"the Notifications", "searchIncludesNotifications", ""},
                   {"the Dock", "searchIncludesDock", ""},
                   {"the Traffic Light Buttons \U0001F6A5\uFE0F", "searchIncludesTrafficLightButtons",
                    "Apart from the Traffic Light Buttons, the search will always highlight the UI Elements of the "
                    "frontmost window."}});
    std::vector<bool> fresh;
    SimulatedUserDefaults store;
    for (std::size_t i = 0; i < scope.controls.size(); ++i) fresh.push_back(isOn(at<Toggle>(scope, i), store));
    EXPECT_THAT(fresh, ElementsAre(true, true, true, false, false));
}

TEST(SearchPane, TheTextBelowTheLastToggleSaysWhatItsStateMeans) {
    const Section scope = searchPane().sections.at(0);
    const Toggle& last = at<Toggle>(scope, 4);
    SimulatedUserDefaults store;
    store.set("searchIncludesTrafficLightButtons", true);
    EXPECT_EQ(footnote(last, store),
              "The search will always highlight the UI Elements of the frontmost window, including the Traffic Light "
              "Buttons.");
}

TEST(SearchPane, TheFlavorIsAPickerWithATextForEach) {
    const Section section = searchPane().sections.at(1);
    ASSERT_EQ(section.controls.size(), 1u);
    const Picker& flavor = at<Picker>(section, 0);
    EXPECT_EQ(flavor.label, "Fuzzy Matching:");
    EXPECT_EQ(flavor.key, "fuzzyMatchingFlavor");
    EXPECT_THAT(displayTexts(flavor), ElementsAre("Tarvix Classic", "Tarvix Extended"));
    SimulatedUserDefaults store;
    EXPECT_EQ(footnote(flavor, store),
              "Tarvix Classic matches against any part of a word. You separate your search terms with spaces. Words "
              "can be matched in any order, including the UI Element's role. This provides the least amount of noise, "
              "but may require a bit more typing.\n\nE.g.: to match a button which title is \"`hello friend`\" you "
              "could use \"`h f bu`\", or \"`b fr hel`\". Depending on the context, actually \"`hell`\" may just be "
              "enough.");
    store.set("fuzzyMatchingFlavor", std::string("tarvixExtended"));
    EXPECT_EQ(footnote(flavor, store),
              "Tarvix Extended is Tarvix Classic plus a quick Fuzzy Matching. When your search term doesn't have "
              "spaces, Tarvix will try to match against the first letters of consecutive words. This allows you to "
              "reach Targets faster, but may also pollute the results.\n\nE.g.: to match \"`hello friend`\" you can "
              "use \"`hf`\". P.s.: when using the quick Fuzzy Matching you can't match against UI Element's roles.");
}

TEST(LooksPane, TheMenuBarIconHasTwoToggles) {
    expectToggles(looksPane().sections.at(0),
                  {{"Hide it", "hideMenuBarIcon", ""},
                   {"Allow for temporary removal", "allowTemporaryHidingOfMenuBarIcon",
                    "With temporary removal you can just make the icon disappear until you restart Tarvix by dragging "
                    "it out of the Menu Bar while pressing \u2318."}});
}

TEST(LooksPane, TheInputHasFourSlidersAndThePresetsBelow) {
    struct Row {
        std::string_view label, key;
        double defaultValue, least, most;
        std::optional<double> step;
        std::string_view leastLabel, mostLabel, tooltip;
    };
    const Row rows[] = {
        {"Text size:", "inputTextSize", 16, 12, 48, 4, "tiny", "ginormous", "How big do you want it?"},
        {"Background opacity:",
         "inputBackgroundOpacity",
         0.9,
         0,
         1,
         {},
         "transparent",
         "opaque",
         "How much do you wanna see through?"},
        {"Corner shape:",
         "inputCornerRadius",
         6,
         0,
         15,
         {},
         "rectangle",
         "pill",
         "See if you like right angles or mega rounded corners"},
        {"Border thickness:",
         "inputBorderThickness",
         2,
         0,
         10,
         {},
         "none",
         "thick",
         "How much thick is too thick though?"},
    };
    const Section section = looksPane().sections.at(1);
    ASSERT_EQ(section.controls.size(), 5u);
    for (std::size_t i = 0; i < 4; ++i) {
        const Slider& slider = at<Slider>(section, i);
        EXPECT_EQ(slider.label, rows[i].label);
        EXPECT_EQ(slider.setting.key, rows[i].key);
        EXPECT_EQ(slider.setting.defaultValue, rows[i].defaultValue);
        EXPECT_EQ(slider.range.least, rows[i].least);
        EXPECT_EQ(slider.range.most, rows[i].most);
        EXPECT_EQ(slider.step, rows[i].step);
        EXPECT_EQ(slider.leastLabel, rows[i].leastLabel);
        EXPECT_EQ(slider.mostLabel, rows[i].mostLabel);
        EXPECT_EQ(slider.tooltip, rows[i].tooltip);
        EXPECT_FALSE(slider.shownFor);
        EXPECT_FALSE(slider.disabledFor);
    }
    const Picker& preset = at<Picker>(section, 4);
    EXPECT_EQ(preset.label, "Preset:");
    EXPECT_EQ(preset.key, "inputPreset");
    EXPECT_EQ(preset.indentation, 168);
    EXPECT_THAT(displayTexts(preset),
                ElementsAre("Tarvix", "\u00C0 la Spotlight", "kinda Alfred", "The Invisible Man", "custom"));
}

TEST(LooksPane, TheTargetsHaveAColourAndForCustomAHue) {
    const Section section = looksPane().sections.at(2);
    ASSERT_EQ(section.controls.size(), 2u);
    const Picker& color = at<Picker>(section, 0);
    EXPECT_EQ(color.label, "Color:");
    EXPECT_EQ(color.key, "targetsColor");
    EXPECT_EQ(color.indentation, 0);
    EXPECT_THAT(displayTexts(color),
                ElementsAre("macOS Search color", "macOS Accent color", "macOS Highlight color", "VoiceOver",
                            "Orwyn Pastel Pink", "Mirel's Favorite Blue", "Q's Flamboyant Fuchsia", "custom"));
    const Slider& hue = at<Slider>(section, 1);
    EXPECT_EQ(hue.label, "Hue:");
    EXPECT_EQ(hue.setting.key, "targetsCustomColorHue");
    EXPECT_EQ(hue.setting.defaultValue, 0.28);
    EXPECT_EQ(hue.range.least, 0);
    EXPECT_EQ(hue.range.most, 1);
    EXPECT_FALSE(hue.step);
    SimulatedUserDefaults store;
    const std::vector<Tab> tabs = settingsView();
    for (const SettingCase& each : color.cases) {
        store.set("targetsColor", std::string(each.rawValue));
        EXPECT_EQ(holds(*hue.shownFor, tabs, store), each.rawValue == "custom") << each.rawValue;
    }
}

TEST(LooksPane, TheBackgroundHasAStyleAndAnOpacityThatNothingDisables) {
    const Section section = looksPane().sections.at(3);
    ASSERT_EQ(section.controls.size(), 2u);
    const Picker& style = at<Picker>(section, 0);
    EXPECT_EQ(style.label, "Fade out:");
    EXPECT_EQ(style.key, "hazeOverWindowStyle");
    EXPECT_THAT(displayTexts(style), ElementsAre("everything except the Dock, the Menu Bars, and the frontmost app",
                                                 "the whole screen", "nothing"));
    const Slider& opacity = at<Slider>(section, 1);
    EXPECT_EQ(opacity.label, "Opacity:");
    EXPECT_EQ(opacity.setting.key, "hazeOverWindowOpacity");
    EXPECT_EQ(opacity.setting.defaultValue, 0.2);
    EXPECT_EQ(opacity.range.least, 0.1);
    EXPECT_EQ(opacity.range.most, 0.9);
    EXPECT_EQ(opacity.tooltip,
              "This adds a background layer behind the targets so that they stand out and look even more pretty");
    SimulatedUserDefaults store;
    const std::vector<Tab> tabs = settingsView();
    EXPECT_FALSE(holds(*opacity.disabledFor, tabs, store));
    for (const SettingCase& each : style.cases) {
        store.set("hazeOverWindowStyle", std::string(each.rawValue));
        EXPECT_EQ(holds(*opacity.disabledFor, tabs, store), each.rawValue == "onlyTargets") << each.rawValue;
    }
}

TEST(PositionPane, HasThePickerAlone) {
    const Pane pane = positionPane();
    ASSERT_EQ(pane.sections.at(0).controls.size(), 1u);
    const Picker& position = at<Picker>(pane.sections[0], 0);
    EXPECT_EQ(position.label, "Show The Input\u2122:");
    EXPECT_EQ(position.key, "inputPosition");
    EXPECT_EQ(position.defaultRawValue, "aboveWindow");
    EXPECT_THAT(displayTexts(position), ElementsAre("where you left it", "above the frontmost window",
                                                    "above the current input", "above the mouse cursor"));
}

TEST(ExtraPane, HasSixTogglesEachWithItsText) {
    expectToggles(
        extraPane().sections.at(0),
        {{"Prevent scrolling when Tarvixing", "preventScrollingWhenTarvixing",
          "By default The Input will disappear if you're scrolling while you're Tarvixing. This option completely "
          "freezes the scrolling. Mostly for the submissive ones, who like to be controlled."},
         {"Allow the copying of text and metadata with `\u2318C` and co", "allowCopyingOfTextAndMetadata",
          "`\u2318C` will copy the text of your Primary Target, while adding any other modifier key will copy the "
          "relevant metadata if any. E.g.: for links `\u2318C` copies the descriptive text, while `\u21E7\u2318C` "
          "copies the hidden URL metadata."},
         {"Allow cycling through Targets", "allowCyclingThroughTargets",
          "By default Tarvix is pretty strict and doesn't let you navigate beyond the first and the last Targets. Use "
          "this option if you'd rather consider the Targets as a big fat loop and be able to cycle through them."},
         {"Don't flush The Input", "dontFlushTheInput",
          "Not flushing The Input will reapply your last search as soon as you reactivate Tarvix. The last search will "
          "be selected by default so that you can easily overwrite it if needed. Yes Tarvix is that smart."},
         {"Reposition the mouse after clicking when possible", "repositionMouseAfterClick",
          "Except for the App Menus (i.e. the left of the Menu Bar), Tarvix can move back your mouse to its original "
          "location after clicking. Most of the time it looks like your mouse never moved. Honestly, it feels like "
          "magic."},
         {"Ignore Tabs and URL Bars in Safari", "ignoreSafariTabsAndURLs",
          "Useful if you're a Keyboard Master\u2122 and have shortcuts for all those things. In that case you'll want "
          "Tarvix to back off and focus mostly on the Web content instead."}});
}

// The key of a control's setting, and the raw values of its cases.
void visit(const Control& control, std::map<std::string_view, int>& controls) {
    if (const auto* toggle = std::get_if<Toggle>(&control)) ++controls[toggle->setting.key];
    if (const auto* slider = std::get_if<Slider>(&control)) ++controls[slider->setting.key];
    if (const auto* picker = std::get_if<Picker>(&control)) ++controls[picker->key];
}

TEST(SettingsView, EverySettingHasExactlyOneControlAndNothingElseHas) {
    std::map<std::string_view, int> controls;
    for (const Tab& tab : settingsView())
        for (const Section& section : tab.pane.sections)
            for (const Control& control : section.controls) visit(control, controls);
    std::map<std::string_view, int> settings;
    for (const SettingRow& row : settingRows) settings[row.key] = 1;
    EXPECT_EQ(controls, settings);
}

TEST(SettingsView, ASlidersRangeIsTheSettingsOwn) {
    int sliders = 0;
    for (const Tab& tab : settingsView())
        for (const Section& section : tab.pane.sections)
            for (const Control& control : section.controls)
                if (const auto* slider = std::get_if<Slider>(&control)) {
                    const auto row = std::ranges::find(settingRows, slider->setting.key, &SettingRow::key);
                    ASSERT_TRUE(row->range);
                    EXPECT_EQ(slider->range.least, row->range->least) << row->key;
                    EXPECT_EQ(slider->range.most, row->range->most) << row->key;
                    ++sliders;
                }
    EXPECT_EQ(sliders, 6);
}

}  // namespace
}  // namespace tarvix
