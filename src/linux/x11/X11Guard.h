// The second process that cleans up at the X server after the first one, however that ended.
#pragma once

#include "linux/x11/X11Remains.h"

namespace tarvix {

// Starts the guard and gives the record that it reads in the end, which stays for good. To be called once, before there
// are threads, connections or files that a second process would hold too. The guard waits for the end of this process
// alone, whatever signals its group gets, undoes what is noted then and ends. Where no process can be started the
// record is there all the same.
X11Remains& startGuard();

}  // namespace tarvix
