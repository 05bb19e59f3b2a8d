// The settings, opened with what the desktop opens files with.
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "qt/QtApplication.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

// The desktop's opener is a script that notes what it is given.
class QtApplicationTest : public QtTest {
protected:
    QtApplicationTest() {
        QFile opener(folder.filePath("xdg-open"));
        EXPECT_TRUE(opener.open(QIODevice::WriteOnly));
        // Renamed at the end, so that whoever sees the note sees the whole of it.
        opener.write(
            "#!/bin/sh\nprintf '%s|%s|%s' \"$#\" \"$1\" \"$WHO\" >\"$NOTE.part\" && mv \"$NOTE.part\" \"$NOTE\"\n");
        opener.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        opener.close();
        environment.insert("NOTE", note);
        environment.insert("WHO", "started");
        qputenv("PATH", folder.path().toUtf8() + ':' + path);
    }
    ~QtApplicationTest() override { qputenv("PATH", path); }

    static QString contentOf(const QString& file) {
        QFile opened(file);
        return opened.open(QIODevice::ReadOnly) ? QString(opened.readAll()) : QString();
    }

    QTemporaryDir folder;
    const QByteArray path = qgetenv("PATH");
    const QString note = folder.filePath("note"), settings = folder.filePath("folder/tarvix.json");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
};

TEST_F(QtApplicationTest, TheSettingsFileIsOpenedInTheGivenEnvironment) {
    ASSERT_TRUE(QDir(folder.path()).mkpath("folder"));
    QFile file(settings);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("{\"inputTextSize\": 20}");
    file.close();
    QtApplication(settings, environment).showSettingsWindow();
    ASSERT_TRUE(runUntil([&] { return QFile::exists(note); }));
    EXPECT_EQ(contentOf(note), "1|" + settings + "|started");
    EXPECT_EQ(contentOf(settings), "{\"inputTextSize\": 20}") << "as it was";
}

TEST_F(QtApplicationTest, AFileThatIsNotThereIsMadeWithItsFolder) {
    QtApplication(settings, environment).showSettingsWindow();
    EXPECT_EQ(contentOf(settings), "{}\n");
    EXPECT_TRUE(runUntil([&] { return QFile::exists(note); }));
}

TEST_F(QtApplicationTest, WithoutAnOpenerALineTellsWhereTheFileIs) {
    qputenv("PATH", folder.filePath("nowhere").toUtf8());
    testing::internal::CaptureStderr();
    QtApplication(settings, environment).showSettingsWindow();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "tarvix: no xdg-open; the settings are in " + settings.toStdString() + "\n");
}

}  // namespace
}  // namespace tarvix
