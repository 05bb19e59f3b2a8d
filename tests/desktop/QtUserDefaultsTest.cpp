#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <functional>
#include <thread>

#include "qt/QtUserDefaults.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

using Value = UserDefaults::Value;

// A stored text, other than a literal, which would turn into a bool.
Value text(const char* value) { return std::string(value); }

class QtUserDefaultsTest : public QtTest {
    QTemporaryDir folder_{"/tmp/tarvix-settings-XXXXXX"};  // where others may look too

protected:
    QString folder() const { return folder_.path(); }
    QString path = folder_.path() + "/config/tarvix/tarvix.json";

    QByteArray bytes() const { return bytes(path); }
    static QByteArray bytes(const QString& of) {
        QFile file(of);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void write(const QByteArray& content) const { write(content, path); }
    static void write(const QByteArray& content, const QString& to) {
        QDir().mkpath(QFileInfo(to).absolutePath());
        QFile file(to);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        ASSERT_EQ(file.write(content), content.size());
    }
};

TEST_F(QtUserDefaultsTest, AKeyThatNobodySetIsAbsent) {
    QtUserDefaults defaults(path);
    EXPECT_EQ(defaults.get("searchIncludesDock"), std::nullopt);
    EXPECT_FALSE(QFile::exists(folder() + "/config"));
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

TEST_F(QtUserDefaultsTest, EveryWayOfChangingTheFileIsSeen) {
    QtUserDefaults defaults(path);
    std::vector<std::string> keys;
    const Subscription changes = defaults.onChange([&](std::string_view key) { keys.emplace_back(key); });
    double round = 0;
    const auto expectSeen = [&](const char* way, const std::function<void(const QByteArray&)>& change) {
        keys.clear();
        round += 1;
        change("{\"inputTextSize\": " + QByteArray::number(round) + "}");
        EXPECT_TRUE(runUntil([&] { return defaults.get("inputTextSize") == Value(round); })) << way;
        EXPECT_EQ(keys, std::vector<std::string>{"inputTextSize"}) << way;
    };
    const QString inner = QFileInfo(path).absolutePath(), outer = folder() + "/elsewhere";
    for (int i = 0; i < 2; ++i) {  // a second time, since what was watched is gone by then
        expectSeen("made, with its folder", [&](const QByteArray& json) { write(json); });
        expectSeen("written in place", [&](const QByteArray& json) { write(json); });
        expectSeen("replaced", [&](const QByteArray& json) {
            write(json, path + ".next");
            ASSERT_EQ(std::rename(qPrintable(path + ".next"), qPrintable(path)), 0);
        });
        expectSeen("the folder replaced", [&](const QByteArray& json) {
            QDir().mkpath(outer);
            write(json, outer + "/tarvix.json");
            ASSERT_TRUE(QDir().rename(inner, inner + ".old"));
            ASSERT_TRUE(QDir().rename(outer, inner));
        });
        ASSERT_TRUE(QFile::remove(path));
        ASSERT_TRUE(runUntil([&] { return !defaults.get("inputTextSize"); })) << "deleted";
        expectSeen("made anew", [&](const QByteArray& json) { write(json); });
        ASSERT_TRUE(QDir(inner).removeRecursively());
        ASSERT_TRUE(QDir(inner + ".old").removeRecursively());
        ASSERT_TRUE(runUntil([&] { return !defaults.get("inputTextSize"); })) << "the folder deleted";
    }
}

TEST_F(QtUserDefaultsTest, ASymbolicLinkStaysOneAndItsTargetIsWrittenAndWatched) {
    const QString target = folder() + "/dotfiles/tarvix.json", hop = folder() + "/dotfiles/hop";
    write("{\"inputTextSize\": 16, \"mine\": 1}", target);
    QDir().mkpath(QFileInfo(path).absolutePath());
    ASSERT_TRUE(QFile::link("tarvix.json", hop));  // a relative one
    ASSERT_TRUE(QFile::link(hop, path));
    QtUserDefaults defaults(path);
    EXPECT_EQ(defaults.get("inputTextSize"), Value(16.0));
    defaults.set("inputTextSize", 20.0);
    EXPECT_TRUE(QFileInfo(path).isSymLink());
    EXPECT_TRUE(QFileInfo(hop).isSymLink());
    EXPECT_EQ(bytes(target), "{\n    \"inputTextSize\": 20.0,\n    \"mine\": 1\n}\n");
    write("{\"inputTextSize\": 24}", target);
    EXPECT_TRUE(runUntil([&] { return defaults.get("inputTextSize") == Value(24.0); })) << "the target, in place";
    write("{\"inputTextSize\": 28}", target + ".next");
    ASSERT_EQ(std::rename(qPrintable(target + ".next"), qPrintable(target)), 0);
    EXPECT_TRUE(runUntil([&] { return defaults.get("inputTextSize") == Value(28.0); })) << "the target, replaced";
    write("{\"inputTextSize\": 32}", folder() + "/dotfiles/other.json");
    ASSERT_TRUE(QFile::link(folder() + "/dotfiles/other.json", path + ".next"));
    ASSERT_EQ(std::rename(qPrintable(path + ".next"), qPrintable(path)), 0);
    EXPECT_TRUE(runUntil([&] { return defaults.get("inputTextSize") == Value(32.0); })) << "another target";
    write("{\"inputTextSize\": 36}", folder() + "/dotfiles/other.json");
    EXPECT_TRUE(runUntil([&] { return defaults.get("inputTextSize") == Value(36.0); })) << "that one, in place";
}

TEST_F(QtUserDefaultsTest, ALinkIntoNowhereIsFilled) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    ASSERT_TRUE(QFile::link(folder() + "/target.json", path));
    QtUserDefaults defaults(path);
    defaults.set("a", true);
    EXPECT_TRUE(QFileInfo(path).isSymLink());
    EXPECT_EQ(bytes(folder() + "/target.json"), "{\n    \"a\": true\n}\n");
}

TEST_F(QtUserDefaultsTest, OrderKindsAndPermissionsOfTheFileStayWhenItIsWritten) {
    write("{\"z\": 1, \"list\": [1, \"two\", {\"three\": 3}], \"nothing\": null, \"a//b/c\": 16}");
    const auto mode = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
    ASSERT_TRUE(QFile::setPermissions(path, mode));
    QtUserDefaults defaults(path);
    EXPECT_EQ(defaults.get("list"), std::nullopt);
    EXPECT_EQ(defaults.get("nothing"), std::nullopt);
    EXPECT_EQ(defaults.get("a//b/c"), Value(16.0));
    defaults.set("z", text("last"));
    EXPECT_EQ(bytes(),
              "{\n    \"z\": \"last\",\n    \"list\": [1,\"two\",{\"three\":3}],\n    \"nothing\": null,\n"
              "    \"a//b/c\": 16\n}\n");
    EXPECT_EQ(QFile::permissions(path) & ~(QFile::ReadUser | QFile::WriteUser), mode);
}

TEST_F(QtUserDefaultsTest, AWriteThatChangesNothingLeavesTheFileAlone) {
    const QByteArray byHand = "{ \"inputTextSize\" : 16 }";
    write(byHand);
    QtUserDefaults defaults(path);
    defaults.set("inputTextSize", 16.0);
    defaults.remove("a");
    EXPECT_EQ(bytes(), byHand);
}

// A file that is emptied and written in two steps, as editors do that write in place.
TEST_F(QtUserDefaultsTest, AHalfWrittenFileIsWaitedForAndNothingOfItIsLost) {
    write("{\"inputTextSize\": 16}");
    QtUserDefaults defaults(path);
    std::vector<std::string> keys;
    const Subscription changes = defaults.onChange([&](std::string_view key) { keys.emplace_back(key); });
    testing::internal::CaptureStderr();
    for (const QByteArray& half : {QByteArray(), QByteArray("{\"inputTextSize\": 1")}) {
        QFile editor(path);
        ASSERT_TRUE(editor.open(QIODevice::WriteOnly | QIODevice::Truncate));
        editor.write(half);
        editor.flush();
        drain();
        defaults.set("mine" + std::to_string(half.size()), true);  // meets the half-written file
        EXPECT_EQ(bytes(), half) << "the editor's";
        EXPECT_EQ(defaults.get("inputTextSize"), Value(16.0)) << "as before";
        EXPECT_EQ(defaults.get("mine" + std::to_string(half.size())), Value(true));
        ASSERT_TRUE(editor.seek(0));
        editor.write("{\"inputTextSize\": 16, \"searchIncludesDock\": true}");
        editor.close();
        ASSERT_TRUE(runUntil([&] { return bytes().contains("mine" + QByteArray::number(half.size())); }));
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    // The editor's second text has nothing of the first change.
    EXPECT_EQ(keys, (std::vector<std::string>{"mine0", "searchIncludesDock", "mine19", "mine0"}));
    EXPECT_EQ(defaults.get("inputTextSize"), Value(16.0));
    EXPECT_EQ(defaults.get("searchIncludesDock"), Value(true));
    EXPECT_EQ(QDir(QFileInfo(path).absolutePath()).entryList(QDir::Files), QStringList("tarvix.json"));
}

TEST_F(QtUserDefaultsTest, AFileThatStaysEmptyHoldsNothing) {
    write("{\"inputTextSize\": 16}");
    QtUserDefaults defaults(path);
    testing::internal::CaptureStderr();
    write("");
    EXPECT_TRUE(runUntil([&] { return !defaults.get("inputTextSize"); }));
    defaults.set("a", true);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(bytes(), "{\n    \"a\": true\n}\n");
    EXPECT_FALSE(QFile::exists(path + ".damaged"));
}

TEST_F(QtUserDefaultsTest, ADamagedStoreIsKeptAndWhatCanBeReadOfItStays) {
    const QByteArray damaged =
        "{\n    \"inputTextSize\": 20,\n    \"targetsColor\": voiceOver,\n    \"mine\": [1]\n}\n";
    write(damaged);
    testing::internal::CaptureStderr();
    {
        QtUserDefaults defaults(path);
        EXPECT_EQ(defaults.get("inputTextSize"), Value(20.0)) << "from the start";
        EXPECT_EQ(defaults.get("targetsColor"), std::nullopt);
        EXPECT_EQ(bytes(), damaged) << "not yet";
        EXPECT_TRUE(runUntil([&] { return bytes() != damaged; }));
        EXPECT_EQ(bytes(), "{\n    \"inputTextSize\": 20,\n    \"mine\": [1]\n}\n");
        defaults.set("searchIncludesDock", true);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "tarvix: the settings in " + path.toStdString() +
                                                          " were damaged and are kept as " + path.toStdString() +
                                                          ".damaged; 2 of them could be read and stay\n");
    EXPECT_EQ(bytes(path + ".damaged"), damaged);
    EXPECT_EQ(bytes(), "{\n    \"inputTextSize\": 20,\n    \"mine\": [1],\n    \"searchIncludesDock\": true\n}\n");
}

TEST_F(QtUserDefaultsTest, AStoreDamagedMeanwhileKeepsRunning) {
    QtUserDefaults defaults(path);
    defaults.set("inputTextSize", 16.0);
    testing::internal::CaptureStderr();
    write("not JSON");
    EXPECT_TRUE(runUntil([&] { return !defaults.get("inputTextSize"); }));
    defaults.set("a", true);
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
    EXPECT_EQ(defaults.get("a"), Value(true));
    EXPECT_EQ(bytes(path + ".damaged"), "not JSON");
}

TEST_F(QtUserDefaultsTest, AnEarlierDamagedFileIsNeverOverwritten) {
    testing::internal::CaptureStderr();
    QtUserDefaults defaults(path);
    for (const char* damaged : {"first", "second", "third", "second"}) {
        write(damaged);
        ASSERT_TRUE(runUntil([&] { return bytes() == "{}\n"; })) << damaged;
    }
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(bytes(path + ".damaged"), "first");
    EXPECT_EQ(bytes(path + ".damaged.2"), "second");
    EXPECT_EQ(bytes(path + ".damaged.3"), "third");
    EXPECT_FALSE(QFile::exists(path + ".damaged.4")) << "what is kept already isn't kept again";
}

TEST_F(QtUserDefaultsTest, AChangeToADamagedStoreIsWrittenAtTheLatestAtTheEnd) {
    write("{\"inputTextSize\": 16, ");
    testing::internal::CaptureStderr();
    {
        QtUserDefaults defaults(path);
        defaults.set("searchIncludesDock", true);
    }
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(bytes(), "{\n    \"inputTextSize\": 16,\n    \"searchIncludesDock\": true\n}\n");
    EXPECT_EQ(bytes(path + ".damaged"), "{\"inputTextSize\": 16, ");
}

TEST_F(QtUserDefaultsTest, WhatIsNoUsableFileIsLeftAloneWithOneLineAndChangesHold) {
    const QString at = QFileInfo(path).absolutePath();
    const struct {
        const char* what;
        std::function<void()> make;
    } rows[] = {
        {"a directory", [&] { QDir().mkpath(path); }},
        {"a pipe", [&] { ASSERT_EQ(mkfifo(qPrintable(path), 0600), 0); }},
        {"a huge file", [&] { write("{\"a\": \"" + QByteArray(300'000, 'x') + "\"}"); }},
        {"a link to itself", [&] { ASSERT_TRUE(QFile::link(path, path)); }},
    };
    for (const auto& [what, make] : rows) {
        QDir(at).removeRecursively();
        QDir().mkpath(at);
        make();
        testing::internal::CaptureStderr();
        QtUserDefaults defaults(path);
        defaults.set("inputTextSize", 20.0);
        defaults.set("inputTextSize", 24.0);
        EXPECT_EQ(defaults.get("inputTextSize"), Value(24.0)) << what;
        const std::string told = testing::internal::GetCapturedStderr();
        EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << what << ": " << told;
        EXPECT_EQ(QDir(at).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot),
                  QStringList("tarvix.json"))
            << what;
        if (QFileInfo(path).isDir() || !QFileInfo(path).isFile()) continue;
        EXPECT_GT(QFileInfo(path).size(), 300'000);
    }
}

TEST_F(QtUserDefaultsTest, OnceTheFileIsUsableAgainItIsRead) {
    QDir().mkpath(path);
    testing::internal::CaptureStderr();
    QtUserDefaults defaults(path);
    defaults.set("mine", true);
    ASSERT_TRUE(QDir().rmdir(path));
    write("{\"inputTextSize\": 20}");
    EXPECT_TRUE(runUntil([&] { return bytes().contains("mine"); })) << "the change that waited";
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(defaults.get("inputTextSize"), Value(20.0));
}

// The store's folders as they are for someone who may only look into them; root may write everywhere.
class ReadOnly {
public:
    explicit ReadOnly(const QString& folder) : folders_{folder, folder + "/config", folder + "/config/tarvix"} {
        set(QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther |
            QFile::ExeOther);
        EXPECT_EQ(isRoot_ ? seteuid(kNobody) : 0, 0);
    }
    ~ReadOnly() {
        EXPECT_EQ(isRoot_ ? seteuid(0) : 0, 0);
        set(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    ReadOnly(const ReadOnly&) = delete;
    ReadOnly& operator=(const ReadOnly&) = delete;

private:
    static constexpr uid_t kNobody = 65534;

    void set(QFile::Permissions permissions) {
        for (const QString& folder : folders_) QFile::setPermissions(folder, permissions);
    }

    QStringList folders_;
    bool isRoot_ = geteuid() == 0;
};

TEST_F(QtUserDefaultsTest, InAFolderThatCannotBeWrittenChangesHoldWithOneLine) {
    const QByteArray before = "{\"inputTextSize\": 16}";
    write(before);
    const ReadOnly readOnly(folder());
    testing::internal::CaptureStderr();
    {
        QtUserDefaults defaults(path);
        std::vector<std::string> keys;
        const Subscription changes = defaults.onChange([&](std::string_view key) { keys.emplace_back(key); });
        defaults.set("inputTextSize", 20.0);
        defaults.set("inputTextSize", 24.0);
        EXPECT_EQ(defaults.get("inputTextSize"), Value(24.0));
        defaults.remove("inputTextSize");
        EXPECT_EQ(defaults.get("inputTextSize"), std::nullopt);
        EXPECT_EQ(keys, std::vector<std::string>(3, "inputTextSize"));
    }
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
    EXPECT_EQ(bytes(), before);
}

TEST_F(QtUserDefaultsTest, ADamagedFileInAFolderThatCannotBeWrittenStaysAndServes) {
    const QByteArray damaged = "{\"inputTextSize\": 20,}";
    write(damaged);
    const ReadOnly readOnly(folder());
    testing::internal::CaptureStderr();
    {
        QtUserDefaults defaults(path);
        defaults.set("a", true);
    }
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
    EXPECT_EQ(bytes(), damaged);
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
