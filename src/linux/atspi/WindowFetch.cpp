#include "linux/atspi/WindowFetch.h"

#include <algorithm>
#include <deque>
#include <thread>

#include "linux/atspi/FrameMatching.h"
#include "linux/atspi/Popups.h"
#include "linux/atspi/Replies.h"
#include "linux/atspi/TreeFetch.h"

namespace tarvix::atspi {

namespace {

constexpr const char* kAccessible = "org.a11y.atspi.Accessible";
constexpr Milliseconds kFirstContact{2000};  // a browser makes its tree within that
constexpr Milliseconds kBetweenReads{60};
constexpr int kSteady = 3;
constexpr Milliseconds kStrangers{400};  // for a look at all of them
constexpr std::size_t kBareFrame = 8;    // what a browser shows before its tree is made

struct FrameCandidate {
    Reference reference;
    FrameTraits traits;
};

Call callTo(const Lease& lease, const Reference& to, const char* interface, const char* member) {
    Call call;
    if (!lease.direct()) call.destination = to.bus;
    call.path = to.path;
    call.interface = interface;
    call.member = member;
    return call;
}

void askFrame(Pipeline& pipeline, const Lease& lease, Toolkit toolkit, FrameCandidate& frame) {
    FrameTraits& traits = frame.traits;
    pipeline.send(callTo(lease, frame.reference, kAccessible, "GetState"), [&traits](sd_bus_message* r) {
        const std::uint64_t states = readStates(r).value_or(0);
        traits.isActive = (states >> static_cast<unsigned>(State::active) & 1U) != 0;
        traits.isShowing = (states >> static_cast<unsigned>(State::showing) & 1U) != 0;
    });
    pipeline.send(callTo(lease, frame.reference, kAccessible, "GetRole"), [&traits, toolkit](sd_bus_message* r) {
        traits.role = static_cast<Role>(readUnsigned(r).value_or(0));
        // GTK 3 lists the windows of open menus beside the frames, and calls the topmost of them active.
        traits.isPopup = toolkit == Toolkit::gtk3 && traits.role == Role::window;
    });
    Call name = callTo(lease, frame.reference, "org.freedesktop.DBus.Properties", "Get");
    name.signature = "ss";
    name.texts[0] = kAccessible;
    name.texts[1] = "Name";
    pipeline.send(std::move(name), [&traits](sd_bus_message* r) { traits.title = readVariantText(r).value_or(""); });
    Call box = callTo(lease, frame.reference, "org.a11y.atspi.Component", "GetExtents");
    box.signature = "u";
    box.integers[0] = static_cast<std::int32_t>(coordinatesOf(toolkit));
    traits.isPlaced = coordinatesOf(toolkit) == Coordinates::screen;
    pipeline.send(std::move(box), [&traits](sd_bus_message* r) { traits.box = readBox(r); });
}

// A window among those that its process has on the screen. They are looked up when it takes them.
class Surroundings {
public:
    Surroundings(const X11Window& window, X11Windows* screen) : window_(window), screen_(screen) {}

    const X11Window& window() const { return window_; }

    // Those of its process, itself included. A window that isn't on the screen is there all the same.
    const std::vector<WindowTraits>& ofProcess() {
        if (!ofProcess_.empty()) return ofProcess_;
        const std::optional<X11Window> active = screen_ ? screen_->active() : std::nullopt;
        const auto add = [&](const X11Window& each) {
            ofProcess_.push_back({each, screen_ ? active && active->number == each.number : true});
        };
        add(window_);
        if (screen_)
            for (const X11Window& each : screen_->onScreen())
                if (each.pid == window_.pid && each.number != window_.number) add(each);
        return ofProcess_;
    }

    // Whether menus and lists that are open in its process are its own: they are those of the window with the keyboard.
    bool hasPopups() {
        const auto& all = ofProcess();
        return all.front().isActive || std::ranges::none_of(all, &WindowTraits::isActive);
    }

    // The process ids of all that shows a window.
    std::vector<std::int32_t> owners() const {
        std::vector<std::int32_t> owners;
        if (screen_)
            for (const X11Window& each : screen_->onScreen()) owners.push_back(each.pid);
        return owners;
    }

    bool knowsScreen() const { return screen_ != nullptr; }

private:
    const X11Window& window_;
    X11Windows* screen_;
    std::vector<WindowTraits> ofProcess_;  // itself first; empty: not looked up yet
};

struct Found {
    FrameFound frame;
    Likeness likeness;
};

enum class Look : std::uint8_t { around, ifNeeded };  // at the other windows of the process

std::optional<Found> findFrameOn(const Application& application, Lease& lease, Pipeline& pipeline,
                                 Surroundings& surroundings, Look look) {
    std::deque<FrameCandidate> frames;
    pipeline.send(callTo(lease, {application.bus, application.root}, kAccessible, "GetChildren"),
                  [&](sd_bus_message* r) {
                      for (Reference& each : readReferences(r))
                          if (!lease.direct() || each.bus == application.bus) frames.push_back({std::move(each), {}});
                      for (FrameCandidate& frame : frames) askFrame(pipeline, lease, application.toolkit, frame);
                  });
    pipeline.run();
    std::vector<FrameTraits> traits;
    for (const FrameCandidate& frame : frames) traits.push_back(frame.traits);
    std::optional<FrameMatch> match;
    if (look == Look::ifNeeded) match = obviousFrameOf(surroundings.window(), traits);
    if (!match) match = frameOf(0, surroundings.ofProcess(), traits);
    if (!match) return std::nullopt;
    Found found{{application, frames[match->frame].reference, *traits[match->frame].box, {}}, match->likeness};
    traits[match->frame].isShowing = false;  // not among its own popups
    if (surroundings.knowsScreen() && std::ranges::any_of(traits, mayBePopup) && surroundings.hasPopups())
        for (const std::size_t popup : popupsBeside(match->frame, surroundings.ofProcess(), traits))
            found.frame.popups.push_back(frames[popup].reference);
    return found;
}

// A browser makes its trees when somebody first asks for attributes.
void touch(Pipeline& pipeline, const Lease& lease, const Reference& frame) {
    pipeline.send(callTo(lease, frame, kAccessible, "GetAttributes"), [](sd_bus_message*) {});
    pipeline.run();
}

std::size_t showing(const NodeTree& nodes) {
    return static_cast<std::size_t>(
        std::count_if(nodes.begin(), nodes.end(), [](const Node& n) { return n.shows && (!n.raw || isSane(*n.raw)); }));
}

class WindowFetcher {
public:
    WindowFetcher(Applications& applications, const Application& application, const X11Window& window,
                  const FetchOptions& options)
        : applications_(applications), application_(application), window_(window), options_(options) {}

    std::optional<WindowTree> fetch(Clock::time_point deadline) {
        const Clock::time_point first = applications_.firstAnswerBy(application_.bus, deadline);
        std::optional<Lease> lease =
            options_.overBus ? applications_.connectOverBus() : applications_.connect(application_, first);
        if (!lease || (first < deadline && !answers(*lease, first))) return std::nullopt;
        const bool onDemand = application_.toolkit == Toolkit::chromium || application_.toolkit == Toolkit::gecko;
        const bool isIncomplete = onDemand && !applications_.wasContacted(application_.bus);
        const bool waits = isIncomplete && options_.waitsForTree;
        std::optional<WindowTree> tree = waits ? fetchFirst(*lease) : fetchOn(*lease, deadline);
        if (tree && (waits || !isIncomplete))
            applications_.noteContact(application_.bus,
                                      grows_ ? Applications::Tree::grows : Applications::Tree::isComplete);
        return tree;
    }

private:
    bool answers(Lease& lease, Clock::time_point deadline) {
        Pipeline pipeline(lease.bus(), deadline);
        pipeline.send(callTo(lease, {application_.bus, application_.root}, kAccessible, "GetState"),
                      [](sd_bus_message*) {});
        pipeline.run();
        if (!pipeline.timedOut() && !pipeline.lost()) return true;
        lease.spoil();
        if (pipeline.timedOut()) applications_.noteTimeout(application_.bus);
        return false;
    }

    std::optional<WindowTree> fetchOn(Lease& lease, Clock::time_point deadline) {
        Pipeline pipeline(lease.bus(), deadline, options_.mode);
        WindowTree result;
        if (options_.record) pipeline.recordInto(&result.record);
        Surroundings surroundings(window_, options_.screen);
        const std::optional<Found> found = findFrameOn(application_, lease, pipeline, surroundings, Look::ifNeeded);
        const FrameFound* frame = found ? &found->frame : nullptr;
        if (frame) {
            result.application = application_;
            result.placement = place(application_.toolkit, window_, frame->box);
            TreeFetch tree(pipeline, application_, lease.direct(), result.placement, window_.visible(),
                           applications_.roleWords(application_.bus), applications_.paddings(application_.bus));
            tree.run(frame->reference, options_.bulk ? TreeFetch::Bulk::allowed : TreeFetch::Bulk::never);
            tree.addPopups(frame->popups);
            if (options_.screen && tree.hasPopovers()) tree.placePopovers(popupsOf(*options_.screen));
            tree.finish();
            NodeTree& nodes = result.nodes = tree.takeTree();
            if (options_.screen && hangsOut(nodes, application_.toolkit, window_.visible()))
                result.reach = letHangOut(nodes, application_.toolkit, window_.visible(), popupsOf(*options_.screen));
            applications_.keepRoleWords(application_.bus, tree.roleWords());
            applications_.keepPaddings(application_.bus, tree.paddings());
        }
        result.calls = pipeline.sent();
        isCutOff_ = pipeline.timedOut() || pipeline.lost();
        if (isCutOff_) lease.spoil();
        if (pipeline.timedOut()) applications_.noteTimeout(application_.bus);
        lastFrame_ = frame ? std::optional(frame->reference) : std::nullopt;
        if (!frame) return std::nullopt;
        return result;
    }

    std::vector<AxRect> popupsOf(X11Windows& screen) const {
        std::vector<AxRect> popups;
        for (const X11Window& each : screen.onScreen())
            if (each.isOverrideRedirect && each.pid == window_.pid) popups.push_back(each.client);
        return popups;
    }

    // Reads until three reads in a row have found the same: the tree is being made while it is read.
    std::optional<WindowTree> fetchFirst(Lease& lease) {
        const Clock::time_point deadline = Clock::now() + kFirstContact;
        std::optional<WindowTree> last;
        std::size_t seen = 0;
        int times = 0;
        for (;;) {
            std::optional<WindowTree> next = fetchOn(lease, deadline);
            const std::size_t count = next ? showing(next->nodes) : 0;
            if (lastFrame_) {
                Pipeline pipeline(lease.bus(), deadline);
                touch(pipeline, lease, *lastFrame_);
            }
            // The time may be up in the middle of a read; the one before it has more, then.
            if (next && (!last || !isCutOff_ || count > showing(last->nodes))) last = std::move(next);
            times = count == seen ? times + 1 : 1;
            grows_ = times < kSteady || count <= kBareFrame;
            if (!grows_ || Clock::now() + kBetweenReads >= deadline) return last;
            seen = count;
            std::this_thread::sleep_for(kBetweenReads);
        }
    }

    Applications& applications_;
    const Application& application_;
    const X11Window& window_;
    const FetchOptions& options_;
    std::optional<Reference> lastFrame_;
    bool isCutOff_ = false;
    bool grows_ = false;  // at the end of a first contact
};

std::optional<Found> findFrameOf(Applications& applications, const Application& application, Surroundings& surroundings,
                                 Look look, Clock::time_point deadline) {
    std::optional<Lease> lease = applications.connect(application, deadline);
    if (!lease) return std::nullopt;
    Pipeline pipeline(lease->bus(), applications.firstAnswerBy(application.bus, deadline));
    std::optional<Found> found = findFrameOn(application, *lease, pipeline, surroundings, look);
    if (pipeline.timedOut() || pipeline.lost()) lease->spoil();
    if (pipeline.timedOut()) applications.noteTimeout(application.bus);
    return found;
}

// The frame that is most like the window; of two that are equally like it the first.
std::optional<Found> surest(Applications& applications, const std::vector<Application>& candidates,
                            Surroundings& surroundings, Clock::time_point deadline) {
    std::optional<Found> best;
    for (const Application& each : candidates) {
        std::optional<Found> found = findFrameOf(applications, each, surroundings, Look::around, deadline);
        if (found && (!best || found->likeness.score() > best->likeness.score())) best = std::move(found);
    }
    return best;
}

// The frame of an application that has no window on the screen by its process, if one and only one is the window for
// all that can be seen.
std::optional<Found> strangersFrame(Applications& applications, Surroundings& surroundings,
                                    Clock::time_point deadline) {
    if (!surroundings.knowsScreen()) return std::nullopt;
    const Clock::time_point limit = std::min(deadline, Clock::now() + kStrangers);
    std::optional<Found> best;
    bool isAlone = true;
    for (const Application& each : applications.ofOthers(surroundings.owners(), limit)) {
        std::optional<Found> found = findFrameOf(applications, each, surroundings, Look::around, limit);
        if (!found || !maySpeakFor(found->likeness)) continue;
        const int lead = best ? found->likeness.score() - best->likeness.score() : 1;
        if (lead >= 0) isAlone = lead > 0;
        if (lead > 0) best = std::move(found);
    }
    return isAlone ? best : std::nullopt;
}

// The applications to look for the window's frame in: that of its process, or, of several, the one that has it.
std::vector<Application> applicationsOf(Applications& applications, Surroundings& surroundings,
                                        Clock::time_point deadline) {
    std::vector<Application> own = applications.ofProcess(surroundings.window().pid, deadline);
    if (own.size() == 1) return own;
    const std::optional<Found> found = own.empty() ? strangersFrame(applications, surroundings, deadline)
                                                   : surest(applications, own, surroundings, deadline);
    return found ? std::vector{found->frame.application} : std::vector<Application>();
}

}  // namespace

std::optional<FrameFound> findFrame(Applications& applications, const X11Window& window, X11Windows* screen,
                                    Clock::time_point deadline) {
    Surroundings surroundings(window, screen);
    for (const Application& application : applicationsOf(applications, surroundings, deadline))
        if (auto found = findFrameOf(applications, application, surroundings, Look::ifNeeded, deadline))
            return std::move(found->frame);
    return std::nullopt;
}

std::optional<WindowTree> fetchWindow(Applications& applications, const X11Window& window,
                                      const FetchOptions& options) {
    const Clock::time_point deadline = Clock::now() + options.limit;
    Surroundings surroundings(window, options.screen);
    for (const Application& application : applicationsOf(applications, surroundings, deadline)) {
        WindowFetcher fetcher(applications, application, window, options);
        if (auto tree = fetcher.fetch(deadline)) return tree;
    }
    return std::nullopt;
}

}  // namespace tarvix::atspi
