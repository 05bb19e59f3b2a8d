// The status item between the session bus and the tray: panels come, go, refuse and freeze.
#include <gmock/gmock.h>

#include <QApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QMenu>
#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "qt/BusMenuTypes.h"
#include "qt/NotifierTypes.h"
#include "qt/QtStatusBar.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr auto kWatcher = "org.kde.StatusNotifierWatcher";
constexpr auto kWatcherPath = "/StatusNotifierWatcher";
constexpr auto kItem = "org.kde.StatusNotifierItem";
constexpr auto kItemPath = "/StatusNotifierItem";
constexpr auto kMenu = "com.canonical.dbusmenu";

// What keeps the list of items, on a connection of its own.
class TestWatcher : public QDBusVirtualObject {
public:
    enum class Answers { yes, no, withRefusal };

    explicit TestWatcher(Answers answers = Answers::yes, bool itHasHost = true)
        : hasHost(itHasHost),
          answers_(answers),
          bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, kName)) {
        bus_.registerVirtualObject(kWatcherPath, this);
        bus_.registerService(kWatcher);
    }
    ~TestWatcher() override { QDBusConnection::disconnectFromBus(kName); }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (answers_ == Answers::no) return true;
        if (message.member() == "Get") {
            connection.send(message.createReply(QVariant::fromValue(QDBusVariant(hasHost))));
        } else if (message.member() == "RegisterStatusNotifierItem") {
            registered.push_back(message.arguments()[0].toString().toStdString());
            connection.send(answers_ == Answers::withRefusal ? message.createErrorReply(QDBusError::AccessDenied, "No")
                                                             : message.createReply());
        }
        return true;
    }

    void setHasHost(bool has) {
        hasHost = has;
        bus_.send(QDBusMessage::createSignal(kWatcherPath, kWatcher,
                                             has ? "StatusNotifierHostRegistered" : "StatusNotifierHostUnregistered"));
    }
    // What a panel asks of the item that came last.
    std::optional<QVariantList> ask(const char* path, const char* interface, const char* method,
                                    const QVariantList& arguments) {
        QDBusMessage call =
            QDBusMessage::createMethodCall(QString::fromStdString(registered.back()), path, interface, method);
        call.setArguments(arguments);
        QDBusPendingCallWatcher pending(bus_.asyncCall(call));
        if (!runUntil([&] { return pending.isFinished(); }) || pending.isError()) return std::nullopt;
        return pending.reply().arguments();
    }
    QVariant property(const char* name) {
        const auto answer = ask(kItemPath, "org.freedesktop.DBus.Properties", "Get", {kItem, name});
        return answer ? answer->first().value<QDBusVariant>().variant() : QVariant();
    }
    BusMenuLayout layout() {
        const auto answer = ask("/MenuBar", kMenu, "GetLayout", {0, -1, QStringList()});
        return answer ? qdbus_cast<BusMenuLayout>((*answer)[1]) : BusMenuLayout();
    }
    bool isOnBus(const std::string& name) const {
        const auto names = bus_.call(QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                                    "org.freedesktop.DBus", "ListNames"));
        return names.arguments()[0].toStringList().contains(QString::fromStdString(name));
    }

    bool hasHost;
    std::vector<std::string> registered;

private:
    static constexpr const char* kName = "the test's watcher";
    Answers answers_;
    QDBusConnection bus_;
};

// A window in a tray.
class TestTrayWindow : public TrayWindow {
public:
    TestTrayWindow(std::vector<TestTrayWindow*>& all, TrayWindowUse itsUse) : use(std::move(itsUse)), all_(all) {
        all_.push_back(this);
    }
    ~TestTrayWindow() override { std::erase(all_, this); }
    void redraw() override { ++redrawn; }

    TrayWindowUse use;
    int redrawn = 0;

private:
    std::vector<TestTrayWindow*>& all_;
};

class QtStatusBarTest : public QtTest {
protected:
    QtStatusBarTest() {
        registerBusMenuTypes();
        registerNotifierTypes();
        item->setButton({"wind", "Tarvix", "the label", "Tarvix", "the help"});
        item->setMenu(firstMenu(), [this](Menu& menu) {
            ++openings;
            menu[1].title = "opened " + std::to_string(openings);
        });
    }

    Menu firstMenu() {
        MenuItem settings, opened, version;
        settings.title = "Settings...";
        settings.keyEquivalent = ",";
        settings.action = [this] { ++timesChosen; };
        opened.title = "never opened";
        version.title = "Tarvix 1";
        opened.submenu = {version};
        return {settings, opened, version};
    }

    bool isInTray() const { return !windows.empty(); }
    static QMenu* popUp() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }
    static QStringList labels(const BusMenuLayout& layout) {
        QStringList found;
        for (const QDBusVariant& each : layout.children) {
            const auto child = qdbus_cast<BusMenuLayout>(each.variant());
            found << child.properties["label"].toString();
        }
        return found;
    }

    TestAppearance appearance;
    std::vector<TestTrayWindow*> windows;
    QtStatusBar bar{appearance,
                    [this](TrayWindowUse use) { return std::make_unique<TestTrayWindow>(windows, std::move(use)); }};
    std::unique_ptr<StatusItem> item = bar.makeStatusItem();
    int openings = 0, timesChosen = 0;
};

TEST_F(QtStatusBarTest, IsNowhereUntilItIsVisible) {
    TestWatcher watcher;
    drain();
    EXPECT_FALSE(isInTray());
    EXPECT_THAT(watcher.registered, IsEmpty());
    item->setVisible(true);
    EXPECT_TRUE(runUntil([&] { return watcher.registered.size() == 1; }));
    EXPECT_FALSE(isInTray());
}

TEST_F(QtStatusBarTest, WithoutAWatcherItIsInTheTray) {
    item->setVisible(true);
    ASSERT_TRUE(runUntil([&] { return isInTray(); }));
    EXPECT_EQ(windows.front()->use.title, "Tarvix");
    item->setVisible(false);
    EXPECT_FALSE(isInTray()) << "at once";
}

TEST_F(QtStatusBarTest, MovesToAWatcherThatComesAndBackWhenItGoes) {
    item->setVisible(true);
    ASSERT_TRUE(runUntil([&] { return isInTray(); }));
    for (int times = 0; times < 2; ++times) {
        {
            TestWatcher watcher;
            ASSERT_TRUE(runUntil([&] { return watcher.registered.size() == 1; }));
            EXPECT_FALSE(isInTray());
        }
        ASSERT_TRUE(runUntil([&] { return isInTray(); }));
        EXPECT_EQ(windows.size(), 1u);
    }
}

TEST_F(QtStatusBarTest, AWatcherThatNobodyShowsAnythingForDoesntCount) {
    TestWatcher watcher(TestWatcher::Answers::yes, false);
    item->setVisible(true);
    ASSERT_TRUE(runUntil([&] { return isInTray(); }));
    watcher.setHasHost(true);
    ASSERT_TRUE(runUntil([&] { return watcher.registered.size() == 1; }));
    EXPECT_FALSE(isInTray());
    watcher.setHasHost(false);
    EXPECT_TRUE(runUntil([&] { return isInTray(); }));
    EXPECT_TRUE(runUntil([&] { return !watcher.isOnBus(watcher.registered[0]); }));
}

// The watcher is in this thread, so that whoever waited for its answer would wait for ever.
TEST_F(QtStatusBarTest, AFrozenWatcherKeepsNobodyWaiting) {
    TestWatcher watcher(TestWatcher::Answers::no);
    const auto later = bar.makeStatusItem();
    later->setVisible(true);
    EXPECT_FALSE(isInTray());
    EXPECT_TRUE(runUntil([&] { return isInTray(); }));
    EXPECT_THAT(watcher.registered, IsEmpty());
}

TEST_F(QtStatusBarTest, AWatcherThatRefusesLeavesItToTheTray) {
    TestWatcher watcher(TestWatcher::Answers::withRefusal);
    item->setVisible(true);
    EXPECT_TRUE(runUntil([&] { return watcher.registered.size() == 1 && isInTray(); }));
}

TEST_F(QtStatusBarTest, WhereAnotherHasItsNameOnTheBusItIsLeftToTheTray) {
    TestWatcher watcher;
    item->setVisible(true);
    ASSERT_TRUE(runUntil([&] { return watcher.registered.size() == 1; }));
    const QString name = QString::fromStdString(watcher.registered[0]);
    const int number = name.section('-', -1).toInt();
    QDBusConnection other = QDBusConnection::connectToBus(QDBusConnection::SessionBus, "another program");
    EXPECT_TRUE(other.registerService(name.section('-', 0, -2) + "-" + QString::number(number + 1)));
    item->setButton({"wind", "Tarvix", "the label", "Tarvix", "the help"});  // shown anew, under the next name
    EXPECT_TRUE(runUntil([&] { return isInTray(); }));
    EXPECT_EQ(watcher.registered.size(), 1u) << "the other's item would have been registered";
    QDBusConnection::disconnectFromBus("another program");
}

TEST_F(QtStatusBarTest, HiddenItIsOffTheBus) {
    TestWatcher watcher;
    item->setVisible(true);
    ASSERT_TRUE(runUntil([&] { return watcher.registered.size() == 1; }));
    ASSERT_TRUE(watcher.isOnBus(watcher.registered[0]));
    item->setVisible(false);
    EXPECT_TRUE(runUntil([&] { return !watcher.isOnBus(watcher.registered[0]); }));
    item->setVisible(true);
    ASSERT_TRUE(runUntil([&] { return watcher.registered.size() == 2; }));
    EXPECT_NE(watcher.registered[0], watcher.registered[1]);
}

TEST_F(QtStatusBarTest, TellsAPanelWhatItIs) {
    TestWatcher watcher;
    item->setVisible(true);
    ASSERT_TRUE(runUntil([&] { return watcher.registered.size() == 1; }));
    EXPECT_EQ(watcher.property("Title"), "Tarvix");
    EXPECT_EQ(watcher.property("Status"), "Active");
    EXPECT_EQ(watcher.property("IconAccessibleDesc"), "the label");
    EXPECT_EQ(watcher.property("ItemIsMenu"), true);
    const auto toolTip = qdbus_cast<NotifierToolTip>(watcher.property("ToolTip"));
    EXPECT_EQ(toolTip.title, "Tarvix");
    EXPECT_EQ(toolTip.text, "the help");
    EXPECT_FALSE(watcher.property("NoSuchProperty").isValid());
    const auto all = watcher.ask(kItemPath, "org.freedesktop.DBus.Properties", "GetAll", {kItem});
    ASSERT_TRUE(all);
    EXPECT_EQ(qdbus_cast<QVariantMap>(all->first()).value("Category"), "ApplicationStatus");
}

TEST_F(QtStatusBarTest, ItsPixmapsFollowTheAppearance) {
    TestWatcher watcher;
    item->setVisible(true);
    ASSERT_TRUE(runUntil([&] { return watcher.registered.size() == 1; }));
    const auto lightest = [&] {
        int most = 0;
        for (const auto& each : qdbus_cast<NotifierPixmaps>(watcher.property("IconPixmap"))) {
            EXPECT_EQ(each.pixels.size(), each.width * each.height * 4);
            for (qsizetype pixel = 0; pixel + 3 < each.pixels.size(); pixel += 4)
                if (static_cast<uchar>(each.pixels[pixel]) == 255)  // the lines
                    most = std::max<int>(most, static_cast<uchar>(each.pixels[pixel + 1]));
        }
        return most;
    };
    EXPECT_LT(lightest(), 128);
    appearance.change({.isDark = true, .accent = {}, .selection = {}, .scale = 1});
    EXPECT_GT(lightest(), 200);
}

TEST_F(QtStatusBarTest, TheMenuIsBroughtUpToDateBeforeEachOpening) {
    TestWatcher watcher;
    item->setVisible(true);
    ASSERT_TRUE(runUntil([&] { return watcher.registered.size() == 1; }));
    const int before = openings;
    const auto needsUpdate = watcher.ask("/MenuBar", kMenu, "AboutToShow", {0});
    ASSERT_TRUE(needsUpdate);
    EXPECT_EQ(needsUpdate->first(), true);
    EXPECT_EQ(openings, before + 1);
    const QStringList shown = labels(watcher.layout());
    EXPECT_EQ(shown, (QStringList{"Settings...", "opened " + QString::number(openings), "Tarvix 1"}));
    EXPECT_EQ(watcher.ask("/MenuBar", kMenu, "AboutToShow", {2})->first(), false) << "a submenu";
    EXPECT_FALSE(watcher.ask("/MenuBar", kMenu, "AboutToShow", {99}));
    const auto group = watcher.ask("/MenuBar", kMenu, "AboutToShowGroup", {QVariant::fromValue(QList<int>{0, 99})});
    ASSERT_TRUE(group);
    EXPECT_EQ(qdbus_cast<QList<int>>((*group)[0]), QList<int>{0});
    EXPECT_EQ(qdbus_cast<QList<int>>((*group)[1]), QList<int>{99});
}

TEST_F(QtStatusBarTest, AClickInThePanelsMenuRunsTheAction) {
    TestWatcher watcher;
    item->setVisible(true);
    ASSERT_TRUE(runUntil([&] { return watcher.registered.size() == 1; }));
    const auto event = [&](int id, const char* what) {
        return watcher.ask("/MenuBar", kMenu, "Event", {id, what, QVariant::fromValue(QDBusVariant("")), uint{0}})
            .has_value();
    };
    EXPECT_TRUE(event(1, "hovered"));
    EXPECT_TRUE(event(3, "clicked")) << "without an action";
    EXPECT_FALSE(event(99, "clicked"));
    EXPECT_FALSE(event(-1, "clicked"));
    EXPECT_TRUE(event(1, "clicked"));
    EXPECT_TRUE(runUntil([&] { return timesChosen == 1; }));
    const QList<BusMenuEvent> several{{1, "clicked", QDBusVariant(""), 0}, {99, "clicked", QDBusVariant(""), 0}};
    const auto answer = watcher.ask("/MenuBar", kMenu, "EventGroup", {QVariant::fromValue(several)});
    ASSERT_TRUE(answer);
    EXPECT_EQ(qdbus_cast<QList<int>>(answer->first()), QList<int>{99});
    EXPECT_TRUE(runUntil([&] { return timesChosen == 2; }));
}

TEST_F(QtStatusBarTest, CallsThatMakeNoSenseAreRefused) {
    TestWatcher watcher;
    item->setVisible(true);
    ASSERT_TRUE(runUntil([&] { return watcher.registered.size() == 1; }));
    EXPECT_FALSE(watcher.ask("/MenuBar", kMenu, "GetLayout", {0}));
    EXPECT_FALSE(watcher.ask("/MenuBar", kMenu, "GetLayout", {"zero", -1, QStringList()}));
    EXPECT_FALSE(watcher.ask("/MenuBar", kMenu, "GetLayout", {1000000, -1, QStringList()}));
    EXPECT_FALSE(watcher.ask("/MenuBar", kMenu, "NoSuchMethod", {}));
    EXPECT_FALSE(watcher.ask(kItemPath, kItem, "Activate", {}));
    EXPECT_FALSE(watcher.ask(kItemPath, "org.freedesktop.DBus.Properties", "Get", {kItem}));
    EXPECT_FALSE(watcher.ask(kItemPath, "org.freedesktop.DBus.Properties", "Set",
                             {kItem, "Title", QVariant::fromValue(QDBusVariant("Other"))}));
    EXPECT_TRUE(watcher.ask(kItemPath, kItem, "Scroll", {1, "vertical"}));
    EXPECT_EQ(watcher.layout().children.size(), 3);
}

TEST_F(QtStatusBarTest, APanelMayAskForTheMenuToOpen) {
    TestWatcher watcher;
    item->setVisible(true);
    ASSERT_TRUE(runUntil([&] { return watcher.registered.size() == 1; }));
    for (const char* method : {"Activate", "ContextMenu"}) {
        ASSERT_TRUE(watcher.ask(kItemPath, kItem, method, {300, 300}));
        ASSERT_TRUE(runUntil([&] { return popUp() != nullptr; })) << method;
        EXPECT_EQ(popUp()->actions()[1]->text().toStdString(), "opened " + std::to_string(openings));
        popUp()->close();
    }
}

TEST_F(QtStatusBarTest, AClickInTheTrayOpensTheMenuBesideTheIcon) {
    item->setVisible(true);
    ASSERT_TRUE(runUntil([&] { return isInTray(); }));
    for (const int button : {1, 3}) {
        windows.front()->use.clicked(button, {{200, 1050}, {24, 24}});
        ASSERT_TRUE(runUntil([&] { return popUp() && popUp()->isVisible(); })) << button;
        const QList<QAction*> entries = popUp()->actions();
        ASSERT_EQ(entries.size(), 3);
        EXPECT_EQ(entries[0]->text(), "Settings...");
        EXPECT_EQ(entries[0]->shortcut(), QKeySequence("Meta+,"));
        EXPECT_EQ(entries[1]->text().toStdString(), "opened " + std::to_string(openings));
        EXPECT_FALSE(entries[2]->isEnabled());
        EXPECT_LE(popUp()->geometry().bottom(), 1050);
        EXPECT_EQ(popUp()->geometry().left(), 200);
        entries[0]->trigger();
        EXPECT_EQ(timesChosen, button == 1 ? 0 : 1) << "in a later pass";
        EXPECT_TRUE(runUntil([&] { return timesChosen == (button == 1 ? 1 : 2); }));
        popUp()->close();
    }
}

TEST_F(QtStatusBarTest, HidingTheItemClosesItsMenu) {
    item->setVisible(true);
    ASSERT_TRUE(runUntil([&] { return isInTray(); }));
    windows.front()->use.clicked(1, {{200, 0}, {24, 24}});
    ASSERT_TRUE(runUntil([&] { return popUp() != nullptr; }));
    EXPECT_GE(popUp()->geometry().top(), 24);
    item->setVisible(false);
    EXPECT_EQ(popUp(), nullptr);
}

TEST_F(QtStatusBarTest, AMiddleClickTakesItAwayOnlyWhereTheUserMay) {
    constexpr int middle = 2;
    item->setVisible(true);
    ASSERT_TRUE(runUntil([&] { return isInTray(); }));
    windows.front()->use.clicked(middle, {{200, 0}, {24, 24}});
    drain();
    EXPECT_TRUE(isInTray());
    EXPECT_EQ(popUp(), nullptr);
    item->setBehavior(StatusItemBehavior::removalAllowed);
    windows.front()->use.clicked(middle, {{200, 0}, {24, 24}});
    EXPECT_TRUE(runUntil([&] { return !isInTray(); }));
    appearance.change({.isDark = true, .accent = {}, .selection = {}, .scale = 1});
    drain();
    EXPECT_FALSE(isInTray());
    item->setVisible(true);
    EXPECT_TRUE(isInTray());
}

TEST_F(QtStatusBarTest, OnTheBusAMiddleClickDoesTheSame) {
    TestWatcher watcher;
    item->setVisible(true);
    ASSERT_TRUE(runUntil([&] { return watcher.registered.size() == 1; }));
    ASSERT_TRUE(watcher.ask(kItemPath, kItem, "SecondaryActivate", {0, 0}));
    drain();
    EXPECT_TRUE(watcher.isOnBus(watcher.registered[0]));
    item->setBehavior(StatusItemBehavior::removalAllowed);
    ASSERT_TRUE(watcher.ask(kItemPath, kItem, "SecondaryActivate", {0, 0}));
    EXPECT_TRUE(runUntil([&] { return !watcher.isOnBus(watcher.registered[0]); }));
    EXPECT_FALSE(isInTray());
}

TEST_F(QtStatusBarTest, TheWindowsPictureFitsItsGround) {
    item->setVisible(true);
    ASSERT_TRUE(runUntil([&] { return isInTray(); }));
    const auto& use = windows.front()->use;
    const auto lightest = [](const TrayPicture& picture) {
        std::uint32_t most = 0;
        for (const std::uint32_t pixel : picture)
            if (pixel >> 24 == 255) most = std::max(most, pixel & 0xff);
        return most;
    };
    EXPECT_EQ(use.draw(30, 22, std::nullopt).size(), 30u * 22u);
    EXPECT_LT(lightest(use.draw(22, 22, Color{1, 1, 1, 1})), 128u);
    EXPECT_GT(lightest(use.draw(22, 22, Color{0, 0, 0, 1})), 200u);
    EXPECT_LT(lightest(use.draw(22, 22, std::nullopt)), 128u);
    appearance.change({.isDark = true, .accent = {}, .selection = {}, .scale = 1});
    EXPECT_EQ(windows.front()->redrawn, 1);
    EXPECT_GT(lightest(use.draw(22, 22, std::nullopt)), 200u);
}

}  // namespace
}  // namespace tarvix
