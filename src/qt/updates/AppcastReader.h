// The feed of updates as it comes from the network.
#pragma once

#include <QByteArray>
#include <optional>

#include "updates/Appcast.h"

namespace tarvix {

// RSS 2.0 with the appcast attributes. Absent for what isn't well-formed XML with a channel, and for everything that
// declares a document type: a feed needs none, and entities of its own can be made to grow without bounds or to read
// files. Any thread.
std::optional<Appcast> readAppcast(const QByteArray& xml);

}  // namespace tarvix
