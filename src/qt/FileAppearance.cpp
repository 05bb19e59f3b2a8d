#include "qt/FileAppearance.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <utility>

namespace tarvix {

namespace {

constexpr qint64 kLongest = 1024 * 1024;

std::optional<QByteArray> textOf(const QString& path) {
    const QFileInfo about(path);
    if (!about.isFile() || about.size() > kLongest) return std::nullopt;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    return file.read(kLongest);
}

}  // namespace

FileAppearance::FileAppearance(const QString& path, Reader reader) : path_(path), reader_(std::move(reader)) {
    QObject::connect(&watcher_, &QFileSystemWatcher::fileChanged, &watcher_, [this] { refresh(); });
    QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &watcher_, [this] { refresh(); });
    refresh();
}

void FileAppearance::refresh() {
    watch();  // before it is read, so that no change is missed
    auto text = textOf(path_);
    if (text == text_) return;
    text_ = std::move(text);
    const AppearanceTold told =
        text_ ? reader_({text_->constData(), static_cast<std::size_t>(text_->size())}) : AppearanceTold();
    if (told == told_) return;
    told_ = told;
    changed_();
}

// The file itself, for those who write into it; the folder, for those who replace it; and of what isn't there yet the
// nearest folder that is.
void FileAppearance::watch() {
    QFileInfo nearest(path_);
    if (nearest.exists()) watcher_.addPath(path_);
    do {
        nearest.setFile(nearest.absolutePath());
    } while (!nearest.exists() && !nearest.isRoot());
    const QString folder = nearest.absoluteFilePath();
    const QStringList watched = watcher_.directories();
    if (watched.contains(folder)) return;
    if (!watched.isEmpty()) watcher_.removePaths(watched);
    watcher_.addPath(folder);
}

}  // namespace tarvix
