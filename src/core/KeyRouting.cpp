#include "core/KeyRouting.h"

#include <algorithm>

#include "core/Copying.h"
#include "core/ShowSettings.h"

namespace tarvix {

KeyRouting::KeyRouting(const Platform& platform, TarvixEngineProtocol& engine, TheInputProtocol& theInput,
                       Preloading& preloading)
    : platform_(platform),
      engine_(engine),
      theInput_(theInput),
      preloading_(preloading),
      allowCopyingOfTextAndMetadata_(platform.userDefaults, {"allowCopyingOfTextAndMetadata", false}) {}

bool KeyRouting::handleKey(const KeyCombination& keyCombination) {
    const auto route = std::find_if(keyRoutes.begin(), keyRoutes.end(),
                                    [&](const KeyRoute& candidate) { return candidate.combination == keyCombination; });
    if (route == keyRoutes.end()) return false;
    const KeyActionRow& row = rowOf(route->action);
    if (!isOpen(row.gate)) return false;
    perform(row.action);
    if (row.after == After::close) {
        preloading_.cancel();
        theInput_.close();
    }
    return true;
}

bool KeyRouting::isOpen(Gate gate) const { return gate == Gate::open || allowCopyingOfTextAndMetadata_.value(); }

void KeyRouting::perform(KeyAction action) {
    // The query decides, not whether there are Targets; one of blanks isn't empty.
    const bool atPointer = theInput_.value().empty();
    switch (action) {
        case KeyAction::nextTarget:
            return engine_.nextTarget();
        case KeyAction::previousTarget:
            return engine_.previousTarget();
        case KeyAction::lastTarget:
            return engine_.lastTarget();
        case KeyAction::firstTarget:
            return engine_.firstTarget();
        case KeyAction::halfwayDownTarget:
            return engine_.halfwayDownTarget();
        case KeyAction::halfwayUpTarget:
            return engine_.halfwayUpTarget();
        case KeyAction::click:
            return atPointer ? engine_.clickAtMouse(MouseButton::left) : engine_.clickPrimaryTarget(MouseButton::left);
        case KeyAction::rightClick:
            return atPointer ? engine_.clickAtMouse(MouseButton::right)
                             : engine_.clickPrimaryTarget(MouseButton::right);
        case KeyAction::moveMouse:
            if (!atPointer) engine_.moveMouseToPrimaryTarget();
            return;
        case KeyAction::doubleClick:
            return atPointer ? engine_.doubleClickAtMouse() : engine_.doubleClickPrimaryTarget(MouseButton::left);
        case KeyAction::copyText:
            if (const AccessibilityElement* element = elementToCopy()) copyText(*element, platform_.pasteboard);
            return;
        case KeyAction::copyMetadata:
            if (const AccessibilityElement* element = elementToCopy()) copyMetadata(*element, platform_.pasteboard);
            return;
        case KeyAction::showSettings:
            return tarvix::showSettings(platform_);
        case KeyAction::nothing:
            return;
        case KeyAction::copyTargetsDescription:
            return engine_.copyTargetsDescription();
    }
}

const AccessibilityElement* KeyRouting::elementToCopy() const {
    const auto& primaryTarget = engine_.primaryTarget();
    return !theInput_.value().empty() && primaryTarget ? &primaryTarget->element : nullptr;
}

}  // namespace tarvix
