// A server of updates in this process, which misbehaves on request.
#pragma once

#include <QByteArray>
#include <QSslConfiguration>
#include <QSslServer>
#include <QString>
#include <QTemporaryDir>
#include <map>
#include <vector>

namespace tarvix {

struct ServedReply {
    enum class Then { close, hang };

    QByteArray bytes;  // from the status line on
    Then then = Then::close;
    QByteArray drop = {};  // sent again and again while the connection stands
};

ServedReply found(const QByteArray& body);
// With a length of its own choice.
ServedReply foundAs(qsizetype length, const QByteArray& body);
ServedReply redirect(const QByteArray& location);

// On 127.0.0.1, with a certificate that is made for it and that only `clientTrust()` trusts.
class TlsServer {
public:
    TlsServer();

    QByteArray address(const QByteArray& path) const;
    QSslConfiguration clientTrust() const;
    QString certificateFile() const { return folder_.filePath("certificate"); }

    void serve(const QByteArray& path, ServedReply reply) { replies_[path] = std::move(reply); }
    // The paths that were asked for, in order.
    const std::vector<QByteArray>& requests() const { return requests_; }
    // The headers of the last request.
    const QByteArray& lastHead() const { return lastHead_; }
    int openConnections() const { return open_; }

private:
    void accept();
    void answer(QTcpSocket& socket, const QByteArray& head);

    QTemporaryDir folder_;
    QList<QSslCertificate> certificates_;
    QSslServer server_;
    std::map<QByteArray, ServedReply> replies_;
    std::vector<QByteArray> requests_;
    QByteArray lastHead_;
    int open_ = 0;
};

}  // namespace tarvix
