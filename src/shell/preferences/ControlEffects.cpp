#include "shell/preferences/ControlEffects.h"

#include <array>

namespace tarvix {

namespace {

enum class Effect { position, targets, background, statusItem };

struct EffectRow {
    std::string_view key;
    Effect effect;
};

constexpr auto kEffects = std::to_array<EffectRow>({
    {"inputPosition", Effect::position},
    {"targetsColor", Effect::targets},
    {"targetsCustomColorHue", Effect::targets},
    {"hazeOverWindowStyle", Effect::background},
    {"hazeOverWindowOpacity", Effect::background},
    {"hideMenuBarIcon", Effect::statusItem},
    {"allowTemporaryHidingOfMenuBarIcon", Effect::statusItem},
});

}  // namespace

ControlEffects::ControlEffects(RunLoop& runLoop, InputPreview& theInput, TargetsPreview& targets)
    : position_(runLoop, theInput), theTargetsMakeup_(runLoop, targets), theBackgroundMakeup_(runLoop, targets) {}

void ControlEffects::changed(std::string_view key) {
    for (const EffectRow& row : kEffects) {
        if (row.key != key) continue;
        switch (row.effect) {
            case Effect::position:
                return position_.changed();
            case Effect::targets:
                return theTargetsMakeup_.changed();
            case Effect::background:
                return theBackgroundMakeup_.changed();
            case Effect::statusItem:
                return statusItemChanged_();
        }
    }
}

}  // namespace tarvix
