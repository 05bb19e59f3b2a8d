// What is started at login, as far as it is this program.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "platform/LoginItems.h"
#include "simulated/Journal.h"

namespace tarvix {

class SimulatedLoginItems : public LoginItems {
public:
    explicit SimulatedLoginItems(Journal& journal) : journal_(journal) {}

    bool isEnabled() override { return enabled; }
    std::optional<std::string> enable() override { return change(true); }
    std::optional<std::string> disable() override { return change(false); }
    bool isHelperEnabled(std::string_view identifier) override { return helpers.contains(std::string(identifier)); }
    void removeHelper(std::string_view identifier) override {
        helpers.erase(std::string(identifier));
        journal_.note(Topic::loginItem, "removed helper " + std::string(identifier));
    }

    bool enabled = false;
    std::set<std::string> helpers;       // the identifiers that are in force
    std::optional<std::string> failure;  // every change fails with this reason

private:
    std::optional<std::string> change(bool to) {
        journal_.note(Topic::loginItem, to ? "enabled login item" : "disabled login item");
        if (!failure) enabled = to;
        return failure;
    }

    Journal& journal_;
};

}  // namespace tarvix
