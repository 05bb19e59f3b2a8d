#include "qt/QtRunLoop.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <latch>
#include <memory>

namespace tarvix {

namespace {

// Bodies mostly wait for other applications, so that there are more of them than processors.
constexpr int kLeastThreads = 8;

// The token of a timer or notifier. Deletion waits for the loop, as the token may be dropped from within its own
// signal.
template <class Source>
Subscription owning(Source* source) {
    return Subscription([source = QPointer<Source>(source)] {
        if (!source) return;
        source->disconnect();
        source->deleteLater();
    });
}

}  // namespace

QtRunLoop::QtRunLoop() : wakeUp_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (wakeUp_ < 0) std::abort();  // not one file descriptor left
    pool_.setMaxThreadCount(std::max(kLeastThreads, QThread::idealThreadCount()));
    blocksWait_ = onReadable(wakeUp_, [this] { runBlocks(); });
}

QtRunLoop::~QtRunLoop() {
    waitForBodies();
    blocksWait_.reset();
    close(wakeUp_);
}

void QtRunLoop::onMain(std::function<void()> block) {
    const std::lock_guard lock(mutex_);
    blocks_.push_back(std::move(block));
    eventfd_write(wakeUp_, 1);
}

// Qt's own posted events would do but for one thing: those posted meanwhile run in the same pass, and a block that
// posts itself again would keep key presses out for ever. So a pass runs as many blocks as it finds. They are taken one
// by one, and the counter stays up until the last is taken, so that a nested loop within a block goes on with the next
// one.
void QtRunLoop::runBlocks() {
    std::size_t count = 0;
    {
        const std::lock_guard lock(mutex_);
        count = blocks_.size();
    }
    for (; count > 0; --count) {
        const std::function<void()> block = takeBlock();
        if (!block) return;
        block();
    }
}

std::function<void()> QtRunLoop::takeBlock() {
    const std::lock_guard lock(mutex_);
    if (blocks_.empty()) return nullptr;
    std::function<void()> block = std::move(blocks_.front());
    blocks_.pop_front();
    if (blocks_.empty()) {
        eventfd_t ignored = 0;
        eventfd_read(wakeUp_, &ignored);
    }
    return block;
}

void QtRunLoop::inBackground(std::function<void()> body) { pool_.start(std::move(body)); }

// Whoever comes first takes the next body, the caller too, so that callers that fill the whole pool still come to an
// end.
void QtRunLoop::concurrently(std::vector<std::function<void()>> bodies) {
    struct Work {
        std::vector<std::function<void()>> bodies;
        std::atomic<std::size_t> next = 0;
        std::latch ended;
        explicit Work(std::vector<std::function<void()>> all)
            : bodies(std::move(all)), ended(static_cast<std::ptrdiff_t>(bodies.size())) {}
        void takeOne() {
            const std::size_t mine = next++;
            if (mine >= bodies.size()) return;
            bodies[mine]();
            ended.count_down();
        }
    };
    const auto work = std::make_shared<Work>(std::move(bodies));
    for (std::size_t i = 1; i < work->bodies.size(); ++i) pool_.start([work] { work->takeOne(); });
    while (work->next < work->bodies.size()) work->takeOne();
    work->ended.wait();
}

Subscription QtRunLoop::timer(std::chrono::milliseconds interval, Repeat repeat, std::function<void()> fired) {
    auto* timer = new QTimer(&children_);
    timer->setTimerType(Qt::PreciseTimer);
    timer->setSingleShot(repeat == Repeat::once);
    QObject::connect(timer, &QTimer::timeout, timer, std::move(fired));
    timer->start(interval);
    return owning(timer);
}

Subscription QtRunLoop::onReadable(int fileDescriptor, std::function<void()> ready) {
    auto* notifier = new QSocketNotifier(fileDescriptor, QSocketNotifier::Read, &children_);
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [ready = std::move(ready)] { ready(); });
    return Subscription([notifier = QPointer<QSocketNotifier>(notifier)] {
        if (!notifier) return;
        notifier->setEnabled(false);  // the descriptor may be closed before the deletion
        notifier->disconnect();
        notifier->deleteLater();
    });
}

}  // namespace tarvix
