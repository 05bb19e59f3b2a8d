// A button of the splash panel: rounded, as wide as it gets, and in the desktop's accent colour if it is the default.
#pragma once

#include <QPushButton>

#include "platform/Appearance.h"

namespace tarvix {

class SplashPanelButton : public QPushButton {
public:
    SplashPanelButton(const QString& title, bool isDefault, const AppearanceValues& appearance);

protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    QColor ground() const;

    AppearanceValues appearance_;
    bool isDefault_;
    bool wasTabbedTo_ = false;  // only who moves by Tab has to see where it has led
};

}  // namespace tarvix
