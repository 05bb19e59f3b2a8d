#include "qt/QtDimmingPanel.h"

#include <QVariantAnimation>
#include <algorithm>
#include <functional>

#include "base/Subscription.h"
#include "qt/AfterTheInput.h"
#include "qt/ServerSync.h"

namespace tarvix {

namespace {

constexpr int kFadeMilliseconds = 250;

class QtDimmingPanel : public DimmingPanel {
public:
    explicit QtDimmingPanel(const PanelServices& services)
        : services_(services), surface_(services.windowing.makeHazeSurface()) {
        fade_.setDuration(kFadeMilliseconds);
        QObject::connect(&fade_, &QVariantAnimation::valueChanged, &fade_,
                         [this](const QVariant& alpha) { apply(alpha.toDouble()); });
    }

    void setFrame(PanelRect frame) override {
        const QRect pixels = pixelsOf(flip(frame, firstScreenHeight(services_.screens)));
        surface_->setFrame(
            {{double(pixels.x()), double(pixels.y())}, {double(pixels.width()), double(pixels.height())}});
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
        orderIn([this] { surface_->showOverApplications(); });
    }

    // X11 has no levels: what lies above the windows' own level lies above every window, whichever it is ordered by.
    void orderBelow(std::uint32_t windowNumber) override {
        if (level_ > 0) return orderFront();
        orderIn([this, windowNumber] { surface_->showBelow(windowNumber); });
    }

private:
    // The panels above it are Qt's and come by another connection: it goes below those that are there by now.
    void orderIn(std::function<void()> show) {
        const auto come = [this, show = std::move(show)] {
            if (alpha_ <= 0) return;
            syncWithServer();
            show();
        };
        showing_.reset();
        if (services_.afterTheInput && !surface_->isShown()) {
            showing_ = services_.afterTheInput->run(come);
        } else {
            come();
        }
    }

    void apply(double alpha) {
        alpha_ = std::clamp(alpha, 0.0, 1.0);
        surface_->setAlpha(alpha_);
        if (alpha_ <= 0) surface_->hide();
    }

    PanelServices services_;
    std::unique_ptr<HazeSurface> surface_;
    int level_ = 0;
    double alpha_ = 1;
    QVariantAnimation fade_;
    Subscription showing_;  // it may wait
};

}  // namespace

std::unique_ptr<DimmingPanel> makeQtDimmingPanel(const PanelServices& services) {
    return std::make_unique<QtDimmingPanel>(services);
}

}  // namespace tarvix
