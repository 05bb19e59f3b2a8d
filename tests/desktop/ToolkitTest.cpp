// What a search finds in real windows of each toolkit, against what the windows know of themselves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "core/Pointer.h"
#include "linux/atspi/AtspiService.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Events.h"
#include "linux/x11/X11Screens.h"
#include "linux/x11/X11WindowServer.h"
#include "linux/x11/X11Windows.h"
#include "linux/x11/X11Workspace.h"
#include "search/SearchEngine.h"
#include "simulated/SimulatedDesktop.h"
#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;

struct Toolkit {
    std::string name;
    std::string script;
    std::vector<std::string> more;

    friend std::ostream& operator<<(std::ostream& out, const Toolkit& toolkit) { return out << toolkit.name; }
};

// The real services, as far as a search goes; what belongs to panels and settings is simulated.
struct Services {
    std::unique_ptr<X11Windows> windows = std::move(X11Windows::open().value());
    std::unique_ptr<X11Connection> connection = std::move(X11Connection::open().value());
    std::unique_ptr<AtspiService> accessibility = std::move(AtspiService::open(*windows).value());
    std::unique_ptr<X11Workspace> workspace = std::move(X11Workspace::open(*connection, *windows).value());
    std::unique_ptr<X11WindowServer> windowServer = std::move(X11WindowServer::open(*windows).value());
    std::unique_ptr<X11Screens> screens = std::move(X11Screens::open(*connection).value());
    std::unique_ptr<X11Events> events = std::move(X11Events::open(*connection).value());
    SimulatedDesktop rest;

    Platform platform() {
        return {.accessibility = *accessibility,
                .application = rest.application,
                .workspace = *workspace,
                .windowServer = *windowServer,
                .screens = *screens,
                .events = *events,
                .eventTaps = rest.eventTaps,
                .hotKeys = rest.hotKeys,
                .inputSources = rest.inputSources,
                .panels = rest.panels,
                .runLoop = rest.runLoop,
                .userDefaults = rest.userDefaults,
                .pasteboard = rest.pasteboard,
                .notificationCenter = rest.notificationCenter,
                .milestones = rest.milestones};
    }
};

// Whether a control's name, as a query, finds it at its place.
bool finds(const SearchEngine& search, const OrderedSet<AccessibilityElement>& candidates,
           const KnownControl& control) {
    const OrderedSet<AccessibilityElement> found = search.filteredElements(candidates, control.name);
    return std::any_of(found.begin(), found.end(),
                       [&](const AccessibilityElement& element) { return element.frame() == control.frame; });
}

std::string describe(const OrderedSet<AccessibilityElement>& elements) {
    std::string text;
    for (const AccessibilityElement& element : elements) {
        const AxRect frame = element.frame();
        text += "  " + element.roleDescription + " at " + std::to_string(frame.origin.x) + "," +
                std::to_string(frame.origin.y) + " " + std::to_string(frame.size.width) + "x" +
                std::to_string(frame.size.height) + "\n";
    }
    return text.empty() ? "  nothing\n" : text;
}

class ToolkitTest : public ::testing::TestWithParam<Toolkit> {
protected:
    void SetUp() override {
        fixture_.emplace(GetParam().script, GetParam().more);
        ASSERT_TRUE(fixture_->isReady());
        ASSERT_TRUE(await(10s, [this] {
            const auto active = services_.windows->active();
            return active && active->number == fixture_->window();
        })) << "the fixture's window is not the active one";
    }

    // Browsers fill their trees when they are first asked, so the first searches find less: as long as a search finds
    // more than the one before, it isn't complete.
    OrderedSet<AccessibilityElement> candidates() {
        OrderedSet<AccessibilityElement> found = search_.candidates(fixture_->pid());
        int same = 0;
        await(15s, [&] {
            const auto now = search_.candidates(fixture_->pid());
            same = now.size() == found.size() && found.size() > 0 ? same + 1 : 0;
            found = now;
            if (same < 3) std::this_thread::sleep_for(50ms);
            return same >= 3;
        });
        return found;
    }

    std::vector<KnownControl> controls(KnownControl::Visible visible) const {
        std::vector<KnownControl> controls = fixture_->controls();
        std::erase_if(controls, [&](const KnownControl& control) { return control.visible != visible; });
        return controls;
    }

    // Ten controls that log clicks and take them without covering or moving others, of as many kinds as there are.
    std::vector<KnownControl> tenToClick() const {
        std::vector<KnownControl> chosen, others;
        std::set<std::string> kinds;
        for (const KnownControl& control : controls(KnownControl::Visible::yes)) {
            // These open a list or a menu.
            if (!control.clickable || control.kind == "menu" || control.kind == "combo box") continue;
            (kinds.insert(control.kind).second ? chosen : others).push_back(control);
        }
        chosen.insert(chosen.end(), others.begin(), others.end());
        chosen.resize(std::min<std::size_t>(chosen.size(), 10));
        return chosen;
    }

    Services services_;
    const SearchEngine search_{services_.platform()};
    std::optional<Fixture> fixture_;
};

TEST_P(ToolkitTest, EveryControlIsFoundByItsNameWithItsFrameRightToThePixel) {
    const OrderedSet<AccessibilityElement> candidates = this->candidates();
    std::size_t right = 0;
    for (const KnownControl& control : controls(KnownControl::Visible::yes)) {
        const bool found = finds(search_, candidates, control);
        right += found ? 1 : 0;
        EXPECT_TRUE(found) << control.name << " (" << control.kind << ") stands at " << control.frame.origin.x << ","
                           << control.frame.origin.y << " " << control.frame.size.width << "x"
                           << control.frame.size.height << "; its name finds\n"
                           << describe(search_.filteredElements(candidates, control.name));
    }
    EXPECT_GE(right, 20u);
}

TEST_P(ToolkitTest, HiddenAndScrolledOutControlsAreNotFound) {
    const OrderedSet<AccessibilityElement> candidates = this->candidates();
    ASSERT_GT(candidates.size(), 20u);
    const std::vector<KnownControl> hidden = controls(KnownControl::Visible::no);
    EXPECT_GE(hidden.size(), 20u);
    for (const KnownControl& control : hidden) {
        const OrderedSet<AccessibilityElement> found = search_.filteredElements(candidates, control.name);
        EXPECT_EQ(found.size(), 0u) << control.name << " (" << control.kind << ") can't be seen; its name finds\n"
                                    << describe(found);
    }
}

TEST_P(ToolkitTest, ClicksOnTenControlsReachExactlyThose) {
    const OrderedSet<AccessibilityElement> candidates = this->candidates();
    const Pointer pointer(services_.platform());
    std::vector<FixtureClick> wanted;
    for (const KnownControl& control : tenToClick()) {
        const OrderedSet<AccessibilityElement> found = search_.filteredElements(candidates, control.name);
        ASSERT_GT(found.size(), 0u) << control.name;
        // Two clicks in a row on neighbours are no double click for any toolkit, as they are too far apart.
        pointer.postClick(MouseButton::left, clickPoint(*found.begin()));
        wanted.push_back({control.name, 1, 1, ""});
        EXPECT_TRUE(await(5s, [&] { return fixture_->clicks().size() >= wanted.size(); })) << control.name;
    }
    EXPECT_EQ(wanted.size(), 10u);
    EXPECT_EQ(fixture_->clicks(), wanted);
}

INSTANTIATE_TEST_SUITE_P(Gtk3, ToolkitTest, ::testing::Values(Toolkit{"Gtk3", "gtk3.py", {}}));
INSTANTIATE_TEST_SUITE_P(Gtk4, ToolkitTest, ::testing::Values(Toolkit{"Gtk4", "gtk4.py", {}}));
INSTANTIATE_TEST_SUITE_P(Gtk3HeaderBar, ToolkitTest, ::testing::Values(Toolkit{"Gtk3", "gtk3.py", {"header-bar"}}));
INSTANTIATE_TEST_SUITE_P(Gtk4HeaderBar, ToolkitTest, ::testing::Values(Toolkit{"Gtk4", "gtk4.py", {"header-bar"}}));
INSTANTIATE_TEST_SUITE_P(Qt6, ToolkitTest, ::testing::Values(Toolkit{"Qt6", "qt6.py", {}}));
INSTANTIATE_TEST_SUITE_P(Chromium, ToolkitTest, ::testing::Values(Toolkit{"Chromium", "web.py", {"chromium"}}));
INSTANTIATE_TEST_SUITE_P(Firefox, ToolkitTest, ::testing::Values(Toolkit{"Firefox", "web.py", {"firefox"}}));

}  // namespace
}  // namespace tarvix
