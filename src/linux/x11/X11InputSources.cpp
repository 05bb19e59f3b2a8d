#include "linux/x11/X11InputSources.h"

#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "linux/x11/EvdevKeyCodes.h"
#include "linux/x11/XcbXkb.h"
#include "platform/Events.h"

namespace tarvix {

namespace {

constexpr std::string_view kRulesNames = "_XKB_RULES_NAMES";

struct DeadKey {
    xkb_keysym_t symbol;
    std::string_view spacing;
};

// A dead key types nothing by itself; it is known by the sign that its key cap shows.
constexpr auto kDeadKeys = std::to_array<DeadKey>({
    {XKB_KEY_dead_grave, "`"},
    {XKB_KEY_dead_acute, "´"},
    {XKB_KEY_dead_circumflex, "^"},
    {XKB_KEY_dead_tilde, "~"},
    {XKB_KEY_dead_macron, "¯"},
    {XKB_KEY_dead_breve, "˘"},
    {XKB_KEY_dead_abovedot, "˙"},
    {XKB_KEY_dead_diaeresis, "¨"},
    {XKB_KEY_dead_abovering, "˚"},
    {XKB_KEY_dead_doubleacute, "˝"},
    {XKB_KEY_dead_caron, "ˇ"},
    {XKB_KEY_dead_cedilla, "¸"},
    {XKB_KEY_dead_ogonek, "˛"},
    {XKB_KEY_dead_iota, "ͺ"},
    {XKB_KEY_dead_voiced_sound, "゛"},
    {XKB_KEY_dead_semivoiced_sound, "゜"},
});

bool isControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }

bool isDead(xkb_keysym_t symbol) { return symbol >= XKB_KEY_dead_grave && symbol <= XKB_KEY_dead_longsolidusoverlay; }

// Control characters included.
std::optional<std::string> textOf(xkb_keysym_t symbol) {
    const auto dead = std::ranges::find(kDeadKeys, symbol, &DeadKey::symbol);
    if (dead != kDeadKeys.end()) return std::string(dead->spacing);
    char text[8] = {};
    // A length of 1 is the closing zero alone.
    if (xkb_keysym_to_utf8(symbol, text, sizeof text) <= 1) return std::nullopt;
    return std::string(text);
}

// The modifier state of a translation.
constexpr std::uint32_t kShift = 2, kOption = 8;

// The modifiers in effect after a press of the key with that symbol; none where the keyboard lacks it.
std::uint32_t modifiersOf(xkb_keymap* keymap, xkb_keysym_t symbol) {
    struct Search {
        xkb_keysym_t symbol;
        std::optional<xkb_keycode_t> key;
    } search{symbol, std::nullopt};
    const auto look = [](xkb_keymap* in, xkb_keycode_t key, void* data) {
        auto& wanted = *static_cast<Search*>(data);
        const xkb_keysym_t* symbols = nullptr;
        const int count = xkb_keymap_key_get_syms_by_level(in, key, 0, 0, &symbols);
        if (!wanted.key && count == 1 && symbols[0] == wanted.symbol) wanted.key = key;
    };
    xkb_keymap_key_for_each(keymap, look, &search);
    if (!search.key) return 0;
    xkb_state* const state = xkb_state_new(keymap);
    xkb_state_update_key(state, *search.key, XKB_KEY_DOWN);
    const std::uint32_t modifiers = xkb_state_serialize_mods(state, XKB_STATE_MODS_EFFECTIVE);
    xkb_state_unref(state);
    return modifiers;
}

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts(1);
    for (const char c : text) {
        if (c == separator)
            parts.emplace_back();
        else
            parts.back() += c;
    }
    return parts;
}

// The ids of the groups by the property that keyboard tools leave on the root window: rules, model, layouts, variants
// and options, each closed by a zero. Empty when it doesn't speak of that many groups.
std::vector<std::string> groupIds(const std::optional<std::string>& rulesNames, std::size_t groups) {
    if (!rulesNames) return {};
    const std::vector<std::string> names = split(*rulesNames, '\0');
    if (names.size() < 4) return {};
    std::vector<std::string> ids = split(names[2], ',');
    if (ids.size() != groups) return {};
    const std::vector<std::string> variants = split(names[3], ',');
    for (std::size_t i = 0; i < std::min(groups, variants.size()); ++i) {
        if (!variants[i].empty()) ids[i] += "(" + variants[i] + ")";
    }
    return ids;
}

}  // namespace

void X11InputSources::Release::operator()(xkb_context* context) const noexcept { xkb_context_unref(context); }
void X11InputSources::Release::operator()(xkb_keymap* keymap) const noexcept { xkb_keymap_unref(keymap); }
void X11InputSources::Release::operator()(xkb_state* state) const noexcept { xkb_state_unref(state); }

Outcome<std::unique_ptr<X11InputSources>> X11InputSources::open(ReadWatcher& watcher) {
    auto connection = X11Connection::open();
    if (!connection) return Fault{connection.reason()};
    std::unique_ptr<X11InputSources> sources(new X11InputSources(std::move(connection.value())));
    if (!sources->start(watcher)) return Fault{"the X server has no keyboard extension or no keyboard"};
    return sources;
}

X11InputSources::X11InputSources(std::unique_ptr<X11Connection> connection)
    : connection_(std::move(connection)), context_(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES)) {}

X11InputSources::~X11InputSources() = default;

// Listens first and reads then, so that no change between the two is lost.
bool X11InputSources::start(ReadWatcher& watcher) {
    if (!context_ ||
        !xkb_x11_setup_xkb_extension(connection_->get(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                                     XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &eventType_, nullptr))
        return false;
    const std::int32_t device = xkb_x11_get_core_keyboard_device_id(connection_->get());
    if (device < 0) return false;
    device_ = static_cast<std::uint8_t>(device);
    events_ = connection_->onEvent([this](const xcb_generic_event_t& event) { return handle(event); });
    connection_->watch(watcher);
    selectEvents();
    auto keyboard = read();
    if (!keyboard) return false;
    keyboard_ = std::move(*keyboard);
    return true;
}

void X11InputSources::selectEvents() {
    // The property is written after the keymap that it describes.
    connection_->selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE);
    constexpr std::uint16_t events =
        XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY | XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
    constexpr std::uint16_t keymapParts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS |
                                          XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_KEY_ACTIONS |
                                          XCB_XKB_MAP_PART_VIRTUAL_MODS | XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
    xcb_xkb_select_events_details_t details = {};
    details.affectNewKeyboard = details.newKeyboardDetails = XCB_XKB_NKN_DETAIL_KEYCODES;
    details.affectState = details.stateDetails = XCB_XKB_STATE_PART_GROUP_STATE;
    xcb_xkb_select_events_aux(connection_->get(), device_, events, 0, 0, keymapParts, keymapParts, &details);
}

std::optional<X11InputSources::Keyboard> X11InputSources::read() {
    const auto rulesNames = connection_->askProperty(connection_->root(), kRulesNames);
    readSequence_ = rulesNames.sequence;
    const auto ids = connection_->text(rulesNames);

    Keyboard keyboard;
    keyboard.keymap.reset(
        xkb_x11_keymap_new_from_device(context_.get(), connection_->get(), device_, XKB_KEYMAP_COMPILE_NO_FLAGS));
    xkb_keymap* const keymap = keyboard.keymap.get();
    const std::size_t groups = keymap ? xkb_keymap_num_layouts(keymap) : 0;
    if (groups == 0) return std::nullopt;
    const std::unique_ptr<xkb_state, Release> present(
        xkb_x11_state_new_from_device(keymap, connection_->get(), device_));
    keyboard.scratch.reset(xkb_state_new(keymap));
    connection_->sync();  // events that came along with those replies are kept for the loop
    if (!present || !keyboard.scratch) return std::nullopt;

    keyboard.group = xkb_state_serialize_layout(present.get(), XKB_STATE_LAYOUT_EFFECTIVE) % groups;
    if (const Reply<char> text{xkb_keymap_get_as_string(keymap, XKB_KEYMAP_FORMAT_TEXT_V1)})
        keyboard.description = text.get();
    keyboard.shift = modifiersOf(keymap, XKB_KEY_Shift_L);
    keyboard.option = modifiersOf(keymap, XKB_KEY_ISO_Level3_Shift);
    keyboard.numLock = modifiersOf(keymap, XKB_KEY_Num_Lock);
    keyboard.sources = sourcesOf(keyboard, groupIds(ids, groups));
    return keyboard;
}

std::vector<InputSourceInfo> X11InputSources::sourcesOf(const Keyboard& keyboard, const std::vector<std::string>& ids) {
    std::vector<InputSourceInfo> sources(xkb_keymap_num_layouts(keyboard.keymap.get()));
    for (std::size_t group = 0; group < sources.size(); ++group) {
        InputSourceInfo& source = sources[group];
        const char* name = xkb_keymap_layout_get_name(keyboard.keymap.get(), static_cast<xkb_layout_index_t>(group));
        if (name) source.localizedName = name;
        source.id = !ids.empty() ? ids[group] : name ? name : "group " + std::to_string(group + 1);
        // A layout may stand there twice.
        const std::string plain = source.id;
        const auto isTaken = [&] {
            return std::any_of(sources.begin(), sources.begin() + static_cast<std::ptrdiff_t>(group),
                               [&](const InputSourceInfo& other) { return other.id == source.id; });
        };
        for (int number = 2; isTaken(); ++number) source.id = plain + " " + std::to_string(number);
        source.isASCIICapable = typesLatin(keyboard, group);
        source.isEnableCapable = source.isSelectCapable = source.isEnabled = source.hasLayoutData = true;
    }
    return sources;
}

// Every letter from a to z without a modifier.
bool X11InputSources::typesLatin(const Keyboard& keyboard, std::size_t group) {
    std::array<bool, 26> letters = {};
    for (std::uint16_t keyCode = 0; keyCode < 128; ++keyCode) {
        const auto text = textOf(symbol(keyboard, group, keyCode, 0));
        if (text && text->size() == 1 && (*text)[0] >= 'a' && (*text)[0] <= 'z')
            letters[static_cast<std::size_t>((*text)[0] - 'a')] = true;
    }
    return std::ranges::all_of(letters, [](bool typed) { return typed; });
}

std::uint32_t X11InputSources::symbol(const Keyboard& keyboard, std::size_t group, std::uint16_t keyCode,
                                      std::uint32_t modifierState) {
    const auto keycode = x11OfKeyCode(keyCode);
    if (!keycode) return XKB_KEY_NoSymbol;
    const std::uint32_t modifiers = keyboard.numLock | ((modifierState & kShift) ? keyboard.shift : 0) |
                                    ((modifierState & kOption) ? keyboard.option : 0);
    xkb_state_update_mask(keyboard.scratch.get(), modifiers, 0, 0, 0, 0, static_cast<xkb_layout_index_t>(group));
    return xkb_state_key_get_one_sym(keyboard.scratch.get(), *keycode);
}

std::vector<InputSourceInfo> X11InputSources::enabled() {
    std::vector<InputSourceInfo> sources;
    for (std::size_t group = 0; group < keyboard_.sources.size(); ++group) sources.push_back(info(group));
    return sources;
}

InputSourceInfo X11InputSources::info(std::size_t group) const {
    InputSourceInfo source = keyboard_.sources[group];
    source.isSelected = group == keyboard_.group;
    return source;
}

InputSourceInfo X11InputSources::currentKeyboardLayout() { return info(keyboard_.group); }

InputSourceInfo X11InputSources::currentASCIICapable() {
    const auto& sources = keyboard_.sources;
    if (sources[keyboard_.group].isASCIICapable) return info(keyboard_.group);
    const auto capable = std::ranges::find(sources, true, &InputSourceInfo::isASCIICapable);
    return info(capable == sources.end() ? keyboard_.group : static_cast<std::size_t>(capable - sources.begin()));
}

std::optional<std::string> X11InputSources::translate(const InputSourceInfo& source, std::uint16_t keyCode,
                                                      std::uint32_t modifierState) {
    const auto known = std::ranges::find(keyboard_.sources, source.id, &InputSourceInfo::id);
    if (known == keyboard_.sources.end()) return std::nullopt;
    const auto group = static_cast<std::size_t>(known - keyboard_.sources.begin());
    const auto text = textOf(symbol(keyboard_, group, keyCode, modifierState));
    return text && isControl((*text)[0]) ? std::nullopt : text;
}

std::optional<std::string> X11InputSources::characters(std::uint16_t keyCode, std::uint64_t flags) {
    const std::uint32_t typed =
        symbol(keyboard_, keyboard_.group, keyCode,
               ((flags & eventFlag::shift) ? kShift : 0) | ((flags & eventFlag::option) ? kOption : 0));
    if (isDead(typed) && !(flags & eventFlag::command)) return "";
    return textOf(typed);
}

Subscription X11InputSources::onSelectedChanged(std::function<void()> changed) {
    return selectedChanged_.add(std::move(changed));
}

Subscription X11InputSources::onEnabledChanged(std::function<void()> changed) {
    return enabledChanged_.add(std::move(changed));
}

X11Connection::Handled X11InputSources::handle(const xcb_generic_event_t& event) {
    // One change of layout sends dozens of events; the first one's reading covers those that were under way.
    if (static_cast<std::int32_t>(event.full_sequence - readSequence_) < 0) return X11Connection::Handled::yes;
    const std::uint8_t type = event.response_type & 0x7f;
    if (type == XCB_PROPERTY_NOTIFY) {
        const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (property.atom == connection_->atom(kRulesNames)) keyboardChanged();
    } else if (type == eventType_) {
        const auto& state = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event);
        if (state.xkbType == XCB_XKB_STATE_NOTIFY)
            groupChanged(state.group);
        else
            keyboardChanged();
    }
    return X11Connection::Handled::yes;
}

// The keyboard is announced anew whenever another device types on it, most often with the very keymap that it had.
void X11InputSources::keyboardChanged() {
    auto keyboard = read();
    if (!keyboard) return;
    const std::string selected = keyboard_.sources[keyboard_.group].id;
    const bool isSame = keyboard->description == keyboard_.description && keyboard->sources == keyboard_.sources;
    keyboard_ = std::move(*keyboard);
    if (!isSame) enabledChanged_();
    if (keyboard_.sources[keyboard_.group].id != selected) selectedChanged_();
}

void X11InputSources::groupChanged(std::size_t group) {
    if (group == keyboard_.group || group >= keyboard_.sources.size()) return;
    keyboard_.group = group;
    selectedChanged_();
}

}  // namespace tarvix
