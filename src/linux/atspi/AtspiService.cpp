#include "linux/atspi/AtspiService.h"

#include <algorithm>

#include "linux/atspi/AccessibilitySwitch.h"
#include "linux/atspi/AtspiElement.h"
#include "linux/atspi/MenuBar.h"
#include "linux/atspi/Replies.h"
#include "linux/atspi/TreeReads.h"

namespace tarvix {

using namespace atspi;

namespace {

constexpr Milliseconds kSingleRead{150};  // of one object outside a walk; the keyboard may be ours meanwhile
// Both on the main thread while a search is up, one after the other; its way out must stay open.
constexpr Milliseconds kAtPoint{50};
constexpr Milliseconds kPress{50};
constexpr int kDeepest = 64;

// The reads below a window that can't be read.
class NoReads : public AccessibilityReads {
public:
    AxResult<AxValue> attribute(const UIElement&, std::string_view) override { return {AxStatus::cannotComplete, {}}; }
    AxResult<std::vector<AxValue>> attributes(const UIElement&, std::span<const std::string_view>) override {
        return {AxStatus::cannotComplete, {}};
    }
};

std::shared_ptr<AtspiElement> identity(AtspiElement::Kind kind, std::int32_t pid = -1, std::uint32_t window = 0) {
    auto made = std::make_shared<AtspiElement>();
    made->kind = kind;
    made->pid = pid;
    made->window = window;
    return made;
}

// All of them as far as the X server knows them without the application; absent when one isn't so.
std::optional<std::vector<AxValue>> windowAttributes(const X11Window& window, std::span<const std::string_view> names) {
    std::vector<AxValue> values;
    for (const std::string_view name : names) {
        std::optional<AxValue> known = windowAttribute(window, name);
        if (!known) return std::nullopt;
        values.push_back(std::move(*known));
    }
    return values;
}

// The innermost object at a point below an object, asked level by level, since some toolkits answer with the next level
// only and some with the innermost at once.
std::optional<Reference> descendTo(Lease& lease, const FrameFound& frame, const Placement& placement, AxPoint point,
                                   Clock::time_point deadline) {
    Reference at = frame.reference;
    for (int depth = 0; depth < kDeepest; ++depth) {
        Pipeline pipeline(lease.bus(), deadline);
        std::optional<Reference> next;
        Call call;
        if (!lease.direct()) call.destination = at.bus;
        call.path = at.path;
        call.interface = "org.a11y.atspi.Component";
        call.member = "GetAccessibleAtPoint";
        call.signature = "iiu";
        const RawBox raw = placement.fromRoot(point, false);
        call.integers[0] = raw.x;
        call.integers[1] = raw.y;
        call.integers[2] = static_cast<std::int32_t>(coordinatesOf(frame.application.toolkit));
        pipeline.send(std::move(call), [&next](sd_bus_message* reply) { next = readReference(reply); });
        pipeline.run();
        if (pipeline.timedOut() || pipeline.lost()) {
            lease.spoil();
            return std::nullopt;
        }
        if (!next || *next == at || (lease.direct() && next->bus != frame.application.bus)) break;
        at = *next;
    }
    if (at == frame.reference) return std::nullopt;
    return at;
}

}  // namespace

Outcome<std::unique_ptr<AtspiService>> AtspiService::open(X11Windows& windows) {
    return std::unique_ptr<AtspiService>(new AtspiService(windows));
}

UIElement AtspiService::systemWide() { return UIElement(identity(AtspiElement::Kind::systemWide)); }

UIElement AtspiService::application(std::int32_t pid) {
    return UIElement(identity(AtspiElement::Kind::application, pid));
}

UIElement AtspiService::windowElement(const X11Window& window) const {
    return UIElement(identity(AtspiElement::Kind::window, window.pid, window.number));
}

// The active window, if it is this process's; else its frontmost one.
std::optional<X11Window> AtspiService::windowOf(std::int32_t pid) {
    if (auto active = windows_.active(); active && active->pid == pid) return active;
    for (X11Window& window : windows_.onScreen())
        if (window.pid == pid && !window.isOverrideRedirect) return std::move(window);
    return std::nullopt;
}

AxResult<AxValue> AtspiService::systemAttribute(std::string_view name) {
    const std::optional<X11Window> active = windows_.active();
    if (name == ax::focusedApplication) {
        // Where no window is active, the desktop itself has the focus; it is process 0 here.
        return {AxStatus::success, application(active ? active->pid : 0)};
    }
    if (name != ax::focusedUIElement) return {AxStatus::attributeUnsupported, {}};
    return focusedIn(active);
}

AxResult<AxValue> AtspiService::focusedIn(const std::optional<X11Window>& window) {
    if (!window) return {AxStatus::noValue, {}};
    if (window->pid == ownProcess_) return {AxStatus::noValue, {}};
    FetchOptions options;
    options.limit = kSingleRead;
    options.waitsForTree = false;
    options.screen = &windows_;
    std::optional<WindowTree> tree = fetchWindow(applications_, *window, options);
    if (!tree) return {AxStatus::cannotComplete, {}};
    const TreeReads reads(std::move(*tree), *window);
    // The deepest one wins: containers of the focused object may call themselves focused too.
    for (std::size_t i = reads.nodes().size(); i-- > 1;)
        if (reads.nodes()[i].shows && !reads.nodes()[i].synthetic && reads.nodes()[i].has(State::focused))
            return {AxStatus::success, reads.elementOf(static_cast<int>(i))};
    return {AxStatus::noValue, {}};
}

AxResult<AxValue> AtspiService::applicationAttribute(std::int32_t pid, std::string_view name) {
    if (name == ax::enhancedUserInterface) return {AxStatus::success, isAwake(pid)};
    if (name == ax::focusedUIElement) return focusedIn(windowOf(pid));
    if (name != ax::focusedWindow && name != ax::mainWindow) return {AxStatus::attributeUnsupported, {}};
    const std::optional<X11Window> window = windowOf(pid);
    if (!window) return {AxStatus::noValue, {}};
    return {AxStatus::success, windowElement(*window)};
}

AxResult<AxValue> AtspiService::attribute(const UIElement& element, std::string_view name) {
    const AtspiElement& of = identityOf(element);
    switch (of.kind) {
        case AtspiElement::Kind::systemWide:
            return systemAttribute(name);
        case AtspiElement::Kind::application:
            return applicationAttribute(of.pid, name);
        case AtspiElement::Kind::window: {
            const std::optional<X11Window> window = windows_.window(of.window);
            if (!window) return {AxStatus::invalidElement, {}};
            if (std::optional<AxValue> known = windowAttribute(*window, name))
                return {AxStatus::success, std::move(*known)};
            break;
        }
        case AtspiElement::Kind::object:
            break;
    }
    FoundInTree found = findInTree(of);
    if (!found.element) return {found.status, {}};
    return found.reads->attribute(*found.element, name);
}

AxResult<std::vector<AxValue>> AtspiService::attributes(const UIElement& element,
                                                        std::span<const std::string_view> names) {
    const AtspiElement& of = identityOf(element);
    if (of.kind == AtspiElement::Kind::systemWide || of.kind == AtspiElement::Kind::application) {
        AxResult<std::vector<AxValue>> result{AxStatus::success, {}};
        for (const std::string_view name : names) result.value.push_back(attribute(element, name).value);
        return result;
    }
    if (of.kind == AtspiElement::Kind::window)
        if (const std::optional<X11Window> window = windows_.window(of.window))
            if (auto known = windowAttributes(*window, names)) return {AxStatus::success, std::move(*known)};
    FoundInTree found = findInTree(of);
    if (!found.element) return {found.status, {}};
    return found.reads->attributes(*found.element, names);
}

// A single object is read with its window: that is one short fetch, and the object's box can be placed by nothing less.
AtspiService::FoundInTree AtspiService::findInTree(const AtspiElement& of) {
    const std::optional<X11Window> window = windows_.window(of.window);
    if (!window) return {AxStatus::invalidElement, nullptr, std::nullopt};
    FetchOptions options;
    options.limit = kSingleRead;
    options.waitsForTree = false;
    options.screen = &windows_;
    std::optional<WindowTree> tree = fetchWindow(applications_, *window, options);
    if (!tree) return {AxStatus::cannotComplete, nullptr, std::nullopt};
    auto reads = std::make_unique<TreeReads>(std::move(*tree), *window);
    if (of.kind == AtspiElement::Kind::window) {
        const UIElement frame = reads->elementOf(0);
        return {AxStatus::success, std::move(reads), frame};
    }
    for (std::size_t i = 1; i < reads->nodes().size(); ++i) {
        const Node& node = reads->nodes()[i];
        if (node.reference != of.reference || node.synthetic != of.synthetic) continue;
        const UIElement found = reads->elementOf(static_cast<int>(i));
        return {AxStatus::success, std::move(reads), found};
    }
    return {AxStatus::invalidElement, nullptr, std::nullopt};
}

std::vector<UIElement> AtspiService::windowsOf(std::int32_t pid) {
    std::vector<X11Window> windows = windows_.onScreen();
    std::erase_if(windows, [pid](const X11Window& each) { return each.pid != pid; });
    if (!windows.empty() && notificationDaemon_.pid() == pid) windows = notificationsAmong(std::move(windows));
    std::vector<UIElement> elements;
    for (const X11Window& window : windows) elements.push_back(windowElement(window));
    return elements;
}

std::vector<std::int32_t> AtspiService::notificationProcesses() {
    const std::optional<std::int32_t> pid = notificationDaemon_.pid();
    return pid ? std::vector{*pid} : std::vector<std::int32_t>();
}

SharedFetches::Tree AtspiService::fetchFor(SharedFetches::Reader reader, const X11Window& window) {
    return fetches_.fetch(reader, window.number, [&]() -> SharedFetches::Tree {
        FetchOptions options;
        options.screen = &windows_;
        std::optional<WindowTree> tree = fetchWindow(applications_, window, options);
        return tree ? std::make_shared<const WindowTree>(std::move(*tree)) : nullptr;
    });
}

// The menu bar is in the window, which the walk reads at the same time.
std::optional<Surface> AtspiService::surfaceOf(std::int32_t pid, std::string_view attribute) {
    if (attribute == ax::extrasMenuBar) return panels_.surfaceOf(pid, PanelRow::tray);
    if (attribute == ax::visibleChildren) return panels_.surfaceOf(pid, PanelRow::dock);
    if (attribute != ax::menuBar) return std::nullopt;
    const std::optional<X11Window> window = windowOf(pid);
    const SharedFetches::Tree tree = window ? fetchFor(SharedFetches::Reader::menuBar, *window) : nullptr;
    const std::optional<int> menuBar = tree ? menuBarIn(tree->nodes, tree->application.toolkit) : std::nullopt;
    if (!menuBar) return std::nullopt;
    return Surface{std::make_shared<TreeReads>(tree, *window), *menuBar};
}

std::unique_ptr<AccessibilityReads> AtspiService::readAhead(const UIElement& root) {
    const AtspiElement& of = identityOf(root);
    if (of.kind == AtspiElement::Kind::application)
        return std::make_unique<ApplicationReads>(ApplicationReads::Sources{
            [this, pid = of.pid](std::string_view attribute) { return surfaceOf(pid, attribute); },
            [this, pid = of.pid] { return windowsOf(pid); }});
    const std::optional<X11Window> window = windows_.window(of.window);
    const SharedFetches::Tree tree = window ? fetchFor(SharedFetches::Reader::walk, *window) : nullptr;
    if (!tree) return std::make_unique<NoReads>();
    return std::make_unique<TreeReads>(tree, *window);
}

std::unique_ptr<AccessibilityReads> AtspiService::readAhead(const UIElement& root, const FetchOptions& options,
                                                            WindowTree* fetched) {
    const std::optional<X11Window> window = windows_.window(identityOf(root).window);
    if (!window) return std::make_unique<NoReads>();
    std::optional<WindowTree> tree = fetchWindow(applications_, *window, options);
    if (!tree) return std::make_unique<NoReads>();
    if (fetched) *fetched = *tree;
    return std::make_unique<TreeReads>(std::move(*tree), *window);
}

AxResult<AxValue> AtspiService::parameterizedAttribute(const UIElement& element, std::string_view name,
                                                       const AxValue& argument) {
    const auto* range = std::get_if<TextRange>(&argument);
    const AtspiElement& of = identityOf(element);
    if (name != ax::boundsForRange || !range || of.kind != AtspiElement::Kind::object)
        return {AxStatus::attributeUnsupported, {}};
    const std::optional<X11Window> window = windows_.window(of.window);
    if (!window) return {AxStatus::invalidElement, {}};
    const Clock::time_point deadline = Clock::now() + kSingleRead;
    const std::optional<FrameFound> frame = findFrame(applications_, *window, &windows_, deadline);
    std::optional<Lease> lease = frame ? applications_.connect(frame->application, deadline) : std::nullopt;
    if (!lease) return {AxStatus::cannotComplete, {}};
    Pipeline pipeline(lease->bus(), deadline);
    Call call;
    if (!lease->direct()) call.destination = of.reference.bus;
    call.path = of.reference.path;
    call.interface = "org.a11y.atspi.Text";
    call.member = "GetRangeExtents";
    call.signature = "iiu";
    call.integers[0] = static_cast<std::int32_t>(range->location);
    call.integers[1] = static_cast<std::int32_t>(range->location + range->length);
    call.integers[2] = static_cast<std::int32_t>(coordinatesOf(frame->application.toolkit));
    std::optional<RawBox> box;
    pipeline.send(std::move(call), [&box](sd_bus_message* reply) {
        RawBox read;
        if (reply && sd_bus_message_read(reply, "iiii", &read.x, &read.y, &read.width, &read.height) > 0) box = read;
    });
    pipeline.run();
    if (pipeline.timedOut() || pipeline.lost()) lease->spoil();
    if (!box || !isSane(*box)) return {AxStatus::noValue, {}};
    return {AxStatus::success, place(frame->application.toolkit, *window, frame->box).toRoot(*box, false)};
}

AxResult<std::optional<UIElement>> AtspiService::elementAt(AxPoint point) {
    const std::vector<X11Window> windows = windows_.onScreen();
    const auto hit = std::find_if(windows.begin(), windows.end(), [&](const X11Window& w) {
        return !w.isOverrideRedirect && intersects(w.visible(), AxRect{point, {0, 0}});
    });
    if (hit == windows.end()) return {AxStatus::noValue, std::nullopt};
    const Clock::time_point deadline = Clock::now() + kAtPoint;
    const std::optional<FrameFound> frame = findFrame(applications_, *hit, &windows_, deadline);
    // Java's hit test ends at the window's root pane (atk-wrapper 0.40), which nobody means.
    if (frame && frame->application.toolkit == Toolkit::java) return {AxStatus::noValue, std::nullopt};
    std::optional<Lease> lease = frame ? applications_.connect(frame->application, deadline) : std::nullopt;
    if (!lease) return {AxStatus::cannotComplete, std::nullopt};
    const Placement placement = place(frame->application.toolkit, *hit, frame->box);
    const std::optional<Reference> found = descendTo(*lease, *frame, placement, point, deadline);
    if (!found) return {AxStatus::noValue, std::nullopt};
    auto made = identity(AtspiElement::Kind::object, hit->pid, hit->number);
    made->reference = *found;
    return {AxStatus::success, UIElement(std::move(made))};
}

AxStatus AtspiService::perform(const UIElement& element, std::string_view action) {
    const AtspiElement& of = identityOf(element);
    if (action != ax::press || of.kind != AtspiElement::Kind::object) return AxStatus::actionUnsupported;
    std::optional<Lease> lease = applications_.connectOverBus();
    if (!lease) return AxStatus::apiDisabled;
    Pipeline pipeline(lease->bus(), Clock::now() + kPress);
    Call call;
    call.destination = of.reference.bus;
    call.path = of.reference.path;
    call.interface = "org.a11y.atspi.Action";
    call.member = "DoAction";
    call.signature = "i";
    AxStatus status = AxStatus::cannotComplete;
    pipeline.send(std::move(call), [&status](sd_bus_message* reply) {
        int done = 0;
        const bool answered = reply && sd_bus_message_read(reply, "b", &done) > 0;
        status = !answered ? AxStatus::actionUnsupported : done != 0 ? AxStatus::success : AxStatus::failure;
    });
    pipeline.run();
    if (pipeline.timedOut() || pipeline.lost()) lease->spoil();
    return status;
}

// Both switches mean the same here: that the application makes its tree, which it is asked for on the waker's thread.
AxStatus AtspiService::setAttribute(const UIElement& element, std::string_view name, const AxValue& value) {
    const AtspiElement& of = identityOf(element);
    const auto* on = std::get_if<bool>(&value);
    const bool isSwitch = name == ax::enhancedUserInterface || name == ax::manualAccessibility;
    if (of.kind != AtspiElement::Kind::application || !isSwitch || !on) return AxStatus::attributeUnsupported;
    if (*on) waker_.wake(of.pid);
    return AxStatus::success;
}

std::optional<std::int32_t> AtspiService::pid(const UIElement& element) {
    const AtspiElement& of = identityOf(element);
    return of.pid == -1 ? std::nullopt : std::optional(of.pid);
}

std::optional<std::uint32_t> AtspiService::windowNumber(const UIElement& window) {
    const AtspiElement& of = identityOf(window);
    const bool isThere = of.kind == AtspiElement::Kind::window && windows_.window(of.window);
    return isThere ? std::optional(of.window) : std::nullopt;
}

bool AtspiService::isTrusted() {
    const Bus session = connectToSession();
    wasTrusted_ = session && isAccessibilityOn(session.get());
    return wasTrusted_;
}

// What is on already isn't told of again when it is switched on, and may have been out of reach when it was.
void AtspiService::askForTrust() {
    noteTrustChange();
    asking_ = connectToSession();
    if (asking_) switchAccessibilityOn(asking_.get());
}

void AtspiService::noteTrustChange() {
    const bool before = wasTrusted_;
    if (isTrusted() != before) trustChanged_();
}

bool AtspiService::isAwake(std::int32_t pid) {
    const std::lock_guard lock(awakeMutex_);
    const auto bus = awake_.find(pid);
    return bus != awake_.end() && applications_.wasContacted(bus->second);
}

// False while the process isn't on the accessibility bus yet, or its tree isn't complete.
bool AtspiService::contact(std::int32_t pid) {
    listening_.keep();
    // One that has left the bus, or come anew under another name, isn't awake any more.
    applications_.forgetTheGone();
    if (isAwake(pid)) return true;
    const std::optional<X11Window> window = windowOf(pid);
    const std::optional<WindowTree> tree =
        window ? fetchWindow(applications_, *window, {.screen = &windows_}) : std::nullopt;
    if (!tree || !applications_.wasContacted(tree->application.bus)) return false;
    const std::lock_guard lock(awakeMutex_);
    awake_[pid] = tree->application.bus;
    return true;
}

}  // namespace tarvix
