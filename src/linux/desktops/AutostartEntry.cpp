#include "linux/desktops/AutostartEntry.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "linux/desktops/IniText.h"

namespace tarvix {

namespace {

constexpr std::string_view kGroup = "Desktop Entry";
// Where desktops note that the user has switched an entry off, instead of hiding it.
constexpr std::array kSwitches{"X-GNOME-Autostart-enabled", "X-MATE-Autostart-enabled"};

std::optional<std::string_view> valueOf(std::string_view entry, std::string_view key) {
    return iniValue(entry, kGroup, key);
}

template <class Each>
void forEachPart(std::string_view text, char between, Each each) {
    while (true) {
        const auto end = text.find(between);
        each(text.substr(0, end));
        if (end == std::string_view::npos) return;
        text.remove_prefix(end + 1);
    }
}

bool names(std::string_view list, const std::vector<std::string>& desktops) {
    bool isNamed = false;
    forEachPart(list, ';', [&](std::string_view name) {
        if (!name.empty()) isNamed |= std::ranges::find(desktops, name) != desktops.end();
    });
    return isNamed;
}

// Values of any key are written so.
constexpr std::array kEscapes{std::pair{'s', ' '}, std::pair{'n', '\n'}, std::pair{'t', '\t'}, std::pair{'r', '\r'},
                              std::pair{'\\', '\\'}};

std::string unescaped(std::string_view value) {
    std::string text;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const auto* escape = kEscapes.end();
        if (value[i] == '\\' && i + 1 < value.size())
            escape = std::ranges::find(kEscapes, value[i + 1], &std::pair<char, char>::first);
        text += escape == kEscapes.end() ? value[i] : escape->second;
        if (escape != kEscapes.end()) ++i;
    }
    return text;
}

std::string escaped(std::string_view text) {
    std::string value;
    for (const char each : text) {
        const auto* escape = std::ranges::find(kEscapes, each, &std::pair<char, char>::second);
        if (escape == kEscapes.end() || each == ' ')
            value += each;
        else
            (value += '\\') += escape->first;
    }
    return value;
}

bool isPlain(std::string_view word) {
    constexpr std::string_view reserved = " \t\n\"'\\><~|&;$*?#()`";
    return !word.empty() && word.find_first_of(reserved) == std::string_view::npos;
}

std::string quoted(std::string_view word) {
    constexpr std::string_view special = "\"`$\\";
    std::string line = "\"";
    for (const char each : word) {
        if (special.find(each) != std::string_view::npos) line += '\\';
        line += each;
    }
    return line + '"';
}

std::string withoutFieldCodes(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            plain += text[i];
        } else if (++i < text.size() && text[i] == '%') {
            plain += '%';
        }
    }
    return plain;
}

bool isProgram(const std::filesystem::path& path) {
    std::error_code failure;
    return std::filesystem::is_regular_file(path, failure) && access(path.c_str(), X_OK) == 0;
}

}  // namespace

bool isSwitchedOn(std::string_view entry, const std::vector<std::string>& desktops) {
    if (valueOf(entry, "Hidden") == "true") return false;
    for (const char* key : kSwitches)
        if (valueOf(entry, key) == "false") return false;
    const auto only = valueOf(entry, "OnlyShowIn"), not_ = valueOf(entry, "NotShowIn");
    if (only && !names(*only, desktops)) return false;
    if (not_ && names(*not_, desktops)) return false;
    return valueOf(entry, "Exec").has_value();
}

bool canBeStarted(std::string_view entry, std::string_view searchPath) {
    const auto tried = valueOf(entry, "TryExec");
    if (tried && !tried->empty() && programPath(unescaped(*tried), searchPath).empty()) return false;
    const auto line = valueOf(entry, "Exec");
    const auto words = execWords(line.value_or(""));
    return !words.empty() && !programPath(words.front(), searchPath).empty();
}

std::string autostartEntry(const std::string& program) {
    return "[Desktop Entry]\nType=Application\nName=Tarvix\nIcon=org.tarvix.Tarvix\nExec=" + execLine(program) +
           "\nTryExec=" + escaped(program) + "\nTerminal=false\nX-GNOME-Autostart-enabled=true\n";
}

std::string hiddenEntry() { return "[Desktop Entry]\nType=Application\nName=Tarvix\nHidden=true\n"; }

std::string execLine(std::string_view program) {
    std::string line = isPlain(program) ? std::string(program) : quoted(program);
    for (auto at = line.find('%'); at != std::string::npos; at = line.find('%', at + 2)) line.insert(at, 1, '%');
    return escaped(line);
}

std::vector<std::string> execWords(std::string_view line) {
    const std::string text = unescaped(line);
    std::vector<std::string> words;
    std::optional<std::string> word;
    bool isQuoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"') {
            isQuoted = !isQuoted;
            if (!word) word.emplace();
        } else if (!isQuoted && (text[i] == ' ' || text[i] == '\t')) {
            if (word) words.push_back(*std::exchange(word, std::nullopt));
        } else {
            if (isQuoted && text[i] == '\\' && i + 1 < text.size()) ++i;
            word = word.value_or("") + text[i];
        }
    }
    if (word) words.push_back(*word);
    for (std::string& each : words) each = withoutFieldCodes(each);
    return words;
}

std::string programPath(std::string_view program, std::string_view searchPath) {
    if (program.empty()) return {};
    if (program.find('/') != std::string_view::npos) return isProgram(program) ? std::string(program) : std::string();
    std::string found;
    forEachPart(searchPath, ':', [&](std::string_view folder) {
        const auto path = std::filesystem::path(folder) / program;
        if (found.empty() && !folder.empty() && isProgram(path)) found = path.string();
    });
    return found;
}

}  // namespace tarvix
