#include "linux/desktops/I3Shortcuts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <utility>

#include "linux/desktops/KeyNames.h"
#include "platform/Modifiers.h"

namespace tarvix {

namespace {

constexpr int kDeepestInclude = 8;
constexpr int kMostIncludes = 100;
constexpr std::size_t kMostLines = 20'000;
constexpr std::size_t kLongestLine = 4096;
constexpr int kMostReplacements = 64;  // in one line: a variable may name itself

constexpr auto kModifiers = std::to_array<ModifierName>({
    {"Control", carbonModifier::control},
    {"Ctrl", carbonModifier::control},
    {"Shift", carbonModifier::shift},
    {"Mod1", carbonModifier::option},
    {"Mod4", carbonModifier::command},
    {"Group1", 0},
});

// Longer names first, since a variable is known by its beginning: $mod would be found in $mode.
struct LongerFirst {
    bool operator()(const std::string& a, const std::string& b) const {
        return a.size() != b.size() ? a.size() > b.size() : a < b;
    }
};
using Variables = std::map<std::string, std::string, LongerFirst>;

// The lines of a file and of those that it includes, without comments, and those that a backslash continues as one.
class LineReader {
public:
    explicit LineReader(const I3Include& include) : include_(include) {}

    void read(std::string_view text, int depth = 0) {
        std::string whole;
        for (const std::string_view part : linesOf(text)) {
            whole += part;
            if (whole.ends_with('\\') && whole.size() < kLongestLine) {
                whole.pop_back();
            } else {
                take(trimmed(whole).substr(0, kLongestLine), depth);
                whole.clear();
            }
        }
    }
    std::vector<std::string> takeLines() { return std::move(lines_); }

private:
    void take(std::string_view line, int depth) {
        constexpr std::string_view word = "include ";
        if (line.starts_with(word)) {
            if (depth == kDeepestInclude || ++includes_ > kMostIncludes) return;
            for (const std::string& text : include_(std::string(trimmed(line.substr(word.size())))))
                read(text, depth + 1);
        } else if (!line.empty() && !line.starts_with('#') && lines_.size() < kMostLines) {
            lines_.emplace_back(line);
        }
    }

    const I3Include& include_;
    int includes_ = 0;
    std::vector<std::string> lines_;
};

// "set $name value" and "set_from_resource $name resource default".
Variables variablesOf(const std::vector<std::string>& lines) {
    Variables variables;
    for (const std::string& line : lines) {
        const auto words = wordsOf(line);
        const std::size_t value = words.front() == "set" ? 2 : words.front() == "set_from_resource" ? 3 : 0;
        if (value == 0 || words.size() <= value || !words[1].starts_with('$')) continue;
        const auto start = static_cast<std::size_t>(words[value].data() - line.data());
        variables.insert_or_assign(std::string(words[1]), line.substr(start));
    }
    return variables;
}

std::string replaced(std::string line, const Variables& variables) {
    int replacements = 0;
    for (std::size_t at = line.find('$'); at != std::string::npos; at = line.find('$', at)) {
        const auto found = std::find_if(variables.begin(), variables.end(), [&](const auto& variable) {
            return line.compare(at, variable.first.size(), variable.first) == 0;
        });
        if (found == variables.end()) {
            ++at;
        } else {
            if (++replacements > kMostReplacements || line.size() > kLongestLine) return {};
            line.replace(at, found->first.size(), found->second);
        }
    }
    return line;
}

std::optional<DesktopShortcut> keyOfBinding(std::string_view keys, bool byKeycode) {
    if (!byKeycode) return shortcutOfParts(keys, '+', kModifiers);
    const std::size_t plus = keys.rfind('+');
    const std::string_view number = plus == std::string_view::npos ? keys : keys.substr(plus + 1);
    std::uint8_t keycode = 0;
    const char* const end = number.data() + number.size();
    if (const auto read = std::from_chars(number.data(), end, keycode); read.ec != std::errc() || read.ptr != end)
        return std::nullopt;
    // The modifiers are read with some key in the keycode's place.
    auto shortcut = shortcutOfParts(std::string(keys.substr(0, keys.size() - number.size())) + "a", '+', kModifiers);
    if (shortcut) *shortcut = {0, keycode, shortcut->modifiers};
    return keycode == 0 ? std::nullopt : shortcut;
}

std::optional<DesktopShortcut> binding(const std::vector<std::string_view>& words) {
    const bool byKeycode = words.front() == "bindcode";
    if (!byKeycode && words.front() != "bindsym") return std::nullopt;
    for (std::size_t i = 1; i < words.size(); ++i)
        if (!words[i].starts_with("--")) return keyOfBinding(words[i], byKeycode);
    return std::nullopt;
}

}  // namespace

DesktopShortcuts i3Shortcuts(std::string_view text, const I3Include& include) {
    LineReader reader(include);
    reader.read(text);
    const std::vector<std::string> lines = reader.takeLines();
    const Variables variables = variablesOf(lines);
    DesktopShortcuts shortcuts;
    int blocks = 0;  // of modes and bars, whose bindings don't count all the time
    for (const std::string& raw : lines) {
        const std::string line = replaced(raw, variables);
        const auto words = wordsOf(line);
        if (words.empty()) continue;
        if (words.front() == "}") {
            blocks = std::max(0, blocks - 1);
        } else if (words.back() == "{") {
            ++blocks;
        } else if (blocks == 0) {
            if (const auto shortcut = binding(words)) shortcuts.push_back(*shortcut);
        }
    }
    return shortcuts;
}

}  // namespace tarvix
