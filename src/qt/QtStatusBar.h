// The status item in the desktop's tray: on the session bus where somebody shows items from there, else as a window in
// the tray, and nowhere as long as there is neither.
#pragma once

#include "platform/Appearance.h"
#include "platform/StatusBar.h"
#include "platform/TrayWindow.h"

namespace tarvix {

// A middle click on an item takes it away, where its behaviour lets the user do that: icons can't be dragged off a
// tray.
class QtStatusBar : public StatusBar {
public:
    // The appearance must outlive the bar and its items.
    QtStatusBar(Appearance& appearance, MakeTrayWindow makeTrayWindow)
        : appearance_(appearance), makeTrayWindow_(std::move(makeTrayWindow)) {}

    std::unique_ptr<StatusItem> makeStatusItem() override;

private:
    Appearance& appearance_;
    MakeTrayWindow makeTrayWindow_;
};

}  // namespace tarvix
