// How long a person waits: from the hot key to The Input, and from a key press to the markers of a thousand Targets;
// each beside a mark, and beside what a bare window of the same toolkit takes in the same run.
//
// usage: bench_latency [PROGRAM]   (on a desktop of its own; the status is 1 when something is slower than its mark)

#include <QApplication>
#include <QPainter>
#include <QScreen>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Program.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;

constexpr int kWarmUps = 5;
constexpr int kRounds = 50;
constexpr double kShownMedian = 30, kShownWorst = 60, kDrawnMedian = 16.7;  // milliseconds
constexpr std::size_t kTargets = 1000;
constexpr std::uint32_t kBackspace = 0xff08;

struct Times {
    double median = 0, worst = 0;
    explicit Times(std::vector<double> all) {
        std::sort(all.begin(), all.end());
        if (all.empty()) return;
        median = all[all.size() / 2];
        worst = all.back();
    }
};

double since(std::int64_t start) { return static_cast<double>(monotonicMicroseconds() - start) / 1000.0; }

// A window without anything of ours: painting it is what any program of this toolkit pays.
class BareWindow : public QWidget {
public:
    explicit BareWindow(std::function<void(QPainter&)> content)
        : QWidget(nullptr, Qt::X11BypassWindowManagerHint | Qt::FramelessWindowHint | Qt::WindowTransparentForInput),
          content_(std::move(content)) {
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_ShowWithoutActivating);
        winId();
    }

    // The milliseconds from asking for it to the end of its painting.
    double showAndPaint() {
        painted_ = false;
        const std::int64_t start = monotonicMicroseconds();
        show();
        while (!painted_) QApplication::processEvents(QEventLoop::AllEvents);
        const double taken = since(start);
        hide();
        rest();
        return taken;
    }

    double paintAgain() {
        const std::int64_t start = monotonicMicroseconds();
        repaint();
        return since(start);
    }

    // Until nothing of it goes on any more.
    static void rest() {
        const std::int64_t start = monotonicMicroseconds();
        while (since(start) < 50) QApplication::processEvents(QEventLoop::AllEvents, 10);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        content_(painter);
        painted_ = true;
    }

private:
    std::function<void(QPainter&)> content_;
    bool painted_ = false;
};

template <class Measure>
std::vector<double> repeated(Measure measure) {
    std::vector<double> times;
    for (int round = 0; round < kWarmUps + kRounds; ++round) {
        const double time = measure();
        if (time < 0) return {};
        if (round >= kWarmUps) times.push_back(time);
    }
    return times;
}

bool tell(const char* what, const char* kind, double measured, double mark) {
    const bool kept = measured > 0 && measured <= mark;
    std::printf("%-44s %-7s %7.1f ms   mark %5.1f ms   %s\n", what, kind, measured, mark, kept ? "kept" : "MISSED");
    return kept;
}

void tellBare(const char* what, double bare, double ours) {
    std::printf("%-44s %-7s %7.1f ms   ours is %.1f times that\n", what, "median", bare, ours / bare);
}

std::int64_t pause() {
    std::this_thread::sleep_for(300ms);  // the dimming fades out
    return 0;
}

bool failed(const char* what) { return std::fprintf(stderr, "bench_latency: %s\n", what), false; }

// From the hot key to The Input, painted and with the keyboard.
bool measureShowing(const char* tarvix) {
    Fixture fixture("gtk3.py");
    if (!fixture.isReady()) return failed("the application did not start");
    Keyboard keyboard;
    Program program(tarvix);
    if (!program.isReady()) return failed("Tarvix did not become ready");

    const Times shown(repeated([&] {
        const Program::Step opened = program.pressHotKey(keyboard);
        if (!opened || !program.reached(milestone::candidatesRead, opened.pressed)) return -1.0;
        if (!program.press(keyboard, keysym::escape, milestone::inputHidden)) return -1.0;
        pause();
        return opened.milliseconds();
    }));
    BareWindow bare([](QPainter& painter) { painter.drawRoundedRect(QRectF(1, 1, 118, 34), 6, 6); });
    bare.setGeometry(300, 200, 120, 36);
    const Times plain(repeated([&] { return bare.showAndPaint(); }));

    const bool median = tell("hot key to The Input shown and focused", "median", shown.median, kShownMedian);
    const bool worst = tell("", "worst", shown.worst, kShownWorst);
    tellBare("a bare window from show() to painted", plain.median, shown.median);
    return median && worst;
}

// From a key press that makes all of them Targets to their markers.
bool measureDrawing(const char* tarvix) {
    Fixture fixture("gtk3-grid.py");
    if (!fixture.isReady()) return failed("the application did not start");
    const std::vector<KnownControl> controls = fixture.controls();
    Keyboard keyboard;
    Program program(tarvix);
    if (!program.isReady()) return failed("Tarvix did not become ready");
    const Program::Step opened = program.pressHotKey(keyboard);
    const auto read = program.reached(milestone::candidatesRead, opened.pressed);
    if (!read || read->count < kTargets) return failed("not all candidates were read");

    std::size_t drawnMarkers = 0;
    const Times drawn(repeated([&] {
        const Program::Step typed = program.type(keyboard, "c");
        if (!typed || typed.answered->count < kTargets) return -1.0;
        drawnMarkers = typed.answered->count;
        const Program::Step erased = program.press(keyboard, kBackspace, milestone::markersDrawn);
        return erased && erased.answered->count == 0 ? typed.milliseconds() : -1.0;
    }));
    program.press(keyboard, keysym::escape, milestone::inputHidden);

    BareWindow bare([&](QPainter& painter) {
        painter.setPen(QPen(QColor(0, 200, 255, 230), 2));
        for (const KnownControl& control : controls) {
            const AxRect& frame = control.frame;
            painter.drawRoundedRect(QRectF(frame.minX(), frame.minY(), frame.size.width, frame.size.height), 8, 8);
        }
    });
    bare.setGeometry(QGuiApplication::primaryScreen()->geometry());
    bare.showAndPaint();
    bare.show();
    BareWindow::rest();
    const Times plain(repeated([&] { return bare.paintAgain(); }));

    std::printf("\n%zu markers\n", drawnMarkers);
    const bool median = tell("key press to markers drawn", "median", drawn.median, kDrawnMedian);
    std::printf("%-44s %-7s %7.1f ms\n", "", "worst", drawn.worst);
    tellBare("a bare window paints as many rectangles", plain.median, drawn.median);
    return median;
}

}  // namespace
}  // namespace tarvix

int main(int count, char** arguments) {
    qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");
    QApplication application(count, arguments);
    const char* program = count > 1 ? arguments[1] : TARVIX_PROGRAM;
    const bool showing = tarvix::measureShowing(program);
    const bool drawing = tarvix::measureDrawing(program);
    return showing && drawing ? 0 : 1;
}
