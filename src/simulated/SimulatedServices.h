// The small services: pasteboard, notifications, milestones.
#pragma once

#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "platform/Milestones.h"
#include "platform/NotificationCenter.h"
#include "platform/Pasteboard.h"
#include "simulated/Journal.h"

namespace tarvix {

class SimulatedPasteboard : public Pasteboard {
public:
    explicit SimulatedPasteboard(Journal& journal) : journal_(journal) {}

    void clearContents() override {
        text.reset();
        journal_.note(Topic::pasteboard, "pasteboard cleared");
    }
    void setString(std::string string) override {
        journal_.note(Topic::pasteboard, "pasteboard set to '" + string + "'");
        text = std::move(string);
    }

    std::optional<std::string> text;

private:
    Journal& journal_;
};

class SimulatedNotificationCenter : public NotificationCenter {
public:
    explicit SimulatedNotificationCenter(Journal& journal) : journal_(journal) {}

    void post(std::string_view name) override { journal_.note(Topic::notification, "posted " + std::string(name)); }

private:
    Journal& journal_;
};

class SimulatedMilestones : public Milestones {
public:
    using Moment = std::pair<std::string, std::size_t>;

    void reached(std::string_view moment, std::size_t count) override {
        const std::lock_guard lock(mutex_);
        moments_.emplace_back(moment, count);
    }
    std::vector<Moment> moments() const {
        const std::lock_guard lock(mutex_);
        return moments_;
    }

private:
    mutable std::mutex mutex_;  // guards moments_, which any thread may add to
    std::vector<Moment> moments_;
};

}  // namespace tarvix
