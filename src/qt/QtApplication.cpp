#include "qt/QtApplication.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUrl>

namespace tarvix {

void QtApplication::showSettings() {
    QDir().mkpath(QFileInfo(settingsPath_).path());
    QFile file(settingsPath_);
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) file.write("{}\n");
    file.close();
    QDesktopServices::openUrl(QUrl::fromLocalFile(settingsPath_));
}

}  // namespace tarvix
