// The values that a look of The Input has by its name.
#pragma once

namespace tarvix {

// In points, but for the opacity.
struct InputPresetDefaults {
    double textSize;
    double backgroundOpacity;
    double cornerRadius;
    double borderThickness;
    // Exact: a look that is close to another is a look of its own.
    friend bool operator==(const InputPresetDefaults&, const InputPresetDefaults&) = default;
};

}  // namespace tarvix
