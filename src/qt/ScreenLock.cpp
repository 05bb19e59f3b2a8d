#include "qt/ScreenLock.h"

#include <QDBusConnection>
#include <array>

#include "qt/SessionBus.h"

namespace tarvix {

namespace {

constexpr std::array kScreenSavers{"org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver", "org.cinnamon.ScreenSaver",
                                   "org.mate.ScreenSaver", "org.xfce.ScreenSaver"};

// As the login manager writes a session's id at the end of its object's path: "2" is "_32", "c1" stays.
QString pathName(const QString& session) {
    QString name;
    for (const QChar c : session) {
        const bool isLetter = c.isLetter() && c.unicode() < 128;
        const bool isPlain = isLetter || (c.isDigit() && !name.isEmpty());
        name += isPlain ? QString(c) : QString("_%1").arg(c.unicode(), 2, 16, QChar('0'));
    }
    return name;
}

}  // namespace

ScreenLock::ScreenLock() {
    if (haveSessionBus())
        for (const char* screenSaver : kScreenSavers)
            QDBusConnection::sessionBus().connect({}, {}, screenSaver, "ActiveChanged", this,
                                                  SLOT(activeChanged(bool)));
    QDBusConnection::systemBus().connect({}, {}, "org.freedesktop.login1.Session", "Lock", this,
                                         SLOT(sessionIsLocked(QDBusMessage)));
}

void ScreenLock::activeChanged(bool isActive) {
    if (isActive) locked_();
}

// Other people's sessions are locked too.
void ScreenLock::sessionIsLocked(const QDBusMessage& signal) {
    const QString own = qEnvironmentVariable("XDG_SESSION_ID");
    if (own.isEmpty() || signal.path().section('/', -1) == pathName(own)) locked_();
}

}  // namespace tarvix
