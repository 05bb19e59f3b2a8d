#include "shell/preferences/ControlValues.h"

#include <array>
#include <cmath>

namespace tarvix {

namespace {

constexpr double kFewPlaces = 100, kManyPlaces = 1000;  // for each unit

struct KeySign {
    std::string_view sign, meaning;
};

constexpr auto kKeySigns = std::to_array<KeySign>({
    {"⇧", "⇧ is the Shift key"},
    {"⌘", "⌘ is the Super key"},
});

std::string_view textFor(const SettingValue& value, const std::vector<Footnote>& footnotes) {
    for (const Footnote& each : footnotes)
        if (!each.forValue || *each.forValue == value) return each.text;
    return {};
}

}  // namespace

bool isOn(const Toggle& toggle, UserDefaults& defaults) { return Setting<bool>(defaults, toggle.setting).value(); }

std::string_view chosen(const Picker& picker, const UserDefaults& defaults) {
    const auto stored = defaults.get(picker.key);
    const auto* text = stored ? std::get_if<std::string>(&*stored) : nullptr;
    if (text)
        for (const SettingCase& each : picker.cases)
            if (each.rawValue == *text) return each.rawValue;
    return picker.defaultRawValue;
}

std::string_view footnote(const Toggle& toggle, UserDefaults& defaults) {
    return textFor(isOn(toggle, defaults), toggle.footnotes);
}

std::string_view footnote(const Picker& picker, const UserDefaults& defaults) {
    return textFor(chosen(picker, defaults), picker.footnotes);
}

bool holds(const CaseCondition& condition, const std::vector<Tab>& tabs, const UserDefaults& defaults) {
    for (const Tab& tab : tabs)
        for (const Section& section : tab.pane.sections)
            for (const Control& control : section.controls)
                if (const auto* picker = std::get_if<Picker>(&control); picker && picker->key == condition.key)
                    return chosen(*picker, defaults) == condition.rawValue;
    return false;
}

SliderPlaces::SliderPlaces(const Slider& slider) {
    const double extent = slider.range.most - slider.range.least;
    perUnit_ = slider.step ? 1 / *slider.step : extent > 1 ? kFewPlaces : kManyPlaces;
    first_ = std::round(slider.range.least * perUnit_);
    most_ = static_cast<int>(std::lround(extent * perUnit_));
}

double SliderPlaces::valueAt(int place) const { return (first_ + place) / perUnit_; }

int SliderPlaces::placeOf(double value) const {
    return static_cast<int>(std::clamp(std::round(value * perUnit_ - first_), 0.0, static_cast<double>(most_)));
}

std::string keysMeant(std::string_view text) {
    std::string meant;
    for (const KeySign& each : kKeySigns) {
        if (text.find(each.sign) == std::string_view::npos) continue;
        if (!meant.empty()) meant += ", ";
        meant += each.meaning;
    }
    return meant;
}

}  // namespace tarvix
