#include "linux/x11/X11Workspace.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "linux/desktops/CatalogueAliases.h"
#include "linux/x11/ProcessFiles.h"

namespace tarvix {

namespace {

constexpr const char* kOwnId = "org.tarvix.Tarvix";  // the name of our desktop file
constexpr const char* kOwnProgram = "tarvix";

const RunningApplication kDesktop{0, "desktop", "Desktop"};

std::string lowered(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::string firstOf(std::initializer_list<std::string> texts) {
    for (const std::string& text : texts)
        if (!text.empty()) return text;
    return {};
}

}  // namespace

Outcome<std::unique_ptr<X11Workspace>> X11Workspace::open(X11Connection& connection, X11Windows& windows) {
    if (!connection.isAlive()) return Fault{"the X server has gone"};
    return std::unique_ptr<X11Workspace>(new X11Workspace(connection, windows));
}

X11Workspace::X11Workspace(X11Connection& connection, X11Windows& windows) : x_(connection), windows_(windows) {
    const xcb_atom_t activeWindow = x_.atom("_NET_ACTIVE_WINDOW");
    x_.selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE);
    x_.flush();
    lastActivated_ = frontmostApplication();
    events_ = x_.onEvent([this, activeWindow](const xcb_generic_event_t& event) {
        const auto& changed = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if ((event.response_type & 0x7f) == XCB_PROPERTY_NOTIFY && changed.window == x_.root() &&
            changed.atom == activeWindow)
            activeWindowChanged();
        return X11Connection::Handled::no;
    });
}

std::optional<RunningApplication> X11Workspace::frontmostApplication() {
    const auto window = windows_.active();
    return window ? describe(window->pid, &*window) : kDesktop;
}

std::optional<RunningApplication> X11Workspace::runningApplication(std::int32_t pid) {
    if (pid == kDesktop.processIdentifier) return kDesktop;
    if (!processIsAlive(pid)) return std::nullopt;
    if (const auto active = windows_.active(); active && active->pid == pid) return describe(pid, &*active);
    const auto windows = windows_.onScreen();
    const auto own = std::ranges::find(windows, pid, &X11Window::pid);
    return describe(pid, own == windows.end() ? nullptr : &*own);
}

std::vector<RunningApplication> X11Workspace::runningApplications(std::string_view bundleIdentifier) {
    std::vector<RunningApplication> found;
    const auto add = [&](std::optional<RunningApplication> application) {
        if (application && std::ranges::count(found, *application) == 0) found.push_back(std::move(*application));
    };
    if (const auto role = roles_.find(bundleIdentifier); role != roles_.end()) {
        for (const std::int32_t pid : role->second()) add(runningApplication(pid));
        return found;
    }
    for (const X11Window& window : windows_.onScreen())
        if (auto application = describe(window.pid, &window); application.bundleIdentifier == bundleIdentifier)
            add(std::move(application));
    return found;
}

RunningApplication X11Workspace::describe(std::int32_t pid, const X11Window* window) {
    if (!window) return look(pid, nullptr);
    const Names names{pid, window->number, window->windowClass, window->windowInstance, window->gtkApplicationId};
    {
        const std::lock_guard lock(mutex_);
        if (names == describedBy_) return described_;
    }
    const RunningApplication found = look(pid, window);
    const std::lock_guard lock(mutex_);
    describedBy_ = names;
    return described_ = found;
}

RunningApplication X11Workspace::look(std::int32_t pid, const X11Window* window) {
    const auto entry = entries_.of(pid, window);
    const std::string program = programName(pid);
    const std::string windowClass = window ? window->windowClass : "";
    // Ours may run without being installed.
    const std::string unlisted = program == kOwnProgram ? kOwnId : lowered(firstOf({program, windowClass, "unknown"}));
    const std::string id = entry ? entry->id : unlisted;
    const std::string_view catalogues = catalogueIdentifier({id, windowClass}).value_or(id);
    return {pid, std::string(catalogues), firstOf({entry ? entry->name : "", windowClass, program})};
}

std::string X11Workspace::ownBundleIdentifier() { return kOwnId; }

bool X11Workspace::isVoiceOverEnabled() { return screenReader_.isEnabled && screenReader_.isEnabled(); }

void X11Workspace::announce(std::string_view text, int priority) {
    if (screenReader_.announce) screenReader_.announce(text, priority);
}

Subscription X11Workspace::onApplicationActivated(std::function<void(const RunningApplication&)> activated) {
    return activated_.add(std::move(activated));
}

void X11Workspace::activeWindowChanged() {
    const auto now = frontmostApplication();
    // Between two active windows there is often none for a moment.
    if (!now || *now == kDesktop || now == lastActivated_) return;
    lastActivated_ = now;
    activated_(*now);
}

}  // namespace tarvix
