#include "updates/UpdatePackage.h"

#include <algorithm>
#include <compare>
#include <cstddef>

#include "updates/Version.h"

namespace tarvix {

namespace {

constexpr std::string_view kPackage = "tarvix";

std::string_view upstreamVersion(std::string_view version) {
    if (const std::size_t epoch = version.find(':'); epoch != std::string_view::npos) version.remove_prefix(epoch + 1);
    return version.substr(0, version.rfind('-'));
}

std::string valueOf(std::string_view control, std::string_view field) {
    while (!control.empty()) {
        const std::size_t end = std::min(control.find('\n'), control.size());
        if (const std::string_view line = control.substr(0, end); line.starts_with(field))
            return std::string(line.substr(field.size()));
        control.remove_prefix(std::min(end + 1, control.size()));
    }
    return {};
}

}  // namespace

std::optional<PackageFields> packageFieldsFrom(std::string_view control) {
    PackageFields fields{valueOf(control, "Package: "), valueOf(control, "Version: ")};
    return fields.name.empty() || fields.version.empty() ? std::nullopt : std::optional(std::move(fields));
}

std::optional<UpdateRefusal> refusePackage(const PackageFields& package, std::string_view offeredVersion,
                                           std::string_view programVersion) {
    if (package.name != kPackage) return UpdateRefusal::otherFile;
    const std::string_view version = upstreamVersion(package.version);
    if (const auto order = compareVersions(version, programVersion); std::is_lteq(order))
        return std::is_lt(order) ? UpdateRefusal::downgrade : UpdateRefusal::sameVersion;
    // A version with a hyphen of its own has lost what follows it.
    if (std::is_neq(compareVersions(version, offeredVersion)) &&
        std::is_neq(compareVersions(package.version, offeredVersion)))
        return UpdateRefusal::otherFile;
    return std::nullopt;
}

}  // namespace tarvix
