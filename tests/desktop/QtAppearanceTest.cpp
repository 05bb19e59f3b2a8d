// What the desktop tells of its appearance, as it changes: the portal, files, Qt's palette.
#include <QDir>
#include <QFile>
#include <QPalette>
#include <QProcess>
#include <QTemporaryDir>

#include "qt/FileAppearance.h"
#include "qt/PaletteAppearance.h"
#include "qt/PortalAppearance.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

constexpr Color kRed{1, 0, 0, 1};

class QtAppearanceTest : public QtTest {
protected:
    static AppearanceTold darkIfItSaysSo(std::string_view text) {
        AppearanceTold told;
        if (!text.empty()) told.isDark = text == "dark";
        return told;
    }
    static void write(const QString& path, const QByteArray& text) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(text);
    }

    QTemporaryDir folder;
};

TEST_F(QtAppearanceTest, TheAccentOfThePaletteIsItsHighlight) {
    const QPalette before = QGuiApplication::palette();
    PaletteAppearance source;
    int changes = 0;
    const Subscription changed = source.onChange([&] { ++changes; });
    QPalette palette = before;
    palette.setColor(QPalette::Highlight, QColor(255, 0, 0));
    palette.setColor(QPalette::Window, QColor(30, 30, 30));
    palette.setColor(QPalette::WindowText, QColor(240, 240, 240));
    QGuiApplication::setPalette(palette);
    EXPECT_TRUE(runUntil([&] { return changes > 0; }));
    EXPECT_EQ(source.told(), (AppearanceTold{true, kRed, kRed}));
    QGuiApplication::setPalette(before);
}

TEST_F(QtAppearanceTest, AFileIsFollowedAsItIsWrittenReplacedAndRemoved) {
    const QString path = folder.filePath("settings");
    write(path, "light");
    FileAppearance source(path, darkIfItSaysSo);
    EXPECT_EQ(source.told().isDark, false);
    int changes = 0;
    const Subscription changed = source.onChange([&] { ++changes; });
    write(path, "dark");
    EXPECT_TRUE(runUntil([&] { return source.told().isDark == true; }));
    write(folder.filePath("new"), "light");
    ASSERT_TRUE(QFile::remove(path) && QFile::rename(folder.filePath("new"), path));
    EXPECT_TRUE(runUntil([&] { return source.told().isDark == false; }));
    write(path, "dark");
    EXPECT_TRUE(runUntil([&] { return source.told().isDark == true; })) << "after it was replaced";
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_TRUE(runUntil([&] { return source.told() == AppearanceTold(); }));
    EXPECT_GE(changes, 4);
}

TEST_F(QtAppearanceTest, AFileMayComeLaterAndItsFolderToo) {
    const QString path = folder.filePath("a/b/settings");
    FileAppearance source(path, darkIfItSaysSo);
    EXPECT_EQ(source.told(), AppearanceTold());
    ASSERT_TRUE(QDir().mkpath(folder.filePath("a/b")));
    write(path, "dark");
    EXPECT_TRUE(runUntil([&] { return source.told().isDark == true; }));
}

TEST_F(QtAppearanceTest, WhatIsNoFileTellsNothing) {
    ASSERT_TRUE(QDir().mkpath(folder.filePath("settings")));
    FileAppearance source(folder.filePath("settings"), [](std::string_view) { return AppearanceTold{true, {}, {}}; });
    EXPECT_EQ(source.told(), AppearanceTold());
}

class QtPortalTest : public QtTest {
protected:
    ~QtPortalTest() override { end(); }
    void start() {
        portal.start("/usr/bin/python3", {TARVIX_FIXTURES "/portal.py"});
        ASSERT_TRUE(runUntil([&] { return says({"Set", "uint32:0"}); }));
    }
    void end() {
        portal.kill();
        portal.waitForFinished();
    }
    bool says(QStringList call) {
        call.front().prepend("org.tarvix.TestPortal.");
        const QStringList to{"--session", "--print-reply", "--dest=org.freedesktop.portal.Desktop",
                             "/org/freedesktop/portal/desktop"};
        QProcess send;
        send.start("dbus-send", to + call);
        return send.waitForFinished() && send.exitCode() == 0;
    }
    bool becomes(const AppearanceTold& wanted) {
        return runUntil([&] { return source.told() == wanted; });
    }

    QProcess portal;
    PortalAppearance source;
};

TEST_F(QtPortalTest, WithoutAPortalNothingIsTold) {
    drain();
    EXPECT_EQ(source.told(), AppearanceTold());
}

TEST_F(QtPortalTest, APortalThatComesLaterIsAskedAndFollowedUntilItGoes) {
    start();
    ASSERT_TRUE(says({"Set", "uint32:1"}));
    EXPECT_TRUE(becomes({true, {}, {}}));
    ASSERT_TRUE(says({"SetAccent", "double:1", "double:0", "double:0"}));
    EXPECT_TRUE(becomes({true, kRed, {}}));
    const PortalAppearance later;
    EXPECT_TRUE(runUntil([&] { return later.told() == AppearanceTold{true, kRed, {}}; })) << "by asking";
    ASSERT_TRUE(says({"Set", "uint32:2"}));
    EXPECT_TRUE(becomes({false, kRed, {}}));
    end();
    EXPECT_TRUE(becomes({}));
}

TEST_F(QtPortalTest, NoPreferenceAndAColourOutOfRangeTellNothing) {
    start();
    ASSERT_TRUE(says({"SetAccent", "double:1", "double:0", "double:0"}) && says({"Set", "uint32:1"}));
    ASSERT_TRUE(becomes({true, kRed, {}}));
    ASSERT_TRUE(says({"Set", "uint32:7"}));
    EXPECT_TRUE(becomes({{}, kRed, {}}));
    ASSERT_TRUE(says({"SetAccent", "double:-1", "double:-1", "double:-1"}));
    EXPECT_TRUE(becomes({}));
}

}  // namespace
}  // namespace tarvix
