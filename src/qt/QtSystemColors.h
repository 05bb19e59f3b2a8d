// The desktop's colours, from Qt's palette.
#pragma once

#include "platform/Panels.h"

namespace tarvix {

class QtSystemColors : public SystemColors {
public:
    Color findHighlight() override;
    Color controlAccent() override;
    Color selectedControl() override;
};

}  // namespace tarvix
