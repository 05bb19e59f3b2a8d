// The settings window as a widget: its controls and the store, the keyboard, sizes, and what a screen reader finds.
#include <gmock/gmock.h>

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QStackedWidget>
#include <QTabBar>
#include <QWindow>
#include <chrono>
#include <memory>
#include <set>

#include "base/Listeners.h"
#include "qt/settings/SettingsWindow.h"
#include "shell/preferences/SettingsView.h"
#include "simulated/SimulatedDesktop.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using Value = UserDefaults::Value;

class PreviewCount : public InputPreview, public TargetsPreview {
public:
    void showPlaced(const std::string&) override { ++positions; }
    void showInPlace(const std::string&) override {}
    void preload(std::function<void()>) override {}
    void show() override { ++targets; }
    void hide() override {}
    int positions = 0, targets = 0;
};

class SettingsWindowTest : public QtTest {
protected:
    SettingsWindowTest() {
        keys_.define(toggleWith);
        window_ = std::make_unique<SettingsWindow>(
            SettingsWindowServices{store, appearance, login_, effects_,
                                   RecorderServices{keys_, desk.inputSources, desk.application, desk.runLoop,
                                                    [](std::uint32_t) { return std::optional<std::uint16_t>(); }}});
        window_->show();
        EXPECT_TRUE(runUntil([&] { return window_->windowHandle()->isExposed(); }));
    }

    SettingsWindow& window() { return *window_; }
    QTabBar& tabs() { return *window_->findChild<QTabBar*>(); }
    void choose(const QString& label) {
        for (int i = 0; i < tabs().count(); ++i)
            if (tabs().tabText(i) == label) tabs().setCurrentIndex(i);
        drain();
    }
    QScrollArea& scroller() {
        return *qobject_cast<QScrollArea*>(window_->findChild<QStackedWidget*>()->currentWidget());
    }
    QWidget& pane() { return *scroller().widget(); }
    // The control that a screen reader knows by this name.
    template <class Control>
    Control& control(const QString& name) {
        for (auto* each : window_->findChildren<Control*>())
            if (each->accessibleName() == name) return *each;
        throw std::runtime_error("no control " + name.toStdString());
    }
    void press(QWidget& widget, int key, Qt::KeyboardModifiers modifiers = {}) {
        QKeyEvent down(QEvent::KeyPress, key, modifiers), up(QEvent::KeyRelease, key, modifiers);
        QApplication::sendEvent(&widget, &down);
        QApplication::sendEvent(&widget, &up);
    }
    bool shows(const QString& text) {
        for (auto* label : pane().findChildren<QLabel*>())
            if (label->isVisible() && label->text().contains(text)) return true;
        return false;
    }

    SimulatedDesktop desk;
    SimulatedUserDefaults& store = desk.userDefaults;
    TestAppearance appearance{{.accent = {0.2, 0.45, 0.9}, .selection = {0.2, 0.45, 0.9}}};
    PreviewCount previews;

private:
    KeyboardShortcuts keys_{desk.userDefaults, desk.hotKeys};
    LaunchAtLogin login_{desk.userDefaults, desk.loginItems, "org.tarvix.Tarvix"};
    ControlEffects effects_{desk.runLoop, previews, previews};
    std::unique_ptr<SettingsWindow> window_;
};

TEST_F(SettingsWindowTest, WhatTheUserSetsIsInTheStoreAtOnce) {
    choose("Search");
    auto& dock = control<QCheckBox>("the Dock");
    dock.click();
    EXPECT_EQ(store.get("searchIncludesDock"), Value(true));
    dock.click();
    EXPECT_EQ(store.get("searchIncludesDock"), Value(false));
    choose("Position");
    press(control<QComboBox>("Show The Input™"), Qt::Key_Down);
    EXPECT_EQ(store.get("inputPosition"), Value(std::string("aboveInput")));
    EXPECT_EQ(previews.positions, 1);
    choose("Looks");
    press(control<QSlider>("Text size"), Qt::Key_Right);
    EXPECT_EQ(store.get("inputTextSize"), Value(20.0));
    press(control<QSlider>("Opacity"), Qt::Key_End);
    EXPECT_EQ(store.get("hazeOverWindowOpacity"), Value(0.9));
    EXPECT_EQ(previews.targets, 1);
}

TEST_F(SettingsWindowTest, WhatOthersWriteShowsAtOnceAndWritesNothing) {
    int writes = 0;
    const Subscription counted = store.onChange([&](std::string_view) { ++writes; });
    store.setFromOutside("searchIncludesDock", true);
    store.setFromOutside("inputPosition", std::string("fixed"));
    store.setFromOutside("inputCornerRadius", 9.404);  // between two places of the slider
    store.setFromOutside("inputTextSize", 400.0);
    EXPECT_TRUE(control<QCheckBox>("the Dock").isChecked());
    EXPECT_EQ(control<QComboBox>("Show The Input™").currentText(), "where you left it");
    EXPECT_EQ(control<QSlider>("Corner shape").value(), 940);
    EXPECT_EQ(control<QSlider>("Text size").value(), control<QSlider>("Text size").maximum());
    EXPECT_EQ(writes, 4);
    EXPECT_EQ(store.get("inputCornerRadius"), Value(9.404));
    EXPECT_EQ(previews.positions + previews.targets, 0);
}

TEST_F(SettingsWindowTest, AChoiceThatIsNoneWritesNothing) {
    choose("Position");
    press(control<QComboBox>("Show The Input™"), Qt::Key_A);  // the cases that begin with it: the present one is first
    press(control<QComboBox>("Show The Input™"), Qt::Key_Home);
    press(control<QComboBox>("Show The Input™"), Qt::Key_Home);
    EXPECT_EQ(store.get("inputPosition"), Value(std::string("fixed")));
    EXPECT_LE(previews.positions, 2);
}

TEST_F(SettingsWindowTest, ASliderInTheHandStaysWhereTheHandIs) {
    choose("Looks");
    auto& corner = control<QSlider>("Corner shape");
    corner.setSliderDown(true);
    corner.setSliderPosition(300);
    EXPECT_EQ(store.get("inputCornerRadius"), Value(3.0));
    store.setFromOutside("inputCornerRadius", 12.0);
    EXPECT_EQ(corner.value(), 300);
    corner.setSliderDown(false);
    store.setFromOutside("inputCornerRadius", 13.0);
    EXPECT_EQ(corner.value(), 1300);
}

TEST_F(SettingsWindowTest, TheHueIsThereForCustomAndStaysStored) {
    choose("Looks");
    auto& hue = control<QSlider>("Hue");
    EXPECT_FALSE(hue.isVisible());
    const int before = window().height();
    store.set("targetsColor", std::string("custom"));
    EXPECT_TRUE(hue.isVisible());
    EXPECT_EQ(hue.value(), 280) << "the slider's own default";
    EXPECT_TRUE(runUntil([&] { return window().height() > before; }));
    hue.setValue(700);
    store.set("targetsColor", std::string("accent"));
    EXPECT_FALSE(hue.isVisible());
    EXPECT_EQ(store.get("targetsCustomColorHue"), Value(0.7));
    EXPECT_TRUE(runUntil([&] { return window().height() == before; })) << before << " " << window().height();
}

TEST_F(SettingsWindowTest, TheOpacityIsDisabledForNothing) {
    for (const auto& [style, isEnabled] : {std::pair{"onlyTargets", false}, std::pair{"fadeOutWholeScreen", true},
                                           std::pair{"fadeOutExceptDockMenuBarAndFrontmostApp", true}}) {
        store.set("hazeOverWindowStyle", std::string(style));
        EXPECT_EQ(control<QSlider>("Opacity").isEnabled(), isEnabled) << style;
    }
}

TEST_F(SettingsWindowTest, TextsBelowFollowTheirControlsAtOnce) {
    choose("Search");
    EXPECT_TRUE(shows("Apart from the Traffic Light Buttons"));
    control<QCheckBox>("the Traffic Light Buttons \U0001F6A5\uFE0F").click();
    EXPECT_FALSE(shows("Apart from the Traffic Light Buttons"));
    EXPECT_TRUE(shows("including the Traffic Light Buttons."));
    EXPECT_TRUE(shows("<code>h\u00A0f\u00A0bu</code>")) << "as code, on one line";
    press(control<QComboBox>("Fuzzy Matching"), Qt::Key_Down);
    EXPECT_TRUE(shows("Tarvix Extended is Tarvix Classic plus"));
}

TEST_F(SettingsWindowTest, TheLoginToggleShowsWhatTheDesktopHas) {
    auto& login = control<QCheckBox>("Launch at login");
    login.click();
    EXPECT_TRUE(desk.loginItems.enabled);
    EXPECT_TRUE(login.isChecked());
    desk.loginItems.failure = "the disk is full";
    testing::internal::CaptureStderr();
    login.click();
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(login.isChecked()) << "the desktop refused";
}

// What a screen reader finds below an object, by its name or by the text that labels it.
using Found = std::set<std::pair<QString, QAccessible::Role>>;

void collect(QAccessibleInterface* at, Found& found) {
    if (!at || at->state().invisible) return;
    found.emplace(at->text(QAccessible::Name), at->role());
    for (const auto& [label, relation] : at->relations(QAccessible::Label))
        found.emplace(label->text(QAccessible::Name).remove(':'), at->role());
    for (int i = 0; i < at->childCount(); ++i) collect(at->child(i), found);
}

QAccessible::Role roleOf(const Toggle&) { return QAccessible::CheckBox; }
QAccessible::Role roleOf(const LoginToggle&) { return QAccessible::CheckBox; }
QAccessible::Role roleOf(const Picker&) { return QAccessible::ComboBox; }
QAccessible::Role roleOf(const Slider&) { return QAccessible::Slider; }
QAccessible::Role roleOf(const Recorder&) { return QAccessible::EditableText; }

TEST_F(SettingsWindowTest, AScreenReaderFindsEveryControlByItsName) {
    store.set("targetsColor", std::string("custom"));
    for (const Tab& tab : settingsView()) {
        choose(QString::fromUtf8(tab.label.data(), static_cast<qsizetype>(tab.label.size())));
        Found found;
        collect(QAccessible::queryAccessibleInterface(&window()), found);
        for (const Section& section : tab.pane.sections)
            for (const Control& each : section.controls)
                std::visit(
                    [&](const auto& described) {
                        if constexpr (requires { described.label; }) {
                            QString name = QString::fromStdString(std::string(described.label)).remove('`');
                            if (name.endsWith(':')) name.chop(1);
                            EXPECT_TRUE(found.contains({name, roleOf(described)})) << name.toStdString();
                        }
                    },
                    each);
        EXPECT_TRUE(found.contains({"Extra", QAccessible::PageTab}));
    }
    EXPECT_THAT(control<QCheckBox>("Allow for temporary removal").accessibleDescription().toStdString(),
                testing::HasSubstr("⌘ is the Super key"));
}

TEST_F(SettingsWindowTest, TheKeyboardReachesEveryControlAndTurnsTheTabs) {
    store.set("targetsColor", std::string("custom"));
    window().activateWindow();
    ASSERT_TRUE(runUntil([&] { return window().isActiveWindow(); }));
    EXPECT_EQ(QApplication::focusWidget(), &tabs());
    std::vector<int> turned;
    for (int i = 0; i < 5; ++i) {
        std::set<QWidget*> reached{QApplication::focusWidget()};
        std::vector<QWidget*> order;
        const auto tab = [&] { press(*QApplication::focusWidget(), Qt::Key_Tab); };
        for (tab(); reached.insert(QApplication::focusWidget()).second; tab())
            order.push_back(QApplication::focusWidget());
        for (auto* each : pane().findChildren<QWidget*>()) {
            if (!each->isVisible() || !each->isEnabled() || each->focusPolicy() == Qt::NoFocus) continue;
            EXPECT_TRUE(reached.contains(each)) << each->accessibleName().toStdString();
        }
        const auto top = [&](QWidget* each) { return each->mapTo(&window(), QPoint()).y(); };
        EXPECT_TRUE(std::ranges::is_sorted(order, {}, top)) << "from the top to the bottom";
        turned.push_back(tabs().currentIndex());
        tabs().setFocus();
        press(tabs(), Qt::Key_Right);
        drain();
    }
    EXPECT_THAT(turned, ElementsAre(0, 1, 2, 3, 4));
    press(window(), Qt::Key_Escape);
    EXPECT_FALSE(window().isVisible());
}

// What is cut off, of those widgets that have texts.
std::vector<std::string> cropped(QWidget& pane) {
    std::vector<std::string> found;
    for (auto* each : pane.findChildren<QWidget*>()) {
        if (!each->isVisible()) continue;
        const bool isText =
            qobject_cast<QLabel*>(each) || qobject_cast<QCheckBox*>(each) || qobject_cast<QComboBox*>(each);
        if (!isText) continue;
        const bool wraps = each->hasHeightForWidth();
        const QSize wanted = wraps ? QSize(0, each->heightForWidth(each->width())) : each->sizeHint();
        if (each->width() < wanted.width() || each->height() < wanted.height())
            found.push_back(each->accessibleName().toStdString() + "/" + each->metaObject()->className());
        if (!pane.rect().contains(QRect(each->mapTo(&pane, QPoint()), each->size()))) found.push_back("outside");
    }
    return found;
}

TEST_F(SettingsWindowTest, EveryPaneFitsASmallScreenWithNothingCutOff) {
    store.set("targetsColor", std::string("custom"));
    for (int i = 0; i < tabs().count(); ++i) {
        tabs().setCurrentIndex(i);
        drain();
        EXPECT_LE(window().width(), 1024);
        EXPECT_LE(window().height(), 740);
        EXPECT_TRUE(
            runUntil([&] { return window().screen()->availableGeometry().contains(window().frameGeometry()); }));
        EXPECT_TRUE(runUntil([&] { return scroller().verticalScrollBar()->maximum() == 0; })) << i;
        EXPECT_TRUE(runUntil([&] { return cropped(pane()).empty(); })) << i;
        EXPECT_THAT(cropped(pane()), testing::IsEmpty()) << i;
    }
}

TEST_F(SettingsWindowTest, AtTwiceTheScaleEverythingIsTwiceAsLargeAndScrollsWhereTheScreenEnds) {
    const QSize plain = window().size();
    AppearanceValues twice = appearance.values();
    twice.scale = 2;
    appearance.change(twice);
    EXPECT_TRUE(runUntil([&] { return window().width() == 2 * plain.width(); }));
    store.set("targetsColor", std::string("custom"));
    for (int i = 0; i < tabs().count(); ++i) {
        tabs().setCurrentIndex(i);
        drain();
        EXPECT_LE(window().width(), 1920);
        EXPECT_LE(window().height(), 1080);
        EXPECT_TRUE(runUntil([&] { return scroller().horizontalScrollBar()->maximum() == 0; })) << i;
        EXPECT_TRUE(runUntil([&] { return cropped(pane()).empty(); })) << i;
        EXPECT_THAT(cropped(pane()), testing::IsEmpty()) << i;
    }
}

TEST_F(SettingsWindowTest, ItFollowsLightAndDark) {
    const auto ground = [&] { return window().grab().toImage().pixelColor(3, 3).lightness(); };
    EXPECT_GT(ground(), 200);
    AppearanceValues dark = appearance.values();
    dark.isDark = true;
    appearance.change(dark);
    drain();
    EXPECT_LT(ground(), 80);
    dark.isDark = false;
    appearance.change(dark);
    drain();
    EXPECT_GT(ground(), 200);
}

TEST_F(SettingsWindowTest, ALabelWithCodeTakesTheRoomOfAnyOther) {
    choose("Extra");
    const auto place = [&](const QWidget* each) { return QRect(each->mapTo(&pane(), QPoint()), each->size()); };
    std::vector<int> distances;  // from each box to the text below it
    for (const auto* box : pane().findChildren<QCheckBox*>()) {
        int below = pane().height();
        for (const auto* label : pane().findChildren<QLabel*>())
            if (label->wordWrap() && place(label).top() > place(box).center().y())
                below = std::min(below, place(label).top());
        distances.push_back(below - place(box).center().y());
    }
    EXPECT_EQ(distances.size(), 6U);
    const auto [least, most] = std::ranges::minmax(distances);
    EXPECT_LE(most - least, 1) << testing::PrintToString(distances);
}

TEST_F(SettingsWindowTest, ShownAgainItHasTheTabOfBeforeAndWhatWasSetMeanwhile) {
    choose("Search");
    window().close();
    store.set("searchIncludesDock", true);
    window().show();
    EXPECT_EQ(tabs().tabText(tabs().currentIndex()), "Search");
    EXPECT_TRUE(control<QCheckBox>("the Dock").isChecked());
    EXPECT_TRUE(control<QCheckBox>("the Dock").isVisible());
}

}  // namespace
}  // namespace tarvix
