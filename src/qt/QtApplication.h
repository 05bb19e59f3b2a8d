// This program, as the desktop treats it.
#pragma once

#include <QProcessEnvironment>
#include <QString>

#include "platform/Application.h"

namespace tarvix {

// There is no window for the settings: their file is opened with whatever the desktop opens such files with.
class QtApplication : public Application {
public:
    // `environment` is what other programs are started with: this one's own has been changed for the sake of its
    // panels.
    QtApplication(QString settingsPath, QProcessEnvironment environment)
        : settingsPath_(std::move(settingsPath)), environment_(std::move(environment)) {}

    // Makes an empty file where there is none. Returns before the editor shows; where there is nothing to open the file
    // with, a line on the error output tells where it is.
    void showSettingsWindow() override;
    void activate() override {}
    void hide() override {}
    bool hasKeyWindow() override { return false; }
    void terminate() override;
    bool openUrl(const std::string& url) override;
    Menu mainMenu() override { return {}; }

private:
    QString settingsPath_;
    QProcessEnvironment environment_;
};

}  // namespace tarvix
