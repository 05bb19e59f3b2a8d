#include "linux/atspi/PanelTrees.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "linux/atspi/Replies.h"
#include "linux/atspi/TreeFetch.h"

namespace tarvix::atspi {

namespace {

constexpr const char* kAccessible = "org.a11y.atspi.Accessible";
constexpr Milliseconds kSignOfLife{25};
constexpr double kNear = 4;  // pixels by which a frame may differ from its window

struct Frame {
    Reference reference;
    std::optional<RawBox> box;
};

Call callTo(const Reference& to, const char* interface, const char* member) {
    Call call;
    call.destination = to.bus;
    call.path = to.path;
    call.interface = interface;
    call.member = member;
    return call;
}

std::vector<Frame> framesOf(Pipeline& pipeline, const Application& application) {
    std::vector<Frame> frames;
    pipeline.send(callTo({application.bus, application.root}, kAccessible, "GetChildren"), [&](sd_bus_message* reply) {
        for (Reference& each : readReferences(reply)) frames.push_back({std::move(each), {}});
        for (Frame& frame : frames) {
            Call call = callTo(frame.reference, "org.a11y.atspi.Component", "GetExtents");
            call.signature = "u";
            call.integers[0] = static_cast<std::int32_t>(coordinatesOf(application.toolkit));
            pipeline.send(std::move(call), [&frame](sd_bus_message* box) { frame.box = readBox(box); });
        }
    });
    pipeline.run();
    return frames;
}

// How far the frame is from where the window stands. Panels of one program have no titles, but places of their own.
double distance(Toolkit toolkit, const Frame& frame, const X11Window& window) {
    if (!frame.box || !isSane(*frame.box)) return HUGE_VAL;
    Placement placement = place(toolkit, window, *frame.box);
    const AxRect box = placement.toRoot(*frame.box, false);
    const double inSize =
        std::abs(box.size.width - window.client.size.width) + std::abs(box.size.height - window.client.size.height);
    // Qt's frames are placed by their windows, so that the place they report has to be looked at as it is.
    const double inPlace = std::abs(placement.scale * frame.box->x - window.client.origin.x) +
                           std::abs(placement.scale * frame.box->y - window.client.origin.y);
    return inSize > 2 * kNear ? HUGE_VAL : inSize + inPlace;
}

bool wasAnswered(const Node& node) { return node.states != 0 || node.role != Role::invalid; }

}  // namespace

void PanelTrees::noteSilent(const std::string& bus) {
    const std::lock_guard lock(mutex_);
    silent_.insert(bus);
}

std::set<std::string> PanelTrees::stillSilent() {
    std::set<std::string> silent;
    {
        const std::lock_guard lock(mutex_);
        silent = silent_;
    }
    std::optional<Lease> lease = silent.empty() ? std::nullopt : applications_.connectOverBus();
    if (!lease) return silent;
    std::set<std::string> answered;
    Pipeline pipeline(lease->bus(), Clock::now() + kSignOfLife);
    for (const std::string& bus : silent)
        // One that has gone answers too, with a failure of the bus.
        pipeline.send(callTo({bus, "/"}, "org.freedesktop.DBus.Peer", "Ping"),
                      [&answered, bus](sd_bus_message*) { answered.insert(bus); });
    pipeline.run();
    if (pipeline.timedOut() || pipeline.lost()) lease->spoil();
    const std::lock_guard lock(mutex_);
    for (const std::string& bus : answered) silent_.erase(bus), silent.erase(bus);
    return silent;
}

std::optional<Reference> plugOf(const std::string& accessiblePath) {
    const std::size_t slash = accessiblePath.find(":/");
    if (slash == std::string::npos || slash == 0) return std::nullopt;
    return Reference{accessiblePath.substr(0, slash), accessiblePath.substr(slash + 1)};
}

std::vector<NodeTree> PanelTrees::fetch(std::int32_t pid, const std::vector<X11Window>& panels,
                                        const std::vector<std::vector<X11Window>>& embedded,
                                        Clock::time_point deadline) {
    std::vector<NodeTree> trees(panels.size());
    const std::set<std::string> silent = stillSilent();
    for (const Application& application : applications_.ofProcess(pid, deadline))
        if (!silent.contains(application.bus)) fetchFrom(application, panels, embedded, silent, deadline, trees);
    return trees;
}

void PanelTrees::fetchFrom(const Application& application, const std::vector<X11Window>& panels,
                           const std::vector<std::vector<X11Window>>& embedded, const std::set<std::string>& silent,
                           Clock::time_point deadline, std::vector<NodeTree>& trees) {
    std::optional<Lease> lease = applications_.connectOverBus();
    if (!lease) return;
    Pipeline pipeline(lease->bus(), deadline);
    const std::vector<Frame> frames = framesOf(pipeline, application);
    if (pipeline.timedOut() && frames.empty()) noteSilent(application.bus);
    for (std::size_t i = 0; i < panels.size(); ++i) {
        const auto far = [&](const Frame& frame) { return distance(application.toolkit, frame, panels[i]); };
        const auto frame = std::ranges::min_element(frames, {}, far);
        if (frame == frames.end() || std::isinf(far(*frame))) continue;
        TreeFetch tree(pipeline, application, false, place(application.toolkit, panels[i], *frame->box),
                       panels[i].client, applications_.roleWords(application.bus),
                       applications_.paddings(application.bus));
        tree.leaveOut(silent);
        tree.run(frame->reference);
        std::vector<Reference> plugs;
        for (const X11Window& each : embedded[i])
            if (auto plug = plugOf(each.accessiblePath)) plugs.push_back(std::move(*plug));
        tree.addPopups(plugs);
        tree.finish();
        applications_.keepRoleWords(application.bus, tree.roleWords());
        trees[i] = tree.takeTree();
        if (!pipeline.timedOut()) continue;
        for (const Node& node : trees[i])
            if (!wasAnswered(node)) noteSilent(node.reference.bus);
    }
    if (pipeline.timedOut() || pipeline.lost()) lease->spoil();
}

}  // namespace tarvix::atspi
