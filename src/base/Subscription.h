// The token that every listening operation returns.
#pragma once

#include <functional>
#include <utility>

namespace tarvix {

// Owns one end of a subscription: dropping it stops the calls. Movable, not copyable. Drop it on the thread that the
// calls come on; then none comes afterwards.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::function<void()> cancel) : cancel_(std::move(cancel)) {}
    Subscription(Subscription&& other) noexcept : cancel_(std::exchange(other.cancel_, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            reset();
            cancel_ = std::exchange(other.cancel_, nullptr);
        }
        return *this;
    }
    ~Subscription() { reset(); }

    void reset() {
        if (auto cancel = std::exchange(cancel_, nullptr)) cancel();
    }
    explicit operator bool() const { return cancel_ != nullptr; }

private:
    std::function<void()> cancel_;
};

}  // namespace tarvix
