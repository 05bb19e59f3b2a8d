// What the pointer's moves cost the program, in a share of one processor core. On the desktop of $DISPLAY.
//
// usage: bench_moves TARVIX
#include <time.h>
#include <xcb/xtest.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Program.h"

namespace tarvix {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr int kMovesPerSecond = 10'000;
constexpr auto kStep = 1ms;
constexpr auto kDuration = 5s;
constexpr double kIdleMark = 2.0;  // per cent of a core

// Of a process, threads included; in seconds.
double processorTime(pid_t process) {
    clockid_t clock;
    timespec time{};
    if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &time) != 0) return 0;
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

constexpr ScreenPoint kOverTheWindow{300, 200};
constexpr ScreenPoint kBesideTheWindow{1200, 200};

// A mouse that reports far more often than any hand needs, and goes about an area of the screen.
class Flood {
public:
    explicit Flood(ScreenPoint corner) : x_(xcb_connect(nullptr, nullptr)), corner_(corner) {}
    ~Flood() { xcb_disconnect(x_); }
    Flood(const Flood&) = delete;
    Flood& operator=(const Flood&) = delete;

    // Gives how many moves it has made.
    int run(int perSecond) {
        const auto start = Clock::now();
        int moves = 0;
        for (auto now = start; now < start + kDuration; now += kStep) {
            std::this_thread::sleep_until(now);
            const auto due = std::chrono::duration<double>(now + kStep - start).count() * perSecond;
            for (; moves < static_cast<int>(due); ++moves) move(moves);
            xcb_flush(x_);
        }
        std::free(xcb_get_input_focus_reply(x_, xcb_get_input_focus(x_), nullptr));
        return moves;
    }

private:
    void move(int number) {
        const auto x = static_cast<std::int16_t>(corner_.x + number % 400);
        const auto y = static_cast<std::int16_t>(corner_.y + number % 331);
        xcb_test_fake_input(x_, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME,
                            xcb_setup_roots_iterator(xcb_get_setup(x_)).data->root, x, y, 0);
    }

    xcb_connection_t* x_;
    ScreenPoint corner_;
};

// The share of a core that was used, in per cent.
double measure(const char* what, pid_t process, int perSecond, ScreenPoint where = kOverTheWindow) {
    Flood flood(where);
    const auto start = Clock::now();
    const double before = processorTime(process);
    const int moves = flood.run(perSecond);
    const double used = processorTime(process) - before;
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    std::printf("%-40s %8.0f moves a second  %6.2f %% of a core\n", what, moves / seconds, 100 * used / seconds);
    std::fflush(stdout);
    return 100 * used / seconds;
}

int fail(const char* what) {
    std::fprintf(stderr, "moves: %s\n", what);
    return 1;
}

int play(const char* path) {
    Keyboard keyboard;
    Fixture fixture("gtk3.py");
    if (!fixture.isReady()) return fail("the application did not start");
    keyboard.movePointer(kOverTheWindow);
    Program program(path);
    if (!program.isReady()) return fail("the program did not start");
    const pid_t process = program.process().pid();

    measure("no search, pointer at rest", process, 0);
    const double idle = measure("no search", process, kMovesPerSecond);

    const Program::Step opened = program.pressHotKey(keyboard);
    if (!program.reached(milestone::candidatesRead, opened.pressed)) return fail("no candidates were read");
    measure("a search, pointer at rest", process, 0);
    measure("a search, the pointer over nothing", process, kMovesPerSecond, kBesideTheWindow);
    measure("a search, the inspector following", process, kMovesPerSecond);
    if (!program.type(keyboard, "e")) return fail("no Targets");
    measure("the same among many Targets", process, kMovesPerSecond);
    if (!program.press(keyboard, keysym::escape, milestone::inputHidden)) return fail("The Input did not close");
    const double after = measure("after the search", process, kMovesPerSecond);
    const bool kept = idle < kIdleMark && after < kIdleMark;
    std::printf("without a search   mark %.1f %% of a core   %s\n", kIdleMark, kept ? "kept" : "MISSED");
    return kept ? 0 : 1;
}

}  // namespace
}  // namespace tarvix

int main(int count, char** words) {
    if (count != 2) {
        std::fprintf(stderr, "usage: %s TARVIX\n", words[0]);
        return 2;
    }
    return tarvix::play(words[1]);
}
