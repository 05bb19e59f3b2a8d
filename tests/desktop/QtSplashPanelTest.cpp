// The splash panel's window.
#include <gmock/gmock.h>

#include <QAccessible>
#include <QLabel>
#include <QPushButton>

#include "qt/FrontWindow.h"
#include "qt/PanelAccessibility.h"
#include "qt/ProgramIcon.h"
#include "qt/QtSplashPanel.h"
#include "shell/SplashScreenView.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint8_t kReturn = 36, kEscape = 9, kTab = 23, kSpace = 65;  // X key codes

class QtSplashPanelTest : public QtPanelTest {
protected:
    QtSplashPanelTest() { setContent(); }

    void setContent() {
        panel->setContent(splashScreenView, [this](SplashAction action) { pressed.push_back(action); });
    }
    QWidget* window() const { return topLevel("Splash"); }
    // In front, with the keyboard: by a real focus where there is a window manager.
    void show() {
        panel->orderFrontRegardless();
        ASSERT_EQ(frontWindow(), window());
        makeActive(*window());
        ASSERT_TRUE(runUntil([&] { return window()->isActiveWindow(); }));
    }
    void type(std::uint8_t key) { windowing.server.type(static_cast<std::uint32_t>(window()->winId()), key); }
    QPushButton* button(SplashAction action) const {
        for (const SplashButton& each : splashScreenView.buttons)
            for (auto* found : window()->findChildren<QPushButton*>())
                if (each.action == action && found->text().toStdString() == each.title) return found;
        return nullptr;
    }
    static bool isInk(QRgb color) { return qAlpha(color) > 200; }

    std::vector<SplashAction> pressed;
    std::unique_ptr<SplashPanel> panel = makeQtSplashPanel(services);
};

TEST_F(QtSplashPanelTest, HasItsTextsInTheirOrderAndItsWidth) {
    show();
    std::vector<std::string> texts;
    int bottom = 0;
    for (auto* child : window()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        EXPECT_GE(child->y(), bottom);
        bottom = child->geometry().bottom();
        if (auto* label = qobject_cast<QLabel*>(child)) texts.push_back(label->text().toStdString());
        if (auto* made = qobject_cast<QPushButton*>(child)) texts.push_back(made->text().toStdString());
    }
    EXPECT_THAT(texts, ElementsAre("", splashScreenView.title, splashScreenView.text, "Grant Accessibility Privileges",
                                   "Quit Tarvix"));
    EXPECT_EQ(window()->width(), 228);
}

TEST_F(QtSplashPanelTest, ItsButtonsTakeTheFullWidthAndNoTextIsCutOff) {
    for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
        appearance.change({.isDark = false, .accent = {}, .selection = {}, .scale = scale});
        show();
        EXPECT_EQ(window()->width(), std::lround(228 * scale));
        const int left = button(SplashAction::grantPrivileges)->x();
        for (const SplashAction action : {SplashAction::grantPrivileges, SplashAction::quit}) {
            const QPushButton* each = button(action);
            EXPECT_EQ(each->x(), left);
            EXPECT_EQ(each->width(), window()->width() - 2 * left);
            EXPECT_LE(each->fontMetrics().horizontalAdvance(each->text()), each->width()) << scale;
        }
        for (auto* label : window()->findChildren<QLabel*>())
            if (label->wordWrap()) {
                EXPECT_GE(label->height(), label->heightForWidth(label->width())) << scale;
            }
    }
}

TEST_F(QtSplashPanelTest, StandsInTheMiddleOfTheMainScreenAboveOtherWindows) {
    QWidget other;
    other.showMaximized();
    ASSERT_TRUE(runUntil([&] { return other.isActiveWindow(); }));
    show();
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    EXPECT_TRUE(runUntil([&] { return (window()->frameGeometry().center() - screen.center()).manhattanLength() <= 2; }))
        << window()->x() << "," << window()->y();
    makeActive(other);
    ASSERT_TRUE(runUntil([&] { return other.isActiveWindow(); }));
    const auto atItsPlace = [&] { return windowing.server.windowAt(screen.center()); };
    const auto inSplash = atItsPlace();
    window()->hide();
    EXPECT_TRUE(runUntil([&] { return atItsPlace() != inSplash; })) << "it was below the other window";
}

TEST_F(QtSplashPanelTest, ReturnPressesGrantWhereverTheFocusIs) {
    show();
    type(kReturn);
    ASSERT_TRUE(runUntil([&] { return pressed.size() == 1; }));
    type(kTab);
    ASSERT_TRUE(runUntil([&] { return button(SplashAction::quit)->hasFocus(); }));
    type(kReturn);
    ASSERT_TRUE(runUntil([&] { return pressed.size() == 2; }));
    EXPECT_THAT(pressed, ElementsAre(SplashAction::grantPrivileges, SplashAction::grantPrivileges));
}

TEST_F(QtSplashPanelTest, TabAndSpacePressQuit) {
    show();
    type(kTab);
    ASSERT_TRUE(runUntil([&] { return button(SplashAction::quit)->hasFocus(); }));
    type(kSpace);
    ASSERT_TRUE(runUntil([&] { return !pressed.empty(); }));
    EXPECT_THAT(pressed, ElementsAre(SplashAction::quit));
}

TEST_F(QtSplashPanelTest, CannotBeClosed) {
    show();
    type(kEscape);
    window()->close();
    drain();
    EXPECT_TRUE(window()->isVisible());
    EXPECT_THAT(pressed, IsEmpty());
    panel->orderOut();
    EXPECT_FALSE(window()->isVisible());
}

TEST_F(QtSplashPanelTest, ItsButtonMayReplaceTheContentThatItIsIn) {
    panel->setContent(splashScreenView, [this](SplashAction action) {
        pressed.push_back(action);
        setContent();
    });
    show();
    for (std::size_t times = 1; times <= 2; ++times) {
        type(kReturn);
        ASSERT_TRUE(runUntil([&] { return pressed.size() == times; }));
    }
    EXPECT_EQ(window()->findChildren<QPushButton*>().size(), 2);
}

TEST_F(QtSplashPanelTest, IsReadOutByItsTexts) {
    describePanelsToScreenReaders();
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(window());
    EXPECT_EQ(accessible->text(QAccessible::Name), "Tarvix");
    EXPECT_EQ(accessible->role(), QAccessible::Dialog);
    QAccessibleInterface* grant = QAccessible::queryAccessibleInterface(button(SplashAction::grantPrivileges));
    EXPECT_EQ(grant->role(), QAccessible::Button);
    EXPECT_EQ(grant->text(QAccessible::Name), "Grant Accessibility Privileges");
}

TEST_F(QtSplashPanelTest, ItsCornersAreRoundWithAndWithoutACompositor) {
    for (const bool composited : {true, false}) {
        windowing.composited = composited;
        panel->orderFrontRegardless();
        const QImage painted = window()->grab().toImage();
        if (composited) {
            EXPECT_EQ(qAlpha(painted.pixel(0, 0)), 0);
            EXPECT_EQ(qAlpha(painted.pixel(2, 2)), 0);
        } else {
            EXPECT_FALSE(window()->mask().contains(QPoint(2, 2)));
        }
        EXPECT_TRUE(isInk(painted.pixel(painted.width() / 2, 4)));
    }
}

TEST_F(QtSplashPanelTest, FollowsTheDesktopsAppearance) {
    show();
    const auto ground = [&] { return qGray(window()->grab().toImage().pixel(window()->width() / 2, 6)); };
    EXPECT_GT(ground(), 200);
    appearance.change({.isDark = true, .accent = {}, .selection = {}, .scale = 1});
    EXPECT_LT(ground(), 80);
}

TEST(ProgramIcon, IsDrawnAtAnySize) {
    for (const int size : {16, 72, 216}) {
        const QImage icon = programIcon(size).toImage();
        EXPECT_EQ(icon.size(), QSize(size, size));
        EXPECT_EQ(qAlpha(icon.pixel(0, 0)), 0);
        EXPECT_EQ(qAlpha(icon.pixel(size / 2, size / 2)), 255);
    }
}

}  // namespace
}  // namespace tarvix
