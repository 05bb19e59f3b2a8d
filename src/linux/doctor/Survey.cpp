#include "linux/doctor/Survey.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <string>
#include <system_error>
#include <utility>

#include "linux/atspi/Applications.h"
#include "linux/atspi/Pipeline.h"
#include "linux/atspi/WindowFetch.h"
#include "linux/doctor/ToolkitGuess.h"
#include "linux/x11/ProcessFiles.h"
#include "linux/x11/ProgramEntries.h"

namespace tarvix {

using namespace atspi;

namespace {

using Controls = SurveyedProgram::Controls;

constexpr Milliseconds kAnswer{300};
constexpr Milliseconds kFetch{1000};
constexpr const char* kJavaBridge = "/usr/share/java/java-atk-wrapper.jar";
constexpr std::string_view kOwnProgram = "tarvix";

// Panels and desktops, whose controls are found in other ways, and what is no window to work in.
constexpr auto kOtherWindows =
    std::to_array<std::string_view>({"DOCK", "DESKTOP", "NOTIFICATION", "SPLASH", "TOOLTIP"});

bool isWorkedIn(const X11Window& window) {
    return !window.isOverrideRedirect && std::ranges::find_first_of(window.types, kOtherWindows) == window.types.end();
}

// What a tree consists of where nobody has put anything into it.
bool isWrapping(Role role) {
    constexpr auto wrappings =
        std::to_array<Role>({Role::invalid, Role::filler, Role::frame, Role::glassPane, Role::internalFrame,
                             Role::layeredPane, Role::panel, Role::redundantObject, Role::rootPane, Role::unknown,
                             Role::viewport, Role::window, Role::application, Role::drawingArea});
    return std::ranges::find(wrappings, role) != wrappings.end();
}

bool hasContent(const NodeTree& tree) {
    return std::any_of(tree.begin(), tree.end(),
                       [](const Node& node) { return node.shows && !node.synthetic && !isWrapping(node.role); });
}

bool answers(Applications& applications, const Reference& root) {
    std::optional<Lease> lease = applications.connectOverBus();
    if (!lease) return false;
    Pipeline pipeline(lease->bus(), Clock::now() + kAnswer);
    Call call;
    call.destination = root.bus;
    call.path = root.path;
    call.interface = "org.a11y.atspi.Accessible";
    call.member = "GetState";
    pipeline.send(std::move(call), [](sd_bus_message*) {});
    pipeline.run();
    const bool isSilent = pipeline.timedOut() || pipeline.lost();
    if (isSilent) lease->spoil();
    return !isSilent;
}

// Of one window; the best of a program's windows counts.
Controls controlsOf(Applications& applications, X11Windows& windows, const X11Window& window) {
    if (isStopped(window.pid)) return Controls::silent;
    const std::vector<Reference> roots = applications.rootsOf(window.pid);
    if (std::ranges::any_of(roots, [&](const Reference& root) { return !answers(applications, root); }))
        return Controls::silent;
    FetchOptions options;
    options.limit = kFetch;
    options.screen = &windows;
    const std::optional<WindowTree> tree = fetchWindow(applications, window, options);
    if (!tree) return roots.empty() ? Controls::none : Controls::bare;
    return hasContent(tree->nodes) ? Controls::shown : Controls::bare;
}

struct HidingVariable {
    std::string_view name, value;
    ProgramToolkit toolkit;
};
constexpr auto kHidingVariables = std::to_array<HidingVariable>({
    {"NO_AT_BRIDGE", "1", ProgramToolkit::gtk2},
    {"NO_AT_BRIDGE", "1", ProgramToolkit::gtk3},
    {"NO_AT_BRIDGE", "1", ProgramToolkit::libreOffice},
    {"NO_AT_BRIDGE", "1", ProgramToolkit::firefox},
    {"GTK_A11Y", "none", ProgramToolkit::gtk4},
    {"GTK_A11Y", "test", ProgramToolkit::gtk4},
    {"GNOME_ACCESSIBILITY", "0", ProgramToolkit::firefox},
});

std::string hidingVariableOf(std::int32_t pid, ProgramToolkit toolkit) {
    for (const HidingVariable& each : kHidingVariables)
        if (each.toolkit == toolkit && environmentVariable(pid, each.name) == each.value)
            return std::string(each.name) + "=" + std::string(each.value);
    return {};
}

bool runsAsAnother(std::int32_t pid) {
    struct stat about {};
    return stat(("/proc/" + std::to_string(pid)).c_str(), &about) == 0 && about.st_uid != geteuid();
}

class Surveyor {
public:
    explicit Surveyor(X11Windows& windows) : windows_(windows) {}

    std::vector<SurveyedProgram> programs() {
        std::vector<SurveyedProgram> found;
        for (const X11Window& window : windows_.onScreen()) {
            if (!isWorkedIn(window) || programName(window.pid) == kOwnProgram) continue;
            const auto known = std::ranges::find(found, window.pid, &SurveyedProgram::pid);
            if (known == found.end()) {
                found.push_back(look(window));
            } else if (known->controls == Controls::bare) {
                known->controls = controlsOf(applications_, windows_, window);
            }
        }
        return found;
    }

    bool busIsThere() { return applications_.connectOverBus().has_value(); }

private:
    SurveyedProgram look(const X11Window& window) {
        const ToolkitGuess guess = guessToolkit(window.pid);
        const auto entry = entries_.of(window.pid, &window);
        SurveyedProgram program;
        program.pid = window.pid;
        program.name = entry && !entry->name.empty() ? entry->name
                       : !window.windowClass.empty() ? window.windowClass
                                                     : programName(window.pid);
        program.toolkit = guess.toolkit;
        program.toolkitName = guess.name;
        program.controls = controlsOf(applications_, windows_, window);
        program.hiddenBy = hidingVariableOf(window.pid, guess.toolkit);
        program.runsAsAnother = runsAsAnother(window.pid);
        program.desktopEntry = entry ? entry->id : "";
        return program;
    }

    X11Windows& windows_;
    Applications applications_;
    ProgramEntries entries_;
};

bool isEnabled() {
    const Bus session = connectToSession();
    int enabled = 0;
    return session &&
           sd_bus_get_property_trivial(session.get(), "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Status", "IsEnabled",
                                       nullptr, 'b', &enabled) >= 0 &&
           enabled != 0;
}

}  // namespace

ProgramSurvey surveyPrograms(X11Windows& windows) {
    ProgramSurvey survey;
    Surveyor surveyor(windows);
    survey.busIsThere = surveyor.busIsThere();
    survey.isEnabled = survey.busIsThere && isEnabled();
    std::error_code failure;
    survey.javaBridgeIsThere = std::filesystem::exists(kJavaBridge, failure);
    if (survey.busIsThere) survey.programs = surveyor.programs();
    return survey;
}

}  // namespace tarvix
