// What every accessibility service keeps to, whatever is behind it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "ax/AXEngine2.h"
#include "platform/Accessibility.h"

namespace tarvix {

// A desktop with one application that has the focus: a titled window with a menu bar, and in it at least three titled
// buttons, each with a place of its own.
struct AccessibilitySubject {
    std::shared_ptr<void> world;  // owns the service
    AccessibilityService& service;
    std::int32_t pid;  // of the application
    std::string windowTitle;
    std::function<void()> quit;  // ends the application, and returns when it has gone
};

using AccessibilityFactory = std::function<AccessibilitySubject()>;

class AccessibilityContract : public testing::TestWithParam<AccessibilityFactory> {
protected:
    void SetUp() override {
        const AxResult<AxValue> read = service.attribute(service.application(subject_.pid), ax::focusedWindow);
        ASSERT_TRUE(read.ok());
        ASSERT_TRUE(std::holds_alternative<UIElement>(read.value));
        window_ = std::get<UIElement>(read.value);
        reads_ = service.readAhead(*window_);
        collectButtons(*window_, 0);
        ASSERT_GE(buttons_.size(), 3u);
    }

    // A read of a single element gives up early, since a person waits meanwhile: on a busy machine the first may.
    template <class Read, class IsAnswer>
    static auto patiently(Read read, IsAnswer isAnswer) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        auto result = read();
        while (!isAnswer(result) && std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            result = read();
        }
        return result;
    }

    static std::vector<UIElement> listOf(const AxResult<AxValue>& read) {
        const auto* list = read.ok() ? std::get_if<std::vector<UIElement>>(&read.value) : nullptr;
        return list ? *list : std::vector<UIElement>();
    }
    std::vector<UIElement> childrenOf(const UIElement& element) {
        return listOf(reads_->attribute(element, ax::visibleChildren));
    }
    std::string textOf(const UIElement& element, std::string_view name) {
        const AxResult<AxValue> read = reads_->attribute(element, name);
        const auto* text = read.ok() ? std::get_if<std::string>(&read.value) : nullptr;
        return text ? *text : std::string();
    }
    void collectButtons(const UIElement& element, int depth) {
        constexpr int deepest = 64;
        if (depth > deepest) return;
        if (textOf(element, ax::role) == "AXButton" && !textOf(element, ax::title).empty()) buttons_.push_back(element);
        for (const UIElement& child : childrenOf(element)) {
            parents_.emplace_back(child, element);
            collectButtons(child, depth + 1);
        }
    }
    static bool isWithin(AxRect inner, AxRect outer) {
        return inner.minX() >= outer.minX() && inner.maxX() <= outer.maxX() && inner.minY() >= outer.minY() &&
               inner.maxY() <= outer.maxY();
    }

    AccessibilitySubject subject_ = GetParam()();
    AccessibilityService& service = subject_.service;
    std::optional<UIElement> window_;
    std::unique_ptr<AccessibilityReads> reads_;  // of a walk below the window
    std::vector<UIElement> buttons_;             // with a title, in the order of the tree
    std::vector<std::pair<UIElement, UIElement>> parents_;
};

TEST_P(AccessibilityContract, AWindowHasATitleAPositionAndASize) {
    const std::array<std::string_view, 3> names = {ax::title, ax::position, ax::size};
    const AxResult<std::vector<AxValue>> read = service.attributes(*window_, names);
    ASSERT_TRUE(read.ok());
    ASSERT_EQ(read.value.size(), names.size());
    EXPECT_EQ(read.value[0], AxValue(subject_.windowTitle));
    ASSERT_TRUE(std::holds_alternative<AxPoint>(read.value[1]));
    ASSERT_TRUE(std::holds_alternative<Size>(read.value[2]));
    EXPECT_GT(std::get<Size>(read.value[2]).width, 0);
    EXPECT_GT(std::get<Size>(read.value[2]).height, 0);
}

TEST_P(AccessibilityContract, AWindowHasANumberAndTheProcessOfItsApplication) {
    EXPECT_TRUE(service.windowNumber(*window_));
    EXPECT_EQ(service.pid(*window_), subject_.pid);
    EXPECT_EQ(service.pid(service.application(subject_.pid)), subject_.pid);
    EXPECT_EQ(service.pid(buttons_.front()), subject_.pid);
}

TEST_P(AccessibilityContract, TheFocusedApplicationIsTheOneWithTheFocus) {
    const AxResult<AxValue> read = service.attribute(service.systemWide(), ax::focusedApplication);
    ASSERT_TRUE(read.ok());
    ASSERT_TRUE(std::holds_alternative<UIElement>(read.value));
    EXPECT_EQ(service.pid(std::get<UIElement>(read.value)), subject_.pid);
}

TEST_P(AccessibilityContract, ReadingSeveralAttributesGivesOneValueForEachName) {
    const std::vector<std::string_view> names = {ax::size, ax::role, "AXNoSuchAttribute", ax::role, ax::title};
    for (AccessibilityReads* reads : {reads_.get(), static_cast<AccessibilityReads*>(&service)}) {
        const AxResult<std::vector<AxValue>> read = reads->attributes(buttons_.front(), names);
        ASSERT_TRUE(read.ok());
        ASSERT_EQ(read.value.size(), names.size());
        EXPECT_TRUE(std::holds_alternative<Size>(read.value[0]));
        EXPECT_EQ(read.value[1], AxValue("AXButton"));
        EXPECT_TRUE(std::holds_alternative<std::monostate>(read.value[2]));
        EXPECT_EQ(read.value[3], AxValue("AXButton"));
        EXPECT_EQ(read.value[4], AxValue(textOf(buttons_.front(), ax::title)));
    }
}

TEST_P(AccessibilityContract, ReadingNoAttributesGivesNoValues) {
    const AxResult<std::vector<AxValue>> read = reads_->attributes(buttons_.front(), {});
    EXPECT_TRUE(read.ok());
    EXPECT_TRUE(read.value.empty());
}

TEST_P(AccessibilityContract, AnUnknownAttributeIsUnsupported) {
    for (const UIElement& element :
         {*window_, buttons_.front(), service.application(subject_.pid), service.systemWide()}) {
        const auto read = patiently([&] { return service.attribute(element, "AXNoSuchAttribute"); },
                                    [](const auto& answer) { return answer.status != AxStatus::cannotComplete; });
        EXPECT_EQ(read.status, AxStatus::attributeUnsupported);
    }
    EXPECT_EQ(reads_->attribute(buttons_.front(), "AXNoSuchAttribute").status, AxStatus::attributeUnsupported);
}

TEST_P(AccessibilityContract, OnlyTablesHaveRows) {
    EXPECT_FALSE(reads_->attribute(buttons_.front(), ax::visibleRows).ok());
    EXPECT_FALSE(reads_->attribute(buttons_.front(), ax::rows).ok());
}

TEST_P(AccessibilityContract, AllAndSingleReadsAgree) {
    for (const UIElement& button : buttons_) {
        const auto ahead = AXEngine2::readElement(*reads_, button);
        ASSERT_TRUE(ahead);
        const auto single =
            patiently([&] { return AXEngine2::readElement(service, button); },
                      [&](const auto& read) { return read && read->metadataDump() == ahead->metadataDump(); });
        ASSERT_TRUE(single);
        EXPECT_EQ(ahead->metadataDump(), single->metadataDump());
    }
}

TEST_P(AccessibilityContract, HandlesOfOneElementAreEqualAndHashAlike) {
    const std::vector<UIElement> once = childrenOf(*window_);
    const std::vector<UIElement> twice = childrenOf(*window_);
    ASSERT_FALSE(once.empty());
    ASSERT_EQ(once.size(), twice.size());
    for (std::size_t i = 0; i < once.size(); ++i) {
        EXPECT_EQ(once[i], twice[i]);
        EXPECT_EQ(once[i].identity().hash(), twice[i].identity().hash());
        EXPECT_FALSE(once[i] == *window_);
    }
    EXPECT_FALSE(buttons_[0] == buttons_[1]);
    EXPECT_EQ(service.application(subject_.pid), service.application(subject_.pid));
    EXPECT_FALSE(service.application(subject_.pid) == service.application(subject_.pid + 1));
    EXPECT_EQ(service.systemWide(), service.systemWide());
    EXPECT_FALSE(service.systemWide() == service.application(subject_.pid));
    EXPECT_FALSE(*window_ == service.application(subject_.pid));
}

TEST_P(AccessibilityContract, HandlesOfTwoWalksOfOneElementAreEqual) {
    const std::unique_ptr<AccessibilityReads> again = service.readAhead(*window_);
    EXPECT_EQ(listOf(again->attribute(*window_, ax::visibleChildren)), childrenOf(*window_));
}

TEST_P(AccessibilityContract, TheParentOfAChildIsItsParent) {
    for (const auto& [child, parent] : parents_) {
        const AxResult<AxValue> read = reads_->attribute(child, ax::parent);
        ASSERT_TRUE(read.ok());
        ASSERT_TRUE(std::holds_alternative<UIElement>(read.value));
        EXPECT_EQ(std::get<UIElement>(read.value), parent);
    }
}

TEST_P(AccessibilityContract, NoElementIsAmongItsOwnDescendants) {
    const std::function<bool(const UIElement&, std::vector<UIElement>)> isSound = [&](const UIElement& element,
                                                                                      std::vector<UIElement> above) {
        if (std::find(above.begin(), above.end(), element) != above.end()) return false;
        above.push_back(element);
        const auto children = childrenOf(element);
        return std::all_of(children.begin(), children.end(),
                           [&](const UIElement& child) { return isSound(child, above); });
    };
    EXPECT_TRUE(isSound(*window_, {}));
}

TEST_P(AccessibilityContract, TheElementAtAPointIsThere) {
    for (const UIElement& button : buttons_) {
        const auto frame = AXEngine2::readFrame(*reads_, button);
        ASSERT_TRUE(frame);
        const AxPoint middle = {frame->minX() + frame->width() / 2, frame->minY() + frame->height() / 2};
        const auto hit = patiently([&] { return service.elementAt(middle); },
                                   [](const auto& read) { return read.ok() && read.value; });
        ASSERT_TRUE(hit.ok());
        ASSERT_TRUE(hit.value);
        EXPECT_EQ(service.pid(*hit.value), subject_.pid);
        const auto hitFrame = patiently([&] { return AXEngine2::readFrame(service, *hit.value); },
                                        [](const auto& read) { return read.has_value(); });
        ASSERT_TRUE(hitFrame);
        EXPECT_TRUE(intersects(*hitFrame, AxRect{middle, {0, 0}}));
    }
}

TEST_P(AccessibilityContract, FarFromEverythingThereIsNoElement) {
    const AxResult<std::optional<UIElement>> hit = service.elementAt({-30000, -30000});
    EXPECT_EQ(hit.status, AxStatus::noValue);
    EXPECT_FALSE(hit.value);
}

TEST_P(AccessibilityContract, TheButtonsLieInTheWindow) {
    const auto windowFrame = AXEngine2::readFrame(service, *window_);
    ASSERT_TRUE(windowFrame);
    for (const UIElement& button : buttons_) {
        const auto frame = AXEngine2::readFrame(*reads_, button);
        ASSERT_TRUE(frame);
        EXPECT_TRUE(isWithin(*frame, *windowFrame));
    }
}

TEST_P(AccessibilityContract, AButtonCanBePressedAndDoesNotKnowEveryAction) {
    EXPECT_EQ(service.perform(buttons_.front(), ax::press), AxStatus::success);
    EXPECT_EQ(service.perform(buttons_.front(), "AXNoSuchAction"), AxStatus::actionUnsupported);
}

TEST_P(AccessibilityContract, TheWindowIsAmongThoseOfItsApplication) {
    const UIElement application = service.application(subject_.pid);
    const std::vector<UIElement> windows = listOf(service.readAhead(application)->attribute(application, ax::windows));
    EXPECT_NE(std::find(windows.begin(), windows.end(), *window_), windows.end());
    for (const UIElement& window : windows) EXPECT_EQ(service.pid(window), subject_.pid);
}

TEST_P(AccessibilityContract, AWindowOfAnApplicationsListHasAWalkOfItsOwn) {
    const UIElement application = service.application(subject_.pid);
    for (const UIElement& window : listOf(service.readAhead(application)->attribute(application, ax::windows))) {
        if (!(window == *window_)) continue;
        const std::unique_ptr<AccessibilityReads> walk = service.readAhead(window);
        const auto frame = AXEngine2::readFrame(*walk, window);
        ASSERT_TRUE(frame);
        EXPECT_GE(AXEngine2::collectElements(*walk, window, *frame).size(), buttons_.size());
    }
}

TEST_P(AccessibilityContract, TheMenuBarIsAnElementWhoseChildrenCanBeRead) {
    const UIElement application = service.application(subject_.pid);
    const std::unique_ptr<AccessibilityReads> walk = service.readAhead(application);
    const AxResult<AxValue> bar = walk->attribute(application, ax::menuBar);
    ASSERT_TRUE(bar.ok());
    ASSERT_TRUE(std::holds_alternative<UIElement>(bar.value));
    const std::vector<UIElement> items = listOf(walk->attribute(std::get<UIElement>(bar.value), ax::children));
    EXPECT_FALSE(items.empty());
    for (const UIElement& item : items) EXPECT_TRUE(AXEngine2::readElement(*walk, item));
}

TEST_P(AccessibilityContract, AnOrdinaryApplicationHasNoStatusItems) {
    const UIElement application = service.application(subject_.pid);
    EXPECT_FALSE(service.readAhead(application)->attribute(application, ax::extrasMenuBar).ok());
}

TEST_P(AccessibilityContract, ReadsAheadOfAProcessThatDoesNotExistFindNothing) {
    for (const std::int32_t pid : {999'999'999, -1}) {
        const UIElement nobody = service.application(pid);
        const std::unique_ptr<AccessibilityReads> walk = service.readAhead(nobody);
        ASSERT_TRUE(walk);
        EXPECT_FALSE(walk->attribute(nobody, ax::menuBar).ok());
        EXPECT_FALSE(walk->attribute(nobody, ax::extrasMenuBar).ok());
        EXPECT_TRUE(listOf(walk->attribute(nobody, ax::visibleChildren)).empty());
        EXPECT_TRUE(listOf(walk->attribute(nobody, ax::windows)).empty());
    }
}

TEST_P(AccessibilityContract, BothSwitchesCanBeWrittenToAnApplicationAndNothingElse) {
    const UIElement application = service.application(subject_.pid);
    for (const std::string_view name : {ax::enhancedUserInterface, ax::manualAccessibility}) {
        EXPECT_EQ(service.setAttribute(application, name, true), AxStatus::success);
        EXPECT_EQ(service.setAttribute(application, name, "true"), AxStatus::attributeUnsupported);
        EXPECT_EQ(service.setAttribute(buttons_.front(), name, true), AxStatus::attributeUnsupported);
        EXPECT_EQ(service.setAttribute(*window_, name, true), AxStatus::attributeUnsupported);
    }
    EXPECT_EQ(service.setAttribute(application, "AXNoSuchAttribute", true), AxStatus::attributeUnsupported);
    EXPECT_EQ(service.setAttribute(application, ax::title, true), AxStatus::attributeUnsupported);
}

TEST_P(AccessibilityContract, AWriteToAProcessThatDoesNotExistHarmsNobody) {
    service.setAttribute(service.application(999'999'999), ax::manualAccessibility, true);
    service.setAttribute(service.application(-1), ax::enhancedUserInterface, true);
    const auto read = service.attribute(service.application(999'999'999), ax::enhancedUserInterface);
    EXPECT_FALSE(read.value == AxValue(true));
}

TEST_P(AccessibilityContract, AProcessThatDoesNotExistHasNoWindow) {
    const UIElement nobody = service.application(999'999'999);
    EXPECT_FALSE(service.attribute(nobody, ax::focusedWindow).ok());
    EXPECT_FALSE(service.attribute(nobody, ax::mainWindow).ok());
    EXPECT_FALSE(service.attribute(service.application(-1), ax::focusedWindow).ok());
}

TEST_P(AccessibilityContract, WhatHasGoneFailsWithAStatus) {
    ASSERT_TRUE(service.attribute(*window_, ax::title).ok());
    subject_.quit();
    EXPECT_FALSE(service.attribute(service.application(subject_.pid), ax::focusedWindow).ok());
    EXPECT_FALSE(service.attribute(*window_, ax::title).ok());
    EXPECT_FALSE(service.attribute(buttons_.front(), ax::title).ok());
    EXPECT_FALSE(AXEngine2::readElement(service, buttons_.front()));
    EXPECT_NE(service.perform(buttons_.front(), ax::press), AxStatus::success);
    EXPECT_FALSE(service.windowNumber(*window_));
    const std::unique_ptr<AccessibilityReads> walk = service.readAhead(*window_);
    ASSERT_TRUE(walk);
    EXPECT_FALSE(walk->attribute(*window_, ax::role).ok());
    EXPECT_FALSE(AXEngine2::readElement(*walk, buttons_.front()));
    EXPECT_TRUE(AXEngine2::collectElements(*walk, *window_, {{0, 0}, {5000, 5000}}).empty());
    const UIElement application = service.application(subject_.pid);
    EXPECT_FALSE(service.readAhead(application)->attribute(application, ax::menuBar).ok());
    EXPECT_TRUE(listOf(service.readAhead(application)->attribute(application, ax::windows)).empty());
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(AccessibilityContract);

}  // namespace tarvix
