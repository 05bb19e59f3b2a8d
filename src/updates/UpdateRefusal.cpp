#include "updates/UpdateRefusal.h"

namespace tarvix {

// No default, so that a refusal without words doesn't compile.
std::string_view messageOf(UpdateRefusal refusal) {
    switch (refusal) {
        case UpdateRefusal::unreachable:
            return "The update server can't be reached. Please try again later.";
        case UpdateRefusal::untrustedServer:
            return "The update server's certificate can't be trusted.";
        case UpdateRefusal::serverError:
            return "The update server didn't provide the file. Please try again later.";
        case UpdateRefusal::timedOut:
            return "The update server has stopped answering. Please try again later.";
        case UpdateRefusal::insecureAddress:
            return "The update isn't offered over a secure connection (HTTPS).";
        case UpdateRefusal::insecureRedirect:
            return "The update server pointed to a connection that isn't secure (HTTPS).";
        case UpdateRefusal::tooManyRedirects:
            return "The update server keeps pointing to other addresses.";
        case UpdateRefusal::hostileAddress:
            return "The update has an address that can't be used.";
        case UpdateRefusal::feedTooLarge:
            return "The list of updates is too large.";
        case UpdateRefusal::malformedFeed:
            return "The list of updates can't be read.";
        case UpdateRefusal::missingSignature:
            return "The update isn't signed, so it can't be trusted.";
        case UpdateRefusal::wrongSignature:
            return "The update's signature is wrong: the file isn't the one that was released.";
        case UpdateRefusal::unknownType:
            return "The update is of a kind that can't be installed here.";
        case UpdateRefusal::missingLength:
            return "The list of updates doesn't say how large the update is.";
        case UpdateRefusal::oversized:
            return "The update is larger than it should be.";
        case UpdateRefusal::truncated:
            return "The update is incomplete. Please try again later.";
        case UpdateRefusal::downgrade:
            return "The update is older than the version that you have.";
        case UpdateRefusal::sameVersion:
            return "The update is the version that you have already.";
        case UpdateRefusal::otherFile:
            return "The file isn't the update that was offered.";
        case UpdateRefusal::cannotStore:
            return "The update can't be stored. Please check that there is room on the disk.";
        case UpdateRefusal::cannotInstall:
            return "No program here could open the update to install it.";
    }
    return "The update can't be used.";
}

}  // namespace tarvix
