// The simulated accessibility service keeps to the contract, and fails when it is told to.
#include "simulated/SimulatedAccessibility.h"
#include "simulated/SimulatedDesktop.h"
#include "tests/contract/AccessibilityContract.h"

namespace tarvix {
namespace {

AccessibilitySubject simulated() {
    const auto desk = std::make_shared<SimulatedDesktop>();
    SimulatedWindow window = desk->window("Mail", {{100, 100}, {800, 600}});
    window.button("Send", {{110, 110}, {60, 20}})
        .add({.role = "AXGroup",
              .frame = {{100, 200}, {400, 300}},
              .children = {{.role = "AXButton", .title = "Archive", .frame = {{110, 210}, {60, 20}}},
                           {.role = "AXButton", .title = "Delete", .frame = {{210, 210}, {60, 20}}}}});
    desk->accessibility.set(window.element, ax::title, "Inbox");
    desk->addMenuBar(window.pid, {{.role = "AXMenuBarItem", .title = "File", .frame = {{0, 0}, {40, 24}}}});
    return {desk, desk->accessibility, window.pid, "Inbox",
            [desk, pid = window.pid] { desk->accessibility.quit(pid); }};
}

INSTANTIATE_TEST_SUITE_P(Simulated, AccessibilityContract, testing::Values(simulated));

class SimulatedFaults : public testing::Test {
protected:
    AxStatus read() { return service_.attribute(window_.element, ax::title).status; }

    SimulatedDesktop desk_;
    SimulatedWindow window_ = desk_.window("Mail").button("Send", {{10, 10}, {60, 20}});
    SimulatedAccessibility& service_ = desk_.accessibility;
};

TEST_F(SimulatedFaults, TheNthReadOfAnElementFailsOnce) {
    service_.failNthRead(window_.element, 2, AxStatus::failure);
    EXPECT_EQ(read(), AxStatus::success);
    EXPECT_EQ(read(), AxStatus::failure);
    EXPECT_EQ(read(), AxStatus::success);
}

TEST_F(SimulatedFaults, TheNthCallOfAnOperationFailsOnce) {
    desk_.faults.failNth("attribute", 2);
    EXPECT_EQ(read(), AxStatus::success);
    EXPECT_EQ(read(), AxStatus::cannotComplete);
    EXPECT_EQ(read(), AxStatus::success);
}

TEST_F(SimulatedFaults, AnApplicationHangsAndComesBack) {
    service_.hang(window_.pid);
    EXPECT_EQ(read(), AxStatus::cannotComplete);
    EXPECT_EQ(service_.attribute(service_.application(window_.pid), ax::focusedWindow).status,
              AxStatus::cannotComplete);
    EXPECT_EQ(service_.elementAt({15, 15}).status, AxStatus::cannotComplete);
    EXPECT_EQ(service_.perform(window_.last, ax::press), AxStatus::cannotComplete);
    service_.hang(window_.pid, false);
    EXPECT_EQ(read(), AxStatus::success);
}

TEST_F(SimulatedFaults, WithoutTrustNothingCanBeRead) {
    service_.trusted = false;
    EXPECT_FALSE(service_.isTrusted());
    EXPECT_EQ(read(), AxStatus::apiDisabled);
    EXPECT_EQ(service_.attribute(service_.systemWide(), ax::focusedApplication).status, AxStatus::apiDisabled);
    EXPECT_EQ(service_.pid(window_.element), std::nullopt);
    service_.askForTrust();
    EXPECT_EQ(desk_.journal({Topic::accessibility}), std::vector<std::string>{"asked for the accessibility privilege"});
}

TEST_F(SimulatedFaults, AnAttributeThatFailsIsMissingAmongOthers) {
    service_.setStatus(window_.last, ax::title, AxStatus::failure);
    EXPECT_EQ(service_.attribute(window_.last, ax::title).status, AxStatus::failure);
    const std::array<std::string_view, 2> names = {ax::title, ax::role};
    const auto read = service_.attributes(window_.last, names);
    ASSERT_TRUE(read.ok());
    EXPECT_EQ(read.value, (std::vector<AxValue>{std::monostate(), "AXButton"}));
}

TEST_F(SimulatedFaults, APressIsInTheJournal) {
    service_.perform(window_.last, ax::press);
    EXPECT_EQ(desk_.journal({Topic::accessibility}), std::vector<std::string>{"AXPress on 'Send'"});
}

TEST_F(SimulatedFaults, RemovingAnElementRemovesWhatIsBelowIt) {
    const UIElement group =
        service_.add(window_.element, {.role = "AXGroup", .children = {{.role = "AXButton", .title = "Archive"}}});
    const UIElement button = service_.titled("Archive");
    service_.remove(group);
    EXPECT_EQ(service_.attribute(button, ax::title).status, AxStatus::invalidElement);
    EXPECT_THROW(static_cast<void>(service_.titled("Archive")), std::out_of_range);
    EXPECT_TRUE(AXEngine2(desk_.platform()).frontmostWindowElements(window_.pid).size() == 1);
}

}  // namespace
}  // namespace tarvix
