// The applications that are installed, by their desktop files.
#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvix {

struct DesktopEntry {
    std::string id;           // the file's name without its extension, sub-folders joined with '-'
    std::string name;         // in the user's language
    std::string windowClass;  // StartupWMClass
    std::string program;      // the base name of what Exec starts
    std::filesystem::path file = {};
    bool isInMenus = true;  // not NoDisplay
    friend bool operator==(const DesktopEntry&, const DesktopEntry&) = default;
};

// Any thread. The files are read at construction, and again when something isn't found and a folder has changed since.
class DesktopEntries {
public:
    // The folders of applications in the order of precedence: a file in an earlier one hides those with its id.
    explicit DesktopEntries(std::vector<std::filesystem::path> folders = standardFolders());
    static std::vector<std::filesystem::path> standardFolders();

    std::optional<DesktopEntry> withId(std::string_view id);
    // By a window's class and instance: first what an entry says of its windows, then what its file is named.
    std::optional<DesktopEntry> ofWindow(std::string_view windowClass, std::string_view windowInstance);
    // Of several that start the program one that is in menus; the others are mostly for a single task of it.
    std::optional<DesktopEntry> ofProgram(std::string_view program);
    // By the name that a person reads.
    std::optional<DesktopEntry> named(std::string_view name);
    // A Snap's entries are named after it and its applications; the one named after both is its main one.
    std::optional<DesktopEntry> ofSnap(std::string_view snap);

    // The one entry in a folder that isn't one of the installed ones, such as an AppImage's.
    static std::optional<DesktopEntry> onlyIn(const std::filesystem::path& folder);

private:
    template <class Fits>
    std::optional<DesktopEntry> find(const std::vector<Fits>& tries);
    std::vector<std::filesystem::file_time_type> changeTimes() const;
    void read();

    std::mutex mutex_;
    std::vector<std::filesystem::path> folders_;
    std::vector<std::filesystem::file_time_type> readAt_;
    std::vector<DesktopEntry> entries_;
};

}  // namespace tarvix
