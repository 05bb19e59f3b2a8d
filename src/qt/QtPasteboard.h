// The clipboard.
#pragma once

#include "platform/Pasteboard.h"

namespace tarvix {

// What was set stays pastable while the program runs and nobody else takes the clipboard over.
class QtPasteboard : public Pasteboard {
public:
    void clearContents() override;
    void setString(std::string text) override;
};

}  // namespace tarvix
