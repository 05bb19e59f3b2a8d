#include "tests/desktop/play/Fixture.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/desktop/play/Await.h"

namespace tarvix {

namespace {

// In the place of a control's name.
constexpr auto keyLine = "key";
constexpr auto menuLine = "menu";
constexpr auto scrolledLine = "scrolled";

KnownControl::Visible visibility(const nlohmann::json& told) {
    if (told.is_string()) return KnownControl::Visible::partly;
    return told.get<bool>() ? KnownControl::Visible::yes : KnownControl::Visible::no;
}

std::vector<std::string> command(const std::string& script, const ScratchFolder& folder,
                                 const std::vector<std::string>& more) {
    std::vector<std::string> words{std::string(TARVIX_FIXTURES) + "/" + script, folder.file("report.json"),
                                   folder.file("clicks")};
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

nlohmann::json report(const ScratchFolder& folder) {
    std::ifstream file(folder.file("report.json"));
    return nlohmann::json::parse(file);
}

}  // namespace

ScratchFolder::ScratchFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tarvix-XXXXXX").string();
    if (mkdtemp(pattern.data())) path_ = pattern;
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

Fixture::Fixture(const std::string& script, const std::vector<std::string>& more, const Process::Environment& changes)
    : process_(command(script, folder_, more), changes) {}

bool Fixture::isReady(std::chrono::milliseconds limit) {
    const std::string path = folder_.file("report.json");
    return await(limit, [&] { return std::filesystem::exists(path) || !process_.isRunning(); }) && process_.isRunning();
}

std::vector<KnownControl> Fixture::controls() const {
    std::vector<KnownControl> controls;
    const nlohmann::json whole = report(folder_);
    for (const auto& told : whole["controls"])
        controls.push_back({told["name"], told["kind"], AxRect{{told["x"], told["y"]}, {told["width"], told["height"]}},
                            visibility(told["visible"]), told["clickable"]});
    return controls;
}

std::uint32_t Fixture::window() const { return report(folder_)["window"]; }

std::int32_t Fixture::pid() const { return report(folder_)["pid"]; }

std::vector<FixtureClick> Fixture::clicks() const {
    std::vector<FixtureClick> clicks = log();
    std::erase_if(clicks, [](const FixtureClick& line) {
        return line.name == keyLine || line.name == scrolledLine || line.name == menuLine;
    });
    return clicks;
}

std::string Fixture::keys() const {
    std::string keys;
    for (const FixtureClick& line : log())
        if (line.name == keyLine) keys += line.modifiers;
    return keys;
}

std::vector<std::string> Fixture::journal() const {
    std::vector<std::string> lines;
    std::ifstream file(folder_.file("clicks.journal"));
    for (std::string line; std::getline(file, line);)
        if (!file.eof()) lines.push_back(line);  // a line without its end is still being written
    return lines;
}

std::vector<std::string> Fixture::menus() const {
    std::vector<std::string> menus;
    for (const FixtureClick& line : log())
        if (line.name == menuLine) menus.push_back(line.modifiers);
    return menus;
}

int Fixture::scrolled() const {
    int offset = 0;
    for (const FixtureClick& line : log())
        if (line.name == scrolledLine) offset = std::stoi(line.modifiers);
    return offset;
}

std::vector<FixtureClick> Fixture::log() const {
    std::vector<FixtureClick> lines;
    std::ifstream file(folder_.file("clicks"));
    for (std::string line; std::getline(file, line);) {
        if (file.eof()) break;  // a line that is still being written
        std::istringstream fields(line);
        FixtureClick click;
        std::string button, count;
        std::getline(fields, click.name, '\t');
        std::getline(fields, button, '\t');
        std::getline(fields, count, '\t');
        std::getline(fields, click.modifiers);
        click.button = std::stoi(button);
        click.count = std::stoi(count);
        lines.push_back(click);
    }
    return lines;
}

}  // namespace tarvix
