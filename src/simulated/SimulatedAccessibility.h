// The element trees of applications, in memory, as the test has stated them.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Listeners.h"
#include "platform/Accessibility.h"
#include "simulated/Faults.h"
#include "simulated/Journal.h"

namespace tarvix {

// An element with all below it, to be stated in one go. What is empty here is an attribute that the element lacks.
struct SimulatedElement {
    std::string role = {};  // as in "AXButton"
    std::string title = {};
    AxRect frame = {};
    std::vector<SimulatedElement> children = {};
    // More attributes, or other values for those above; values of the wrong kind are welcome.
    std::map<std::string, AxValue, std::less<>> attributes = {};
    std::vector<std::string> actions = {std::string(ax::press)};
};

// Any thread, so that a walk may run in the background while the test changes the tree.
//
// An element answers "AXRole" and "AXTitle" unless empty, "AXPosition", "AXSize", "AXParent", its children under
// "AXChildren", "AXVisibleChildren" and "AXChildrenInNavigationOrder", and as a table or an outline also under
// "AXVisibleRows" and "AXRows"; an application its windows under "AXWindows". Any other name is attributeUnsupported.
// set() and setStatus() go before all that.
//
// Can fail, with cannotComplete or an absence: attribute, attributes, parameterizedAttribute, elementAt, perform,
// setAttribute, pid, windowNumber.
class SimulatedAccessibility : public AccessibilityService {
public:
    SimulatedAccessibility(Journal& journal, Faults& faults);

    // --- Stating the desktop. Operations on an element that has gone throw.

    // An application, with or without windows; the handle is the one that application() gives.
    UIElement addApplication(std::int32_t pid);
    // A window of an application, in front of all others; it adds the application if need be. The application's first
    // window becomes its focused and main window.
    UIElement addWindow(std::int32_t pid, const SimulatedElement& window, std::uint32_t windowNumber);
    // Behind the parent's other children.
    UIElement add(const UIElement& parent, const SimulatedElement& element);
    // The n-th child from 0, in the order of adding.
    UIElement child(const UIElement& parent, std::size_t n) const;
    // The element that was added first of those with this title; throws when there is none.
    UIElement titled(std::string_view title) const;
    // The element and all below it are gone: their reads give invalidElement.
    void remove(const UIElement& element);

    // At first, and with none, the desktop itself has the focus: process 0.
    void setFocusedApplication(std::optional<std::int32_t> pid);
    void setFocusedElement(const std::optional<UIElement>& element);
    void setFocusedWindow(std::int32_t pid, const std::optional<UIElement>& window);
    void setMainWindow(std::int32_t pid, const std::optional<UIElement>& window);

    // What a read of the attribute gives from now on.
    void set(const UIElement& element, std::string_view name, AxValue value);
    // A read of the attribute fails so; in a call for several attributes it is missing.
    void setStatus(const UIElement& element, std::string_view name, AxStatus status);

    // --- Breaking it.

    // The n-th read of the element from now, counted from 1, fails as a whole.
    void failNthRead(const UIElement& element, int n, AxStatus status);
    // Every read of the element fails as a whole.
    void failReads(const UIElement& element, AxStatus status);
    // No element's reads fail as a whole any more.
    void mendReads();
    // The application has gone, its windows with it; what names them fails from now on.
    void quit(std::int32_t pid);
    // The application stops answering, or answers again.
    void hang(std::int32_t pid, bool hangs = true);
    std::atomic<bool> trusted = true;  // false: every call gives apiDisabled or an absence
    // What an application makes of a write; called at each attempt, before the answer. Main thread.
    std::function<void(const UIElement& element, std::string_view name, const AxValue& value)> onSetAttribute;

    // --- What has been asked.

    struct Read {
        UIElement element;
        std::vector<std::string> names;
    };
    // The calls for attributes, in order, failed ones included.
    std::vector<Read> reads() const;
    void forgetReads();
    // How many of them were about one element.
    std::size_t readsOf(const UIElement& element) const;
    std::size_t readsAhead() const;

    // --- The service.

    UIElement systemWide() override;
    UIElement application(std::int32_t pid) override;
    std::unique_ptr<AccessibilityReads> readAhead(const UIElement& root) override;
    AxResult<AxValue> attribute(const UIElement& element, std::string_view name) override;
    AxResult<std::vector<AxValue>> attributes(const UIElement& element,
                                              std::span<const std::string_view> names) override;
    // Answers with the value set under the name, whatever the argument.
    AxResult<AxValue> parameterizedAttribute(const UIElement& element, std::string_view name,
                                             const AxValue& argument) override;
    // In the frontmost window at the point; of several children there, the one added last.
    AxResult<std::optional<UIElement>> elementAt(AxPoint point) override;
    // Noted in the journal when the element has the action.
    AxStatus perform(const UIElement& element, std::string_view action) override;
    // An application's two switches alone, noted in the journal; what they read as afterwards is what the test has set.
    AxStatus setAttribute(const UIElement& element, std::string_view name, const AxValue& value) override;
    std::optional<std::int32_t> pid(const UIElement& element) override;
    std::optional<std::uint32_t> windowNumber(const UIElement& window) override;
    bool isTrusted() override;
    void askForTrust() override;
    Subscription onTrustChanged(std::function<void()> changed) override {
        return trustChanged_.add(std::move(changed));
    }
    // Somebody has changed the privilege, or another application's: the observers are told.
    void noteTrustChange() { trustChanged_(); }

private:
    Listeners<> trustChanged_;

    using Id = std::int64_t;  // of an element from 1, of the whole desktop 0, of an application below

    class Identity;
    class Onward;

    struct Failure {
        int reads = 0;  // until it strikes, once; 0 strikes every time
        AxStatus status = AxStatus::failure;
    };

    struct Node {
        Id parent = 0;
        std::int32_t pid = -1;
        std::string role, title;
        AxRect frame;
        std::optional<std::uint32_t> windowNumber;
        std::vector<Id> children;
        std::map<std::string, AxResult<AxValue>, std::less<>> attributes;
        std::vector<std::string> actions;
        std::vector<Failure> failures;
    };

    static Id idOf(const UIElement& element);
    static Id idOfApplication(std::int32_t pid);
    static UIElement handle(Id id);
    static std::vector<UIElement> handles(const std::vector<Id>& ids);
    static AxResult<AxValue> ordinaryValue(const Node& node, std::string_view name);

    void setOnApplication(std::int32_t pid, std::string_view name, const std::optional<UIElement>& window);

    // All below are called with the mutex held.
    Node& node(const UIElement& element) { return nodes_.at(idOf(element)); }
    Node& applicationNode(std::int32_t pid);
    Id insert(Id parent, std::int32_t pid, const SimulatedElement& element);
    void erase(Id id);
    AxStatus strike(std::string_view operation, Id id);
    AxStatus strikeRead(std::string_view operation, const UIElement& element, std::vector<std::string> names);
    AxResult<AxValue> valueOf(Id id, std::string_view name) const;
    std::vector<Id> windowsAmong(const std::vector<Id>& ids) const;
    Id innermostAt(Id id, AxPoint point) const;

    Journal& journal_;
    Faults& faults_;
    mutable std::mutex mutex_;  // guards all below
    std::map<Id, Node> nodes_;
    std::vector<Id> windows_;  // front to back
    std::set<std::int32_t> hanging_;
    Id lastId_ = 0;
    std::vector<Read> reads_;
    std::size_t readsAhead_ = 0;
};

}  // namespace tarvix
