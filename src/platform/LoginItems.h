// Whether this program is started when the user logs in. The desktop keeps the answer, and others may change it. Main
// thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarvix {

class LoginItems {
public:
    virtual ~LoginItems() = default;

    // The entry of the program itself.
    virtual bool isEnabled() = 0;
    // Each gives the reason of a failure in words, nothing when it went well.
    virtual std::optional<std::string> enable() = 0;
    virtual std::optional<std::string> disable() = 0;

    // The entry that older versions made, a helper of this identifier: whether it is there and in force, and its end,
    // whose failure nobody could help.
    virtual bool isHelperEnabled(std::string_view identifier) = 0;
    virtual void removeHelper(std::string_view identifier) = 0;
};

}  // namespace tarvix
