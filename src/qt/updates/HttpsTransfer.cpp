#include "qt/updates/HttpsTransfer.h"

#include <QSslSocket>
#include <utility>

#include "updates/UpdateAddress.h"

namespace tarvix {

namespace {

constexpr int kFound = 200;
constexpr qint64 kBuffer = 256 * 1024;

bool isRedirect(int status) {
    return status >= 301 && status <= 308 && status != 304 && status != 305 && status != 306;
}

int statusOf(const QNetworkReply& reply) { return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(); }

UpdateRefusal refusalOf(QNetworkReply::NetworkError error) {
    switch (error) {
        case QNetworkReply::SslHandshakeFailedError:
            return UpdateRefusal::untrustedServer;
        case QNetworkReply::TimeoutError:
            return UpdateRefusal::timedOut;
        default:
            return UpdateRefusal::unreachable;
    }
}

QNetworkRequest requestFor(const QUrl& address, const HttpsTransfer::Network& network) {
    QNetworkRequest request(address);
    QSslConfiguration tls = network.tls.value_or(QSslConfiguration::defaultConfiguration());
    tls.setPeerVerifyMode(QSslSocket::VerifyPeer);
    tls.setProtocol(QSsl::TlsV1_2OrLater);
    request.setSslConfiguration(tls);
    request.setHeader(QNetworkRequest::UserAgentHeader, network.userAgent);
    // The lengths that count are those of the file itself; and what isn't packed can't be packed too well.
    request.setRawHeader("Accept-Encoding", "identity");
    // Each new address is looked at before it is asked.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);  // one file at a time gains nothing by it
    return request;
}

}  // namespace

HttpsTransfer::HttpsTransfer(QNetworkAccessManager& manager, Network network, Limits limits, Take take, Ended ended)
    : manager_(manager),
      network_(std::move(network)),
      take_(std::move(take)),
      ended_(std::move(ended)),
      silence_(this),
      whole_(this) {
    silence_.setSingleShot(true);
    silence_.setInterval(limits.silence);
    whole_.setSingleShot(true);
    whole_.setInterval(limits.whole);
    for (QTimer* timer : {&silence_, &whole_})
        connect(timer, &QTimer::timeout, this, [this] { end(UpdateRefusal::timedOut); });
}

HttpsTransfer::~HttpsTransfer() { drop(); }

void HttpsTransfer::start(const QByteArray& address) {
    const QUrl url = QUrl::fromEncoded(address, QUrl::StrictMode);
    whole_.start();
    if (const auto refusal = refuseAddress({address.data(), static_cast<std::size_t>(address.size())}))
        end(refusal);
    else if (!url.isValid())
        end(UpdateRefusal::hostileAddress);
    else
        get(url);
}

void HttpsTransfer::get(const QUrl& address) {
    silence_.start();
    reply_ = manager_.get(requestFor(address, network_));
    reply_->setReadBufferSize(kBuffer);
    connect(reply_, &QNetworkReply::metaDataChanged, this, [this] { noteStatus(); });
    connect(reply_, &QNetworkReply::readyRead, this, [this] { takeBytes(); });
    connect(reply_, &QNetworkReply::finished, this, [this] { noteFinished(); });
}

void HttpsTransfer::noteStatus() {
    const int status = statusOf(*reply_);
    if (isRedirect(status))
        follow();
    else if (status != 0 && status != kFound)
        end(UpdateRefusal::serverError);
}

void HttpsTransfer::follow() {
    const QUrl target = reply_->url().resolved(QUrl::fromEncoded(reply_->rawHeader("Location"), QUrl::StrictMode));
    const QByteArray address = target.toEncoded();
    if (const auto refusal = refuseRedirect({address.data(), static_cast<std::size_t>(address.size())}, ++redirects_)) {
        end(refusal);
        return;
    }
    drop();
    get(target);
}

void HttpsTransfer::takeBytes() {
    if (statusOf(*reply_) != kFound) return;
    const QByteArray bytes = reply_->readAll();
    if (bytes.isEmpty()) return;
    silence_.start();
    if (const auto refusal = take_(bytes)) end(refusal);
}

void HttpsTransfer::noteFinished() {
    const auto error = reply_->error();
    const QNetworkReply* const present = reply_;
    takeBytes();
    if (reply_ != present) return;  // what it took was the end
    end(error == QNetworkReply::NoError ? std::nullopt : std::optional(refusalOf(error)));
}

// Its end is also the connection's; it isn't ended within its own signals.
void HttpsTransfer::drop() {
    QNetworkReply* const reply = std::exchange(reply_, nullptr);
    if (reply == nullptr) return;
    reply->disconnect(this);
    reply->deleteLater();
}

void HttpsTransfer::end(std::optional<UpdateRefusal> refusal) {
    silence_.stop();
    whole_.stop();
    drop();
    if (const Ended ended = std::exchange(ended_, nullptr)) ended(refusal);
}

}  // namespace tarvix
