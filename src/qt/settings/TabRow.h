// The row of the settings' tabs: a symbol each, and its label below.
#pragma once

#include <QTabBar>
#include <vector>

#include "qt/settings/SettingsLook.h"
#include "shell/preferences/Controls.h"

namespace tarvix {

// An ordinary row of tabs to the keyboard and to a screen reader.
class TabRow : public QTabBar {
public:
    explicit TabRow(const std::vector<Tab>& tabs, QWidget* parent = nullptr);
    void setLook(const SettingsLook& look);

protected:
    QSize tabSizeHint(int index) const override;
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    void paintTab(QPainter& painter, int index) const;

    std::vector<std::string_view> symbols_;
    SettingsLook look_{AppearanceValues{}};
    int hovered_ = -1;
};

}  // namespace tarvix
