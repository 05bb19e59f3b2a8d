// The main queue, timers and background tasks on Qt's event loop.
#pragma once

#include <QObject>
#include <QThreadPool>
#include <deque>
#include <mutex>

#include "platform/RunLoop.h"

namespace tarvix {

// Made on the main thread, after the QCoreApplication and destroyed before it. Blocks that haven't run by then never
// do.
class QtRunLoop : public RunLoop, public ReadWatcher {
public:
    QtRunLoop();
    ~QtRunLoop() override;

    // Returns when no body runs any more, so that what bodies use can be taken down.
    void waitForBodies() { pool_.waitForDone(); }

    void onMain(std::function<void()> block) override;
    void inBackground(std::function<void()> body) override;
    void concurrently(std::vector<std::function<void()>> bodies) override;
    [[nodiscard]] Subscription timer(std::chrono::milliseconds interval, Repeat repeat,
                                     std::function<void()> fired) override;
    [[nodiscard]] Subscription onReadable(int fileDescriptor, std::function<void()> ready) override;

private:
    void runBlocks();
    std::function<void()> takeBlock();  // nothing when none waits

    std::mutex mutex_;  // guards blocks_
    std::deque<std::function<void()>> blocks_;
    int wakeUp_ = -1;  // an event counter in the kernel: not 0 while blocks wait
    Subscription blocksWait_;
    QObject children_;  // owns the timers and notifiers whose tokens outlive the loop
    QThreadPool pool_;
};

}  // namespace tarvix
