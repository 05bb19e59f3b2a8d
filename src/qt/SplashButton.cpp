#include "qt/SplashButton.h"

#include <QFocusEvent>
#include <QPainter>
#include <cmath>

namespace tarvix {

namespace {

// In points.
constexpr double kHeight = 30;
constexpr double kCornerRadius = 7;
constexpr double kRing = 2;

constexpr int kMiddleGray = 140;  // black is read better on what is brighter

QColor colorOf(const Color& color) {
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                            static_cast<float>(color.blue));
}

}  // namespace

SplashPanelButton::SplashPanelButton(const QString& title, bool isDefault, const AppearanceValues& appearance)
    : QPushButton(title), appearance_(appearance), isDefault_(isDefault) {
    setFixedHeight(static_cast<int>(std::lround((kHeight + 2 * kRing) * appearance_.scale)));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
}

QColor SplashPanelButton::ground() const {
    if (isDefault_) {
        const QColor accent = colorOf(appearance_.accent);
        return isDown() ? accent.darker(125) : underMouse() ? accent.lighter(108) : accent;
    }
    QColor ground = appearance_.isDark ? Qt::white : Qt::black;
    ground.setAlphaF(isDown() ? 0.26F : underMouse() ? 0.18F : 0.12F);
    return ground;
}

void SplashPanelButton::paintEvent(QPaintEvent*) {
    const double ring = kRing * appearance_.scale, radius = kCornerRadius * appearance_.scale;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(rect()).adjusted(ring, ring, -ring, -ring);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground());
    painter.drawRoundedRect(box, radius, radius);
    const bool isBright = isDefault_ ? qGray(ground().rgb()) > kMiddleGray : !appearance_.isDark;
    painter.setPen(isBright ? Qt::black : Qt::white);
    painter.drawText(rect(), Qt::AlignCenter, text());
    if (!hasFocus() || !wasTabbedTo_) return;
    painter.setPen(QPen(appearance_.isDark ? Qt::white : Qt::black, ring));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(ring / 2, ring / 2, -ring / 2, -ring / 2), radius + ring / 2,
                            radius + ring / 2);
}

void SplashPanelButton::focusInEvent(QFocusEvent* event) {
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason) wasTabbedTo_ = true;
    if (event->reason() == Qt::MouseFocusReason) wasTabbedTo_ = false;
    QPushButton::focusInEvent(event);
}

void SplashPanelButton::enterEvent(QEnterEvent* event) {
    QPushButton::enterEvent(event);
    update();
}

void SplashPanelButton::leaveEvent(QEvent* event) {
    QPushButton::leaveEvent(event);
    update();
}

}  // namespace tarvix
