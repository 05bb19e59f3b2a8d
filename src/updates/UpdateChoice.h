// Which of the updates on offer is for this program on this system.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "updates/Appcast.h"
#include "updates/UpdateRefusal.h"
#include "updates/UpdateSignature.h"

namespace tarvix {

// No release comes near it.
constexpr std::uint64_t kLargestUpdate = std::uint64_t{256} * 1024 * 1024;

struct UpdateSystem {
    std::string programVersion;
    std::string name = "linux";
    std::string architecture;  // as the installer calls it
    std::string version;       // of the operating system; empty where it has none
};

// An update whose description is in order. Of its file, nothing is known yet.
struct AvailableUpdate {
    std::string version;
    std::string displayVersion;
    std::string notes;    // plain text
    std::string address;  // HTTPS
    std::uint64_t length = 0;
    UpdateSignature signature{};

    // Nothing in it comes from the address.
    std::string fileName() const { return "tarvix-" + version + ".deb"; }
};

struct UpToDate {};

using UpdateChoice = std::variant<UpToDate, AvailableUpdate, UpdateRefusal>;

// The newest of the ordinary releases that is newer than the program and for this system. If something is wrong with
// that one, there is none: an older one in its place would hide it.
UpdateChoice chooseUpdate(const Appcast& appcast, const UpdateSystem& system);

enum class CheckReason : std::uint8_t { user, schedule };

// Whether the user gets to see it: everything that was asked for, and of what wasn't only an update that isn't skipped.
bool isTold(const UpdateChoice& choice, CheckReason reason, std::string_view skippedVersion);

// The text of release notes without tags, character references resolved and nothing but text and line feeds left.
std::string plainNotes(std::string_view notes);

}  // namespace tarvix
