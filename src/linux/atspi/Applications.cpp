#include "linux/atspi/Applications.h"

#include <algorithm>

#include "linux/atspi/Replies.h"
#include "linux/atspi/Sandbox.h"

namespace tarvix::atspi {

namespace {

constexpr Milliseconds kBusLimit{300};  // for the bus itself and the registry, which never wait for an application
constexpr std::chrono::seconds kWary{5};
constexpr Milliseconds kWaryLimit{150};
constexpr std::size_t kMostIdle = 2;
constexpr int kMostIncomplete = 3;

Milliseconds left(Clock::time_point deadline) {
    return std::max(Milliseconds(1), std::chrono::duration_cast<Milliseconds>(deadline - Clock::now()));
}

struct Told {
    Message reply;  // null on any failure
    bool timedOut = false;
};

Told getProperty(sd_bus* bus, const Reference& of, const char* interface, const char* property, Milliseconds limit) {
    sd_bus_message* raw = nullptr;
    if (sd_bus_message_new_method_call(bus, &raw, of.bus.c_str(), of.path.c_str(), "org.freedesktop.DBus.Properties",
                                       "Get") < 0)
        return {};
    const Message call(raw);
    if (sd_bus_message_append(raw, "ss", interface, property) < 0) return {};
    sd_bus_message* reply = nullptr;
    const int r =
        sd_bus_call(bus, raw, static_cast<std::uint64_t>(std::chrono::microseconds(limit).count()), nullptr, &reply);
    return {Message(reply), r == -ETIMEDOUT};
}

Toolkit toolkitNamed(const std::string& toolkit, const std::string& application) {
    if (toolkit == "gtk") return application == "soffice" ? Toolkit::libreOffice : Toolkit::gtk3;
    if (toolkit == "GTK") return Toolkit::gtk4;
    if (toolkit == "Qt") return Toolkit::qt;
    if (toolkit == "Chromium") return Toolkit::chromium;
    if (toolkit == "Gecko") return Toolkit::gecko;
    if (toolkit == "clutter") return Toolkit::clutter;
    if (toolkit == "J2SE-access-bridge") return Toolkit::java;
    return Toolkit::other;
}

// The ATK bridge, which these stand on, is the one that offers a socket of the application's own.
bool offersSocket(Toolkit toolkit) {
    return toolkit == Toolkit::gtk3 || toolkit == Toolkit::libreOffice || toolkit == Toolkit::chromium ||
           toolkit == Toolkit::gecko || toolkit == Toolkit::clutter || toolkit == Toolkit::java;
}

}  // namespace

Applications::Applications() : self_(std::make_shared<Applications*>(this)) {}

Applications::~Applications() { *self_ = nullptr; }

std::optional<std::string> Applications::busAddress() {
    {
        const std::lock_guard lock(mutex_);
        if (address_) return address_;
    }
    const Bus session = connectToSession();
    if (!session) return std::nullopt;
    std::optional<std::string> address = accessibilityBusAddress(session.get());
    const std::lock_guard lock(mutex_);
    address_ = address;
    return address;
}

std::optional<Lease> Applications::connectOverBus() {
    const auto giveBack = [self = self_](Bus bus) {
        if (!*self) return;
        const std::lock_guard lock((*self)->mutex_);
        if ((*self)->idle_.size() < kMostIdle) (*self)->idle_.push_back(std::move(bus));
    };
    {
        const std::lock_guard lock(mutex_);
        while (!idle_.empty()) {
            Bus bus = std::move(idle_.back());
            idle_.pop_back();
            if (sd_bus_is_ready(bus.get()) > 0) return Lease(std::move(bus), false, giveBack);
        }
    }
    for (int attempt = 0; attempt < 2; ++attempt) {
        const std::optional<std::string> address = busAddress();
        if (!address) return std::nullopt;
        if (Bus bus = connectTo(*address, Peer::messageBus)) return Lease(std::move(bus), false, giveBack);
        // The accessibility bus may have been started anew, at another address.
        const std::lock_guard lock(mutex_);
        address_.reset();
    }
    return std::nullopt;
}

std::optional<std::int32_t> Applications::pidOf(sd_bus* bus, const std::string& name) {
    {
        const std::lock_guard lock(mutex_);
        if (const auto found = known_.find(name); found != known_.end() && found->second.pid != -1)
            return found->second.pid;
    }
    const Message reply = callBlocking(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                       "GetConnectionUnixProcessID", kBusLimit, name.c_str());
    const std::optional<std::uint32_t> pid = readUnsigned(reply.get());
    if (!pid) return std::nullopt;
    const std::lock_guard lock(mutex_);
    known_[name].pid = static_cast<std::int32_t>(*pid);
    return known_[name].pid;
}

// Absent when the application doesn't answer.
std::optional<Toolkit> Applications::toolkitOf(sd_bus* bus, const Reference& root, Clock::time_point deadline) {
    {
        const std::lock_guard lock(mutex_);
        if (const auto found = known_.find(root.bus); found != known_.end() && found->second.toolkit)
            return *found->second.toolkit;
    }
    const Told toolkit = getProperty(bus, root, "org.a11y.atspi.Application", "ToolkitName", left(deadline));
    const std::optional<std::string> toolkitText = readVariantText(toolkit.reply.get());
    Told title;
    if (toolkitText) title = getProperty(bus, root, "org.a11y.atspi.Accessible", "Name", left(deadline));
    if (toolkit.timedOut || title.timedOut) {
        noteTimeout(root.bus);
        return std::nullopt;
    }
    if (!toolkitText) return Toolkit::other;
    const Toolkit answer = toolkitNamed(*toolkitText, readVariantText(title.reply.get()).value_or(""));
    const std::lock_guard lock(mutex_);
    known_[root.bus].toolkit = answer;
    return answer;
}

Applications::IsWanted Applications::isOf(std::int32_t pid) {
    return [pid, sandbox = flatpakInstance(pid)](std::int32_t each) {
        return each == pid || (sandbox && flatpakInstance(each) == sandbox);
    };
}

std::vector<Application> Applications::ofProcess(std::int32_t pid, Clock::time_point deadline) {
    return whose(isOf(pid), deadline);
}

std::vector<Application> Applications::ofOthers(const std::vector<std::int32_t>& pids, Clock::time_point deadline) {
    std::vector<Application> found =
        whose([&](std::int32_t each) { return std::ranges::count(pids, each) == 0; }, deadline);
    std::erase_if(found, [this](const Application& each) { return isWary(each.bus); });
    return found;
}

std::vector<Reference> Applications::rootsOf(std::int32_t pid) {
    std::optional<Lease> lease = connectOverBus();
    if (!lease) return {};
    std::vector<Reference> roots;
    for (Present& each : present(*lease, isOf(pid))) roots.push_back(std::move(each.root));
    return roots;
}

void Applications::forgetTheGone() {
    if (std::optional<Lease> lease = connectOverBus()) present(*lease, [](std::int32_t) { return false; });
}

std::vector<Applications::Present> Applications::present(Lease& lease, const IsWanted& isWanted) {
    const Message reply = callBlocking(lease.bus(), "org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root",
                                       "org.a11y.atspi.Accessible", "GetChildren", kBusLimit);
    if (!reply) {
        lease.spoil();
        return {};
    }
    std::vector<Reference> all = readReferences(reply.get());
    forgetOthers(all);
    std::vector<Present> wanted;
    for (Reference& each : all)
        if (const auto pid = pidOf(lease.bus(), each.bus); pid && isWanted(*pid))
            wanted.push_back({std::move(each), *pid});
    return wanted;
}

std::vector<Application> Applications::whose(const IsWanted& isWanted, Clock::time_point deadline) {
    std::optional<Lease> lease = connectOverBus();
    if (!lease) return {};
    std::vector<Application> found;
    for (const auto& [root, pid] : present(*lease, isWanted))
        if (const auto toolkit = toolkitOf(lease->bus(), root, firstAnswerBy(root.bus, deadline)))
            found.push_back({root.bus, root.path, pid, *toolkit});
    return found;
}

void Applications::forgetOthers(const std::vector<Reference>& present) {
    const std::lock_guard lock(mutex_);
    std::erase_if(known_, [&](const auto& entry) {
        return std::none_of(present.begin(), present.end(), [&](const Reference& r) { return r.bus == entry.first; });
    });
}

std::string Applications::addressOf(const Application& application, Milliseconds limit) {
    {
        const std::lock_guard lock(mutex_);
        if (const auto found = known_.find(application.bus); found != known_.end() && found->second.address)
            return *found->second.address;
    }
    std::optional<Lease> lease = connectOverBus();
    if (!lease) return {};
    const Message reply = callBlocking(lease->bus(), application.bus.c_str(), application.root.c_str(),
                                       "org.a11y.atspi.Application", "GetApplicationBusAddress", limit);
    if (!reply) {
        lease->spoil();
        return {};
    }
    std::string address = readText(reply.get(), kLongestName).value_or("");
    const std::lock_guard lock(mutex_);
    known_[application.bus].address = address;
    return address;
}

std::optional<Lease> Applications::connect(const Application& application, Clock::time_point deadline) {
    if (!offersSocket(application.toolkit)) return connectOverBus();
    const auto giveBack = [self = self_, name = application.bus](Bus bus) {
        if (!*self) return;
        const std::lock_guard lock((*self)->mutex_);
        const auto found = (*self)->known_.find(name);
        if (found != (*self)->known_.end() && found->second.idle.size() < kMostIdle)
            found->second.idle.push_back(std::move(bus));
    };
    {
        const std::lock_guard lock(mutex_);
        auto& idle = known_[application.bus].idle;
        while (!idle.empty()) {
            Bus bus = std::move(idle.back());
            idle.pop_back();
            if (sd_bus_is_ready(bus.get()) > 0) return Lease(std::move(bus), true, giveBack);
        }
    }
    const std::string address = addressOf(application, left(deadline));
    // A sandboxed application's socket can't be reached from here.
    if (!address.empty())
        if (Bus bus = connectTo(address, Peer::program)) return Lease(std::move(bus), true, giveBack);
    return connectOverBus();
}

std::map<Role, std::string> Applications::roleWords(const std::string& bus) {
    const std::lock_guard lock(mutex_);
    return known_[bus].roleWords;
}

void Applications::keepRoleWords(const std::string& bus, const std::map<Role, std::string>& words) {
    const std::lock_guard lock(mutex_);
    // One that didn't come is asked for again.
    for (const auto& [role, word] : words)
        if (!word.empty()) known_[bus].roleWords.emplace(role, word);
}

Paddings Applications::paddings(const std::string& bus) {
    const std::lock_guard lock(mutex_);
    return known_[bus].paddings;
}

void Applications::keepPaddings(const std::string& bus, Paddings paddings) {
    const std::lock_guard lock(mutex_);
    known_[bus].paddings = std::move(paddings);
}

bool Applications::wasContacted(const std::string& bus) {
    const std::lock_guard lock(mutex_);
    const auto found = known_.find(bus);
    return found != known_.end() && found->second.contacted;
}

void Applications::noteContact(const std::string& bus, Tree tree) {
    const std::lock_guard lock(mutex_);
    Known& known = known_[bus];
    if (tree == Tree::grows && ++known.incomplete < kMostIncomplete) return;
    known.contacted = true;
}

void Applications::noteTimeout(const std::string& bus) {
    const std::lock_guard lock(mutex_);
    known_[bus].timeout = Clock::now();
}

bool Applications::isWary(const std::string& bus) {
    const std::lock_guard lock(mutex_);
    const auto& timeout = known_[bus].timeout;
    return timeout && Clock::now() - *timeout < kWary;
}

Clock::time_point Applications::firstAnswerBy(const std::string& bus, Clock::time_point deadline) {
    const std::lock_guard lock(mutex_);
    const auto& timeout = known_[bus].timeout;
    const Clock::time_point now = Clock::now();
    return timeout && now - *timeout < kWary ? std::min(deadline, now + kWaryLimit) : deadline;
}

}  // namespace tarvix::atspi
