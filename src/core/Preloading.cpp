#include "core/Preloading.h"

#include <utility>

namespace tarvix {

void toggleTheInput(TarvixEngine& engine, TheInputProtocol& theInput, Preloading& preloading) {
    if (theInput.isVisible()) {
        preloading.cancel();
        theInput.close();
    } else {
        engine.startSession();
        theInput.open();
        preloading.start(engine, theInput);
    }
}

void Preloading::cancel() {
    if (preloadingTask_) preloadingTask_->cancel();
}

// The task touches the engine on the main thread alone: what it reads of it is taken before it goes to the background,
// and what it writes is written in blocks of the main queue, in the order in which the task comes to it.
void Preloading::start(TarvixEngine& engine, TheInputProtocol& theInput) {
    preloadingTask_ = std::make_shared<Task>();
    theInput.setShowPreloading(true);
    runLoop_.inBackground([this, &engine, &theInput, &runLoop = runLoop_, alive = std::weak_ptr(alive_),
                           search = engine.searchEngine(), pid = engine.axFrontmostApplicationPID().value_or(-1)] {
        auto elements = std::make_shared<OrderedSet<AccessibilityElement>>(search->candidates(pid));
        search->prepare(*elements);
        runLoop.onMain([this, &engine, &theInput, alive, elements] {
            if (!alive.expired()) finish(engine, theInput, std::move(*elements));
        });
    });
}

// The test is on the latest session's task and not on the one that ends here: once a newer session has begun, a
// cancelled task shows the Targets of that one's state too. Nor does it matter whether The Input is still visible.
void Preloading::finish(TarvixEngine& engine, TheInputProtocol& theInput, OrderedSet<AccessibilityElement> elements) {
    const std::size_t count = elements.size();
    engine.setAllElements(std::move(elements));
    milestones_.reached(milestone::candidatesRead, count);  // from here on a key finds them
    theInput.setShowPreloading(false);
    if (!preloadingTask_ || preloadingTask_->isCancelled()) return;
    runLoop_.onMain([&engine, &theInput, alive = std::weak_ptr(alive_)] {
        if (alive.expired()) return;
        const OrderedSet<AccessibilityElement> matching = engine.filteredElements(theInput.value());
        engine.removeTargets();
        engine.showTargets(matching);
    });
}

}  // namespace tarvix
