#include "qt/QtDimmingPanel.h"

#include <QPaintEvent>
#include <QPainter>
#include <QVariantAnimation>
#include <QWidget>
#include <algorithm>

#include "base/Subscription.h"
#include "qt/AfterTheInput.h"
#include "qt/ServerSync.h"

namespace tarvix {

namespace {

constexpr int kFadeMilliseconds = 200;

class HazeWindow : public QWidget {
public:
    HazeWindow()
        : QWidget(nullptr, Qt::X11BypassWindowManagerHint | Qt::FramelessWindowHint | Qt::Tool |
                               Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus) {
        setObjectName("HazeOverWindow");
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setAttribute(Qt::WA_OpaquePaintEvent);
        winId();
    }

protected:
    void paintEvent(QPaintEvent* event) override { QPainter(this).fillRect(event->rect(), Qt::black); }
};

class QtDimmingPanel : public DimmingPanel {
public:
    explicit QtDimmingPanel(const PanelServices& services) : services_(services) {
        fade_.setDuration(kFadeMilliseconds);
        QObject::connect(&fade_, &QVariantAnimation::finished, &window_, [this] { orderedIn_ = alpha_ > 0; });
        QObject::connect(&fade_, &QVariantAnimation::valueChanged, &window_,
                         [this](const QVariant& alpha) { apply(alpha.toDouble()); });
    }

    void setFrame(PanelRect frame) override {
        window_.setGeometry(pixelsOf(flip(frame, firstScreenHeight(services_.screens))));
    }

    void setLevel(int level) override { level_ = level; }

    void setAlpha(double alpha) override {
        fade_.stop();
        apply(alpha);
    }

    void animateAlpha(double alpha) override {
        showing_.reset();
        fade_.stop();
        fade_.setStartValue(alpha_);
        fade_.setEndValue(alpha);
        fade_.start();
    }

    void orderFront() override {
        showing_.reset();
        services_.windowing.stackOnTop(number());
        orderIn();
    }

    // X11 has no levels: what lies above the windows' own level lies above every window, whichever it is ordered by.
    // The place is given before mapping, lest the panel flash over the window, and after it, as compositors lose a
    // place given to a window that isn't mapped.
    void orderBelow(std::uint32_t windowNumber) override {
        if (level_ > 0) {
            orderFront();
            return;
        }
        if (services_.afterTheInput && !window_.isVisible()) {
            showing_ = services_.afterTheInput->run([this, windowNumber] { comeBelow(windowNumber); });
        } else {
            comeBelow(windowNumber);
        }
    }

private:
    std::uint32_t number() const { return static_cast<std::uint32_t>(window_.winId()); }

    void comeBelow(std::uint32_t windowNumber) {
        services_.windowing.stackBelow(number(), windowNumber);
        orderIn();
        syncWithServer();
        services_.windowing.stackBelow(number(), windowNumber);
    }

    void orderIn() {
        orderedIn_ = true;
        apply(alpha_);
    }

    void apply(double alpha) {
        alpha_ = std::clamp(alpha, 0.0, 1.0);
        window_.setWindowOpacity(alpha_);
        const bool mapped = orderedIn_ && alpha_ > 0 && services_.windowing.isComposited();
        if (mapped == window_.isVisible()) return;
        window_.setVisible(mapped);
        flushToServer();
    }

    PanelServices services_;
    int level_ = 0;
    double alpha_ = 1;
    bool orderedIn_ = false;  // not after fading away: the next alpha must not bring it back to its old place
    HazeWindow window_;
    QVariantAnimation fade_;
    Subscription showing_;  // it may wait
};

}  // namespace

std::unique_ptr<DimmingPanel> makeQtDimmingPanel(const PanelServices& services) {
    return std::make_unique<QtDimmingPanel>(services);
}

}  // namespace tarvix
