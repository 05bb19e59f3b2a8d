// One pane of the settings as a form of ordinary controls.
#pragma once

#include <QWidget>
#include <functional>
#include <vector>

#include "qt/settings/SettingsLook.h"
#include "qt/settings/SettingsWindowServices.h"
#include "shell/preferences/Controls.h"

class QCheckBox;
class QGridLayout;
class QHBoxLayout;
class QLabel;
class QSlider;

namespace tarvix {

// Bound to the store in both directions: what the user does is written at once, and refresh() shows what anybody else
// has written, without writing anything itself.
class PaneForm : public QWidget {
public:
    // `style` is that of all its controls, and outlives them.
    PaneForm(const Pane& pane, const std::vector<Tab>& tabs, const SettingsWindowServices& services,
             const SettingsLook& look, QStyle& style);

    void refresh();
    // The width that the widest of its rows wants, and the height of all of them in a width.
    int idealWidth() const;
    int idealHeight(int width) const;

    std::function<void()> onLayout;  // both may be others now

protected:
    bool event(QEvent* event) override;

private:
    struct EndLabels {
        int least = 0, most = 0;  // width in pixels
    };

    void add(const Section& section, bool isFirst);
    void add(const Toggle& toggle);
    void add(const LoginToggle& toggle);
    void add(const Picker& picker);
    void add(const Slider& slider);
    void add(const Recorder& recorder);
    void add(const Divider& divider);
    void addHeading(const QString& title);
    void addGap(double points);
    int textOfCheckBox() const;
    int heightOfCheckBox() const;
    QCheckBox* addCheckBox(std::string_view label);
    QLabel* addLabel(std::string_view text, QWidget* buddy);
    QLabel* addFootnote(int indentation);
    void addIndented(const Picker& picker, QWidget* control);
    QLabel* smallLabel(const QString& text);
    void bind(const Slider& slider, QSlider* control, QLabel* label);
    void write(std::string_view key, UserDefaults::Value value);
    void describe(QWidget* control, std::string_view label, std::string_view help);

    SettingsWindowServices services_;
    SettingsLook look_;
    QStyle& style_;
    const std::vector<Tab>& tabs_;
    QGridLayout* grid_;
    int row_ = 0;
    bool hasLabels_;
    EndLabels endLabels_;  // of the present section's sliders
    bool isRefreshing_ = false;
    std::vector<std::function<void()>> refreshers_;
    Subscription loginChanged_;
};

}  // namespace tarvix
