#include "qt/updates/UpdateWindow.h"

#include <QApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <utility>

#include "qt/ProgramIcon.h"
#include "qt/settings/SettingsLook.h"

namespace tarvix {

namespace {

// In points.
constexpr double kIconSize = 64;
constexpr double kMargin = 20;
constexpr double kSpacing = 12;
constexpr double kWidth = 520;
constexpr double kNotesHeight = 140;
constexpr double kButtonPadding = 12;

constexpr int kProgressSteps = 1000;
constexpr const char* kHeadingName = "heading";
constexpr const char* kIconName = "icon";

QLabel* plainLabel(const QString& text) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);  // a feed's words are only words
    label->setWordWrap(true);
    return label;
}

QPushButton* addButton(QBoxLayout* row, const QString& title, const std::function<void()>& pressed) {
    auto* button = new QPushButton(title);
    button->setAccessibleName(title);
    button->setAutoDefault(true);  // Return presses the one that has the focus
    QObject::connect(button, &QPushButton::clicked, pressed);
    row->addWidget(button);
    return button;
}

}  // namespace

class UpdateWindow::Dialog : public QDialog {
public:
    std::function<void()> onClosed;

    // Escape and the window manager's close button.
    void reject() override {
        if (const auto closed = onClosed) closed();
    }
};

UpdateWindow::UpdateWindow(Appearance& appearance)
    : appearance_(appearance), appearanceChanged_(appearance.onChange([this] { dress(); })) {}

UpdateWindow::~UpdateWindow() = default;

void UpdateWindow::showUpdate(const AvailableUpdate& update, const std::string& programVersion, Manner manner,
                              std::function<void(Answer)> answered) {
    const auto answer = [this, answered = std::move(answered)](Answer given) {
        return [this, answered, given] { settle([answered, given] { answered(given); }); };
    };
    QBoxLayout* column = begin("A new version of Tarvix is available!", answer(Answer::later));
    column->addWidget(
        plainLabel(QString("Tarvix %1 is now available. You have %2. Would you like to install it now?")
                       .arg(QString::fromStdString(update.displayVersion), QString::fromStdString(programVersion))));
    if (!update.notes.empty()) {
        auto* notes = new QPlainTextEdit(QString::fromStdString(update.notes));
        notes->setReadOnly(true);
        notes->setTabChangesFocus(true);
        notes->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        notes->setAccessibleName("Release Notes");
        auto* title = plainLabel("Release Notes");
        title->setBuddy(notes);
        column->addWidget(title);
        column->addWidget(notes, 1);
    }
    auto* row = new QHBoxLayout;
    column->addLayout(row);
    addButton(row, "Skip This Version", answer(Answer::skip));
    row->addStretch();
    addButton(row, "Remind Me Later", answer(Answer::later));
    QPushButton* install = addButton(row, "Install Update", answer(Answer::install));
    finish(*install, manner);
}

void UpdateWindow::showProgress(const QString& what, std::function<void()> cancelled) {
    const auto cancel = [this, cancelled = std::move(cancelled)] { settle(cancelled); };
    QBoxLayout* column = begin(what, cancel);
    progress_ = new QProgressBar;
    progress_->setRange(0, 0);
    progress_->setTextVisible(false);
    progress_->setAccessibleName(what);
    column->addWidget(progress_);
    auto* row = new QHBoxLayout;
    column->addLayout(row);
    row->addStretch();
    finish(*addButton(row, "Cancel", cancel), Manner::asked);
}

void UpdateWindow::setProgress(double part) {
    if (progress_ == nullptr) return;
    progress_->setRange(0, kProgressSteps);
    progress_->setValue(static_cast<int>(std::lround(part * kProgressSteps)));
}

void UpdateWindow::showMessage(const QString& heading, const QString& text, std::function<void()> closed) {
    const auto close = [this, closed = std::move(closed)] { settle(closed); };
    QBoxLayout* column = begin(heading, close);
    column->addWidget(plainLabel(text));
    auto* row = new QHBoxLayout;
    column->addLayout(row);
    row->addStretch();
    finish(*addButton(row, "OK", close), Manner::asked);
}

void UpdateWindow::bringToFront() {
    if (!dialog_) return;
    dialog_->show();
    dialog_->raise();
    dialog_->activateWindow();
}

void UpdateWindow::close() {
    progress_ = nullptr;
    // Not at once: it may be in the middle of telling of a click.
    if (Dialog* const gone = dialog_.release()) {
        gone->onClosed = nullptr;
        gone->setEnabled(false);  // clicks that wait are too late
        gone->hide();
        gone->deleteLater();
    }
}

// A content takes the window of the one before it, at its place.
QBoxLayout* UpdateWindow::begin(const QString& heading, std::function<void()> closed) {
    progress_ = nullptr;
    ++contents_;
    if (!dialog_) {
        dialog_ = std::make_unique<Dialog>();
        dialog_->setObjectName("Updates");
        dialog_->setWindowTitle("Software Update");
        dialog_->setLayout(new QVBoxLayout);
        dialog_->layout()->setContentsMargins(0, 0, 0, 0);
    }
    dialog_->onClosed = std::move(closed);
    while (QLayoutItem* const before = dialog_->layout()->takeAt(0)) {
        before->widget()->hide();
        before->widget()->setEnabled(false);  // a second click on a button that is going does nothing
        before->widget()->deleteLater();
        delete before;
    }
    auto* content = new QWidget;
    dialog_->layout()->addWidget(content);
    auto* row = new QHBoxLayout(content);
    auto* icon = new QLabel;
    icon->setObjectName(kIconName);
    row->addWidget(icon, 0, Qt::AlignTop);
    auto* column = new QVBoxLayout;
    row->addLayout(column, 1);
    auto* title = plainLabel(heading);
    title->setObjectName(kHeadingName);
    column->addWidget(title);
    dialog_->setAccessibleName(heading);
    return column;
}

void UpdateWindow::finish(QPushButton& first, Manner manner) {
    dress();
    dialog_->setAttribute(Qt::WA_ShowWithoutActivating, manner == Manner::unasked);
    const bool isNew = !dialog_->isVisible();
    dialog_->show();
    dialog_->layout()->itemAt(0)->widget()->show();
    first.setDefault(true);
    first.setFocus();
    if (isNew && manner == Manner::asked) bringToFront();
}

// By value: the callback lives in the content that goes.
void UpdateWindow::settle(std::function<void()> callback) {
    const int present = contents_;
    dialog_->onClosed = nullptr;
    callback();
    if (contents_ == present) close();
}

void UpdateWindow::dress() {
    if (!dialog_) return;
    const SettingsLook look(appearance_.values());
    dialog_->setFont(look.font());
    dialog_->setPalette(look.palette());
    QWidget* const content = dialog_->layout()->itemAt(0)->widget();
    const int margin = look.pixels(kMargin);
    content->layout()->setContentsMargins(margin, margin, margin, margin);
    content->findChild<QLabel*>(kIconName)->setPixmap(programIcon(look.pixels(kIconSize)));
    content->findChild<QLabel*>(kHeadingName)->setFont(look.headingFont());
    for (auto* lines : content->findChildren<QBoxLayout*>()) lines->setSpacing(look.pixels(kSpacing));
    content->layout()->setSpacing(margin);
    for (auto* notes : content->findChildren<QPlainTextEdit*>()) notes->setMinimumHeight(look.pixels(kNotesHeight));
    for (auto* button : content->findChildren<QPushButton*>())
        button->setMinimumSize(button->sizeHint() +
                               QSize(look.pixels(kButtonPadding), look.pixels(kButtonPadding / 2)));
    // By hand: a layout with texts of several lines has its right height for one width alone.
    const QSize room = dialog_->screen()->availableSize();
    const int width = std::min(look.pixels(kWidth), room.width());
    content->layout()->activate();
    dialog_->layout()->activate();
    dialog_->setMinimumWidth(width);
    dialog_->resize(width, std::min(content->layout()->totalHeightForWidth(width), room.height()));
}

}  // namespace tarvix
