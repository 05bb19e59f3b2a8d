// This program, with its settings window.
#pragma once

#include <string>
#include <utility>

#include "platform/Application.h"
#include "simulated/Journal.h"

namespace tarvix {

// Notes in the journal what is asked of it.
class SimulatedApplication : public Application {
public:
    explicit SimulatedApplication(Journal& journal) : journal_(journal) {}

    void showSettingsWindow() override {
        keyWindow = true;
        journal_.note(Topic::settings, "settings shown");
    }
    void activate() override { journal_.note(Topic::application, "activated"); }
    void hide() override {
        keyWindow = false;
        journal_.note(Topic::application, "hidden");
    }
    bool hasKeyWindow() override { return keyWindow; }
    void terminate() override { journal_.note(Topic::application, "terminated"); }
    // Any text with a colon that isn't its first character is an address.
    bool openUrl(const std::string& url) override {
        const auto colon = url.find(':');
        if (colon == std::string::npos || colon == 0) return false;
        journal_.note(Topic::application, "opened " + url);
        return true;
    }
    Menu mainMenu() override { return menu; }

    bool keyWindow = false;
    Menu menu;

private:
    Journal& journal_;
};

}  // namespace tarvix
