// The program: the one place that knows which implementations run.
#include <unistd.h>

#include <QApplication>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/AppCore.h"
#include "core/KeyHelp.h"
#include "linux/atspi/AtspiService.h"
#include "linux/desktops/DesktopAppearance.h"
#include "linux/desktops/GtkAppearance.h"
#include "linux/desktops/KdeAppearance.h"
#include "linux/desktops/XdgAutostart.h"
#include "linux/doctor/Survey.h"
#include "linux/doctor/UserEntryFiles.h"
#include "linux/x11/DesktopEntries.h"
#include "linux/x11/Panels.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11EventTaps.h"
#include "linux/x11/X11Events.h"
#include "linux/x11/X11Guard.h"
#include "linux/x11/X11HotKeys.h"
#include "linux/x11/X11InputSources.h"
#include "linux/x11/X11Keyboard.h"
#include "linux/x11/X11Scale.h"
#include "linux/x11/X11Screens.h"
#include "linux/x11/X11Settings.h"
#include "linux/x11/X11WindowServer.h"
#include "linux/x11/X11Windows.h"
#include "linux/x11/X11Workspace.h"
#include "platform/Platform.h"
#include "qt/FileAppearance.h"
#include "qt/MilestoneFile.h"
#include "qt/PaletteAppearance.h"
#include "qt/PortalAppearance.h"
#include "qt/QtApplication.h"
#include "qt/QtNotificationCenter.h"
#include "qt/QtPanels.h"
#include "qt/QtPasteboard.h"
#include "qt/QtRunLoop.h"
#include "qt/QtScreenReader.h"
#include "qt/QtStatusBar.h"
#include "qt/QtUserDefaults.h"
#include "qt/ScreenLock.h"
#include "qt/TerminationSignals.h"
#include "qt/updates/QtUpdater.h"
#include "shell/Doctor.h"

using namespace tarvix;

namespace {

constexpr int kFailure = 1;
constexpr int kWrongUse = 2;

constexpr const char* kHelp =
    "Usage: tarvix [--help | --version]\n"
    "       tarvix doctor [--undo]\n"
    "\n"
    "Reaches and operates any visible control of the frontmost application from the keyboard.\n"
    "It stays in the background; Shift+Super+Space brings up The Input.\n"
    "\n"
    "  --help     print this text and end\n"
    "  --version  print the version and end\n"
    "  doctor     say which programs with a window show no controls, and why; where there is a lasting\n"
    "             remedy, a desktop file of the user's own, offer it and write it on a yes only.\n"
    "             Status 0: all show them; 1: some don't, or accessibility is off or out of reach; 2: wrong use\n"
    "    --undo   remove these files again. Status 0: none is left; 1: one is, changed since or stuck\n"
    "\n"
    "Environment:\n"
    "  TARVIX_MILESTONES  a file that gets a line with the time of each moment of a search\n";

void printHelp() {
    std::fputs(kHelp, stdout);
    std::puts("\nKeys while The Input is up:");
    for (const auto& [keys, help] : keyHelp())
        std::printf("  %s\n      %.*s\n", keys.c_str(), static_cast<int>(help.size()), help.data());
}

// A service that there is no program without.
template <class Service>
std::unique_ptr<Service> require(Outcome<std::unique_ptr<Service>> service) {
    if (service) return std::move(service.value());
    std::fprintf(stderr, "tarvix: %s\n", service.reason().c_str());
    std::exit(kFailure);
}

bool askAtTerminal(std::string_view question) {
    std::cout << question << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
}

int consultDoctor(int count, char** arguments) {
    const bool undoes = count == 1 && std::string_view(arguments[0]) == "--undo";
    if (count > 0 && !undoes) {
        std::fputs("tarvix: 'doctor' takes --undo and nothing else; try 'tarvix --help'\n", stderr);
        return kWrongUse;
    }
    Consultation consultation{[](std::string_view line) { std::cout << line << std::endl; }, nullptr};
    if (isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0) consultation.ask = askAtTerminal;
    UserEntryFiles files(DesktopEntries::standardFolders());
    if (undoes) return static_cast<int>(undo(files, consultation));
    const auto windows = require(X11Windows::open());
    return static_cast<int>(examine(surveyPrograms(*windows), files, consultation));
}

// The exit status where the command line is all there is to answer.
std::optional<int> answerCommandLine(int count, char** arguments) {
    if (count < 2) return std::nullopt;
    const std::string_view option = arguments[1];
    if (option == "--version") {
        std::puts("tarvix " TARVIX_VERSION);
        return EXIT_SUCCESS;
    }
    if (option == "--help") {
        printHelp();
        return EXIT_SUCCESS;
    }
    if (option == "doctor") return consultDoctor(count - 2, arguments + 2);
    std::fprintf(stderr, "tarvix: unknown argument '%s'; try 'tarvix --help'\n", arguments[1]);
    return kWrongUse;
}

// One unit of ours is one pixel of the root window: markers stand on pixels of other programs. The desktop's scale goes
// into the fonts alone.
void keepToPixels() {
    if (!qEnvironmentVariableIsSet("QT_ENABLE_HIGHDPI_SCALING")) qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");
    qunsetenv("QT_SCALE_FACTOR");
    qunsetenv("QT_SCREEN_SCALE_FACTORS");
    qputenv("QT_QPA_PLATFORM", "xcb");
}

// What reads our output may end before us, a pager or a log; that alone must not end the program.
void outliveReaders() { std::signal(SIGPIPE, SIG_IGN); }

// Qt looks only once whether accessibility is on, and this program is often what switches it on.
void beThereForScreenReaders() { qputenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1"); }

// Everything that may know how the desktop looks.
struct DesktopAppearanceSources {
    DesktopAppearanceSources(X11Connection& connection, const QProcessEnvironment& environment)
        : xsettings(connection),
          scale(connection, xsettings, environment.value("GDK_SCALE").toStdString(),
                environment.value("QT_SCALE_FACTOR").toStdString()),
          scaleChanged(scale.onChange([this] { together.setScale(scale.value()); })) {
        together.setScale(scale.value());
    }

    static QString configuration(const QString& name) {
        return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/" + name;
    }
    static AppearanceTold gtkFile(std::string_view text) {
        return gtkAppearance(gtkChoice(text), installedGtkThemeSheet);
    }

    PortalAppearance portal;
    X11Settings xsettings;
    X11Scale scale;
    FileAppearance kde{configuration("kdeglobals"), kdeAppearance};
    FileAppearance gtk{configuration("gtk-3.0/settings.ini"), gtkFile};
    PaletteAppearance toolkit;
    DesktopAppearance together{{portal, xsettings, kde, gtk, toolkit},
                               qEnvironmentVariable("XDG_CURRENT_DESKTOP").toStdString()};
    Subscription scaleChanged;
};

int run(std::unique_ptr<X11Windows> windows, const QProcessEnvironment& environment, X11Remains& remains) {
    QtRunLoop runLoop;
    MilestoneFile milestones(qEnvironmentVariable("TARVIX_MILESTONES").toStdString());
    QtUserDefaults userDefaults(QtUserDefaults::standardPath());
    QtApplication thisProgram(QtUserDefaults::standardPath(), environment);
    QtPasteboard pasteboard;
    QtNotificationCenter notificationCenter;
    QtStatusBar statusBar;
    XdgAutostart loginItems;
    QtUpdater updater;

    const auto connection = require(X11Connection::open());
    connection->noteRemainsIn(remains);
    const auto events = require(X11Events::open(*connection));
    const auto eventTaps = require(X11EventTaps::open(*connection, *events, runLoop));
    const auto hotKeys = require(X11HotKeys::open(*connection));
    const auto keyboard = require(X11Keyboard::open(*connection, *events));
    const auto inputSources = require(X11InputSources::open(runLoop));
    const auto screens = require(X11Screens::open(*connection));
    const auto windowServer = require(X11WindowServer::open(*windows));
    const auto workspace = require(X11Workspace::open(*connection, *windows));
    const auto accessibility = require(AtspiService::open(*windows));
    QtScreenReader screenReader;
    workspace->setScreenReader({[&] { return screenReader.isRunning(); },
                                [&](std::string_view text, int priority) { screenReader.announce(text, priority); }});
    workspace->setRole("com.apple.dock", [&] { return dockProcesses(*windows); });
    workspace->setRole("com.apple.notificationcenterui", [&] { return accessibility->notificationProcesses(); });
    DesktopAppearanceSources appearances(*connection, environment);
    QtPanels panels({*keyboard, *screens, milestones, appearances.together});
    connection->watch(runLoop);
    const Subscription hotKeyPressed = hotKeys->onHotKey([&](HotKeyEvent event, std::uint32_t) {
        if (event == HotKeyEvent::pressed) milestones.reached(milestone::hotKeyPressed, 0);
    });

    const Platform platform{*accessibility, thisProgram,        *workspace,    *windowServer, *screens,   *events,
                            *eventTaps,     *hotKeys,           *inputSources, panels,        runLoop,    userDefaults,
                            pasteboard,     notificationCenter, milestones,    statusBar,     loginItems, updater};
    AppCore core(platform);
    if (!accessibility->isTrusted()) accessibility->askForTrust();
    core.start();
    const Subscription activation = workspace->onApplicationActivated(
        [&](const RunningApplication& activated) { accessibility->wake(activated.processIdentifier); });
    if (const auto frontmost = workspace->frontmostApplication()) accessibility->wake(frontmost->processIdentifier);

    const Subscription termination = onTerminationSignal(runLoop, [&core] {
        core.theInput().close();  // gives the keyboard back before anything is waited for
        QCoreApplication::quit();
    });
    ScreenLock screenLock;
    const Subscription screenLocked = screenLock.onLocked([&core] { core.theInput().close(); });
    const Subscription serverGone = connection->onGone([&core] {
        std::fputs("tarvix: the X server has closed the connection\n", stderr);
        core.theInput().close();
        QCoreApplication::exit(kFailure);
    });
    const int status = QCoreApplication::exec();
    runLoop.waitForBodies();
    return status;
}

}  // namespace

int main(int count, char** arguments) {
    if (const auto status = answerCommandLine(count, arguments)) return *status;
    outliveReaders();
    X11Remains& remains = startGuard();
    // Asked before Qt, which ends the process with a long text where there is no display.
    auto windows = require(X11Windows::open());
    const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    keepToPixels();
    beThereForScreenReaders();
    QApplication application(count, arguments);
    QApplication::setApplicationName("tarvix");
    QApplication::setApplicationDisplayName("Tarvix");
    QApplication::setDesktopFileName("org.tarvix.Tarvix");
    QApplication::setQuitOnLastWindowClosed(false);
    return run(std::move(windows), environment, remains);
}
