#include <QProcess>

#include "qt/ScreenLock.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

class QtScreenLockTest : public QtTest {
protected:
    // As the screen saver or the login manager does; on the bus that stands for both here.
    static void send(const QStringList& signal) {
        QProcess::execute("dbus-send", QStringList{"--session", "--type=signal"} + signal);
    }
    bool countBecomes(int wanted) {
        return runUntil([&] { return locked >= wanted; }) && locked == wanted;
    }

    ScreenLock lock;
    int locked = 0;
    Subscription locked_ = lock.onLocked([this] { ++locked; });
};

TEST_F(QtScreenLockTest, TheScreenSaversOfAllDesktopsAreHeard) {
    int count = 0;
    for (const char* name : {"freedesktop", "gnome", "cinnamon", "mate", "xfce"}) {
        send({"/any/path", QString("org.%1.ScreenSaver.ActiveChanged").arg(name), "boolean:true"});
        EXPECT_TRUE(countBecomes(++count)) << name;
    }
}

TEST_F(QtScreenLockTest, UnlockingAndOtherArgumentsAreNoLocking) {
    send({"/", "org.gnome.ScreenSaver.ActiveChanged", "boolean:false"});
    send({"/", "org.gnome.ScreenSaver.ActiveChanged", "string:true"});
    send({"/", "org.gnome.ScreenSaver.ActiveChanged", "boolean:true"});
    EXPECT_TRUE(countBecomes(1)) << "the signals come in their order";
}

}  // namespace
}  // namespace tarvix
