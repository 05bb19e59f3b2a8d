// The real services, as far as a search and its clicks go; what belongs to panels and settings is simulated.
#pragma once

#include <memory>
#include <utility>

#include "linux/atspi/AtspiService.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Events.h"
#include "linux/x11/X11Screens.h"
#include "linux/x11/X11WindowServer.h"
#include "linux/x11/X11Windows.h"
#include "linux/x11/X11Workspace.h"
#include "platform/Platform.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {

// A service that can't be had ends the program.
struct RealServices {
    std::unique_ptr<X11Windows> windows = std::move(X11Windows::open().value());
    std::unique_ptr<X11Connection> connection = std::move(X11Connection::open().value());
    std::unique_ptr<AtspiService> accessibility = std::move(AtspiService::open(*windows).value());
    std::unique_ptr<X11Workspace> workspace = std::move(X11Workspace::open(*connection, *windows).value());
    std::unique_ptr<X11WindowServer> windowServer = std::move(X11WindowServer::open(*windows).value());
    std::unique_ptr<X11Screens> screens = std::move(X11Screens::open(*connection).value());
    std::unique_ptr<X11Events> events = std::move(X11Events::open(*connection).value());
    SimulatedDesktop rest;

    Platform platform() {
        return {.accessibility = *accessibility,
                .application = rest.application,
                .workspace = *workspace,
                .windowServer = *windowServer,
                .screens = *screens,
                .events = *events,
                .eventTaps = rest.eventTaps,
                .hotKeys = rest.hotKeys,
                .inputSources = rest.inputSources,
                .panels = rest.panels,
                .runLoop = rest.runLoop,
                .userDefaults = rest.userDefaults,
                .pasteboard = rest.pasteboard,
                .notificationCenter = rest.notificationCenter,
                .milestones = rest.milestones,
                .statusBar = rest.statusBar,
                .loginItems = rest.loginItems,
                .updater = rest.updater};
    }
};

}  // namespace tarvix
