// The real program under test, played from outside: keys in, milestones out.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Milestones.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/MilestoneLog.h"
#include "tests/desktop/play/Process.h"

namespace tarvix {

class Program {
public:
    // Starts the program of a path.
    explicit Program(const std::string& path, Process::Environment changes = {});

    bool isReady(std::chrono::milliseconds limit = std::chrono::seconds(20)) {
        return reached(milestone::ready, 0, limit).has_value();
    }

    // Each operation gives the moments in question, if they came in time. Times of the keys are on the milestones'
    // clock.
    struct Step {
        std::int64_t pressed = 0;        // when the key events were posted
        std::optional<Moment> answered;  // what the program reached after that
        double milliseconds() const {
            return answered ? static_cast<double>(answered->microseconds - pressed) / 1000.0 : -1;
        }
        explicit operator bool() const { return answered.has_value(); }
    };
    Step pressHotKey(Keyboard& keyboard, std::string_view moment = milestone::inputShown);
    // Types a text, each character when the one before has been answered; measured from the last one.
    Step type(Keyboard& keyboard, std::string_view text, std::string_view moment = milestone::markersDrawn);
    Step press(Keyboard& keyboard, std::uint32_t keysym, std::string_view moment);

    std::optional<Moment> reached(std::string_view moment, std::int64_t from,
                                  std::chrono::milliseconds limit = std::chrono::seconds(5)) const {
        return log_.next(moment, from, limit);
    }
    const MilestoneLog& log() const { return log_; }
    Process& process() { return process_; }

private:
    ScratchFolder folder_;
    MilestoneLog log_;
    Process process_;
};

}  // namespace tarvix
