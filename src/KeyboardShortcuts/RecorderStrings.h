// The recorder's texts in the languages that there are.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace tarvix {

enum class RecorderLanguage { english, german, french, spanish, japanese };
inline constexpr std::array kRecorderLanguages = {RecorderLanguage::english, RecorderLanguage::german,
                                                  RecorderLanguage::french, RecorderLanguage::spanish,
                                                  RecorderLanguage::japanese};

namespace recorderKey {
inline constexpr std::string_view recordShortcut = "record_shortcut";
inline constexpr std::string_view pressShortcut = "press_shortcut";
inline constexpr std::string_view usedByMenuItem = "keyboard_shortcut_used_by_menu_item";  // one %@: the item's title
inline constexpr std::string_view usedBySystem = "keyboard_shortcut_used_by_system";
inline constexpr std::string_view canBeChanged = "keyboard_shortcuts_can_be_changed";
inline constexpr std::string_view ok = "ok";
inline constexpr std::string_view forceUseShortcut = "force_use_shortcut";
inline constexpr std::array all = {recordShortcut,  pressShortcut, usedByMenuItem, usedBySystem, canBeChanged, ok,
                                   forceUseShortcut};
}  // namespace recorderKey

// A key that isn't one of these gives the key.
std::string recorderString(std::string_view key, RecorderLanguage language);
// The same with `value` in the place of %@.
std::string recorderString(std::string_view key, RecorderLanguage language, std::string_view value);

// The environment variables that name the user's language, empty where they aren't set.
struct LocaleEnvironment {
    std::string language = {};  // LANGUAGE, a list
    std::string all = {};       // LC_ALL
    std::string messages = {};  // LC_MESSAGES
    std::string lang = {};      // LANG

    static LocaleEnvironment ofThisProcess();
};

// The first language of the user's that there are texts in, as all programs of a Linux desktop choose it: the list in
// LANGUAGE counts unless the locale itself is the plain one.
RecorderLanguage preferredLanguage(const LocaleEnvironment& environment);

}  // namespace tarvix
