// An accessible application whose every answer the test decides.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "linux/atspi/Node.h"
#include "linux/atspi/SdBus.h"

namespace tarvix::atspi {

// What is empty here, the object doesn't have.
struct FakeObject {
    Role role = Role::panel;
    std::string name = {};
    RawBox box = {};
    std::vector<std::string> children = {};  // by their names in the application; "null" is the null object
    std::vector<std::string> interfaces = {"Component"};
    bool showing = true;
    bool managesDescendants = false;
    std::string text = {};       // ASCII
    std::int32_t mostText = -1;  // more characters in one call are refused; -1: the whole text is given
    std::int32_t index = -1;     // in its parent
    // What a test wants to go wrong, by the name of the call or property.
    std::set<std::string> refused = {};                     // answered with an error
    std::set<std::string> nonsense = {};                    // answered with a number of no kind that is asked for
    std::int32_t childCount = -1;                           // -1: as many as `children`
    std::function<std::string(std::int32_t)> childAt = {};  // instead of `children`
    std::function<std::string(std::int32_t x, std::int32_t y)> hit = {};  // what is at a place of the screen
    std::int32_t rows = 0, columns = 0;                                   // of a table
};

struct FakeCall {
    std::string object;  // its name in the application
    std::string member;  // of a property's, "Get Name"
};

// It is in the registry when the constructor has returned, as a program of this process, and has left when it is
// destroyed. Its root's only child is "frame". Any thread.
class AtspiFake {
public:
    // `toolkit` as programs call themselves: "Qt", "gtk", "Chromium", ...
    explicit AtspiFake(std::string toolkit);
    ~AtspiFake();
    AtspiFake(const AtspiFake&) = delete;
    AtspiFake& operator=(const AtspiFake&) = delete;

    void set(const std::string& object, FakeObject what);
    // References to this object name another application.
    void setBus(const std::string& object, const std::string& bus);
    // Makes the objects that set() doesn't know; they are not in Cache.GetItems.
    void setMaker(std::function<std::optional<FakeObject>(const std::string&)> maker);

    // Answers so many calls more and then holds all back until it answers again.
    void stopAfter(std::size_t answers);
    // The same once it is asked this; that one is the first not to be answered.
    void stopAt(const std::string& member);
    // Those held back included.
    void answerAgain();
    // Closes its connection after so many answers.
    void exitAfter(std::size_t answers);

    // All calls that have come so far, answered or not; those held back come once more when they are answered.
    std::vector<FakeCall> calls() const;
    std::size_t count(const std::string& member) const;
    void forgetCalls();

    const std::string& busName() const { return busName_; }
    bool isInRegistry() const { return inRegistry_; }

private:
    static int onMessage(sd_bus_message* message, void* self, sd_bus_error*);
    void work();
    void handle(sd_bus_message* message);
    Message answerTo(sd_bus_message* message, const std::string& object, const std::string& member);
    Message error(sd_bus_message* message) const;
    Message reply(sd_bus_message* message) const;
    int appendReference(sd_bus_message* reply, const std::string& object) const;
    int appendAnswer(sd_bus_message* reply, sd_bus_message* call, const FakeObject& of, const std::string& object,
                     const std::string& member);
    int appendProperty(sd_bus_message* reply, const FakeObject& of, const std::string& property) const;
    int appendItems(sd_bus_message* reply) const;
    int appendTree(sd_bus_message* reply) const;
    std::optional<FakeObject> find(const std::string& object) const;
    std::int32_t countOf(const FakeObject& of) const;
    void wakeUp() const;

    const std::string toolkit_;
    Bus bus_;  // of the thread, once that runs
    std::string busName_;
    bool inRegistry_ = false;
    int wake_ = -1;

    mutable std::mutex mutex_;  // guards all below
    std::map<std::string, FakeObject> objects_;
    std::function<std::optional<FakeObject>(const std::string&)> maker_;
    std::map<std::string, std::string> buses_;
    std::vector<FakeCall> calls_;
    std::optional<std::size_t> left_;  // answers until it stops
    std::string stopAt_;
    bool exits_ = false, ends_ = false;
    std::vector<Message> held_;

    std::thread thread_;  // last, so that all above is there when it starts
};

}  // namespace tarvix::atspi
