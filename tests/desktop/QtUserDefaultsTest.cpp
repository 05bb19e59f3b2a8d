#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <thread>

#include "qt/QtUserDefaults.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

using Value = UserDefaults::Value;

// A stored text, other than a literal, which would turn into a bool.
Value text(const char* value) { return std::string(value); }

class QtUserDefaultsTest : public QtTest {
    QTemporaryDir folder_;

protected:
    QString path = folder_.path() + "/tarvix/tarvix.json";

    QByteArray bytes() const { return bytes(path); }
    static QByteArray bytes(const QString& of) {
        QFile file(of);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void write(const QByteArray& content) const {
        QDir().mkpath(folder_.path() + "/tarvix");
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        ASSERT_EQ(file.write(content), content.size());
    }
};

TEST_F(QtUserDefaultsTest, AKeyThatNobodySetIsAbsent) {
    QtUserDefaults defaults(path);
    EXPECT_EQ(defaults.get("searchIncludesDock"), std::nullopt);
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(QtUserDefaultsTest, ValuesKeepTheirType) {
    {
        QtUserDefaults defaults(path);
        defaults.set("bool", true);
        defaults.set("double", 0.2);
        defaults.set("whole", 16.0);
        defaults.set("text", text("custom"));
        defaults.set("numeral", text("1"));
        defaults.set("empty", text(""));
        defaults.set("unicode", text("d\xC3\xA9j\xC3\xA0 \xF0\x9F\x99\x82"));
    }
    EXPECT_TRUE(bytes().contains("\"bool\": true"));
    QtUserDefaults again(path);
    EXPECT_EQ(again.get("bool"), Value(true));
    EXPECT_EQ(again.get("double"), Value(0.2));
    EXPECT_EQ(again.get("whole"), Value(16.0));
    EXPECT_EQ(again.get("text"), text("custom"));
    EXPECT_EQ(again.get("numeral"), text("1"));
    EXPECT_EQ(again.get("empty"), text(""));
    EXPECT_EQ(again.get("unicode"), text("d\xC3\xA9j\xC3\xA0 \xF0\x9F\x99\x82"));
}

TEST_F(QtUserDefaultsTest, ARemovedKeyIsAbsentAndGoneFromTheFile) {
    QtUserDefaults defaults(path);
    defaults.set("searchCase", true);
    defaults.remove("searchCase");
    EXPECT_EQ(defaults.get("searchCase"), std::nullopt);
    EXPECT_FALSE(bytes().contains("searchCase"));
}

TEST_F(QtUserDefaultsTest, OwnChangesAreToldAtOnceAndOnlyOnes) {
    QtUserDefaults defaults(path);
    std::vector<std::string> keys;
    const Subscription changes = defaults.onChange([&](std::string_view key) { keys.emplace_back(key); });
    defaults.set("a", true);
    EXPECT_EQ(keys, std::vector<std::string>{"a"});
    defaults.set("a", true);
    EXPECT_EQ(keys, std::vector<std::string>{"a"});
    defaults.set("a", 1.0);
    defaults.remove("a");
    EXPECT_EQ(keys, (std::vector<std::string>{"a", "a", "a"}));
}

TEST_F(QtUserDefaultsTest, AReplacementByAnotherProgramIsSeenEachTime) {
    write("{\"inputTextSize\": 16}");
    QtUserDefaults defaults(path);
    std::vector<std::string> keys;
    const Subscription changes = defaults.onChange([&](std::string_view key) { keys.emplace_back(key); });
    for (int size = 20; size < 24; ++size) {
        const QString next = path + ".next";
        QFile file(next);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("{\"inputTextSize\": " + QByteArray::number(size) + ", \"round" + QByteArray::number(size) +
                   "\": true}");
        file.close();
        ASSERT_EQ(std::rename(qPrintable(next), qPrintable(path)), 0);
        ASSERT_TRUE(runUntil([&] { return defaults.get("inputTextSize") == Value(static_cast<double>(size)); }))
            << size;
    }
    EXPECT_NE(std::find(keys.begin(), keys.end(), "inputTextSize"), keys.end());
}

TEST_F(QtUserDefaultsTest, AChangeInPlaceIsSeen) {
    write("{\"inputTextSize\": 16}");
    QtUserDefaults defaults(path);
    write("{\"inputTextSize\": 18.5}");
    EXPECT_TRUE(runUntil([&] { return defaults.get("inputTextSize") == Value(18.5); }));
}

// Each program sets keys of its own, many times, while the other does the same.
TEST_F(QtUserDefaultsTest, TwoProgramsThatWriteAtOnceLoseNothing) {
    constexpr int kRounds = 40;
    QProcess other;
    other.setProgram(QCoreApplication::applicationFilePath());  // the test below, in a process of its own
    other.setArguments({"--gtest_filter=QtUserDefaultsWriter.*", "--gtest_also_run_disabled_tests"});
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TARVIX_TEST_STORE", path);
    other.setProcessEnvironment(environment);
    QtUserDefaults defaults(path);
    defaults.set("start", true);
    other.start();
    for (int i = 0; i < kRounds || other.state() != QProcess::NotRunning; ++i) {
        defaults.set("mine" + std::to_string(i % kRounds), static_cast<double>(i));
        drain();
    }
    ASSERT_EQ(other.exitCode(), 0) << other.readAllStandardOutput().toStdString();
    QtUserDefaults again(path);
    for (int i = 0; i < kRounds; ++i) {
        EXPECT_TRUE(again.get("mine" + std::to_string(i)).has_value()) << i;
        EXPECT_EQ(again.get("theirs" + std::to_string(i)), Value(static_cast<double>(i)));
    }
    EXPECT_EQ(again.get("start"), Value(true));
}

// The other program of the test above; by itself it has nothing to do.
TEST(QtUserDefaultsWriter, DISABLED_WritesItsKeys) {
    const QString path = qEnvironmentVariable("TARVIX_TEST_STORE");
    ASSERT_FALSE(path.isEmpty());
    int count = 1;
    char name[] = "writer";
    char* arguments[] = {name, nullptr};
    QCoreApplication application(count, arguments);
    QtUserDefaults defaults(path);
    for (int i = 0; i < 40; ++i) defaults.set("theirs" + std::to_string(i), static_cast<double>(i));
}

TEST_F(QtUserDefaultsTest, ADamagedStoreIsSetAsideAndNotLost) {
    write("{\"inputTextSize\": 16, ");
    testing::internal::CaptureStderr();
    {
        QtUserDefaults defaults(path);
        EXPECT_EQ(defaults.get("inputTextSize"), std::nullopt);
        defaults.set("searchIncludesDock", true);
    }
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
    EXPECT_EQ(bytes(path + ".damaged"), "{\"inputTextSize\": 16, ");
    EXPECT_EQ(QtUserDefaults(path).get("searchIncludesDock"), Value(true));
}

TEST_F(QtUserDefaultsTest, AStoreDamagedMeanwhileKeepsRunning) {
    QtUserDefaults defaults(path);
    defaults.set("inputTextSize", 16.0);
    testing::internal::CaptureStderr();
    write("not JSON");
    EXPECT_TRUE(runUntil([&] { return !defaults.get("inputTextSize"); }));
    defaults.set("a", true);
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(defaults.get("a"), Value(true));
    EXPECT_EQ(bytes(path + ".damaged"), "not JSON");
}

TEST_F(QtUserDefaultsTest, ValuesOfForeignKindsAreAbsentAndKept) {
    write("{\"list\": [1, \"two\", {\"three\": 3}], \"nothing\": null}");
    QtUserDefaults defaults(path);
    EXPECT_EQ(defaults.get("list"), std::nullopt);
    EXPECT_EQ(defaults.get("nothing"), std::nullopt);
    defaults.set("a", true);
    EXPECT_TRUE(bytes().simplified().contains("\"list\": [ 1, \"two\", { \"three\": 3 } ]")) << bytes().toStdString();
    EXPECT_TRUE(bytes().contains("\"nothing\": null"));
}

TEST_F(QtUserDefaultsTest, AnyThreadMayRead) {
    QtUserDefaults defaults(path);
    defaults.set("a", 0.0);
    std::atomic<bool> stop = false;
    std::atomic<int> wrong = 0;
    std::thread reader([&] {
        while (!stop)
            if (!defaults.get("a")) ++wrong;
    });
    for (int i = 1; i < 30; ++i) defaults.set("a", static_cast<double>(i));
    stop = true;
    reader.join();
    EXPECT_EQ(wrong, 0);
}

TEST_F(QtUserDefaultsTest, TheStandardPathIsInTheConfigurationFolder) {
    const QByteArray before = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", "/somewhere/config");
    EXPECT_EQ(QtUserDefaults::standardPath(), "/somewhere/config/tarvix/tarvix.json");
    qputenv("XDG_CONFIG_HOME", before);
}

}  // namespace
}  // namespace tarvix
