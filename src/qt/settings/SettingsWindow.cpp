#include "qt/settings/SettingsWindow.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QStackedWidget>
#include <QToolTip>
#include <QVBoxLayout>
#include <algorithm>

#include "shell/preferences/SettingsView.h"

namespace tarvix {

namespace {

constexpr double kAboveTabs = 8, kBelowTabs = 8;  // in points
constexpr double kTitleBar = 34;                  // what a window manager may add

struct TabKeys {
    const char* keys;
    int by;
};
constexpr TabKeys kTabKeys[] = {{"Ctrl+Tab", 1}, {"Ctrl+PgDown", 1}, {"Ctrl+Shift+Tab", -1}, {"Ctrl+PgUp", -1}};

}  // namespace

SettingsWindow::SettingsWindow(const SettingsWindowServices& services)
    : services_(services),
      tabs_(settingsView()),
      look_(services.appearance.values()),
      content_(std::make_unique<QWidget>(this)),
      band_(new QWidget),
      row_(new TabRow(tabs_)),
      line_(new QFrame),
      stack_(new QStackedWidget) {
    setObjectName("Settings");
    setWindowTitle("Settings");
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(content_.get());
    auto* column = new QVBoxLayout(content_.get());
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    band_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    auto* band = new QHBoxLayout(band_);
    band->addWidget(row_, 0, Qt::AlignHCenter);
    column->addWidget(band_);
    column->addWidget(line_);
    column->addWidget(stack_, 1);
    for (const TabKeys& each : kTabKeys)
        connect(new QShortcut(QKeySequence(each.keys), this), &QShortcut::activated, this,
                [this, by = each.by] { turnTab(by); });
    connect(row_, &QTabBar::currentChanged, this, [this](int index) { choosePane(index); });
    storeChanged_ = services.defaults.onChange([this](std::string_view) { storeChanged(); });
    appearanceChanged_ = services.appearance.onChange([this] {
        if (isVisible()) makePanes();
    });
}

SettingsWindow::~SettingsWindow() = default;

void SettingsWindow::adoptLook() {
    look_ = SettingsLook(services_.appearance.values());
    style_.setScale(look_.scale());
    setFont(look_.font());
    setPalette(look_.palette());
    QToolTip::setPalette(look_.palette());
    QToolTip::setFont(look_.smallFont());
    row_->setLook(look_);
    band_->layout()->setContentsMargins(0, look_.pixels(kAboveTabs), 0, look_.pixels(kBelowTabs));
    look_.drawAsLine(*line_);
}

void SettingsWindow::makePanes() {
    adoptLook();
    while (QWidget* old = stack_->widget(0)) delete old;
    panes_.clear();
    for (const Tab& tab : tabs_) {
        auto* pane = new PaneForm(tab.pane, tabs_, services_, look_, style_);
        pane->onLayout = [this] { fit(); };
        auto* scroller = new QScrollArea;
        scroller->setFrameShape(QFrame::NoFrame);
        scroller->setMinimumHeight(1);  // a pane may be lower than two scroll buttons
        for (QScrollBar* bar : {scroller->verticalScrollBar(), scroller->horizontalScrollBar()}) bar->setStyle(&style_);
        scroller->setWidgetResizable(true);
        scroller->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        scroller->setFocusPolicy(Qt::NoFocus);
        scroller->setAccessibleName(row_->tabText(static_cast<int>(panes_.size())));
        scroller->setWidget(pane);
        panes_.push_back(pane);
        stack_->addWidget(scroller);
    }
    choosePane(row_->currentIndex());
}

void SettingsWindow::storeChanged() {
    if (!isVisible()) return;
    for (PaneForm* pane : panes_) pane->refresh();
}

void SettingsWindow::turnTab(int by) {
    row_->setCurrentIndex((row_->currentIndex() + by + row_->count()) % row_->count());
}

void SettingsWindow::choosePane(int index) {
    if (panes_.empty()) return;
    stack_->setCurrentIndex(index);
    fit();
}

int SettingsWindow::heightWith(const PaneForm& pane, int width) const {
    return band_->sizeHint().height() + line_->height() + pane.idealHeight(width);
}

// All panes are of one width, and each has the height of its own.
void SettingsWindow::fit() {
    if (panes_.empty()) return;
    int width = 0;
    for (const PaneForm* pane : panes_) width = std::max(width, pane->idealWidth());
    const int wanted = heightWith(*panes_[static_cast<std::size_t>(row_->currentIndex())], width);
    const QRect available = screen()->availableGeometry();
    const int most = available.height() - look_.pixels(kTitleBar);
    const int bar = wanted > most ? style_.pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this) : 0;
    setFixedSize(width + bar, std::min(wanted, most));
    const int below = frameGeometry().bottom() - available.bottom();
    if (isVisible() && below > 0) move(pos() - QPoint(0, below));
}

// The highest of the panes is in the middle, so that the tabs stay where they are.
void SettingsWindow::centre() {
    const QRect available = screen()->availableGeometry();
    int highest = 0;
    for (const PaneForm* pane : panes_) highest = std::max(highest, heightWith(*pane, width()));
    move(available.center().x() - width() / 2,
         std::max(available.top(), available.center().y() - (highest + look_.pixels(kTitleBar)) / 2));
}

// What was changed while it was hidden shows, and the keyboard stands at the tabs: a recorder that got it would record.
void SettingsWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (event->spontaneous()) return;
    makePanes();
    if (!hasBeenShown_) centre();
    hasBeenShown_ = true;
    row_->setFocus();
}

void SettingsWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier)
        close();
    else
        QWidget::keyPressEvent(event);
}

}  // namespace tarvix
