// The small services: notifications, pasteboard, milestones, the request to end, colours.
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QMimeData>
#include <QProcess>
#include <QTemporaryDir>
#include <csignal>
#include <regex>

#include "qt/MilestoneFile.h"
#include "qt/QtNotificationCenter.h"
#include "qt/QtPasteboard.h"
#include "qt/QtRunLoop.h"
#include "qt/QtSystemColors.h"
#include "qt/TerminationSignals.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

class QtServicesTest : public QtTest {};

// Another program of the session, which listens on a connection of its own.
class QtNotificationCenterTest : public QtTest {
protected:
    QtNotificationCenterTest() {
        monitor.start("dbus-monitor", {"--session", "type='signal',interface='org.tarvix.Tarvix'"});
        hears("NameLost");  // its first words, once it listens
    }
    ~QtNotificationCenterTest() override {
        monitor.kill();
        monitor.waitForFinished();
    }
    bool hears(const QByteArray& words) {
        return runUntil([&] { return (heard += monitor.readAllStandardOutput()).contains(words); });
    }

    QProcess monitor;
    QByteArray heard;
    QtNotificationCenter center;
};

TEST_F(QtNotificationCenterTest, ANotificationReachesOtherPrograms) {
    center.post("TarvixInputDidAppear");
    center.post("TarvixInputDidDisappear");
    EXPECT_TRUE(hears("path=/org/tarvix/Tarvix; interface=org.tarvix.Tarvix; member=TarvixInputDidAppear"));
    EXPECT_TRUE(hears("member=TarvixInputDidDisappear"));
    EXPECT_LT(heard.indexOf("member=TarvixInputDidAppear"), heard.indexOf("member=TarvixInputDidDisappear"));
}

TEST_F(QtNotificationCenterTest, WithoutASessionBusNothingIsPosted) {
    const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS"), folder = qgetenv("XDG_RUNTIME_DIR");
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("XDG_RUNTIME_DIR", "/nowhere");
    center.post("TarvixInputDidAppear");
    qputenv("XDG_RUNTIME_DIR", folder);
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    center.post("TarvixInputDidDisappear");
    EXPECT_TRUE(hears("member=TarvixInputDidDisappear"));
    EXPECT_FALSE(heard.contains("TarvixInputDidAppear"));
}

TEST_F(QtServicesTest, ThePasteboardHoldsTheTextUntilItIsEmptied) {
    QtPasteboard pasteboard;
    pasteboard.setString("\xC3\xA9t\xC3\xA9");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "été");
    pasteboard.clearContents();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "");
    EXPECT_TRUE(QGuiApplication::clipboard()->mimeData()->formats().isEmpty());
    EXPECT_TRUE(QGuiApplication::clipboard()->ownsClipboard());
}

TEST_F(QtServicesTest, MilestonesAreLinesThatAreThereAtOnce) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("milestones");
    MilestoneFile milestones(path.toStdString());
    milestones.reached(milestone::candidatesRead, 38);
    milestones.reached(milestone::inputHidden, 0);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const std::string text = file.readAll().toStdString();
    EXPECT_TRUE(std::regex_match(text, std::regex("\\d+ 38 candidates read\n\\d+ 0 The Input hidden\n"))) << text;
}

TEST_F(QtServicesTest, MilestonesOfAFileThatCannotBeOpenedGoNowhere) {
    const QTemporaryDir folder;
    MilestoneFile milestones(folder.filePath("missing/milestones").toStdString());
    milestones.reached(milestone::ready, 0);
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST_F(QtServicesTest, ASignalAsksForTheEndInsteadOfBringingIt) {
    QtRunLoop loop;
    int requests = 0;
    Subscription termination = onTerminationSignal(loop, [&] { ++requests; });
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        const int before = requests;
        std::raise(number);
        EXPECT_EQ(requests, before);
        EXPECT_TRUE(runUntil([&] { return requests == before + 1; })) << number;
    }
    termination.reset();
    EXPECT_EQ(std::signal(SIGTERM, SIG_DFL), SIG_DFL);
}

TEST_F(QtServicesTest, ColoursAreThoseOfTheAppearanceAsItIsNow) {
    TestAppearance appearance;
    QtSystemColors colors(appearance);
    appearance.change({.isDark = false, .accent = {1, 0, 0, 1}, .selection = {0, 0, 1, 1}});
    EXPECT_EQ(colors.controlAccent(), (Color{1, 0, 0, 1}));
    EXPECT_EQ(colors.selectedControl(), (Color{0, 0, 1, 1}));
    EXPECT_EQ(colors.findHighlight(), (Color{1, 1, 0, 1}));
}

}  // namespace
}  // namespace tarvix
