// The developer's side: how a release is signed, and how a build is given its feed.
#include <gmock/gmock.h>

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "qt/updates/AppcastReader.h"
#include "updates/UpdateChoice.h"

namespace tarvix {
namespace {

using testing::HasSubstr;

struct Ran {
    int status;
    QByteArray output, errors;
};

Ran run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished();
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

const QString kSign = QString(TARVIX_SOURCE) + "/tools/sign-update";

TEST(SignUpdate, MakesAnItemThatIsTaken) {
    const QTemporaryDir folder;
    const QString key = folder.filePath("key.pem"), path = folder.filePath("tarvix_2.0_amd64.deb");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("the release");
    file.close();

    const Ran made = run(kSign, {"--new-key", key});
    ASSERT_EQ(made.status, 0) << made.errors.toStdString();
    EXPECT_EQ(QFile::permissions(key) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    const auto publicKey = updateKeyFrom(made.output.trimmed().toStdString());
    ASSERT_TRUE(publicKey) << made.output.toStdString();

    const Ran item = run(kSign, {key, path, "2.0", "https://example.org/tarvix_2.0_amd64.deb"});
    ASSERT_EQ(item.status, 0) << item.errors.toStdString();
    const auto appcast =
        readAppcast("<rss xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\"><channel>" +
                    item.output + "</channel></rss>");
    ASSERT_TRUE(appcast) << item.output.toStdString();
    const UpdateChoice choice =
        chooseUpdate(*appcast, {.programVersion = "1.0", .name = "linux", .architecture = "amd64", .version = "12"});
    const auto* update = std::get_if<AvailableUpdate>(&choice);
    ASSERT_NE(update, nullptr) << item.output.toStdString();
    EXPECT_EQ(update->version, "2.0");
    EXPECT_EQ(update->length, 11U);
    const std::string content = "the release";
    EXPECT_TRUE(isSignedBy(*publicKey, update->signature,
                           {reinterpret_cast<const std::uint8_t*>(content.data()), content.size()}));
}

TEST(SignUpdate, NeverOverwritesAKey) {
    const QTemporaryDir folder;
    const QString key = folder.filePath("key.pem");
    ASSERT_EQ(run(kSign, {"--new-key", key}).status, 0);
    EXPECT_NE(run(kSign, {"--new-key", key}).status, 0);
    EXPECT_EQ(run(kSign, {}).status, 2);
}

Ran configure(const QString& feed, const QString& key) {
    return run(TARVIX_CMAKE, {"-DTARVIX_UPDATE_FEED=" + feed, "-DTARVIX_UPDATE_KEY=" + key, "-P",
                              QString(TARVIX_SOURCE) + "/cmake/TarvixUpdates.cmake"});
}

TEST(UpdateOptions, AreBothGivenOrNone) {
    const QString feed = "https://example.org/appcast.xml", key = "PUAXw+hDiVqStwqnTRt+vJyYLM8uxJaMwM1V8Sr0Zgw=";
    EXPECT_EQ(configure("", "").status, 0);
    EXPECT_EQ(configure(feed, key).status, 0) << configure(feed, key).errors.toStdString();
    for (const char* bad : {"http://example.org/appcast.xml", "https://", "https:///appcast.xml", "appcast.xml",
                            "https://me@example.org/", "https://example.org/a b", "https://example.org/\"", ""})
        EXPECT_THAT(configure(bad, key).errors.toStdString(), HasSubstr("TARVIX_UPDATE_FEED")) << bad;
    for (const char* bad :
         {"", "no key", "PUAXw+hDiVqStwqnTRt+vJyYLM8uxJaMwM1V8Sr0Zgw", "PUAXw+hDiVqStwqnTRt+vJyYLM8uxJaMwM1V8Sr0Zgx=",
          "PUAXw+hDiVqStwqnTRt+vJyYLM8uxJaMwM1V8Sr0Zg==", "\"AXw+hDiVqStwqnTRt+vJyYLM8uxJaMwM1V8Sr0Zgw="})
        EXPECT_THAT(configure(feed, bad).errors.toStdString(), HasSubstr("TARVIX_UPDATE_KEY")) << bad;
}

}  // namespace
}  // namespace tarvix
