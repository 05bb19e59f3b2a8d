// One fetch for two readers of a search that want the same window at the same time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <future>
#include <list>
#include <memory>
#include <mutex>

#include "linux/atspi/WindowFetch.h"

namespace tarvix::atspi {

// Any thread. Nothing is kept beyond the end of a fetch: who comes later fetches anew.
class SharedFetches {
public:
    using Tree = std::shared_ptr<const WindowTree>;  // null: the window shows none

    // Who reads. One fetch serves each of them once, so that a search never gets what a search before it has asked for,
    // which may still be waiting for an application that doesn't answer.
    enum class Reader : std::uint8_t { walk, menuBar };

    // What `fetch` gives, or what the fetch of the other reader gives that is under way for this window. Blocks as long
    // as that fetch does. Where that one ends without a result, by an exception, the joined one has none either.
    Tree fetch(Reader reader, std::uint32_t window, const std::function<Tree()>& fetch);

    // How many readers wait for a window at this moment, on how many fetches soever.
    std::size_t waiting(std::uint32_t window);

private:
    struct Flight {
        std::uint32_t window = 0;
        std::uint32_t readers = 0;  // as bits
        std::promise<Tree> promise;
        std::shared_future<Tree> result = promise.get_future().share();
    };

    // The latest of this window that hasn't had such a reader, who is counted from now on; null where there is none.
    std::shared_ptr<Flight> boarded(std::uint32_t bit, std::uint32_t window);
    std::shared_ptr<Flight> begun(std::uint32_t bit, std::uint32_t window);
    void end(Flight& flight, Tree tree);

    std::mutex mutex_;                             // guards the list, never held during a fetch
    std::list<std::shared_ptr<Flight>> underWay_;  // the latest first
};

}  // namespace tarvix::atspi
