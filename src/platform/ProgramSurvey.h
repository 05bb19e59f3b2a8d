// What the desktop tells of the programs that show a window, for one who looks for hidden controls.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarvix {

// What a program is made with, as far as its way of showing controls depends on it.
enum class ProgramToolkit {
    unknown,
    gtk2,
    gtk3,
    gtk4,
    qt,
    chromium,
    electron,
    firefox,
    libreOffice,
    java,
    inaccessible,  // one that has no accessibility at all
};

struct SurveyedProgram {
    enum class Controls {
        shown,
        bare,    // a window and nothing in it
        none,    // it isn't on the accessibility bus
        silent,  // it doesn't answer
    };

    std::int32_t pid = -1;
    std::string name;  // for the user; any text
    ProgramToolkit toolkit = ProgramToolkit::unknown;
    std::string toolkitName;  // "Qt 5"; empty when unknown
    Controls controls = Controls::shown;
    std::string hiddenBy;        // the variable of its environment that tells it to hide them; empty: none
    bool runsAsAnother = false;  // user, whose accessibility is apart
    std::string desktopEntry;    // the id of the desktop file that starts it; empty: unknown
    friend bool operator==(const SurveyedProgram&, const SurveyedProgram&) = default;
};

struct ProgramSurvey {
    bool busIsThere = false;  // the accessibility bus can be reached
    bool isEnabled = false;   // and programs are told to use it
    bool javaBridgeIsThere = false;
    std::vector<SurveyedProgram> programs;  // with a window on the screen, front to back; panels and desktops left out
};

}  // namespace tarvix
