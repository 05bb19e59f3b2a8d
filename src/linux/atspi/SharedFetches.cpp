#include "linux/atspi/SharedFetches.h"

#include <algorithm>
#include <bit>

namespace tarvix::atspi {

std::shared_ptr<SharedFetches::Flight> SharedFetches::boarded(std::uint32_t bit, std::uint32_t window) {
    const std::lock_guard lock(mutex_);
    const auto found = std::ranges::find_if(
        underWay_, [&](const auto& each) { return each->window == window && (each->readers & bit) == 0; });
    if (found == underWay_.end()) return nullptr;
    (*found)->readers |= bit;
    return *found;
}

std::shared_ptr<SharedFetches::Flight> SharedFetches::begun(std::uint32_t bit, std::uint32_t window) {
    auto flight = std::make_shared<Flight>();
    flight->window = window;
    flight->readers = bit;
    const std::lock_guard lock(mutex_);
    underWay_.push_front(flight);
    return flight;
}

void SharedFetches::end(Flight& flight, Tree tree) {
    {
        const std::lock_guard lock(mutex_);
        underWay_.remove_if([&](const auto& each) { return each.get() == &flight; });
    }
    flight.promise.set_value(std::move(tree));
}

SharedFetches::Tree SharedFetches::fetch(Reader reader, std::uint32_t window, const std::function<Tree()>& fetch) {
    const std::uint32_t bit = 1U << static_cast<unsigned>(reader);
    if (const auto joined = boarded(bit, window)) return joined->result.get();
    const std::shared_ptr<Flight> own = begun(bit, window);
    try {
        Tree tree = fetch();
        end(*own, tree);
        return tree;
    } catch (...) {
        end(*own, nullptr);  // or the other reader would wait for ever
        throw;
    }
}

std::size_t SharedFetches::waiting(std::uint32_t window) {
    const std::lock_guard lock(mutex_);
    std::size_t readers = 0;
    for (const auto& each : underWay_)
        if (each->window == window) readers += static_cast<std::size_t>(std::popcount(each->readers));
    return readers;
}

}  // namespace tarvix::atspi
