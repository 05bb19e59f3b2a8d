// Whether a package that was downloaded is the update that was offered.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "updates/UpdateRefusal.h"

namespace tarvix {

// What a package says of itself.
struct PackageFields {
    std::string name;
    std::string version;  // may carry an epoch in front and the packager's revision behind
    friend bool operator==(const PackageFields&, const PackageFields&) = default;
};

// From lines "Package: tarvix" and "Version: 1.2"; absent if one of them is missing.
std::optional<PackageFields> packageFieldsFrom(std::string_view control);

// A signature says that a file was released, not that it is the newest: who has the feed alone could offer an old
// release, with all its faults, as a new one.
std::optional<UpdateRefusal> refusePackage(const PackageFields& package, std::string_view offeredVersion,
                                           std::string_view programVersion);

}  // namespace tarvix
