// The status item as an icon in the desktop's tray.
#pragma once

#include "platform/StatusBar.h"

namespace tarvix {

class QtStatusBar : public StatusBar {
public:
    std::unique_ptr<StatusItem> makeStatusItem() override;
};

}  // namespace tarvix
