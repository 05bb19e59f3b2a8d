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
#include "search/SearchEngine.h"
#include "tests/desktop/RealServices.h"
#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/DesktopScale.h"
#include "tests/desktop/play/Fixture.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;

struct Toolkit {
    std::string name;
    std::string script;
    std::vector<std::string> more;
    Process::Environment environment = {};
    int resourceDpi = 0;                   // 0: not told
    int settingsDpi = 0, windowScale = 1;  // of the settings manager; 0: there is none

    friend std::ostream& operator<<(std::ostream& out, const Toolkit& toolkit) { return out << toolkit.name; }
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
        const Toolkit& toolkit = GetParam();
        if (toolkit.resourceDpi > 0) resources_.emplace(toolkit.resourceDpi);
        if (toolkit.settingsDpi > 0) {
            settings_.emplace(toolkit.settingsDpi, toolkit.windowScale);
            ASSERT_TRUE(settings_->isReady());
        }
        fixture_.emplace(toolkit.script, toolkit.more, toolkit.environment);
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

    // A busy machine may take so long to answer that a search goes on without the rest.
    OrderedSet<AccessibilityElement> completeCandidates() {
        const std::vector<KnownControl> known = controls(KnownControl::Visible::yes);
        OrderedSet<AccessibilityElement> found = candidates();
        await(15s, [&] {
            const bool isComplete = std::all_of(known.begin(), known.end(), [&](const KnownControl& control) {
                return finds(search_, found, control);
            });
            if (!isComplete) found = search_.candidates(fixture_->pid());
            return isComplete;
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

    void expectEveryControlAtItsFrame(const OrderedSet<AccessibilityElement>& candidates) {
        std::size_t right = 0;
        for (const KnownControl& control : controls(KnownControl::Visible::yes)) {
            const bool found = finds(search_, candidates, control);
            right += found ? 1 : 0;
            EXPECT_TRUE(found) << control.name << " (" << control.kind << ") stands at " << control.frame.origin.x
                               << "," << control.frame.origin.y << " " << control.frame.size.width << "x"
                               << control.frame.size.height << "; its name finds\n"
                               << describe(search_.filteredElements(candidates, control.name));
        }
        EXPECT_GE(right, 20u);
    }

    void expectTenClicks(const OrderedSet<AccessibilityElement>& candidates) {
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

    RealServices services_;
    const SearchEngine search_{services_.platform()};
    std::optional<ResourceDpi> resources_;
    std::optional<SettingsManager> settings_;
    std::optional<Fixture> fixture_;
};

TEST_P(ToolkitTest, EveryControlIsFoundByItsNameWithItsFrameRightToThePixel) {
    expectEveryControlAtItsFrame(completeCandidates());
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

TEST_P(ToolkitTest, ClicksOnTenControlsReachExactlyThose) { expectTenClicks(completeCandidates()); }

// The same where the desktop isn't at 100 %. Pixels that a window's units end between go to the next one, in the
// toolkits as here, so that the frames are exact all the same.
class ScaledToolkitTest : public ToolkitTest {};

TEST_P(ScaledToolkitTest, EveryControlIsFoundRightToThePixelAndClicked) {
    const auto controls = fixture_->controls();
    const auto label = std::find_if(controls.begin(), controls.end(), [](const auto& c) { return c.name == "Nettle"; });
    ASSERT_NE(label, controls.end());
    constexpr double highestUnscaled = 17;
    EXPECT_GT(label->frame.height(), highestUnscaled) << "nothing is scaled";
    const OrderedSet<AccessibilityElement> candidates = completeCandidates();
    expectEveryControlAtItsFrame(candidates);
    expectTenClicks(candidates);
}

INSTANTIATE_TEST_SUITE_P(Gtk3, ToolkitTest, ::testing::Values(Toolkit{"Gtk3", "gtk3.py", {}}));
INSTANTIATE_TEST_SUITE_P(Gtk4, ToolkitTest, ::testing::Values(Toolkit{"Gtk4", "gtk4.py", {}}));
INSTANTIATE_TEST_SUITE_P(Gtk3HeaderBar, ToolkitTest, ::testing::Values(Toolkit{"Gtk3", "gtk3.py", {"header-bar"}}));
INSTANTIATE_TEST_SUITE_P(Gtk4HeaderBar, ToolkitTest, ::testing::Values(Toolkit{"Gtk4", "gtk4.py", {"header-bar"}}));
INSTANTIATE_TEST_SUITE_P(Qt6, ToolkitTest, ::testing::Values(Toolkit{"Qt6", "qt6.py", {}}));
INSTANTIATE_TEST_SUITE_P(Chromium, ToolkitTest, ::testing::Values(Toolkit{"Chromium", "web.py", {"chromium"}}));
INSTANTIATE_TEST_SUITE_P(Firefox, ToolkitTest, ::testing::Values(Toolkit{"Firefox", "web.py", {"firefox"}}));

// What desktops and their users set. Xft.dpi scales the text alone in GTK, and all of a window in Qt.
const std::vector<Toolkit> kScaledGtk3 = {
    {"byGdkScale", "gtk3.py", {}, {{"GDK_SCALE", "2"}}},
    {"withHeaderBarByGdkScale", "gtk3.py", {"header-bar"}, {{"GDK_SCALE", "2"}}},
    {"textByResources", "gtk3.py", {}, {}, 144},
    {"textBySettings", "gtk3.py", {}, {}, 0, 144},
    {"bySettings", "gtk3.py", {}, {}, 192, 192, 2},
};
std::vector<Toolkit> asGtk4(std::vector<Toolkit> toolkits) {
    for (Toolkit& toolkit : toolkits) toolkit.script = "gtk4.py";
    return toolkits;
}
const std::vector<Toolkit> kScaledQt6 = {
    {"byFactor150", "qt6.py", {}, {{"QT_SCALE_FACTOR", "1.5"}}},
    {"byFactor200", "qt6.py", {}, {{"QT_SCALE_FACTOR", "2"}}},
    {"byScreen150", "qt6.py", {}, {{"QT_SCREEN_SCALE_FACTORS", "screen=1.5"}}},
    {"byScreen200", "qt6.py", {}, {{"QT_SCREEN_SCALE_FACTORS", "screen=2"}}},
    {"byFontDpi", "qt6.py", {}, {{"QT_FONT_DPI", "144"}}},
    {"byResources150", "qt6.py", {}, {}, 144},
    {"byResources200", "qt6.py", {}, {}, 192},
    {"bySettings", "qt6.py", {}, {}, 0, 144},
};
const auto nameOf = [](const auto& info) { return info.param.name; };

INSTANTIATE_TEST_SUITE_P(Gtk3Scaled, ScaledToolkitTest, ::testing::ValuesIn(kScaledGtk3), nameOf);
INSTANTIATE_TEST_SUITE_P(Gtk4Scaled, ScaledToolkitTest, ::testing::ValuesIn(asGtk4(kScaledGtk3)), nameOf);
INSTANTIATE_TEST_SUITE_P(Qt6Scaled, ScaledToolkitTest, ::testing::ValuesIn(kScaledQt6), nameOf);

}  // namespace
}  // namespace tarvix
