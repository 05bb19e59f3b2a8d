// Searches that find what is on the desktop beside the window.
#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/scenarios/SearchScenario.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WholeDesktop : public SearchScenario {
protected:
    static SimulatedElement element(const std::string& role, const std::string& title, AxRect frame) {
        return {.role = role, .title = title, .frame = frame};
    }
    static SimulatedElement trayItem(const std::string& title, double x) {
        SimulatedElement item = element("AXMenuBarItem", title, {{x, 0}, {40, 24}});
        item.attributes.emplace(ax::roleDescription, std::string("status menu"));
        return item;
    }
    // Where a click in the middle of a control of this frame goes.
    static std::string movedTo(AxRect frame) {
        return "moved to " + numeral(frame.minX() + frame.width() / 2) + "," +
               numeral(frame.minY() + frame.height() / 2);
    }
    void expectAClickIn(AxRect frame) {
        press(Key::return_);
        EXPECT_EQ(seen(), (Texts{"The Input shown", movedTo(frame), "left down", "left up", "The Input hidden"}));
    }

    SimulatedWindow mail = desk.window("Mail", {{0, 24}, {800, 600}}).button("Send", {{10, 100}, {60, 20}});
    UIElement menuBar = desk.addMenuBar(mail.pid, {element("AXMenuBarItem", "File", {{40, 0}, {40, 24}}),
                                                   element("AXMenuBarItem", "Mailbox", {{80, 0}, {60, 24}})});
    SimulatedWindow messenger =
        desk.addStatusItems(desk.launchInBackground("Pidgeon Post"), {trayItem("", 1500), trayItem("3 new", 1400)});
    SimulatedWindow notification =
        desk.addNotification({{1200, 30}, {380, 80}}, {element("AXStaticText", "Lunch?", {{1210, 40}, {300, 20}}),
                                                       element("AXButton", "Reply", {{1210, 70}, {80, 20}})});
    SimulatedWindow dock = desk.addDock({element("AXDockItem", "Terminal", {{600, 950}, {40, 40}}),
                                         element("AXDockItem", "Bin", {{640, 950}, {40, 40}})});
};

TEST_F(WholeDesktop, AMenuIsFoundByItsNameAndClicked) {
    search("mailb");
    EXPECT_THAT(targets(), ElementsAre("Mailbox"));
    expectAClickIn({{80, 0}, {60, 24}});
}

TEST_F(WholeDesktop, TrayItemsAreFoundByTheirApplicationsNameFromLeftToRightAndClicked) {
    search("pidgeon");
    EXPECT_THAT(targets(), ElementsAre("3 new", ""));
    press(Key::downArrow);
    expectAClickIn({{1500, 0}, {40, 24}});
}

TEST_F(WholeDesktop, ATrayItemIsFoundByNameAndTextTogether) {
    search("pidg new");
    EXPECT_THAT(targets(), ElementsAre("3 new"));
    expectAClickIn({{1400, 0}, {40, 24}});
}

TEST_F(WholeDesktop, ANotificationsButtonIsFoundAndClicked) {
    search("reply");
    EXPECT_THAT(targets(), ElementsAre("Reply"));
    expectAClickIn({{1210, 70}, {80, 20}});
}

TEST_F(WholeDesktop, ADockItemIsFoundOnceTheUserWantsTheDockSearched) {
    search("terminal");
    EXPECT_THAT(targets(), IsEmpty());
    press(Key::escape);
    desk.clearJournal();
    desk.userDefaults.set("searchIncludesDock", true);
    search("terminal");
    EXPECT_THAT(targets(), ElementsAre("Terminal"));
    expectAClickIn({{600, 950}, {40, 40}});
}

TEST_F(WholeDesktop, EverythingIsMarkedInTheOrderOfTheSources) {
    desk.userDefaults.set("searchIncludesDock", true);
    search("*");
    EXPECT_THAT(targets(), ElementsAre("File", "Mailbox", "3 new", "", "Lunch?", "Reply", "Terminal", "Bin", "Send"));
    EXPECT_EQ(primary(), "File");
}

TEST_F(WholeDesktop, TheMarkersLieOverThemWhereverTheyAre) {
    search("reply");
    const auto& markers = desk.panels.canvas().markers();
    ASSERT_EQ(markers.size(), 1u);
    EXPECT_EQ(markers.front().frame, (PanelRect{{1210, 910}, {80, 20}}));
}

TEST_F(WholeDesktop, OverAFullScreenWindowNeitherMenusNorTrayAreFound) {
    desk.windowServer.remove(messenger.number);
    search("*");
    EXPECT_THAT(targets(), ElementsAre("Lunch?", "Reply", "Send"));
}

TEST_F(WholeDesktop, AHiddenDockIsNotFound) {
    desk.userDefaults.set("searchIncludesDock", true);
    desk.windowServer.remove(dock.number);
    search("terminal");
    EXPECT_THAT(targets(), IsEmpty());
}

TEST_F(WholeDesktop, ADockThatComesUpIsFoundAtTheNextSearch) {
    desk.userDefaults.set("searchIncludesDock", true);
    desk.windowServer.remove(dock.number);
    search("terminal");
    press(Key::escape);
    desk.windowServer.add({dock.number, dock.pid, "Dock", 20, {{400, 940}, {800, 60}}});
    search("terminal");
    EXPECT_THAT(targets(), ElementsAre("Terminal"));
}

TEST_F(WholeDesktop, WithoutAFrontmostApplicationTheRestIsStillFound) {
    desk.userDefaults.set("inputPosition", "aboveMouse");  // there is no window for The Input to be above of
    desk.workspace.setMenuBarOwner(mail.pid);
    desk.activate(std::nullopt);
    search("*");
    EXPECT_THAT(targets(), ElementsAre("File", "Mailbox", "3 new", "", "Lunch?", "Reply"));
}

TEST_F(WholeDesktop, AnApplicationThatHangsLeavesTheRestToBeFound) {
    desk.accessibility.hang(mail.pid);
    search("reply");
    expectAClickIn({{1210, 70}, {80, 20}});
}

TEST_F(WholeDesktop, WhatTheDesktopCannotSayCostsNoMoreThanThat) {
    const std::vector<std::pair<const char*, Texts>> found = {
        {"menuBarOwningApplication", {"3 new", "", "Lunch?", "Reply", "Send"}},
        {"runningApplications", {"File", "Mailbox", "3 new", "", "Send"}}};
    for (const auto& [operation, expected] : found) {
        desk.faults.fail(operation);
        search("*");
        EXPECT_EQ(targets(), expected) << operation;
        press(Key::escape);
        desk.faults.mend(operation);
    }
}

TEST_F(WholeDesktop, ANotificationThatComesUpDuringASearchIsFoundAtTheNext) {
    open();
    desk.addNotification({{1200, 130}, {380, 80}}, {element("AXButton", "Snooze", {{1210, 170}, {80, 20}})});
    desk.type("snooze");
    EXPECT_THAT(targets(), IsEmpty());
    press(Key::escape);
    search("snooze");
    EXPECT_THAT(targets(), ElementsAre("Snooze"));
}

TEST_F(WholeDesktop, TheListDoesNotDependOnWhichSourceEndsFirst) {
    search("*");
    const Texts inOrder = targets();
    press(Key::escape);
    desk.runLoop.startsLastBodyFirst = true;
    search("*");
    EXPECT_EQ(targets(), inOrder);
}

TEST_F(WholeDesktop, ABrowserThatHidesItsPageIsAskedForItWhenItBecomesActive) {
    SimulatedWindow browser =
        desk.addWindow(desk.launchInBackground("Browser", "org.mozilla.firefox"), "Page", {{0, 24}, {800, 600}});
    int asked = 0;
    desk.accessibility.onSetAttribute = [&](const UIElement& application, std::string_view name, const AxValue& value) {
        if (++asked < 2) return;  // it takes its time
        desk.accessibility.set(application, name, value);
        browser.add(element("AXLink", "Read on", {{10, 200}, {60, 20}}));
    };
    testing::internal::CaptureStdout();
    desk.activate(browser.pid);
    search("read on");
    EXPECT_THAT(targets(), IsEmpty());
    press(Key::escape);
    desk.turnClock(std::chrono::seconds(10));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "getting AXEnhanced\nsetting AXEnhanced\ngetting AXEnhanced\nsetting AXEnhanced\ngetting AXEnhanced\n");
    search("read on");
    EXPECT_THAT(targets(), ElementsAre("Read on"));
}

}  // namespace
}  // namespace tarvix
