// A whole desktop in memory, driven by hand: state what is there, use the keyboard, read the journal of effects.
#pragma once

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Platform.h"
#include "simulated/Faults.h"
#include "simulated/Journal.h"
#include "simulated/SimulatedAccessibility.h"
#include "simulated/SimulatedApplication.h"
#include "simulated/SimulatedEventTaps.h"
#include "simulated/SimulatedEvents.h"
#include "simulated/SimulatedHotKeys.h"
#include "simulated/SimulatedInputSources.h"
#include "simulated/SimulatedLoginItems.h"
#include "simulated/SimulatedMilestones.h"
#include "simulated/SimulatedNotificationCenter.h"
#include "simulated/SimulatedPanels.h"
#include "simulated/SimulatedPasteboard.h"
#include "simulated/SimulatedRunLoop.h"
#include "simulated/SimulatedScreens.h"
#include "simulated/SimulatedStatusBar.h"
#include "simulated/SimulatedUpdater.h"
#include "simulated/SimulatedUserDefaults.h"
#include "simulated/SimulatedWindow.h"
#include "simulated/SimulatedWindowServer.h"
#include "simulated/SimulatedWorkspace.h"

namespace tarvix {

// To begin with there is one screen of 1600 by 1000, the pointer in its middle, a US keyboard, and no application.
// Nothing runs by itself: settle() or the verbs of `runLoop` move the queues on, turnClock() the timers.
class SimulatedDesktop {
public:
    SimulatedDesktop();
    SimulatedDesktop(const SimulatedDesktop&) = delete;
    SimulatedDesktop& operator=(const SimulatedDesktop&) = delete;

    Platform platform();

    // Launches an application, which becomes frontmost and gets the focus. Its identifier is "org.example." and the
    // name unless another one is given. The answer is its process.
    std::int32_t launch(const std::string& name, const std::optional<std::string>& bundleIdentifier = std::nullopt);
    // Launches an application with this window, which is its main and its focused one and not in full-screen mode.
    SimulatedWindow window(const std::string& name, AxRect frame = {{0, 0}, {800, 600}},
                           const std::optional<std::string>& bundleIdentifier = std::nullopt);
    // One more window of a running application, in front of all others but neither its main nor its focused one.
    SimulatedWindow addWindow(std::int32_t pid, const std::string& title, AxRect frame);

    // --- What is on the desktop beside those windows.

    // A process that never becomes frontmost.
    std::int32_t launchInBackground(const std::string& name,
                                    const std::optional<std::string>& bundleIdentifier = std::nullopt);
    // The menu bar of an application, which shows while status items do.
    UIElement addMenuBar(std::int32_t pid, const std::vector<SimulatedElement>& items);
    // Status items of an application, on a window in their layer.
    SimulatedWindow addStatusItems(std::int32_t pid, const std::vector<SimulatedElement>& items);
    // A notification's window; the first one launches the process that shows them.
    SimulatedWindow addNotification(AxRect frame, const std::vector<SimulatedElement>& children);
    // The process of the dock with its row of items, on a window of its own.
    SimulatedWindow addDock(const std::vector<SimulatedElement>& items);

    // Makes an application frontmost and gives it the accessibility focus. Nothing: no application is either.
    void activate(std::optional<std::int32_t> pid);

    // One press of a key, by position: the hot key that it is, else the monitor and the panel with the keyboard, else
    // the application.
    void press(std::uint16_t keyCode, std::uint64_t flags = 0);
    // A text, key by key on the present layout; characters that no key types come as from an input method.
    void type(std::string_view text);
    // The user turns to another window, which takes the keyboard.
    void clickElsewhere();
    // The pointer goes there by hand.
    void movePointer(AxPoint to);
    // One step of the wheel over the application; true when it gets there.
    bool scroll();

    void settle() { runLoop.settle(); }
    void turnClock(std::chrono::milliseconds by) { runLoop.turnClock(by); }

    std::vector<std::string> journal(std::initializer_list<Topic> topics = {}) const { return log.entries(topics); }
    void clearJournal() { log.clear(); }

    Journal log;
    Faults faults;
    SimulatedAccessibility accessibility;
    SimulatedApplication application;
    SimulatedWorkspace workspace;
    SimulatedWindowServer windowServer;
    SimulatedScreens screens;
    SimulatedEvents events;
    SimulatedEventTaps eventTaps;
    SimulatedHotKeys hotKeys;
    SimulatedInputSources inputSources;
    SimulatedPanels panels;
    SimulatedRunLoop runLoop;
    SimulatedUserDefaults userDefaults;
    SimulatedPasteboard pasteboard;
    SimulatedNotificationCenter notificationCenter;
    SimulatedMilestones milestones;
    SimulatedStatusBar statusBar;
    SimulatedLoginItems loginItems;
    SimulatedUpdater updater;

private:
    SimulatedWindow addSurface(std::int32_t pid, AxRect frame, int layer, const SimulatedElement& container);
    bool panelHasKeyboard() const;
    std::string keyboardsOwner(const KeyEvent& event) const;
    void deliver(const KeyEvent& event);
    void typeCharacter(const std::string& character);
    std::string typed(const KeyEvent& event);

    std::optional<std::int32_t> notifications_;  // the process that shows them
    std::int32_t lastPid_ = 100;
    std::uint32_t lastWindow_ = 0;
};

}  // namespace tarvix
