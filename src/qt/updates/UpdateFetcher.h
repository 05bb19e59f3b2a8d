// What of an update needs the network or the disk, in a thread of its own.
#pragma once

#include <QObject>
#include <QProcessEnvironment>
#include <QString>
#include <QThread>
#include <chrono>
#include <functional>
#include <memory>
#include <variant>

#include "qt/updates/HttpsTransfer.h"
#include "updates/UpdateChoice.h"

namespace tarvix {

struct UpdateTimeLimits {
    std::chrono::milliseconds silence = std::chrono::seconds(30);  // without a byte
    std::chrono::milliseconds feed = std::chrono::minutes(1);
    std::chrono::milliseconds file = std::chrono::hours(2);
};

// One thing at a time. Main thread; the callbacks come there too, and none after cancel() or the end of this object.
class UpdateFetcher {
public:
    using FeedResult = std::variant<Appcast, UpdateRefusal>;
    using FileResult = std::variant<QString, UpdateRefusal>;  // the file's path

    struct Download {
        AvailableUpdate update;
        UpdateKey key;
        std::string programVersion;
        QString folder;                   // made anew
        QProcessEnvironment environment;  // of the tool that looks into the file
    };

    UpdateFetcher(HttpsTransfer::Network network, UpdateTimeLimits limits);
    ~UpdateFetcher();

    void fetchFeed(const QByteArray& address, std::function<void(FeedResult)> done);
    // The file that it ends with is the one that was offered, signed, and not writable by anybody. `progress` is told
    // from 0 to 1.
    void download(const Download& download, std::function<void(double)> progress, std::function<void(FileResult)> done);
    void cancel();

private:
    class Worker;

    // Makes a callback that can be called in the worker's thread out of one for the main thread.
    template <class Result>
    std::function<void(Result)> toMain(std::function<void(Result)> callback);

    QObject main_;  // where callbacks go to
    int turn_ = 0;  // callbacks of earlier turns are dropped
    QThread thread_;
    Worker* worker_;
};

}  // namespace tarvix
