// Menus and lists that browsers open in windows of their own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "core/Pointer.h"
#include "search/SearchEngine.h"
#include "tests/desktop/RealServices.h"
#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Keyboard.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;

// A popup on the page of the fixtures: how it is opened, and one of its entries.
struct Popup {
    const char* control;
    std::uint8_t button;
    const char* entry;
};
struct Browser {
    const char* name;
    const char* argument;
    std::vector<Popup> popups;
    friend void PrintTo(const Browser& browser, std::ostream* out) { *out << browser.name; }
};

class PopupTest : public ::testing::TestWithParam<Browser> {
protected:
    void open(const Popup& popup) {
        // A browser makes its tree for the first who asks.
        std::optional<AccessibilityElement> control;
        ASSERT_TRUE(await(20s, [&] { return (control = find(popup.control)).has_value(); })) << popup.control;
        const AxPoint at = clickPoint(*control);
        keyboard_.movePointer({static_cast<int>(at.x), static_cast<int>(at.y)});
        keyboard_.click(popup.button);
    }

    std::optional<AccessibilityElement> find(const std::string& name) const {
        for (const AccessibilityElement& each : search_.candidates(fixture_.pid()))
            if (each.title.value_or(each.value.value_or("")).starts_with(name) || each.label == name) return each;
        return std::nullopt;
    }
    // The window that a popup of the browser has at the middle of an element.
    std::optional<std::uint32_t> popupAt(AxRect frame) const {
        const AxPoint middle{frame.minX() + frame.width() / 2, frame.minY() + frame.height() / 2};
        for (const X11Window& each : services_.windows->onScreen())
            if (each.isOverrideRedirect && intersects(each.client, AxRect{middle, {1, 1}})) return each.number;
        return std::nullopt;
    }
    bool isOnScreen(std::uint32_t window) const {
        const auto windows = services_.windows->onScreen();
        return std::ranges::count(windows, window, &X11Window::number) > 0;
    }

    RealServices services_;
    const SearchEngine search_{services_.platform()};
    Keyboard keyboard_;
    Fixture fixture_{"web.py", {GetParam().argument}};
};

TEST_P(PopupTest, ItsEntriesAreCandidatesWhereTheyStandAndTakeClicks) {
    ASSERT_TRUE(fixture_.isReady());
    const Pointer pointer(services_.platform());
    for (const Popup& each : GetParam().popups) {
        open(each);
        if (HasFatalFailure()) return;
        std::optional<AccessibilityElement> entry;
        std::optional<std::uint32_t> popup;
        ASSERT_TRUE(await(15s,
                          [&] {
                              entry = find(each.entry);
                              popup = entry ? popupAt(entry->frame()) : std::nullopt;
                              return popup.has_value();
                          }))
            << each.entry << (entry ? ": no popup stands there" : ": no such entry");
        pointer.postClick(MouseButton::left, clickPoint(*entry));
        EXPECT_TRUE(await(10s, [&] { return !isOnScreen(*popup); })) << each.entry;
    }
}

std::string nameOf(const ::testing::TestParamInfo<Browser>& row) { return row.param.name; }

INSTANTIATE_TEST_SUITE_P(
    Browsers, PopupTest,
    ::testing::Values(Browser{"Chromium", "chromium", {{"Sorrel", 1, "Thistle"}, {"Nettle", 3, "View page source"}}},
                      Browser{"Firefox", "firefox", {{"Sorrel", 1, "Thistle"}, {"Nettle", 3, "View Page Source"}}}),
    nameOf);

}  // namespace
}  // namespace tarvix
