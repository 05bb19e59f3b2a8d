// Pictures of every look of the markers, in every state that a marker can be in.
#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "display/TargetView.h"
#include "display/TargetsColor.h"
#include "qt/MarkerPainter.h"
#include "qt/MarkerPainting.h"
#include "simulated/SimulatedPanels.h"
#include "simulated/SimulatedUserDefaults.h"
#include "tests/qt/Pictures.h"

namespace tarvix {
namespace {

enum class State { primary, other, hasBeenPrimary };
constexpr State kStates[] = {State::primary, State::other, State::hasBeenPrimary};

// A sheet: a column for each state; above a light window, below a dark one; in each a button and a check box.
constexpr QSize kCell(160, 52), kSheet(3 * kCell.width(), 2 * kCell.height());
constexpr QRect kControls[] = {{14, 12, 92, 28}, {124, 17, 18, 18}};

struct Ground {
    QColor window, control, edge, text;
};
const Ground kGrounds[] = {{QColor(246, 245, 244), QColor(255, 255, 255), QColor(191, 184, 177), QColor(60, 64, 66)},
                           {QColor(43, 43, 46), QColor(58, 58, 62), QColor(24, 24, 26), QColor(222, 221, 218)}};

QRect controlAt(std::size_t column, std::size_t row, const QRect& control) {
    return control.translated(static_cast<int>(column) * kCell.width(), static_cast<int>(row) * kCell.height());
}

// What the application shows. Its texts are bars, since fonts differ from machine to machine.
void paintApplication(QPainter& painter) {
    for (std::size_t row = 0; row < std::size(kGrounds); ++row) {
        const Ground& ground = kGrounds[row];
        painter.fillRect(QRect(0, static_cast<int>(row) * kCell.height(), kSheet.width(), kCell.height()),
                         ground.window);
        for (std::size_t column = 0; column < std::size(kStates); ++column) {
            for (const QRect& control : kControls) {
                const QRect place = controlAt(column, row, control);
                painter.fillRect(place, ground.edge);
                painter.fillRect(place.adjusted(1, 1, -1, -1), ground.control);
            }
            const QPoint button = controlAt(column, row, kControls[0]).topLeft();
            int x = button.x() + 18;
            for (const int length : {24, 10, 16}) {
                painter.fillRect(x, button.y() + 12, length, 4, ground.text);
                x += length + 4;
            }
            const QPoint check = controlAt(column, row, kControls[1]).topLeft();
            painter.fillRect(check.x() + 7, check.y() + 7, 4, 4, ground.text);
        }
    }
}

// The markers of a sheet as the canvas would be given them.
class Sheet {
public:
    explicit Sheet(TargetsColor color) {
        defaults_.set("targetsColor", std::string(rawValue(color)));
        defaults_.set("targetsCustomColorHue", 0.28);
        for (std::size_t row = 0; row < std::size(kGrounds); ++row)
            for (std::size_t column = 0; column < std::size(kStates); ++column)
                for (const QRect& control : kControls) add(kStates[column], controlAt(column, row, control));
    }

    const std::vector<MarkerDrawing>& drawings() const { return drawings_; }

private:
    void add(State state, const QRect& place) {
        const double bottom = kSheet.height() - place.y() - place.height();
        TargetView view(look_, state != State::other,
                        {{double(place.x()), bottom}, {double(place.width()), double(place.height())}});
        view.drawing();
        view.isPrimary = state == State::primary;
        view.setNeedsDisplay();
        drawings_.push_back(view.drawing());
    }

    SimulatedUserDefaults defaults_;
    SimulatedColors colors_;  // the desktop's colours as they always are here
    TargetLook look_{defaults_, colors_};
    std::vector<MarkerDrawing> drawings_;
};

QRectF boundsOf(const MarkerDrawing& marker) {
    return {marker.frame.minX(), kSheet.height() - marker.frame.maxY(), marker.frame.width(), marker.frame.height()};
}

QImage blank(int scale) {
    QImage image(kSheet * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    return image;
}

QImage surfaceWith(const std::vector<MarkerDrawing>& markers, int scale) {
    QImage surface = blank(scale);
    MarkerPainter painter;
    painter.begin(surface, QRect(QPoint(0, 0), surface.size()));
    for (const MarkerDrawing& marker : markers) painter.paint(marker, boundsOf(marker));
    return surface;
}

QImage compose(const QImage& markers, int scale) {
    QImage screen = blank(scale);
    QPainter painter(&screen);
    paintApplication(painter);
    painter.drawImage(0, 0, markers);
    painter.end();
    return screen.convertToFormat(QImage::Format_RGB32);
}

QImage opaqueScreen(const std::vector<MarkerDrawing>& markers) {
    QImage screen = blank(1);
    QPainter painter(&screen);
    paintApplication(painter);
    for (const MarkerDrawing& marker : markers) paintOpaqueMarker(painter, marker, boundsOf(marker));
    painter.end();
    return screen.convertToFormat(QImage::Format_RGB32);
}

using LookAtScale = std::tuple<TargetsColor, int>;

class MarkerPictures : public testing::TestWithParam<LookAtScale> {
protected:
    TargetsColor color = std::get<0>(GetParam());
    int scale = std::get<1>(GetParam());
    Sheet sheet{color};
    std::string name = std::string(rawValue(color)) + (scale == 1 ? "" : "@" + std::to_string(scale) + "x");
};

TEST_P(MarkerPictures, TheLookIsThatOfItsPicture) {
    EXPECT_TRUE(isPicture(name, compose(surfaceWith(sheet.drawings(), scale), scale)));
}

TEST_P(MarkerPictures, MarkersPaintedOneByOneByAScaledPainterLookTheSame) {
    QImage surface = blank(1);
    surface = QImage(kSheet * scale, QImage::Format_ARGB32_Premultiplied);
    surface.fill(Qt::transparent);
    QPainter painter(&surface);
    painter.scale(scale, scale);
    for (const MarkerDrawing& marker : sheet.drawings()) paintMarker(painter, marker, boundsOf(marker));
    painter.end();
    surface.setDevicePixelRatio(scale);
    EXPECT_TRUE(isPicture(name, compose(surface, scale)));
}

INSTANTIATE_TEST_SUITE_P(, MarkerPictures,
                         testing::Combine(testing::Values(TargetsColor::findHighlight, TargetsColor::accent,
                                                          TargetsColor::highlight, TargetsColor::voiceOver,
                                                          TargetsColor::orwynPastelPink,
                                                          TargetsColor::mirelsFavoriteBlue,
                                                          TargetsColor::qsFlamboyantFuchsia, TargetsColor::custom),
                                          testing::Values(1, 2)),
                         [](const auto& test) {
                             return std::string(rawValue(std::get<0>(test.param))) + "AtScale" +
                                    std::to_string(std::get<1>(test.param));
                         });

TEST(OpaqueMarkerPictures, TheColourLookWithoutACompositorIsThatOfItsPicture) {
    EXPECT_TRUE(isPicture("findHighlight-opaque", opaqueScreen(Sheet(TargetsColor::findHighlight).drawings())));
}

TEST(OpaqueMarkerPictures, TheScreenReaderLookWithoutACompositorIsThatOfItsPicture) {
    EXPECT_TRUE(isPicture("voiceOver-opaque", opaqueScreen(Sheet(TargetsColor::voiceOver).drawings())));
}

// What the comparison is worth: each of these must be seen.
class PictureComparison : public testing::TestWithParam<TargetsColor> {
protected:
    // How many pixels differ once one marker of the sheet is changed.
    template <class Change>
    int seen(std::size_t marker, Change change) const {
        std::vector<MarkerDrawing> drawings = Sheet(GetParam()).drawings();
        const QImage before = compose(surfaceWith(drawings, 1), 1);
        change(drawings[marker]);
        return difference(compose(surfaceWith(drawings, 1), 1), before, 6).pixels;
    }
    static constexpr std::size_t primary = 0, primaryCheckBox = 1, other = 2;
};

TEST_P(PictureComparison, AMarkerOnePixelOffIsSeen) {
    for (const std::size_t marker : {primary, primaryCheckBox, other}) {
        EXPECT_GT(seen(marker, [](MarkerDrawing& drawing) { drawing.frame.origin.x += 1; }), 10) << marker;
        EXPECT_GT(seen(marker, [](MarkerDrawing& drawing) { drawing.frame.origin.y += 1; }), 10) << marker;
    }
}

TEST_P(PictureComparison, ASizeAnAlphaARadiusALineWidthAndAnInsetAreSeen) {
    EXPECT_GT(seen(primary, [](MarkerDrawing& drawing) { drawing.frame.size.width += 1; }), 10);
    EXPECT_GT(seen(primary, [](MarkerDrawing& drawing) { drawing.alpha = 0.5; }), 100);
    EXPECT_GT(seen(primary, [](MarkerDrawing& drawing) { drawing.cornerRadius = 8; }), 3);
    EXPECT_GT(seen(other, [](MarkerDrawing& drawing) { drawing.shapes.back().lineWidth += 0.5; }), 100);
    EXPECT_GT(seen(other, [](MarkerDrawing& drawing) { drawing.shapes.back().inset += 0.5; }), 100);
}

TEST_P(PictureComparison, NothingIsSeenWhereNothingDiffers) {
    EXPECT_EQ(seen(primary, [](MarkerDrawing&) {}), 0);
}

INSTANTIATE_TEST_SUITE_P(, PictureComparison, testing::Values(TargetsColor::findHighlight, TargetsColor::voiceOver),
                         [](const auto& test) { return std::string(rawValue(test.param)); });

TEST(ImageDifference, ImagesOfDifferentSizesDifferInEveryPixel) {
    EXPECT_EQ(difference(QImage(4, 3, QImage::Format_RGB32), QImage(3, 4, QImage::Format_RGB32), 255).pixels, 12);
}

}  // namespace
}  // namespace tarvix
