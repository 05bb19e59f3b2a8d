// What the user sees of updates: one window, whose content follows what happens.
#pragma once

#include <QDialog>
#include <functional>
#include <memory>

#include "base/Subscription.h"
#include "platform/Appearance.h"
#include "updates/UpdateChoice.h"

class QBoxLayout;
class QProgressBar;
class QPushButton;

namespace tarvix {

// Reached by the keyboard alone and named for screen readers; in the desktop's scale, light or dark. Main thread. Each
// content calls back once; the window goes with that, unless it is given another content within the call.
class UpdateWindow {
public:
    enum class Answer { skip, later, install };
    // Whether it may take the keyboard from what the user is at.
    enum class Manner { asked, unasked };

    // The appearance outlives it.
    explicit UpdateWindow(Appearance& appearance);
    ~UpdateWindow();

    // Closing the window is an answer too: later.
    void showUpdate(const AvailableUpdate& update, const std::string& programVersion, Manner manner,
                    std::function<void(Answer)> answered);
    // Of an unknown length until progress is set.
    void showProgress(const QString& what, std::function<void()> cancelled);
    void setProgress(double part);
    void showMessage(const QString& heading, const QString& text, std::function<void()> closed);

    bool isOpen() const { return dialog_ != nullptr; }
    void bringToFront();
    void close();

private:
    class Dialog;

    QBoxLayout* begin(const QString& heading, std::function<void()> closed);
    void finish(QPushButton& first, Manner manner);
    void settle(std::function<void()> callback);
    void dress();

    Appearance& appearance_;
    std::unique_ptr<Dialog> dialog_;
    QProgressBar* progress_ = nullptr;
    int contents_ = 0;  // so far
    Subscription appearanceChanged_;
};

}  // namespace tarvix
