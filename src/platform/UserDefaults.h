// The persistent key-value store of the user's account.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "base/Subscription.h"

namespace tarvix {

// Values keep their type. Main thread, but for get(), which any thread may call.
class UserDefaults {
public:
    using Value = std::variant<bool, double, std::string>;

    virtual ~UserDefaults() = default;
    // Absent until somebody has set it. Sees what any writer has stored, other processes included.
    virtual std::optional<Value> get(std::string_view key) const = 0;
    virtual void set(std::string_view key, Value value) = 0;
    virtual void remove(std::string_view key) = 0;
    // Called after a change by any writer, with the key where it is known and an empty text where it isn't.
    [[nodiscard]] virtual Subscription onChange(std::function<void(std::string_view key)> changed) = 0;
};

}  // namespace tarvix
