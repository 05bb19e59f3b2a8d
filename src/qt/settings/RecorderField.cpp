#include "qt/settings/RecorderField.h"

#include <QAction>
#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPushButton>
#include <QStyle>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "platform/Application.h"
#include "qt/ProgramIcon.h"

namespace tarvix {

namespace {

constexpr double kIconSize = 48;  // points
constexpr auto kWindowManagersTime = std::chrono::milliseconds(500);

struct ModifierRow {
    Qt::KeyboardModifier modifier;
    std::uint64_t flag;
};
constexpr auto kModifiers = std::to_array<ModifierRow>({
    {Qt::ControlModifier, eventFlag::control},
    {Qt::AltModifier, eventFlag::option},
    {Qt::ShiftModifier, eventFlag::shift},
    {Qt::MetaModifier, eventFlag::command},
});

std::uint64_t flagsOf(Qt::KeyboardModifiers modifiers) {
    std::uint64_t flags = 0;
    for (const ModifierRow& row : kModifiers)
        if (modifiers & row.modifier) flags |= row.flag;
    return flags;
}

// A modifier or a lock alone is no key press.
bool isModifier(int key) {
    return (key >= Qt::Key_Shift && key <= Qt::Key_ScrollLock) || (key >= Qt::Key_Super_L && key <= Qt::Key_Hyper_R) ||
           key == Qt::Key_AltGr || key == Qt::Key_Mode_switch;
}

std::optional<SpecialKey> specialKeyOf(int key) {
    if (key >= Qt::Key_F1 && key <= Qt::Key_F35) return SpecialKey::function;
    switch (key) {
        case Qt::Key_Tab:
            return SpecialKey::tab;
        case Qt::Key_Backspace:
            return SpecialKey::delete_;
        case Qt::Key_Delete:
            return SpecialKey::deleteForward;
        default:
            return std::nullopt;
    }
}

QString qt(const std::string& text) { return QString::fromStdString(text); }

}  // namespace

RecorderField::RecorderField(const RecorderServices& services, const ShortcutName& name, QWidget* parent)
    : QLineEdit(parent),
      services_(services),
      cancelButton_(addAction(style()->standardIcon(QStyle::SP_LineEditClearButton), TrailingPosition)) {
    setReadOnly(true);  // no caret, no input method: keys are recorded, not typed
    setAlignment(Qt::AlignCenter);
    setCursor(Qt::ArrowCursor);
    setContextMenuPolicy(Qt::PreventContextMenu);
    cancelButton_->setText("Clear");
    connect(cancelButton_, &QAction::triggered, this, [this] { clickCancelButton(); });
    const RecorderParts parts{services_.shortcuts, services_.inputSources, services_.runLoop,
                              [&application = services_.application] { return application.mainMenu(); },
                              preferredLanguage(LocaleEnvironment::ofThisProcess())};
    language_ = parts.language;
    recorder_ = std::make_unique<RecorderCocoa>(static_cast<RecorderControl&>(*this), parts, name);
}

RecorderField::~RecorderField() = default;

QSize RecorderField::sizeHint() const {
    QSize size = QLineEdit::sizeHint();
    int widest = fontMetrics().horizontalAdvance(text());
    for (const std::string_view key : {recorderKey::recordShortcut, recorderKey::pressShortcut})
        widest = std::max(widest, fontMetrics().horizontalAdvance(qt(recorderString(key, language_))));
    // The cancel button and as much again at the other side, for the text stands in the middle.
    const int besides = 2 * (size.height() + style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, this));
    size.setWidth(std::max(pixels(RecorderCocoa::minimumWidth), widest + besides));
    return size;
}

double RecorderField::pixelsOfAPoint() const {
    constexpr double pointsOfText = 13;
    return fontInfo().pixelSize() / pointsOfText;
}

int RecorderField::pixels(double points) const { return static_cast<int>(points * pixelsOfAPoint()); }

ControlPoint RecorderField::inPoints(QPointF at) const {
    return {at.x() / pixelsOfAPoint(), at.y() / pixelsOfAPoint()};
}

// What the field shows ------------------------------------------------------------------------------------------------

void RecorderField::setText(const std::string& text, const std::string& spoken) {
    QLineEdit::setText(qt(text));
    setAccessibleDescription(qt(spoken));
    setToolTip(qt(spoken));
    if (recorder_ && isRecording()) selectAll();
    updateGeometry();
}

void RecorderField::setPlaceholder(const std::string& text) { setPlaceholderText(qt(text)); }

// The text stays in the middle: what the button takes at one side is left free at the other.
void RecorderField::showCancelButton(bool isShown) {
    cancelButton_->setVisible(isShown);
    constexpr int aroundIcon = 6;
    const int taken = style()->pixelMetric(QStyle::PM_LineEditIconSize, nullptr, this) + aroundIcon +
                      style()->pixelMetric(QStyle::PM_LineEditIconMargin, nullptr, this);
    setTextMargins(isShown ? taken : 0, 0, 0, 0);
}

void RecorderField::clickCancelButton() {
    setText("", "");
    recorder_->controlTextDidChange();
}

ControlRect RecorderField::bounds() const {
    const ControlPoint end = inPoints(QPointF(width(), height()));
    return {{0, 0}, {end.x, end.y}};
}

void RecorderField::beep() { QApplication::beep(); }

// A sheet blocks its own window and no other, and nothing waits for it: no loop runs within a key press.
void RecorderField::runAlert(const RecorderAlert& alert, std::function<void(int)> answered) {
    auto* box = new QMessageBox(window());
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::WindowModal);
    box->setWindowTitle(QGuiApplication::applicationDisplayName());
    box->setFont(window()->font());
    box->setPalette(window()->palette());
    box->setIconPixmap(programIcon(pixels(kIconSize)));
    box->setTextFormat(Qt::PlainText);
    box->setText(qt(alert.title));
    box->setInformativeText(qt(alert.informativeText));
    if (auto* title = box->findChild<QLabel*>("qt_msgbox_label")) {
        QFont bold = title->font();
        bold.setBold(true);
        title->setFont(bold);
    }
    std::vector<QAbstractButton*> buttons;
    for (const std::string& text : alert.buttons)
        buttons.push_back(
            box->addButton(qt(text), buttons.empty() ? QMessageBox::AcceptRole : QMessageBox::ActionRole));
    box->setDefaultButton(qobject_cast<QPushButton*>(buttons.front()));
    box->setEscapeButton(buttons.front());
    connect(box, &QMessageBox::finished, this, [box, buttons, answered = std::move(answered)] {
        const auto found = std::ranges::find(buttons, box->clickedButton());
        const auto place = found == buttons.end() ? 0 : found - buttons.begin();
        answered(alertResponse::first + static_cast<int>(place));
    });
    box->open();
}

// The keyboard --------------------------------------------------------------------------------------------------------

void RecorderField::makeFirstResponder(FirstResponder responder) {
    if (responder == FirstResponder::none) {
        clearFocus();
        endEditing();  // a window without the keyboard has no focus to lose
    } else if (hasFocus()) {
        startRecording();
    } else if (isVisible()) {
        isAwaited_ = true;
        setFocus(Qt::OtherFocusReason);
        // A window manager gives the window the keyboard back by itself, and loses keys when it is asked to besides.
        QTimer::singleShot(kWindowManagersTime, this, [this] {
            if (isAwaited_) activateWindow();
        });
    }
}

void RecorderField::startRecording() {
    if (isRecording()) return;
    isAwaited_ = false;
    recorder_->becomeFirstResponder();
    selectAll();
}

void RecorderField::endEditing() {
    isAwaited_ = false;
    if (!isRecording()) return;
    deselect();
    recorder_->controlTextDidEndEditing();
}

// A window that comes to the front gives its first control the keyboard; nobody has asked for a recording then.
void RecorderField::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    if (movesOn_) return;
    if (event->reason() == Qt::ActiveWindowFocusReason && !isAwaited_)
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (!isRecording()) clearFocus();
            },
            Qt::QueuedConnection);
    else
        startRecording();
}

void RecorderField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    endEditing();
}

bool RecorderField::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate && isRecording()) recorder_->windowDidResignKey();
    return QLineEdit::event(event);
}

void RecorderField::hideEvent(QHideEvent* event) {
    QLineEdit::hideEvent(event);
    clearFocus();
    endEditing();
    recorder_->viewDidMoveToWindow(false);
}

// The press that focuses the field has started the recording already.
void RecorderField::mousePressEvent(QMouseEvent*) {
    if (hasFocus()) startRecording();
}

// Events before their window sees them --------------------------------------------------------------------------------

Subscription RecorderField::addLocalMonitor(LocalEventMask events, Seen seen) {
    monitor_ = std::make_shared<Monitor>(Monitor{events, std::move(seen)});
    qApp->installEventFilter(this);
    return Subscription([this, mine = std::weak_ptr(monitor_)] {
        if (mine.lock() != monitor_) return;
        monitor_.reset();
        qApp->removeEventFilter(this);
    });
}

Verdict RecorderField::tell(const LocalEvent& event) {
    const auto monitor = monitor_;  // it may be dropped meanwhile
    if (!monitor || !(monitor->events & maskOf(event.type))) return Verdict::pass;
    return monitor->seen(event);
}

// Keys are caught at the window and not at a control of it: the window's shortcuts come before its controls.
bool RecorderField::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::ShortcutOverride:
            if (watched != window()->windowHandle()) return false;
            event->accept();
            return true;
        case QEvent::KeyPress:
            return watched == window()->windowHandle() && filterKey(static_cast<const QKeyEvent&>(*event));
        case QEvent::MouseButtonRelease:
            // The cancel button follows its clicks itself.
            return watched->isWidgetType() && !isAncestorOf(static_cast<QWidget*>(watched)) &&
                   filterMouseUp(static_cast<const QMouseEvent&>(*event));
        default:
            return false;
    }
}

bool RecorderField::filterKey(const QKeyEvent& event) {
    if (isModifier(event.key())) return false;
    if (event.isAutoRepeat()) return true;
    LocalEvent told;
    told.keyCode = services_.keyCodeOf(event.nativeScanCode());
    told.modifierFlags = flagsOf(event.modifiers());
    told.specialKey = specialKeyOf(event.key());
    if (tell(told) == Verdict::consume) return true;
    // The focus moves from here, although the field has given it up.
    movesOn_ = true;
    setFocus(Qt::OtherFocusReason);
    movesOn_ = false;
    return false;
}

bool RecorderField::filterMouseUp(const QMouseEvent& event) {
    LocalEvent told;
    if (event.button() == Qt::LeftButton)
        told.type = LocalEventType::leftMouseUp;
    else if (event.button() == Qt::RightButton)
        told.type = LocalEventType::rightMouseUp;
    else
        return false;
    told.location = inPoints(mapFromGlobal(event.globalPosition()));
    return tell(told) == Verdict::consume;
}

}  // namespace tarvix
