// The applications on the accessibility bus, and the connections to them.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "linux/atspi/BorderBoxes.h"
#include "linux/atspi/Node.h"
#include "linux/atspi/SdBus.h"

namespace tarvix::atspi {

struct Application {
    std::string bus;   // its unique name on the accessibility bus
    std::string root;  // the path of its root object
    std::int32_t pid = -1;
    Toolkit toolkit = Toolkit::other;
};

// A connection lent for one fetch: back in the pool when it is dropped, unless it has been spoilt.
class Lease {
public:
    Lease(Bus bus, bool direct, std::function<void(Bus)> giveBack)
        : bus_(std::move(bus)), direct_(direct), giveBack_(std::move(giveBack)) {}
    Lease(Lease&&) = default;
    Lease& operator=(Lease&&) = delete;
    ~Lease() {
        if (bus_ && giveBack_) giveBack_(std::move(bus_));
    }

    sd_bus* bus() const { return bus_.get(); }
    // True on a connection to the application itself, where messages carry no destination.
    bool direct() const { return direct_; }
    // Late replies may still come on it, or it is dead: it isn't used again.
    void spoil() { giveBack_ = nullptr; }

private:
    Bus bus_;
    bool direct_;
    std::function<void(Bus)> giveBack_;
};

// Any thread. What is kept between searches is who is who: which bus name is which process and toolkit, idle
// connections, and the words that an application has for its roles. Nothing of any tree is kept.
class Applications {
public:
    Applications();
    ~Applications();
    Applications(const Applications&) = delete;
    Applications& operator=(const Applications&) = delete;

    // The applications that a process has on the bus, mostly one; empty when it shows none or there is no bus. One that
    // doesn't answer is none.
    // A process in a sandbox has those that come through the sandbox's own door to the bus.
    std::vector<Application> ofProcess(std::int32_t pid, Clock::time_point deadline);
    // Those of all other processes, but for any that has let a deadline pass of late.
    std::vector<Application> ofOthers(const std::vector<std::int32_t>& pids, Clock::time_point deadline);

    // Where the applications of a process stand on the bus, whether or not they answer.
    std::vector<Reference> rootsOf(std::int32_t pid);
    // Nothing is known any more of those that have left the bus.
    void forgetTheGone();

    // A connection on which this application's objects can be called: to the application itself where it offers that,
    // else over the bus. Absent when neither can be had.
    std::optional<Lease> connect(const Application& application, Clock::time_point deadline);
    // The same, always over the bus.
    std::optional<Lease> connectOverBus();

    std::map<Role, std::string> roleWords(const std::string& bus);
    void keepRoleWords(const std::string& bus, const std::map<Role, std::string>& words);

    Paddings paddings(const std::string& bus);
    void keepPaddings(const std::string& bus, Paddings paddings);

    // Whether a tree of this application has been read before. At the first contact, what a toolkit makes on demand
    // isn't there yet; one that was still growing then is waited for anew, but not for ever.
    enum class Tree { grows, isComplete };
    bool wasContacted(const std::string& bus);
    void noteContact(const std::string& bus, Tree tree);

    // An application that has let a whole deadline pass is given little time for its first answer for a while.
    void noteTimeout(const std::string& bus);
    // `deadline`, or a moment before it.
    Clock::time_point firstAnswerBy(const std::string& bus, Clock::time_point deadline);

private:
    struct Known {
        std::int32_t pid = -1;
        std::optional<Toolkit> toolkit;
        std::optional<std::string> address;  // its own socket; empty: it has none
        std::map<Role, std::string> roleWords;
        Paddings paddings;
        bool contacted = false;
        int incomplete = 0;  // contacts so far whose tree was still growing at the end
        std::optional<Clock::time_point> timeout;
        std::vector<Bus> idle;
    };

    std::optional<std::string> busAddress();
    std::optional<std::int32_t> pidOf(sd_bus* bus, const std::string& name);
    std::optional<Toolkit> toolkitOf(sd_bus* bus, const Reference& root, Clock::time_point deadline);
    std::string addressOf(const Application& application, Milliseconds limit);
    using IsWanted = std::function<bool(std::int32_t pid)>;
    static IsWanted isOf(std::int32_t pid);
    struct Present {
        Reference root;
        std::int32_t pid;
    };
    std::vector<Present> present(Lease& lease, const IsWanted& isWanted);
    std::vector<Application> whose(const IsWanted& isWanted, Clock::time_point deadline);
    bool isWary(const std::string& bus);
    void forgetOthers(const std::vector<Reference>& present);

    std::mutex mutex_;  // guards everything below; never held during a call to an application
    std::optional<std::string> address_;
    std::vector<Bus> idle_;
    std::unordered_map<std::string, Known> known_;
    // Given to leases, so that one that outlives this object gives nothing back.
    std::shared_ptr<Applications*> self_;
};

}  // namespace tarvix::atspi
