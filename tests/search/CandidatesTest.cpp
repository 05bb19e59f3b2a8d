#include <gtest/gtest.h>

#include <string>
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

}  // namespace
}  // namespace tarvix
