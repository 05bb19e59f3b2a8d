// The key-value store, in memory.
#pragma once

#include <map>
#include <mutex>
#include <string>

#include "base/Listeners.h"
#include "platform/UserDefaults.h"

namespace tarvix {

// A value of the wrong kind is made by setting one.
class SimulatedUserDefaults : public UserDefaults {
public:
    // A write by another process: the observers learn that something has changed, and not what.
    void setFromOutside(std::string_view key, Value value);

    std::optional<Value> get(std::string_view key) const override;
    void set(std::string_view key, Value value) override;
    void remove(std::string_view key) override;
    [[nodiscard]] Subscription onChange(std::function<void(std::string_view key)> changed) override;

    // A text literal is a text here; as a `Value` it would have to be spelt out.
    void set(std::string_view key, const char* text) { set(key, Value(std::string(text))); }

private:
    void store(std::string_view key, Value value);

    mutable std::mutex mutex_;  // guards values_
    std::map<std::string, Value, std::less<>> values_;
    Listeners<std::string_view> changed_;
};

}  // namespace tarvix
