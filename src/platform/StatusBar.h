// The item that stands for this program among the status items of the desktop. Main thread.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/Menu.h"

namespace tarvix {

// What the item shows and says of itself.
struct StatusButton {
    std::string symbol;  // the name of a symbol image
    std::string imageDescription;
    std::string accessibilityLabel;
    std::string accessibilityTitle;
    std::string accessibilityHelp;
};

// Whether the user may take the item away. One that was taken away is back when it is made visible, at the latest at
// the next start of the program.
enum class StatusItemBehavior : std::uint8_t { none = 0, removalAllowed = 2 };

// The item goes with its destruction.
class StatusItem {
public:
    virtual ~StatusItem() = default;
    virtual void setButton(const StatusButton& button) = 0;
    // Not shown to begin with. Where there is no place for status items nothing shows, and the item appears as soon as
    // there is one.
    virtual void setVisible(bool isVisible) = 0;
    virtual void setBehavior(StatusItemBehavior behavior) = 0;
    // `needsUpdate` is called with the menu before each opening, and what it leaves in it is shown.
    virtual void setMenu(Menu menu, std::function<void(Menu&)> needsUpdate) = 0;
};

class StatusBar {
public:
    virtual ~StatusBar() = default;
    virtual std::unique_ptr<StatusItem> makeStatusItem() = 0;
};

}  // namespace tarvix
