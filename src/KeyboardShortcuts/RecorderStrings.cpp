#include "KeyboardShortcuts/RecorderStrings.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <optional>

namespace tarvix {

namespace {

struct Row {
    std::string_view key;
    std::array<std::string_view, kRecorderLanguages.size()> texts;  // in the order of the languages
};

constexpr auto kRows = std::to_array<Row>({
    {recorderKey::recordShortcut,
     {"Record Shortcut", "Kürzel aufnehmen", "Enregistrer un raccourci", "Grabar atajo", "ショートカットを記録"}},
    {recorderKey::pressShortcut,
     {"Press Shortcut", "Kürzel drücken", "Tapez le raccourci", "Pulse el atajo", "キーを押してください"}},
    {recorderKey::usedByMenuItem,
     {"This shortcut is already taken by the menu item “%@”.", "Dieses Kürzel gehört schon zum Menüeintrag „%@“.",
      "Ce raccourci est déjà celui de l’élément de menu «\u00A0%@\u00A0».",
      "Este atajo ya es el del elemento de menú «%@».",
      "このショートカットは、メニュー項目「%@」ですでに使われています。"}},
    {recorderKey::usedBySystem,
     {"This shortcut is already taken by the system.", "Dieses Kürzel ist schon vom System belegt.",
      "Ce raccourci est déjà utilisé par le système.", "El sistema ya usa este atajo.",
      "このショートカットは、システムですでに使われています。"}},
    {recorderKey::canBeChanged,
     {"Most of the system’s shortcuts can be changed in the keyboard settings of your desktop.",
      "Die meisten Kürzel des Systems lassen sich in den Tastatureinstellungen der Arbeitsumgebung ändern.",
      "La plupart des raccourcis du système peuvent être modifiés dans les paramètres du clavier de votre bureau.",
      "La mayoría de los atajos del sistema se pueden cambiar en los ajustes de teclado del escritorio.",
      "システムのショートカットのほとんどは、デスクトップのキーボード設定で変更できます。"}},
    {recorderKey::ok, {"OK", "OK", "OK", "Aceptar", "OK"}},
    {recorderKey::forceUseShortcut,
     {"Use Anyway", "Trotzdem verwenden", "Utiliser quand même", "Usar de todos modos", "それでも使う"}},
});

struct Code {
    std::string_view code;
    RecorderLanguage language;
};

constexpr auto kCodes = std::to_array<Code>({
    {"en", RecorderLanguage::english},
    {"de", RecorderLanguage::german},
    {"fr", RecorderLanguage::french},
    {"es", RecorderLanguage::spanish},
    {"ja", RecorderLanguage::japanese},
});

// The language of a locale's name, such as "de_AT.UTF-8@euro".
std::optional<RecorderLanguage> languageOf(std::string_view locale) {
    const std::string_view code = locale.substr(0, locale.find_first_of("_.@"));
    const auto found = std::ranges::find(kCodes, code, &Code::code);
    if (found == kCodes.end()) return std::nullopt;
    return found->language;
}

bool isPlain(std::string_view locale) {
    return locale.empty() || locale == "POSIX" || locale == "C" || locale.starts_with("C.");
}

std::string textOfEnvironment(const char* name) {
    const char* const text = std::getenv(name);
    return text ? text : "";
}

}  // namespace

std::string recorderString(std::string_view key, RecorderLanguage language) {
    const auto found = std::ranges::find(kRows, key, &Row::key);
    return std::string(found == kRows.end() ? key : found->texts[static_cast<std::size_t>(language)]);
}

std::string recorderString(std::string_view key, RecorderLanguage language, std::string_view value) {
    constexpr std::string_view place = "%@";
    std::string text = recorderString(key, language);
    if (const auto at = text.find(place); at != std::string::npos) text.replace(at, place.size(), value);
    return text;
}

LocaleEnvironment LocaleEnvironment::ofThisProcess() {
    return {textOfEnvironment("LANGUAGE"), textOfEnvironment("LC_ALL"), textOfEnvironment("LC_MESSAGES"),
            textOfEnvironment("LANG")};
}

RecorderLanguage preferredLanguage(const LocaleEnvironment& environment) {
    const std::string& locale = !environment.all.empty()        ? environment.all
                                : !environment.messages.empty() ? environment.messages
                                                                : environment.lang;
    if (isPlain(locale)) return RecorderLanguage::english;
    if (environment.language.empty()) return languageOf(locale).value_or(RecorderLanguage::english);
    std::string_view rest = environment.language;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(':'), rest.size());
        if (const auto language = languageOf(rest.substr(0, end))) return *language;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return RecorderLanguage::english;
}

}  // namespace tarvix
