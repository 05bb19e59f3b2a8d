// This program as the desktop sees it: its windows, and what it opens with what the desktop opens things with.
#include <gmock/gmock.h>

#include <QFile>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTimer>

#include "qt/FrontWindow.h"
#include "qt/QtApplication.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

using testing::ElementsAre;

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
    const QString note = folder.filePath("note");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QtApplication program{environment};
};

TEST_F(QtApplicationTest, AnAddressIsOpenedInTheGivenEnvironment) {
    EXPECT_TRUE(QtApplication(environment).openUrl("https://example.org/?q=a%20b&c=%F0%9F%98%80"));
    ASSERT_TRUE(runUntil([&] { return QFile::exists(note); }));
    EXPECT_EQ(contentOf(note), "1|https://example.org/?q=a%20b&c=%F0%9F%98%80|started");
}

TEST_F(QtApplicationTest, WhatIsNoAddressIsNotOpened) {
    for (const char* text : {"", "nowhere", "/etc/passwd", "--help", "https://exa mple.org/", "http://[::1/", "%zz:"})
        EXPECT_FALSE(QtApplication(environment).openUrl(text)) << text;
    EXPECT_FALSE(QFile::exists(note));
}

TEST_F(QtApplicationTest, WithoutAnOpenerALineTellsSo) {
    qputenv("PATH", folder.filePath("nowhere").toUtf8());
    testing::internal::CaptureStderr();
    EXPECT_TRUE(QtApplication(environment).openUrl("mailto:somebody@example.org"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "tarvix: no xdg-open to open mailto:somebody@example.org with\n");
}

TEST_F(QtApplicationTest, ItsMenusAreThoseOfTheDesktop) {
    std::vector<std::string> entries;
    for (const MenuItem& menu : QtApplication(environment).mainMenu())
        for (const MenuItem& entry : menu.submenu) {
            entries.push_back(menu.title + "/" + entry.title + " " + entry.keyEquivalent);
            EXPECT_EQ(entry.keyEquivalentModifierMask, eventFlag::command);
            EXPECT_TRUE(entry.action);
        }
    EXPECT_THAT(entries, ElementsAre("Tarvix/Settings... ,", "Tarvix/Quit Tarvix q", "File/Close w", "Edit/Cut x",
                                     "Edit/Copy c", "Edit/Paste v", "Edit/Select All a"));
}

// With a window for the settings, which holds a field.
class QtSettingsWindowTest : public QtApplicationTest {
protected:
    QtSettingsWindowTest() {
        program.setSettingsWindow([this] {
            ++made;
            auto window = std::make_unique<QWidget>();
            field = new QLineEdit("text", window.get());
            window->setObjectName("Settings");
            window->resize(300, 100);
            return window;
        });
        program.onLastWindowClosed([this] { ++lastClosed; });
    }
    void show() {
        program.showSettingsWindow();
        ASSERT_TRUE(runUntil([&] { return program.hasKeyWindow(); }));
    }
    void invoke(const std::string& title) {
        for (const MenuItem& menu : program.mainMenu())
            for (const MenuItem& entry : menu.submenu)
                if (entry.title == title) entry.action();
    }

    int made = 0, lastClosed = 0;
    QLineEdit* field = nullptr;
};

TEST_F(QtSettingsWindowTest, IsMadeOnceAndGetsTheKeyboard) {
    EXPECT_FALSE(program.hasKeyWindow());
    show();
    EXPECT_EQ(QApplication::activeWindow(), topLevel("Settings"));
    program.showSettingsWindow();
    EXPECT_EQ(made, 1);
}

TEST_F(QtSettingsWindowTest, BehindAnotherWindowItComesToTheFrontAgain) {
    show();
    QWidget other;
    other.resize(800, 600);
    other.show();
    makeActive(other);
    ASSERT_TRUE(runUntil([&] { return QApplication::activeWindow() == &other; }));
    program.showSettingsWindow();
    EXPECT_TRUE(runUntil([&] { return QApplication::activeWindow() == topLevel("Settings"); }));
}

TEST_F(QtSettingsWindowTest, MinimizedItComesBack) {
    show();
    topLevel("Settings")->showMinimized();
    ASSERT_TRUE(runUntil([&] { return topLevel("Settings")->isMinimized(); }));
    program.showSettingsWindow();
    EXPECT_TRUE(runUntil([&] { return !topLevel("Settings")->isMinimized() && program.hasKeyWindow(); }));
}

TEST_F(QtSettingsWindowTest, HiddenItIsNoKeyWindow) {
    show();
    program.hide();
    EXPECT_TRUE(runUntil([&] { return !program.hasKeyWindow(); }));
    EXPECT_FALSE(topLevel("Settings")->isVisible());
    EXPECT_EQ(lastClosed, 0);
}

TEST_F(QtSettingsWindowTest, ClosingItIsToldAsTheLastWindowsEnd) {
    show();
    program.onLastWindowClosed([&] { program.terminate(); });
    QTimer::singleShot(0, qApp, [&] { invoke("Close"); });
    QTimer::singleShot(10000, topLevel("Settings"), [] { QCoreApplication::exit(1); });
    EXPECT_EQ(QCoreApplication::exec(), 0) << "Qt tells it in its own loop alone";
    EXPECT_EQ(lastClosed, 1);
    EXPECT_FALSE(topLevel("Settings")->isVisible());
}

TEST_F(QtSettingsWindowTest, WithAnotherWindowLeftItIsNotTheLast) {
    show();
    QWidget other;
    other.show();
    ASSERT_TRUE(runUntil([&] { return other.isVisible(); }));
    topLevel("Settings")->close();
    drain();
    EXPECT_EQ(lastClosed, 0);
}

TEST_F(QtSettingsWindowTest, TheMenusEditWhatHasTheFocus) {
    show();
    field->setFocus();
    ASSERT_TRUE(runUntil([&] { return QApplication::focusWidget() == field; }));
    invoke("Select All");
    EXPECT_EQ(field->selectedText(), "text");
    invoke("Cut");
    EXPECT_EQ(field->text(), "");
    invoke("Paste");
    EXPECT_EQ(field->text(), "text");
}

TEST_F(QtSettingsWindowTest, APanelIsNoKeyWindowAndNotHidden) {
    QWidget panel(nullptr, Qt::X11BypassWindowManagerHint | Qt::FramelessWindowHint | Qt::Tool);
    panel.show();
    program.hide();
    program.activate();
    EXPECT_TRUE(panel.isVisible());
    EXPECT_FALSE(program.hasKeyWindow());
    EXPECT_EQ(frontWindow(), nullptr);
}

}  // namespace
}  // namespace tarvix
