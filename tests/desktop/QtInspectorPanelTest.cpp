#include "qt/QtInspectorPanel.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

const QColor kGround(0, 0, 255);

class QtInspectorPanelTest : public QtPanelTest {
protected:
    QtInspectorPanelTest() {
        ground.setGeometry(0, 0, 800, 600);
        ground.setWindowFlags(Qt::X11BypassWindowManagerHint);
        QPalette palette;
        palette.setColor(QPalette::Window, kGround);
        ground.setPalette(palette);
        ground.show();
        runUntil([&] { return screenshot().pixelColor(400, 300) == kGround; });
    }

    // Shows the content with its upper left corner at (100, 100) and returns the pixels that it takes up.
    QRect show(const InspectorContent& content, Size most = {480, 500}) {
        panel->setContent(content);
        const Size size = panel->fittingSize(most);
        const double height = screens.frames().front().height();
        panel->setFrame({{100, height - 100 - size.height}, size});
        milestones.moments.clear();
        panel->orderFrontRegardless();
        EXPECT_TRUE(runUntil([&] { return milestones.has("inspector shown 0"); }));
        const QRect pixels(100, 100, static_cast<int>(size.width), static_cast<int>(size.height));
        EXPECT_TRUE(pixelBecomes({pixels.left() + 8, pixels.center().y()}, paper()));
        return pixels;
    }
    QColor paper() { return dark() ? QColor(44, 44, 48) : QColor(250, 250, 250); }
    bool dark() { return appearance.values().isDark; }
    void goDark() { appearance.change({.isDark = true, .accent = {}, .selection = {}}); }
    static bool pixelBecomes(QPoint pixel, QColor color) {
        return runUntil([&] { return screenshot().pixelColor(pixel) == color; });
    }
    // The pixels of an area that are clearly ink and not paper.
    static int inked(const QImage& picture, const QRect& area, QColor ink) {
        int count = 0;
        for (int y = area.top(); y <= area.bottom(); ++y)
            for (int x = area.left(); x <= area.right(); ++x)
                count += std::abs(picture.pixelColor(x, y).lightness() - ink.lightness()) < 100 ? 1 : 0;
        return count;
    }
    static int inkedRows(const QImage& picture, const QRect& area, QColor ink) {
        int rows = 0;
        for (int y = area.top(); y <= area.bottom(); ++y)
            rows += inked(picture, {area.left(), y, area.width(), 1}, ink) > 0 ? 1 : 0;
        return rows;
    }

    InspectorContent save{"The Inspector caught", "≢ Save\n≢ Saves the document\n≢ button\n"};
    QWidget ground;
    std::unique_ptr<InspectorPanel> panel = makeQtInspectorPanel(services);
};

TEST_F(QtInspectorPanelTest, ShowsDarkTextOnALightRoundedGround) {
    const QRect pixels = show(save);
    EXPECT_TRUE(runUntil([&] { return inked(screenshot(), pixels.adjusted(16, 16, -16, -16), Qt::black) > 300; }));
    const QImage seen = screenshot();
    EXPECT_EQ(inked(seen, {pixels.left() + 3, pixels.top() + 14, 12, pixels.height() - 28}, Qt::black), 0);
    for (const QPoint corner : {pixels.topLeft(), pixels.topRight(), pixels.bottomLeft(), pixels.bottomRight()})
        EXPECT_TRUE(pixelBecomes(corner, kGround)) << corner.x() << "," << corner.y();
    for (const QPoint outside : {QPoint(99, pixels.center().y()), QPoint(pixels.right() + 1, pixels.center().y()),
                                 QPoint(pixels.center().x(), 99), QPoint(pixels.center().x(), pixels.bottom() + 1)})
        EXPECT_TRUE(pixelBecomes(outside, kGround)) << outside.x() << "," << outside.y();
}

TEST_F(QtInspectorPanelTest, OnADarkDesktopItIsLightTextOnDark) {
    goDark();
    const QRect pixels = show(save);
    EXPECT_TRUE(runUntil([&] { return inked(screenshot(), pixels.adjusted(16, 16, -16, -16), Qt::white) > 300; }));
}

TEST_F(QtInspectorPanelTest, FollowsAChangeOfTheAppearanceWhileItIsShown) {
    const QRect pixels = show(save);
    const QColor light = paper();
    goDark();
    ASSERT_NE(paper(), light);
    EXPECT_TRUE(pixelBecomes({pixels.left() + 8, pixels.center().y()}, paper()));
}

TEST_F(QtInspectorPanelTest, TheContentDecidesTheSize) {
    panel->setContent({"The Inspector caught", ""});
    const Size bare = panel->fittingSize({480, 500});
    panel->setContent({"The Inspector caught", "≢ Save\n"});
    const Size one = panel->fittingSize({480, 500});
    panel->setContent({"The Inspector caught", "≢ Save\n≢ Save\n"});
    const Size two = panel->fittingSize({480, 500});
    EXPECT_EQ(bare.width, one.width);
    EXPECT_EQ(one.width, two.width);
    EXPECT_GT(two.height, one.height + 10);
    EXPECT_LE(bare.height, one.height);
    panel->setContent({"The Inspector caught", "≢ Saves the document where it has come from\n"});
    EXPECT_GT(panel->fittingSize({480, 500}).width, one.width);
}

TEST_F(QtInspectorPanelTest, LongLinesAreBrokenAlsoWithoutABlank) {
    for (const QString& text : {QString(200, 'x'), QString("word ").repeated(60)}) {
        panel->setContent({"The Inspector caught", "≢ " + text.toStdString() + "\n"});
        const Size size = panel->fittingSize({300, 500});
        EXPECT_LE(size.width, 300);
        EXPECT_GT(size.height, 120);
    }
}

TEST_F(QtInspectorPanelTest, WhatIsTooHighEndsWithAWholeLineAboveTheLowerEdge) {
    std::string body;
    for (int i = 0; i < 100; ++i) body += "≢ line " + std::to_string(i) + "\n";
    const QRect pixels = show({"The Inspector caught", body}, {480, 300});
    EXPECT_LE(pixels.height(), 300);
    EXPECT_GT(pixels.height(), 260);
    const QImage seen = screenshot();
    EXPECT_EQ(inked(seen, {pixels.left() + 8, pixels.bottom() - 12, pixels.width() - 16, 9}, Qt::black), 0);
    EXPECT_GT(inked(seen, {pixels.left() + 8, pixels.bottom() - 60, pixels.width() - 16, 40}, Qt::black), 20);
}

TEST_F(QtInspectorPanelTest, TheHeadingIsLargerThanTheText) {
    const QRect alike = show({"HHHHHHHHHH", "HHHHHHHHHH\n"});
    const QImage seen = screenshot();
    const int middle = alike.top() + alike.height() / 2;
    const QRect heading(alike.left() + 8, alike.top() + 8, alike.width() - 16, middle - alike.top() - 8);
    const QRect body(alike.left() + 8, middle, alike.width() - 16, alike.bottom() - middle - 8);
    EXPECT_GT(inkedRows(seen, heading, Qt::black), inkedRows(seen, body, Qt::black));
    EXPECT_GT(inked(seen, heading, Qt::black), inked(seen, body, Qt::black) * 5 / 4);
}

TEST_F(QtInspectorPanelTest, AWordThatNoFontHereCanShowIsLeftOut) {
    panel->setContent({"The Inspector caught", ""});
    const Size plain = panel->fittingSize({480, 500});
    panel->setContent({"The Inspector \U0010FFFD caught", ""});  // private for ever
    EXPECT_EQ(panel->fittingSize({480, 500}), plain);
}

TEST_F(QtInspectorPanelTest, ThePointerGoesThroughItAndItTakesNoKeyboard) {
    const QRect pixels = show(save);
    EXPECT_EQ(windowing.server.windowAt(pixels.center()), ground.winId());
    EXPECT_EQ(windowing.journal, std::vector<std::string>{"stack on top"});
    windowing.composited = false;
    panel->orderFrontRegardless();
    EXPECT_EQ(windowing.server.windowAt(pixels.center()), ground.winId());
}

TEST_F(QtInspectorPanelTest, WithoutACompositorItsCornersAreCutOut) {
    windowing.composited = false;
    const QRect pixels = show(save);
    for (const QPoint corner : {pixels.topLeft(), pixels.topRight(), pixels.bottomLeft(), pixels.bottomRight()})
        EXPECT_TRUE(pixelBecomes(corner, kGround)) << corner.x() << "," << corner.y();
}

TEST_F(QtInspectorPanelTest, AnotherContentTakesThePlaceOfTheFormerOne) {
    const QRect large = show({"The Inspector caught", "≢ Save\n≢ button\n≢ one\n≢ two\n≢ three\n"});
    const QRect small = show({"The Inspector caught", "≢ Save\n"});
    ASSERT_LT(small.height(), large.height());
    EXPECT_TRUE(pixelBecomes({large.center().x(), large.bottom() - 5}, kGround));
}

TEST_F(QtInspectorPanelTest, HiddenItIsGoneAndComesBack) {
    const QRect pixels = show(save);
    panel->orderOut();
    EXPECT_TRUE(pixelBecomes(pixels.center(), kGround));
    show(save);
}

}  // namespace
}  // namespace tarvix
