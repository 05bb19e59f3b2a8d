#include "shell/preferences/MakeupPreview.h"

#include <chrono>

namespace tarvix {

namespace {

constexpr std::chrono::milliseconds kShows{1280};

}

// What was read for a preview that still shows is good for the next change too. The first one shows what there is
// before anything is read, the dimming above all, and the rest as soon as it is there.
void MakeupPreview::changed() {
    if (!timer_.isValid()) preview_.preload([this] { show(); });
    show();
}

void MakeupPreview::show() {
    preview_.show();
    timer_.schedule(runLoop_, kShows, [this] { preview_.hide(); });
}

}  // namespace tarvix
