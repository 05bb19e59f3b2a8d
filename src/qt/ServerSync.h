// Order between Qt's connection to the X server and the connections of the other services.
#pragma once

namespace tarvix {

// Hands over what Qt has asked of the server so far. Nothing without an X connection.
void flushToServer();

// The same, and waits until the server has done it: what another connection asks afterwards finds it done.
void syncWithServer();

}  // namespace tarvix
