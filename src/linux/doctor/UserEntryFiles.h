// Desktop files in the folders of the user and the system.
#pragma once

#include <filesystem>
#include <vector>

#include "platform/DesktopEntryFiles.h"

namespace tarvix {

// Symbolic links among the user's files are never followed to be read as the user's own or removed.
class UserEntryFiles final : public DesktopEntryFiles {
public:
    // The folders of applications in the order of precedence, the user's own first.
    explicit UserEntryFiles(std::vector<std::filesystem::path> folders);

    std::string userFolder() override { return folders_.front().string(); }
    std::optional<DesktopEntryFile> ofSystem(std::string_view id) override;
    std::optional<DesktopEntryFile> ofUser(std::string_view id) override;
    std::vector<DesktopEntryFile> allOfUser() override;
    Outcome<std::monostate> create(const DesktopEntryFile& file) override;
    Outcome<std::monostate> remove(const DesktopEntryFile& file) override;

private:
    std::vector<std::filesystem::path> folders_;
};

}  // namespace tarvix
