#include <QAccessible>
#include <QFontMetricsF>
#include <QLineEdit>
#include <QProcess>

#include "qt/QtInputPanel.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

// X key codes of the usual keyboard.
constexpr std::uint8_t kKeyA = 38, kKeyB = 56, kKeyE = 26, kKeySpace = 65, kKeyReturn = 36, kKeyEscape = 9;
constexpr std::uint8_t kKeyApostrophe = 48, kKeyMenu = 135;

class QtInputPanelTest : public QtPanelTest {
protected:
    QtInputPanelTest() {
        textChanged_ = panel->onTextChanged([this](const std::string& text) { texts.push_back(text); });
        measured_ = panel->onMeasured([this](double width) { widths.push_back(width); });
        resigned_ = panel->onResignKey([this] { ++resigned; });
        cancelled_ = panel->onCancel([this] { ++cancelled; });
    }

    void show() {
        panel->setFrame({{100, 500}, {300, 0}});
        panel->makeKeyAndOrderFront();
        ASSERT_TRUE(runUntil([&] { return milestones.has("The Input shown 0") && field()->hasFocus(); }));
    }
    void type(std::uint8_t keyCode, std::uint16_t modifiers = 0) {
        windowing.server.type(windowing.keyboardWindow, keyCode, modifiers);
    }
    bool textBecomes(const std::string& text) {
        return runUntil([&] { return !texts.empty() && texts.back() == text; });
    }
    static QWidget* window() { return topLevel("TheInput"); }
    static QLineEdit* field() { return window()->findChild<QLineEdit*>(); }
    static QWidget* spinner() { return window()->findChild<QWidget*>("progress"); }
    static QImage painted() { return window()->grab().toImage(); }
    // Only its text size counts for the layout; with a border that reaches 1 pixel out of the rounded rectangle.
    QRect boxWithTextOf(double size) {
        panel->setLook({.textSize = size, .backgroundOpacity = 0.9, .cornerRadius = 6, .borderThickness = 2});
        panel->setFrame({{100, 500}, {300, 0}});
        return window()->rect().adjusted(1, 1, -1, -1);
    }
    static double measure(const QString& text) {
        return QFontMetricsF(field()->font()).horizontalAdvance("X" + text + "XX");
    }

    std::unique_ptr<InputPanel> panel = makeQtInputPanel(services);
    std::vector<std::string> texts;
    std::vector<double> widths;
    int resigned = 0, cancelled = 0;

private:
    Subscription textChanged_, measured_, resigned_, cancelled_;
};

TEST_F(QtInputPanelTest, TypingChangesTheTextAndTheMeasuredWidth) {
    show();
    type(kKeyA);
    type(kKeyB, XCB_MOD_MASK_SHIFT);
    type(kKeySpace);
    ASSERT_TRUE(textBecomes("aB "));
    EXPECT_EQ(texts, (std::vector<std::string>{"a", "aB", "aB "}));
    EXPECT_EQ(widths, (std::vector<double>{measure(""), measure("a"), measure("aB"), measure("aB ")}));
    EXPECT_TRUE(milestones.has("text changed 0"));
}

TEST_F(QtInputPanelTest, ADeadKeyComposesWithTheNextKey) {
    ASSERT_EQ(QProcess::execute("setxkbmap", {"-layout", "us", "-variant", "intl"}), 0);
    show();
    type(kKeyApostrophe);
    type(kKeyE);
    EXPECT_TRUE(textBecomes("é"));
    EXPECT_EQ(QProcess::execute("setxkbmap", {"-layout", "us", "-variant", ""}), 0);
}

TEST_F(QtInputPanelTest, AComposeSequenceTypesItsCharacter) {
    ASSERT_EQ(QProcess::execute("setxkbmap", {"-option", "compose:menu"}), 0);
    show();
    type(kKeyMenu);
    type(kKeyApostrophe);
    type(kKeyE);
    EXPECT_TRUE(textBecomes("é"));
    EXPECT_EQ(QProcess::execute("setxkbmap", {"-option", ""}), 0);
}

TEST_F(QtInputPanelTest, SettingTheTextIsMeasuredButNotReported) {
    panel->setText("kept");
    drain();
    EXPECT_EQ(field()->text(), "kept");
    EXPECT_TRUE(texts.empty());
    EXPECT_EQ(widths.back(), measure("kept"));
}

TEST_F(QtInputPanelTest, AnEmptyTextMeasuresThreeLetters) { EXPECT_EQ(widths, std::vector<double>{measure("")}); }

TEST_F(QtInputPanelTest, ReturnDoesNothingAndEscapeCancels) {
    show();
    type(kKeyReturn);
    type(kKeyEscape);
    ASSERT_TRUE(runUntil([&] { return cancelled == 1; }));
    EXPECT_TRUE(texts.empty());
    EXPECT_TRUE(panel->isVisible());
}

TEST_F(QtInputPanelTest, CommandASelectsTheKeptTextSoThatTypingReplacesIt) {
    panel->setText("kept");
    show();
    type(kKeyA, XCB_MOD_MASK_4);
    ASSERT_TRUE(runUntil([&] { return field()->selectedText() == "kept"; }));
    type(kKeyB);
    EXPECT_TRUE(textBecomes("b"));
    EXPECT_EQ(texts.size(), 1u);
}

TEST_F(QtInputPanelTest, TheKeyboardIsTakenWhenShownAndGivenBackBeforeHiding) {
    show();
    EXPECT_EQ(windowing.journal, (std::vector<std::string>{"stack on top", "take keyboard"}));
    panel->orderOut();
    EXPECT_EQ(windowing.journal, (std::vector<std::string>{"stack on top", "take keyboard", "release keyboard"}));
    EXPECT_FALSE(panel->isVisible());
    EXPECT_TRUE(milestones.has("The Input hidden 0"));
    EXPECT_EQ(resigned, 0);
}

TEST_F(QtInputPanelTest, ShowingAPanelThatIsShownTakesTheKeyboardOnce) {
    show();
    panel->makeKeyAndOrderFront();
    EXPECT_EQ(windowing.journal, (std::vector<std::string>{"stack on top", "take keyboard", "stack on top"}));
}

TEST_F(QtInputPanelTest, LosingTheKeyboardIsReportedOnceAndNotReleasedAgain) {
    show();
    const auto lost = windowing.lost;
    lost();
    EXPECT_EQ(resigned, 1);
    panel->orderOut();
    EXPECT_EQ(windowing.journal, (std::vector<std::string>{"stack on top", "take keyboard"}));
}

TEST_F(QtInputPanelTest, AKeyboardThatCannotBeHadIsAKeyboardLost) {
    windowing.refusesKeyboard = true;
    panel->makeKeyAndOrderFront();
    EXPECT_EQ(resigned, 0);
    EXPECT_TRUE(runUntil([&] { return resigned == 1; }));
    EXPECT_FALSE(milestones.has("The Input shown 0"));
}

TEST_F(QtInputPanelTest, TheFrameKeepsItsCornerAndIsNeverSmallerThanTheContent) {
    panel->setFrame({{100, 500}, {32, 0}});
    const PanelRect empty = panel->frame();
    EXPECT_EQ(empty.origin, (PanelPoint{100, 500}));
    EXPECT_GE(empty.size.width, measure(""));
    panel->setText("a text that needs more room");
    panel->setFrame({empty.origin, {32, empty.size.height}});
    EXPECT_EQ(panel->frame().origin, empty.origin);
    EXPECT_EQ(panel->frame().size.height, empty.size.height);
    EXPECT_GE(panel->frame().size.width, measure("a text that needs more room"));
    panel->setText("");
    panel->setFrame({empty.origin, {32, empty.size.height}});
    EXPECT_EQ(panel->frame(), empty);
}

TEST_F(QtInputPanelTest, TheWindowLiesWithinTheFrameOnTheFlippedPlane) {
    show();
    const double height = screens.frames().front().height();
    const PanelRect frame = panel->frame();
    const QRect window = QtInputPanelTest::window()->geometry();
    EXPECT_GT(window.left(), frame.minX());
    EXPECT_LT(window.left() + window.width(), frame.maxX());
    EXPECT_GT(window.top(), height - frame.maxY());
    EXPECT_LT(window.top() + window.height(), height - frame.minY());
    // The margin is the same on all sides.
    EXPECT_EQ(window.left() - frame.minX(), frame.maxX() - (window.left() + window.width()));
    EXPECT_EQ(window.top() - (height - frame.maxY()), (height - frame.minY()) - (window.top() + window.height()));
}

TEST_F(QtInputPanelTest, ALargerTextMakesAHigherPanel) {
    InputLook look;
    const double before = panel->frame().size.height;
    look.textSize = 40;
    panel->setLook(look);
    EXPECT_GT(panel->frame().size.height, before);
    EXPECT_EQ(widths.back(), measure(""));
    panel->setLook({});
    EXPECT_EQ(panel->frame().size.height, before);
}

TEST_F(QtInputPanelTest, NoTypedTextIsEverScrolledOutOfTheField) {
    for (const double size : {9.0, 16.0, 28.0, 29.0, 48.0}) {
        InputLook look;
        look.textSize = size;
        panel->setLook(look);
        for (const char* text : {"", "i", "WWWWWWWW", "fj\xC3\x85ngstr\xC3\xB6mf", "a b c"}) {
            panel->setText(text);
            panel->setFrame({{100, 500}, {32, 0}});
            field()->end(false);
            const QRect visible = field()->geometry() & window()->rect();
            const QRect caret = field()->inputMethodQuery(Qt::ImCursorRectangle).toRect();
            const double bearing = QFontMetricsF(field()->font()).horizontalAdvance("X");
            EXPECT_GT(visible.width() - caret.right(), bearing) << text << " at " << size;
            EXPECT_LE(field()->geometry().bottom(), window()->rect().bottom());
        }
    }
}

TEST_F(QtInputPanelTest, DraggingTheBackgroundMovesThePanel) {
    show();
    const PanelRect before = panel->frame();
    const QPoint grip = window()->geometry().topLeft() + QPoint(4, window()->height() / 2);
    windowing.server.movePointer(grip);
    windowing.server.button(true);
    windowing.server.movePointer(grip + QPoint(30, -20));
    windowing.server.movePointer(grip + QPoint(70, -50));
    windowing.server.button(false);
    ASSERT_TRUE(runUntil([&] {
        return panel->frame().origin == PanelPoint{before.origin.x + 70, before.origin.y + 50};
    }));
    EXPECT_EQ(panel->frame().size, before.size);
}

TEST_F(QtInputPanelTest, TheCaretIsPaintedWhileThePanelHasTheKeyboard) {
    show();
    EXPECT_TRUE(runUntil([&] {
        const QRect caret = field()->inputMethodQuery(Qt::ImCursorRectangle).toRect();
        const QPoint pixel = field()->geometry().topLeft() + caret.center();
        const QImage painted = window()->grab().toImage();
        for (const int x : {pixel.x() - 1, pixel.x(), pixel.x() + 1})
            if (painted.pixelColor(x, pixel.y()).lightness() < 60) return true;
        return false;
    }));
}

TEST_F(QtInputPanelTest, TheSpinnerShowsWhileProgressDoes) {
    show();
    // Without the caret, which comes and goes by itself.
    const auto picture = [] { return painted().copy(spinner()->geometry()); };
    const QImage idle = picture();
    panel->setShowsProgress(true);
    drain();
    EXPECT_NE(picture(), idle);
    panel->setShowsProgress(false);
    drain();
    EXPECT_EQ(picture(), idle);
}

TEST_F(QtInputPanelTest, TheFieldHasItsPaddingsAndALargeOneReachesOverTheTrailingEdge) {
    struct Row {
        double textSize;
        int trailing;
    };
    for (const Row& row : {Row{16, 6}, Row{28, 6}, Row{28.5, -6}, Row{48, -6}}) {
        const QRect box = boxWithTextOf(row.textSize);
        const QRect place = field()->geometry();
        EXPECT_EQ(place.left() - box.left(), 6) << row.textSize;
        EXPECT_EQ(place.top() - box.top(), 6) << row.textSize;
        EXPECT_EQ(box.bottom() - place.bottom(), 6) << row.textSize;
        EXPECT_EQ(box.right() - place.right(), row.trailing) << row.textSize;
    }
}

TEST_F(QtInputPanelTest, TheSpinnerIsAtTheTrailingEdgeAndAtTheTopOfALargeText) {
    for (const double textSize : {16.0, 28.0, 28.5, 48.0}) {
        const QRect box = boxWithTextOf(textSize);
        const QRect place = spinner()->geometry();
        EXPECT_EQ(box.right() - place.right(), 6) << textSize;
        if (textSize > 28)
            EXPECT_EQ(place.top() - box.top(), 6) << textSize;
        else
            EXPECT_NEAR(place.center().y(), box.center().y(), 1) << textSize;
    }
}

TEST_F(QtInputPanelTest, AThinBorderIsOnePaleLineOnEachSide) {
    for (const bool composited : {true, false}) {
        windowing.composited = composited;
        panel->orderOut();
        panel->setLook({.textSize = 32, .backgroundOpacity = 1, .cornerRadius = 9.4, .borderThickness = 0.43});
        panel->setFrame({{100, 500}, {300, 0}});
        panel->makeKeyAndOrderFront();
        const QImage picture = painted();
        const int right = picture.width() - 1, bottom = picture.height() - 1;
        const QPoint edges[] = {{0, bottom / 2}, {right, bottom / 2}, {right / 2, 0}, {right / 2, bottom}};
        const QPoint inwards[] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}};
        for (std::size_t side = 0; side < std::size(edges); ++side) {
            EXPECT_EQ(picture.pixel(edges[side]), picture.pixel(edges[0])) << side;
            EXPECT_GT(picture.pixelColor(edges[side] + inwards[side]).lightness(), 250) << side;
        }
        EXPECT_LT(picture.pixelColor(edges[0]).lightness(), 240);
        EXPECT_GT(qAlpha(picture.pixel(edges[0])), 80);
    }
}

TEST_F(QtInputPanelTest, SelectedTextHasTheDesktopsColoursAndCanBeRead) {
    appearance.change({.isDark = true, .accent = {}, .selection = {1, 1, 0.6, 1}});
    EXPECT_EQ(field()->palette().color(QPalette::Highlight).rgb(), QColor(255, 255, 153).rgb());
    EXPECT_EQ(field()->palette().color(QPalette::HighlightedText), QColor(Qt::black));
    appearance.change({.isDark = false, .accent = {}, .selection = {0, 0, 0.6, 1}});
    EXPECT_EQ(field()->palette().color(QPalette::HighlightedText), QColor(Qt::white));
}

TEST_F(QtInputPanelTest, TheGroundFollowsTheAppearanceWhileThePanelStands) {
    show();
    const auto ground = [] {
        const QImage painted = window()->grab().toImage();
        return painted.pixelColor(painted.width() - 8, painted.height() / 2);
    };
    EXPECT_GT(ground().lightness(), 200);
    EXPECT_NEAR(ground().alphaF(), windowing.composited ? 0.9 : 1.0, 0.01);
    appearance.change({.isDark = true, .accent = {}, .selection = {}});
    EXPECT_TRUE(runUntil([&] { return ground().lightness() < 50; }));
    EXPECT_EQ(field()->palette().color(QPalette::Text), QColor(Qt::white));
    appearance.change({.isDark = false, .accent = {}, .selection = {}});
    EXPECT_TRUE(runUntil([&] { return ground().lightness() > 200; }));
}

TEST_F(QtInputPanelTest, WithoutACompositorTheCornersAreNotCovered) {
    windowing.composited = false;
    show();
    const QRect window = QtInputPanelTest::window()->geometry();
    EXPECT_NE(windowing.server.windowAt(window.topLeft()), QtInputPanelTest::window()->winId());
    EXPECT_EQ(windowing.server.windowAt(window.center()), QtInputPanelTest::window()->winId());
}

TEST_F(QtInputPanelTest, ItHasAnAccessibleName) {
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(field());
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->text(QAccessible::Name), "The Input");
    EXPECT_EQ(accessible->role(), QAccessible::EditableText);
}

}  // namespace
}  // namespace tarvix
