// For each enabled keyboard layout, which hardware key code types what.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/Listeners.h"
#include "keys/InputSource.h"
#include "keys/Key.h"

namespace tarvix {

// What the table of keyboard layouts tells its observers.
namespace sauceNotification {
inline constexpr std::string_view selectedKeyboardInputSourceChanged = "SauceSelectedKeyboardInputSourceChanged";
inline constexpr std::string_view enabledKeyboardInputSourcesChanged = "SauceEnabledKeyboardInputSourcesChanged";
inline constexpr std::string_view selectedKeyboardKeyCodesChanged = "SauceSelectedKeyboardKeyCodesChanged";
}  // namespace sauceNotification

using KeyCodes = std::map<Key, std::uint16_t>;

// Follows the user's layouts from its construction on. A table is built once for each source and kept until the set of
// enabled sources changes. Main thread; `inputSources` outlives it.
class KeyboardLayout {
public:
    explicit KeyboardLayout(InputSources& inputSources);
    KeyboardLayout(const KeyboardLayout&) = delete;
    KeyboardLayout& operator=(const KeyboardLayout&) = delete;

    const InputSource& currentKeyboardLayoutInputSource() const { return currentKeyboardLayoutInputSource_; }
    const InputSource& currentASCIICapableInputSource() const { return currentASCIICapableInputSource_; }
    const std::vector<InputSource>& inputSources() const { return inputSources_; }

    // The source's table; absent for an input method without a layout of its own and for a source never seen.
    const KeyCodes* keyCodes(const InputSource& source) const;
    const KeyCodes* currentKeyCodes() const { return keyCodes(currentKeyboardLayoutInputSource_); }

    // What a key types on the current layout, else on the current ASCII-capable source; a special key's own text.
    std::optional<std::string> text(std::uint16_t keyCode, std::uint32_t carbonModifiers) const;
    // What an event with these flags types; see InputSources.
    std::optional<std::string> characters(std::uint16_t keyCode, std::uint64_t flags) const {
        return platform_.characters(keyCode, flags);
    }

    [[nodiscard]] Subscription onNotification(std::function<void(std::string_view name)> posted) {
        return notifications_.add(std::move(posted));
    }

private:
    void mapInputSources();
    void mapKeyCodes(const InputSource& source);
    void selectedKeyboardInputSourceChanged();
    void enabledKeyboardInputSourcesChanged();

    InputSources& platform_;
    InputSource currentKeyboardLayoutInputSource_;
    InputSource currentASCIICapableInputSource_;
    std::unordered_map<InputSource, KeyCodes, InputSource::Hash> mappedKeyCodes_;
    std::vector<InputSource> inputSources_;
    Listeners<std::string_view> notifications_;
    Subscription selectedChanged_;
    Subscription enabledChanged_;
};

}  // namespace tarvix
