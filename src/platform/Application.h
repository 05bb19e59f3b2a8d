// This program, as the desktop treats it.
#pragma once

#include <string>

#include "platform/Menu.h"

namespace tarvix {

// Main thread.
class Application {
public:
    virtual ~Application() = default;
    // Makes the settings window, if there is none, and puts it in front.
    virtual void showSettingsWindow() = 0;
    // Gives the keyboard to the window of this program that is in front, whichever application is active.
    virtual void activate() = 0;
    // Puts this program's ordinary windows away; the focus goes back to where it was.
    virtual void hide() = 0;
    // Whether one of the ordinary windows has the keyboard.
    virtual bool hasKeyWindow() = 0;
    // Ends the program, once the present pass of its loop is over.
    virtual void terminate() = 0;
    // Opens an address with whatever the desktop opens such addresses with, and returns at once. False when it isn't a
    // valid address; nothing happens then.
    virtual bool openUrl(const std::string& url) = 0;
    // The menus that this program's windows have: an entry with a submenu for each.
    virtual Menu mainMenu() = 0;
};

}  // namespace tarvix
