// What the accessibility service makes of applications that lie, stop, exit or go on for ever.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ax/AXEngine2.h"
#include "linux/atspi/AtspiService.h"
#include "linux/atspi/Replies.h"
#include "tests/desktop/AtspiFake.h"
#include "tests/desktop/X11Victim.h"
#include "tests/desktop/play/Activation.h"
#include "tests/desktop/play/Await.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using namespace atspi;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Ge;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::Le;
using ::testing::Not;
using ::testing::SizeIs;

using Names = std::vector<std::string>;

// Sets a variable of the environment for as long as it lives.
class Variable {
public:
    Variable(const char* name, const std::string& value) : name_(name) {
        if (const char* old = std::getenv(name)) old_ = old;
        setenv(name, value.c_str(), 1);
    }
    ~Variable() { old_ ? setenv(name_, old_->c_str(), 1) : unsetenv(name_); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* name_;
    std::optional<std::string> old_;
};

class ServiceFixture : public ::testing::Test {
protected:
    void SetUp() override {
        victim_.setText("WM_NAME", "fake");
        ASSERT_TRUE(victim_.show());
        ASSERT_TRUE(becomesActive(*windows_, victim_.window())) << "the window didn't become the active one";
        window_ = *windows_->active();
        ASSERT_EQ(window_.pid, getpid());
    }

    // In the window's own coordinates; the fake application's units are pixels.
    RawBox box(int x, int y, int width, int height) const {
        return {static_cast<std::int32_t>(window_.client.origin.x) + x,
                static_cast<std::int32_t>(window_.client.origin.y) + y, width, height};
    }

    void start(const std::string& toolkit, Names children = {}) {
        app_.emplace(toolkit);
        ASSERT_TRUE(app_->isInRegistry());
        setFrame(std::move(children));
    }
    void setFrame(Names children) {
        app_->set("frame", {.role = Role::frame,
                            .name = "fake",
                            .box = box(0, 0, static_cast<int>(window_.client.size.width),
                                       static_cast<int>(window_.client.size.height)),
                            .children = std::move(children)});
    }
    // Of a role that means nothing to any toolkit: a panel of Qt has a title.
    FakeObject panel(const std::string& name, Names children = {}) const {
        return {.role = Role::filler, .name = name, .box = box(10, 5, 100, 50), .children = std::move(children)};
    }
    void addPanel(const std::string& name, Names children = {}) { app_->set(name, panel(name, std::move(children))); }
    void addButton(const std::string& name, int row, bool showing = true) {
        app_->set(name, {.role = Role::pushButton,
                         .name = name,
                         .box = box(5, 5 + row * 4, 80, 20),
                         .interfaces = {"Component", "Action"},
                         .showing = showing});
    }
    // The frame with so many buttons, named "button0" and so on.
    void addButtons(int count) {
        Names names;
        for (int i = 0; i < count; ++i) {
            names.push_back("button" + std::to_string(i));
            addButton(names.back(), i % 60);
        }
        setFrame(names);
    }

    UIElement root() {
        const AxResult<AxValue> window = service_->attribute(service_->application(getpid()), ax::focusedWindow);
        EXPECT_TRUE(window.ok());
        return std::get<UIElement>(window.value);
    }
    // Empty when there was nothing to read.
    NodeTree fetch(Milliseconds limit = 10s) {
        WindowTree tree;
        FetchOptions options;
        options.limit = limit;
        reads_ = service_->readAhead(root(), options, &tree);
        return std::move(tree.nodes);
    }
    static Names showing(const NodeTree& tree) {
        Names names;
        for (const Node& node : tree)
            if (node.shows && !node.synthetic) names.push_back(node.name);
        return names;
    }
    static const Node* named(const NodeTree& tree, const std::string& name) {
        for (const Node& node : tree)
            if (node.name == name) return &node;
        return nullptr;
    }
    static Names childrenOf(const NodeTree& tree, const std::string& name) {
        Names names;
        const Node* node = named(tree, name);
        EXPECT_NE(node, nullptr) << name;
        for (const int child : node ? node->children : std::vector<int>())
            names.push_back(tree[static_cast<std::size_t>(child)].name);
        return names;
    }

    const std::unique_ptr<X11Windows> windows_ = std::move(X11Windows::open().value());
    X11Victim victim_;
    X11Window window_;
    std::optional<AtspiFake> app_;
    const std::unique_ptr<AtspiService> service_ = std::move(AtspiService::open(*windows_).value());
    std::unique_ptr<AccessibilityReads> reads_;
};

// --- Trees that are none.

class AtspiTreeTest : public ServiceFixture, public ::testing::WithParamInterface<const char*> {
protected:
    void SetUp() override {
        ServiceFixture::SetUp();
        if (!HasFatalFailure()) start(GetParam());
    }
};
INSTANTIATE_TEST_SUITE_P(Toolkits, AtspiTreeTest, ::testing::Values("Qt", "gtk", "Chromium"),
                         [](const auto& toolkit) { return std::string(toolkit.param); });

TEST_P(AtspiTreeTest, IsFetchedInTheApplicationsOrder) {
    setFrame({"b", "a"});
    addPanel("a", {"a2", "a1"});
    addPanel("b");
    addPanel("a1");
    addPanel("a2");
    const NodeTree tree = fetch();
    EXPECT_THAT(childrenOf(tree, "fake"), ElementsAre("b", "a"));
    EXPECT_THAT(childrenOf(tree, "a"), ElementsAre("a2", "a1"));
    const Node* a = named(tree, "a");
    ASSERT_TRUE(a);
    EXPECT_EQ(a->frame, (AxRect{{window_.client.origin.x + 10, window_.client.origin.y + 5}, {100, 50}}));
}

TEST_P(AtspiTreeTest, AnAncestorAmongTheChildrenIsNoChild) {
    setFrame({"a"});
    addPanel("a", {"b"});
    addPanel("b", {"a", "frame", "c", "b"});
    addPanel("c", {"a"});
    const NodeTree tree = fetch();
    EXPECT_THAT(showing(tree), ElementsAre("fake", "a", "b", "c"));
    EXPECT_THAT(childrenOf(tree, "b"), ElementsAre("c"));
    EXPECT_THAT(childrenOf(tree, "c"), IsEmpty());
}

TEST_P(AtspiTreeTest, TwoThatListEachOtherEnd) {
    setFrame({"a", "b"});
    addPanel("a", {"b"});
    addPanel("b", {"a"});
    EXPECT_THAT(showing(fetch()), ElementsAre("fake", "a", "b"));
}

TEST_P(AtspiTreeTest, AChildListedTwiceAppearsOnce) {
    setFrame({"a", "b", "a", "a"});
    addPanel("a");
    addPanel("b");
    EXPECT_THAT(childrenOf(fetch(), "fake"), ElementsAre("a", "b"));
}

TEST_P(AtspiTreeTest, NullObjectsAreNoChildren) {
    setFrame({"null", "a", "null"});
    addPanel("a");
    EXPECT_THAT(childrenOf(fetch(), "fake"), ElementsAre("a"));
}

TEST_P(AtspiTreeTest, WhatDoesntShowIsNoChildAndIsNotGoneInto) {
    setFrame({"a", "hidden", "b"});
    addPanel("a");
    addPanel("b");
    FakeObject hidden = panel("hidden", {"inner"});
    hidden.showing = false;
    app_->set("hidden", hidden);
    addPanel("inner");
    const NodeTree tree = fetch();
    EXPECT_THAT(childrenOf(tree, "fake"), ElementsAre("a", "b"));
    EXPECT_EQ(named(tree, "inner"), nullptr);
}

TEST_P(AtspiTreeTest, ATreeThatGoesOnForEverEndsAndCanBeWalked) {
    setFrame({"1"});
    app_->setMaker([this](const std::string& name) {
        FakeObject made = {.role = Role::filler, .name = name, .box = box(0, 0, 100, 50)};
        made.children = {std::to_string(std::stol(name) + 1)};
        return made;
    });
    const NodeTree tree = fetch();
    EXPECT_THAT(tree, SizeIs(AllOf(Ge(100U), Le(600U))));
    // The walk goes down as deep as the tree does.
    EXPECT_THAT(AXEngine2::collectElements(*reads_, root(), window_.visible()), SizeIs(0));
}

TEST_P(AtspiTreeTest, ATreeThatGrowsForEverEnds) {
    setFrame({"1"});
    app_->setMaker([this](const std::string& name) {
        FakeObject made = {.role = Role::filler, .name = name, .box = box(0, 0, 100, 50)};
        for (int i = 0; i < 40; ++i) made.children.push_back(name + "x" + std::to_string(i));
        return made;
    });
    EXPECT_THAT(fetch(1500ms), SizeIs(AllOf(Ge(100U), Le(31'000U))));
}

TEST_P(AtspiTreeTest, ADeepTreeKnownAtOnceCanBeFetchedAndWalked) {
    setFrame({"0"});
    for (int i = 0; i < 2'900; ++i) addPanel(std::to_string(i), {std::to_string(i + 1)});
    addPanel("2900");
    EXPECT_THAT(fetch(), SizeIs(AllOf(Ge(100U), Le(600U))));
    EXPECT_THAT(AXEngine2::collectElements(*reads_, root(), window_.visible()), SizeIs(0));
}

TEST_P(AtspiTreeTest, NobodyIsAskedForMatches) {
    addButtons(10);
    fetch();
    EXPECT_THAT(app_->calls(), Not(IsEmpty()));
    EXPECT_EQ(app_->count("GetMatches"), 0U);
}

// --- Answers that are none.

class AtspiAnswerTest : public ServiceFixture {
protected:
    void SetUp() override {
        ServiceFixture::SetUp();
        if (!HasFatalFailure()) start("Qt", {"before", "odd", "after"});
        if (HasFatalFailure()) return;
        addPanel("before");
        addPanel("after");
        addPanel("inner");
    }
};

TEST_F(AtspiAnswerTest, AnErrorOrAWrongTypeMakesTheResultSmaller) {
    struct Case {
        const char* member;
        bool isThere, hasInner;
    };
    for (const Case& each :
         {Case{"GetState", false, false}, Case{"GetRole", false, false}, Case{"GetChildren", true, false},
          Case{"GetInterfaces", true, true}, Case{"GetExtents", true, true}, Case{"Name", true, true},
          Case{"Description", true, true}, Case{"GetLocalizedRoleName", true, true}})
        for (const bool isError : {true, false}) {
            FakeObject odd = panel("odd", {"inner"});
            (isError ? odd.refused : odd.nonsense).insert(each.member);
            app_->set("odd", odd);
            const NodeTree tree = fetch();
            const Names names = showing(tree);
            SCOPED_TRACE(std::string(each.member) + (isError ? ", error" : ", wrong type"));
            EXPECT_THAT(names, IsSupersetOf({"fake", "before", "after"}));
            EXPECT_EQ(childrenOf(tree, "fake").size(), each.isThere ? 3U : 2U);
            EXPECT_EQ(named(tree, "inner") != nullptr, each.hasInner);
            EXPECT_EQ(named(tree, "odd") != nullptr && each.isThere,
                      each.isThere && std::string(each.member) != "Name");
        }
}

TEST_F(AtspiAnswerTest, AMissingInterfaceMakesTheResultSmaller) {
    FakeObject odd = panel("odd", {"inner"});
    odd.role = Role::entry;
    odd.interfaces = {};  // neither a box nor a text
    app_->set("odd", odd);
    const NodeTree tree = fetch();
    EXPECT_THAT(showing(tree), IsSupersetOf({"fake", "before", "odd", "after", "inner"}));
    EXPECT_EQ(named(tree, "odd")->raw, std::nullopt);
}

TEST_F(AtspiAnswerTest, AFrameThatTellsNothingGivesAnEmptyWindow) {
    app_->set("frame", {.role = Role::frame, .refused = {"GetExtents"}});
    EXPECT_THAT(fetch(), IsEmpty());
    EXPECT_EQ(reads_->attribute(root(), ax::role).status, AxStatus::cannotComplete);
}

TEST_F(AtspiAnswerTest, OverlongTextsAreCut) {
    FakeObject odd = panel(std::string(10'000'000, 'n'));
    odd.role = Role::entry;
    odd.interfaces = {"Component", "Text"};
    odd.text = std::string(10'000'000, 't');
    app_->set("odd", odd);
    const NodeTree tree = fetch();
    ASSERT_THAT(childrenOf(tree, "fake"), SizeIs(3));
    const Node& node = tree[static_cast<std::size_t>(tree[0].children[1])];
    EXPECT_EQ(node.name, std::string(kLongestName, 'n'));
    EXPECT_EQ(node.text, std::string(kLongestTextBytes, 't'));
}

TEST_F(AtspiAnswerTest, OfADocumentNoMoreTextIsAskedForThanIsKept) {
    FakeObject terminal = panel("terminal");
    terminal.role = Role::terminal;
    terminal.interfaces = {"Component", "Text"};
    terminal.text = std::string(1'000'000, 't');
    terminal.mostText = kLongestText;
    app_->set("odd", terminal);
    const NodeTree tree = fetch();
    ASSERT_THAT(childrenOf(tree, "fake"), SizeIs(3));
    EXPECT_EQ(tree[static_cast<std::size_t>(tree[0].children[1])].text, std::string(kLongestTextBytes, 't'));
    terminal.text = "short";
    app_->set("odd", terminal);
    const NodeTree again = fetch();
    EXPECT_EQ(again[static_cast<std::size_t>(again[0].children[1])].text, "short");
}

// --- Applications that stop.

class AtspiFaultTest : public ServiceFixture {};

TEST_F(AtspiFaultTest, WhatHadComeBeforeAnApplicationStoppedStands) {
    start("Qt");
    addButtons(60);
    app_->stopAfter(300);
    const NodeTree tree = fetch(500ms);
    EXPECT_THAT(showing(tree), Contains("button0"));
    EXPECT_THAT(AXEngine2::collectElements(*reads_, root(), window_.visible()), SizeIs(AllOf(Ge(1U), Le(59U))));
}

TEST_F(AtspiFaultTest, AStoppedApplicationIsGivenLittleTimeUntilItAnswersAgain) {
    for (const char* toolkit : {"Qt", "gtk", "Chromium"}) {
        SCOPED_TRACE(toolkit);
        start(toolkit);
        addButtons(60);
        app_->stopAfter(0);
        const auto timed = [this] {
            const Clock::time_point before = Clock::now();
            EXPECT_THAT(fetch(1500ms), IsEmpty());
            return Clock::now() - before;
        };
        const auto first = timed(), second = timed();
        EXPECT_LT(first, 10s);
        EXPECT_LT(second, first / 2);
        app_->answerAgain();
        EXPECT_TRUE(await(10s, [this] { return fetch().size() == 61; }));
        app_.reset();
    }
}

TEST_F(AtspiFaultTest, AnApplicationThatStopsWithItsFrameKnownIsGivenLittleTimeToo) {
    start("Qt");
    addButtons(60);
    ASSERT_THAT(fetch(), SizeIs(61));
    app_->stopAfter(100);
    const Clock::time_point before = Clock::now();
    EXPECT_THAT(fetch(1500ms), SizeIs(AllOf(Ge(1U), Le(61U))));
    const auto first = Clock::now() - before;
    const Clock::time_point between = Clock::now();
    EXPECT_THAT(fetch(1500ms), IsEmpty());
    EXPECT_LT(Clock::now() - between, first / 2);
    app_->answerAgain();
    EXPECT_TRUE(await(10s, [this] { return showing(fetch()).size() == 61; }));
}

TEST_F(AtspiFaultTest, AnApplicationThatDoesntTellItsToolkitIsNotAskedOn) {
    start("Qt");
    app_->stopAt("Get ToolkitName");
    EXPECT_THAT(fetch(300ms), IsEmpty());
    ASSERT_FALSE(app_->calls().empty());
    EXPECT_EQ(app_->calls().back().member, "Get ToolkitName");
}

TEST_F(AtspiFaultTest, ARoleWordThatDidntComeIsAskedForAgain) {
    start("Qt");
    addButtons(3);
    app_->stopAt("GetLocalizedRoleName");
    fetch(500ms);
    app_->answerAgain();
    ASSERT_TRUE(await(10s, [this] { return fetch().size() == 4; }));
    const NodeTree tree = fetch();
    EXPECT_EQ(named(tree, "button0")->roleWord, "role 43");
}

TEST_F(AtspiFaultTest, WhatHadComeBeforeAnApplicationExitedStands) {
    start("Qt");
    addButtons(60);
    app_->exitAfter(300);
    EXPECT_THAT(showing(fetch()), Contains("button0"));
    EXPECT_TRUE(await(10s, [this] { return fetch().empty(); }));
}

TEST_F(AtspiFaultTest, APressOnAnApplicationThatHasGoneIsNotDone) {
    start("Qt");
    addButtons(1);
    fetch();
    const auto children = reads_->attribute(root(), ax::visibleChildren);
    const UIElement button = std::get<std::vector<UIElement>>(children.value).at(0);
    app_.reset();
    EXPECT_NE(service_->perform(button, ax::press), AxStatus::success);
}

// --- What is asked, and how often.

class AtspiCallsTest : public ServiceFixture {};

TEST_F(AtspiCallsTest, QtIsNeverAskedForAllProperties) {
    start("Qt");
    addButtons(20);
    ASSERT_THAT(fetch(), SizeIs(21));
    EXPECT_EQ(app_->count("GetAll"), 0U);
    EXPECT_EQ(app_->count("GetItems"), 0U);
}

TEST_F(AtspiCallsTest, NeitherIsAnUnknownToolkit) {
    start("SomethingNew");
    addButtons(20);
    ASSERT_THAT(fetch(), SizeIs(21));
    EXPECT_EQ(app_->count("GetAll"), 0U);
}

TEST_F(AtspiCallsTest, ARoleWordIsAskedForOnce) {
    start("Qt");
    addButtons(20);
    const NodeTree tree = fetch();
    EXPECT_EQ(app_->count("GetLocalizedRoleName"), 2U);  // of the frame and of buttons
    EXPECT_EQ(named(tree, "button19")->roleWord, "role 43");
    app_->forgetCalls();
    EXPECT_EQ(named(fetch(), "button19")->roleWord, "role 43");
    EXPECT_EQ(app_->count("GetLocalizedRoleName"), 0U);
}

TEST_F(AtspiCallsTest, ALongListOfABrowserIsSearchedByIndexWhereverItIsScrolled) {
    constexpr int kCount = 100'000, kFirst = 90'000, kHeight = 20;
    start("Chromium", {"page"});
    app_->set("page", {.role = Role::documentWeb,
                       .name = "page",
                       .box = box(0, 40, 400, 200),
                       .childCount = kCount,
                       .childAt = [](std::int32_t at) { return std::to_string(at); }});
    app_->setMaker([this](const std::string& name) {
        const int at = std::stoi(name);
        const bool shows = at >= kFirst && at < kFirst + 10;
        return FakeObject{.role = Role::link,
                          .name = name,
                          .box = box(0, 40 + (at - kFirst) * kHeight, 300, kHeight),
                          .showing = shows};
    });
    const NodeTree tree = fetch();
    EXPECT_THAT(childrenOf(tree, "page"), IsSupersetOf({"90000", "90005", "90009"}));
    std::size_t onThePage = 0;
    for (const FakeCall& call : app_->calls()) {
        EXPECT_FALSE(call.object == "page" && call.member == "GetChildren");
        onThePage += call.object == "page" ? 1 : 0;
    }
    EXPECT_THAT(onThePage, Le(3'000U));
}

TEST_F(AtspiCallsTest, ATablesRowsThatDontShowCostNothing) {
    constexpr int kHeight = 20, kWidth = 100, kColumns = 3, kVisible = 10;
    const auto callsFor = [&](std::int32_t rows) {
        const std::int32_t first = rows / 2;
        start("Qt", {"table"});
        const RawBox area = box(10, 10, kColumns * kWidth, kVisible * kHeight);
        app_->set("table",
                  {.role = Role::table,
                   .name = "table",
                   .box = area,
                   .interfaces = {"Component", "Table"},
                   .managesDescendants = true,
                   .childCount = rows * kColumns,
                   .childAt = [](std::int32_t at) { return std::to_string(at); },
                   .hit =
                       [=](std::int32_t x, std::int32_t y) {
                           return std::to_string((first + (y - area.y) / kHeight) * kColumns + (x - area.x) / kWidth);
                       },
                   .rows = rows,
                   .columns = kColumns});
        app_->setMaker([=](const std::string& name) {
            const std::int32_t at = std::stoi(name);
            return FakeObject{
                .role = Role::tableCell,
                .name = std::to_string(at / kColumns - first) + "/" + std::to_string(at % kColumns),
                .box = {area.x + at % kColumns * kWidth, area.y + (at / kColumns - first) * kHeight, kWidth, kHeight},
                .index = at};
        });
        const NodeTree tree = fetch();
        Names expected;
        for (int row = 0; row < kVisible; ++row)
            for (int column = 0; column < kColumns; ++column)
                expected.push_back(std::to_string(row) + "/" + std::to_string(column));
        Names found;
        for (const int child : named(tree, "table")->children)
            if (const Node& cell = tree[static_cast<std::size_t>(child)]; cell.shows) found.push_back(cell.name);
        EXPECT_EQ(found, expected);
        EXPECT_EQ(app_->count("GetChildren"), 2U);  // of the application and of the frame
        const std::size_t calls = app_->calls().size();
        app_.reset();
        return calls;
    };
    const std::size_t few = callsFor(1'000);
    EXPECT_THAT(few, Le(1'000U));
    EXPECT_EQ(callsFor(100'000'000), few);
}

TEST_F(AtspiCallsTest, TheOwnProcessIsNotAskedForItsFocus) {
    start("Qt");
    addButtons(1);
    const auto askedBy = [this](std::int32_t own) {
        service_->setOwnProcess(own);
        const std::size_t before = app_->count("GetChildren");
        EXPECT_EQ(service_->attribute(service_->systemWide(), ax::focusedUIElement).status, AxStatus::noValue);
        return app_->count("GetChildren") - before;
    };
    EXPECT_EQ(askedBy(getpid()), 0U);
    EXPECT_GT(askedBy(-1), 0U) << "it is asked otherwise";
}

TEST_F(AtspiCallsTest, ASingleReadDoesntWaitForABrowserToMakeItsTree) {
    start("Chromium");
    addButtons(20);
    EXPECT_EQ(service_->attribute(service_->systemWide(), ax::focusedUIElement).status, AxStatus::noValue);
    EXPECT_EQ(app_->count("GetAttributes"), 0U);
    ASSERT_THAT(fetch(), SizeIs(21));
    EXPECT_THAT(app_->count("GetAttributes"), Ge(1U));  // has it made
}

TEST_F(AtspiCallsTest, AnObjectOfAnotherProcessIsNotTakenForOneOfTheSamePath) {
    start("gtk", {"a", "plug"});
    addPanel("a");
    app_->set("plug", {.role = Role::panel, .name = "ours", .box = box(10, 5, 100, 50)});
    AtspiFake other("gtk");
    ASSERT_TRUE(other.isInRegistry());
    other.set("plug", {.role = Role::panel, .name = "theirs", .box = box(10, 5, 100, 50)});
    app_->setBus("plug", other.busName());
    EXPECT_THAT(showing(fetch()), ElementsAre("fake", "a", "theirs"));
}

TEST_F(AtspiCallsTest, AWindowIsTheSameElementHoweverItWasReached) {
    start("Qt");
    addButtons(1);
    fetch();
    const auto children = std::get<std::vector<UIElement>>(reads_->attribute(root(), ax::visibleChildren).value);
    ASSERT_THAT(children, SizeIs(1));
    const UIElement above = std::get<UIElement>(reads_->attribute(children.front(), ax::parent).value);
    EXPECT_EQ(above, root());
    EXPECT_EQ(above.identity().hash(), root().identity().hash());
}

// --- Acting.

class AtspiActionTest : public ServiceFixture {
protected:
    UIElement firstChild() {
        fetch();
        return std::get<std::vector<UIElement>>(reads_->attribute(root(), ax::visibleChildren).value).at(0);
    }
};

TEST_F(AtspiActionTest, APressIsTheFirstAction) {
    start("Qt");
    addButtons(1);
    const UIElement button = firstChild();
    app_->forgetCalls();
    EXPECT_EQ(service_->perform(button, ax::press), AxStatus::success);
    EXPECT_EQ(app_->count("DoAction"), 1U);
}

TEST_F(AtspiActionTest, WhatHasNoActionCantBePressed) {
    start("Qt", {"label"});
    addPanel("label");
    const UIElement label = firstChild();
    EXPECT_EQ(service_->perform(label, ax::press), AxStatus::actionUnsupported);
    EXPECT_EQ(service_->perform(label, "AXRaise"), AxStatus::actionUnsupported);
    EXPECT_EQ(service_->perform(root(), ax::press), AxStatus::actionUnsupported);
}

TEST_F(AtspiActionTest, AnApplicationThatDoesntAnswerAPressIsNotWaitedFor) {
    start("Qt");
    addButtons(1);
    const UIElement button = firstChild();
    app_->stopAfter(0);
    EXPECT_EQ(service_->perform(button, ax::press), AxStatus::cannotComplete);
}

// So that what would be pressed is clicked instead.
TEST_F(AtspiActionTest, JavaHasNoElementAtAPoint) {
    const AxRect area = window_.visible();
    for (const auto& [toolkit, status] :
         {std::pair("Qt", AxStatus::success), std::pair("J2SE-access-bridge", AxStatus::noValue)}) {
        SCOPED_TRACE(toolkit);
        start(toolkit);
        addButtons(1);
        app_->set("frame", {.role = Role::frame,
                            .name = "fake",
                            .box = box(0, 0, static_cast<int>(area.size.width), static_cast<int>(area.size.height)),
                            .children = {"button0"},
                            .hit = [](std::int32_t, std::int32_t) { return "button0"; }});
        EXPECT_EQ(service_->elementAt({area.origin.x + 10, area.origin.y + 10}).status, status);
    }
}

// --- No bus.

// Everything that can be asked about a window gets an answer; `window` by the X server's word.
void expectAnswers(AtspiService& service, const X11Window& window) {
    const UIElement application = service.application(window.pid);
    const AxResult<AxValue> focused = service.attribute(application, ax::focusedWindow);
    ASSERT_TRUE(focused.ok());  // the X server knows
    const UIElement root = std::get<UIElement>(focused.value);
    EXPECT_EQ(service.windowNumber(root), window.number);
    EXPECT_EQ(service.pid(root), window.pid);
    EXPECT_TRUE(service.attribute(root, ax::position).ok());
    EXPECT_EQ(service.attribute(root, ax::role).status, AxStatus::cannotComplete);
    EXPECT_EQ(service.attribute(service.systemWide(), ax::focusedUIElement).status, AxStatus::cannotComplete);
    const auto reads = service.readAhead(root);
    EXPECT_EQ(reads->attribute(root, ax::role).status, AxStatus::cannotComplete);
    const AxRect area = window.visible();
    EXPECT_EQ(service.elementAt({area.origin.x + 10, area.origin.y + 10}).status, AxStatus::cannotComplete);
    EXPECT_EQ(service.perform(root, ax::press), AxStatus::actionUnsupported);
}

class WithoutABusTest : public ServiceFixture {};

TEST_F(WithoutABusTest, NobodyListensAndEverythingIsAnswered) {
    const Variable address("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    expectAnswers(*service_, window_);
    EXPECT_FALSE(service_->isTrusted());
    service_->askForTrust();
    EXPECT_FALSE(service_->isTrusted());
}

TEST_F(WithoutABusTest, AnAddressThatIsNoneIsAnsweredToo) {
    const Variable address("DBUS_SESSION_BUS_ADDRESS", "nonsense");
    expectAnswers(*service_, window_);
    EXPECT_FALSE(service_->isTrusted());
}

TEST_F(WithoutABusTest, ABusThatNeverAnswersIsNotWaitedForLong) {
    const std::string path = std::filesystem::temp_directory_path() / ("silent" + std::to_string(getpid()));
    const int listening = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un name = {};
    name.sun_family = AF_UNIX;
    ASSERT_LT(path.copy(name.sun_path, sizeof name.sun_path - 1), sizeof name.sun_path - 1);
    ASSERT_EQ(bind(listening, reinterpret_cast<sockaddr*>(&name), sizeof name), 0);
    ASSERT_EQ(listen(listening, 50), 0);
    {
        const Variable address("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + path);
        const Clock::time_point before = Clock::now();
        expectAnswers(*service_, window_);
        EXPECT_FALSE(service_->isTrusted());
        EXPECT_LT(Clock::now() - before, 30s);
    }
    close(listening);
    std::filesystem::remove(path);
}

// On a desktop whose session bus has no accessibility behind it.
class InaccessibleDesktopTest : public ServiceFixture {};

TEST_F(InaccessibleDesktopTest, WindowsAreThereAndEmpty) {
    expectAnswers(*service_, window_);
    service_->askForTrust();
    EXPECT_FALSE(service_->isTrusted());
}

class BusComesBackTest : public ServiceFixture {};

TEST_F(BusComesBackTest, AndWindowsAreReadAgain) {
    start("Qt");
    addButtons(3);
    {
        const Variable address("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
        EXPECT_THAT(fetch(), IsEmpty());
    }
    EXPECT_THAT(fetch(), SizeIs(4));
}

TEST_F(BusComesBackTest, AndWhoAsksForTheTrustThatIsThereByNowHearsOfIt) {
    {
        const Variable address("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
        EXPECT_FALSE(service_->isTrusted());
    }
    int told = 0;
    const Subscription listening = service_->onTrustChanged([&told] { ++told; });
    service_->askForTrust();
    EXPECT_EQ(told, 1);
    service_->askForTrust();
    EXPECT_EQ(told, 1) << "nothing has changed since";
    EXPECT_TRUE(service_->isTrusted());
}

}  // namespace
}  // namespace tarvix
