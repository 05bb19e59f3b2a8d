// This program, as the desktop treats it.
#pragma once

#include <QString>

#include "platform/Application.h"

namespace tarvix {

// There is no window for the settings: their file is opened with whatever the desktop opens such files with.
class QtApplication : public Application {
public:
    explicit QtApplication(QString settingsPath) : settingsPath_(std::move(settingsPath)) {}

    // Makes an empty file where there is none. Returns before the editor shows; a desktop that has no program for it
    // shows nothing.
    void showSettings() override;

private:
    QString settingsPath_;
};

}  // namespace tarvix
