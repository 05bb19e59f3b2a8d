#include "qt/QtApplication.h"

#include <QApplication>
#include <QProcess>
#include <QShortcut>
#include <QUrl>
#include <cstdio>

#include "qt/FrontWindow.h"

namespace tarvix {

namespace {

// What a text field and the like call their ways to edit.
std::function<void()> edit(const char* way) {
    return [way] {
        QWidget* focused = QApplication::focusWidget();
        if (focused && focused->metaObject()->indexOfMethod(QByteArray(way) + "()") >= 0)
            QMetaObject::invokeMethod(focused, way);
    };
}

void closeKeyWindow() {
    if (QWidget* window = QApplication::activeWindow()) window->close();
}

// Command is Super; a Linux user expects Ctrl besides, which text fields heed by themselves.
void bindKeys(QWidget& window, const Menu& menu) {
    for (const MenuItem& item : menu) {
        bindKeys(window, item.submenu);
        if (item.keyEquivalent.empty() || !item.action) continue;
        const QString key = QString::fromStdString(item.keyEquivalent).toUpper();
        for (const char* modifier : {"Meta+", "Ctrl+"}) {
            auto* shortcut = new QShortcut(QKeySequence(modifier + key), &window);
            QObject::connect(shortcut, &QShortcut::activated, &window, item.action);
        }
    }
}

}  // namespace

QtApplication::QtApplication(QProcessEnvironment environment) : environment_(std::move(environment)) {}

QtApplication::~QtApplication() = default;

void QtApplication::onLastWindowClosed(std::function<void()> closed) {
    QObject::connect(qApp, &QGuiApplication::lastWindowClosed, notices_.get(), std::move(closed));
}

void QtApplication::showSettingsWindow() {
    if (!settings_) {
        settings_ = makeSettings_();
        bindKeys(*settings_, mainMenu());
    }
    settings_->show();
    makeActive(*settings_);
}

void QtApplication::activate() {
    if (QWidget* window = frontWindow()) makeActive(*window);
}

void QtApplication::hide() {
    for (QWidget* window : ordinaryWindows()) window->hide();
}

bool QtApplication::hasKeyWindow() {
    QWidget* active = QApplication::activeWindow();
    return active && ordinaryWindows().contains(active);
}

// Not quit(), which the splash panel would refuse as it refuses to be closed; later, as the loop may not run yet.
void QtApplication::terminate() {
    QMetaObject::invokeMethod(
        qApp, [] { QCoreApplication::exit(); }, Qt::QueuedConnection);
}

// By the desktop's own opener instead of Qt's service, which would hand this program's environment on.
bool QtApplication::openUrl(const std::string& url) {
    const QUrl address(QString::fromStdString(url), QUrl::StrictMode);
    if (!address.isValid() || address.isRelative()) return false;
    QProcess opener;
    opener.setProgram("xdg-open");
    opener.setArguments({address.toString(QUrl::FullyEncoded)});
    opener.setProcessEnvironment(environment_);
    opener.setStandardOutputFile(QProcess::nullDevice());
    opener.setStandardErrorFile(QProcess::nullDevice());
    if (!opener.startDetached())
        std::fprintf(stderr, "tarvix: no xdg-open to open %s with\n", qUtf8Printable(address.toString()));
    return true;
}

Menu QtApplication::mainMenu() {
    MenuItem tarvix{.title = "Tarvix", .keyEquivalent = ""};
    tarvix.submenu = {{.title = "Settings...", .keyEquivalent = ",", .action = [this] { showSettingsWindow(); }},
                      {.title = "Quit Tarvix", .keyEquivalent = "q", .action = [this] { terminate(); }}};
    MenuItem file{.title = "File", .keyEquivalent = ""};
    file.submenu = {{.title = "Close", .keyEquivalent = "w", .action = closeKeyWindow}};
    MenuItem editing{.title = "Edit", .keyEquivalent = ""};
    editing.submenu = {{.title = "Cut", .keyEquivalent = "x", .action = edit("cut")},
                       {.title = "Copy", .keyEquivalent = "c", .action = edit("copy")},
                       {.title = "Paste", .keyEquivalent = "v", .action = edit("paste")},
                       {.title = "Select All", .keyEquivalent = "a", .action = edit("selectAll")}};
    return {tarvix, file, editing};
}

}  // namespace tarvix
