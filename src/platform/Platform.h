// All services of one platform together, as the application core is given them.
#pragma once

namespace tarvix {

class AccessibilityService;
class Application;
class EventTaps;
class Events;
class HotKeys;
class InputSources;
class LoginItems;
class Milestones;
class NotificationCenter;
class Panels;
class Pasteboard;
class RunLoop;
class Screens;
class StatusBar;
class Updater;
class UserDefaults;
class WindowServer;
class Workspace;

// Every service outlives whatever is built with it.
struct Platform {
    AccessibilityService& accessibility;
    Application& application;
    Workspace& workspace;
    WindowServer& windowServer;
    Screens& screens;
    Events& events;
    EventTaps& eventTaps;
    HotKeys& hotKeys;
    InputSources& inputSources;
    Panels& panels;
    RunLoop& runLoop;
    UserDefaults& userDefaults;
    Pasteboard& pasteboard;
    NotificationCenter& notificationCenter;
    Milestones& milestones;
    StatusBar& statusBar;
    LoginItems& loginItems;
    Updater& updater;
};

}  // namespace tarvix
