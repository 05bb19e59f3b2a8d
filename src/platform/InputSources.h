// The keyboard layouts and input methods that the user has set up.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/Subscription.h"

namespace tarvix {

// One layout with its properties at the time of asking.
struct InputSourceInfo {
    std::string id;
    std::optional<std::string> modeID;
    bool isASCIICapable = false;
    bool isEnableCapable = false;
    bool isSelectCapable = false;
    bool isEnabled = false;
    bool isSelected = false;
    std::optional<std::string> localizedName;
    bool hasLayoutData = false;  // false for an input method without a layout of its own
    friend bool operator==(const InputSourceInfo&, const InputSourceInfo&) = default;
};

// Main thread.
class InputSources {
public:
    virtual ~InputSources() = default;
    virtual std::vector<InputSourceInfo> enabled() = 0;
    virtual InputSourceInfo currentKeyboardLayout() = 0;
    virtual InputSourceInfo currentASCIICapable() = 0;
    // What a key types on a source that has layout data, dead keys as their spacing form. `keyCode` is a position on
    // the table of `Key`; `modifierState` is 0, 2 (shift), 8 (option) or 10. Nothing when the key types nothing there.
    virtual std::optional<std::string> translate(const InputSourceInfo& source, std::uint16_t keyCode,
                                                 std::uint32_t modifierState) = 0;
    // What a key types on the selected layout when it comes with these event flags, of which Shift and option choose:
    // nothing for a key that types nothing, control characters for return, tab, escape and delete. A dead key waits for
    // a letter and gives an empty text; with command among the flags it doesn't wait, and gives its spacing form.
    virtual std::optional<std::string> characters(std::uint16_t keyCode, std::uint64_t flags) = 0;
    [[nodiscard]] virtual Subscription onSelectedChanged(std::function<void()> changed) = 0;
    [[nodiscard]] virtual Subscription onEnabledChanged(std::function<void()> changed) = 0;
};

}  // namespace tarvix
