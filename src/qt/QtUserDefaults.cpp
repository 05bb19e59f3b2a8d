#include "qt/QtUserDefaults.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <cstdio>
#include <set>

#include "qt/JsonSettings.h"

namespace tarvix {

namespace {

QString toQString(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

QVariant toVariant(const UserDefaults::Value& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return toQString(*text);
    if (const auto* number = std::get_if<double>(&value)) return *number;
    return std::get<bool>(value);
}

// Numbers without a fraction come from the file as integers.
std::optional<UserDefaults::Value> fromVariant(const QVariant& variant) {
    switch (variant.typeId()) {
        case QMetaType::Bool:
            return variant.toBool();
        case QMetaType::Double:
        case QMetaType::LongLong:
        case QMetaType::Int:
            return variant.toDouble();
        case QMetaType::QString:
            return variant.toString().toStdString();
        default:
            return std::nullopt;
    }
}

}  // namespace

QString QtUserDefaults::standardPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/tarvix/tarvix.json";
}

QtUserDefaults::QtUserDefaults(const QString& path) : settings_(path, jsonSettingsFormat()) {
    // The folder is watched for replacements of the file, the file for writing in place.
    QDir().mkpath(QFileInfo(path).absolutePath());
    QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &watcher_, [this] { refresh(); });
    QObject::connect(&watcher_, &QFileSystemWatcher::fileChanged, &watcher_, [this] { refresh(); });
    refresh();
}

std::optional<UserDefaults::Value> QtUserDefaults::get(std::string_view key) const {
    const std::lock_guard lock(mutex_);
    const auto found = values_.find(key);
    if (found == values_.end()) return std::nullopt;
    return found->second;
}

void QtUserDefaults::set(std::string_view key, Value value) {
    settings_.setValue(toQString(key), toVariant(value));
    write();
}

void QtUserDefaults::remove(std::string_view key) {
    settings_.remove(toQString(key));
    write();
}

Subscription QtUserDefaults::onChange(std::function<void(std::string_view)> changed) {
    return changed_.add(std::move(changed));
}

void QtUserDefaults::write() {
    settings_.sync();
    if (settings_.status() == QSettings::AccessError)
        std::fprintf(stderr, "tarvix: the settings can't be written to %s\n", qPrintable(settings_.fileName()));
    refresh();
}

void QtUserDefaults::refresh() {
    settings_.sync();
    watch();
    Values now;
    for (const QString& key : settings_.allKeys())
        if (const auto value = fromVariant(settings_.value(key))) now.emplace(key.toStdString(), *value);

    std::set<std::string> different;
    {
        const std::lock_guard lock(mutex_);
        const auto compare = [&](const Values& a, const Values& b) {
            for (const auto& [key, value] : a)
                if (const auto other = b.find(key); other == b.end() || other->second != value) different.insert(key);
        };
        compare(values_, now);
        compare(now, values_);
        values_.swap(now);
    }
    for (const std::string& key : different) changed_(key);
}

// A file that was replaced is another file, and no longer watched.
void QtUserDefaults::watch() {
    const QString path = settings_.fileName();
    watcher_.addPath(QFileInfo(path).absolutePath());
    if (QFileInfo::exists(path)) watcher_.addPath(path);
}

}  // namespace tarvix
