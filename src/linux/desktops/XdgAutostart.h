// Starting at login as the desktops know it: an entry in the user's autostart folder.
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "platform/LoginItems.h"

namespace tarvix {

// Where entries are, and for whom.
struct AutostartPlaces {
    std::filesystem::path userFolder;
    std::vector<std::filesystem::path> systemFolders;  // in the order of precedence, after the user's
    std::vector<std::string> desktops;                 // the names of the present desktop
    std::string searchPath;                            // of programs, with colons between
    std::string program;                               // this one, as an entry is to name it

    // Those of this process's environment.
    static AutostartPlaces standard();
};

// An entry of the user's own stands before the system's of the same name, whatever it says; what isn't an ordinary file
// there is left alone. The files are looked at anew each time.
class XdgAutostart : public LoginItems {
public:
    explicit XdgAutostart(AutostartPlaces places) : places_(std::move(places)) {}

    // An entry whose program is gone starts nothing.
    bool isEnabled() override;
    std::optional<std::string> enable() override;
    std::optional<std::string> disable() override;
    // Whether its program is still there is no matter: the entry was this version's to replace.
    bool isHelperEnabled(std::string_view identifier) override;
    void removeHelper(std::string_view identifier) override;

private:
    std::optional<std::string> entryInForce(const std::string& name) const;
    std::optional<std::string> entryOfSystem(const std::string& name) const;
    std::optional<std::string> turnOff(const std::string& name);
    std::optional<std::string> write(const std::string& name, const std::string& entry);
    std::filesystem::path ofUser(const std::string& name) const { return places_.userFolder / name; }

    AutostartPlaces places_;
};

}  // namespace tarvix
