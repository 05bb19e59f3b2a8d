#include "tests/qt/updates/Release.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <stdexcept>

namespace tarvix {

namespace {

void write(const QString& path, const QByteArray& content) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        throw std::runtime_error(path.toStdString());
}

}  // namespace

QByteArray package(const QString& name, const QString& version, int size) {
    const QTemporaryDir folder;
    const QDir root(folder.filePath("root"));
    root.mkpath("DEBIAN");
    write(root.filePath("DEBIAN/control"), "Package: " + name.toUtf8() + "\nVersion: " + version.toUtf8() +
                                               "\nArchitecture: all\nMaintainer: A test <test@example.org>\n"
                                               "Description: an update\n");
    write(root.filePath("content"), QByteArray(size, 'x'));
    QProcess tool;
    tool.start("dpkg-deb", {"--root-owner-group", "-Znone", "--build", root.path(), folder.filePath("file")});
    QFile file(folder.filePath("file"));
    if (!tool.waitForFinished() || tool.exitCode() != 0 || !file.open(QIODevice::ReadOnly))
        throw std::runtime_error("dpkg-deb: " + tool.readAllStandardError().toStdString());
    return file.readAll();
}

QByteArray feedOf(const OfferedRelease& release) {
    return R"(<rss version="2.0" xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle"><channel><item>
        <sparkle:version>)" +
           release.version + R"(</sparkle:version><description>Everything is faster.</description>
        <enclosure sparkle:os="linux" url=")" +
           release.address + "\" type=\"" + release.type + "\" length=\"" + QByteArray::number(release.length) +
           "\" sparkle:edSignature=\"" + release.signature + "\"/></item></channel></rss>";
}

}  // namespace tarvix
