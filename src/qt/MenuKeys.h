// The key equivalents of menus, as Qt and other programs on the desktop write them.
#pragma once

#include <QKeySequence>
#include <QStringList>

#include "platform/Menu.h"

namespace tarvix {

// Command is Super here. Both are empty where an entry has none.
QKeySequence keySequenceOf(const MenuItem& item);
// The modifiers' names and the key's after them, as the X server calls it.
QStringList keyNamesOf(const MenuItem& item);

}  // namespace tarvix
