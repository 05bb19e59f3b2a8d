#include "linux/x11/ProgramEntries.h"

#include <filesystem>

#include "linux/x11/ProcessFiles.h"

namespace tarvix {

namespace {

// The id of the file by which a launcher has started this very process; children inherit the variables.
std::string launchedId(std::int32_t pid) {
    if (environmentVariable(pid, "GIO_LAUNCHED_DESKTOP_FILE_PID") != std::to_string(pid)) return {};
    const auto file = environmentVariable(pid, "GIO_LAUNCHED_DESKTOP_FILE");
    return file ? std::filesystem::path(*file).stem().string() : std::string();
}

}  // namespace

std::optional<DesktopEntry> ProgramEntries::of(std::int32_t pid, const X11Window* window) {
    const auto known = [&](const std::string& id) { return id.empty() ? std::nullopt : entries_.withId(id); };
    if (const auto id = flatpakId(pid)) {
        // Known by its name inside of the sandbox even where its file can't be seen.
        const auto entry = known(*id);
        return entry ? entry : DesktopEntry{*id, "", "", "", {}};
    }
    if (const auto snap = snapOfProgram(pid)) return ofSnap(*snap);
    if (window)
        if (const auto entry = known(window->gtkApplicationId)) return entry;
    if (const auto entry = known(launchedId(pid))) return entry;
    if (window)
        if (const auto entry = entries_.ofWindow(window->windowClass, window->windowInstance)) return entry;
    if (const auto folder = appImageFolder(pid))
        if (const auto entry = DesktopEntries::onlyIn(*folder)) return entry;
    if (const auto snap = snapOfEnvironment(pid))
        if (const auto entry = entries_.ofSnap(*snap)) return entry;
    return entries_.ofProgram(programOrScriptName(pid));
}

DesktopEntry ProgramEntries::ofSnap(const std::string& snap) {
    const auto entry = entries_.ofSnap(snap);
    return entry ? *entry : DesktopEntry{snap + "_" + snap, "", "", "", {}};
}

}  // namespace tarvix
