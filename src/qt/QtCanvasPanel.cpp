#include "qt/QtCanvasPanel.h"

#include <QPaintEngine>
#include <QPaintEvent>
#include <QPainter>
#include <QWidget>
#include <QWindow>

#include "base/Subscription.h"
#include "qt/AfterTheInput.h"
#include "qt/MarkerChanges.h"
#include "qt/MarkerPainter.h"
#include "qt/MarkerPainting.h"
#include "qt/ServerSync.h"

namespace tarvix {

namespace {

// Beyond this a region costs more to look through than its bounding rectangle costs to paint.
constexpr std::size_t kMostRects = 400;

// Two and two, since adding them one by one to a growing region takes quadratic time.
QRegion unite(std::vector<QRegion> regions) {
    if (regions.empty()) return {};
    for (std::size_t step = 1; step < regions.size(); step *= 2)
        for (std::size_t i = 0; i + step < regions.size(); i += 2 * step) regions[i] += regions[i + step];
    return regions.front();
}

// Rectangles that cover all of these, and not much more.
QRegion covering(const std::vector<QRect>& rects) {
    if (rects.size() <= kMostRects) return unite({rects.begin(), rects.end()});
    QRect bounding;
    for (const QRect& rect : rects) bounding |= rect;
    return bounding;
}

// The pixels that a painter paints on, if they are such as can be painted on directly and lie as the painter counts.
QImage* surfaceOf(QPainter& painter) {
    QPaintDevice* device = painter.paintEngine()->paintDevice();
    if (!device || device->devType() != QInternal::Image || !painter.deviceTransform().isIdentity()) return nullptr;
    auto* image = static_cast<QImage*>(device);
    return MarkerPainter::suits(*image) ? image : nullptr;
}

// Outside of every window: an empty mask would mean no mask at all.
const QRect kNowhere(-2, -2, 1, 1);

class CanvasWindow : public QWidget {
public:
    CanvasWindow(Milestones& milestones, std::string_view drawn)
        : QWidget(nullptr, Qt::X11BypassWindowManagerHint | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                               Qt::Tool | Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus),
          milestones_(milestones),
          drawn_(drawn) {
        setObjectName("Canvas");
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        winId();  // the native window now, not at the first search
        windowHandle()->installEventFilter(this);
    }

    void setTranslucent(bool translucent) {
        if (translucent_ == translucent) return;
        translucent_ = translucent;
        if (translucent_) clearMask();
        if (!translucent_) setMask(outlines());
        update();
    }
    bool isTranslucent() const { return translucent_; }

    // `corner` is the canvas's bottom left corner in this window's coordinates.
    void setCorner(QPointF corner) {
        if (corner_ == corner) return;
        corner_ = corner;
        update();
    }

    void showMarkers(std::vector<MarkerDrawing> next) {
        const QRegion changed = changedRegion(next);
        markers_ = std::move(next);
        unreported_ = true;
        if (!translucent_) setMask(outlines());
        if (isVisible() && !changed.isEmpty()) repaint(changed);
        if (isOnScreen()) report();
    }

protected:
    void paintEvent(QPaintEvent* event) override {
        QPainter painter(this);
        QImage* surface = translucent_ ? surfaceOf(painter) : nullptr;
        if (surface) markerPainter_.begin(*surface, event->region());
        for (const MarkerDrawing& marker : markers_) {
            const QRectF bounds = boundsOf(marker);
            if (surface) {
                markerPainter_.paint(marker, bounds);
            } else if (event->region().intersects(bounds.toAlignedRect())) {
                (translucent_ ? paintMarker : paintOpaqueMarker)(painter, marker, bounds);
            }
        }
    }

    // The first painting after mapping reaches the screen with the exposure.
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Expose && unreported_)
            QMetaObject::invokeMethod(
                this,
                [this] {
                    if (unreported_ && isOnScreen()) report();
                },
                Qt::QueuedConnection);
        return QWidget::eventFilter(watched, event);
    }

private:
    bool isOnScreen() const { return isVisible() && windowHandle()->isExposed(); }

    void report() {
        unreported_ = false;
        flushToServer();
        milestones_.reached(drawn_, markers_.size());
    }

    QRectF boundsOf(const MarkerDrawing& marker) const {
        return {corner_.x() + marker.frame.minX(), corner_.y() - marker.frame.maxY(), marker.frame.width(),
                marker.frame.height()};
    }

    QRegion changedRegion(const std::vector<MarkerDrawing>& next) const {
        const MarkerChanges changes = markerChanges(markers_, next);
        std::vector<QRect> rects;
        for (const std::size_t i : changes.gone) rects.push_back(boundsOf(markers_[i]).toAlignedRect());
        for (const std::size_t i : changes.come) rects.push_back(boundsOf(next[i]).toAlignedRect());
        return covering(rects);
    }

    QRegion outlines() const {
        std::vector<QRegion> regions{kNowhere};
        for (const MarkerDrawing& marker : markers_) regions.push_back(markerOutline(marker, boundsOf(marker)));
        return unite(std::move(regions));
    }

    Milestones& milestones_;
    std::string_view drawn_;
    std::vector<MarkerDrawing> markers_;  // as painted
    QPointF corner_;
    MarkerPainter markerPainter_;
    bool translucent_ = true;
    bool unreported_ = false;
};

class QtCanvasPanel : public CanvasPanel {
public:
    QtCanvasPanel(const PanelServices& services, std::string_view drawn)
        : services_(services), window_(services.milestones, drawn) {}

    void setFrame(PanelRect frame) override {
        frame_ = frame;
        const AxRect place = flip(frame, firstScreenHeight(services_.screens));
        const QRect pixels = pixelsOf(place);
        window_.setGeometry(pixels);
        window_.setCorner({place.minX() - pixels.x(), place.maxY() - pixels.y()});
    }

    PanelRect frame() const override { return frame_; }

    void orderFrontRegardless() override {
        const bool mayWait = services_.afterTheInput && !window_.isVisible() && (!content_ || content_().empty());
        if (mayWait) {
            showing_ = services_.afterTheInput->run([this] { comeToFront(); });
        } else {
            comeToFront();
        }
    }

    void orderOut() override {
        showing_.reset();
        window_.hide();
        syncWithServer();
    }

    void setNeedsDisplay() override {
        if (needsDisplay_) return;
        needsDisplay_ = true;
        QMetaObject::invokeMethod(
            &window_, [this] { display(); }, Qt::QueuedConnection);
    }

    void setContent(std::function<std::vector<MarkerDrawing>()> content) override { content_ = std::move(content); }

private:
    void comeToFront() {
        showing_.reset();
        window_.setTranslucent(services_.windowing.isComposited());
        if (!window_.isVisible()) {
            if (content_) window_.showMarkers(content_());
            window_.show();
            syncWithServer();
        }
        services_.windowing.stackOnTop(static_cast<std::uint32_t>(window_.winId()));
    }

    void display() {
        needsDisplay_ = false;
        if (content_) window_.showMarkers(content_());
    }

    PanelServices services_;
    std::function<std::vector<MarkerDrawing>()> content_;
    PanelRect frame_;
    bool needsDisplay_ = false;
    CanvasWindow window_;
    Subscription showing_;  // an empty canvas that may wait
};

}  // namespace

std::unique_ptr<CanvasPanel> makeQtCanvasPanel(const PanelServices& services, std::string_view drawn) {
    return std::make_unique<QtCanvasPanel>(services, drawn);
}

}  // namespace tarvix
