#include "shell/preferences/SettingsView.h"

namespace tarvix {

namespace {

constexpr std::string_view kWithTrafficLights =
    "The search will always highlight the UI Elements of the frontmost window, including the Traffic Light Buttons.";
constexpr std::string_view kWithoutTrafficLights =
    "Apart from the Traffic Light Buttons, the search will always highlight the UI Elements of the frontmost window.";

constexpr std::string_view kClassic =
    "Tarvix Classic matches against any part of a word. You separate your search terms with spaces. Words can be "
    "matched in any order, including the UI Element's role. This provides the least amount of noise, but may require a "
    "bit more typing.\n\n"
    "E.g.: to match a button which title is \"`hello friend`\" you could use \"`h f bu`\", or \"`b fr hel`\". "
    "Depending on the context, actually \"`hell`\" may just be enough.";
constexpr std::string_view kExtended =
    "Tarvix Extended is Tarvix Classic plus a quick Fuzzy Matching. When your search term doesn't have spaces, Tarvix "
    "will try to match against the first letters of consecutive words. This allows you to reach Targets faster, but "
    "may also pollute the results.\n\n"
    "E.g.: to match \"`hello friend`\" you can use \"`hf`\". P.s.: when using the quick Fuzzy Matching you can't match "
    "against UI Element's roles.";

Section theScope() {
    return {.title = "The Scope",
            .controls = {
                Toggle{"the App Menus (left of Menu Bar)", {"searchIncludesAppMenus", true}},
                Toggle{"the Status Items (right of Menu Bar)", {"searchIncludesStatusItems", true}},
                Toggle{"the Notifications", {"searchIncludesNotifications", true}},
                Toggle{"the Dock", {"searchIncludesDock", false}},
                Toggle{"the Traffic Light Buttons 🚥️",
                       {"searchIncludesTrafficLightButtons", false},
                       {{true, kWithTrafficLights}, {false, kWithoutTrafficLights}}},
            }};
}

Section theFlavor() {
    Picker flavor =
        picker<FuzzyMatchingFlavor>("Fuzzy Matching:", {"fuzzyMatchingFlavor", FuzzyMatchingFlavor::tarvixClassic});
    flavor.footnotes = {{"tarvixClassic", kClassic}, {"tarvixExtended", kExtended}};
    return {.title = "The Flavor", .controls = {std::move(flavor)}};
}

}  // namespace

Pane searchPane() { return {{theScope(), theFlavor()}}; }

}  // namespace tarvix
