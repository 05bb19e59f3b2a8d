// The application that a search is about, by the accessibility focus.
#pragma once

#include <cstdint>
#include <optional>

#include "display/DisplayEngineProtocol.h"
#include "platform/Platform.h"

namespace tarvix {

struct FocusedApplication {
    std::int32_t pid = -1;
    // One of the few whose panel takes the keyboard without becoming active and doesn't go away by itself: what the
    // user looks at is its focused window, whatever application is frontmost.
    bool hasNonActivatingPanel = false;
};

// Absent when no application has the focus, or its bundle identifier isn't known. Main thread.
std::optional<FocusedApplication> focusedApplication(const Platform& platform);

// The window that the user looks at: the application's own focused one, else that of the frontmost application.
std::optional<FocusedWindow> windowOf(const FocusedApplication& application, DisplayEngineProtocol& displayEngine);

}  // namespace tarvix
