#include <gmock/gmock.h>

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTemporaryDir>
#include <memory>

#include "qt/updates/QtUpdater.h"
#include "simulated/SimulatedUserDefaults.h"
#include "tests/TestAppearance.h"
#include "tests/qt/updates/Eventually.h"
#include "tests/qt/updates/Release.h"
#include "tests/qt/updates/TlsServer.h"
#include "updates/UpdateTransfer.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kFeed = "/feed.xml";
constexpr const char* kFile = "/tarvix.deb";

QDialog* window() {
    for (QWidget* const each : QApplication::topLevelWidgets())
        if (auto* dialog = qobject_cast<QDialog*>(each); dialog != nullptr && dialog->isVisible()) return dialog;
    return nullptr;
}

QPushButton* button(const QString& title) {
    if (QDialog* const shown = window())
        for (auto* each : shown->findChildren<QPushButton*>())
            if (each->text() == title && each->isEnabled()) return each;
    return nullptr;
}

// All that is written in the window.
std::string words() {
    QStringList all;
    if (QDialog* const shown = window())
        for (auto* label : shown->findChildren<QLabel*>())
            if (label->isVisible()) all << label->text();
    return all.join('|').toStdString();
}

// From 0 to 1; 0 as long as nothing is known of it.
double progress() {
    for (auto* bar : window()->findChildren<QProgressBar*>())
        if (bar->isVisible() && bar->maximum() > 0) return static_cast<double>(bar->value()) / bar->maximum();
    return 0;
}

bool shows(const std::string& what) {
    return eventually([&] { return words().find(what) != std::string::npos; });
}

bool press(const QString& title) {
    if (!eventually([&] { return button(title) != nullptr; })) return false;
    button(title)->click();
    return true;
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

struct QtUpdaterTest : testing::Test {
    static void SetUpTestSuite() {
        server = std::make_unique<TlsServer>();
        release = package("tarvix", "2.0-1", 300000);
    }
    static void TearDownTestSuite() { server.reset(); }

    QtUpdaterTest() {
        place.folder = folder.filePath("cache/update");
        qputenv("PATH", folder.filePath("bin").toUtf8() + ":" + path);
        place.environment = QProcessEnvironment::systemEnvironment();
        source = {.feed = server->address(kFeed).toStdString(), .key = key.publicKey(), .tls = server->clientTrust()};
        installWith("cp \"$1\" '" + handed() + ".part' && mv '" + handed() + ".part' '" + handed() + "'");
        offer(release);
    }
    ~QtUpdaterTest() override { qputenv("PATH", path); }

    // The program that opens files, on the path before the desktop's own.
    void installWith(const QString& script) {
        QDir(folder.path()).mkpath("bin");
        QFile file(folder.filePath("bin/xdg-open"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(("#!/bin/sh\n" + script + "\n").toUtf8());
        file.close();
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    QString handed() const { return folder.filePath("handed"); }

    OfferedRelease offered(const QByteArray& file) const {
        return {.address = server->address(kFile), .signature = signatureOf(key, file), .length = file.size()};
    }
    void offer(const OfferedRelease& offer, ServedReply file) {
        server->serve(kFeed, found(feedOf(offer)));
        server->serve(kFile, std::move(file));
    }
    void offer(const QByteArray& file) { offer(offered(file), found(file)); }

    QtUpdater& start() {
        updater = std::make_unique<QtUpdater>(source, system, place, defaults, appearance, times);
        updater->start();
        firstRequest = server->requests().size();
        return *updater;
    }

    std::vector<QByteArray> requests() const {
        return {server->requests().begin() + static_cast<std::ptrdiff_t>(firstRequest), server->requests().end()};
    }

    // A check and an installation that end with these words, and with nothing left behind.
    void refused(UpdateRefusal refusal) {
        start().checkForUpdates();
        ASSERT_TRUE(press("Install Update")) << words();
        ASSERT_TRUE(shows("The update can't be installed")) << words();
        EXPECT_THAT(words(), testing::HasSubstr(std::string(messageOf(refusal))));
        EXPECT_FALSE(QFile::exists(place.folder));
        EXPECT_FALSE(QFile::exists(handed()));
        EXPECT_TRUE(updater->canCheckForUpdates());
    }
    void feedRefused(UpdateRefusal refusal) {
        start().checkForUpdates();
        ASSERT_TRUE(shows("The check for updates failed")) << words();
        EXPECT_THAT(words(), testing::HasSubstr(std::string(messageOf(refusal))));
        EXPECT_TRUE(updater->canCheckForUpdates());
    }

    static std::unique_ptr<TlsServer> server;
    static QByteArray release;

    const QByteArray path = qgetenv("PATH");
    const QTemporaryDir folder;
    const SigningKey key;
    SimulatedUserDefaults defaults;
    TestAppearance appearance;
    QtUpdater::Source source;
    UpdateSystem system{.programVersion = "1.0", .name = "linux", .architecture = "amd64", .version = "12"};
    QtUpdater::Place place;
    QtUpdater::Times times;
    std::unique_ptr<QtUpdater> updater;
    std::size_t firstRequest = 0;
};

std::unique_ptr<TlsServer> QtUpdaterTest::server;
QByteArray QtUpdaterTest::release;

// --- The good case ---

TEST_F(QtUpdaterTest, TheInstallerIsGivenTheVeryFile) {
    start().checkForUpdates();
    ASSERT_TRUE(shows("A new version of Tarvix is available!"));
    EXPECT_THAT(words(), testing::HasSubstr("Tarvix 2.0 is now available. You have 1.0."));
    EXPECT_EQ(window()->findChild<QPlainTextEdit*>()->toPlainText(), "Everything is faster.");
    ASSERT_TRUE(press("Install Update"));
    ASSERT_TRUE(eventually([&] { return QFile::exists(handed()); })) << words();
    EXPECT_EQ(contentOf(handed()), release);
    EXPECT_TRUE(shows("The update is ready"));
    EXPECT_TRUE(press("OK"));
    EXPECT_TRUE(eventually([] { return window() == nullptr; }));
    EXPECT_THAT(requests(), ElementsAre(kFeed, kFile));
}

TEST_F(QtUpdaterTest, NobodyElseCanReadOrChangeTheFile) {
    start().checkForUpdates();
    ASSERT_TRUE(press("Install Update"));
    ASSERT_TRUE(shows("The update is ready")) << words();
    const QFileInfo file(place.folder + "/tarvix-2.0.deb");
    EXPECT_EQ(file.permissions() & ~(QFile::ReadUser | QFile::WriteUser | QFile::ExeUser), QFile::ReadOwner);
    EXPECT_EQ(QFileInfo(place.folder).permissions() & ~(QFile::ReadUser | QFile::WriteUser | QFile::ExeUser),
              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    ASSERT_TRUE(eventually([&] { return QFile::exists(handed()); }));
    start();
    EXPECT_FALSE(QFile::exists(place.folder));  // the next start clears up
}

TEST_F(QtUpdaterTest, ALinkInTheFoldersPlaceIsNotFollowed) {
    QDir(folder.path()).mkpath("cache");
    QDir(folder.path()).mkpath("precious");
    QFile precious(folder.filePath("precious/file"));
    ASSERT_TRUE(precious.open(QIODevice::WriteOnly));
    ASSERT_TRUE(QFile::link(folder.filePath("precious"), place.folder));
    start().checkForUpdates();
    ASSERT_TRUE(press("Install Update"));
    ASSERT_TRUE(shows("The update is ready")) << words();
    EXPECT_TRUE(precious.exists());
    EXPECT_FALSE(QFileInfo(place.folder).isSymLink());
    ASSERT_TRUE(eventually([&] { return QFile::exists(handed()); }));
}

TEST_F(QtUpdaterTest, NothingIsSentButTheProgramsVersion) {
    start().checkForUpdates();
    ASSERT_TRUE(shows("A new version"));
    EXPECT_TRUE(server->lastHead().contains("User-Agent: Tarvix/1.0\r\n")) << server->lastHead().toStdString();
    EXPECT_FALSE(server->lastHead().toLower().contains("cookie"));
}

TEST_F(QtUpdaterTest, FollowsARedirectToAnotherSecureAddress) {
    server->serve("/elsewhere.deb", found(release));
    offer(offered(release), redirect("/elsewhere.deb"));
    start().checkForUpdates();
    ASSERT_TRUE(press("Install Update"));
    ASSERT_TRUE(eventually([&] { return QFile::exists(handed()); })) << words();
    EXPECT_EQ(contentOf(handed()), release);
}

TEST_F(QtUpdaterTest, SaysThatThereIsNothingNewer) {
    OfferedRelease same = offered(release);
    same.version = "1.0";
    offer(same, found(release));
    start().checkForUpdates();
    ASSERT_TRUE(shows("You're up to date!"));
    EXPECT_THAT(words(), testing::HasSubstr("Tarvix 1.0 is the newest version available."));
    EXPECT_TRUE(press("OK"));
    EXPECT_TRUE(eventually([] { return window() == nullptr; }));
}

TEST_F(QtUpdaterTest, WhatNothingOpensIsKeptWithItsPlace) {
    installWith("exit 3");
    start().checkForUpdates();
    ASSERT_TRUE(press("Install Update"));
    ASSERT_TRUE(shows(std::string(messageOf(UpdateRefusal::cannotInstall)))) << words();
    EXPECT_THAT(words(), testing::HasSubstr((place.folder + "/tarvix-2.0.deb").toStdString()));
    EXPECT_EQ(contentOf(place.folder + "/tarvix-2.0.deb"), release);
}

TEST_F(QtUpdaterTest, AnInstallerThatRunsOnOutlivesTheUpdater) {
    installWith("while [ ! -e '" + folder.filePath("go") + "' ]; do sleep 0.02; done; cp \"$1\" '" + handed() +
                ".part' && mv '" + handed() + ".part' '" + handed() + "'");
    start().checkForUpdates();
    ASSERT_TRUE(press("Install Update"));
    ASSERT_TRUE(shows("The update is ready")) << words();
    updater.reset();
    QFile go(folder.filePath("go"));
    ASSERT_TRUE(go.open(QIODevice::WriteOnly));
    ASSERT_TRUE(eventually([&] { return QFile::exists(handed()); }));
    EXPECT_EQ(contentOf(handed()), release);
}

// --- Answers ---

TEST_F(QtUpdaterTest, ASkippedVersionIsRememberedAndShownOnlyWhenAskedFor) {
    start().checkForUpdates();
    ASSERT_TRUE(press("Skip This Version"));
    EXPECT_TRUE(eventually([] { return window() == nullptr; }));
    EXPECT_EQ(defaults.get("SUSkippedVersion"), UserDefaults::Value(std::string("2.0")));
    updater->checkForUpdates();
    EXPECT_TRUE(shows("A new version of Tarvix is available!"));
}

TEST_F(QtUpdaterTest, RemindMeLaterRemembersNothing) {
    start().checkForUpdates();
    ASSERT_TRUE(press("Remind Me Later"));
    EXPECT_TRUE(eventually([] { return window() == nullptr; }));
    EXPECT_EQ(defaults.get("SUSkippedVersion"), std::nullopt);
    updater->checkForUpdates();
    EXPECT_TRUE(shows("A new version of Tarvix is available!"));
    window()->reject();  // as Escape does
    EXPECT_TRUE(eventually([] { return window() == nullptr; }));
    EXPECT_EQ(defaults.get("SUSkippedVersion"), std::nullopt);
    EXPECT_THAT(requests(), ElementsAre(kFeed, kFeed));
}

TEST_F(QtUpdaterTest, ACancelledDownloadLeavesNothing) {
    ServedReply half = foundAs(release.size(), release.first(release.size() / 2));
    half.then = ServedReply::Then::hang;
    offer(offered(release), half);
    start().checkForUpdates();
    ASSERT_TRUE(press("Install Update"));
    ASSERT_TRUE(shows("Downloading Tarvix 2.0..."));
    ASSERT_TRUE(eventually([] { return progress() > 0; }));
    EXPECT_LE(progress(), 0.5);
    EXPECT_EQ(window()->focusWidget(), button("Cancel"));
    EXPECT_FALSE(updater->canCheckForUpdates());
    ASSERT_TRUE(press("Cancel"));
    EXPECT_TRUE(updater->canCheckForUpdates());
    EXPECT_TRUE(eventually([&] { return !QFile::exists(place.folder) && server->openConnections() == 0; }));
    EXPECT_EQ(window(), nullptr);
    EXPECT_FALSE(QFile::exists(handed()));
}

TEST_F(QtUpdaterTest, ACheckCanBeCancelled) {
    server->serve(kFeed, {.bytes = "", .then = ServedReply::Then::hang});
    start().checkForUpdates();
    ASSERT_TRUE(shows("Checking for updates..."));
    ASSERT_TRUE(eventually([&] { return !requests().empty(); }));
    EXPECT_FALSE(updater->canCheckForUpdates());
    ASSERT_TRUE(press("Cancel"));
    EXPECT_TRUE(updater->canCheckForUpdates());
    EXPECT_TRUE(eventually([&] { return server->openConnections() == 0; }));
    EXPECT_EQ(window(), nullptr);
}

TEST_F(QtUpdaterTest, CanCheckIsToldAsItChanges) {
    std::vector<bool> told;
    start();
    const Subscription listening =
        updater->onCanCheckForUpdatesChanged([&] { told.push_back(updater->canCheckForUpdates()); });
    updater->checkForUpdates();
    ASSERT_TRUE(press("Remind Me Later"));
    EXPECT_THAT(told, ElementsAre(false, true));
}

TEST_F(QtUpdaterTest, AnOpenWindowIsBroughtForwardInsteadOfAnotherCheck) {
    start().checkForUpdates();
    ASSERT_TRUE(shows("A new version"));
    updater->checkForUpdates();
    EXPECT_TRUE(shows("A new version"));
    EXPECT_THAT(requests(), ElementsAre(kFeed));
}

TEST_F(QtUpdaterTest, ASecondClickOnAWindowThatIsGoingDoesNothing) {
    start().checkForUpdates();
    ASSERT_TRUE(shows("A new version"));
    QPushButton* const skip = button("Skip This Version");
    skip->click();
    skip->click();  // it waited while the first one was dealt with
    EXPECT_EQ(window(), nullptr);
    EXPECT_TRUE(updater->canCheckForUpdates());
}

TEST_F(QtUpdaterTest, EndsInTheMiddleOfADownload) {
    ServedReply half = foundAs(release.size(), release.first(1000));
    half.then = ServedReply::Then::hang;
    offer(offered(release), half);
    start().checkForUpdates();
    ASSERT_TRUE(press("Install Update"));
    ASSERT_TRUE(eventually([&] { return requests().size() == 2; }));
    updater.reset();
    EXPECT_TRUE(eventually([&] { return server->openConnections() == 0; }));
}

// --- By itself ---

struct AutomaticUpdaterTest : QtUpdaterTest {
    AutomaticUpdaterTest() {
        times.afterStart = 1ms;
        times.look = 5ms;
        times.now = [this] {
            ++looks;
            return now;
        };
    }
    // Whether it has looked at the clock many times without a request.
    bool staysQuiet() {
        start();
        const int before = looks;
        const bool hasLooked = eventually([&] { return looks > before + 10; });
        const bool isQuiet = hasLooked && requests().empty() && window() == nullptr;
        updater.reset();
        return isQuiet;
    }

    int looks = 0;  // at the clock
    UpdateTime now{std::chrono::seconds(1'800'000'000)};
};

TEST_F(AutomaticUpdaterTest, TheFirstCheckIsADayAfterTheFirstStart) {
    EXPECT_TRUE(staysQuiet());
    EXPECT_EQ(UpdateMemory(defaults).lastCheck(), now);
    now += 23h;
    EXPECT_TRUE(staysQuiet());
    now += 1h;
    start();
    EXPECT_TRUE(shows("A new version of Tarvix is available!"));
    EXPECT_EQ(UpdateMemory(defaults).lastCheck(), now);
    EXPECT_THAT(requests(), ElementsAre(kFeed));
}

TEST_F(AutomaticUpdaterTest, AClockThatWasYearsAheadPutsItOffForADay) {
    UpdateMemory(defaults).noteCheck(now + 24h * 3650);
    EXPECT_TRUE(staysQuiet());
    EXPECT_EQ(UpdateMemory(defaults).lastCheck(), now);
    now += 24h;
    start();
    EXPECT_TRUE(shows("A new version of Tarvix is available!"));
}

TEST_F(AutomaticUpdaterTest, ChecksAgainWhileTheProgramRuns) {
    UpdateMemory(defaults).noteCheck(now);
    start();
    now += 24h;
    ASSERT_TRUE(press("Remind Me Later"));
    now += 24h;
    ASSERT_TRUE(press("Remind Me Later"));
    EXPECT_THAT(requests(), ElementsAre(kFeed, kFeed));
}

TEST_F(AutomaticUpdaterTest, SwitchedOffAsksNothingUntilItIsSwitchedOn) {
    UpdateMemory(defaults).noteCheck(now - 48h);
    defaults.set("SUEnableAutomaticChecks", false);
    start();
    QCoreApplication::processEvents();
    bool hasPassed = false;  // more time than the clock is looked at in
    QTimer::singleShot(100, [&] { hasPassed = true; });
    ASSERT_TRUE(eventually([&] { return hasPassed; }));
    EXPECT_THAT(requests(), IsEmpty());
    defaults.set("SUEnableAutomaticChecks", true);
    EXPECT_TRUE(shows("A new version of Tarvix is available!"));
}

TEST_F(AutomaticUpdaterTest, SwitchedOffWhileRunningAsksNothingMore) {
    UpdateMemory(defaults).noteCheck(now);
    start();
    defaults.set("SUEnableAutomaticChecks", false);
    now += 48h;
    bool hasPassed = false;
    QTimer::singleShot(100, [&] { hasPassed = true; });
    ASSERT_TRUE(eventually([&] { return hasPassed; }));
    EXPECT_THAT(requests(), IsEmpty());
}

TEST_F(AutomaticUpdaterTest, ASkippedVersionShowsNothing) {
    UpdateMemory(defaults).noteCheck(now - 48h);
    UpdateMemory(defaults).skip("2.0");
    start();
    ASSERT_TRUE(eventually([&] { return requests().size() == 1 && updater->canCheckForUpdates(); }));
    EXPECT_EQ(window(), nullptr);
}

TEST_F(AutomaticUpdaterTest, AFailureShowsNothingAndIsTriedAgainTheNextDay) {
    UpdateMemory(defaults).noteCheck(now - 48h);
    server->serve(kFeed, found("no feed"));
    start();
    ASSERT_TRUE(eventually([&] { return requests().size() == 1 && updater->canCheckForUpdates(); }));
    EXPECT_EQ(window(), nullptr);
    now += 24h;
    EXPECT_TRUE(eventually([&] { return requests().size() == 2; }));
}

TEST_F(AutomaticUpdaterTest, DoesNotTakeTheKeyboard) {
    UpdateMemory(defaults).noteCheck(now - 48h);
    start();
    ASSERT_TRUE(shows("A new version"));
    EXPECT_TRUE(window()->testAttribute(Qt::WA_ShowWithoutActivating));
}

// --- Without a feed ---

TEST_F(AutomaticUpdaterTest, WithoutAFeedNothingIsEverAsked) {
    source.feed.clear();
    source.key.clear();
    UpdateMemory(defaults).noteCheck(now - 48h);
    testing::internal::CaptureStderr();
    start().checkForUpdates();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_FALSE(updater->canCheckForUpdates());
    EXPECT_EQ(window(), nullptr);
}

TEST_F(AutomaticUpdaterTest, ABadFeedOrKeyIsRefusedWithALine) {
    const QtUpdater::Source good = source;
    for (const auto& [feed, keyText, said] :
         {std::tuple{std::string("http://127.0.0.1/feed.xml"), good.key, "feed's address"},
          std::tuple{std::string("feed.xml"), good.key, "feed's address"},
          std::tuple{std::string(), good.key, "feed's address"},
          std::tuple{good.feed, std::string(), "key of the releases"},
          std::tuple{good.feed, std::string("AAAA"), "key of the releases"}}) {
        source.feed = feed;
        source.key = keyText;
        testing::internal::CaptureStderr();
        start().checkForUpdates();
        EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr(said));
        EXPECT_FALSE(updater->canCheckForUpdates());
        EXPECT_EQ(window(), nullptr);
    }
}

TEST_F(QtUpdaterTest, ABuildHasTheFeedOfItsOptions) {
    EXPECT_EQ(QtUpdater::builtInSource().feed, TARVIX_UPDATE_FEED);
    EXPECT_EQ(QtUpdater::builtInSource().key, TARVIX_UPDATE_KEY);
}

// --- Refusals ---

TEST_F(QtUpdaterTest, RefusesAWrongSignature) {
    OfferedRelease forged = offered(release);
    forged.signature = signatureOf(SigningKey(), release);
    offer(forged, found(release));
    refused(UpdateRefusal::wrongSignature);
}

TEST_F(QtUpdaterTest, RefusesAFileThatIsNotTheSignedOne) {
    QByteArray changed = release;
    changed[changed.size() - 1] = static_cast<char>(changed.back() ^ 1);
    offer(offered(release), found(changed));
    refused(UpdateRefusal::wrongSignature);
}

TEST_F(QtUpdaterTest, RefusesWhatIsNotSigned) {
    OfferedRelease unsignedOne = offered(release);
    unsignedOne.signature.clear();
    offer(unsignedOne, found(release));
    feedRefused(UpdateRefusal::missingSignature);
    EXPECT_THAT(requests(), ElementsAre(kFeed));
}

TEST_F(QtUpdaterTest, RefusesAnOldReleaseUnderANewVersion) {
    offer(package("tarvix", "0.9-1"));
    refused(UpdateRefusal::downgrade);
}

TEST_F(QtUpdaterTest, RefusesThePresentReleaseUnderANewVersion) {
    offer(package("tarvix", "1.0-1"));
    refused(UpdateRefusal::sameVersion);
}

TEST_F(QtUpdaterTest, RefusesAnotherPackage) {
    offer(package("another", "2.0-1"));
    refused(UpdateRefusal::otherFile);
}

TEST_F(QtUpdaterTest, RefusesWhatIsNoPackage) {
    offer("signed, but no package");
    refused(UpdateRefusal::otherFile);
}

TEST_F(QtUpdaterTest, RefusesAFileThatBreaksOff) {
    offer(offered(release), foundAs(release.size(), release.first(release.size() / 2)));
    refused(UpdateRefusal::truncated);
}

TEST_F(QtUpdaterTest, RefusesAFileThatIsTooShort) {
    offer(offered(release), found(release.chopped(1)));
    refused(UpdateRefusal::truncated);
}

TEST_F(QtUpdaterTest, RefusesAFileThatIsTooLong) {
    offer(offered(release), found(release + "x"));
    refused(UpdateRefusal::oversized);
}

TEST_F(QtUpdaterTest, RefusesAFileThatNeverEnds) {
    offer(offered(release), {.bytes = "HTTP/1.1 200 OK\r\n\r\n", .drop = QByteArray(100000, 'x')});
    refused(UpdateRefusal::oversized);
    EXPECT_TRUE(eventually([&] { return server->openConnections() == 0; }));
}

TEST_F(QtUpdaterTest, RefusesARedirectToPlainHttp) {
    offer(offered(release), redirect("http://127.0.0.1:1/tarvix.deb"));
    refused(UpdateRefusal::insecureRedirect);
}

TEST_F(QtUpdaterTest, RefusesARedirectToAFile) {
    offer(offered(release), redirect("file:///etc/hostname"));
    refused(UpdateRefusal::insecureRedirect);
}

TEST_F(QtUpdaterTest, RefusesARedirectOfTheFeedToPlainHttp) {
    server->serve(kFeed, redirect("http://127.0.0.1:1/feed.xml"));
    feedRefused(UpdateRefusal::insecureRedirect);
}

TEST_F(QtUpdaterTest, RefusesRedirectsWithoutAnEnd) {
    server->serve(kFeed, redirect(kFeed));
    feedRefused(UpdateRefusal::tooManyRedirects);
    EXPECT_EQ(requests().size(), 6U);
}

TEST_F(QtUpdaterTest, RefusesAnAddressThatIsNotSecureOrNotWhole) {
    OfferedRelease plain = offered(release);
    plain.address = "http://127.0.0.1:1/tarvix.deb";
    offer(plain, found(release));
    feedRefused(UpdateRefusal::insecureAddress);
    plain.address = "/tarvix.deb";
    offer(plain, found(release));
    feedRefused(UpdateRefusal::hostileAddress);
    plain.address = server->address("/..%2f..%2f.bashrc");
    offer(plain, found(release));
    feedRefused(UpdateRefusal::hostileAddress);
}

TEST_F(QtUpdaterTest, RefusesAFileOfAnUnknownType) {
    OfferedRelease archive = offered(release);
    archive.type = "application/zip";
    offer(archive, found(release));
    feedRefused(UpdateRefusal::unknownType);
}

TEST_F(QtUpdaterTest, RefusesAFeedThatIsTooLarge) {
    server->serve(kFeed, found(QByteArray(kLargestFeed + 1, ' ')));
    feedRefused(UpdateRefusal::feedTooLarge);
}

TEST_F(QtUpdaterTest, RefusesAFeedWithADocumentType) {
    server->serve(
        kFeed, found("<!DOCTYPE rss [<!ENTITY a SYSTEM \"file:///etc/hostname\">]><rss><channel>&a;</channel></rss>"));
    feedRefused(UpdateRefusal::malformedFeed);
}

TEST_F(QtUpdaterTest, RefusesAFeedThatBreaksOff) {
    server->serve(kFeed, found(feedOf(offered(release)).chopped(10)));
    feedRefused(UpdateRefusal::malformedFeed);
}

TEST_F(QtUpdaterTest, RefusesAMissingFeedAndAMissingFile) {
    source.feed = server->address("/nothing").toStdString();
    feedRefused(UpdateRefusal::serverError);
    source.feed = server->address(kFeed).toStdString();
    OfferedRelease missing = offered(release);
    missing.address = server->address("/nothing.deb");
    offer(missing, found(release));
    refused(UpdateRefusal::serverError);
}

TEST_F(QtUpdaterTest, RefusesAServerThatNobodyVouchesFor) {
    source.tls.reset();
    // Which other programs heed.
    qputenv("SSL_CERT_FILE", server->certificateFile().toUtf8());
    feedRefused(UpdateRefusal::untrustedServer);
    qunsetenv("SSL_CERT_FILE");
    EXPECT_THAT(requests(), IsEmpty());
}

TEST_F(QtUpdaterTest, RefusesATrustedCertificateUnderAnotherName) {
    source.feed = QByteArray(server->address(kFeed)).replace("127.0.0.1", "localhost").toStdString();
    feedRefused(UpdateRefusal::untrustedServer);
    EXPECT_THAT(requests(), IsEmpty());
}

TEST_F(QtUpdaterTest, SaysSoWhenNobodyAnswers) {
    source.feed = "https://127.0.0.1:1/feed.xml";
    feedRefused(UpdateRefusal::unreachable);
}

TEST_F(QtUpdaterTest, SaysSoWhenTheServerHangsInTheMiddle) {
    times.limits.file = 500ms;
    ServedReply half = foundAs(release.size(), release.first(1000));
    half.then = ServedReply::Then::hang;
    offer(offered(release), half);
    refused(UpdateRefusal::timedOut);
    EXPECT_TRUE(eventually([&] { return server->openConnections() == 0; }));
}

TEST_F(QtUpdaterTest, SaysSoWhenTheServerFallsSilent) {
    times.limits.silence = 300ms;
    server->serve(kFeed, {.bytes = "HTTP/1.1 200 OK\r\n\r\n<", .then = ServedReply::Then::hang});
    feedRefused(UpdateRefusal::timedOut);
}

TEST_F(QtUpdaterTest, SaysSoWhenTheFeedOnlyDrips) {
    times.limits.feed = 500ms;
    server->serve(kFeed, {.bytes = "HTTP/1.1 200 OK\r\n\r\n<", .drop = " "});
    feedRefused(UpdateRefusal::timedOut);
}

TEST_F(QtUpdaterTest, SaysSoWhenTheFileCannotBeStored) {
    QFile file(folder.filePath("cache"));  // where a folder should be
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    refused(UpdateRefusal::cannotStore);
}

TEST_F(QtUpdaterTest, SaysSoWhereThereAreNoToolsForPackages) {
    qputenv("PATH", folder.filePath("bin").toUtf8());
    refused(UpdateRefusal::cannotInstall);
}

// --- The windows ---

TEST_F(QtUpdaterTest, EverythingIsReachedByTheKeyboardAndHasAName) {
    start().checkForUpdates();
    ASSERT_TRUE(shows("A new version"));
    EXPECT_EQ(window()->accessibleName(), "A new version of Tarvix is available!");
    EXPECT_TRUE(button("Install Update")->isDefault());
    EXPECT_EQ(window()->focusWidget(), button("Install Update"));
    std::vector<QString> names;
    const QWidget* const first = window()->focusWidget();
    for (QWidget* each = first->nextInFocusChain(); each != first; each = each->nextInFocusChain())
        if (each->focusPolicy() & Qt::TabFocus && each->isVisible()) names.push_back(each->accessibleName());
    EXPECT_THAT(names, ElementsAre("Release Notes", "Skip This Version", "Remind Me Later"));
    EXPECT_TRUE(window()->findChild<QPlainTextEdit*>()->tabChangesFocus());
}

TEST_F(QtUpdaterTest, KeysAloneAnswer) {
    const auto type = [](Qt::Key typed) {
        for (const auto kind : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QWidget* const focused = window() != nullptr ? window()->focusWidget() : nullptr;
            if (focused == nullptr) return;
            QKeyEvent event(kind, typed, Qt::NoModifier);
            QApplication::sendEvent(focused, &event);
        }
    };
    start().checkForUpdates();
    ASSERT_TRUE(shows("A new version"));
    type(Qt::Key_Tab);
    type(Qt::Key_Tab);
    EXPECT_EQ(window()->focusWidget(), button("Skip This Version"));
    type(Qt::Key_Escape);
    ASSERT_TRUE(eventually([] { return window() == nullptr; }));
    EXPECT_EQ(defaults.get("SUSkippedVersion"), std::nullopt);

    updater->checkForUpdates();
    ASSERT_TRUE(shows("A new version"));
    type(Qt::Key_Return);
    ASSERT_TRUE(shows("The update is ready")) << words();
    type(Qt::Key_Space);
    ASSERT_TRUE(eventually([] { return window() == nullptr; }));
    ASSERT_TRUE(eventually([&] { return QFile::exists(handed()); }));
}

TEST_F(QtUpdaterTest, EveryWordHasRoom) {
    const auto expectRoom = [] {
        QCoreApplication::processEvents();
        for (auto* label : window()->findChildren<QLabel*>())
            EXPECT_TRUE(!label->isVisible() || label->height() >= label->heightForWidth(label->width()))
                << label->text().toStdString();
    };
    start().checkForUpdates();
    ASSERT_TRUE(shows("A new version"));
    for (const double scale : {1.0, 2.0}) {
        appearance.change({.isDark = false, .accent = {}, .selection = {}, .scale = scale});
        expectRoom();
    }
    source.feed = "https://127.0.0.1:1/feed.xml";
    feedRefused(UpdateRefusal::unreachable);
    expectRoom();
}

TEST_F(QtUpdaterTest, FollowsTheDesktopsScaleAndItsDarkness) {
    appearance.change({.isDark = false, .accent = {}, .selection = {}, .scale = 1});
    start().checkForUpdates();
    ASSERT_TRUE(shows("A new version"));
    const int textSize = button("Install Update")->font().pixelSize();
    EXPECT_GT(window()->palette().color(QPalette::Window).lightness(), 128);
    const int width = window()->width();
    appearance.change({.isDark = true, .accent = {}, .selection = {}, .scale = 2});
    EXPECT_EQ(button("Install Update")->font().pixelSize(), 2 * textSize);
    EXPECT_LT(window()->palette().color(QPalette::Window).lightness(), 128);
    EXPECT_GT(window()->width(), width);
}

}  // namespace
}  // namespace tarvix
