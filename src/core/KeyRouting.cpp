#include "core/KeyRouting.h"

#include <algorithm>

namespace tarvix {

namespace {

void perform(KeyAction action, TarvixEngineProtocol& engine, const TheInputProtocol& theInput) {
    switch (action) {
        case KeyAction::nextTarget:
            return engine.nextTarget();
        case KeyAction::previousTarget:
            return engine.previousTarget();
        case KeyAction::lastTarget:
            return engine.lastTarget();
        case KeyAction::firstTarget:
            return engine.firstTarget();
        case KeyAction::halfwayDownTarget:
            return engine.halfwayDownTarget();
        case KeyAction::halfwayUpTarget:
            return engine.halfwayUpTarget();
        case KeyAction::click:
            // The query decides, not whether there are Targets; one of blanks isn't empty.
            if (theInput.value().empty()) return engine.clickAtMouse(MouseButton::left);
            return engine.clickPrimaryTarget(MouseButton::left);
    }
}

}  // namespace

bool handleKey(const KeyCombination& keyCombination, TarvixEngineProtocol& engine, TheInputProtocol& theInput,
               Preloading& preloading) {
    const auto route = std::find_if(keyRoutes.begin(), keyRoutes.end(),
                                    [&](const KeyRoute& candidate) { return candidate.combination == keyCombination; });
    if (route == keyRoutes.end()) return false;
    perform(route->action, engine, theInput);
    if (keyActions[static_cast<std::size_t>(route->action)].after == After::close) {
        preloading.cancel();
        theInput.close();
    }
    return true;
}

}  // namespace tarvix
