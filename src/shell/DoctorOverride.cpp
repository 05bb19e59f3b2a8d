#include "shell/DoctorOverride.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <optional>
#include <sstream>

namespace tarvix {

namespace {

constexpr std::string_view kMainGroup = "[Desktop Entry]";
constexpr std::string_view kActionGroup = "[Desktop Action ";
constexpr std::string_view kMark = "X-Tarvix-Override";

// --- Command lines

// One character of a command line, after the escapes that any value of a desktop file may have.
struct Letter {
    char character;
    std::size_t begin, end;  // where it stands in the file's text
};

struct Word {
    std::string text;        // without quotes
    std::size_t begin, end;  // where it stands in the file's text
};

std::vector<Letter> lettersOf(std::string_view raw) {
    constexpr std::string_view escapes = "sntr\\", meanings = " \n\t\r\\";
    std::vector<Letter> letters;
    for (std::size_t i = 0; i < raw.size(); ++i) {
        const std::size_t escape = raw[i] == '\\' && i + 1 < raw.size() ? escapes.find(raw[i + 1]) : escapes.npos;
        if (escape == escapes.npos) {
            letters.push_back({raw[i], i, i + 1});
        } else {
            letters.push_back({meanings[escape], i, i + 2});
            ++i;
        }
    }
    return letters;
}

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// Reads one word from `at` on; absent when its quotes don't end.
std::optional<Word> readWord(const std::vector<Letter>& letters, std::size_t& at) {
    Word word{"", letters[at].begin, 0};
    char quote = 0;
    for (; at < letters.size() && (quote != 0 || !isSpace(letters[at].character)); ++at) {
        const char c = letters[at].character;
        if (c == '\\' && quote != '\'' && at + 1 < letters.size()) {
            word.text += letters[++at].character;
        } else if (quote == c) {
            quote = 0;
        } else if (quote == 0 && (c == '"' || c == '\'')) {
            quote = c;
        } else {
            word.text += c;
        }
    }
    word.end = letters[at - 1].end;
    return quote == 0 ? std::optional(word) : std::nullopt;
}

std::optional<std::vector<Word>> wordsOf(std::string_view raw) {
    const std::vector<Letter> letters = lettersOf(raw);
    std::vector<Word> words;
    for (std::size_t at = 0; at < letters.size();) {
        if (isSpace(letters[at].character)) {
            ++at;
            continue;
        }
        std::optional<Word> word = readWord(letters, at);
        if (!word) return std::nullopt;
        words.push_back(std::move(*word));
    }
    return words;
}

// A word as it stands in a command line of a desktop file.
std::string asWord(std::string_view word) {
    constexpr std::string_view reserved = " \t\n\"'\\><~|&;$*?#()`";
    std::string text;
    const bool needsQuotes = word.empty() || word.find_first_of(reserved) != word.npos;
    for (const char c : word) {
        if (c == '%') text += '%';  // else it would begin a field code
        // Once for the quotes, and a backslash itself once more for the file.
        if (c == '"' || c == '`' || c == '$') text += "\\\\";
        if (c == '\\') text += "\\\\\\";
        text += c;
    }
    return needsQuotes ? '"' + text + '"' : text;
}

std::string_view baseName(std::string_view program) { return program.substr(program.rfind('/') + 1); }

bool isAssignment(std::string_view word) {
    const std::size_t sign = word.find('=');
    return sign != word.npos && sign > 0 && !word.starts_with('-');
}

// The word that is the program: "env" with what belongs to it only prepares one. The number of words when there is
// none.
std::size_t programAmong(const std::vector<Word>& words) {
    std::size_t at = 0;
    while (at < words.size() && baseName(words[at].text) == "env") {
        for (++at; at < words.size(); ++at) {
            const std::string& word = words[at].text;
            if (word == "-u" || word == "-C") {
                ++at;  // with its value
            } else if (!word.starts_with('-') && !isAssignment(word)) {
                break;
            }
        }
    }
    return std::min(at, words.size());
}

// A shell runs what stands in one of its arguments, so that the program's own can't be reached.
bool isShell(std::string_view program) {
    constexpr auto shells = std::to_array<std::string_view>({"sh", "bash", "dash", "zsh", "ksh", "fish"});
    return std::ranges::find(shells, baseName(program)) != shells.end();
}

struct Insertion {
    std::size_t at;  // in the file's text
    std::string text;
};

bool hasWord(const std::vector<Word>& words, std::string_view text) {
    return std::ranges::find(words, text, &Word::text) != words.end();
}

std::string argumentsOf(const Remedy& remedy, const std::vector<Word>& words) {
    std::string text;
    for (const std::string& argument : remedy.arguments)
        if (!hasWord(words, argument)) text += " " + asWord(argument);
    return text;
}

// "flatpak run OPTIONS APPLICATION ARGUMENTS": variables and arguments have their places in there.
std::optional<std::vector<Insertion>> intoFlatpak(const Remedy& remedy, const std::vector<Word>& words,
                                                  std::size_t program) {
    if (baseName(words[program].text) != "flatpak" || program + 1 >= words.size() || words[program + 1].text != "run")
        return std::nullopt;
    std::size_t application = program + 2;
    while (application < words.size() && words[application].text.starts_with('-')) ++application;
    if (application >= words.size()) return std::nullopt;
    std::string options;
    for (const std::string& variable : remedy.variables) options += " " + asWord("--env=" + variable);
    for (const std::string& name : remedy.without) options += " " + asWord("--unset-env=" + name);
    return std::vector<Insertion>{{words[program + 1].end, options},
                                  {words[application].end, argumentsOf(remedy, words)}};
}

std::vector<Insertion> intoCommand(const Remedy& remedy, const std::vector<Word>& words, std::size_t program) {
    std::string environment;
    for (const std::string& name : remedy.without) environment += " -u " + asWord(name);
    for (const std::string& variable : remedy.variables)
        if (!hasWord(words, variable)) environment += " " + asWord(variable);
    std::vector<Insertion> insertions;
    if (!environment.empty()) insertions.push_back({words.front().begin, "env" + environment + " "});
    if (!isShell(words[program].text)) insertions.push_back({words[program].end, argumentsOf(remedy, words)});
    return insertions;
}

// --- Files

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blank = " \t\r";
    const std::size_t first = text.find_first_not_of(blank);
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(blank) - first + 1);
}

// The lines of a file, each with its end.
std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return lines;
}

std::string_view withoutEnd(std::string_view line) {
    while (line.ends_with('\n') || line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

struct KeyAndValue {
    std::string_view key;    // empty: this line has none
    std::string_view value;  // as it stands in the file
};

KeyAndValue keyAndValue(std::string_view line) {
    const std::size_t sign = line.find('=');
    if (sign == line.npos || trimmed(line).starts_with('#')) return {};
    std::string_view value = withoutEnd(line.substr(sign + 1));
    value.remove_prefix(std::min(value.find_first_not_of(" \t"), value.size()));
    return {trimmed(line.substr(0, sign)), value};
}

std::string withValue(std::string_view line, const KeyAndValue& old, std::string_view value) {
    const auto begin = static_cast<std::size_t>(old.value.data() - line.data());
    return std::string(line.substr(0, begin)) + std::string(value) + std::string(line.substr(begin + old.value.size()));
}

bool isMark(std::string_view line) { return keyAndValue(line).key == kMark; }

// Of all lines but the mark, 64 bits of FNV-1a: against changes by hand, not against forgers.
std::string fingerprintOf(std::string_view text) {
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (const std::string_view line : linesOf(text)) {
        if (isMark(line)) continue;
        for (const char c : line) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
    }
    std::ostringstream out;
    out << std::hex << std::setw(16) << std::setfill('0') << hash;
    return out.str();
}

// Copies a file line by line.
class Copying {
public:
    explicit Copying(const Remedy& remedy) : remedy_(remedy) {}

    Outcome<std::string> copy(std::string_view desktopFile) {
        for (const std::string_view line : linesOf(desktopFile)) {
            if (isMark(line)) continue;
            if (trimmed(withoutEnd(line)).starts_with('[')) enter(trimmed(withoutEnd(line)));
            if (std::string reason = take(line); !reason.empty()) return Fault{reason};
        }
        if (!isApplication_ || !hasCommand_) return Fault{"it doesn't start an application"};
        return marked();
    }

private:
    void enter(std::string_view group) {
        isInMain_ = group == kMainGroup;
        isInAction_ = group.starts_with(kActionGroup);
    }

    // The reason why there can be no copy; empty: there can.
    std::string take(std::string_view line) {
        const KeyAndValue entry = keyAndValue(line);
        if (isInMain_ && entry.key == "Type") isApplication_ = trimmed(entry.value) == "Application";
        if (isInMain_ && entry.key == "DBusActivatable") {
            text_ += withValue(line, entry, "false");
        } else if ((isInMain_ || isInAction_) && entry.key == "Exec") {
            Outcome<std::string> command = commandWith(remedy_, entry.value);
            if (!command) return command.reason();
            text_ += withValue(line, entry, command.value());
            hasCommand_ = hasCommand_ || isInMain_;
        } else {
            text_ += line;
        }
        if (isInMain_ && markAt_ == std::string::npos) {
            if (!text_.ends_with('\n')) text_ += '\n';
            markAt_ = text_.size();
        }
        return {};
    }

    std::string marked() const {
        std::string whole = text_;
        return whole.insert(markAt_, std::string(kMark) + "=" + fingerprintOf(text_) + "\n");
    }

    const Remedy& remedy_;
    std::string text_;
    std::size_t markAt_ = std::string::npos;  // after the heading of the main group
    bool isInMain_ = false, isInAction_ = false;
    bool isApplication_ = false, hasCommand_ = false;
};

}  // namespace

Outcome<std::string> commandWith(const Remedy& remedy, std::string_view command) {
    const std::optional<std::vector<Word>> words = wordsOf(command);
    if (!words) return Fault{"its command line has quotes that don't end"};
    const std::size_t program = programAmong(*words);
    if (program >= words->size()) return Fault{"its command line names no program"};
    const auto flatpak = intoFlatpak(remedy, *words, program);
    const std::vector<Insertion> insertions = flatpak ? *flatpak : intoCommand(remedy, *words, program);
    std::string text(command);
    for (auto each = insertions.rbegin(); each != insertions.rend(); ++each) text.insert(each->at, each->text);
    return text;
}

Outcome<std::string> overrideOf(std::string_view desktopFile, const Remedy& remedy) {
    if (desktopFile.find('\0') != desktopFile.npos) return Fault{"it isn't a text"};
    return Copying(remedy).copy(desktopFile);
}

Authorship authorshipOf(std::string_view desktopFile) {
    bool isInMain = false;
    for (const std::string_view line : linesOf(desktopFile)) {
        const std::string_view text = trimmed(withoutEnd(line));
        if (text.starts_with('[')) isInMain = text == kMainGroup;
        if (!isInMain || !isMark(line)) continue;
        return keyAndValue(line).value == fingerprintOf(desktopFile) ? Authorship::ours : Authorship::changed;
    }
    return Authorship::other;
}

}  // namespace tarvix
