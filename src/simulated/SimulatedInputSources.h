// Keyboard layouts as tables, selected and enabled by hand.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/Listeners.h"
#include "platform/InputSources.h"

namespace tarvix {

struct SimulatedLayout {
    // What one key types plain, with shift, with option and with both; an empty text types nothing.
    using Texts = std::array<std::string, 4>;

    InputSourceInfo info;
    std::map<std::uint16_t, Texts> keys = {};  // by position on the table of `Key`
    std::set<std::uint16_t> deadKeys = {};     // those of them that wait for a letter
};

namespace simulatedLayout {
SimulatedLayout us();
SimulatedLayout dvorak();
SimulatedLayout japanese();
SimulatedLayout german();       // with dead keys
SimulatedLayout russian();      // types no Latin letters
SimulatedLayout inputMethod();  // without layout data
}  // namespace simulatedLayout

class SimulatedInputSources : public InputSources {
public:
    // The first one is selected.
    explicit SimulatedInputSources(std::vector<SimulatedLayout> layouts = {simulatedLayout::us()});

    // Selects an enabled source and tells the observers, even when it is the selected one already.
    void select(std::string_view id);
    // Replaces the set of enabled sources and tells the observers. When the selected one is no longer among them the
    // first one is selected.
    void setEnabled(std::vector<SimulatedLayout> layouts);
    // How often translate() has been asked.
    std::size_t translations() const { return translations_; }

    std::vector<InputSourceInfo> enabled() override;
    InputSourceInfo currentKeyboardLayout() override;
    InputSourceInfo currentASCIICapable() override;
    std::optional<std::string> translate(const InputSourceInfo& source, std::uint16_t keyCode,
                                         std::uint32_t modifierState) override;
    std::optional<std::string> characters(std::uint16_t keyCode, std::uint64_t flags) override;
    Subscription onSelectedChanged(std::function<void()> changed) override;
    Subscription onEnabledChanged(std::function<void()> changed) override;

private:
    InputSourceInfo info(std::size_t index) const;

    std::vector<SimulatedLayout> layouts_;
    std::size_t selected_ = 0;
    std::size_t translations_ = 0;
    Listeners<> selectedChanged_;
    Listeners<> enabledChanged_;
};

}  // namespace tarvix
