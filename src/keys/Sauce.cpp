#include "keys/Sauce.h"

#include <algorithm>

namespace tarvix {

namespace {

std::optional<std::uint16_t> find(const KeyCodes* keyCodes, Key key) {
    if (!keyCodes) return std::nullopt;
    const auto found = keyCodes->find(key);
    if (found == keyCodes->end()) return std::nullopt;
    return found->second;
}

}  // namespace

std::optional<Key> Sauce::keyForKeyCode(std::uint16_t keyCode) const {
    if (const KeyCodes* keyCodes = currentKeyCodes()) {
        const auto found = std::find_if(keyCodes->begin(), keyCodes->end(),
                                        [&](const auto& entry) { return entry.second == keyCode; });
        if (found != keyCodes->end()) return found->first;
    }
    return keyForQwertyKeyCode(keyCode);
}

std::uint16_t Sauce::keyCodeForKey(Key key) const { return currentKeyCodeForKey(key).value_or(qwertyKeyCode(key)); }

std::optional<std::uint16_t> Sauce::currentKeyCodeForKey(Key key) const { return find(currentKeyCodes(), key); }

std::optional<std::uint16_t> Sauce::keyCodeForKey(Key key, const InputSource& source) const {
    return find(keyCodes(source), key);
}

}  // namespace tarvix
