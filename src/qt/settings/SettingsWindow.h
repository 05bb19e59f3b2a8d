// The settings window.
#pragma once

#include <QWidget>
#include <memory>
#include <vector>

#include "qt/settings/PaneForm.h"
#include "qt/settings/TabRow.h"

class QFrame;
class QStackedWidget;

namespace tarvix {

// A row of tabs and the pane of the chosen one, at whose size the window is; where the screen is too small the pane
// scrolls. The panes are made anew whenever the window is shown, and when the desktop looks otherwise. Escape closes
// it.
class SettingsWindow : public QWidget {
public:
    explicit SettingsWindow(const SettingsWindowServices& services);
    ~SettingsWindow() override;

protected:
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void makePanes();
    void adoptLook();
    void storeChanged();
    void turnTab(int by);
    void choosePane(int index);
    int heightWith(const PaneForm& pane, int width) const;
    void fit();
    void centre();

    SettingsWindowServices services_;
    std::vector<Tab> tabs_;
    SettingsLook look_;
    ScaledStyle style_;
    std::unique_ptr<QWidget> content_;  // goes before its style
    QWidget* band_;                     // around the tabs
    TabRow* row_;
    QFrame* line_;
    QStackedWidget* stack_;
    std::vector<PaneForm*> panes_;
    bool hasBeenShown_ = false;
    Subscription storeChanged_, appearanceChanged_;
};

}  // namespace tarvix
