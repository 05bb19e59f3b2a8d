#include "linux/doctor/ToolkitGuess.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "linux/x11/ProcessFiles.h"

namespace tarvix {

namespace {

struct Library {
    std::string_view name;  // how its file's name begins
    ProgramToolkit toolkit;
    std::string_view toolkitName;
};

// The first one that is loaded decides: Firefox, LibreOffice and Java load GTK, and GTK programs may play by SDL.
constexpr auto kLibraries = std::to_array<Library>({
    {"libxul.so", ProgramToolkit::firefox, "Gecko"},
    {"libcef.so", ProgramToolkit::chromium, "Chromium"},
    {"libmergedlo.so", ProgramToolkit::libreOffice, "LibreOffice"},
    {"libvcllo.so", ProgramToolkit::libreOffice, "LibreOffice"},
    {"libjvm.so", ProgramToolkit::java, "Java"},
    {"libQt6Gui.so", ProgramToolkit::qt, "Qt 6"},
    {"libQt5Gui.so", ProgramToolkit::qt, "Qt 5"},
    {"libgtk-4.so", ProgramToolkit::gtk4, "GTK 4"},
    {"libgtk-3.so", ProgramToolkit::gtk3, "GTK 3"},
    {"libgtk-x11-2.0.so", ProgramToolkit::gtk2, "GTK 2"},
    {"libQtGui.so.4", ProgramToolkit::inaccessible, "Qt 4"},
    {"libSDL", ProgramToolkit::inaccessible, "SDL"},
    {"libglfw.so", ProgramToolkit::inaccessible, "GLFW"},
    {"libtk8", ProgramToolkit::inaccessible, "Tk"},
    {"libfltk", ProgramToolkit::inaccessible, "FLTK"},
    {"libXm.so", ProgramToolkit::inaccessible, "Motif"},
    {"libXaw", ProgramToolkit::inaccessible, "Xaw"},
    {"libXt.so", ProgramToolkit::inaccessible, "Xt"},
});

bool isLoaded(std::string_view maps, std::string_view library) {
    const std::string file = "/" + std::string(library);
    return maps.find(file) != maps.npos;
}

// Chromium is one big program. What it can't do without lies beside it.
bool isChromium(const std::vector<std::string>& beside) {
    const auto has = [&](std::string_view name) { return std::ranges::find(beside, name) != beside.end(); };
    return (has("resources.pak") || has("chrome_100_percent.pak")) &&
           (has("v8_context_snapshot.bin") || has("snapshot_blob.bin"));
}

// An application of Electron's brings its pages, mostly packed.
bool isElectron(const std::vector<std::string>& beside) {
    return std::ranges::any_of(beside, [](const std::string& name) {
        return name == "LICENSE.electron.txt" || name == "resources/app" ||
               (name.starts_with("resources/") && name.ends_with(".asar"));
    });
}

std::vector<std::string> namesIn(const std::filesystem::path& folder, const std::string& prefix) {
    std::vector<std::string> names;
    std::error_code failure;
    std::filesystem::directory_iterator file(folder, failure), end;
    for (; !failure && file != end; file.increment(failure)) names.push_back(prefix + file->path().filename().string());
    return names;
}

}  // namespace

ToolkitGuess guessToolkit(std::string_view maps, const std::vector<std::string>& beside) {
    if (isChromium(beside)) {
        return isElectron(beside) ? ToolkitGuess{ProgramToolkit::electron, "Electron"}
                                  : ToolkitGuess{ProgramToolkit::chromium, "Chromium"};
    }
    for (const Library& library : kLibraries)
        if (isLoaded(maps, library.name)) return {library.toolkit, std::string(library.toolkitName)};
    return {};
}

ToolkitGuess guessToolkit(std::int32_t pid) {
    const std::string process = "/proc/" + std::to_string(pid);
    std::ifstream file(process + "/maps");
    const std::string maps(std::istreambuf_iterator<char>(file), {});
    // Through the process' own root, since a sandbox has its own files.
    const std::filesystem::path folder =
        process + "/root" + std::filesystem::path(programPath(pid)).parent_path().string();
    std::vector<std::string> beside = namesIn(folder, "");
    for (std::string& name : namesIn(folder / "resources", "resources/")) beside.push_back(std::move(name));
    return guessToolkit(maps, beside);
}

}  // namespace tarvix
