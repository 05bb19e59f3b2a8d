#include "keys/KeyCombination.h"

#include "keys/KeyCombinationAdaptor.h"
#include "keys/Sauce.h"

namespace tarvix {

std::string KeyCombination::character(const Sauce& sauce) const {
    const KeyEvent event = KeyCombinationAdaptor::toCGEvents(*this, sauce).front();
    auto typed = sauce.layout.characters(event.keyCode, event.flags & eventFlag::shift);
    if (typed && typed->empty()) typed = sauce.layout.characters(event.keyCode, event.flags | eventFlag::command);
    return typed && !typed->empty() ? *typed : "?";
}

}  // namespace tarvix
