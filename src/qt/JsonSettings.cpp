#include "qt/JsonSettings.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>
#include <utility>

namespace tarvix {

namespace {

// Renamed and not copied, so that the next reading doesn't find it again.
void setAside(QIODevice& device) {
    const auto* file = qobject_cast<QFile*>(&device);
    if (!file) return;
    const QString aside = file->fileName() + ".damaged";
    QFile::remove(aside);
    const bool moved = QFile::rename(file->fileName(), aside);
    std::fprintf(stderr, "tarvix: the settings in %s can't be read%s%s\n", qPrintable(file->fileName()),
                 moved ? "; they are set aside as " : "", moved ? qPrintable(aside) : "");
}

bool readJson(QIODevice& device, QSettings::SettingsMap& map) {
    const QJsonDocument document = QJsonDocument::fromJson(device.readAll());
    if (!document.isObject()) {
        setAside(device);
        return true;
    }
    map = document.object().toVariantMap();
    return true;
}

bool writeJson(QIODevice& device, const QSettings::SettingsMap& map) {
    QJsonObject object;
    for (const auto& [key, value] : map.toStdMap()) object.insert(key, QJsonValue::fromVariant(value));
    const QByteArray text = QJsonDocument(object).toJson();
    return device.write(text) == text.size();
}

}  // namespace

QSettings::Format jsonSettingsFormat() {
    static const QSettings::Format format = QSettings::registerFormat("json", readJson, writeJson, Qt::CaseSensitive);
    return format;
}

}  // namespace tarvix
