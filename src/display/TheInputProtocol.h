// The Input, as the rest of the system uses it.
#pragma once

#include <functional>
#include <string>

#include "base/Subscription.h"

namespace tarvix {

// Main thread.
class TheInputProtocol {
public:
    virtual ~TheInputProtocol() = default;

    // Shows the panel where the settings say, with the keyboard. It may stay hidden for want of a focused application.
    virtual void open() = 0;
    // Ends the session and hides the panel; nothing when it isn't visible.
    virtual void close() = 0;
    virtual bool isVisible() const = 0;
    // It has been shown or hidden.
    [[nodiscard]] virtual Subscription onVisibilityChanged(std::function<void()> changed) = 0;
    // The query as typed, not trimmed.
    virtual const std::string& value() const = 0;
    // Whether the candidates are still being read.
    virtual void setShowPreloading(bool shows) = 0;
};

}  // namespace tarvix
