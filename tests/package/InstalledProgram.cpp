#include "tests/package/InstalledProgram.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Process.h"

namespace tarvix {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr auto kLimit = 10s;

// By its id: whoever launches it so, as panels do, calls the program by the session bus.
constexpr auto kChoose =
    "import sys\n"
    "from gi.repository import Gio\n"
    "sys.exit(not Gio.DesktopAppInfo.new(sys.argv[1]).launch([], None))\n";

// What is started may go on, with all outputs; only the starter is waited for.
bool succeeds(const std::vector<std::string>& command) { return Process(command).waitForEnd(kLimit) == 0; }

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

}  // namespace

InstalledProgram::InstalledProgram()
    : path_(variable("TARVIX_INSTALLED")),
      entry_(variable("TARVIX_ENTRY")),
      log_(variable("TARVIX_MILESTONES")),
      windows_(std::move(X11Windows::open().value())) {}

InstalledProgram::~InstalledProgram() { quit(); }

bool InstalledProgram::chooseFromMenu() const {
    return succeeds({"/usr/bin/python3", "-c", kChoose, fs::path(entry_).filename()});
}

bool InstalledProgram::runEntry() const { return succeeds({"gio", "launch", entry_}); }

bool InstalledProgram::openAddress(const std::string& address) const { return succeeds({"gio", "open", address}); }

bool InstalledProgram::quit() const {
    return succeeds({path_, "--quit"}) && await(kLimit, [&] { return processes().empty(); });
}

std::vector<std::int32_t> InstalledProgram::processes() const {
    std::vector<std::int32_t> found;
    for (const auto& entry : fs::directory_iterator("/proc")) {
        std::error_code gone;
        const std::string number = entry.path().filename();
        if (!std::ranges::all_of(number, [](unsigned char c) { return std::isdigit(c) != 0; })) continue;
        if (fs::read_symlink(entry.path() / "exe", gone) == path_) found.push_back(std::stoi(number));
    }
    return found;
}

bool InstalledProgram::hasInFront(std::string_view title) const {
    return await(kLimit, [&] {
        const auto front = windows_->active();
        return front && front->title.starts_with(title) && std::ranges::count(processes(), front->pid) > 0;
    });
}

std::optional<Moment> InstalledProgram::reached(std::string_view moment, std::int64_t from) const {
    return log_.next(moment, from, kLimit);
}

bool InstalledProgram::drewMarkers(std::size_t count, std::int64_t from) const {
    return await(kLimit, [&] {
        return std::ranges::any_of(log_.all(), [&](const Moment& each) {
            return each.name == milestone::markersDrawn && each.microseconds >= from && each.count == count;
        });
    });
}

std::optional<Moment> InstalledProgram::press(const std::vector<std::uint32_t>& keysyms, std::string_view moment) {
    const std::int64_t pressed = monotonicMicroseconds();
    keyboard_.chord(keysyms);
    return reached(moment, pressed);
}

std::size_t InstalledProgram::search(const std::vector<std::uint32_t>& hotKey, std::string_view text) {
    const std::int64_t pressed = monotonicMicroseconds();
    if (!press(hotKey, milestone::inputShown) || !reached(milestone::candidatesRead, pressed)) return 0;
    std::optional<Moment> drawn;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::int64_t typed = monotonicMicroseconds();
        keyboard_.type(text.substr(i, 1));
        drawn = reached(milestone::markersDrawn, typed);
        if (!drawn) return 0;
    }
    return drawn ? drawn->count : 0;
}

std::vector<std::string> InstalledProgram::filesOfTheUser() {
    const fs::path desktop = variable("TARVIX_VIRTUAL_DESKTOP");
    std::vector<std::string> files;
    for (const char* folder : {"home", "config", "data", "cache"})
        for (const auto& entry : fs::recursive_directory_iterator(desktop / folder))
            if (!entry.is_directory()) files.push_back(entry.path().lexically_relative(desktop));
    std::ranges::sort(files);
    return files;
}

}  // namespace tarvix
