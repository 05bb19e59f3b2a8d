// Fonts, colours and measures of the settings window on this desktop.
#pragma once

#include <QFont>
#include <QFrame>
#include <QPalette>
#include <QProxyStyle>

#include "platform/Appearance.h"

namespace tarvix {

// A text of 13 points is 13 pixels high where the desktop's scale is 1; a person's own choice of a font counts.
class SettingsLook {
public:
    explicit SettingsLook(const AppearanceValues& appearance);

    // A length in pixels of one in points.
    int pixels(double points) const;
    double scale() const { return scale_; }

    const QFont& font() const { return font_; }
    QFont smallFont() const;
    QFont headingFont() const;

    // The toolkit's own as far as it is as light or dark as the desktop.
    const QPalette& palette() const { return palette_; }
    // Of what is said besides, still easily read.
    QColor grey() const;
    // Makes a frame a thin horizontal line.
    void drawAsLine(QFrame& frame) const;

private:
    double scale_;
    QFont font_;
    QPalette palette_;
};

// The application's style with indicators, grooves and distances that grow by the desktop's scale, as the fonts do.
class ScaledStyle : public QProxyStyle {
public:
    ScaledStyle();
    void setScale(double scale) { scale_ = scale; }
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;

private:
    double scale_ = 1;
};

}  // namespace tarvix
