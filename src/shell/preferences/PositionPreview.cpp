#include "shell/preferences/PositionPreview.h"

#include <chrono>

namespace tarvix {

namespace {

constexpr std::chrono::milliseconds kShows{1280};

}

void PositionPreview::changed() {
    preview_.showPlaced("");
    timer_.schedule(runLoop_, kShows, [this] { preview_.hide(); });
}

}  // namespace tarvix
