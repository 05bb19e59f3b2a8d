#include "qt/settings/TabRow.h"

#include <QHoverEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>

#include "qt/QtText.h"
#include "qt/settings/SymbolImages.h"

namespace tarvix {

namespace {

// In points.
constexpr double kSymbol = 24, kAbove = 7, kBetween = 4, kBelow = 6, kBeside = 12, kLeastWidth = 72, kApart = 3;
constexpr double kCorner = 7, kRing = 2;
constexpr double kSelected = 0.11, kHovered = 0.05;  // how much of the text's colour is in the ground

}  // namespace

TabRow::TabRow(const std::vector<Tab>& tabs, QWidget* parent) : QTabBar(parent) {
    setExpanding(false);
    setDrawBase(false);
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideNone);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setAccessibleName("Settings");
    for (const Tab& tab : tabs) {
        symbols_.push_back(tab.symbol);
        addTab(textOf(tab.label));
    }
}

void TabRow::setLook(const SettingsLook& look) {
    look_ = look;
    setFont(look.font());
    setPalette(look.palette());
    for (int i = 0; i < count(); ++i) setTabText(i, tabText(i));  // has the sizes asked for anew
    updateGeometry();
    update();
}

QSize TabRow::tabSizeHint(int index) const {
    const QFontMetrics metrics(look_.font());
    const int width =
        std::max(metrics.horizontalAdvance(tabText(index)) + 2 * look_.pixels(kBeside), look_.pixels(kLeastWidth));
    return {width + 2 * look_.pixels(kApart), look_.pixels(kAbove + kSymbol + kBetween + kBelow) + metrics.height()};
}

void TabRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int i = 0; i < count(); ++i) paintTab(painter, i);
}

void TabRow::paintTab(QPainter& painter, int index) const {
    const QRectF tab = QRectF(tabRect(index)).adjusted(look_.pixels(kApart), 0, -look_.pixels(kApart), 0);
    const QColor ink = palette().color(QPalette::WindowText);
    const bool isSelected = index == currentIndex();
    if (isSelected || index == hovered_) {
        QColor ground = ink;
        ground.setAlphaF(static_cast<float>(isSelected ? kSelected : kHovered));
        QPainterPath shape;
        shape.addRoundedRect(tab, look_.pixels(kCorner), look_.pixels(kCorner));
        painter.fillPath(shape, ground);
    }
    if (isSelected && hasFocus()) {
        const double ring = look_.pixels(kRing);
        painter.setPen(QPen(palette().color(QPalette::Highlight), ring));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(tab.adjusted(ring / 2, ring / 2, -ring / 2, -ring / 2), look_.pixels(kCorner),
                                look_.pixels(kCorner));
    }
    const double symbol = look_.pixels(kSymbol);
    const double top = tab.top() + look_.pixels(kAbove);
    drawSymbol(painter, symbols_[static_cast<std::size_t>(index)], {tab.center().x() - symbol / 2, top, symbol, symbol},
               ink);
    painter.setPen(ink);
    painter.setFont(look_.font());
    const double under = top + symbol + look_.pixels(kBetween);
    painter.drawText(QRectF(tab.left(), under, tab.width(), tab.bottom() - under), Qt::AlignHCenter | Qt::AlignTop,
                     tabText(index));
}

bool TabRow::event(QEvent* event) {
    if (event->type() == QEvent::HoverMove || event->type() == QEvent::HoverEnter ||
        event->type() == QEvent::HoverLeave) {
        const int before = hovered_;
        hovered_ =
            event->type() == QEvent::HoverLeave ? -1 : tabAt(static_cast<QHoverEvent*>(event)->position().toPoint());
        if (hovered_ != before) update();
    }
    return QTabBar::event(event);
}

}  // namespace tarvix
