// Why an update isn't taken.
#pragma once

#include <cstdint>
#include <string_view>

namespace tarvix {

enum class UpdateRefusal : std::uint8_t {
    unreachable,       // no connection, or one that broke
    untrustedServer,   // a certificate that nothing vouches for
    serverError,       // an answer other than the file
    timedOut,          // nothing more came
    insecureAddress,   // other than HTTPS
    insecureRedirect,  // away from HTTPS
    tooManyRedirects,  // one after the other
    hostileAddress,    // relative, or with parts that no address of ours has
    feedTooLarge,      // larger than any feed is
    malformedFeed,     // not the XML of a feed
    missingSignature,  // nothing to trust the file by
    wrongSignature,    // not that of the key and the file
    unknownType,       // no file for this system's installer
    missingLength,     //
    oversized,         // larger than told, or than any release is
    truncated,         // smaller than told
    downgrade,         // the file is older than what runs
    sameVersion,       // the file is what runs already
    otherFile,         // the file is another than the one that was offered
    cannotStore,       // no room, or no folder of our own
    cannotInstall,     // nothing here opens packages
};

// A sentence or two for the user.
std::string_view messageOf(UpdateRefusal refusal);

}  // namespace tarvix
