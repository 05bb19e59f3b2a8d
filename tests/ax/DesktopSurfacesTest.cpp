// What is found in menu bar, status items, notifications and dock.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "ax/AXEngine2.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::string>;
using Elements = OrderedSet<AccessibilityElement>;

// Statuses that stand for everything but success.
constexpr AxStatus kFailures[] = {AxStatus::noValue,        AxStatus::attributeUnsupported, AxStatus::cannotComplete,
                                  AxStatus::invalidElement, AxStatus::apiDisabled,          AxStatus::failure};

// Values that are no list of elements.
std::vector<AxValue> noLists(const UIElement& element) {
    return {std::monostate(), std::int64_t{3}, "text", element, AxRect{}, std::vector<UIElement>()};
}

SimulatedElement item(const std::string& title, double x, const std::string& role = "AXMenuBarItem") {
    return {.role = role, .title = title, .frame = {{x, 0}, {40, 24}}};
}

SimulatedElement described(SimulatedElement element, const std::string& roleDescription) {
    element.attributes.emplace(ax::roleDescription, roleDescription);
    return element;
}

Texts titles(const Elements& elements) {
    Texts all;
    for (const AccessibilityElement& element : elements) all.push_back(element.title.value_or("-"));
    return all;
}

Texts descriptions(const Elements& elements) {
    Texts all;
    for (const AccessibilityElement& element : elements) all.push_back(element.roleDescription);
    return all;
}

class DesktopSurfaces : public testing::Test {
protected:
    UIElement application(std::int32_t pid) { return service_.application(pid); }
    UIElement child(const UIElement& of, std::size_t n) { return service_.child(of, n); }
    void makeChildren(const UIElement& of, std::string_view attribute, std::vector<UIElement> children) {
        service_.set(of, attribute, std::move(children));
    }

    SimulatedDesktop desk_;
    SimulatedAccessibility& service_ = desk_.accessibility;
    AXEngine2 engine_{desk_.platform()};
};

// --- The menu bar.

class AppMenus : public DesktopSurfaces {
protected:
    Texts found() { return titles(engine_.appMenuElements()); }

    SimulatedWindow editor_ = desk_.window("Editor");
    UIElement bar_ = desk_.addMenuBar(editor_.pid, {item("Apple", 0), item("File", 40), item("Edit", 80)});
};

TEST_F(AppMenus, AreTheBarsItemsFromTheFirstOneOnInTheirOrder) {
    EXPECT_THAT(found(), ElementsAre("Apple", "File", "Edit"));
}

TEST_F(AppMenus, AreNoneWhereNobodyOwnsTheMenuBar) {
    desk_.workspace.setMenuBarOwner(std::nullopt);
    service_.forgetReads();
    EXPECT_THAT(found(), IsEmpty());
    EXPECT_THAT(service_.reads(), IsEmpty());
    EXPECT_EQ(service_.readsAhead(), 0u);
}

TEST_F(AppMenus, AreThoseOfTheOwnerAndNotOfTheFrontmostApplication) {
    const SimulatedWindow panel = desk_.window("Panel");
    desk_.addMenuBar(panel.pid, {item("Other", 0)});
    desk_.workspace.setMenuBarOwner(editor_.pid);
    EXPECT_THAT(found(), ElementsAre("Apple", "File", "Edit"));
}

TEST_F(AppMenus, AreTakenWhateverTheirRoleFrameAndTexts) {
    service_.add(bar_, {.role = "AXGroup", .frame = {{-500, -500}, {0, 0}}});
    service_.add(bar_, {.role = "AXImage", .title = "far", .frame = {{9000, 9000}, {5, 5}}});
    EXPECT_THAT(found(), ElementsAre("Apple", "File", "Edit", "-", "far"));
}

TEST_F(AppMenus, AreTheTopLevelOnly) {
    service_.add(child(bar_, 1), {.role = "AXMenu", .title = "menu", .frame = {{40, 24}, {200, 300}}});
    service_.forgetReads();
    EXPECT_THAT(found(), ElementsAre("Apple", "File", "Edit"));
    EXPECT_EQ(service_.readsOf(child(bar_, 1)), 1u) << "one read for each item";
}

TEST_F(AppMenus, AnItemThatCannotBeReadIsSkipped) {
    service_.failReads(child(bar_, 1), AxStatus::cannotComplete);
    EXPECT_THAT(found(), ElementsAre("Apple", "Edit"));
}

TEST_F(AppMenus, AnItemThatHasGoneMeanwhileIsSkipped) {
    makeChildren(bar_, ax::children, {child(bar_, 0), child(bar_, 1), child(bar_, 2)});
    service_.remove(child(bar_, 0));
    EXPECT_THAT(found(), ElementsAre("File", "Edit"));
}

TEST_F(AppMenus, AreNoneIfTheBarCannotBeRead) {
    for (const AxStatus status : kFailures) {
        service_.setStatus(application(editor_.pid), ax::menuBar, status);
        EXPECT_THAT(found(), IsEmpty());
    }
    service_.set(application(editor_.pid), ax::menuBar, "no element");
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(AppMenus, AreNoneIfTheBarHasNoList) {
    for (const AxStatus status : kFailures) {
        service_.setStatus(bar_, ax::children, status);
        EXPECT_THAT(found(), IsEmpty());
    }
    for (const AxValue& value : noLists(editor_.element)) {
        service_.set(bar_, ax::children, value);
        EXPECT_THAT(found(), IsEmpty());
    }
}

TEST_F(AppMenus, AreNotAskedUnderAnotherName) {
    service_.setStatus(bar_, ax::children, AxStatus::attributeUnsupported);
    EXPECT_THAT(found(), IsEmpty()) << "the visible children are no substitute";
}

TEST_F(AppMenus, OfAnApplicationThatHasQuitOrHangsAreNone) {
    service_.hang(editor_.pid);
    EXPECT_THAT(found(), IsEmpty());
    service_.hang(editor_.pid, false);
    service_.quit(editor_.pid);
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(AppMenus, OfTwoEqualItemsTheFirstStays) {
    service_.add(bar_, item("twin", 40));
    EXPECT_THAT(found(), ElementsAre("Apple", "File", "Edit"));
}

TEST_F(AppMenus, AreReadAheadInOneGo) {
    service_.forgetReads();
    found();
    EXPECT_EQ(service_.readsAhead(), 1u);
}

// --- Status items.

class StatusItems : public DesktopSurfaces {
protected:
    Elements found() { return engine_.statusItemElements(windowList_.empty() ? onScreen() : windowList_); }
    std::vector<WindowInfo> onScreen() { return *desk_.windowServer.onScreenWindows(); }
    // Which applications were visited, in order, by the reads of their bars.
    std::vector<UIElement> visited() const {
        std::vector<UIElement> owners;
        for (const auto& read : service_.reads())
            if (read.names == Texts{"AXExtrasMenuBar"}) owners.push_back(read.element);
        return owners;
    }

    std::vector<WindowInfo> windowList_;  // empty: what the window server says
};

TEST_F(StatusItems, AreSortedFromLeftToRight) {
    desk_.addStatusItems(desk_.launchInBackground("Clock"),
                         {item("right", 300), item("left", 100), item("middle", 200)});
    EXPECT_THAT(titles(found()), ElementsAre("left", "middle", "right"));
}

TEST_F(StatusItems, OfSeveralApplicationsAreSortedTogether) {
    desk_.addStatusItems(desk_.launchInBackground("Clock"), {item("3", 300), item("1", 100)});
    desk_.addStatusItems(desk_.launchInBackground("Volume"), {item("4", 400), item("2", 200)});
    EXPECT_THAT(titles(found()), ElementsAre("1", "2", "3", "4"));
}

TEST_F(StatusItems, AtOnePlaceKeepTheOrderInWhichTheyWereRead) {
    desk_.addStatusItems(desk_.launchInBackground("Clock"),
                         {item("z", 100, "AXMenuBarItem"), item("a", 100, "AXButton"), item("m", 100, "AXImage")});
    EXPECT_THAT(titles(found()), ElementsAre("z", "a", "m"));
}

TEST_F(StatusItems, AreStillFoundInTheSetOnceItIsSorted) {
    desk_.addStatusItems(desk_.launchInBackground("Clock"), {item("b", 300), item("a", 100), item("c", 500)});
    const Elements items = found();
    for (const AccessibilityElement& each : items) EXPECT_TRUE(items.contains(each));
    Elements again = items;
    again.unite(items);
    EXPECT_EQ(again.size(), 3u);
}

TEST_F(StatusItems, OfOneApplicationWithTwoAreVisitedOnceAndBothBearItsName) {
    const std::int32_t volume = desk_.launchInBackground("Volume");
    const SimulatedWindow bar = desk_.addStatusItems(
        volume, {described(item("loud", 100), "status menu"), described(item("quiet", 200), "button")});
    windowList_ = onScreen();
    windowList_.push_back({99, volume, "Volume", 25, {{900, 0}, {30, 24}}});
    service_.forgetReads();
    EXPECT_THAT(descriptions(found()), ElementsAre("Volume status menu", "Volume button"));
    EXPECT_THAT(visited(), ElementsAre(application(volume)));
    EXPECT_EQ(service_.readsAhead(), 1u);
}

TEST_F(StatusItems, WithoutARoleDescriptionBearTheNameAndABlank) {
    desk_.addStatusItems(desk_.launchInBackground("Clock"), {item("12:00", 100)});
    EXPECT_THAT(descriptions(found()), ElementsAre("Clock "));
}

TEST_F(StatusItems, OfAnOwnerWithoutNameKeepTheirRoleDescription) {
    const std::int32_t nameless = desk_.launchInBackground("Clock");
    desk_.addStatusItems(nameless, {described(item("12:00", 100), "status menu")});
    desk_.workspace.launch({nameless, std::nullopt, ""});
    EXPECT_THAT(descriptions(found()), ElementsAre("status menu"));
}

TEST_F(StatusItems, OfAnOwnerThatIsNoRunningApplicationKeepTheirRoleDescription) {
    const std::int32_t clock = desk_.launchInBackground("Clock");
    desk_.addStatusItems(clock, {described(item("12:00", 100), "status menu")});
    desk_.workspace.quit(clock);
    EXPECT_THAT(descriptions(found()), ElementsAre("status menu"));
    desk_.faults.fail("runningApplication");
    EXPECT_THAT(descriptions(found()), ElementsAre("status menu"));
}

TEST_F(StatusItems, AreLookedForOnlyAtTheOwnersOfWindowsInTheirLayerFromTheLeftEdgeOn) {
    const auto with = [&](const std::string& name, int layer, double x) {
        const std::int32_t pid = desk_.launchInBackground(name);
        desk_.addStatusItems(pid, {item(name, 100.0 + pid)});
        windowList_.push_back({static_cast<std::uint32_t>(pid), pid, name, layer, {{x, 0}, {30, 24}}});
        return pid;
    };
    with("below", 24, 100);
    const std::int32_t at = with("at", 25, 0);
    with("above", 26, 100);
    with("left", 25, -0.5);
    with("ordinary", 0, 100);
    const std::int32_t right = with("right", 25, 5000);
    service_.forgetReads();
    EXPECT_THAT(titles(found()), ElementsAre("at", "right"));
    EXPECT_THAT(visited(), testing::UnorderedElementsAre(application(at), application(right)));
}

TEST_F(StatusItems, AWindowWithoutOwnerIsSkipped) {
    desk_.addStatusItems(desk_.launchInBackground("Clock"), {item("12:00", 100)});
    windowList_ = onScreen();
    windowList_.insert(windowList_.begin(), {98, -1, "", 25, {{900, 0}, {30, 24}}});
    service_.forgetReads();
    EXPECT_THAT(titles(found()), ElementsAre("12:00"));
    EXPECT_EQ(visited().size(), 1u);
}

TEST_F(StatusItems, AtTheLeftEdgeOfTheMainScreenOrLeftOfItAreNone) {
    desk_.screens.main = PanelRect{{1600, 0}, {1600, 1000}};
    desk_.addStatusItems(desk_.launchInBackground("Clock"), {item("left screen", 900), item("edge", 1600),
                                                             item("inside", 1600.5), item("right screen", 3300)});
    EXPECT_THAT(titles(found()), ElementsAre("inside", "right screen"));
}

TEST_F(StatusItems, OnAScreenLeftOfTheMainOneAreNoneAndOnesAboveOrBelowAre) {
    desk_.screens.main = PanelRect{{0, 0}, {1600, 1000}};
    SimulatedElement above = item("above", 500);
    above.frame.origin.y = -900;
    desk_.addStatusItems(desk_.launchInBackground("Clock"), {item("left", -300), above});
    EXPECT_THAT(titles(found()), ElementsAre("above"));
}

TEST_F(StatusItems, WithoutAPlaceAreNone) {
    SimulatedElement lost = item("lost", std::numeric_limits<double>::quiet_NaN());
    const SimulatedWindow bar =
        desk_.addStatusItems(desk_.launchInBackground("Clock"), {lost, item("unplaced", 300), item("12:00", 100)});
    service_.setStatus(child(bar.element, 1), ax::position, AxStatus::noValue);
    EXPECT_THAT(titles(found()), ElementsAre("12:00"));
}

TEST_F(StatusItems, WithoutAMainScreenAreNone) {
    desk_.addStatusItems(desk_.launchInBackground("Clock"), {item("12:00", 100)});
    desk_.screens.main = std::nullopt;
    EXPECT_THAT(found(), IsEmpty());
}

// Screens that lose their main screen after the first question.
class FleetingScreens : public SimulatedScreens {
public:
    std::optional<PanelRect> mainFrame() override { return asked++ == 0 ? main : std::nullopt; }
    int asked = 0;
};

TEST_F(StatusItems, TheMainScreenIsAskedForAnewForEach) {
    desk_.addStatusItems(desk_.launchInBackground("Clock"),
                         {item("first", 300), item("second", 100), item("third", 200)});
    FleetingScreens screens;
    const Platform on = desk_.platform();
    const AXEngine2 engine({on.accessibility, on.application, on.workspace, on.windowServer, screens, on.events,
                            on.eventTaps, on.hotKeys, on.inputSources, on.panels, on.runLoop, on.userDefaults,
                            on.pasteboard, on.notificationCenter, on.milestones, on.statusBar, on.loginItems,
                            on.updater});
    EXPECT_THAT(titles(engine.statusItemElements(onScreen())), ElementsAre("first"));
    EXPECT_EQ(screens.asked, 3);
}

TEST_F(StatusItems, OneThatCannotBeReadIsSkipped) {
    const SimulatedWindow bar =
        desk_.addStatusItems(desk_.launchInBackground("Clock"), {item("a", 100), item("b", 200), item("c", 300)});
    service_.failReads(child(bar.element, 1), AxStatus::cannotComplete);
    EXPECT_THAT(titles(found()), ElementsAre("a", "c"));
}

TEST_F(StatusItems, AnOwnerThatFailsCostsNoMoreThanItsOwn) {
    const std::int32_t clock = desk_.launchInBackground("Clock");
    const SimulatedWindow bar = desk_.addStatusItems(clock, {item("12:00", 100)});
    desk_.addStatusItems(desk_.launchInBackground("Volume"), {item("loud", 200)});
    desk_.addStatusItems(desk_.launchInBackground("Battery"), {item("full", 50)});
    EXPECT_THAT(titles(found()), ElementsAre("full", "12:00", "loud"));
    for (const AxValue& value : noLists(bar.element)) {
        service_.set(bar.element, ax::children, value);
        EXPECT_THAT(titles(found()), ElementsAre("full", "loud"));
    }
    for (const AxStatus status : kFailures) {
        service_.setStatus(bar.element, ax::children, status);
        EXPECT_THAT(titles(found()), ElementsAre("full", "loud"));
    }
    for (const AxStatus status : kFailures) {
        service_.setStatus(application(clock), ax::extrasMenuBar, status);
        EXPECT_THAT(titles(found()), ElementsAre("full", "loud"));
    }
    service_.set(application(clock), ax::extrasMenuBar, std::monostate());
    EXPECT_THAT(titles(found()), ElementsAre("full", "loud"));
    service_.hang(clock);
    EXPECT_THAT(titles(found()), ElementsAre("full", "loud"));
    service_.quit(clock);
    EXPECT_THAT(titles(found()), ElementsAre("full", "loud"));
}

TEST_F(StatusItems, AreOneByRoleAndFrameWhateverTheNameInFront) {
    desk_.addStatusItems(desk_.launchInBackground("Clock"), {item("12:00", 100)});
    desk_.addStatusItems(desk_.launchInBackground("Other clock"), {item("noon", 100)});
    windowList_ = onScreen();  // front to back, so that the newer window comes first
    EXPECT_THAT(descriptions(found()), ElementsAre("Other clock "));
}

TEST_F(StatusItems, OfAnEmptyWindowListAreNone) {
    desk_.addStatusItems(desk_.launchInBackground("Clock"), {item("12:00", 100)});
    service_.forgetReads();
    EXPECT_THAT(engine_.statusItemElements({}), IsEmpty());
    EXPECT_THAT(service_.reads(), IsEmpty());
}

TEST_F(StatusItems, AreTheTopLevelOnlyWhateverTheirRole) {
    desk_.addStatusItems(
        desk_.launchInBackground("Clock"),
        {{.role = "AXGroup", .title = "group", .frame = {{100, 0}, {0, 0}}, .children = {item("in it", 100)}}});
    EXPECT_THAT(titles(found()), ElementsAre("group"));
}

// --- Notifications.

class Notifications : public DesktopSurfaces {
protected:
    Texts found() { return titles(engine_.notificationElements()); }
    SimulatedWindow notify(const std::string& title, double y) {
        return desk_.addNotification({{1200, y}, {380, 80}},
                                     {{.role = "AXStaticText", .title = title, .frame = {{1210, y + 10}, {300, 20}}},
                                      {.role = "AXButton", .title = title + "!", .frame = {{1210, y + 40}, {80, 20}}}});
    }
    std::int32_t process() {
        return desk_.workspace.runningApplications("com.apple.notificationcenterui").front().processIdentifier;
    }
};

TEST_F(Notifications, AreNoneWithoutTheirProcess) {
    EXPECT_THAT(found(), IsEmpty());
    EXPECT_THAT(service_.reads(), IsEmpty());
}

TEST_F(Notifications, AreWalkedOneAfterAnother) {
    notify("mail", 30);
    notify("build", 130);
    EXPECT_THAT(found(), ElementsAre("mail", "mail!", "build", "build!"));
}

TEST_F(Notifications, AreWalkedByTheRulesOfAWalk) {
    SimulatedWindow window = notify("mail", 30);
    window.add({.role = "AXGroup",
                .frame = {{1210, 40}, {300, 60}},
                .children = {{.role = "AXButton", .title = "deep", .frame = {{1400, 70}, {80, 20}}},
                             {.role = "AXStaticText", .title = "flat", .frame = {{1400, 50}, {80, 1}}}}});
    EXPECT_THAT(found(), ElementsAre("mail", "mail!", "deep"));
}

TEST_F(Notifications, WhatLiesOutsideOfItsWindowIsLeftOut) {
    SimulatedWindow window = notify("mail", 30);
    window.button("left of it", {{1100, 40}, {50, 20}})
        .button("in the other one", {{1210, 180}, {50, 20}})
        .button("half in it", {{1190, 40}, {50, 20}});
    notify("build", 130);
    EXPECT_THAT(found(), ElementsAre("mail", "mail!", "half in it", "build", "build!"));
}

TEST_F(Notifications, OneThatCannotSayWhereItIsEmptiesTheWholeList) {
    notify("mail", 30);
    const SimulatedWindow second = notify("build", 130);
    notify("chat", 230);
    service_.failReads(second.element, AxStatus::cannotComplete);
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(Notifications, OneThatHasGoneMeanwhileEmptiesTheWholeList) {
    const SimulatedWindow first = notify("mail", 30);
    const SimulatedWindow second = notify("build", 130);
    makeChildren(application(process()), ax::windows, {first.element, second.element});
    service_.remove(second.element);
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(Notifications, OneWhoseFrameReadsAsNothingIsNoFailure) {
    notify("mail", 30);
    const SimulatedWindow second = notify("build", 130);
    service_.setStatus(second.element, ax::position, AxStatus::noValue);
    service_.setStatus(second.element, ax::size, AxStatus::noValue);
    EXPECT_THAT(found(), ElementsAre("mail", "mail!"));
}

TEST_F(Notifications, OneWhoseContentsCannotBeReadIsEmptyAndNoMore) {
    notify("mail", 30);
    const SimulatedWindow second = notify("build", 130);
    notify("chat", 230);
    service_.failNthRead(second.element, 2, AxStatus::cannotComplete);  // after its frame
    EXPECT_THAT(found(), ElementsAre("mail", "mail!", "chat", "chat!"));
}

TEST_F(Notifications, AreNoneIfTheirWindowsCannotBeTold) {
    const SimulatedWindow window = notify("mail", 30);
    for (const AxStatus status : kFailures) {
        service_.setStatus(application(process()), ax::windows, status);
        EXPECT_THAT(found(), IsEmpty());
    }
    for (const AxValue& value : noLists(window.element)) {
        service_.set(application(process()), ax::windows, value);
        EXPECT_THAT(found(), IsEmpty());
    }
}

TEST_F(Notifications, AreThoseOfTheFirstOfSeveralProcesses) {
    notify("mail", 30);
    const std::int32_t second = desk_.launchInBackground("Second", "com.apple.notificationcenterui");
    desk_.addWindow(second, "", {{0, 0}, {100, 100}}).button("second", {{10, 10}, {20, 20}});
    EXPECT_THAT(found(), ElementsAre("mail", "mail!"));
}

TEST_F(Notifications, OfAProcessThatHangsAreNone) {
    notify("mail", 30);
    service_.hang(process());
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(Notifications, EqualElementsOfTwoAreOne) {
    notify("mail", 30);
    const SimulatedWindow over = desk_.addNotification(
        {{1200, 30}, {380, 80}}, {{.role = "AXButton", .title = "over it", .frame = {{1210, 70}, {80, 20}}}});
    EXPECT_THAT(found(), ElementsAre("mail", "mail!"));
}

TEST_F(Notifications, EachWindowIsReadAheadByItself) {
    notify("mail", 30);
    notify("build", 130);
    service_.forgetReads();
    found();
    EXPECT_EQ(service_.readsAhead(), 3u);
}

// --- The dock.

class Dock : public DesktopSurfaces {
protected:
    Texts found() { return titles(engine_.dockElements()); }

    static SimulatedElement dockItem(const std::string& title, double x) {
        return {.role = "AXDockItem", .title = title, .frame = {{x, 950}, {40, 40}}};
    }
    SimulatedWindow addDock() {
        return desk_.addDock({dockItem("Files", 500), dockItem("Mail", 420), dockItem("Bin", 600)});
    }
};

TEST_F(Dock, HasNoItemsWithoutItsProcess) {
    EXPECT_THAT(found(), IsEmpty());
    EXPECT_THAT(service_.reads(), IsEmpty());
}

TEST_F(Dock, ItsItemsAreThoseOfItsContainerInTheirOrder) {
    addDock();
    EXPECT_THAT(found(), ElementsAre("Files", "Mail", "Bin"));
}

TEST_F(Dock, OnlyTheFirstContainerCounts) {
    const SimulatedWindow dock = addDock();
    service_.add(application(dock.pid), {.role = "AXList", .children = {dockItem("elsewhere", 900)}});
    EXPECT_THAT(found(), ElementsAre("Files", "Mail", "Bin"));
}

TEST_F(Dock, AFirstContainerThatIsEmptyIsNotPassedOver) {
    const SimulatedWindow dock = addDock();
    const UIElement empty = service_.add(application(dock.pid), {.role = "AXList"});
    makeChildren(application(dock.pid), ax::visibleChildren, {empty, dock.element});
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(Dock, ItsItemsAreTakenWhateverTheirRoleFrameAndTexts) {
    const SimulatedWindow dock = addDock();
    service_.add(dock.element, {.role = "AXSplitter", .frame = {{0, 0}, {0, 0}}});
    EXPECT_THAT(found(), ElementsAre("Files", "Mail", "Bin", "-"));
}

TEST_F(Dock, ItsItemsAreTheTopLevelOnly) {
    const SimulatedWindow dock = addDock();
    service_.add(child(dock.element, 0), {.role = "AXMenu", .title = "menu", .frame = {{500, 700}, {200, 200}}});
    EXPECT_THAT(found(), ElementsAre("Files", "Mail", "Bin"));
}

TEST_F(Dock, AnItemThatCannotBeReadIsSkipped) {
    const SimulatedWindow dock = addDock();
    service_.failReads(child(dock.element, 0), AxStatus::cannotComplete);
    EXPECT_THAT(found(), ElementsAre("Mail", "Bin"));
}

TEST_F(Dock, HasNoItemsIfEitherListCannotBeRead) {
    const SimulatedWindow dock = addDock();
    for (const UIElement& of : {dock.element, application(dock.pid)}) {
        for (const AxStatus status : kFailures) {
            service_.setStatus(of, ax::visibleChildren, status);
            EXPECT_THAT(found(), IsEmpty());
        }
        for (const AxValue& value : noLists(dock.element)) {
            service_.set(of, ax::visibleChildren, value);
            EXPECT_THAT(found(), IsEmpty());
        }
        makeChildren(of, ax::visibleChildren, {child(dock.element, 0)});
    }
}

TEST_F(Dock, IsTheFirstOfSeveralProcesses) {
    addDock();
    desk_.addDock({dockItem("second", 700)});
    EXPECT_THAT(found(), ElementsAre("Files", "Mail", "Bin"));
}

TEST_F(Dock, WhichProcessItIsCanFail) {
    addDock();
    desk_.faults.fail("runningApplications");
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(Dock, ThatHangsOrHasQuitHasNoItems) {
    const SimulatedWindow dock = addDock();
    service_.hang(dock.pid);
    EXPECT_THAT(found(), IsEmpty());
    service_.hang(dock.pid, false);
    service_.quit(dock.pid);
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(Dock, OneReadForEachItem) {
    const SimulatedWindow dock = addDock();
    service_.forgetReads();
    found();
    EXPECT_EQ(service_.reads().size(), 2u + 3u);
    EXPECT_EQ(service_.readsAhead(), 1u);
}

// --- All four.

TEST_F(DesktopSurfaces, AreEmptyWithoutTheAccessibilityPrivilege) {
    const SimulatedWindow editor = desk_.window("Editor");
    desk_.addMenuBar(editor.pid, {item("File", 40)});
    desk_.addStatusItems(desk_.launchInBackground("Clock"), {item("12:00", 100)});
    desk_.addDock({item("Files", 500)});
    desk_.addNotification({{1200, 30}, {380, 80}}, {item("mail", 1210)});
    service_.trusted = false;
    EXPECT_THAT(engine_.appMenuElements(), IsEmpty());
    EXPECT_THAT(engine_.statusItemElements(*desk_.windowServer.onScreenWindows()), IsEmpty());
    EXPECT_THAT(engine_.notificationElements(), IsEmpty());
    EXPECT_THAT(engine_.dockElements(), IsEmpty());
}

}  // namespace
}  // namespace tarvix
