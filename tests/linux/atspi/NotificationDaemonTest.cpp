#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "linux/atspi/NotificationDaemon.h"

namespace tarvix::atspi {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

X11Window window(std::uint32_t number, std::vector<std::string> types, bool overrideRedirect = true) {
    X11Window made;
    made.number = number;
    made.types = std::move(types);
    made.isOverrideRedirect = overrideRedirect;
    return made;
}

std::vector<std::uint32_t> numbersAmong(std::vector<X11Window> windows) {
    std::vector<std::uint32_t> numbers;
    for (const X11Window& each : notificationsAmong(std::move(windows))) numbers.push_back(each.number);
    return numbers;
}

TEST(Notifications, AreTheWindowsThatCallThemselvesSo) {
    EXPECT_THAT(numbersAmong({window(2, {"NOTIFICATION"}), window(1, {"NOTIFICATION", "UTILITY"}),
                              window(3, {"NOTIFICATION"}, false)}),
                ElementsAre(2, 1, 3));
}

TEST(Notifications, OfADaemonAreAlsoThoseThatNoManagerPlaces) {
    EXPECT_THAT(numbersAmong({window(1, {}), window(2, {"_KDE_NET_WM_WINDOW_TYPE_OVERRIDE", "NORMAL"})}),
                ElementsAre(1, 2));
}

TEST(Notifications, ADaemonsOtherWindowsAreNone) {
    EXPECT_THAT(numbersAmong({window(1, {"NORMAL"}, false), window(2, {"DIALOG"}, false), window(3, {"TOOLTIP"}),
                              window(4, {"POPUP_MENU"}), window(5, {"DROPDOWN_MENU"}), window(6, {"COMBO"}),
                              window(7, {"DND"}), window(8, {"MENU"})}),
                IsEmpty());
}

TEST(Notifications, OfAShellAreNoPartOfIt) {
    EXPECT_THAT(numbersAmong({window(1, {"DOCK"}, false), window(2, {}), window(3, {"NOTIFICATION"}),
                              window(4, {"DESKTOP"}, false)}),
                ElementsAre(3));
    EXPECT_THAT(numbersAmong({window(1, {"DOCK"}, false), window(2, {})}), IsEmpty());
}

}  // namespace
}  // namespace tarvix::atspi
