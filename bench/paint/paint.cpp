// What 2,000 markers cost: painted onto a surface in memory, beside a mark and beside the same rectangles from a bare
// painter; and on the screen, from asking for them until the X server has them.
//
// usage: bench_paint   (on a desktop of its own; the status is 1 when a painting is slower than its mark)

#include <time.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QScreen>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <random>
#include <vector>

#include "display/TargetView.h"
#include "qt/MarkerPainter.h"
#include "qt/MarkerPainting.h"
#include "qt/QtCanvasPanel.h"
#include "simulated/SimulatedPanels.h"
#include "simulated/SimulatedUserDefaults.h"

namespace tarvix {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kMarkers = 2000;
constexpr int kWarmUps = 5, kRounds = 50;
constexpr double kMark = 4;  // milliseconds
constexpr QSize kSurface(1920, 1080);

double since(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

template <class Measured>
double median(Measured measured) {
    std::vector<double> times;
    for (int round = 0; round < kWarmUps + kRounds; ++round) {
        const double time = measured();
        if (round >= kWarmUps) times.push_back(time);
    }
    std::nth_element(times.begin(), times.begin() + kRounds / 2, times.end());
    return times[kRounds / 2];
}

// The controls of a crowded screen: cells, buttons, icons, fields and rows, as wide as their texts happen to be, on
// whole pixels as toolkits lay them. They lie over each other as rows and their cells do.
std::vector<PanelRect> controls() {
    struct Kind {
        int share, leastWidth, mostWidth, leastHeight, mostHeight;
    };
    constexpr Kind kinds[] = {{40, 30, 160, 18, 24},
                              {25, 48, 140, 24, 36},
                              {20, 16, 32, 16, 32},
                              {10, 120, 300, 24, 34},
                              {5, 300, 900, 20, 48}};
    std::mt19937 random(4);
    const auto between = [&](int least, int most) { return std::uniform_int_distribution<int>(least, most)(random); };
    std::vector<PanelRect> frames;
    for (const Kind& kind : kinds)
        for (int i = 0; i < kMarkers * kind.share / 100; ++i) {
            const int width = between(kind.leastWidth, kind.mostWidth);
            const int height = between(kind.leastHeight, kind.mostHeight);
            const int x = between(0, kSurface.width() - width), y = between(0, kSurface.height() - height);
            frames.push_back({{double(x), double(y)}, {double(width), double(height)}});
        }
    std::shuffle(frames.begin(), frames.end(), random);
    return frames;
}

// Markers by the settings, the first one primary.
class Markers {
public:
    explicit Markers(const char* targetsColor) {
        defaults_.set("targetsColor", targetsColor);
        for (const PanelRect& frame : controls())
            views_.push_back(std::make_unique<TargetView>(look_, views_.empty(), frame));
    }

    std::vector<MarkerDrawing> drawings() {
        std::vector<MarkerDrawing> drawings;
        drawings.reserve(views_.size());
        for (const auto& view : views_) drawings.push_back(view->drawing());
        return drawings;
    }
    void movePrimary() {
        setPrimary(false);
        primary_ = (primary_ + 1) % views_.size();
        setPrimary(true);
    }
    // All markers change their colour.
    void recolour() {
        hue_ = hue_ > 0.5 ? 0.2 : 0.8;
        defaults_.set("targetsColor", "custom");
        defaults_.set("targetsCustomColorHue", hue_);
        for (const auto& view : views_) view->setNeedsDisplay();
    }

private:
    void setPrimary(bool isPrimary) {
        views_[primary_]->isPrimary = isPrimary;
        views_[primary_]->setNeedsDisplay();
    }

    SimulatedUserDefaults defaults_;
    SimulatedColors colors_;
    TargetLook look_{defaults_, colors_};
    std::vector<std::unique_ptr<TargetView>> views_;
    std::size_t primary_ = 0;
    double hue_ = 0.2;
};

QRectF boundsOf(const MarkerDrawing& marker) {
    return {marker.frame.minX(), kSurface.height() - marker.frame.maxY(), marker.frame.width(), marker.frame.height()};
}

// Strokes and fills of the same size and colour, as a painter of this toolkit makes them: square, not smoothed.
void paintBare(QPainter& painter, const MarkerDrawing& marker) {
    painter.setOpacity(marker.alpha);
    for (const MarkerShape& shape : marker.shapes) {
        const double inset = shape.inset;
        const QRectF rect = boundsOf(marker).adjusted(inset, inset, -inset, -inset);
        if (shape.lineWidth > 0) {
            painter.setPen(QPen(toQColor(shape.color), shape.lineWidth, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
            painter.drawRect(rect);
        } else {
            painter.fillRect(rect, toQColor(shape.color));
        }
    }
}

// The processor's time: painting into memory waits for nothing, so other programs of the machine don't count.
double processorMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

template <class Paint>
double paintingTime(QImage& surface, Paint paint) {
    return median([&] {
        surface.fill(Qt::transparent);
        const double start = processorMilliseconds();
        paint();
        return processorMilliseconds() - start;
    });
}

bool measurePainting(const char* look, const char* targetsColor) {
    const std::vector<MarkerDrawing> markers = Markers(targetsColor).drawings();
    QImage surface(kSurface, QImage::Format_ARGB32_Premultiplied);
    MarkerPainter painter;  // for many paintings, as the canvas has it
    const double ours = paintingTime(surface, [&] {
        painter.begin(surface, surface.rect());
        for (const MarkerDrawing& marker : markers) painter.paint(marker, boundsOf(marker));
    });
    const double bare = paintingTime(surface, [&] {
        QPainter plain(&surface);
        for (const MarkerDrawing& marker : markers) paintBare(plain, marker);
    });
    const bool kept = ours <= kMark;
    std::printf("%-20s %d markers in one paint   %6.2f ms   mark %.1f ms   %s\n", look, kMarkers, ours, kMark,
                kept ? "kept" : "MISSED");
    std::printf("%-20s a bare painter's rectangles   %4.2f ms   ours is %.2f times that\n", "", bare, ours / bare);
    return kept;
}

class Windowing : public PanelWindowing {
public:
    bool takeKeyboard(std::uint32_t, std::function<void()>) override { return false; }
    void releaseKeyboard() override {}
    void stackOnTop(std::uint32_t) override {}
    std::unique_ptr<HazeSurface> makeHazeSurface() override { return nullptr; }
    bool isComposited() override { return true; }
};

class OneScreen : public Screens {
public:
    std::vector<PanelRect> frames() override {
        return {{{0, 0}, {double(kSurface.width()), double(kSurface.height())}}};
    }
    std::optional<PanelRect> mainFrame() override { return frames().front(); }
    bool haveSeparateSpaces() override { return false; }
    PanelPoint mouseLocation() override { return {}; }
};

class OneAppearance : public Appearance {
public:
    const AppearanceValues& values() const override { return values_; }
    Subscription onChange(std::function<void()>) override { return {}; }

private:
    AppearanceValues values_;
};

class Reports : public Milestones {
public:
    void reached(std::string_view, std::size_t) override { ++count; }
    int count = 0;
};

// From asking for the markers until the server has them; the compositor's part comes after that.
void measureOnScreen(const char* look, const char* targetsColor) {
    Markers markers(targetsColor);
    Windowing windowing;
    OneScreen screen;
    OneAppearance appearance;
    Reports reports;
    const auto canvas = makeQtCanvasPanel({windowing, screen, reports, appearance}, milestone::markersDrawn);
    bool empty = true;
    canvas->setContent([&] { return empty ? std::vector<MarkerDrawing>() : markers.drawings(); });
    canvas->setFrame(screen.frames().front());

    const auto reported = [&](auto ask) {
        reports.count = 0;
        const auto start = Clock::now();
        ask();
        while (reports.count == 0) QApplication::processEvents();
        return since(start);
    };
    const auto show = [&](bool shows) {
        return reported([&] {
            empty = !shows;
            canvas->setNeedsDisplay();
        });
    };
    reported([&] { canvas->orderFrontRegardless(); });

    const double first = median([&] {
        show(false);
        return show(true);
    });
    const double moved = median([&] {
        markers.movePrimary();
        return show(true);
    });
    const double recoloured = median([&] {
        markers.recolour();
        return show(true);
    });
    std::printf("%-20s on the screen: all come %.2f ms, the Primary Target moves %.2f ms, all change colour %.2f ms\n",
                look, first, moved, recoloured);
}

}  // namespace
}  // namespace tarvix

int main(int count, char** arguments) {
    qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");
    const QApplication application(count, arguments);
    const bool inColour = tarvix::measurePainting("colour look", "findHighlight");
    const bool forReader = tarvix::measurePainting("screen-reader look", "voiceOver");
    tarvix::measureOnScreen("colour look", "findHighlight");
    tarvix::measureOnScreen("screen-reader look", "voiceOver");
    return inColour && forReader ? 0 : 1;
}
