// The program: the one place that knows which implementations run.
#include <unistd.h>

#include <QApplication>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Commands.h"
#include "core/TarvixApp.h"
#include "linux/atspi/AtspiService.h"
#include "linux/desktops/DesktopAppearance.h"
#include "linux/desktops/GtkAppearance.h"
#include "linux/desktops/KdeAppearance.h"
#include "linux/desktops/XdgAutostart.h"
#include "linux/instance/RunningInstance.h"
#include "linux/x11/EvdevKeyCodes.h"
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
#include "linux/x11/X11TrayWindow.h"
#include "linux/x11/X11WindowServer.h"
#include "linux/x11/X11Windows.h"
#include "linux/x11/X11Workspace.h"
#include "platform/Platform.h"
#include "qt/FileAppearance.h"
#include "qt/MilestoneFile.h"
#include "qt/PaletteAppearance.h"
#include "qt/PortalAppearance.h"
#include "qt/ProgramIcon.h"
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
#include "qt/TrustWatcher.h"
#include "qt/settings/SettingsWindow.h"
#include "qt/updates/QtUpdater.h"
#include "shell/CommandLine.h"

using namespace tarvix;

namespace {

// A service that there is no program without.
template <class Service>
std::unique_ptr<Service> require(Outcome<std::unique_ptr<Service>> service) {
    if (service) return std::move(service.value());
    std::fprintf(stderr, "tarvix: %s\n", service.reason().c_str());
    std::exit(static_cast<int>(ExitStatus::failure));
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

// The services, each before those that are built with it.
struct Services {
    Services(std::unique_ptr<X11Windows> theWindows, const QProcessEnvironment& environment, X11Remains& remains)
        : windows(std::move(theWindows)),
          thisProgram(environment),
          appearances(*connection, environment),
          updater(QtUpdater::builtInSource(), QtUpdater::thisSystem(TARVIX_VERSION),
                  {QtUpdater::standardFolder(), environment}, userDefaults, appearances.together) {
        connection->noteRemainsIn(remains);
        accessibility->setOwnProcess(getpid());
        workspace->setScreenReader(
            {[this] { return screenReader.isRunning(); },
             [this](std::string_view text, int priority) { screenReader.announce(text, priority); }});
        workspace->setRole("com.apple.dock", [this] { return dockProcesses(*windows); });
        workspace->setRole("com.apple.notificationcenterui", [this] { return accessibility->notificationProcesses(); });
        connection->watch(runLoop);
    }

    Services(const Services&) = delete;
    Services& operator=(const Services&) = delete;

    Platform platform() {
        return {*accessibility, thisProgram,        *workspace,    *windowServer, *screens,   *events,
                *eventTaps,     *hotKeys,           *inputSources, panels,        runLoop,    userDefaults,
                pasteboard,     notificationCenter, milestones,    statusBar,     loginItems, updater};
    }

    std::unique_ptr<X11Windows> windows;
    QtRunLoop runLoop;
    MilestoneFile milestones{qEnvironmentVariable("TARVIX_MILESTONES").toStdString()};
    QtUserDefaults userDefaults{QtUserDefaults::standardPath()};
    QtApplication thisProgram;
    QtPasteboard pasteboard;
    QtNotificationCenter notificationCenter;
    XdgAutostart loginItems{AutostartPlaces::standard()};
    std::unique_ptr<X11Connection> connection = require(X11Connection::open());
    std::unique_ptr<X11Events> events = require(X11Events::open(*connection));
    std::unique_ptr<X11EventTaps> eventTaps = require(X11EventTaps::open(*connection, *events, runLoop));
    std::unique_ptr<X11HotKeys> hotKeys = require(X11HotKeys::open(*connection));
    std::unique_ptr<X11Keyboard> keyboard = require(X11Keyboard::open(*connection, *events));
    std::unique_ptr<X11InputSources> inputSources = require(X11InputSources::open(runLoop));
    std::unique_ptr<X11Screens> screens = require(X11Screens::open(*connection));
    std::unique_ptr<X11WindowServer> windowServer = require(X11WindowServer::open(*windows));
    std::unique_ptr<X11Workspace> workspace = require(X11Workspace::open(*connection, *windows));
    std::unique_ptr<AtspiService> accessibility = require(AtspiService::open(*windows));
    QtScreenReader screenReader;
    DesktopAppearanceSources appearances;
    QtPanels panels{{*keyboard, *screens, milestones, appearances.together}};
    QtStatusBar statusBar{appearances.together, [this](TrayWindowUse use) {
                              return std::make_unique<X11TrayWindow>(*connection, std::move(use));
                          }};
    QtUpdater updater;
};

std::unique_ptr<SettingsWindow> makeSettingsWindow(Services& services, TarvixApp& program) {
    AppCore& core = program.core();
    const RecorderServices recorder{
        core.keyboardShortcuts(), *services.inputSources, services.thisProgram, services.runLoop,
        [](std::uint32_t scanCode) { return keyCodeOfX11(static_cast<std::uint8_t>(scanCode)); }};
    return std::make_unique<SettingsWindow>(SettingsWindowServices{services.userDefaults, services.appearances.together,
                                                                   program.launchAtLogin(), core.controlEffects(),
                                                                   recorder});
}

// What others ask of the running program on the session bus.
Subscription serveOthers(RunningInstance& instance, Services& services, TarvixApp& program) {
    AppDelegate& delegate = program.appDelegate();
    return instance.serve(services.runLoop,
                          {.activate = [&] { delegate.applicationShouldHandleReopen(); },
                           .open = [&](const std::vector<std::string>& urls) { delegate.openURLs(urls); },
                           .showSettings = [&] { delegate.applicationShouldHandleReopen(); },
                           .quit = [&] { services.thisProgram.terminate(); }});
}

int run(RunningInstance& instance, std::unique_ptr<X11Windows> windows, const QProcessEnvironment& environment,
        X11Remains& remains) {
    Services services(std::move(windows), environment, remains);
    const Subscription hotKeyPressed = services.hotKeys->onHotKey([&](HotKeyEvent event, std::uint32_t) {
        if (event == HotKeyEvent::pressed) services.milestones.reached(milestone::hotKeyPressed, 0);
    });
    TarvixApp program(services.platform());
    AppCore& core = program.core();
    const auto wakeFrontmost = [&] {
        const auto frontmost = core.isStarted() ? services.workspace->frontmostApplication() : std::nullopt;
        if (frontmost) services.accessibility->wake(frontmost->processIdentifier);
    };
    const auto closeTheInput = [&core] {
        if (core.isStarted()) core.theInput().close();
    };
    services.thisProgram.setSettingsWindow([&] { return makeSettingsWindow(services, program); });
    TrustWatcher trustWatcher([&] { services.accessibility->noteTrustChange(); });
    services.thisProgram.onLastWindowClosed(
        [&] { program.appDelegate().applicationShouldTerminateAfterLastWindowClosed(); });
    // Who has asked by now has asked before the start.
    const Subscription served = serveOthers(instance, services, program);
    program.appDelegate().applicationDidFinishLaunching();
    wakeFrontmost();
    const Subscription activation =
        services.workspace->onApplicationActivated([&](const RunningApplication&) { wakeFrontmost(); });

    const Subscription termination = onTerminationSignal(services.runLoop, [&] {
        closeTheInput();  // gives the keyboard back before anything is waited for
        QCoreApplication::exit();
    });
    ScreenLock screenLock;
    const Subscription screenLocked = screenLock.onLocked(closeTheInput);
    const Subscription serverGone = services.connection->onGone([&] {
        std::fputs("tarvix: the X server has closed the connection\n", stderr);
        closeTheInput();
        QCoreApplication::exit(static_cast<int>(ExitStatus::failure));
    });
    const int status = QCoreApplication::exec();
    services.thisProgram.dropSettingsWindow();
    services.runLoop.waitForBodies();
    return status;
}

int start(const command::Start& wanted, int count, char** arguments) {
    auto standing = becomeInstance(wanted);
    if (const int* status = std::get_if<int>(&standing)) return *status;
    const auto instance = std::get<std::unique_ptr<RunningInstance>>(std::move(standing));
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
    QApplication::setWindowIcon(programIcon());
    QApplication::setQuitOnLastWindowClosed(false);
    return run(*instance, std::move(windows), environment, remains);
}

template <class... Answers>
struct Answering : Answers... {
    using Answers::operator()...;
};

}  // namespace

int main(int count, char** arguments) {
    const std::vector<std::string_view> words(arguments + std::min(count, 1), arguments + count);
    return std::visit(Answering{[](const command::Help&) { return printHelp(); },
                                [](const command::Version&) { return printVersion(); },
                                [](const command::Quit&) { return quitRunning(); },
                                [](const command::Doctor& doctor) { return consultDoctor(doctor); },
                                [](const command::WrongUse& wrong) { return complain(wrong); },
                                [&](const command::Start& wanted) { return start(wanted, count, arguments); }},
                      parseCommandLine(words));
}
