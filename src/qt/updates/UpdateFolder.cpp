#include "qt/updates/UpdateFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include "updates/UpdateTransfer.h"

namespace tarvix {

namespace {

constexpr int kToolTime = 20000;  // milliseconds

bool isOurs(const struct stat& status, mode_t kind, mode_t forbidden) {
    return (status.st_mode & S_IFMT) == kind && status.st_uid == geteuid() && (status.st_mode & forbidden) == 0;
}

bool isPrivateFolder(const QString& folder) {
    struct stat status {};
    return lstat(QFile::encodeName(folder).constData(), &status) == 0 && isOurs(status, S_IFDIR, S_IRWXG | S_IRWXO);
}

}  // namespace

// A link instead of the folder is taken away itself: what it leads to isn't ours to empty.
void removeUpdateFolder(const QString& folder) {
    if (QFileInfo(folder).isSymLink() || QFileInfo(folder).isFile())
        QFile::remove(folder);
    else
        QDir(folder).removeRecursively();
}

bool makeUpdateFolder(const QString& folder) {
    removeUpdateFolder(folder);
    return QDir().mkpath(QFileInfo(folder).path()) && mkdir(QFile::encodeName(folder).constData(), S_IRWXU) == 0 &&
           isPrivateFolder(folder);
}

std::optional<UpdateRefusal> refuseStoredFile(const QString& path, const AvailableUpdate& update,
                                              const UpdateKey& key) {
    if (!isPrivateFolder(QFileInfo(path).path())) return UpdateRefusal::cannotStore;
    QFile file;
    const int descriptor = open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    struct stat status {};
    if (descriptor < 0 || !file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle) ||
        fstat(descriptor, &status) != 0 || !isOurs(status, S_IFREG, S_IWGRP | S_IWOTH))
        return UpdateRefusal::cannotStore;
    const auto length = static_cast<std::uint64_t>(status.st_size);
    if (const auto refusal = refuseEnd(update.length, length)) return refusal;
    const uchar* const bytes = file.map(0, status.st_size);
    if (bytes == nullptr) return UpdateRefusal::cannotStore;
    return isSignedBy(key, update.signature, {bytes, length}) ? std::nullopt
                                                              : std::optional(UpdateRefusal::wrongSignature);
}

std::variant<PackageFields, UpdateRefusal> readPackage(const QString& path, const QProcessEnvironment& environment) {
    QProcess tool;
    tool.setProcessEnvironment(environment);
    tool.setStandardErrorFile(QProcess::nullDevice());
    tool.start("dpkg-deb", {"--field", path, "Package", "Version"});
    if (!tool.waitForStarted(kToolTime)) return UpdateRefusal::cannotInstall;
    const bool hasEnded = tool.waitForFinished(kToolTime);
    if (!hasEnded || tool.exitStatus() != QProcess::NormalExit || tool.exitCode() != 0) return UpdateRefusal::otherFile;
    const auto fields = packageFieldsFrom(tool.readAllStandardOutput().toStdString());
    if (!fields) return UpdateRefusal::otherFile;
    return *fields;
}

}  // namespace tarvix
