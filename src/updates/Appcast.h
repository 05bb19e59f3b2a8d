// What a feed of updates offers, as it was read: nothing in it is trusted yet.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarvix {

// One file of an update. Empty texts and a length of 0 are what the feed doesn't tell.
struct UpdateFile {
    std::string address;
    std::string type;       // a media type
    std::string signature;  // Ed25519, in base64
    std::string system;     // the operating system that it is for
    std::uint64_t length = 0;
    friend bool operator==(const UpdateFile&, const UpdateFile&) = default;
};

struct AppcastItem {
    std::string version;         // what is compared
    std::string displayVersion;  // what the user reads
    std::string minimumSystemVersion;
    std::string channel;  // not the ordinary releases, where it is told
    std::string notes;    // with or without HTML's tags
    std::vector<UpdateFile> files;
    friend bool operator==(const AppcastItem&, const AppcastItem&) = default;
};

using Appcast = std::vector<AppcastItem>;

}  // namespace tarvix
