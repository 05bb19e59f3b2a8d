// Plays one search on a real application, from the hot key to the click, and says what it saw. The desktop is the one
// of $DISPLAY; ./run makes one.
//
// usage: play_search TARVIX TOOLS PICTURE

#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Program.h"
#include "tests/desktop/play/ScreenImage.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;

constexpr auto application = "gtk3-widget-factory";
constexpr auto query = "page";

// A button of the application that can be on or off, as the application says itself.
struct Button {
    std::string role, name;
    int x = 0, y = 0, width = 0, height = 0;
    bool on = false;

    bool contains(ScreenPoint point) const {
        return point.x >= x && point.x < x + width && point.y >= y && point.y < y + height;
    }
};

__attribute__((format(printf, 3, 4))) void tell(const char* step, double milliseconds, const char* words, ...) {
    std::printf("  %-12s ", step);
    va_list arguments;
    va_start(arguments, words);
    char text[200];
    std::vsnprintf(text, sizeof text, words, arguments);
    va_end(arguments);
    if (milliseconds < 0) {
        std::printf("%s\n", text);
    } else {
        std::printf("%-62s %8.1f ms\n", text, milliseconds);
    }
    std::fflush(stdout);
}

int fail(const char* what) {
    std::printf("  failed: %s\n", what);
    return 1;
}

double since(std::int64_t start) { return static_cast<double>(monotonicMicroseconds() - start) / 1000.0; }

class Player {
public:
    Player(std::string program, std::string tools, std::string picture)
        : programPath_(std::move(program)), tools_(std::move(tools)), picture_(std::move(picture)) {}

    int play() {
        const std::int64_t start = monotonicMicroseconds();
        const auto started = outputOf({tools_ + "/start-app", application});
        if (!started) return fail("the application did not start");
        std::istringstream(*started) >> pid_;
        tell("application", since(start), "%s stands on the screen", application);

        const std::int64_t starting = monotonicMicroseconds();
        Program program(programPath_);
        const auto ready = program.reached(milestone::ready, starting, 20s);
        if (!ready) return fail("Tarvix did not become ready");
        tell("Tarvix", static_cast<double>(ready->microseconds - starting) / 1000.0, "ready");
        return search(program);
    }

private:
    int search(Program& program) {
        const std::vector<Button> before = buttons();
        if (before.empty()) return fail("the application tells nothing of its buttons");

        const auto unmarked = captureScreen();
        if (!unmarked) return fail("the screen can't be seen");

        const Program::Step opened = program.pressHotKey(keyboard_);
        if (!opened) return fail("The Input did not come up");
        tell("hot key", opened.milliseconds(), "Shift+Super+Space pressed: The Input shown");

        const auto candidates = program.reached(milestone::candidatesRead, opened.pressed);
        if (!candidates || candidates->count == 0) return fail("no candidates were read");
        tell("candidates", static_cast<double>(candidates->microseconds - opened.pressed) / 1000.0,
             "%zu read, since the hot key", candidates->count);

        const Program::Step typed = program.type(keyboard_, query);
        if (!typed || typed.answered->count < 2) return fail("there are no two markers to choose from");
        tell("query", typed.milliseconds(), "\"%s\" typed: %zu markers drawn, since the last key press", query,
             typed.answered->count);

        const Program::Step moved = program.press(keyboard_, keysym::down, milestone::markersDrawn);
        if (!moved) return fail("the Primary Target did not move");
        tell("Down", moved.milliseconds(), "Primary Target moved: %zu markers drawn", moved.answered->count);

        if (!takePicture(before, *unmarked)) return fail("the markers can't be seen on the screen");
        tell("picture", -1, "%s", picture_.c_str());

        const Program::Step clicked = program.press(keyboard_, keysym::returnKey, milestone::actionPosted);
        if (!clicked) return fail("no click was posted");
        tell("Return", clicked.milliseconds(), "click posted");
        return confirm(before, clicked.pressed);
    }

    std::vector<Button> buttons() const {
        std::vector<Button> found;
        const auto told = outputOf({tools_ + "/app-state", std::to_string(pid_)});
        if (!told) return found;
        const nlohmann::json all = nlohmann::json::parse(*told);
        for (const auto& button : all)
            found.push_back({button["role"], button["name"], button["x"], button["y"], button["width"],
                             button["height"], button["on"]});
        return found;
    }

    // A compositor shows what was painted a frame later, and `import` would take the picture too early: so it waits
    // until the application's buttons look different from before, and the same several times. Not the whole screen:
    // other parts of the application move all the time.
    bool takePicture(const std::vector<Button>& buttons, const ScreenImage& before) const {
        const auto look = [&](const ScreenImage& screen) {
            std::vector<std::uint32_t> pixels;
            for (const Button& button : buttons)
                if (button.role == "radio button" && button.name.starts_with("Page"))
                    for (int y = button.y; y < button.y + button.height; ++y)
                        for (int x = button.x; x < button.x + button.width; ++x) pixels.push_back(screen.at(x, y));
            return pixels;
        };
        const auto unmarked = look(before);
        auto seen = unmarked;
        int times = 0;
        const bool atRest = await(3s, [&] {
            const auto screen = captureScreen();
            if (!screen) return false;
            auto now = look(*screen);
            times = now == seen && now != unmarked ? times + 1 : 0;
            seen = std::move(now);
            return times >= 3;
        });
        return atRest && outputOf({"import", "-window", "root", picture_}).has_value();
    }

    // The application's word for it: of all its buttons the one under the pointer, and no other, was switched on.
    int confirm(const std::vector<Button>& before, std::int64_t pressed) {
        std::vector<Button> changed;
        await(3s, [&] {
            changed.clear();
            for (const Button& now : buttons())
                for (const Button& was : before)
                    if (now.name == was.name && now.x == was.x && now.y == was.y && now.on && !was.on)
                        changed.push_back(now);
            return !changed.empty();
        });
        if (changed.empty()) return fail("the application knows nothing of a click");
        const ScreenPoint pointer = keyboard_.pointer();
        if (changed.size() != 1 || !changed.front().contains(pointer)) return fail("another control was clicked");
        tell("application", since(pressed), "says that \"%s\" is switched on: click at %d,%d confirmed",
             changed.front().name.c_str(), pointer.x, pointer.y);
        return 0;
    }

    const std::string programPath_, tools_, picture_;
    Keyboard keyboard_;
    int pid_ = -1;
};

}  // namespace
}  // namespace tarvix

int main(int count, char** words) {
    if (count != 4) {
        std::fprintf(stderr, "usage: %s TARVIX TOOLS PICTURE\n", words[0]);
        return 2;
    }
    return tarvix::Player(words[1], words[2], words[3]).play();
}
