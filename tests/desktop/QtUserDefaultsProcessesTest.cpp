// The settings file under several programs at once.
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <memory>
#include <string>

#include "qt/QtUserDefaults.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

using Value = UserDefaults::Value;

constexpr int kWrites = 200;

class QtUserDefaultsProcessesTest : public QtTest {
    QTemporaryDir folder_;

protected:
    QString path = folder_.path() + "/tarvix/tarvix.json";

    // Another program that writes; its part is the test of that name below, in a process of its own.
    std::unique_ptr<QProcess> start(const char* part) const {
        auto other = std::make_unique<QProcess>();
        other->setProgram(QCoreApplication::applicationFilePath());
        other->setArguments(
            {QString("--gtest_filter=QtUserDefaultsWriter.DISABLED_") + part, "--gtest_also_run_disabled_tests"});
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("TARVIX_TEST_STORE", path);
        other->setProcessEnvironment(environment);
        other->start();
        return other;
    }
    QByteArray bytes() const {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

// The other program's store; by itself a part has nothing to do.
class QtUserDefaultsWriter : public testing::Test {
protected:
    void SetUp() override { ASSERT_FALSE(path.isEmpty()); }

    QString path = qEnvironmentVariable("TARVIX_TEST_STORE");

private:
    int count_ = 1;
    char name_[7] = "writer";
    char* arguments_[2] = {name_, nullptr};
    QCoreApplication application_{count_, arguments_};
};

TEST_F(QtUserDefaultsWriter, DISABLED_WritesItsKeys) {
    QtUserDefaults defaults(path);
    for (int i = 0; i < kWrites; ++i) defaults.set("theirs" + std::to_string(i % 50), static_cast<double>(i));
}

TEST_F(QtUserDefaultsWriter, DISABLED_WritesForEver) {
    QtUserDefaults defaults(path);
    const std::string longText(20'000, 'x');
    for (int i = 0;; ++i) {
        defaults.set("round", static_cast<double>(i));
        defaults.set("long", i % 2 ? Value(longText) : Value(std::string("short")));
    }
}

// Each sets keys of its own, hundreds of times, while the other does the same.
TEST_F(QtUserDefaultsProcessesTest, TwoThatWriteAtOnceLoseNothing) {
    QtUserDefaults defaults(path);
    defaults.set("start", true);
    const auto other = start("WritesItsKeys");
    int written = 0;
    while (written < kWrites || other->state() != QProcess::NotRunning) {
        defaults.set("mine" + std::to_string(written % 50), static_cast<double>(written));
        ++written;
        drain();
    }
    ASSERT_EQ(other->exitCode(), 0) << other->readAllStandardOutput().toStdString();
    ASSERT_TRUE(runUntil([&] { return bytes().contains("mine49"); }));
    QtUserDefaults again(path);
    EXPECT_EQ(again.get("start"), Value(true));
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(again.get("theirs" + std::to_string(i)), Value(static_cast<double>(kWrites - 50 + i))) << i;
        const int last = (written - 1 - i) / 50 * 50 + i;
        EXPECT_EQ(again.get("mine" + std::to_string(i)), Value(static_cast<double>(last))) << i;
    }
}

// The file's size goes up and down with each write, and the writer is stopped at any moment of one.
TEST_F(QtUserDefaultsProcessesTest, AReaderNeverSeesHalfAFileNorDoesAKilledWriterLeaveOne) {
    for (int kill = 0; kill < 3; ++kill) {
        const auto writer = start("WritesForEver");
        ASSERT_TRUE(runUntil([&] { return bytes().contains("round"); }));
        const QByteArray first = bytes();
        int changes = 0;
        QByteArray last = first;
        ASSERT_TRUE(runUntil([&] {
            const QByteArray now = bytes();
            EXPECT_TRUE(QJsonDocument::fromJson(now).isObject()) << now.left(200).toStdString();
            if (now != last) ++changes;
            last = now;
            return changes >= 30 + 7 * kill;
        }));
        ::kill(static_cast<pid_t>(writer->processId()), SIGKILL);
        ASSERT_TRUE(writer->waitForFinished());
        EXPECT_TRUE(QJsonDocument::fromJson(bytes()).isObject());
        QtUserDefaults defaults(path);
        EXPECT_TRUE(defaults.get("round"));
        defaults.set("after", static_cast<double>(kill));
        EXPECT_TRUE(bytes().contains("\"after\": " + QByteArray::number(kill))) << "written at once: no lock is left";
        defaults.remove("round");
    }
}

TEST_F(QtUserDefaultsProcessesTest, AChangeDuringAnothersLockHoldsAtOnceAndIsWrittenAfterIt) {
    QtUserDefaults defaults(path);
    defaults.set("start", true);
    const int folder = open(qPrintable(QFileInfo(path).absolutePath()), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(flock(folder, LOCK_EX), 0);
    defaults.set("mine", true);
    EXPECT_EQ(defaults.get("mine"), Value(true));
    EXPECT_FALSE(bytes().contains("mine"));
    close(folder);
    EXPECT_TRUE(runUntil([&] { return bytes().contains("mine"); }));
}

}  // namespace
}  // namespace tarvix
