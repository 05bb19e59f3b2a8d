// What belongs to one build of this program rather than to its code.
#pragma once

#include <string>

namespace tarvix {

struct Deployment {
    std::string version;         // empty where it isn't known
    std::string issueTracker;    // the address of the project's own page, without "/issues/new"
    std::string supportAddress;  // of electronic mail

    // The options that this build was made with.
    static Deployment ofThisBuild();
};

}  // namespace tarvix
