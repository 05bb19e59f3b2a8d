#include "qt/AfterTheInput.h"

#include <chrono>
#include <utility>

namespace tarvix {

namespace {

constexpr auto kPatience = std::chrono::milliseconds(50);

}

AfterTheInput::AfterTheInput() {
    patience_.setSingleShot(true);
    patience_.setInterval(kPatience);
    QObject::connect(&patience_, &QTimer::timeout, &patience_, [this] { theInputIsPainted(); });
}

Subscription AfterTheInput::run(std::function<void()> show) {
    const auto entry = std::make_shared<const std::function<void()>>(std::move(show));
    waiting_.push_back(entry);
    if (!patience_.isActive()) patience_.start();
    return Subscription([entry] {});
}

void AfterTheInput::theInputIsPainted() {
    patience_.stop();
    for (const auto& entry : std::exchange(waiting_, {}))
        if (const auto show = entry.lock()) (*show)();
}

}  // namespace tarvix
