// A value or the reason why there is none.
#pragma once

#include <cassert>
#include <string>
#include <utility>
#include <variant>

namespace tarvix {

// What another program or the desktop refused, in words for the error output.
struct Fault {
    std::string reason;
};

template <class T>
class [[nodiscard]] Outcome {
public:
    Outcome(T value) : held_(std::in_place_index<0>, std::move(value)) {}
    Outcome(Fault fault) : held_(std::in_place_index<1>, std::move(fault)) {}

    explicit operator bool() const { return held_.index() == 0; }
    T& value() {
        assert(*this);
        return std::get<0>(held_);
    }
    const std::string& reason() const {
        assert(!*this);
        return std::get<1>(held_).reason;
    }

private:
    std::variant<T, Fault> held_;
};

}  // namespace tarvix
