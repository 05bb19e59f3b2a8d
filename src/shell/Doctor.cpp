#include "shell/Doctor.h"

#include <algorithm>
#include <array>
#include <set>

namespace tarvix {

namespace {

using Controls = SurveyedProgram::Controls;

constexpr std::size_t kLongestName = 60;

// A program's name may be anything, and a terminal obeys control characters.
std::string printable(std::string_view text) {
    std::string result;
    for (const char c : text.substr(0, kLongestName))
        result += static_cast<unsigned char>(c) < ' ' || c == '\x7f' ? '?' : c;
    return result;
}

std::string nameOf(const SurveyedProgram& program) {
    return printable(program.name) + " (process " + std::to_string(program.pid) + ")";
}

// What a toolkit makes of accessibility that comes late.
struct Habit {
    ProgramToolkit toolkit;
    std::string_view whileOff;  // why it shows nothing as long as accessibility is off; empty: it doesn't mind
    std::string_view whileOn;   // why one that is off the bus shows nothing though accessibility is on
    std::string_view bare;      // why one that is on the bus shows a window without content
};

constexpr std::string_view kLooksOnce =
    "it looks only when it starts, and accessibility was off then; it shows them once it is started again";
constexpr std::string_view kWaits = "it shows them only while accessibility is on";
constexpr std::string_view kElsewhere =
    "it isn't on this session's accessibility bus, as if it ran in another session or a closed sandbox";
constexpr std::string_view kDrawsItself = "it draws its window itself, and tells nobody what is in it";
constexpr std::string_view kMakesNone = "it makes none unless it is told to when it starts";

constexpr auto kHabits = std::to_array<Habit>({
    {ProgramToolkit::chromium, kWaits, kLooksOnce, kMakesNone},
    {ProgramToolkit::electron, kWaits, kLooksOnce, kMakesNone},
    {ProgramToolkit::qt, kWaits, kLooksOnce, kDrawsItself},
    {ProgramToolkit::firefox, kWaits, "its own settings say so (accessibility.force_disabled in about:config)",
     "its own settings say so (accessibility.force_disabled in about:config)"},
    {ProgramToolkit::java, "", "Java shows them only with its accessibility bridge", kDrawsItself},
    {ProgramToolkit::gtk2, "", "GTK 2 shows them only with a module that it hasn't loaded", kDrawsItself},
    {ProgramToolkit::gtk3, "", kElsewhere, kDrawsItself},
    {ProgramToolkit::gtk4, "", kElsewhere, kDrawsItself},
    {ProgramToolkit::libreOffice, "", kElsewhere, kDrawsItself},
    {ProgramToolkit::inaccessible, "", "", kDrawsItself},
    {ProgramToolkit::unknown, "", "it isn't made with anything that is known to show them", kDrawsItself},
});

const Habit& habitOf(ProgramToolkit toolkit) { return *std::ranges::find(kHabits, toolkit, &Habit::toolkit); }

const Remedy kChromiumRemedy{{"ACCESSIBILITY_ENABLED=1"}, {}, {"--force-renderer-accessibility"}};
const Remedy kQtRemedy{{"QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1"}, {}, {}};
const Remedy kJavaRemedy{
    {"JAVA_TOOL_OPTIONS=-Djavax.accessibility.assistive_technologies=org.GNOME.Accessibility.AtkWrapper "
     "-Xbootclasspath/a:/usr/share/java/java-atk-wrapper.jar"},
    {},
    {}};

std::optional<Remedy> remedyOf(ProgramToolkit toolkit, bool javaBridgeIsThere) {
    switch (toolkit) {
        case ProgramToolkit::chromium:
        case ProgramToolkit::electron:
            return kChromiumRemedy;
        case ProgramToolkit::qt:
            return kQtRemedy;
        case ProgramToolkit::java:
            return javaBridgeIsThere ? std::optional(kJavaRemedy) : std::nullopt;
        default:
            return std::nullopt;
    }
}

// Why a program that is off the bus is, when its kind doesn't say.
std::string reasonOffTheBus(const SurveyedProgram& program, const ProgramSurvey& survey) {
    if (program.toolkit == ProgramToolkit::inaccessible)
        return "it is made with " + printable(program.toolkitName) + ", which has no accessibility";
    const Habit& habit = habitOf(program.toolkit);
    std::string reason(!survey.isEnabled && !habit.whileOff.empty() ? habit.whileOff : habit.whileOn);
    if (program.toolkit == ProgramToolkit::java && !survey.javaBridgeIsThere)
        reason += ", which isn't installed (libatk-wrapper-java)";
    return reason;
}

Finding shows(const SurveyedProgram& program, std::string_view what, std::string_view reason,
              std::optional<Remedy> remedy = std::nullopt) {
    return {nameOf(program) + " shows " + std::string(what) + ": " + std::string(reason) + ".", std::move(remedy)};
}

constexpr std::string_view kNothing = "no controls";
constexpr std::string_view kEmptyWindow = "an empty window";

// The remedies that there are desktop files for, one for each.
class Offers {
public:
    Offers(DesktopEntryFiles& files, const Consultation& consultation) : files_(files), consultation_(consultation) {}

    void offer(const SurveyedProgram& program, const Remedy& remedy) {
        if (program.desktopEntry.empty() || !offered_.insert(program.desktopEntry).second) return;
        if (const auto own = files_.ofUser(program.desktopEntry)) {
            sayOfOwn(program, *own);
            return;
        }
        const auto systems = files_.ofSystem(program.desktopEntry);
        if (!systems) return;
        Outcome<std::string> text = overrideOf(systems->text, remedy);
        if (!text) {
            say("No remedy for " + printable(program.name) + ": " + text.reason() + ".");
        } else if (!consultation_.ask) {
            say("There is a lasting remedy for " + printable(program.name) +
                "; run \"tarvix doctor\" at a terminal for it.");
        } else if (consultation_.ask(question(program, *systems, remedy))) {
            write({systems->path, text.value()});
        }
    }

private:
    void say(const std::string& line) const { consultation_.say(line); }
    std::string place(const DesktopEntryFile& file) const { return files_.userFolder() + "/" + printable(file.path); }

    void sayOfOwn(const SurveyedProgram& program, const DesktopEntryFile& own) const {
        if (authorshipOf(own.text) == Authorship::ours) {
            say(printable(program.name) + " will show its controls when it is started again from the desktop's menu.");
        } else {
            say("You have a desktop file of your own for " + printable(program.name) +
                ", which is left as it is: " + place(own));
        }
    }

    std::string question(const SurveyedProgram& program, const DesktopEntryFile& file, const Remedy& remedy) const {
        std::string text = "Always start " + printable(program.name) + " with its controls shown?\n  Writes " +
                           place(file) + ", the system's with";
        for (const std::string& variable : remedy.variables) text += " " + variable;
        for (const std::string& name : remedy.without) text += " (without " + name + ")";
        for (const std::string& argument : remedy.arguments) text += " " + argument;
        return text + "\n  \"tarvix doctor --undo\" removes it. [y/N] ";
    }

    void write(const DesktopEntryFile& file) const {
        const auto written = files_.create(file);
        say(written ? "Written. It counts from the program's next start." : "Not written: " + written.reason() + ".");
    }

    DesktopEntryFiles& files_;
    const Consultation& consultation_;
    std::set<std::string> offered_;
};

}  // namespace

std::optional<Finding> findingOf(const SurveyedProgram& program, const ProgramSurvey& survey) {
    if (program.controls == Controls::shown) return std::nullopt;
    if (program.controls == Controls::silent) return shows(program, kNothing, "it doesn't answer");
    if (program.runsAsAnother) return shows(program, kNothing, "it runs as another user, whose accessibility is apart");
    if (!program.hiddenBy.empty()) {
        const std::string name = program.hiddenBy.substr(0, program.hiddenBy.find('='));
        return shows(program, kNothing, "it was started with " + printable(program.hiddenBy), Remedy{{}, {name}, {}});
    }
    std::optional<Remedy> remedy = remedyOf(program.toolkit, survey.javaBridgeIsThere);
    if (program.controls == Controls::none)
        return shows(program, kNothing, reasonOffTheBus(program, survey), std::move(remedy));
    const bool isOnDemand = program.toolkit == ProgramToolkit::chromium || program.toolkit == ProgramToolkit::electron;
    return shows(program, kEmptyWindow, habitOf(program.toolkit).bare, isOnDemand ? std::move(remedy) : std::nullopt);
}

Diagnosis examine(const ProgramSurvey& survey, DesktopEntryFiles& files, const Consultation& consultation) {
    if (!survey.busIsThere) {
        consultation.say("The accessibility bus can't be reached: without at-spi2-core no program shows its controls.");
        return Diagnosis::somethingIsWrong;
    }
    if (!survey.isEnabled)
        consultation.say("Accessibility is off (org.a11y.Status.IsEnabled): Tarvix switches it on when it starts.");
    bool isWell = survey.isEnabled;
    std::vector<std::pair<const SurveyedProgram*, Remedy>> remedies;
    for (const SurveyedProgram& program : survey.programs) {
        const auto finding = findingOf(program, survey);
        if (!finding) continue;
        isWell = false;
        consultation.say(finding->line);
        if (finding->remedy) remedies.emplace_back(&program, *finding->remedy);
    }
    if (isWell) consultation.say("Accessibility is on, and every program with a window shows its controls.");
    Offers offers(files, consultation);
    for (const auto& [program, remedy] : remedies) offers.offer(*program, remedy);
    return isWell ? Diagnosis::well : Diagnosis::somethingIsWrong;
}

Diagnosis undo(DesktopEntryFiles& files, const Consultation& consultation) {
    bool isAllGone = true, wasThere = false;
    for (const DesktopEntryFile& file : files.allOfUser()) {
        const Authorship authorship = authorshipOf(file.text);
        if (authorship == Authorship::other) continue;
        wasThere = true;
        const std::string place = files.userFolder() + "/" + printable(file.path);
        if (authorship == Authorship::changed) {
            isAllGone = false;
            consultation.say("Left, as it was changed since it was written: " + place);
            continue;
        }
        const auto removed = files.remove(file);
        isAllGone = isAllGone && removed;
        consultation.say(removed ? "Removed: " + place : "Not removed: " + place + ": " + removed.reason());
    }
    if (!wasThere) consultation.say("There is nothing to undo.");
    return isAllGone ? Diagnosis::well : Diagnosis::somethingIsWrong;
}

}  // namespace tarvix
