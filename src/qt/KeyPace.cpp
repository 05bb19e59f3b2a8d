#include "qt/KeyPace.h"

#include <chrono>

namespace tarvix {

using namespace std::chrono_literals;

namespace {

constexpr auto kLimit = 80ms;  // for an answer
constexpr auto kQuiet = 20ms;  // after which an answer is taken to be complete: it comes in several parts

bool hasOutsideInputMethod() {
    const QByteArray module = qgetenv("QT_IM_MODULE");
    return !module.isEmpty() && module != "compose";
}

}  // namespace

KeyPace::KeyPace() : isOutside_(hasOutsideInputMethod()) {
    waiting_.setSingleShot(true);
    QObject::connect(&waiting_, &QTimer::timeout, &waiting_, [this] { onDealtWith(); });
}

void KeyPace::pressed() {
    if (isOutside_) {
        waiting_.start(kLimit);
    } else {
        tellSoon();
    }
}

void KeyPace::typed() {
    if (!waiting_.isActive()) return;
    waiting_.stop();
    tellSoon();
}

// The press arrives in the field before anything that is queued now.
void KeyPace::tellSoon() {
    QMetaObject::invokeMethod(
        &waiting_, [this] { onDealtWith(); }, Qt::QueuedConnection);
}

void KeyPace::composed() {
    if (waiting_.isActive()) waiting_.start(kQuiet);
}

}  // namespace tarvix
