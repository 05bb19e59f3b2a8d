// The desktop's scale, as a session's settings tell it to the applications.
#pragma once

#include <optional>
#include <string>

#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Process.h"

namespace tarvix {

// Xft.dpi among the X server's resources, until the object goes.
class ResourceDpi {
public:
    explicit ResourceDpi(int dpi);
    ~ResourceDpi();
    ResourceDpi(const ResourceDpi&) = delete;
    ResourceDpi& operator=(const ResourceDpi&) = delete;
};

// A settings manager that tells of dots per inch, and of the scale of windows that these include; until the object
// goes.
class SettingsManager {
public:
    SettingsManager(int dpi, int windowScale = 1);

    // Whether it is there. Applications that start after that see its settings.
    bool isReady();
    void setDpi(int dpi, int windowScale = 1);

private:
    ScratchFolder folder_;
    std::optional<Process> process_;
};

}  // namespace tarvix
