#include "simulated/SimulatedUserDefaults.h"

#include <utility>

namespace tarvix {

void SimulatedUserDefaults::setFromOutside(std::string_view key, Value value) {
    store(key, std::move(value));
    changed_({});
}

std::optional<UserDefaults::Value> SimulatedUserDefaults::get(std::string_view key) const {
    const std::lock_guard lock(mutex_);
    const auto found = values_.find(key);
    if (found == values_.end()) return std::nullopt;
    return found->second;
}

void SimulatedUserDefaults::set(std::string_view key, Value value) {
    store(key, std::move(value));
    changed_(key);
}

void SimulatedUserDefaults::remove(std::string_view key) {
    const std::string removed(key);  // the caller's text may be the key that is about to go
    {
        const std::lock_guard lock(mutex_);
        const auto found = values_.find(key);
        if (found == values_.end()) return;
        values_.erase(found);
    }
    changed_(removed);
}

Subscription SimulatedUserDefaults::onChange(std::function<void(std::string_view)> changed) {
    return changed_.add(std::move(changed));
}

void SimulatedUserDefaults::store(std::string_view key, Value value) {
    const std::lock_guard lock(mutex_);
    values_.insert_or_assign(std::string(key), std::move(value));
}

}  // namespace tarvix
