// This program, as the desktop treats it.
#pragma once

#include <QProcessEnvironment>
#include <QWidget>
#include <functional>
#include <memory>

#include "platform/Application.h"

namespace tarvix {

class QtApplication : public Application {
public:
    // `environment` is what other programs are started with: this one's own has been changed for the sake of its
    // panels.
    explicit QtApplication(QProcessEnvironment environment);
    ~QtApplication() override;

    // Where the settings window comes from when it is first shown. It is kept, and the keys of the main menu work in
    // it. What it is made of must outlive this, or it is dropped before.
    void setSettingsWindow(std::function<std::unique_ptr<QWidget>()> make) { makeSettings_ = std::move(make); }
    void dropSettingsWindow() { settings_.reset(); }
    // The user has closed the last ordinary window.
    void onLastWindowClosed(std::function<void()> closed);

    void showSettingsWindow() override;
    void activate() override;
    void hide() override;
    bool hasKeyWindow() override;
    void terminate() override;
    // By the desktop's opener. Where there is none, a line on the error output tells so.
    bool openUrl(const std::string& url) override;
    Menu mainMenu() override;

private:
    QProcessEnvironment environment_;
    std::function<std::unique_ptr<QWidget>()> makeSettings_;
    std::unique_ptr<QWidget> settings_;
    std::unique_ptr<QObject> notices_ = std::make_unique<QObject>();
};

}  // namespace tarvix
