#include <gtest/gtest.h>

#include "linux/atspi/StatusNotifiers.h"
#include "tests/linux/atspi/MessageMaker.h"

namespace tarvix::atspi {
namespace {

using Registered = std::pair<std::string, std::string>;

TEST(StatusNotifiers, AnItemIsRegisteredByItsNameAndPathOrByItsNameAlone) {
    EXPECT_EQ(splitRegistered(":1.12/StatusNotifierItem"), Registered(":1.12", "/StatusNotifierItem"));
    EXPECT_EQ(splitRegistered(":1.7/org/ayatana/NotificationItem/a"),
              Registered(":1.7", "/org/ayatana/NotificationItem/a"));
    EXPECT_EQ(splitRegistered("org.kde.StatusNotifierItem-9-1"),
              Registered("org.kde.StatusNotifierItem-9-1", "/StatusNotifierItem"));
}

TEST(StatusNotifiers, XfcesOrderIsAmongTheSettingsOfItsPanel) {
    const MessageMaker make;
    const Message reply = make.of("a{sv}", 4, "/plugins/plugin-1", "s", "systray", "/plugins/plugin-1/known-items",
                                  "av", 2, "s", "Willow", "s", "Rowan", "/plugins/plugin-1/hidden-items", "av", 1, "s",
                                  "Rowan", "/plugins/plugin-2/expand", "b", 1);
    const auto order = readXfceOrder(reply.get());
    ASSERT_TRUE(order);
    EXPECT_EQ(order->known, (std::vector<std::string>{"Willow", "Rowan"}));
    EXPECT_EQ(order->hidden, (std::vector<std::string>{"Rowan"}));
}

TEST(StatusNotifiers, SettingsOfAnotherShapeHoldNoOrder) {
    const MessageMaker make;
    const Message strange = make.of("a{sv}", 2, "/plugins/plugin-1/known-items", "s", "Willow",
                                    "/plugins/plugin-1/hidden-items", "av", 1, "i", 7);
    const auto order = readXfceOrder(strange.get());
    ASSERT_TRUE(order);
    EXPECT_TRUE(order->known.empty());
    EXPECT_TRUE(order->hidden.empty());
    EXPECT_FALSE(readXfceOrder(nullptr));
    EXPECT_FALSE(readXfceOrder(make.of("s", "no").get()));
}

}  // namespace
}  // namespace tarvix::atspi
