// The user's session bus.
#pragma once

#include <QFileInfo>

namespace tarvix {

// To be asked before connecting: where there is no bus, connecting would start one through a helper program and wait
// for it.
inline bool haveSessionBus() {
    return !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") ||
           QFileInfo::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + "/bus");
}

}  // namespace tarvix
