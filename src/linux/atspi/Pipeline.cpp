#include "linux/atspi/Pipeline.h"

#include <algorithm>

namespace tarvix::atspi {

namespace {

// More than enough to keep an application busy, and far below what a message bus allows one connection (50,000).
constexpr std::size_t kMostUnderWay = 1500;

int append(sd_bus_message* m, const Call& call) {
    const std::int32_t* integer = call.integers;
    const char* const* text = call.texts;
    for (const char* type = call.signature; *type != '\0'; ++type) {
        const int r = *type == 's' ? sd_bus_message_append_basic(m, 's', *text++)
                                   : sd_bus_message_append_basic(m, *type, integer++);
        if (r < 0) return r;
    }
    return 0;
}

}  // namespace

Pipeline::Pipeline(sd_bus* bus, Clock::time_point deadline, Mode mode) : bus_(bus), deadline_(deadline), mode_(mode) {}

Message Pipeline::build(const Call& call) {
    sd_bus_message* raw = nullptr;
    const char* destination = call.destination.empty() ? nullptr : call.destination.c_str();
    if (sd_bus_message_new_method_call(bus_, &raw, destination, call.path.c_str(), call.interface, call.member) < 0)
        return nullptr;
    Message message(raw);
    if ((call.append ? call.append(raw) : append(raw, call)) < 0) return nullptr;
    return message;
}

void Pipeline::send(Call call, Handler handler) {
    if (lost_ || timedOut_) return;
    if (record_) record_->push_back(call);
    if (mode_ == Mode::oneAtATime)
        callAndWait(call, handler);
    else if (outstanding_ < kMostUnderWay)
        transmit(call, std::move(handler));
    else
        waiting_.emplace_back(std::move(call), std::move(handler));
}

void Pipeline::transmit(const Call& call, Handler handler) {
    const Message message = build(call);
    if (!message) {  // a path or name that D-Bus doesn't allow, from an application that lies
        handler(nullptr);
        return;
    }
    Pending& entry = pending_.emplace_back();
    entry.owner = this;
    entry.handler = std::move(handler);
    sd_bus_slot* slot = nullptr;
    // The deadline of the whole pipeline is what bounds a call; sd-bus's own limit only has to be later than that.
    if (sd_bus_call_async(bus_, &slot, message.get(), onReply, &entry, 10'000'000) < 0) {
        pending_.pop_back();
        lost_ = true;
        return;
    }
    entry.slot.reset(slot);
    ++sent_;
    ++outstanding_;
}

int Pipeline::onReply(sd_bus_message* reply, void* pending, sd_bus_error*) {
    auto& entry = *static_cast<Pending*>(pending);
    Pipeline& self = *entry.owner;
    --self.outstanding_;
    const Handler handler = std::move(entry.handler);
    entry.slot.reset();
    handler(sd_bus_message_is_method_error(reply, nullptr) ? nullptr : reply);
    while (!self.waiting_.empty() && self.outstanding_ < kMostUnderWay) {
        auto [call, next] = std::move(self.waiting_.front());
        self.waiting_.pop_front();
        self.transmit(call, std::move(next));
    }
    return 1;
}

void Pipeline::callAndWait(const Call& call, const Handler& handler) {
    if (expired()) {
        timedOut_ = true;
        return;
    }
    const Message message = build(call);
    if (!message) {
        handler(nullptr);
        return;
    }
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(deadline_ - Clock::now()).count();
    sd_bus_message* raw = nullptr;
    ++sent_;
    const int r =
        sd_bus_call(bus_, message.get(), static_cast<std::uint64_t>(std::max<long>(left, 1000)), nullptr, &raw);
    const Message reply(raw);
    if (r == -ETIMEDOUT) timedOut_ = true;
    if (r == -ENOTCONN || r == -ECONNRESET) lost_ = true;
    if (timedOut_ || lost_) return;
    handler(r < 0 ? nullptr : reply.get());
}

void Pipeline::run() {
    while (outstanding_ > 0 && !lost_) {
        int processed = 0;
        while (outstanding_ > 0 && (processed = sd_bus_process(bus_, nullptr)) > 0) {
        }
        if (processed < 0) {
            lost_ = true;
            break;
        }
        if (outstanding_ == 0) break;
        const auto left = std::chrono::duration_cast<std::chrono::microseconds>(deadline_ - Clock::now()).count();
        if (left <= 0) {
            timedOut_ = true;
            break;
        }
        if (sd_bus_wait(bus_, static_cast<std::uint64_t>(left)) < 0) lost_ = true;
    }
    pending_.clear();
    waiting_.clear();
    outstanding_ = 0;
}

}  // namespace tarvix::atspi
