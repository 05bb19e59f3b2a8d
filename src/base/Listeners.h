// A list of listeners whose entries live as long as their tokens.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "base/Subscription.h"

namespace tarvix {

// One thread only. A listener may drop its own or another's token, or add one, while it is being called; an entry
// dropped meanwhile isn't called, one added meanwhile is called from the next time on. A token may outlive the list.
template <class... Args>
class Listeners {
public:
    using Listener = std::function<void(Args...)>;

    Subscription add(Listener listener) {
        const std::uint64_t id = ++state_->lastId;
        state_->entries.emplace(id, std::make_shared<Listener>(std::move(listener)));
        return Subscription([state = std::weak_ptr(state_), id] {
            if (const auto alive = state.lock()) alive->entries.erase(id);
        });
    }

    void operator()(Args... args) const {
        const auto state = state_;  // a listener may destroy this list
        std::vector<std::uint64_t> ids;
        for (const auto& entry : state->entries) ids.push_back(entry.first);
        for (const std::uint64_t id : ids) {
            const auto found = state->entries.find(id);
            if (found == state->entries.end()) continue;
            const auto listener = found->second;
            (*listener)(args...);
        }
    }

    bool empty() const { return state_->entries.empty(); }

private:
    struct State {
        std::uint64_t lastId = 0;
        std::map<std::uint64_t, std::shared_ptr<Listener>> entries;  // in the order of adding
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace tarvix
