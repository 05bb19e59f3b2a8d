// Reading and operating the user-interface elements of other applications.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/Geometry.h"
#include "base/Subscription.h"

namespace tarvix {

// An opaque handle of one element of some application. It stays valid as a value for ever; the element it names may
// have gone, and then every read of it fails. Copied freely, usable on any thread.
class UIElement {
public:
    // What an implementation hangs on a handle.
    class Identity {
    public:
        virtual ~Identity() = default;
        // `other` comes from the same implementation.
        virtual bool equals(const Identity& other) const = 0;
        virtual std::size_t hash() const = 0;
    };

    explicit UIElement(std::shared_ptr<const Identity> identity) : identity_(std::move(identity)) {}

    const Identity& identity() const { return *identity_; }
    friend bool operator==(const UIElement& a, const UIElement& b) {
        return a.identity_ == b.identity_ || a.identity_->equals(*b.identity_);
    }

private:
    std::shared_ptr<const Identity> identity_;
};

struct Url {
    std::string absolute;
    friend bool operator==(const Url&, const Url&) = default;
};

// A range of characters in an element's text.
struct TextRange {
    std::int64_t location = 0, length = 0;
    friend bool operator==(TextRange, TextRange) = default;
};

// An attribute's value as the application gave it. `monostate` stands for "there is none here"; a reader that expects
// another kind than it finds treats the value as missing.
using AxValue = std::variant<std::monostate, bool, std::int64_t, double, std::string, Url, AxPoint, Size, AxRect,
                             TextRange, UIElement, std::vector<UIElement>>;

// How a call went. The numbers are the ones that accessibility clients know; the system tells apart success, noValue
// and everything else.
enum class AxStatus : std::int32_t {
    success = 0,
    failure = -25200,
    invalidElement = -25202,        // the element has gone
    cannotComplete = -25204,        // no answer within the time limit, or the application has gone
    attributeUnsupported = -25205,  // this kind of element has no such attribute
    actionUnsupported = -25206,
    apiDisabled = -25211,  // the accessibility service can't be reached at all
    noValue = -25212,      // the attribute exists and has no value at present
};

template <class T>
struct AxResult {
    AxStatus status = AxStatus::failure;
    T value{};  // meaningful with success only

    bool ok() const { return status == AxStatus::success; }
};

// The attribute names, as texts of the accessibility vocabulary.
namespace ax {
inline constexpr std::string_view role = "AXRole";
inline constexpr std::string_view roleDescription = "AXRoleDescription";
inline constexpr std::string_view subrole = "AXSubrole";
inline constexpr std::string_view description = "AXDescription";
inline constexpr std::string_view title = "AXTitle";
inline constexpr std::string_view help = "AXHelp";
inline constexpr std::string_view position = "AXPosition";
inline constexpr std::string_view size = "AXSize";
inline constexpr std::string_view value = "AXValue";
inline constexpr std::string_view valueDescription = "AXValueDescription";
inline constexpr std::string_view placeholderValue = "AXPlaceholderValue";
inline constexpr std::string_view url = "AXURL";
inline constexpr std::string_view identifier = "AXIdentifier";
inline constexpr std::string_view parent = "AXParent";
inline constexpr std::string_view visibleRows = "AXVisibleRows";
inline constexpr std::string_view rows = "AXRows";
inline constexpr std::string_view visibleChildren = "AXVisibleChildren";
inline constexpr std::string_view childrenInNavigationOrder = "AXChildrenInNavigationOrder";
inline constexpr std::string_view focusedApplication = "AXFocusedApplication";
inline constexpr std::string_view focusedWindow = "AXFocusedWindow";
inline constexpr std::string_view mainWindow = "AXMainWindow";
inline constexpr std::string_view focusedUIElement = "AXFocusedUIElement";
inline constexpr std::string_view fullScreen = "AXFullScreen";
inline constexpr std::string_view selectedTextRange = "AXSelectedTextRange";
inline constexpr std::string_view boundsForRange = "AXBoundsForRange";
inline constexpr std::string_view children = "AXChildren";
inline constexpr std::string_view windows = "AXWindows";
inline constexpr std::string_view menuBar = "AXMenuBar";
inline constexpr std::string_view extrasMenuBar = "AXExtrasMenuBar";
inline constexpr std::string_view enhancedUserInterface = "AXEnhancedUserInterface";
inline constexpr std::string_view manualAccessibility = "AXManualAccessibility";
inline constexpr std::string_view press = "AXPress";
}  // namespace ax

// Reads of one application's tree. Every read blocks until the answer or its time limit is there; a read that fails
// says so by its status and never throws.
class AccessibilityReads {
public:
    virtual ~AccessibilityReads() = default;

    // One attribute. Success may come with `monostate`.
    virtual AxResult<AxValue> attribute(const UIElement& element, std::string_view name) = 0;

    // Several attributes in one call, which goes on past a missing one: on success there is one value for each name, in
    // order, `monostate` where the element has none.
    virtual AxResult<std::vector<AxValue>> attributes(const UIElement& element,
                                                      std::span<const std::string_view> names) = 0;
};

// Any thread, unless an operation says otherwise.
class AccessibilityService : public AccessibilityReads {
public:
    // The element that stands for the whole desktop: ax::focusedApplication, ax::focusedUIElement.
    virtual UIElement systemWide() = 0;
    // The element of a process, whether or not it exists or shows a tree.
    virtual UIElement application(std::int32_t pid) = 0;

    // The reads of one walk below `root`, which is a window or an application. They may answer from what was fetched
    // ahead, so they are for one walk on one thread: use them at once, and drop them with the walk's end. Below an
    // application they know its ax::menuBar, ax::extrasMenuBar, ax::visibleChildren and ax::windows with the elements
    // that these list, one level deep; a window of the list has a walk of its own.
    virtual std::unique_ptr<AccessibilityReads> readAhead(const UIElement& root) = 0;

    // An attribute that takes an argument, ax::boundsForRange.
    virtual AxResult<AxValue> parameterizedAttribute(const UIElement& element, std::string_view name,
                                                     const AxValue& argument) = 0;
    // The innermost element at a point of the desktop; noValue where there is none.
    virtual AxResult<std::optional<UIElement>> elementAt(AxPoint point) = 0;
    virtual AxStatus perform(const UIElement& element, std::string_view action) = 0;
    // Writes an attribute. Main thread as well, so it doesn't wait for what the application makes of it.
    virtual AxStatus setAttribute(const UIElement& element, std::string_view name, const AxValue& value) = 0;
    // The process that an element belongs to.
    virtual std::optional<std::int32_t> pid(const UIElement& element) = 0;
    // The window server's number of a window element.
    virtual std::optional<std::uint32_t> windowNumber(const UIElement& window) = 0;

    // Whether this process may read other applications at all. Asks the desktop: not for every search.
    virtual bool isTrusted() = 0;
    // Asks the desktop for that privilege; the answer comes as a change of isTrusted. Main thread.
    virtual void askForTrust() = 0;
    // Something about the privilege has changed, perhaps not for this process: ask isTrusted() anew. Main thread.
    [[nodiscard]] virtual Subscription onTrustChanged(std::function<void()> changed) = 0;
};

}  // namespace tarvix
