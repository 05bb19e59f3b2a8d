// One file over HTTPS.
#pragma once

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>
#include <QSslConfiguration>
#include <QTimer>
#include <chrono>
#include <functional>
#include <optional>

#include "updates/UpdateRefusal.h"

namespace tarvix {

// Every hop is HTTPS with a certificate that is trusted; nothing is sent but the address and the program's version.
// In the thread that it lives in, whose loop must run. Destroying it ends the transfer without a word.
class HttpsTransfer : public QObject {
public:
    struct Network {
        std::optional<QSslConfiguration> tls;  // the system's where it is absent: having it takes time
        QByteArray userAgent;
    };
    struct Limits {
        std::chrono::milliseconds silence;  // without a byte
        std::chrono::milliseconds whole;
    };
    // Takes the file's bytes as they come. A refusal is the end.
    using Take = std::function<std::optional<UpdateRefusal>(const QByteArray& bytes)>;
    // Called once; a refusal says why the file isn't whole.
    using Ended = std::function<void(std::optional<UpdateRefusal> refusal)>;

    HttpsTransfer(QNetworkAccessManager& manager, Network network, Limits limits, Take take, Ended ended);
    ~HttpsTransfer() override;

    void start(const QByteArray& address);

private:
    void get(const QUrl& address);
    void noteStatus();
    void follow();
    void takeBytes();
    void noteFinished();
    void drop();
    void end(std::optional<UpdateRefusal> refusal);

    QNetworkAccessManager& manager_;
    Network network_;
    Take take_;
    Ended ended_;
    QTimer silence_, whole_;
    QNetworkReply* reply_ = nullptr;
    int redirects_ = 0;
};

}  // namespace tarvix
