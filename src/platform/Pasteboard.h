// The general pasteboard: the clipboard.
#pragma once

#include <string>
#include <string_view>

namespace tarvix {

// Main thread.
class Pasteboard {
public:
    virtual ~Pasteboard() = default;
    // Empties the pasteboard and takes it over.
    virtual void clearContents() = 0;
    virtual void setString(std::string text) = 0;
};

}  // namespace tarvix
