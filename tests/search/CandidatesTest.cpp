#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "search/SearchEngine.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using Titles = std::vector<std::string>;

class Candidates : public testing::Test {
protected:
    Titles titles(std::int32_t pid) {
        Titles all;
        for (const AccessibilityElement& element : engine_.candidates(pid)) all.push_back(element.title.value_or("-"));
        return all;
    }
    static SimulatedElement control(const std::string& title, double x, std::string_view attribute, std::string value) {
        return {.role = "AXButton",
                .title = title,
                .frame = {{x, 0}, {20, 20}},
                .attributes = {{std::string(attribute), std::move(value)}}};
    }

    SimulatedDesktop desk_;
    SearchEngine engine_{desk_.platform()};
    SimulatedWindow window_ = desk_.window("Mail");
};

TEST_F(Candidates, TheWindowsElementsInTheOrderOfItsTree) {
    window_.button("Send", {{30, 0}, {20, 20}}).button("Archive", {{0, 0}, {20, 20}});
    EXPECT_EQ(titles(window_.pid), (Titles{"Send", "Archive"}));
}

TEST_F(Candidates, WithoutAWindowListThereIsNothingAndNothingIsRead) {
    window_.button("Send", {{30, 0}, {20, 20}});
    desk_.faults.fail("onScreenWindows");
    desk_.accessibility.forgetReads();
    EXPECT_EQ(titles(window_.pid), Titles());
    EXPECT_TRUE(desk_.accessibility.reads().empty());
}

TEST_F(Candidates, NoProcessHasNoCandidates) {
    window_.button("Send", {{30, 0}, {20, 20}});
    EXPECT_EQ(titles(-1), Titles());
}

TEST_F(Candidates, WindowButtonsAreLeftOutUnlessTheSettingIsOn) {
    window_.add(control("close", 0, ax::subrole, "AXCloseButton"))
        .add(control("minimise", 20, ax::subrole, "AXMinimizeButton"))
        .add(control("full screen", 40, ax::subrole, "AXFullScreenButton"))
        .add(control("zoom", 60, ax::subrole, "AXZoomButton"))
        .add(control("lower case", 80, ax::subrole, "AXclosebutton"))
        .button("Send", {{100, 0}, {20, 20}});
    EXPECT_EQ(titles(window_.pid), (Titles{"lower case", "Send"}));
    desk_.userDefaults.set("searchIncludesTrafficLightButtons", true);
    EXPECT_EQ(titles(window_.pid), (Titles{"close", "minimise", "full screen", "zoom", "lower case", "Send"}));
}

TEST_F(Candidates, BrowserTabsAreLeftOutOnlyWhenTheSettingIsOn) {
    double x = 0;
    Titles all;
    for (const char* identifier : {"UnifiedTabBarItemView?isSelected=false", "UnifiedTabBarItemView?isSelected=true",
                                   "UnifedTabBarButton._titleTextField", "TabBarTab?isPinned=false",
                                   "TabBarTab?isPinned=true", "CloseTabBarItemButton", "closetabbaritembutton"}) {
        window_.add(control(identifier, x += 20, ax::identifier, identifier));
        all.push_back(identifier);
    }
    EXPECT_EQ(titles(window_.pid), all);
    desk_.userDefaults.set("ignoreSafariTabsAndURLs", true);
    EXPECT_EQ(titles(window_.pid), (Titles{"closetabbaritembutton"}));
}

TEST_F(Candidates, AnElementWithoutIdentifierSurvivesTheBrowserExclusion) {
    window_.button("Send", {{30, 0}, {20, 20}}).add(control("named", 60, ax::identifier, "send"));
    desk_.userDefaults.set("ignoreSafariTabsAndURLs", true);
    EXPECT_EQ(titles(window_.pid), (Titles{"Send", "named"}));
}

TEST_F(Candidates, TheAddressFieldIsNoCandidateWhateverTheSettings) {
    window_.add(control("address", 0, ax::identifier, "WEB_BROWSER_ADDRESS_AND_SEARCH_FIELD"));
    EXPECT_EQ(titles(window_.pid), Titles());
}

TEST_F(Candidates, BothExclusionsWorkTogether) {
    window_.add(control("close", 0, ax::subrole, "AXCloseButton"))
        .button("Send", {{30, 0}, {20, 20}})
        .add(control("tab", 60, ax::identifier, "TabBarTab?isPinned=true"));
    desk_.userDefaults.set("ignoreSafariTabsAndURLs", true);
    EXPECT_EQ(titles(window_.pid), Titles{"Send"});
}

TEST_F(Candidates, AnApplicationThatHangsHasNone) {
    window_.button("Send", {{30, 0}, {20, 20}});
    desk_.accessibility.hang(window_.pid);
    EXPECT_EQ(titles(window_.pid), Titles());
}

// --- All five sources. Each has elements of its own to begin with, and every setting is on.

class CandidatesOfTheWholeDesktop : public Candidates {
protected:
    CandidatesOfTheWholeDesktop() {
        for (const char* key : {"searchIncludesAppMenus", "searchIncludesStatusItems", "searchIncludesNotifications",
                                "searchIncludesDock"})
            desk_.userDefaults.set(key, true);
        window_.button("Send", {{30, 100}, {20, 20}}).button("Archive", {{60, 100}, {20, 20}});
    }
    static SimulatedElement item(const std::string& title, AxRect frame, const std::string& role = "AXMenuBarItem") {
        return {.role = role, .title = title, .frame = frame};
    }
    Titles found() { return titles(window_.pid); }
    // Which of the sources has been asked: by what they read first, each of its own.
    bool isAsked(const UIElement& application, std::string_view attribute) {
        const auto reads = desk_.accessibility.reads();
        return std::ranges::any_of(reads, [&](const auto& read) {
            return read.element == application && read.names == std::vector<std::string>{std::string(attribute)};
        });
    }
    bool areMenusAsked() { return isAsked(applicationOf(window_.pid), ax::menuBar); }
    bool areStatusItemsAsked() { return isAsked(applicationOf(clock_.pid), ax::extrasMenuBar); }
    bool areNotificationsAsked() { return isAsked(applicationOf(notification_.pid), ax::windows); }
    bool isDockAsked() { return isAsked(applicationOf(dock_.pid), ax::visibleChildren); }
    UIElement applicationOf(std::int32_t pid) { return desk_.accessibility.application(pid); }

    UIElement menuBar_ =
        desk_.addMenuBar(window_.pid, {item("File", {{0, 0}, {40, 24}}), item("Edit", {{40, 0}, {40, 24}})});
    SimulatedWindow clock_ =
        desk_.addStatusItems(desk_.launchInBackground("Clock"), {item("12:00", {{1500, 0}, {60, 24}})});
    SimulatedWindow notification_ =
        desk_.addNotification({{1200, 30}, {380, 80}}, {item("Reply", {{1210, 70}, {80, 20}}, "AXButton")});
    SimulatedWindow dock_ = desk_.addDock({item("Bin", {{600, 950}, {40, 40}}, "AXDockItem")});
    const Titles all_ = {"File", "Edit", "12:00", "Reply", "Bin", "Send", "Archive"};
};

TEST_F(CandidatesOfTheWholeDesktop, StandInTheOrderMenusStatusItemsNotificationsDockWindow) {
    EXPECT_EQ(found(), all_);
}

TEST_F(CandidatesOfTheWholeDesktop, StandInThatOrderWhicheverSourceEndsFirst) {
    desk_.runLoop.startsLastBodyFirst = true;
    EXPECT_EQ(found(), all_);
}

TEST_F(CandidatesOfTheWholeDesktop, AreReadBySourcesThatRunAtTheSameTime) {
    found();
    EXPECT_EQ(desk_.runLoop.concurrentBodies(), 5u);
}

TEST_F(CandidatesOfTheWholeDesktop, WithoutSettingsAreAllButTheDock) {
    for (const char* key :
         {"searchIncludesAppMenus", "searchIncludesStatusItems", "searchIncludesNotifications", "searchIncludesDock"})
        desk_.userDefaults.remove(key);
    EXPECT_EQ(found(), (Titles{"File", "Edit", "12:00", "Reply", "Send", "Archive"}));
}

TEST_F(CandidatesOfTheWholeDesktop, AreTheWindowsAloneWhenTheFourSettingsAreOff) {
    for (const char* key :
         {"searchIncludesAppMenus", "searchIncludesStatusItems", "searchIncludesNotifications", "searchIncludesDock"})
        desk_.userDefaults.set(key, false);
    EXPECT_EQ(found(), (Titles{"Send", "Archive"}));
    EXPECT_EQ(desk_.runLoop.concurrentBodies(), 1u);
    EXPECT_FALSE(areMenusAsked() || areStatusItemsAsked() || areNotificationsAsked() || isDockAsked());
}

TEST_F(CandidatesOfTheWholeDesktop, EachSettingIsOfItsOwnSourceAndCountsFromTheNextTimeOn) {
    const std::vector<std::pair<const char*, Titles>> left = {
        {"searchIncludesAppMenus", {"12:00", "Reply", "Bin", "Send", "Archive"}},
        {"searchIncludesStatusItems", {"File", "Edit", "Reply", "Bin", "Send", "Archive"}},
        {"searchIncludesNotifications", {"File", "Edit", "12:00", "Bin", "Send", "Archive"}},
        {"searchIncludesDock", {"File", "Edit", "12:00", "Reply", "Send", "Archive"}}};
    for (const auto& [key, expected] : left) {
        desk_.userDefaults.set(key, false);
        EXPECT_EQ(found(), expected) << key;
        desk_.userDefaults.set(key, true);
    }
    EXPECT_EQ(found(), all_);
}

TEST_F(CandidatesOfTheWholeDesktop, WithTheMenuBarHiddenAreNeitherMenusNorStatusItems) {
    desk_.windowServer.remove(clock_.number);
    EXPECT_EQ(found(), (Titles{"Reply", "Bin", "Send", "Archive"}));
    EXPECT_FALSE(areMenusAsked());
    EXPECT_FALSE(areStatusItemsAsked());
}

TEST_F(CandidatesOfTheWholeDesktop, OnlyAWindowInExactlyTheLayerOfStatusItemsTellsThatTheMenuBarShows) {
    desk_.windowServer.remove(clock_.number);
    desk_.windowServer.add({501, clock_.pid, "Clock", 24, {{0, 0}, {30, 24}}});
    desk_.windowServer.add({502, clock_.pid, "Clock", 26, {{0, 0}, {30, 24}}});
    EXPECT_EQ(found(), (Titles{"Reply", "Bin", "Send", "Archive"}));
}

TEST_F(CandidatesOfTheWholeDesktop, AStatusWindowLeftOfTheScreenShowsTheMenuBarAndHasNoStatusItems) {
    desk_.windowServer.remove(clock_.number);
    desk_.windowServer.add({501, clock_.pid, "Clock", 25, {{-40, 0}, {30, 24}}});
    EXPECT_EQ(found(), (Titles{"File", "Edit", "Reply", "Bin", "Send", "Archive"}));
}

TEST_F(CandidatesOfTheWholeDesktop, WithTheDockHiddenAreNoDockItems) {
    desk_.windowServer.remove(dock_.number);
    EXPECT_EQ(found(), (Titles{"File", "Edit", "12:00", "Reply", "Send", "Archive"}));
    EXPECT_FALSE(isDockAsked());
}

TEST_F(CandidatesOfTheWholeDesktop, OnlyAWindowOfExactlyThatOwnerTellsThatTheDockShows) {
    desk_.windowServer.remove(dock_.number);
    desk_.windowServer.add({501, dock_.pid, "dock", 20, {{0, 0}, {30, 24}}});
    desk_.windowServer.add({502, dock_.pid, "Docker", 20, {{0, 0}, {30, 24}}});
    EXPECT_FALSE(isDockAsked());
    desk_.windowServer.add({503, window_.pid, "Dock", 0, {{0, 0}, {30, 24}}});
    EXPECT_EQ(found(), all_) << "whatever layer it is in";
}

TEST_F(CandidatesOfTheWholeDesktop, AreNotificationsWhateverIsOnTheScreen) {
    desk_.windowServer.remove(clock_.number);
    desk_.windowServer.remove(dock_.number);
    desk_.windowServer.remove(notification_.number);
    desk_.windowServer.remove(window_.number);
    EXPECT_EQ(found(), (Titles{"Reply", "Send", "Archive"})) << "an empty window list is one all the same";
}

TEST_F(CandidatesOfTheWholeDesktop, WithoutAWindowListAreNoneAndNoSourceIsAsked) {
    desk_.faults.fail("onScreenWindows");
    desk_.accessibility.forgetReads();
    EXPECT_EQ(found(), Titles());
    EXPECT_TRUE(desk_.accessibility.reads().empty());
    EXPECT_EQ(desk_.accessibility.readsAhead(), 0u);
    EXPECT_EQ(desk_.runLoop.concurrentBodies(), 0u);
}

TEST_F(CandidatesOfTheWholeDesktop, TheWindowListIsTakenOnce) {
    desk_.faults.failFrom("onScreenWindows", 2);
    EXPECT_EQ(found(), all_);
}

TEST_F(CandidatesOfTheWholeDesktop, OfNoProcessAreThoseOfTheOtherSources) {
    EXPECT_EQ(titles(-1), (Titles{"File", "Edit", "12:00", "Reply", "Bin"}));
}

TEST_F(CandidatesOfTheWholeDesktop, TheWindowsButtonsAreLeftOutOfTheWindowOnly) {
    const auto close = [](const std::string& title, AxRect frame) {
        return SimulatedElement{.role = "AXButton",
                                .title = title,
                                .frame = frame,
                                .attributes = {{std::string(ax::subrole), std::string("AXCloseButton")}}};
    };
    window_.add(close("the window's", {{0, 100}, {10, 10}}));
    notification_.add(close("the notification's", {{1210, 40}, {10, 10}}));
    EXPECT_EQ(found(), (Titles{"File", "Edit", "12:00", "Reply", "the notification's", "Bin", "Send", "Archive"}));
}

TEST_F(CandidatesOfTheWholeDesktop, TabsAreLeftOutOfTheWindowOnly) {
    desk_.userDefaults.set("ignoreSafariTabsAndURLs", true);
    const auto tab = [](const std::string& title, AxRect frame) {
        return SimulatedElement{.role = "AXButton",
                                .title = title,
                                .frame = frame,
                                .attributes = {{std::string(ax::identifier), std::string("TabBarTab?isPinned=true")}}};
    };
    window_.add(tab("the window's", {{0, 100}, {10, 10}}));
    desk_.accessibility.add(menuBar_, tab("the menu bar's", {{80, 0}, {10, 10}}));
    desk_.accessibility.add(clock_.element, tab("the status items'", {{1560, 0}, {10, 10}}));
    desk_.accessibility.add(dock_.element, tab("the dock's", {{700, 950}, {10, 10}}));
    EXPECT_EQ(found(), (Titles{"File", "Edit", "the menu bar's", "12:00", "the status items'", "Reply", "Bin",
                               "the dock's", "Send", "Archive"}));
}

TEST_F(CandidatesOfTheWholeDesktop, AMenuThatIsInTheWindowsTreeTooIsThereOnceAsTheMenu) {
    window_.add(item("File in the window", {{0, 0}, {40, 24}}));
    window_.add(item("another role", {{0, 0}, {40, 24}}, "AXButton"));
    EXPECT_EQ(found(), (Titles{"File", "Edit", "12:00", "Reply", "Bin", "Send", "Archive", "another role"}));
}

TEST_F(CandidatesOfTheWholeDesktop, OfEqualElementsTheOneOfTheEarlierSourceStays) {
    const AxRect place = {{1300, 40}, {30, 20}};  // in the notification, and in a window as large as the screen
    const SimulatedWindow large = desk_.window("Large", {{0, 0}, {1600, 1000}});
    const std::vector<UIElement> holders = {desk_.addMenuBar(large.pid, {}), clock_.element, notification_.element,
                                            dock_.element, large.element};
    std::vector<UIElement> twins;
    for (std::size_t i = 0; i < holders.size(); ++i)
        twins.push_back(desk_.accessibility.add(holders[i], item(std::to_string(i), place, "AXButton")));
    for (const bool startsLast : {false, true}) {
        desk_.runLoop.startsLastBodyFirst = startsLast;
        const std::vector<Titles> expected = {{"0", "12:00", "Reply", "Bin"},
                                              {"1", "12:00", "Reply", "Bin"},
                                              {"12:00", "Reply", "2", "Bin"},
                                              {"12:00", "Reply", "Bin", "3"},
                                              {"12:00", "Reply", "Bin", "4"}};
        for (std::size_t gone = 0; gone < twins.size(); ++gone) {
            EXPECT_EQ(titles(large.pid), expected[gone]);
            desk_.accessibility.failReads(twins[gone], AxStatus::cannotComplete);
        }
        desk_.accessibility.mendReads();
    }
}

TEST_F(CandidatesOfTheWholeDesktop, ASourceThatFailsTakesNothingFromTheOthers) {
    const std::vector<std::pair<std::int32_t, Titles>> left = {
        {window_.pid, {"12:00", "Reply", "Bin"}},
        {clock_.pid, {"File", "Edit", "Reply", "Bin", "Send", "Archive"}},
        {notification_.pid, {"File", "Edit", "12:00", "Bin", "Send", "Archive"}},
        {dock_.pid, {"File", "Edit", "12:00", "Reply", "Send", "Archive"}}};
    for (const auto& [pid, expected] : left) {
        desk_.accessibility.hang(pid);
        EXPECT_EQ(found(), expected);
        desk_.accessibility.hang(pid, false);
    }
}

TEST_F(CandidatesOfTheWholeDesktop, WhicheverReadFailsTheRestStandsInItsOrder) {
    const auto isRestOf = [](const Titles& all, const Titles& rest) {
        auto next = all.begin();
        for (const std::string& title : rest) {
            next = std::find(next, all.end(), title);
            if (next++ == all.end()) return false;
        }
        return true;
    };
    for (const char* operation : {"attribute", "attributes"}) {
        std::set<std::size_t> sizes;
        for (int n = 1; n <= 60; ++n) {
            desk_.faults.failNth(operation, n);
            const Titles rest = found();
            sizes.insert(rest.size());
            EXPECT_TRUE(isRestOf(all_, rest)) << operation << " " << n;
            desk_.faults.failFrom(operation, n);
            EXPECT_TRUE(isRestOf(all_, found())) << operation << " from " << n << " on";
        }
        desk_.faults.mend(operation);
        EXPECT_GT(sizes.size(), 1u) << "some failures cost something";
        EXPECT_EQ(*sizes.rbegin(), all_.size()) << "and beyond the last read none does";
    }
    EXPECT_EQ(found(), all_);
}

TEST_F(CandidatesOfTheWholeDesktop, WithBothExclusionsOffTheWindowsListIsTakenAsItIs) {
    desk_.userDefaults.set("searchIncludesTrafficLightButtons", true);
    window_.add(control("close", 0, ax::subrole, "AXCloseButton"))
        .add(control("tab", 60, ax::identifier, "TabBarTab?isPinned=true"));
    Titles expected = all_;
    expected.insert(expected.end(), {"close", "tab"});
    EXPECT_EQ(found(), expected);
}

}  // namespace
}  // namespace tarvix
