// A fixture window (tests/desktop/fixtures) and what it knows of itself.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "base/Geometry.h"
#include "tests/desktop/play/Process.h"

namespace tarvix {

// A folder of its own that goes with the object.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string file(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

struct KnownControl {
    enum class Visible { no, partly, yes };

    std::string name;
    std::string kind;
    AxRect frame;  // in root pixels
    Visible visible = Visible::no;
    bool clickable = false;
};

// One click that reached a control.
struct FixtureClick {
    std::string name;
    int button = 0;
    int count = 0;
    std::string modifiers;
    friend bool operator==(const FixtureClick&, const FixtureClick&) = default;
    friend std::ostream& operator<<(std::ostream& out, const FixtureClick& click) {
        return out << click.name << ", button " << click.button << ", click " << click.count << " " << click.modifiers;
    }
};

class Fixture {
public:
    // Starts a script of the fixtures' folder with more arguments than the report and the log.
    explicit Fixture(const std::string& script, const std::vector<std::string>& more = {},
                     const Process::Environment& changes = {});

    // Whether its report came within the limit: its window is there then, and its layout has come to rest.
    bool isReady(std::chrono::milliseconds limit = std::chrono::seconds(60));

    // What stands in the report by now. Only of a fixture that is ready.
    std::vector<KnownControl> controls() const;
    std::uint32_t window() const;
    std::int32_t pid() const;

    // All clicks so far.
    std::vector<FixtureClick> clicks() const;
    // The key presses that reached the window so far, one after the other; of fixtures that log them.
    std::string keys() const;
    // What happened to it so far, as fixtures/journal.py says; of fixtures that were started with "journal".
    std::vector<std::string> journal() const;
    // What its menus did so far: "opened", "closed"; of fixtures that log it.
    std::vector<std::string> menus() const;
    // How far its scroller is scrolled, in pixels; of fixtures that log it.
    int scrolled() const;

    Process& process() { return process_; }

private:
    std::vector<FixtureClick> log() const;

    ScratchFolder folder_;
    Process process_;
};

}  // namespace tarvix
