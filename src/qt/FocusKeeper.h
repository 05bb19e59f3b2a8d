// What Qt believes of the keyboard while a panel has it, and after that.
#pragma once

#include <QObject>

class QWindow;
class QWidget;

namespace tarvix {

// Qt hands every key to the window that it believes to have the focus, whichever the key is sent to. An ordinary window
// of ours may really have it, while the keys are the panel's. Main thread; the panel outlives this.
class FocusKeeper {
public:
    explicit FocusKeeper(QWidget& panel);
    FocusKeeper(const FocusKeeper&) = delete;
    FocusKeeper& operator=(const FocusKeeper&) = delete;

    // While it holds, the panel is the one; afterwards, whichever of ours the server says.
    void setPanelHasKeyboard(bool has) { panelHasKeyboard_ = has; }

private:
    void focusChanged(QWindow* now);

    QWidget& panel_;
    bool panelHasKeyboard_ = false;
    QObject connection_;
};

}  // namespace tarvix
