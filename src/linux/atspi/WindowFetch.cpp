#include "linux/atspi/WindowFetch.h"

#include <algorithm>
#include <cmath>
#include <thread>

#include "linux/atspi/Replies.h"
#include "linux/atspi/TreeFetch.h"

namespace tarvix::atspi {

namespace {

constexpr const char* kAccessible = "org.a11y.atspi.Accessible";
constexpr Milliseconds kFirstContact{2000};  // a browser makes its tree within that
constexpr Milliseconds kBetweenReads{60};
constexpr int kSteady = 3;
constexpr std::size_t kBareFrame = 8;  // what a browser shows before its tree is made

struct FrameCandidate {
    Reference reference;
    std::string name;
    Role role = Role::invalid;
    std::uint64_t states = 0;
    std::optional<RawBox> box;
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
    const auto state = [&frame](sd_bus_message* r) { frame.states = readStates(r).value_or(0); };
    pipeline.send(callTo(lease, frame.reference, kAccessible, "GetState"), state);
    pipeline.send(callTo(lease, frame.reference, kAccessible, "GetRole"),
                  [&frame](sd_bus_message* r) { frame.role = static_cast<Role>(readUnsigned(r).value_or(0)); });
    Call name = callTo(lease, frame.reference, "org.freedesktop.DBus.Properties", "Get");
    name.signature = "ss";
    name.texts[0] = kAccessible;
    name.texts[1] = "Name";
    pipeline.send(std::move(name), [&frame](sd_bus_message* r) { frame.name = readVariantText(r).value_or(""); });
    Call box = callTo(lease, frame.reference, "org.a11y.atspi.Component", "GetExtents");
    box.signature = "u";
    box.integers[0] = static_cast<std::int32_t>(coordinatesOf(toolkit));
    pipeline.send(std::move(box), [&frame](sd_bus_message* r) { frame.box = readBox(r); });
}

// GTK 3 lists the windows of open menus beside the frames, and calls the topmost of them active.
bool isPopup(Toolkit toolkit, const FrameCandidate& frame) {
    return toolkit == Toolkit::gtk3 && frame.role == Role::window;
}

bool isOpen(const FrameCandidate& popup) {
    const bool shows = (popup.states >> static_cast<unsigned>(State::showing) & 1U) != 0;
    return shows && popup.box && isSane(*popup.box) && popup.box->width > 0 && popup.box->height > 0;
}

// How surely this accessible frame is that window. Sizes differ by the shadow or the decoration, which some toolkits
// count in and some don't.
int likeness(const FrameCandidate& frame, const X11Window& window) {
    if (!frame.box) return -1;
    const AxRect seen = window.visible();
    const auto near = [](double a, double b) { return std::abs(a - b) <= 2; };
    int score = 0;
    if ((frame.states >> static_cast<unsigned>(State::active) & 1U) != 0) score += 4;
    if (!window.title.empty() && frame.name == window.title) score += 3;
    if ((near(frame.box->width, window.client.size.width) && near(frame.box->height, window.client.size.height)) ||
        (near(frame.box->width, seen.size.width) && near(frame.box->height, seen.size.height)))
        score += 2;
    if ((frame.states >> static_cast<unsigned>(State::showing) & 1U) != 0) score += 1;
    return score;
}

std::optional<FrameFound> findFrameOn(const Application& application, Lease& lease, Pipeline& pipeline,
                                      const X11Window& window) {
    std::vector<FrameCandidate> frames;
    pipeline.send(callTo(lease, {application.bus, application.root}, kAccessible, "GetChildren"),
                  [&](sd_bus_message* r) {
                      for (Reference& each : readReferences(r))
                          if (!lease.direct() || each.bus == application.bus)
                              frames.push_back({std::move(each), {}, {}, 0, {}});
                      for (FrameCandidate& frame : frames) askFrame(pipeline, lease, application.toolkit, frame);
                  });
    pipeline.run();
    const auto popups = std::stable_partition(frames.begin(), frames.end(), [&](const FrameCandidate& frame) {
        return !isPopup(application.toolkit, frame);
    });
    const auto best = std::max_element(frames.begin(), popups, [&](const FrameCandidate& a, const FrameCandidate& b) {
        return likeness(a, window) < likeness(b, window);
    });
    if (best == popups || likeness(*best, window) < 0) return std::nullopt;
    FrameFound found{application, best->reference, *best->box, {}};
    for (auto popup = popups; popup != frames.end(); ++popup)
        if (isOpen(*popup)) found.popups.push_back(popup->reference);
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
        const std::optional<FrameFound> frame = findFrameOn(application_, lease, pipeline, window_);
        if (frame) {
            result.application = application_;
            result.placement = place(application_.toolkit, window_, frame->box);
            TreeFetch tree(pipeline, application_, lease.direct(), result.placement, window_.visible(),
                           applications_.roleWords(application_.bus), applications_.paddings(application_.bus));
            tree.run(frame->reference, options_.bulk ? TreeFetch::Bulk::allowed : TreeFetch::Bulk::never);
            tree.addPopups(frame->popups);
            if (options_.screen && tree.hasPopovers()) tree.placePopovers(popupsOf(*options_.screen));
            tree.finish();
            applications_.keepRoleWords(application_.bus, tree.roleWords());
            applications_.keepPaddings(application_.bus, tree.paddings());
            result.nodes = tree.takeTree();
        }
        result.calls = pipeline.sent();
        isCutOff_ = pipeline.timedOut() || pipeline.lost();
        if (isCutOff_) lease.spoil();
        if (pipeline.timedOut()) applications_.noteTimeout(application_.bus);
        lastFrame_ = frame;
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
                touch(pipeline, lease, lastFrame_->reference);
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
    std::optional<FrameFound> lastFrame_;
    bool isCutOff_ = false;
    bool grows_ = false;  // at the end of a first contact
};

}  // namespace

std::optional<FrameFound> findFrame(Applications& applications, const X11Window& window, Clock::time_point deadline) {
    for (const Application& application : applications.ofProcess(window.pid, deadline)) {
        std::optional<Lease> lease = applications.connect(application, deadline);
        if (!lease) continue;
        Pipeline pipeline(lease->bus(), deadline);
        const std::optional<FrameFound> frame = findFrameOn(application, *lease, pipeline, window);
        if (pipeline.timedOut() || pipeline.lost()) lease->spoil();
        if (frame) return frame;
    }
    return std::nullopt;
}

std::optional<WindowTree> fetchWindow(Applications& applications, const X11Window& window,
                                      const FetchOptions& options) {
    const Clock::time_point deadline = Clock::now() + options.limit;
    for (const Application& application : applications.ofProcess(window.pid, deadline)) {
        WindowFetcher fetcher(applications, application, window, options);
        if (auto tree = fetcher.fetch(deadline)) return tree;
    }
    return std::nullopt;
}

}  // namespace tarvix::atspi
