// The controls and the store: what each shows by what the store holds, and what it writes.
#pragma once

#include <string>
#include <string_view>

#include "shell/preferences/Controls.h"

namespace tarvix {

bool isOn(const Toggle& toggle, UserDefaults& defaults);

// The raw value of the case that is chosen.
std::string_view chosen(const Picker& picker, const UserDefaults& defaults);

// Empty where none shows.
std::string_view footnote(const Toggle& toggle, UserDefaults& defaults);
std::string_view footnote(const Picker& picker, const UserDefaults& defaults);

// Whether the setting has the case; its default is the one of its picker among these tabs.
bool holds(const CaseCondition& condition, const std::vector<Tab>& tabs, const UserDefaults& defaults);

// A slider's places, counted from 0 at its least value: a step each or, without steps, so close that nobody sees them
// apart. Their values are numbers as a person writes them, so that those of a preset can be set by hand.
class SliderPlaces {
public:
    explicit SliderPlaces(const Slider& slider);

    int most() const { return most_; }
    double valueAt(int place) const;
    // The closest one to a value, which may lie outside.
    int placeOf(double value) const;

private:
    double perUnit_;  // places
    double first_;    // the least value in places
    int most_;
};

// Which keys of this desktop the signs in a text stand for; empty where there are none.
std::string keysMeant(std::string_view text);

}  // namespace tarvix
