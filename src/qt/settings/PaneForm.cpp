#include "qt/settings/PaneForm.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QSlider>
#include <QStyle>
#include <QStyleOptionButton>
#include <QWheelEvent>
#include <algorithm>
#include <cassert>
#include <memory>
#include <utility>

#include "qt/settings/RichText.h"
#include "qt/settings/SymbolImages.h"
#include "shell/preferences/ControlValues.h"

namespace tarvix {

namespace {

// In points.
constexpr double kMargin = 26, kLabelColumn = 160, kColumnGap = 8, kRowGap = 8, kSectionGap = 7, kFootnoteGap = -5;
constexpr double kControlColumn = 500;

constexpr int kKeySteps = 20, kPageSteps = 5;  // from one end of a continuous slider to the other

enum Column { labels, controls };

// The wheel turns the pane and not the control that happens to be below the pointer.
class WheelGuard : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Wheel || static_cast<QWidget*>(watched)->hasFocus()) return false;
        event->ignore();
        return true;
    }
};

// A label that works its control, as that of a check box does.
class ClickableLabel : public QLabel {
public:
    ClickableLabel(const QString& text, QAbstractButton* button) : QLabel(text), button_(button) {}

protected:
    void mousePressEvent(QMouseEvent* event) override { event->accept(); }
    void mouseReleaseEvent(QMouseEvent* event) override {
        if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) button_->click();
    }

private:
    QAbstractButton* button_;
};

std::string_view labelOf(const Control& control) {
    if (const auto* picker = std::get_if<Picker>(&control)) return picker->indentation > 0 ? "" : picker->label;
    if (const auto* slider = std::get_if<Slider>(&control)) return slider->label;
    if (const auto* recorder = std::get_if<Recorder>(&control)) return recorder->label;
    return {};
}

bool hasLabels(const Pane& pane) {
    for (const Section& section : pane.sections)
        for (const Control& control : section.controls)
            if (!labelOf(control).empty()) return true;
    return false;
}

QString withoutColon(std::string_view label) {
    QString name = plainText(label);
    if (name.endsWith(':')) name.chop(1);
    return name;
}

bool hasFootnotes(const std::vector<Footnote>& footnotes) { return !footnotes.empty(); }

}  // namespace

PaneForm::PaneForm(const Pane& pane, const std::vector<Tab>& tabs, const SettingsWindowServices& services,
                   const SettingsLook& look, QStyle& style)
    : services_(services),
      look_(look),
      style_(style),
      tabs_(tabs),
      grid_(new QGridLayout(this)),
      hasLabels_(hasLabels(pane)) {
    const int margin = look_.pixels(kMargin);
    grid_->setContentsMargins(margin, look_.pixels(14), margin, look_.pixels(20));
    grid_->setHorizontalSpacing(hasLabels_ ? look_.pixels(kColumnGap) : 0);
    grid_->setVerticalSpacing(look_.pixels(kRowGap));
    grid_->setColumnStretch(controls, 1);
    if (hasLabels_) grid_->setColumnMinimumWidth(labels, look_.pixels(kLabelColumn));
    grid_->setColumnMinimumWidth(controls, look_.pixels(kControlColumn + (hasLabels_ ? 0 : kLabelColumn + kColumnGap)));
    for (const Section& section : pane.sections) add(section, &section == &pane.sections.front());
    grid_->setRowStretch(row_, 1);
    for (QWidget* each : findChildren<QWidget*>()) each->setStyle(&style);
    refresh();
}

void PaneForm::refresh() {
    isRefreshing_ = true;
    for (const auto& each : refreshers_) each();
    isRefreshing_ = false;
}

int PaneForm::idealWidth() const { return grid_->minimumSize().width(); }

int PaneForm::idealHeight(int width) const {
    return grid_->hasHeightForWidth() ? grid_->totalHeightForWidth(width) : grid_->totalSizeHint().height();
}

bool PaneForm::event(QEvent* event) {
    const bool result = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest && onLayout) onLayout();
    return result;
}

void PaneForm::add(const Section& section, bool isFirst) {
    if (section.hasDividerAbove) {
        add(Divider{});
    } else if (!isFirst) {
        addGap(kSectionGap);
    }
    if (!section.title.empty()) addHeading(plainText(section.title));
    endLabels_ = {};
    const auto widthOf = [this](std::string_view text) {
        return std::unique_ptr<QLabel>(smallLabel(plainText(text)))->sizeHint().width();
    };
    for (const Control& control : section.controls)
        if (const auto* slider = std::get_if<Slider>(&control)) {
            endLabels_.least = std::max(endLabels_.least, widthOf(slider->leastLabel));
            endLabels_.most = std::max(endLabels_.most, widthOf(slider->mostLabel));
        }
    for (const Control& control : section.controls) std::visit([this](const auto& each) { add(each); }, control);
}

void PaneForm::addHeading(const QString& title) {
    auto* heading = new QLabel(title);
    heading->setFont(look_.headingFont());
    grid_->addWidget(heading, row_++, labels, 1, 2);
}

void PaneForm::addGap(double points) { grid_->setRowMinimumHeight(row_++, look_.pixels(points)); }

void PaneForm::add(const Divider&) {
    auto* line = new QFrame;
    look_.drawAsLine(*line);
    grid_->setRowMinimumHeight(row_, look_.pixels(9));
    grid_->addWidget(line, row_++, labels, 1, 2, Qt::AlignVCenter);
}

QLabel* PaneForm::addLabel(std::string_view text, QWidget* buddy) {
    auto* label = new QLabel(plainText(text));
    label->setBuddy(buddy);
    grid_->addWidget(label, row_, labels, Qt::AlignRight | Qt::AlignVCenter);
    return label;
}

QLabel* PaneForm::smallLabel(const QString& text) {
    auto* label = new QLabel(text);
    label->setFont(look_.smallFont());
    QPalette palette = look_.palette();
    palette.setColor(QPalette::WindowText, look_.grey());
    label->setPalette(palette);
    return label;
}

QLabel* PaneForm::addFootnote(int indentation) {
    auto* label = smallLabel({});
    label->setTextFormat(Qt::RichText);
    label->setWordWrap(true);
    label->setContentsMargins(indentation, 0, 0, 0);
    auto* column = new QVBoxLayout;
    column->setContentsMargins(0, look_.pixels(kFootnoteGap), 0, look_.pixels(2));
    column->addWidget(label);
    grid_->addLayout(column, row_++, controls);
    return label;
}

// What is told beside the name: the footnote or the tooltip, and the keys that signs in it stand for.
void PaneForm::describe(QWidget* control, std::string_view label, std::string_view help) {
    control->setAccessibleName(withoutColon(label));
    QString description = plainText(help);
    const QString keys = QString::fromStdString(keysMeant(std::string(label) + std::string(help)));
    if (!keys.isEmpty()) description += " (" + keys + ")";
    control->setAccessibleDescription(description);
}

void PaneForm::write(std::string_view key, UserDefaults::Value value) {
    services_.defaults.set(key, std::move(value));
    services_.effects.changed(key);
}

// Where the text of a check box begins.
int PaneForm::textOfCheckBox() const {
    QStyleOptionButton option;
    option.rect = rect();
    return style_.subElementRect(QStyle::SE_CheckBoxContents, &option).left();
}

int PaneForm::heightOfCheckBox() const {
    QCheckBox box("A");
    box.setStyle(&style_);
    box.setFont(look_.font());
    return box.sizeHint().height();
}

QCheckBox* PaneForm::addCheckBox(std::string_view label) {
    auto* box = new QCheckBox;
    if (!hasCode(label)) {
        box->setText(plainText(label));
        grid_->addWidget(box, row_++, controls, Qt::AlignLeft);
        return box;
    }
    auto* text = new ClickableLabel(richText(label), box);
    text->setTextFormat(Qt::RichText);
    text->setToolTip(QString::fromStdString(keysMeant(label)));
    text->setMinimumHeight(heightOfCheckBox());
    auto* line = new QHBoxLayout;
    line->setSpacing(textOfCheckBox() - style_.pixelMetric(QStyle::PM_IndicatorWidth));
    line->addWidget(box);
    line->addWidget(text, 1);
    grid_->addLayout(line, row_++, controls);
    return box;
}

void PaneForm::add(const Toggle& toggle) {
    QCheckBox* box = addCheckBox(toggle.label);
    QLabel* below = nullptr;
    if (hasFootnotes(toggle.footnotes)) below = addFootnote(textOfCheckBox());
    connect(box, &QCheckBox::clicked, this, [this, key = toggle.setting.key](bool isOn) { write(key, isOn); });
    refreshers_.emplace_back([this, toggle, box, below] {
        box->setChecked(isOn(toggle, services_.defaults));
        const std::string_view text = footnote(toggle, services_.defaults);
        describe(box, toggle.label, text);
        if (!below) return;
        below->setText(richText(text));
        below->setToolTip(QString::fromStdString(keysMeant(text)));
    });
}

// The desktop may refuse, and others may change it: what shows is always what it says.
void PaneForm::add(const LoginToggle& toggle) {
    QCheckBox* box = addCheckBox(toggle.label);
    describe(box, toggle.label, {});
    connect(box, &QCheckBox::clicked, this, [this](bool isOn) {
        services_.launchAtLogin.setEnabled(isOn);
        refresh();
    });
    refreshers_.emplace_back([this, box] { box->setChecked(services_.launchAtLogin.isEnabled()); });
    loginChanged_ = services_.launchAtLogin.onChange([this] { refresh(); });
}

void PaneForm::add(const Picker& picker) {
    auto* box = new QComboBox;
    for (const SettingCase& each : picker.cases) box->addItem(plainText(each.displayText), plainText(each.rawValue));
    box->setFocusPolicy(Qt::StrongFocus);
    box->installEventFilter(new WheelGuard(box));
    if (picker.indentation > 0) {
        addIndented(picker, box);
    } else {
        addLabel(picker.label, box);
        grid_->addWidget(box, row_++, controls, Qt::AlignLeft);
    }
    QLabel* below = hasFootnotes(picker.footnotes) ? addFootnote(0) : nullptr;
    connect(box, &QComboBox::activated, this, [this, picker, box](int index) {
        const std::string rawValue = box->itemData(index).toString().toStdString();
        if (rawValue != chosen(picker, services_.defaults)) write(picker.key, rawValue);
    });
    refreshers_.emplace_back([this, picker, box, below] {
        box->setCurrentIndex(box->findData(plainText(chosen(picker, services_.defaults))));
        const std::string_view text = footnote(picker, services_.defaults);
        describe(box, picker.label, text);
        if (below) below->setText(richText(text));
    });
}

void PaneForm::addIndented(const Picker& picker, QWidget* control) {
    auto* label = new QLabel(plainText(picker.label));
    label->setBuddy(control);
    auto* line = new QHBoxLayout;
    line->setSpacing(look_.pixels(kColumnGap));
    line->setContentsMargins(look_.pixels(picker.indentation), 0, 0, 0);
    line->addWidget(label);
    line->addWidget(control);
    line->addStretch();
    grid_->addLayout(line, row_++, labels, 1, 2);
}

void PaneForm::add(const Slider& slider) {
    auto* control = new QSlider(Qt::Horizontal);
    QLabel* label = addLabel(slider.label, control);
    auto* line = new QHBoxLayout;
    line->setSpacing(look_.pixels(kColumnGap));
    if (!slider.leastLabel.empty()) {
        QLabel* least = smallLabel(plainText(slider.leastLabel));
        least->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        least->setMinimumWidth(endLabels_.least);
        line->addWidget(least);
    }
    line->addWidget(control, 1);
    if (!slider.mostLabel.empty()) {
        QLabel* most = smallLabel(plainText(slider.mostLabel));
        most->setMinimumWidth(endLabels_.most);
        line->addWidget(most);
    }
    grid_->addLayout(line, row_++, controls);
    for (QWidget* each : {static_cast<QWidget*>(control), static_cast<QWidget*>(label)})
        each->setToolTip(plainText(slider.tooltip));
    describe(control, slider.label, slider.tooltip);
    bind(slider, control, label);
}

void PaneForm::bind(const Slider& slider, QSlider* control, QLabel* label) {
    const SliderPlaces places(slider);
    control->setRange(0, places.most());
    control->setSingleStep(slider.step ? 1 : places.most() / kKeySteps);
    control->setPageStep(slider.step ? 2 : places.most() / kPageSteps);
    control->setFocusPolicy(Qt::StrongFocus);
    control->installEventFilter(new WheelGuard(control));
    connect(control, &QSlider::valueChanged, this, [this, places, key = slider.setting.key](int place) {
        if (!isRefreshing_) write(key, places.valueAt(place));
    });
    refreshers_.emplace_back([this, slider, places, control, label] {
        // A hand that holds it decides where it stands.
        if (!control->isSliderDown())
            control->setValue(places.placeOf(Setting<double>(services_.defaults, slider.setting).value()));
        const bool shows = !slider.shownFor || holds(*slider.shownFor, tabs_, services_.defaults);
        const bool isEnabled = !slider.disabledFor || !holds(*slider.disabledFor, tabs_, services_.defaults);
        for (QWidget* each : {static_cast<QWidget*>(control), static_cast<QWidget*>(label)}) {
            each->setVisible(shows);
            each->setEnabled(isEnabled);
        }
    });
}

void PaneForm::add(const Recorder& recorder) {
    // The one name that there is, with its default: without it, a shortcut that is cleared comes back.
    assert(recorder.shortcutName == toggleWith.rawValue);
    auto* field = new RecorderField(services_.recorder, toggleWith, this);
    field->setAccessibleName(withoutColon(recorder.label));
    // The style's own is a picture of sixteen pixels.
    for (QAction* clear : field->actions())
        clear->setIcon(symbolIcon("xmark.circle.fill", look_.pixels(16), look_.grey()));
    addLabel(recorder.label, field);
    grid_->addWidget(field, row_++, controls, Qt::AlignLeft);
}

}  // namespace tarvix
