#include "tests/qt/updates/TlsServer.h"

#include <QFile>
#include <QProcess>
#include <QSslKey>
#include <QTcpSocket>
#include <QTimer>
#include <memory>
#include <stdexcept>

namespace tarvix {

namespace {

constexpr int kDropTime = 10;  // milliseconds between two drops

void run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        throw std::runtime_error((program + ": " + process.readAllStandardError()).toStdString());
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) throw std::runtime_error(path.toStdString());
    return file.readAll();
}

}  // namespace

ServedReply foundAs(qsizetype length, const QByteArray& body) {
    return {.bytes = "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(length) + "\r\n\r\n" + body};
}

ServedReply found(const QByteArray& body) { return foundAs(body.size(), body); }

ServedReply redirect(const QByteArray& location) {
    return {.bytes = "HTTP/1.1 302 Found\r\nContent-Length: 0\r\nLocation: " + location + "\r\n\r\n"};
}

TlsServer::TlsServer() {
    const QString key = folder_.filePath("key"), certificate = certificateFile();
    run("openssl",
        {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes", "-days", "2", "-subj",
         "/CN=updates of a test", "-addext", "subjectAltName=IP:127.0.0.1", "-keyout", key, "-out", certificate});
    certificates_ = QSslCertificate::fromData(contentOf(certificate));
    QSslConfiguration configuration;
    configuration.setLocalCertificateChain(certificates_);
    configuration.setPrivateKey(QSslKey(contentOf(key), QSsl::Ec));
    server_.setSslConfiguration(configuration);
    QObject::connect(&server_, &QTcpServer::pendingConnectionAvailable, &server_, [this] { accept(); });
    if (!server_.listen(QHostAddress::LocalHost)) throw std::runtime_error("no port for the server");
}

QByteArray TlsServer::address(const QByteArray& path) const {
    return "https://127.0.0.1:" + QByteArray::number(server_.serverPort()) + path;
}

QSslConfiguration TlsServer::clientTrust() const {
    QSslConfiguration trust = QSslConfiguration::defaultConfiguration();
    trust.setCaCertificates(certificates_);
    return trust;
}

void TlsServer::accept() {
    while (QTcpSocket* const socket = server_.nextPendingConnection()) {
        ++open_;
        QObject::connect(socket, &QTcpSocket::disconnected, &server_, [this, socket] {
            --open_;
            socket->deleteLater();
        });
        auto head = std::make_shared<QByteArray>();
        const auto read = [this, socket, head] {
            *head += socket->readAll();
            if (head->endsWith("\r\n\r\n")) answer(*socket, std::exchange(*head, {}));
        };
        QObject::connect(socket, &QTcpSocket::readyRead, &server_, read);
        read();
    }
}

void TlsServer::answer(QTcpSocket& socket, const QByteArray& head) {
    lastHead_ = head;
    const QByteArray path = head.split(' ').value(1);
    requests_.push_back(path);
    const auto known = replies_.find(path);
    const ServedReply reply = known == replies_.end()
                                  ? ServedReply{.bytes = "HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\ngone"}
                                  : known->second;
    socket.write(reply.bytes);
    if (!reply.drop.isEmpty()) {
        auto* dropper = new QTimer(&socket);
        QObject::connect(dropper, &QTimer::timeout, &socket, [&socket, drop = reply.drop] { socket.write(drop); });
        dropper->start(kDropTime);
    } else if (reply.then == ServedReply::Then::close) {
        socket.disconnectFromHost();
    }
}

}  // namespace tarvix
