#include "simulated/SimulatedInputSources.h"

#include <algorithm>
#include <cassert>
#include <span>
#include <utility>

#include "platform/Events.h"

namespace tarvix {

namespace {

struct KeyRow {
    std::uint16_t keyCode;
    std::string_view plain;
    std::string_view shift;
};

// clang-format off
constexpr auto usRows = std::to_array<KeyRow>({
    {0, "a", "A"}, {1, "s", "S"}, {2, "d", "D"}, {3, "f", "F"}, {4, "h", "H"}, {5, "g", "G"},
    {6, "z", "Z"}, {7, "x", "X"}, {8, "c", "C"}, {9, "v", "V"}, {10, "§", "±"}, {11, "b", "B"},
    {12, "q", "Q"}, {13, "w", "W"}, {14, "e", "E"}, {15, "r", "R"}, {16, "y", "Y"}, {17, "t", "T"},
    {18, "1", "!"}, {19, "2", "@"}, {20, "3", "#"}, {21, "4", "$"}, {22, "6", "^"}, {23, "5", "%"},
    {24, "=", "+"}, {25, "9", "("}, {26, "7", "&"}, {27, "-", "_"}, {28, "8", "*"}, {29, "0", ")"},
    {30, "]", "}"}, {31, "o", "O"}, {32, "u", "U"}, {33, "[", "{"}, {34, "i", "I"}, {35, "p", "P"},
    {37, "l", "L"}, {38, "j", "J"}, {39, "'", "\""}, {40, "k", "K"}, {41, ";", ":"}, {42, "\\", "|"},
    {43, ",", "<"}, {44, "/", "?"}, {45, "n", "N"}, {46, "m", "M"}, {47, ".", ">"}, {50, "`", "~"},
    {65, ".", "."}, {67, "*", "*"}, {69, "+", "+"}, {75, "/", "/"}, {78, "-", "-"}, {81, "=", "="},
    {82, "0", "0"}, {83, "1", "1"}, {84, "2", "2"}, {85, "3", "3"}, {86, "4", "4"}, {87, "5", "5"},
    {88, "6", "6"}, {89, "7", "7"}, {91, "8", "8"}, {92, "9", "9"},
});

// Where a key of the Dvorak layout has the characters of another position of the US layout.
constexpr auto dvorakPlaces = std::to_array<std::pair<std::uint16_t, std::uint16_t>>({
    {1, 31}, {2, 14}, {3, 32}, {4, 2}, {5, 34}, {6, 41}, {7, 12}, {8, 38}, {9, 40}, {11, 7}, {12, 39},
    {13, 43}, {14, 47}, {15, 35}, {16, 3}, {17, 16}, {24, 30}, {27, 33}, {30, 24}, {31, 15}, {32, 5}, {33, 44},
    {34, 8}, {35, 37}, {37, 45}, {38, 4}, {39, 27}, {40, 17}, {41, 1}, {43, 13}, {44, 6}, {45, 11}, {47, 9},
});

// Where the Japanese layout differs from the US one.
constexpr auto japaneseRows = std::to_array<KeyRow>({
    {10, "", ""}, {19, "2", "\""}, {22, "6", "&"}, {24, "^", "~"}, {25, "9", ")"}, {26, "7", "'"},
    {27, "-", "="}, {28, "8", "("}, {29, "0", ""}, {30, "[", "{"}, {33, "@", "`"}, {39, ":", "*"},
    {41, ";", "+"}, {42, "]", "}"}, {50, "", ""}, {93, "¥", "|"}, {94, "_", "_"}, {95, ",", ","},
});

// Where the German layout differs from the US one.
constexpr auto germanRows = std::to_array<KeyRow>({
    {6, "y", "Y"}, {10, "<", ">"}, {16, "z", "Z"}, {19, "2", "\""}, {20, "3", "§"}, {22, "6", "&"}, {24, "´", "`"},
    {25, "9", ")"}, {26, "7", "/"}, {27, "ß", "?"}, {28, "8", "("}, {29, "0", "="}, {30, "+", "*"}, {33, "ü", "Ü"},
    {39, "ä", "Ä"}, {41, "ö", "Ö"}, {42, "#", "'"}, {43, ",", ";"}, {44, "-", "_"}, {47, ".", ":"}, {50, "^", "°"},
});

// Where the Russian layout differs from the US one.
constexpr auto russianRows = std::to_array<KeyRow>({
    {0, "ф", "Ф"}, {1, "ы", "Ы"}, {2, "в", "В"}, {3, "а", "А"}, {4, "р", "Р"}, {5, "п", "П"}, {6, "я", "Я"},
    {7, "ч", "Ч"}, {8, "с", "С"}, {9, "м", "М"}, {11, "и", "И"}, {12, "й", "Й"}, {13, "ц", "Ц"}, {14, "у", "У"},
    {15, "к", "К"}, {16, "н", "Н"}, {17, "е", "Е"}, {30, "ъ", "Ъ"}, {31, "щ", "Щ"}, {32, "г", "Г"}, {33, "х", "Х"},
    {34, "ш", "Ш"}, {35, "з", "З"}, {37, "д", "Д"}, {38, "о", "О"}, {39, "э", "Э"}, {40, "л", "Л"}, {41, "ж", "Ж"},
    {43, "б", "Б"}, {44, ".", ","}, {45, "т", "Т"}, {46, "ь", "Ь"}, {47, "ю", "Ю"}, {50, "ё", "Ё"},
});
// clang-format on

// What keys type that no layout changes.
constexpr auto fixedTexts = std::to_array<std::pair<std::uint16_t, std::string_view>>({
    {36, "\r"},
    {48, "\t"},
    {49, " "},
    {51, "\b"},
    {53, "\x1b"},
    {76, "\r"},
    {117, "\x7f"},
});

InputSourceInfo layoutInfo(std::string id, std::string name) {
    InputSourceInfo info;
    info.id = std::move(id);
    info.isASCIICapable = info.isEnableCapable = info.isSelectCapable = info.isEnabled = true;
    info.localizedName = std::move(name);
    info.hasLayoutData = true;
    return info;
}

void put(SimulatedLayout& layout, std::span<const KeyRow> rows) {
    for (const KeyRow& row : rows) layout.keys[row.keyCode] = {std::string(row.plain), std::string(row.shift)};
}

}  // namespace

SimulatedLayout simulatedLayout::us() {
    SimulatedLayout layout{layoutInfo("us", "English (US)"), {}};
    put(layout, usRows);
    layout.keys[0][2] = "å";
    layout.keys[0][3] = "Å";
    return layout;
}

SimulatedLayout simulatedLayout::dvorak() {
    SimulatedLayout layout{layoutInfo("us(dvorak)", "English (Dvorak)"), us().keys};
    const auto usKeys = layout.keys;
    for (const auto& [keyCode, usKeyCode] : dvorakPlaces) layout.keys[keyCode] = usKeys.at(usKeyCode);
    return layout;
}

SimulatedLayout simulatedLayout::japanese() {
    SimulatedLayout layout{layoutInfo("jp", "Japanese"), us().keys};
    put(layout, japaneseRows);
    return layout;
}

SimulatedLayout simulatedLayout::german() {
    SimulatedLayout layout{layoutInfo("de", "German"), us().keys};
    put(layout, germanRows);
    layout.deadKeys = {24, 50};
    return layout;
}

SimulatedLayout simulatedLayout::russian() {
    SimulatedLayout layout{layoutInfo("ru", "Russian"), us().keys};
    layout.info.isASCIICapable = false;
    put(layout, russianRows);
    return layout;
}

SimulatedLayout simulatedLayout::inputMethod() {
    SimulatedLayout method{layoutInfo("kana-kanji", "Kana-Kanji"), {}};
    method.info.modeID = "hiragana";
    method.info.isASCIICapable = false;
    method.info.hasLayoutData = false;
    return method;
}

SimulatedInputSources::SimulatedInputSources(std::vector<SimulatedLayout> layouts) : layouts_(std::move(layouts)) {
    assert(!layouts_.empty());
}

void SimulatedInputSources::select(std::string_view id) {
    const auto found =
        std::find_if(layouts_.begin(), layouts_.end(), [&](const auto& layout) { return layout.info.id == id; });
    assert(found != layouts_.end());
    selected_ = static_cast<std::size_t>(found - layouts_.begin());
    selectedChanged_();
}

void SimulatedInputSources::setEnabled(std::vector<SimulatedLayout> layouts) {
    assert(!layouts.empty());
    const std::string selected = layouts_[selected_].info.id;
    layouts_ = std::move(layouts);
    const auto found =
        std::find_if(layouts_.begin(), layouts_.end(), [&](const auto& layout) { return layout.info.id == selected; });
    const bool lost = found == layouts_.end();
    selected_ = lost ? 0 : static_cast<std::size_t>(found - layouts_.begin());
    enabledChanged_();
    if (lost) selectedChanged_();
}

std::vector<InputSourceInfo> SimulatedInputSources::enabled() {
    std::vector<InputSourceInfo> infos;
    for (std::size_t i = 0; i < layouts_.size(); ++i) infos.push_back(info(i));
    return infos;
}

InputSourceInfo SimulatedInputSources::currentKeyboardLayout() { return info(selected_); }

InputSourceInfo SimulatedInputSources::currentASCIICapable() {
    if (layouts_[selected_].info.isASCIICapable) return info(selected_);
    const auto found =
        std::find_if(layouts_.begin(), layouts_.end(), [](const auto& layout) { return layout.info.isASCIICapable; });
    return info(found == layouts_.end() ? selected_ : static_cast<std::size_t>(found - layouts_.begin()));
}

std::optional<std::string> SimulatedInputSources::translate(const InputSourceInfo& source, std::uint16_t keyCode,
                                                            std::uint32_t modifierState) {
    ++translations_;
    const auto layout = std::find_if(layouts_.begin(), layouts_.end(), [&](const SimulatedLayout& candidate) {
        return candidate.info.id == source.id && candidate.info.modeID == source.modeID;
    });
    if (layout == layouts_.end()) return std::nullopt;
    const auto key = layout->keys.find(keyCode);
    if (key == layout->keys.end()) return std::nullopt;
    const std::size_t level = ((modifierState & 2) ? 1u : 0u) + ((modifierState & 8) ? 2u : 0u);
    const std::string& text = key->second[level];
    return text.empty() ? std::nullopt : std::optional(text);
}

std::optional<std::string> SimulatedInputSources::characters(std::uint16_t keyCode, std::uint64_t flags) {
    const SimulatedLayout& layout = layouts_[selected_];
    if (!layout.info.hasLayoutData) return std::nullopt;
    const auto fixed = std::ranges::find(fixedTexts, keyCode, &std::pair<std::uint16_t, std::string_view>::first);
    if (fixed != fixedTexts.end()) return std::string(fixed->second);
    const auto key = layout.keys.find(keyCode);
    if (key == layout.keys.end()) return std::nullopt;
    if (layout.deadKeys.contains(keyCode) && !(flags & eventFlag::command)) return "";
    const std::size_t level = ((flags & eventFlag::shift) ? 1u : 0u) + ((flags & eventFlag::option) ? 2u : 0u);
    const std::string& text = key->second[level];
    return text.empty() ? std::nullopt : std::optional(text);
}

Subscription SimulatedInputSources::onSelectedChanged(std::function<void()> changed) {
    return selectedChanged_.add(std::move(changed));
}

Subscription SimulatedInputSources::onEnabledChanged(std::function<void()> changed) {
    return enabledChanged_.add(std::move(changed));
}

InputSourceInfo SimulatedInputSources::info(std::size_t index) const {
    InputSourceInfo info = layouts_[index].info;
    info.isSelected = index == selected_;
    return info;
}

}  // namespace tarvix
