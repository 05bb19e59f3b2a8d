// What has happened on the simulated desktop, in order, as plain texts.
#pragma once

#include <initializer_list>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace tarvix {

// What an entry is about, so that a test can look at one kind of effect alone.
enum class Topic {
    mouse,
    wheel,
    key,
    hotKey,
    theInput,
    canvas,
    dimming,
    inspector,
    pasteboard,
    settings,
    application,
    splash,
    statusItem,
    loginItem,
    updates,
    notification,
    announcement,
    accessibility,
};

// Any thread.
class Journal {
public:
    void note(Topic topic, std::string text) {
        const std::lock_guard lock(mutex_);
        entries_.emplace_back(topic, std::move(text));
    }

    // The entries of these topics, of all topics when none is named.
    std::vector<std::string> entries(std::initializer_list<Topic> topics = {}) const {
        const std::lock_guard lock(mutex_);
        std::vector<std::string> texts;
        for (const auto& [topic, text] : entries_)
            if (topics.size() == 0 || contains(topics, topic)) texts.push_back(text);
        return texts;
    }

    void clear() {
        const std::lock_guard lock(mutex_);
        entries_.clear();
    }

private:
    static bool contains(std::initializer_list<Topic> topics, Topic topic) {
        for (const Topic each : topics)
            if (each == topic) return true;
        return false;
    }

    mutable std::mutex mutex_;
    std::vector<std::pair<Topic, std::string>> entries_;
};

// A number for the journal: without a fractional part when it has none.
std::string numeral(double number);

}  // namespace tarvix
