#include "qt/settings/SettingsLook.h"

#include <QApplication>
#include <QScreen>
#include <QStyleOption>
#include <algorithm>
#include <array>
#include <cmath>

namespace tarvix {

namespace {

constexpr double kPixelsOfAFontsPoint = 96.0 / 72;
constexpr double kPlainDensity = 96;  // what styles' measures are meant for
constexpr double kLeastText = 12, kMostText = 20;
constexpr double kSmall = 0.88, kLeastSmall = 11;
constexpr double kGreyness = 0.36;  // of the way to the ground
constexpr double kLineStrength = 0.15;
constexpr int kMiddleGray = 140;

constexpr auto kGrowing = std::to_array<QStyle::PixelMetric>({
    QStyle::PM_IndicatorWidth,
    QStyle::PM_IndicatorHeight,
    QStyle::PM_SliderThickness,
    QStyle::PM_SliderControlThickness,
    QStyle::PM_SliderLength,
    QStyle::PM_SliderTickmarkOffset,
    QStyle::PM_ScrollBarExtent,
    QStyle::PM_ButtonMargin,
    QStyle::PM_ScrollBarSliderMin,
    QStyle::PM_CheckBoxLabelSpacing,
    QStyle::PM_SmallIconSize,
    QStyle::PM_ButtonIconSize,
    QStyle::PM_ToolTipLabelFrameWidth,
    QStyle::PM_MenuButtonIndicator,
    QStyle::PM_FocusFrameHMargin,
    QStyle::PM_FocusFrameVMargin,
});

QColor toQt(const Color& color) {
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                            static_cast<float>(color.blue));
}

QColor mixed(const QColor& a, const QColor& b, double ofB) {
    const auto mix = [ofB](int x, int y) { return static_cast<int>(std::lround(x + (y - x) * ofB)); };
    return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::WindowText).lightnessF() > palette.color(QPalette::Window).lightnessF();
}

// Qt of these versions knows no dark palette but the desktop's own, if there is one.
QPalette paletteOf(bool dark) {
    const QColor window(dark ? 0x323232 : 0xf3f3f3), text(dark ? 0xf0f0f0 : 0x1c1c1c);
    QPalette palette(QColor(dark ? 0x555555 : 0xfbfbfb), window);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(role, text);
    palette.setColor(QPalette::Base, QColor(dark ? 0x5a5a5a : 0xffffff));
    palette.setColor(QPalette::AlternateBase, mixed(window, text, 0.05));
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::ToolTipBase, QColor(dark ? 0x3b3b3b : 0xffffff));
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, mixed(text, window, 0.45));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, mixed(text, window, 0.6));
    return palette;
}

void select(QPalette& palette, const QColor& ground) {
    palette.setColor(QPalette::Highlight, ground);
    palette.setColor(QPalette::HighlightedText, qGray(ground.rgb()) < kMiddleGray ? Qt::white : Qt::black);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, mixed(ground, palette.color(QPalette::Window), 0.6));
}

QFont scaledFont(double scale) {
    QFont font = QApplication::font();
    const double points = font.pointSizeF() > 0 ? font.pointSizeF() * kPixelsOfAFontsPoint : font.pixelSize();
    font.setPixelSize(static_cast<int>(std::lround(std::clamp(points, kLeastText, kMostText) * scale)));
    return font;
}

}  // namespace

SettingsLook::SettingsLook(const AppearanceValues& appearance)
    : scale_(appearance.scale), font_(scaledFont(appearance.scale)), palette_(QApplication::palette()) {
    if (isDark(palette_) == appearance.isDark) return;
    palette_ = paletteOf(appearance.isDark);
    select(palette_, toQt(appearance.accent));
}

int SettingsLook::pixels(double points) const { return static_cast<int>(std::lround(points * scale_)); }

QFont SettingsLook::smallFont() const {
    QFont font = font_;
    font.setPixelSize(std::max(pixels(kLeastSmall), static_cast<int>(std::lround(font.pixelSize() * kSmall))));
    return font;
}

QFont SettingsLook::headingFont() const {
    QFont font = font_;
    font.setWeight(QFont::DemiBold);
    return font;
}

QColor SettingsLook::grey() const {
    return mixed(palette_.color(QPalette::WindowText), palette_.color(QPalette::Window), kGreyness);
}

void SettingsLook::drawAsLine(QFrame& frame) const {
    frame.setFixedHeight(std::max(1, pixels(1)));
    frame.setAutoFillBackground(true);
    QPalette palette = palette_;
    palette.setColor(QPalette::Window,
                     mixed(palette_.color(QPalette::Window), palette_.color(QPalette::WindowText), kLineStrength));
    frame.setPalette(palette);
}

ScaledStyle::ScaledStyle() : QProxyStyle(QApplication::style()->name()) {}

// Styles count with the density of the font's screen, which may be the scaled one already.
int ScaledStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    const int plain = QProxyStyle::pixelMetric(metric, option, widget);
    if (std::ranges::find(kGrowing, metric) == kGrowing.end()) return plain;
    const double counted = option   ? option->fontMetrics.fontDpi()
                           : widget ? widget->logicalDpiX()
                                    : QApplication::primaryScreen()->logicalDotsPerInch();
    return static_cast<int>(std::lround(plain * scale_ * kPlainDensity / counted));
}

}  // namespace tarvix
