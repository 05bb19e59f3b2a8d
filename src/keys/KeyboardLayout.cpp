#include "keys/KeyboardLayout.h"

#include "platform/Modifiers.h"

namespace tarvix {

namespace {

constexpr std::uint16_t keyCodeLimit = 128;

// The modifier state of a translation knows shift and option alone.
std::uint32_t modifierState(std::uint32_t carbonModifiers) {
    return ((carbonModifiers & carbonModifier::shift) ? 2u : 0u) |
           ((carbonModifiers & carbonModifier::option) ? 8u : 0u);
}

}  // namespace

KeyboardLayout::KeyboardLayout(InputSources& inputSources)
    : platform_(inputSources),
      currentKeyboardLayoutInputSource_{inputSources.currentKeyboardLayout()},
      currentASCIICapableInputSource_{inputSources.currentASCIICapable()} {
    mapInputSources();
    selectedChanged_ = platform_.onSelectedChanged([this] { selectedKeyboardInputSourceChanged(); });
    enabledChanged_ = platform_.onEnabledChanged([this] { enabledKeyboardInputSourcesChanged(); });
}

const KeyCodes* KeyboardLayout::keyCodes(const InputSource& source) const {
    const auto found = mappedKeyCodes_.find(source);
    return found == mappedKeyCodes_.end() ? nullptr : &found->second;
}

std::optional<std::string> KeyboardLayout::text(std::uint16_t keyCode, std::uint32_t carbonModifiers) const {
    if (const auto special = specialKeyText(keyCode)) return std::string(*special);
    for (const InputSource* source : {&currentKeyboardLayoutInputSource_, &currentASCIICapableInputSource_}) {
        if (!source->info.hasLayoutData) continue;
        if (auto text = platform_.translate(source->info, keyCode, modifierState(carbonModifiers))) return text;
    }
    return std::nullopt;
}

void KeyboardLayout::mapInputSources() {
    inputSources_.clear();
    for (InputSourceInfo& info : platform_.enabled()) inputSources_.push_back({std::move(info)});
    for (const InputSource& source : inputSources_) mapKeyCodes(source);
}

void KeyboardLayout::mapKeyCodes(const InputSource& source) {
    if (!source.info.hasLayoutData) return;
    KeyCodes keyCodes;
    for (std::uint16_t keyCode = 0; keyCode < keyCodeLimit; ++keyCode) {
        std::optional<std::string> text;
        if (const auto special = specialKeyText(keyCode))
            text = *special;
        else
            text = platform_.translate(source.info, keyCode, 0);
        if (!text) continue;
        // A key that stands there already keeps its code: the lowest one wins.
        if (const auto key = keyFor(*text, keyCode)) keyCodes.emplace(*key, keyCode);
    }
    mappedKeyCodes_[source] = std::move(keyCodes);
}

void KeyboardLayout::selectedKeyboardInputSourceChanged() {
    InputSource selected{platform_.currentKeyboardLayout()};
    currentASCIICapableInputSource_ = {platform_.currentASCIICapable()};
    if (selected == currentKeyboardLayoutInputSource_) return;

    const InputSource previous = std::exchange(currentKeyboardLayoutInputSource_, std::move(selected));
    if (!currentKeyCodes()) mapKeyCodes(currentKeyboardLayoutInputSource_);
    notifications_(sauceNotification::selectedKeyboardInputSourceChanged);

    const KeyCodes* before = keyCodes(previous);
    const KeyCodes* now = currentKeyCodes();
    if (before && now && *before != *now) notifications_(sauceNotification::selectedKeyboardKeyCodesChanged);
}

void KeyboardLayout::enabledKeyboardInputSourcesChanged() {
    mappedKeyCodes_.clear();
    mapInputSources();
    notifications_(sauceNotification::enabledKeyboardInputSourcesChanged);
}

}  // namespace tarvix
