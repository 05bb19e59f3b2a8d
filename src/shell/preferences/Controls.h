// What the settings window consists of, as values: tabs, panes, sections and controls, with every word that is read.
#pragma once

#include <algorithm>
#include <optional>
#include <string_view>
#include <variant>
#include <vector>

#include "shell/Setting.h"

namespace tarvix {

// A text in small grey type. Backticks mark code, a line feed breaks the line.
struct Footnote {
    std::optional<SettingValue> forValue;  // of the control's setting; absent: for every value
    std::string_view text;
};

// That a setting has this case of its enumeration.
struct CaseCondition {
    std::string_view key;
    std::string_view rawValue;
};

struct Toggle {
    std::string_view label;
    SettingKey<bool> setting;
    std::vector<Footnote> footnotes = {};  // at most one of them shows, below
};

// The one toggle whose state is not in the store but the desktop's: whether the program starts at login.
struct LoginToggle {
    std::string_view label;
};

struct Picker {
    std::string_view label;
    std::string_view key;
    std::string_view defaultRawValue;
    std::vector<SettingCase> cases;  // from the top
    std::vector<Footnote> footnotes = {};
    double indentation = 0;  // of the label, in points from the left edge of the form; 0: in line with the others
};

struct Slider {
    std::string_view label;
    SettingKey<double> setting;
    SettingRange range;
    std::optional<double> step = {};  // absent: continuous
    std::string_view leastLabel = {}, mostLabel = {};
    std::string_view tooltip = {};
    std::optional<CaseCondition> shownFor = {};     // absent: always there
    std::optional<CaseCondition> disabledFor = {};  // absent: always enabled
};

// Records the shortcut of this name.
struct Recorder {
    std::string_view label;
    std::string_view shortcutName;
};

struct Divider {};

using Control = std::variant<Toggle, LoginToggle, Picker, Slider, Recorder, Divider>;

struct Section {
    std::string_view title;  // empty: none shows
    std::vector<Control> controls;
    bool hasDividerAbove = false;
};

struct Pane {
    std::vector<Section> sections;
};

struct Tab {
    std::string_view label;
    std::string_view symbol;  // the name of a symbol image
    Pane pane;
};

enum class CaseOrder { asDeclared, reversed };

// A picker of all cases of an enumeration.
template <SettingEnumeration Case>
Picker picker(std::string_view label, SettingKey<Case> setting, CaseOrder order = CaseOrder::asDeclared) {
    const auto cases = casesOf(std::type_identity<Case>{});
    Picker result{label, setting.key, rawValue(setting.defaultValue), {cases.begin(), cases.end()}};
    if (order == CaseOrder::reversed) std::ranges::reverse(result.cases);
    return result;
}

}  // namespace tarvix
