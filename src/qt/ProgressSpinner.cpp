#include "qt/ProgressSpinner.h"

#include <QPainter>
#include <QTimerEvent>
#include <algorithm>

namespace tarvix {

namespace {

constexpr int kSpokes = 8;
constexpr int kStepMilliseconds = 100;

}  // namespace

ProgressSpinner::ProgressSpinner(QWidget* parent) : QWidget(parent) {
    setObjectName("progress");
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void ProgressSpinner::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double radius = std::min(width(), height()) / 2.0;
    painter.translate(width() / 2.0, height() / 2.0);
    QColor color = palette().color(QPalette::Text);
    for (int spoke = 0; spoke < kSpokes; ++spoke) {
        const int age = (step_ - spoke + kSpokes) % kSpokes;  // 0 is the spoke that leads
        color.setAlphaF(0.85f - 0.7f * static_cast<float>(age) / kSpokes);
        painter.save();
        painter.rotate(360.0 * spoke / kSpokes);
        painter.setPen(QPen(color, radius / 4, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(0, -radius * 0.5), QPointF(0, -radius * 0.85));
        painter.restore();
    }
}

void ProgressSpinner::timerEvent(QTimerEvent*) {
    step_ = (step_ + 1) % kSpokes;
    update();
}

void ProgressSpinner::showEvent(QShowEvent*) { timer_.start(kStepMilliseconds, this); }
void ProgressSpinner::hideEvent(QHideEvent*) { timer_.stop(); }

}  // namespace tarvix
