// The field that records a shortcut, in a window of a real desktop: real key presses, hot keys and layouts.
#include <QAccessible>
#include <QCloseEvent>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QShortcut>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <algorithm>
#include <memory>

#include "linux/x11/EvdevKeyCodes.h"
#include "linux/x11/X11HotKeys.h"
#include "linux/x11/X11InputSources.h"
#include "platform/Application.h"
#include "qt/QtRunLoop.h"
#include "qt/QtUserDefaults.h"
#include "qt/settings/RecorderField.h"
#include "tests/desktop/QtTest.h"
#include "tests/desktop/X11Victim.h"

namespace tarvix {
namespace {

// Keys by the X server's keycodes.
namespace key {
constexpr std::uint8_t escape = 9, backspace = 22, tab = 23, q = 24, w = 25, y = 29, ret = 36, control = 37, k = 45,
                       shift = 50, comma = 59, alt = 64, space = 65, f4 = 70, f5 = 71, del = 119, super = 133,
                       capsLock = 66;
}  // namespace key

using Keys = std::vector<std::uint8_t>;
const Keys kDefault{key::shift, key::super, key::space};

class MenuOfTheProgram : public Application {
public:
    void showSettingsWindow() override {}
    void activate() override {}
    void hide() override {}
    bool hasKeyWindow() override { return true; }
    void terminate() override {}
    bool openUrl(const std::string&) override { return false; }
    Menu mainMenu() override {
        MenuItem program{.title = "Tarvix"};
        program.submenu = {{.title = "Settings...", .keyEquivalent = ","},
                           {.title = "Quit Tarvix", .keyEquivalent = "q"}};
        return {program};
    }
};

class RecorderFieldTest : public QtTest {
protected:
    RecorderFieldTest() {
        connection_->watch(runLoop_);
        shortcuts_.define(toggleWith);
        shortcuts_.onKeyDown(toggleWith, [this] { ++toggled_; });
    }

    // A window with a control before the field and two after it.
    void SetUp() override {
        auto* label = new QLabel("Start Tarvixing with:", &window_);
        label->setBuddy(field_);
        auto* layout = new QVBoxLayout(&window_);
        for (QWidget* each : std::initializer_list<QWidget*>{before_, label, field_, after_, button_})
            layout->addWidget(each);
        layout->addStretch();
        window_.setWindowTitle("Settings");
        window_.setGeometry(300, 200, 400, 300);
        window_.show();
        window_.activateWindow();
        ASSERT_TRUE(runUntil([&] { return window_.isActiveWindow(); }));
        new QShortcut(QKeySequence("Ctrl+W"), &window_, [this] { ++windowShortcuts_; });
        new QShortcut(QKeySequence("Meta+W"), &window_, [this] { ++windowShortcuts_; });
        QObject::connect(button_, &QPushButton::clicked, [this] { ++clicks_; });
    }
    void TearDown() override {
        for (QWidget* each : QApplication::topLevelWidgets())
            if (qobject_cast<QMessageBox*>(each)) each->close();
        window_.hide();
        drain();
        runLoop_.waitForBodies();  // they use what goes now
    }

    void chord(const Keys& keys) {
        for (const std::uint8_t each : keys) hardware_.keyDown(each);
        for (auto each = keys.rbegin(); each != keys.rend(); ++each) hardware_.keyUp(*each);
    }
    void movePointer(const QWidget* to, QPoint at) {
        const QPoint place = to->mapToGlobal(at);
        hardware_.movePointer(static_cast<std::int16_t>(place.x()), static_cast<std::int16_t>(place.y()));
    }
    void click(const QWidget* on, std::uint8_t button = 1) {
        movePointer(on, on->rect().center());
        hardware_.click(button);
    }
    void record() {
        click(field_);
        ASSERT_TRUE(runUntil([&] { return field_->isRecording(); }));
        EXPECT_TRUE(shortcuts_.isPaused);
    }
    bool ends() {
        return runUntil([&] { return !field_->isRecording(); }) && !shortcuts_.isPaused;
    }
    bool isStored(std::optional<Shortcut> shortcut) {
        return runUntil([&] { return shortcuts_.getShortcut(toggleWith) == shortcut; });
    }
    // The shortcut starts a search, and no other press so far has.
    void expectStartsSearches(const Keys& keys, int times) {
        chord(keys);
        EXPECT_TRUE(runUntil([&] { return toggled_ == times; })) << toggled_;
    }
    QMessageBox* alert() {
        QMessageBox* box = nullptr;
        runUntil([&] {
            for (QWidget* each : QApplication::topLevelWidgets())
                if (auto* found = qobject_cast<QMessageBox*>(each); found && found->isActiveWindow()) box = found;
            return box != nullptr;
        });
        return box;
    }
    // What the desktop says that it has taken.
    static void bind(const char* keys) {
        const QString path = qEnvironmentVariable("XDG_CONFIG_HOME") + "/openbox/rc.xml";
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << path.toStdString();
        file.write(QByteArray("<openbox_config><keyboard><keybind key=\"") + keys +
                   "\"><action name=\"Close\"/></keybind></keyboard></openbox_config>");
    }

    QTemporaryDir folder_;
    QtRunLoop runLoop_;
    QtUserDefaults defaults_{folder_.path() + "/tarvix.json"};
    MenuOfTheProgram application_;
    std::unique_ptr<X11Connection> connection_ = std::move(X11Connection::open().value());
    std::unique_ptr<X11HotKeys> hotKeys_ = std::move(X11HotKeys::open(*connection_).value());
    std::unique_ptr<X11InputSources> inputSources_ = std::move(X11InputSources::open(runLoop_).value());
    KeyboardShortcuts shortcuts_{defaults_, *hotKeys_};
    Hardware hardware_;
    int toggled_ = 0, windowShortcuts_ = 0, clicks_ = 0;

    QWidget window_;
    QLineEdit* before_ = new QLineEdit(&window_);
    RecorderField* field_ =
        new RecorderField({shortcuts_, *inputSources_, application_, runLoop_,
                           [](std::uint32_t scanCode) { return keyCodeOfX11(static_cast<std::uint8_t>(scanCode)); }},
                          toggleWith, &window_);
    QLineEdit* after_ = new QLineEdit(&window_);
    QPushButton* button_ = new QPushButton("Elsewhere", &window_);
};

TEST_F(RecorderFieldTest, OnlyWhoAsksForItRecords) {
    EXPECT_EQ(field_->text(), "⇧⌘Space");
    field_->setFocus(Qt::ActiveWindowFocusReason);
    drain();
    EXPECT_FALSE(field_->isRecording());
    EXPECT_FALSE(field_->hasFocus());
    before_->setFocus();
    chord({key::tab});
    EXPECT_TRUE(runUntil([&] { return field_->isRecording(); }));
}

TEST_F(RecorderFieldTest, IsNamedAndDescribedInWords) {
    QAccessibleInterface* const told = QAccessible::queryAccessibleInterface(field_);
    EXPECT_EQ(told->text(QAccessible::Name), "Start Tarvixing with:");
    EXPECT_EQ(told->text(QAccessible::Description), "Shift+Super+Space");
    EXPECT_EQ(field_->toolTip(), "Shift+Super+Space");
    EXPECT_EQ(field_->alignment(), Qt::AlignCenter);
    EXPECT_GE(field_->width(), 130);
}

TEST_F(RecorderFieldTest, ThePresentShortcutIsRecordedAndStartsNothing) {
    record();
    chord(kDefault);
    ASSERT_TRUE(ends());
    EXPECT_EQ(shortcuts_.getShortcut(toggleWith), toggleWith.defaultShortcut);
    EXPECT_EQ(toggled_, 0);
    expectStartsSearches(kDefault, 1);
}

TEST_F(RecorderFieldTest, TheOldShortcutIsDead) {
    record();
    chord({key::alt, key::shift, key::k});
    ASSERT_TRUE(isStored(Shortcut{40, 0xa00}));
    ASSERT_TRUE(ends());
    EXPECT_EQ(field_->text(), "⌥⇧K");
    EXPECT_EQ(field_->toolTip(), "Alt+Shift+K");
    expectStartsSearches({key::alt, key::shift, key::k}, 1);
    chord(kDefault);
    expectStartsSearches({key::alt, key::shift, key::k}, 2);
}

TEST_F(RecorderFieldTest, AHeldKeyIsRecordedOnceAndStartsNothing) {
    record();
    for (const std::uint8_t each : {key::alt, key::shift, key::k}) hardware_.keyDown(each);
    ASSERT_TRUE(isStored(Shortcut{40, 0xa00}));
    for (const std::uint8_t each : {key::k, key::shift, key::alt}) hardware_.keyUp(each);
    expectStartsSearches({key::alt, key::shift, key::k}, 1);
}

TEST_F(RecorderFieldTest, EscapeEndsAndTabGoesOn) {
    record();
    chord({key::escape});
    ASSERT_TRUE(ends());
    EXPECT_FALSE(field_->hasFocus());
    record();
    chord({key::tab});
    ASSERT_TRUE(ends());
    EXPECT_TRUE(runUntil([&] { return after_->hasFocus(); }));
    EXPECT_EQ(shortcuts_.getShortcut(toggleWith), toggleWith.defaultShortcut);
}

TEST_F(RecorderFieldTest, TheDeleteKeysAndTheCancelButtonClearAndItGoesOn) {
    const auto clears = [&](const std::function<void()>& clear) {
        clear();
        ASSERT_TRUE(isStored(std::nullopt));
        EXPECT_EQ(field_->text(), "");
        EXPECT_TRUE(runUntil([&] { return field_->isRecording(); }));
        EXPECT_EQ(field_->placeholderText(), "Press Shortcut");
        EXPECT_EQ(defaults_.get("KeyboardShortcuts_toggleWith"), UserDefaults::Value(false));
        chord({key::control, key::k});
        ASSERT_TRUE(isStored(Shortcut{40, 0x1000}));
        ASSERT_TRUE(ends());
    };
    record();
    clears([&] { chord({key::backspace}); });
    record();
    clears([&] { chord({key::del}); });
    QWidget* const cancelButton = field_->findChild<QAbstractButton*>();
    ASSERT_TRUE(cancelButton);
    clears([&] { click(cancelButton); });
    record();
    clears([&] { click(cancelButton); });
}

TEST_F(RecorderFieldTest, KeysOfTheWindowAreRecorded) {
    record();
    chord({key::control, key::w});
    ASSERT_TRUE(isStored(Shortcut{13, 0x1000}));
    ASSERT_TRUE(ends());
    record();
    chord({key::super, key::w});
    ASSERT_TRUE(isStored(Shortcut{13, 0x100}));
    ASSERT_TRUE(ends());
    record();
    chord({key::alt, key::ret});
    ASSERT_TRUE(isStored(Shortcut{36, 0x800}));
    ASSERT_TRUE(ends());
    record();
    chord({key::control, key::tab});
    ASSERT_TRUE(isStored(Shortcut{48, 0x1000}));
    ASSERT_TRUE(ends());
    EXPECT_EQ(windowShortcuts_, 0);
}

TEST_F(RecorderFieldTest, AFunctionKeyIsEnoughAndALetterIsNot) {
    record();
    chord({key::k});
    chord({key::shift, key::k});
    chord({key::f5});
    ASSERT_TRUE(isStored(Shortcut{96, 0}));
    ASSERT_TRUE(ends());
    expectStartsSearches({key::f5}, 1);
    record();
    chord({key::shift, key::f5});
    ASSERT_TRUE(isStored(Shortcut{96, 0x200}));
    ASSERT_TRUE(ends());
}

TEST_F(RecorderFieldTest, CapsLockMakesNoDifference) {
    record();
    chord({key::capsLock});
    chord({key::alt, key::k});
    ASSERT_TRUE(isStored(Shortcut{40, 0x800}));
    ASSERT_TRUE(ends());
    chord({key::capsLock});
    expectStartsSearches({key::alt, key::k}, 1);
}

TEST_F(RecorderFieldTest, AClickElsewhereEndsAndReachesItsTarget) {
    for (int times = 1; times <= 2; ++times) {
        record();
        click(button_);
        EXPECT_TRUE(ends());
        EXPECT_TRUE(runUntil([&] { return clicks_ == times; }));
    }
}

TEST_F(RecorderFieldTest, AClickInTheMarginGoesOn) {
    record();
    movePointer(field_, {-2, 5});
    hardware_.click();
    hardware_.click(3);
    movePointer(field_, {20, field_->height() + 1});
    hardware_.click();
    chord({key::alt, key::k});
    ASSERT_TRUE(isStored(Shortcut{40, 0x800}));
    record();
    movePointer(field_, {-6, 5});
    hardware_.click(3);
    EXPECT_TRUE(ends());
}

TEST_F(RecorderFieldTest, TheMarginGrowsWithTheText) {
    QFont large = field_->font();
    large.setPixelSize(39);
    field_->setFont(large);
    ASSERT_TRUE(runUntil([&] { return field_->height() >= 39; }));
    record();
    movePointer(field_, {-7, 5});
    hardware_.click();
    chord({key::alt, key::k});
    ASSERT_TRUE(isStored(Shortcut{40, 0x800}));
    record();
    movePointer(field_, {-11, 5});
    hardware_.click();
    EXPECT_TRUE(ends());
}

TEST_F(RecorderFieldTest, AWindowThatLosesTheKeyboardOrClosesEndsIt) {
    QWidget other;
    other.setGeometry(900, 200, 200, 200);
    record();
    other.show();
    other.activateWindow();
    EXPECT_TRUE(ends());
    window_.activateWindow();
    ASSERT_TRUE(runUntil([&] { return window_.isActiveWindow(); }));
    drain();
    EXPECT_FALSE(field_->isRecording());
    record();
    window_.close();
    EXPECT_TRUE(ends());
    expectStartsSearches(kDefault, 1);
}

TEST_F(RecorderFieldTest, AWindowThatGoesWhileRecordingLeavesNothingPaused) {
    record();
    delete field_;
    EXPECT_FALSE(shortcuts_.isPaused);
    chord({key::alt, key::k});
    expectStartsSearches(kDefault, 1);
    EXPECT_EQ(shortcuts_.getShortcut(toggleWith), toggleWith.defaultShortcut);
}

TEST_F(RecorderFieldTest, TheProgramsOwnMenuIsTaken) {
    for (const auto& [keys, title] :
         {std::pair{Keys{key::super, key::q}, "Quit Tarvix"}, {Keys{key::super, key::comma}, "Settings..."}}) {
        record();
        chord(keys);
        QMessageBox* const box = alert();
        ASSERT_TRUE(box);
        EXPECT_EQ(box->text(), QString("This shortcut is already taken by the menu item “%1”.").arg(title));
        EXPECT_EQ(box->buttons().size(), 1);
        EXPECT_FALSE(field_->isRecording());
        chord({key::escape});
        EXPECT_TRUE(runUntil([&] { return field_->isRecording(); }));
        chord({key::escape});
        ASSERT_TRUE(ends());
    }
    EXPECT_EQ(shortcuts_.getShortcut(toggleWith), toggleWith.defaultShortcut);
}

TEST_F(RecorderFieldTest, WhatTheDesktopHasTakenIsAskedFor) {
    bind("A-F4");
    const auto pressTaken = [&]() -> QMessageBox* {
        chord({key::alt, key::f4});
        QMessageBox* const box = alert();
        EXPECT_TRUE(box);
        if (!box) return nullptr;
        EXPECT_EQ(box->text(), "This shortcut is already taken by the system.");
        EXPECT_FALSE(box->informativeText().isEmpty());
        EXPECT_EQ(box->windowModality(), Qt::WindowModal);
        EXPECT_FALSE(field_->isRecording());
        return box;
    };
    record();
    for (const std::uint8_t refusal : {key::escape, key::ret}) {
        ASSERT_TRUE(pressTaken());
        chord({refusal});
        ASSERT_TRUE(runUntil([&] { return field_->isRecording(); }));
        EXPECT_EQ(shortcuts_.getShortcut(toggleWith), toggleWith.defaultShortcut);
    }
    QMessageBox* const box = pressTaken();
    ASSERT_TRUE(box);
    const auto buttons = box->buttons();
    const auto force =
        std::ranges::find_if(buttons, [](const QAbstractButton* each) { return each->text() == "Use Anyway"; });
    ASSERT_NE(force, buttons.end());
    click(*force);
    ASSERT_TRUE(isStored(Shortcut{118, 0x800}));
    ASSERT_TRUE(ends());
    expectStartsSearches({key::alt, key::f4}, 1);
}

// A key is recorded by its place, and shown as what it types.
class RecorderLayoutTest : public RecorderFieldTest, public testing::WithParamInterface<const char*> {
protected:
    static void setLayout(const QString& layout) {
        ASSERT_EQ(QProcess::execute("setxkbmap", {"-layout", layout, "-variant", ""}), 0);
    }
    void SetUp() override {
        setLayout(GetParam());
        ASSERT_TRUE(runUntil([&] { return inputSources_->currentKeyboardLayout().id == GetParam(); }));
        RecorderFieldTest::SetUp();
    }
    void TearDown() override {
        RecorderFieldTest::TearDown();
        setLayout("us");
    }
};

TEST_P(RecorderLayoutTest, AltShiftAndALetter) {
    record();
    chord({key::alt, key::shift, key::y});
    ASSERT_TRUE(isStored(Shortcut{16, 0xa00}));
    ASSERT_TRUE(ends());
    EXPECT_EQ(field_->text(), GetParam() == std::string("us") ? "⌥⇧Y" : "⌥⇧Z");
    expectStartsSearches({key::alt, key::shift, key::y}, 1);
}

TEST_P(RecorderLayoutTest, TheMenusKeysAreThoseThatTypeThem) {
    record();
    chord({key::super, key::q});
    QMessageBox* const box = alert();
    ASSERT_TRUE(box);
    EXPECT_TRUE(box->text().contains("Quit Tarvix"));
    chord({key::ret});
    EXPECT_TRUE(runUntil([&] { return field_->isRecording(); }));
}

INSTANTIATE_TEST_SUITE_P(Layouts, RecorderLayoutTest, testing::Values("us", "de"),
                         [](const auto& layout) { return std::string(layout.param); });

}  // namespace
}  // namespace tarvix
