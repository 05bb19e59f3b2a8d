// The program as the package installs it, started by the desktop's own ways and played from outside.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "linux/x11/X11Windows.h"
#include "platform/Milestones.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/MilestoneLog.h"

namespace tarvix {

// What tests/package/with-package has made. Ends the running program when it goes.
class InstalledProgram {
public:
    InstalledProgram();
    ~InstalledProgram();
    InstalledProgram(const InstalledProgram&) = delete;
    InstalledProgram& operator=(const InstalledProgram&) = delete;

    // Picks the program's entry in the menu, as a panel does. Whether that went well; it doesn't wait for the program.
    bool chooseFromMenu() const;
    // Runs the entry's command, as a desktop does that knows nothing of the session bus.
    bool runEntry() const;
    // Opens an address with whatever the desktop opens such addresses with.
    bool openAddress(const std::string& address) const;
    // Whether the running program has been asked to end, and has ended.
    bool quit() const;

    // The processes that run its file, the guard among them.
    std::vector<std::int32_t> processes() const;
    // Whether the window in front comes to be the program's with a title that begins so.
    bool hasInFront(std::string_view title) const;

    std::optional<Moment> reached(std::string_view moment, std::int64_t from) const;
    bool drewMarkers(std::size_t count, std::int64_t from) const;
    // Keys, each with what the program reaches by it. Absent: it doesn't.
    std::optional<Moment> press(const std::vector<std::uint32_t>& keysyms, std::string_view moment);
    // The hot key, then a text once all candidates are read. The number of the markers that are drawn then.
    std::size_t search(const std::vector<std::uint32_t>& hotKey, std::string_view text);

    // The files in the user's folders, relative to the folder of all of them.
    static std::vector<std::string> filesOfTheUser();

    X11Windows& windows() const { return *windows_; }
    Keyboard& keyboard() { return keyboard_; }

private:
    std::string path_, entry_;
    MilestoneLog log_;
    std::unique_ptr<X11Windows> windows_;
    Keyboard keyboard_;
};

}  // namespace tarvix
