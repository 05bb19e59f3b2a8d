// Many D-Bus calls under way at once on one connection.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "linux/atspi/SdBus.h"

namespace tarvix::atspi {

// One call as it is sent. `destination` is empty on a connection to the program itself. Arguments are what the calls of
// the accessibility protocol need and no more: integers, then texts, by the signature ("ii", "iiu", "ss", ...).
struct Call {
    std::string destination;
    std::string path;
    const char* interface = nullptr;
    const char* member = nullptr;
    const char* signature = "";
    std::int32_t integers[3] = {0, 0, 0};
    const char* texts[2] = {nullptr, nullptr};
    int (*append)(sd_bus_message*) = nullptr;
};

// Sends calls without waiting and hands each reply to its handler while run() runs. A handler may send further calls.
// Not thread-safe: a connection belongs to one pipeline at a time.
class Pipeline {
public:
    // `reply` is null when the call failed, for whatever reason, or the time was up.
    using Handler = std::function<void(sd_bus_message* reply)>;
    enum class Mode { pipelined, oneAtATime };

    Pipeline(sd_bus* bus, Clock::time_point deadline, Mode mode = Mode::pipelined);
    Pipeline(const Pipeline&) = delete;
    Pipeline& operator=(const Pipeline&) = delete;

    void send(Call call, Handler handler);
    // Returns when no call is outstanding, the deadline has passed or the connection is lost; in the last two cases the
    // handlers of what was outstanding are not called.
    void run();

    std::size_t sent() const { return sent_; }
    bool timedOut() const { return timedOut_; }
    bool lost() const { return lost_; }

    // Keeps a copy of every call sent from now on.
    void recordInto(std::vector<Call>* record) { record_ = record; }

private:
    struct Pending {
        Pipeline* owner = nullptr;
        Handler handler;
        Slot slot;
    };

    static int onReply(sd_bus_message* reply, void* pending, sd_bus_error*);
    Message build(const Call& call);
    void transmit(const Call& call, Handler handler);
    void callAndWait(const Call& call, const Handler& handler);
    bool expired() const { return Clock::now() >= deadline_; }

    sd_bus* bus_;
    Clock::time_point deadline_;
    Mode mode_;
    // Slots are given back with their entries, so that a late reply finds no handler.
    std::deque<Pending> pending_;
    std::deque<std::pair<Call, Handler>> waiting_;  // beyond the limit of calls under way
    std::size_t sent_ = 0, outstanding_ = 0;
    bool timedOut_ = false, lost_ = false;
    std::vector<Call>* record_ = nullptr;
};

}  // namespace tarvix::atspi
