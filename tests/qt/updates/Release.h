// A release as it is served: a real Debian package, and the feed that offers it.
#pragma once

#include <QByteArray>
#include <QString>

#include "tests/updates/SigningKey.h"

namespace tarvix {

// Whose content is of this size at least.
QByteArray package(const QString& name, const QString& version, int size = 0);

struct OfferedRelease {
    QByteArray version = "2.0";
    QByteArray address;
    QByteArray signature;
    qsizetype length = 0;
    QByteArray type = "application/vnd.debian.binary-package";
};

QByteArray feedOf(const OfferedRelease& release);

inline QByteArray signatureOf(const SigningKey& key, const QByteArray& file) {
    return QByteArray::fromStdString(key.sign({file.data(), static_cast<std::size_t>(file.size())}));
}

}  // namespace tarvix
