// The settings file as a flat JSON object, for QSettings.
#pragma once

#include <QSettings>

namespace tarvix {

// QSettings' format for such files; bools, numbers and texts keep their type, and values of another kind are kept as
// they are. A file that isn't a JSON object is set aside, with ".damaged" added to its name and a line on the error
// output, and counts as empty.
QSettings::Format jsonSettingsFormat();

}  // namespace tarvix
