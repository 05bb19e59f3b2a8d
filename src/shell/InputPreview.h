// The Input, as the settings show it to let the user see a change of its look.
#pragma once

#include <string>

namespace tarvix {

// Main thread.
class InputPreview {
public:
    virtual ~InputPreview() = default;
    // Shows The Input with a text at its configured position.
    virtual void showPlaced(const std::string& text) = 0;
    // Shows it with a text where it stands.
    virtual void showInPlace(const std::string& text) = 0;
    virtual void hide() = 0;
};

}  // namespace tarvix
