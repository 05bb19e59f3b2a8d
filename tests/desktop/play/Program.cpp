#include "tests/desktop/play/Program.h"

#include "tests/desktop/play/Await.h"

namespace tarvix {

namespace {

Process::Environment with(Process::Environment changes, const std::string& milestones) {
    changes.insert_or_assign("TARVIX_MILESTONES", milestones);
    return changes;
}

}  // namespace

Program::Program(const std::string& path, Process::Environment changes)
    : log_(folder_.file("milestones")), process_({path}, with(std::move(changes), folder_.file("milestones"))) {}

Program::Step Program::pressHotKey(Keyboard& keyboard, std::string_view moment) {
    Step step{monotonicMicroseconds(), std::nullopt};
    keyboard.chord({keysym::shift, keysym::super, keysym::space});
    step.answered = reached(moment, step.pressed);
    return step;
}

Program::Step Program::type(Keyboard& keyboard, std::string_view text, std::string_view moment) {
    Step step{monotonicMicroseconds(), std::nullopt};
    for (std::size_t i = 0; i < text.size(); ++i) {
        step.pressed = monotonicMicroseconds();
        keyboard.type(text.substr(i, 1));
        step.answered = reached(moment, step.pressed);
        if (!step) break;
    }
    return step;
}

Program::Step Program::press(Keyboard& keyboard, std::uint32_t keysym, std::string_view moment) {
    Step step{monotonicMicroseconds(), std::nullopt};
    keyboard.chord({keysym});
    step.answered = reached(moment, step.pressed);
    return step;
}

}  // namespace tarvix
