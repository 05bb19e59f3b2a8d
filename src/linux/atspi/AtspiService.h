// The accessibility service of the Linux desktop: AT-SPI 2 over D-Bus, with the X server's word on windows.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "base/Listeners.h"
#include "base/Outcome.h"
#include "linux/atspi/ApplicationReads.h"
#include "linux/atspi/Applications.h"
#include "linux/atspi/Listening.h"
#include "linux/atspi/NotificationDaemon.h"
#include "linux/atspi/PanelSurfaces.h"
#include "linux/atspi/SharedFetches.h"
#include "linux/atspi/Waker.h"
#include "linux/atspi/WindowFetch.h"
#include "linux/x11/X11Windows.h"
#include "platform/Accessibility.h"

namespace tarvix {

namespace atspi {
class AtspiElement;
}

// Windows are X windows here: which one is the application's, where it stands, its title and whether it fills the
// screen are answered by the X server at once, whatever the application is doing. What is inside a window is the
// application's to tell: readAhead() fetches it whole, in one go. A read of a single object outside a walk fetches the
// object's window.
//
// Without an accessibility bus all windows are empty; the bus is looked for again at every search.
class AtspiService : public AccessibilityService {
public:
    static Outcome<std::unique_ptr<AtspiService>> open(X11Windows& windows);

    UIElement systemWide() override;
    UIElement application(std::int32_t pid) override;
    // Blocks the caller for as long as the application takes to answer, at most 1.5 seconds, or 2 at the first contact
    // with a browser. What an application that stops in the middle had told by then is what the walk finds.
    std::unique_ptr<AccessibilityReads> readAhead(const UIElement& root) override;
    AxResult<AxValue> attribute(const UIElement& element, std::string_view name) override;
    AxResult<std::vector<AxValue>> attributes(const UIElement& element,
                                              std::span<const std::string_view> names) override;
    AxResult<AxValue> parameterizedAttribute(const UIElement& element, std::string_view name,
                                             const AxValue& argument) override;
    // At most 50 milliseconds, for the application's part.
    AxResult<std::optional<UIElement>> elementAt(AxPoint point) override;
    // Waits 50 milliseconds for the application's word; what it does later it does all the same.
    AxStatus perform(const UIElement& element, std::string_view action) override;
    AxStatus setAttribute(const UIElement& element, std::string_view name, const AxValue& value) override;
    std::optional<std::int32_t> pid(const UIElement& element) override;
    std::optional<std::uint32_t> windowNumber(const UIElement& window) override;
    // The process in whose windows nothing ever has the focus: this one, which can't answer for them while it asks.
    void setOwnProcess(std::int32_t pid) { ownProcess_ = pid; }

    // Whether the session bus says that accessibility is on, and the accessibility bus can be reached. Starts what the
    // session bus knows how to start for that, and waits for it for three seconds. Main thread.
    bool isTrusted() override;
    // Switches it on, for good where the desktop keeps such a switch, and doesn't wait for it. Listeners hear of it if
    // it is on by now.
    void askForTrust() override;
    Subscription onTrustChanged(std::function<void()> changed) override {
        return trustChanged_.add(std::move(changed));
    }
    // The session bus has told of something that trust depends on; listeners hear of it if the answer is another one
    // than isTrusted() gave last. Main thread.
    void noteTrustChange();

    // Has an application that makes its tree on demand make it now, so that it is there at the first search; to be
    // called when it has become active. Returns at once. Writing true to ax::enhancedUserInterface or
    // ax::manualAccessibility of an application is the same; the former reads true once the tree is there.
    void wake(std::int32_t pid) { waker_.wake(pid); }

    // The process that shows notifications, if any: its windows are those of them that are on the screen. Any thread;
    // asks the session bus, for a tenth of a second at most.
    std::vector<std::int32_t> notificationProcesses();

    // The same reading with other options than a search's, for the benchmark.
    std::unique_ptr<AccessibilityReads> readAhead(const UIElement& root, const atspi::FetchOptions& options,
                                                  atspi::WindowTree* fetched);

private:
    explicit AtspiService(X11Windows& windows) : windows_(windows) {}

    // An element where it stands in its window's tree now.
    struct FoundInTree {
        AxStatus status;
        std::unique_ptr<AccessibilityReads> reads;
        std::optional<UIElement> element;  // absent unless status is success
    };
    FoundInTree findInTree(const atspi::AtspiElement& of);
    bool contact(std::int32_t pid);
    bool isAwake(std::int32_t pid);
    AxResult<AxValue> applicationAttribute(std::int32_t pid, std::string_view name);
    AxResult<AxValue> systemAttribute(std::string_view name);
    AxResult<AxValue> focusedIn(const std::optional<X11Window>& window);
    std::optional<atspi::Surface> surfaceOf(std::int32_t pid, std::string_view attribute);
    std::vector<UIElement> windowsOf(std::int32_t pid);
    atspi::SharedFetches::Tree fetchFor(atspi::SharedFetches::Reader reader, const X11Window& window);
    std::optional<X11Window> windowOf(std::int32_t pid);
    UIElement windowElement(const X11Window& window) const;

    X11Windows& windows_;
    Listeners<> trustChanged_;
    bool wasTrusted_ = false;
    std::int32_t ownProcess_ = -1;
    atspi::Bus asking_;  // the bus delivers what it has to start the receiver for only while the sender is there
    atspi::Applications applications_;
    atspi::PanelSurfaces panels_{applications_, windows_};
    atspi::SharedFetches fetches_;
    atspi::NotificationDaemon notificationDaemon_;
    std::mutex awakeMutex_;                      // guards the next one
    std::map<std::int32_t, std::string> awake_;  // the name on the bus under which a process' tree was complete
    atspi::Listening listening_;                 // of the waker's thread
    atspi::Waker waker_{[this](std::int32_t pid) { return contact(pid); }};  // last: its thread uses all above
};

}  // namespace tarvix
