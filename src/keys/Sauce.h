// Keys by what they type: the look-ups between `Key` and hardware key codes on the current layout.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "keys/KeyboardLayout.h"
#include "platform/Modifiers.h"

namespace tarvix {

// Main thread. One instance serves the whole process.
class Sauce {
public:
    explicit Sauce(InputSources& inputSources) : layout(inputSources) {}

    // The key of a hardware code on the current layout, else on the US layout; absent for a code that is no key.
    std::optional<Key> keyForKeyCode(std::uint16_t keyCode) const;
    // The current layout's code of the key, else that of the US layout.
    std::uint16_t keyCodeForKey(Key key) const;

    // The same without the US layout to fall back on.
    std::optional<std::uint16_t> currentKeyCodeForKey(Key key) const;
    const KeyCodes* currentKeyCodes() const { return layout.currentKeyCodes(); }

    std::optional<std::uint16_t> keyCodeForKey(Key key, const InputSource& source) const;
    const KeyCodes* keyCodes(const InputSource& source) const { return layout.keyCodes(source); }

    // What a key types with these modifiers on the current layout, else on the current ASCII-capable source; a special
    // key's own text.
    std::optional<std::string> text(std::uint16_t keyCode, std::uint32_t carbonModifiers) const {
        return layout.text(keyCode, carbonModifiers);
    }

    KeyboardLayout layout;
    [[no_unique_address]] ModifierTransformer modifierTransformar;
};

}  // namespace tarvix
