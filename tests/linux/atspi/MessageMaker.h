// Messages as an application would send them, without an application.
#pragma once

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include "linux/atspi/SdBus.h"

namespace tarvix::atspi {

// A connection to a socket that nobody reads from: a message can't be made without one.
class MessageMaker {
public:
    MessageMaker() {
        sd_bus* raw = nullptr;
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends_), 0);
        EXPECT_GE(sd_bus_new(&raw), 0);
        bus_.reset(raw);
        EXPECT_GE(sd_bus_set_fd(raw, ends_[0], ends_[0]), 0);  // which owns it from now on
        EXPECT_GE(sd_bus_start(raw), 0);
    }
    ~MessageMaker() { close(ends_[1]); }
    MessageMaker(const MessageMaker&) = delete;
    MessageMaker& operator=(const MessageMaker&) = delete;

    // Open for appending; to be sealed before it is read.
    Message open() const {
        sd_bus_message* raw = nullptr;
        EXPECT_GE(sd_bus_message_new_signal(bus_.get(), &raw, "/test", "test.Test", "Test"), 0);
        return Message(raw);
    }

    // Of a signature and what it asks for.
    template <class... Arguments>
    Message of(const char* signature, Arguments... arguments) const {
        Message message = open();
        EXPECT_GE(sd_bus_message_append(message.get(), signature, arguments...), 0);
        return seal(std::move(message));
    }
    Message nothing() const { return seal(open()); }

    static Message seal(Message message) {
        EXPECT_GE(sd_bus_message_seal(message.get(), 1, 0), 0);
        return message;
    }

private:
    int ends_[2] = {-1, -1};
    Bus bus_;
};

}  // namespace tarvix::atspi
