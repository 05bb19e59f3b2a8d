#include "qt/updates/UpdateFetcher.h"

#include <QFile>
#include <utility>

#include "qt/updates/AppcastReader.h"
#include "qt/updates/UpdateFolder.h"
#include "updates/UpdateTransfer.h"

namespace tarvix {

namespace {

constexpr double kProgressStep = 0.005;

std::optional<UpdateRefusal> refuseDownloaded(const QString& path, const UpdateFetcher::Download& download) {
    if (const auto refusal = refuseStoredFile(path, download.update, download.key)) return refusal;
    // Only a file that is known to be ours is given to a tool that reads archives.
    const auto package = readPackage(path, download.environment);
    if (const auto* refusal = std::get_if<UpdateRefusal>(&package)) return *refusal;
    if (const auto refusal =
            refusePackage(std::get<PackageFields>(package), download.update.version, download.programVersion))
        return refusal;
    // What is handed over is looked at last.
    return refuseStoredFile(path, download.update, download.key);
}

}  // namespace

// Everything but the constructor runs in the thread.
class UpdateFetcher::Worker : public QObject {
public:
    Worker(HttpsTransfer::Network network, UpdateTimeLimits limits)
        : network_(std::move(network)), limits_(limits), manager_(this) {}

    void fetchFeed(const QByteArray& address, std::function<void(FeedResult)> done) {
        feed_.clear();
        const auto take = [this](const QByteArray& bytes) {
            feed_ += bytes;
            return refuseFeed(static_cast<std::uint64_t>(feed_.size()));
        };
        const auto ended = [this, done = std::move(done)](std::optional<UpdateRefusal> refusal) {
            const QByteArray feed = std::exchange(feed_, {});
            if (refusal) return done(*refusal);
            const auto appcast = readAppcast(feed);
            done(appcast ? FeedResult(*appcast) : FeedResult(UpdateRefusal::malformedFeed));
        };
        begin({limits_.silence, limits_.feed}, take, ended, address);
    }

    void download(const Download& download, std::function<void(double)> progress,
                  std::function<void(FileResult)> done) {
        const QString path = download.folder + "/" + QString::fromStdString(download.update.fileName());
        file_.setFileName(path);
        folder_ = download.folder;
        received_ = 0;
        if (!makeUpdateFolder(download.folder) ||
            !file_.open(QIODevice::WriteOnly | QIODevice::NewOnly, QFile::ReadOwner | QFile::WriteOwner))
            return done(UpdateRefusal::cannotStore);
        const auto take = [this, length = download.update.length, progress = std::move(progress),
                           told = 0.0](const QByteArray& bytes) mutable -> std::optional<UpdateRefusal> {
            received_ += static_cast<std::uint64_t>(bytes.size());
            if (const auto refusal = refuseMore(length, received_)) return refusal;
            if (file_.write(bytes) != bytes.size()) return UpdateRefusal::cannotStore;
            if (const double now = static_cast<double>(received_) / static_cast<double>(length);
                now >= told + kProgressStep || received_ == length)
                progress(told = now);
            return std::nullopt;
        };
        const auto ended = [this, download, path, done = std::move(done)](std::optional<UpdateRefusal> refusal) {
            const auto result = close(download, path, refusal);
            if (result) removeUpdateFolder(download.folder);
            folder_.clear();
            done(result ? FileResult(*result) : FileResult(path));
        };
        begin({limits_.silence, limits_.file}, take, ended, QByteArray::fromStdString(download.update.address));
    }

    void cancel() {
        transfer_.reset();
        file_.close();
        if (const QString folder = std::exchange(folder_, {}); !folder.isEmpty()) removeUpdateFolder(folder);
    }

private:
    std::optional<UpdateRefusal> close(const Download& download, const QString& path,
                                       std::optional<UpdateRefusal> refusal) {
        const bool isWritten = file_.flush() && file_.setPermissions(QFile::ReadOwner);
        file_.close();
        // A connection that breaks in the middle leaves a part of the file.
        if (refusal == UpdateRefusal::unreachable && received_ > 0) refusal = UpdateRefusal::truncated;
        if (refusal) return refusal;
        if (const auto ending = refuseEnd(download.update.length, received_)) return ending;
        return isWritten ? refuseDownloaded(path, download) : UpdateRefusal::cannotStore;
    }

    void begin(HttpsTransfer::Limits limits, HttpsTransfer::Take take, HttpsTransfer::Ended ended,
               const QByteArray& address) {
        transfer_ = std::make_unique<HttpsTransfer>(manager_, network_, limits, std::move(take), std::move(ended));
        transfer_->start(address);
    }

    HttpsTransfer::Network network_;
    UpdateTimeLimits limits_;
    QNetworkAccessManager manager_;
    QByteArray feed_;
    QFile file_;
    QString folder_;  // while a file comes into it
    std::uint64_t received_ = 0;
    std::unique_ptr<HttpsTransfer> transfer_;
};

UpdateFetcher::UpdateFetcher(HttpsTransfer::Network network, UpdateTimeLimits limits)
    : worker_(new Worker(std::move(network), limits)) {
    worker_->moveToThread(&thread_);
    QObject::connect(&thread_, &QThread::finished, worker_, &QObject::deleteLater);
    thread_.setObjectName("updates");
    thread_.start(QThread::LowPriority);
}

UpdateFetcher::~UpdateFetcher() {
    thread_.quit();
    thread_.wait();
}

template <class Result>
std::function<void(Result)> UpdateFetcher::toMain(std::function<void(Result)> callback) {
    return [this, turn = turn_, callback = std::move(callback)](Result result) {
        QMetaObject::invokeMethod(
            &main_,
            [this, turn, callback, result = std::move(result)]() mutable {
                if (turn == turn_) callback(std::move(result));
            },
            Qt::QueuedConnection);
    };
}

void UpdateFetcher::fetchFeed(const QByteArray& address, std::function<void(FeedResult)> done) {
    ++turn_;
    QMetaObject::invokeMethod(
        worker_, [worker = worker_, address, done = toMain(std::move(done))] { worker->fetchFeed(address, done); },
        Qt::QueuedConnection);
}

void UpdateFetcher::download(const Download& download, std::function<void(double)> progress,
                             std::function<void(FileResult)> done) {
    ++turn_;
    QMetaObject::invokeMethod(
        worker_,
        [worker = worker_, download, progress = toMain(std::move(progress)), done = toMain(std::move(done))] {
            worker->download(download, progress, done);
        },
        Qt::QueuedConnection);
}

void UpdateFetcher::cancel() {
    ++turn_;
    QMetaObject::invokeMethod(
        worker_, [worker = worker_] { worker->cancel(); }, Qt::QueuedConnection);
}

}  // namespace tarvix
