// Where a downloaded update lies until it is installed: a folder that nobody else can look into or write to.
#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <optional>

#include "updates/UpdateChoice.h"
#include "updates/UpdatePackage.h"

namespace tarvix {

// All of them block: any thread but the main one, removeUpdateFolder() apart.

// What was there before goes.
bool makeUpdateFolder(const QString& folder);
void removeUpdateFolder(const QString& folder);

// Looks at the file as it is on the disk now: ours, out of others' reach, of the right length and signed.
std::optional<UpdateRefusal> refuseStoredFile(const QString& path, const AvailableUpdate& update, const UpdateKey& key);

// Asks Debian's own tool, which `environment` has the path to, what the package says of itself.
std::variant<PackageFields, UpdateRefusal> readPackage(const QString& path, const QProcessEnvironment& environment);

}  // namespace tarvix
