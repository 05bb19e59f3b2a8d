#include "qt/QtStatusBar.h"

#include <QSystemTrayIcon>

namespace tarvix {

namespace {

class QtStatusItem : public StatusItem {
public:
    void setButton(const StatusButton& button) override {
        icon_.setToolTip(QString::fromStdString(button.accessibilityTitle));
    }
    void setVisible(bool isVisible) override { icon_.setVisible(isVisible); }
    void setBehavior(StatusItemBehavior) override {}
    void setMenu(Menu, std::function<void(Menu&)>) override {}

private:
    QSystemTrayIcon icon_;
};

}  // namespace

std::unique_ptr<StatusItem> QtStatusBar::makeStatusItem() { return std::make_unique<QtStatusItem>(); }

}  // namespace tarvix
