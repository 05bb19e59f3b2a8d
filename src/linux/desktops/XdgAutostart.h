// Starting at login as the desktops know it: an entry in the user's autostart folder.
#pragma once

#include "platform/LoginItems.h"

namespace tarvix {

class XdgAutostart : public LoginItems {
public:
    bool isEnabled() override { return false; }
    std::optional<std::string> enable() override { return "there is no autostart folder"; }
    std::optional<std::string> disable() override { return std::nullopt; }
    bool isHelperEnabled(std::string_view) override { return false; }
    void removeHelper(std::string_view) override {}
};

}  // namespace tarvix
