// The desktop files that start programs: the system's, and the user's own that stand in front of them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/Outcome.h"

namespace tarvix {

struct DesktopEntryFile {
    std::string path;  // below the folder of the user's or the system's entries
    std::string text;
    friend bool operator==(const DesktopEntryFile&, const DesktopEntryFile&) = default;
};

// Main thread.
class DesktopEntryFiles {
public:
    virtual ~DesktopEntryFiles() = default;

    // The folder of the user's own entries, for messages.
    virtual std::string userFolder() = 0;
    // By an entry's id; absent when there is none, or none that can be read whole.
    virtual std::optional<DesktopEntryFile> ofSystem(std::string_view id) = 0;
    virtual std::optional<DesktopEntryFile> ofUser(std::string_view id) = 0;
    virtual std::vector<DesktopEntryFile> allOfUser() = 0;

    // Makes a file of the user's own, whole or not at all, and never in the place of one that is there.
    virtual Outcome<std::monostate> create(const DesktopEntryFile& file) = 0;
    // Removes a file of the user's own if it still has that text.
    virtual Outcome<std::monostate> remove(const DesktopEntryFile& file) = 0;
};

}  // namespace tarvix
