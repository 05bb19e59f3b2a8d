// This program, as the desktop treats it.
#pragma once

namespace tarvix {

// Main thread.
class Application {
public:
    virtual ~Application() = default;
    // Brings the settings to the front.
    virtual void showSettings() = 0;
};

}  // namespace tarvix
