// What every workspace keeps to.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/Workspace.h"

namespace tarvix {

// A desktop with one application that is frontmost, and whose bundle identifier is known.
struct WorkspaceSubject {
    std::shared_ptr<void> world;  // owns the service
    Workspace& service;
    std::int32_t pid;  // of the frontmost application
    // Makes another application frontmost and says its process; nothing where a desktop tells nobody of it.
    std::function<std::optional<std::int32_t>()> another;
    // Drives the service until the condition holds; false when it doesn't within a generous limit.
    std::function<bool(const std::function<bool()>&)> waitUntil;
};

using WorkspaceFactory = std::function<WorkspaceSubject()>;

class WorkspaceContract : public testing::TestWithParam<WorkspaceFactory> {
protected:
    static bool holds(const std::vector<RunningApplication>& all, std::int32_t pid) {
        return std::ranges::count(all, pid, &RunningApplication::processIdentifier) > 0;
    }

    WorkspaceSubject subject_ = GetParam()();
    Workspace& workspace = subject_.service;
};

TEST_P(WorkspaceContract, TheFrontmostApplicationIsARunningOne) {
    const auto frontmost = workspace.frontmostApplication();
    ASSERT_TRUE(frontmost);
    EXPECT_EQ(frontmost->processIdentifier, subject_.pid);
    EXPECT_EQ(workspace.runningApplication(subject_.pid), frontmost);
}

TEST_P(WorkspaceContract, AnApplicationThatRunsHasAName) {
    const auto running = workspace.runningApplication(subject_.pid);
    ASSERT_TRUE(running);
    EXPECT_FALSE(running->localizedName.empty());
}

TEST_P(WorkspaceContract, AProcessThatDoesNotExistIsNoApplication) {
    EXPECT_EQ(workspace.runningApplication(999'999'999), std::nullopt);
}

TEST_P(WorkspaceContract, AnApplicationIsAmongThoseWithItsBundleIdentifier) {
    const auto frontmost = workspace.frontmostApplication();
    ASSERT_TRUE(frontmost && frontmost->bundleIdentifier);
    const auto same = workspace.runningApplications(*frontmost->bundleIdentifier);
    EXPECT_TRUE(holds(same, subject_.pid));
    for (const RunningApplication& each : same) EXPECT_EQ(each.bundleIdentifier, frontmost->bundleIdentifier);
}

TEST_P(WorkspaceContract, ThereAreNoApplicationsWithAnUnknownBundleIdentifier) {
    EXPECT_TRUE(workspace.runningApplications("org.example.NoSuchApplication").empty());
    EXPECT_TRUE(workspace.runningApplications("").empty());
}

TEST_P(WorkspaceContract, WithNothingElseOnTheDesktopTheMenuBarIsTheFrontmostApplications) {
    EXPECT_EQ(workspace.menuBarOwningApplication(), workspace.frontmostApplication());
}

TEST_P(WorkspaceContract, EveryThreadGetsTheSameAnswers) {
    const auto frontmost = workspace.frontmostApplication();
    ASSERT_TRUE(frontmost && frontmost->bundleIdentifier);
    struct Answers {
        std::optional<RunningApplication> frontmost, owner, running;
        std::vector<RunningApplication> same;
        bool operator==(const Answers&) const = default;
    };
    const auto ask = [&] {
        return Answers{workspace.frontmostApplication(), workspace.menuBarOwningApplication(),
                       workspace.runningApplication(subject_.pid),
                       workspace.runningApplications(*frontmost->bundleIdentifier)};
    };
    const Answers here = ask();
    Answers there[2];
    std::thread threads[2] = {std::thread([&] { there[0] = ask(); }), std::thread([&] { there[1] = ask(); })};
    for (std::thread& each : threads) each.join();
    for (const Answers& each : there) EXPECT_TRUE(each == here);
}

TEST_P(WorkspaceContract, AnotherFrontmostApplicationIsToldToThoseWhoObserve) {
    std::vector<std::int32_t> told, toldBefore;
    Subscription dropped = workspace.onApplicationActivated(
        [&](const RunningApplication& application) { toldBefore.push_back(application.processIdentifier); });
    const Subscription observer = workspace.onApplicationActivated(
        [&](const RunningApplication& application) { told.push_back(application.processIdentifier); });
    dropped.reset();
    const std::optional<std::int32_t> another = subject_.another();
    if (!another) GTEST_SKIP() << "nobody says which application is frontmost";
    ASSERT_TRUE(subject_.waitUntil([&] { return !told.empty(); }));
    EXPECT_EQ(told, std::vector{*another});
    EXPECT_TRUE(toldBefore.empty());
    EXPECT_EQ(workspace.frontmostApplication()->processIdentifier, another);
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(WorkspaceContract);

}  // namespace tarvix
