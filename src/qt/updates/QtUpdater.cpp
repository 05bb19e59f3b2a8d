#include "qt/updates/QtUpdater.h"

#include <QProcess>
#include <QStandardPaths>
#include <QSysInfo>
#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>

#include "qt/QtText.h"
#include "qt/updates/UpdateFolder.h"
#include "updates/UpdateAddress.h"

namespace tarvix {

namespace {

constexpr const char* kCheckFailed = "The check for updates failed";
constexpr const char* kUpdateFailed = "The update can't be installed";

std::optional<UpdateKey> keyOf(const QtUpdater::Source& source) {
    if (source.feed.empty() && source.key.empty()) return std::nullopt;
    const auto key = updateKeyFrom(source.key);
    if (const auto refusal = refuseAddress(source.feed)) {
        std::fprintf(stderr, "tarvix: no updates: the feed's address is not a whole HTTPS address\n");
        return std::nullopt;
    }
    if (!key) std::fprintf(stderr, "tarvix: no updates: the key of the releases is not an Ed25519 public key\n");
    return key;
}

// As Debian calls it.
std::string architecture() {
    const QString name = QSysInfo::buildCpuArchitecture();
    if (name == "x86_64") return "amd64";
    if (name == "arm") return "armhf";
    return name.toStdString();  // arm64, i386, riscv64
}

}  // namespace

QtUpdater::Source QtUpdater::builtInSource() {
    return {.feed = TARVIX_UPDATE_FEED, .key = TARVIX_UPDATE_KEY, .tls = {}};
}

QString QtUpdater::standardFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + "/tarvix/update";
}

UpdateSystem QtUpdater::thisSystem(std::string programVersion) {
    const QString version = QSysInfo::productVersion();
    return {.programVersion = std::move(programVersion),
            .architecture = architecture(),
            .version = version == "unknown" ? std::string() : version.toStdString()};
}

QtUpdater::QtUpdater(const Source& source, UpdateSystem system, Place place, UserDefaults& defaults,
                     Appearance& appearance, Times times)
    : source_(source),
      key_(keyOf(source)),
      system_(std::move(system)),
      place_(std::move(place)),
      defaults_(defaults),
      memory_(defaults),
      times_(std::move(times)),
      window_(appearance) {
    clock_.setSingleShot(true);
    QObject::connect(&clock_, &QTimer::timeout, &clock_, [this] { lookAtTheClock(); });
}

void QtUpdater::start() {
    if (!key_) return;
    removeUpdateFolder(place_.folder);  // what was handed over is installed by now, or was declined
    settingsChanged_ = defaults_.onChange([this](std::string_view) { schedule(); });
    schedule();
}

void QtUpdater::checkForUpdates() {
    if (canCheckForUpdates() && !window_.isOpen())
        check(CheckReason::user);
    else
        window_.bringToFront();
}

// The setting is looked at again when the time comes, and whenever a setting changes. The first start counts as a
// check, so that nobody is met by one; and so does finding one that is still to come, by a clock that was wrong.
void QtUpdater::schedule() {
    clock_.stop();
    if (!memory_.checksAutomatically()) return;
    const UpdateTime now = times_.now();
    const UpdateTime last = std::min(memory_.lastCheck().value_or(now), now);
    if (memory_.lastCheck() != last) memory_.noteCheck(last);
    const std::chrono::milliseconds wait = timeToNextCheck(last, now);
    clock_.start(std::clamp(wait, times_.afterStart, std::max(times_.afterStart, times_.look)));
}

// A timer stands still while the computer sleeps.
void QtUpdater::lookAtTheClock() {
    const auto lastCheck = memory_.lastCheck();
    const bool isDue = lastCheck && timeToNextCheck(*lastCheck, times_.now()) == std::chrono::seconds::zero();
    if (isDue && memory_.checksAutomatically() && !isBusy_ && !window_.isOpen()) check(CheckReason::schedule);
    schedule();
}

void QtUpdater::check(CheckReason reason) {
    setBusy(true);
    memory_.noteCheck(times_.now());
    if (reason == CheckReason::user) window_.showProgress("Checking for updates...", [this] { giveUp(); });
    fetcher().fetchFeed(QByteArray::fromStdString(source_.feed), [this, reason](UpdateFetcher::FeedResult result) {
        const auto* appcast = std::get_if<Appcast>(&result);
        tell(appcast ? chooseUpdate(*appcast, system_) : UpdateChoice(std::get<UpdateRefusal>(result)), reason);
    });
}

void QtUpdater::tell(const UpdateChoice& choice, CheckReason reason) {
    setBusy(false);
    if (!isTold(choice, reason, memory_.skippedVersion())) return;
    if (const auto* refusal = std::get_if<UpdateRefusal>(&choice))
        refuse(kCheckFailed, *refusal);
    else if (const auto* update = std::get_if<AvailableUpdate>(&choice))
        offer(*update, reason);
    else
        say("You're up to date!",
            QString("Tarvix %1 is the newest version available.").arg(textOf(system_.programVersion)));
}

void QtUpdater::offer(const AvailableUpdate& update, CheckReason reason) {
    const auto manner = reason == CheckReason::user ? UpdateWindow::Manner::asked : UpdateWindow::Manner::unasked;
    window_.showUpdate(update, system_.programVersion, manner, [this, update](UpdateWindow::Answer answer) {
        if (answer == UpdateWindow::Answer::skip) memory_.skip(update.version);
        if (answer == UpdateWindow::Answer::install) download(update);
    });
}

void QtUpdater::download(const AvailableUpdate& update) {
    setBusy(true);
    window_.showProgress(QString("Downloading Tarvix %1...").arg(textOf(update.displayVersion)), [this] { giveUp(); });
    fetcher().download(
        {update, *key_, system_.programVersion, place_.folder, place_.environment},
        [this](double part) { window_.setProgress(part); },
        [this, update](UpdateFetcher::FileResult result) {
            setBusy(false);
            if (const auto* refusal = std::get_if<UpdateRefusal>(&result))
                refuse(kUpdateFailed, *refusal);
            else
                handOver(update, std::get<QString>(result));
        });
}

// The opener ends at once or with the installer, so that nothing waits for it; and it may outlive this program, which
// a QProcess that is destroyed would end.
void QtUpdater::handOver(const AvailableUpdate& update, const QString& path) {
    auto* opener = new QProcess;
    opener->setProcessEnvironment(place_.environment);
    opener->setStandardOutputFile(QProcess::nullDevice());
    opener->setStandardErrorFile(QProcess::nullDevice());
    QObject::connect(opener, &QProcess::errorOccurred, &present_, [this, path](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) cannotOpen(path);
    });
    QObject::connect(opener, &QProcess::finished, &present_, [this, path](int status) {
        if (status != 0) cannotOpen(path);
    });
    QObject::connect(opener, &QProcess::stateChanged, opener, [opener](QProcess::ProcessState state) {
        if (state == QProcess::NotRunning) opener->deleteLater();
    });
    say("The update is ready",
        QString("Tarvix %1 has been downloaded and checked, and is handed to your desktop's installer. "
                "When it is installed, quit Tarvix and open it again.")
            .arg(textOf(update.displayVersion)));
    opener->start("xdg-open", {path});
}

void QtUpdater::say(const QString& heading, const QString& what) {
    window_.showMessage(heading, what, [] {});
}

void QtUpdater::refuse(const QString& heading, UpdateRefusal refusal) { say(heading, textOf(messageOf(refusal))); }

// The file is good: who knows how to install it by hand may do so.
void QtUpdater::cannotOpen(const QString& path) {
    say(kUpdateFailed, textOf(messageOf(UpdateRefusal::cannotInstall)) + "\n\nThe checked file is " + path);
}

void QtUpdater::giveUp() {
    fetcher().cancel();
    setBusy(false);
}

void QtUpdater::setBusy(bool isBusy) {
    if (std::exchange(isBusy_, isBusy) != isBusy) changed_();
}

UpdateFetcher& QtUpdater::fetcher() {
    if (!fetcher_)
        fetcher_ = std::make_unique<UpdateFetcher>(
            HttpsTransfer::Network{source_.tls, "Tarvix/" + QByteArray::fromStdString(system_.programVersion)},
            times_.limits);
    return *fetcher_;
}

}  // namespace tarvix
