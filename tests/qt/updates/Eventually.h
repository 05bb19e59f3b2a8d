// Waiting for what another thread or program does.
#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

namespace tarvix {

// Lets the loop run until the condition holds; false when it doesn't within a time that is long for a busy machine.
template <class Condition>
bool eventually(Condition holds) {
    const QDeadlineTimer limit(20000);
    while (!holds()) {
        if (limit.hasExpired()) return false;
        QEventLoop pass;
        QTimer::singleShot(5, &pass, &QEventLoop::quit);
        pass.exec();
    }
    return true;
}

}  // namespace tarvix
