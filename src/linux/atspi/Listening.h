// Being somebody who uses the accessibility of this desktop, as its registry sees it.
#pragma once

#include "linux/atspi/SdBus.h"

namespace tarvix::atspi {

// Accessibility buses from at-spi2-core 2.61 on call accessibility enabled for as long as somebody listens to events,
// and applications make no trees for a desktop where nobody does. One thread at a time.
class Listening {
public:
    // Registers a listener at the accessibility bus where it takes one, unless one of ours is there still. It ends with
    // this object. Blocks for at most a second.
    void keep();

private:
    Bus bus_;  // the registration lives as long as the connection
};

}  // namespace tarvix::atspi
