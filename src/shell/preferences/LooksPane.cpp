#include "shell/preferences/SettingsView.h"

namespace tarvix {

namespace {

constexpr double kPresetIndentation = 168;

Section theMenuBarIcon() {
    return {.title = "The Menu Bar Icon",
            .controls = {
                Toggle{"Hide it", {"hideMenuBarIcon", false}},
                Toggle{"Allow for temporary removal",
                       {"allowTemporaryHidingOfMenuBarIcon", false},
                       {{{},
                         "With temporary removal you can just make the icon disappear until you restart Tarvix by "
                         "dragging it out of the Menu Bar while pressing ⌘."}}},
            }};
}

Section theInputMakeup() {
    Picker preset = picker<InputPreset>("Preset:", {"inputPreset", InputPreset::tarvix});
    preset.indentation = kPresetIndentation;
    return {.title = "The Input",
            .controls =
                {
                    Slider{.label = "Text size:",
                           .setting = {"inputTextSize", 16.0},
                           .range = {12, 48},
                           .step = 4,
                           .leastLabel = "tiny",
                           .mostLabel = "ginormous",
                           .tooltip = "How big do you want it?"},
                    Slider{.label = "Background opacity:",
                           .setting = {"inputBackgroundOpacity", 0.9},
                           .range = {0, 1},
                           .leastLabel = "transparent",
                           .mostLabel = "opaque",
                           .tooltip = "How much do you wanna see through?"},
                    Slider{.label = "Corner shape:",
                           .setting = {"inputCornerRadius", 6.0},
                           .range = {0, 15},
                           .leastLabel = "rectangle",
                           .mostLabel = "pill",
                           .tooltip = "See if you like right angles or mega rounded corners"},
                    Slider{.label = "Border thickness:",
                           .setting = {"inputBorderThickness", 2.0},
                           .range = {0, 10},
                           .leastLabel = "none",
                           .mostLabel = "thick",
                           .tooltip = "How much thick is too thick though?"},
                    std::move(preset),
                },
            .hasDividerAbove = true};
}

Section theTargetsMakeup() {
    return {.title = "The Targets",
            .controls = {picker<TargetsColor>("Color:", {"targetsColor", TargetsColor::findHighlight}),
                         Slider{.label = "Hue:",
                                .setting = {"targetsCustomColorHue", 0.28},
                                .range = {0, 1},
                                .shownFor = CaseCondition{"targetsColor", "custom"}}},
            .hasDividerAbove = true};
}

Section theBackgroundMakeup() {
    return {.title = "The Background",
            .controls = {picker<HazeOverWindowStyle>(
                             "Fade out:",
                             {"hazeOverWindowStyle", HazeOverWindowStyle::fadeOutExceptDockMenuBarAndFrontmostApp},
                             CaseOrder::reversed),
                         Slider{.label = "Opacity:",
                                .setting = {"hazeOverWindowOpacity", 0.2},
                                .range = {0.1, 0.9},
                                .tooltip = "This adds a background layer behind the targets so that they stand out and "
                                           "look even more pretty",
                                .disabledFor = CaseCondition{"hazeOverWindowStyle", "onlyTargets"}}},
            .hasDividerAbove = true};
}

}  // namespace

Pane looksPane() { return {{theMenuBarIcon(), theInputMakeup(), theTargetsMakeup(), theBackgroundMakeup()}}; }

}  // namespace tarvix
