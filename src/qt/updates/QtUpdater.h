// Updates from a feed over HTTPS.
#pragma once

#include <QObject>
#include <QProcessEnvironment>
#include <QSslConfiguration>
#include <QString>
#include <QTimer>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/Listeners.h"
#include "platform/Appearance.h"
#include "platform/Updater.h"
#include "platform/UserDefaults.h"
#include "qt/updates/UpdateFetcher.h"
#include "qt/updates/UpdateWindow.h"
#include "updates/UpdateChoice.h"
#include "updates/UpdateSchedule.h"

namespace tarvix {

// Without a feed or its key nothing is ever fetched, and no check can be started. A feed that isn't HTTPS, or a key
// that is none, counts as none, with a line on the error output.
//
// A file that has arrived whole, is signed by the key and is the update that was offered is opened with whatever the
// desktop opens packages with; nothing is installed without that program's asking.
class QtUpdater : public Updater {
public:
    struct Source {
        std::string feed;                           // HTTPS
        std::string key;                            // Ed25519, in base64
        std::optional<QSslConfiguration> tls = {};  // the system's where it is absent
    };
    struct Times {
        std::chrono::milliseconds afterStart = std::chrono::minutes(1);  // before a check that is due already
        std::chrono::milliseconds look = std::chrono::hours(1);          // how often the clock is looked at
        UpdateTimeLimits limits;
        std::function<UpdateTime()> now = [] {
            return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
        };
    };
    struct Place {
        QString folder;                   // of downloads, for this program alone
        QProcessEnvironment environment;  // of the programs that are started
    };

    // What this program was built with.
    static Source builtInSource();
    static QString standardFolder();
    static UpdateSystem thisSystem(std::string programVersion);

    // The settings and the appearance outlive it.
    QtUpdater(const Source& source, UpdateSystem system, Place place, UserDefaults& defaults, Appearance& appearance,
              Times times);
    QtUpdater(const Source& source, UpdateSystem system, Place place, UserDefaults& defaults, Appearance& appearance)
        : QtUpdater(source, std::move(system), std::move(place), defaults, appearance, Times()) {}

    // The first check is a day after the first start.
    void start() override;
    // Where a window of an earlier check is still open, it comes to the front instead.
    void checkForUpdates() override;
    bool canCheckForUpdates() override { return key_ && !isBusy_; }
    [[nodiscard]] Subscription onCanCheckForUpdatesChanged(std::function<void()> changed) override {
        return changed_.add(std::move(changed));
    }

private:
    void schedule();
    void lookAtTheClock();
    void check(CheckReason reason);
    void tell(const UpdateChoice& choice, CheckReason reason);
    void offer(const AvailableUpdate& update, CheckReason reason);
    void download(const AvailableUpdate& update);
    void handOver(const AvailableUpdate& update, const QString& path);
    void say(const QString& heading, const QString& what);
    void refuse(const QString& heading, UpdateRefusal refusal);
    void cannotOpen(const QString& path);
    void giveUp();
    void setBusy(bool isBusy);
    UpdateFetcher& fetcher();

    Source source_;
    std::optional<UpdateKey> key_;  // present where there is a feed too
    UpdateSystem system_;
    Place place_;
    UserDefaults& defaults_;
    UpdateMemory memory_;
    Times times_;
    bool isBusy_ = false;
    Listeners<> changed_;
    QTimer clock_;
    Subscription settingsChanged_;
    std::unique_ptr<UpdateFetcher> fetcher_;  // from the first check on
    UpdateWindow window_;
    QObject present_;  // while it is there, other programs' ends are told
};

}  // namespace tarvix
