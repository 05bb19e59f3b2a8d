#include "qt/QtApplication.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <cstdio>

namespace tarvix {

namespace {

void makeIfMissing(const QString& path) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) file.write("{}\n");
}

}  // namespace

// The desktop's own opener instead of Qt's service, which would hand this program's environment on.
void QtApplication::showSettingsWindow() {
    makeIfMissing(settingsPath_);
    QProcess opener;
    opener.setProgram("xdg-open");
    opener.setArguments({settingsPath_});
    opener.setProcessEnvironment(environment_);
    opener.setStandardOutputFile(QProcess::nullDevice());
    opener.setStandardErrorFile(QProcess::nullDevice());
    if (!opener.startDetached())
        std::fprintf(stderr, "tarvix: no xdg-open; the settings are in %s\n", qUtf8Printable(settingsPath_));
}

void QtApplication::terminate() { QCoreApplication::quit(); }

bool QtApplication::openUrl(const std::string&) { return false; }

}  // namespace tarvix
