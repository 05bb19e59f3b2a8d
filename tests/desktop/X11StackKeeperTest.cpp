#include <algorithm>
#include <chrono>

#include "linux/x11/X11StackKeeper.h"
#include "tests/desktop/X11Desk.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using By = X11Stacking::By;

// Popups stand for the windows of others: no window manager has a say in where they go.
class X11StackKeeperOnDesktop : public X11Desk {
protected:
    void SetUp() override {
        X11Desk::SetUp();
        ASSERT_TRUE(other.show());
        ASSERT_TRUE(canvas.show());
    }

    // Whether of these windows the earlier ones are below the later ones.
    bool isInOrder(const std::vector<X11Victim*>& bottomToTop) {
        const auto stack = rootStack(*connection);
        std::vector<xcb_window_t> windows;
        for (X11Victim* victim : bottomToTop) windows.push_back(victim->window());
        const auto places = childrenOfRoot(*connection, windows);
        return std::ranges::is_sorted(places, {}, [&](xcb_window_t w) { return std::ranges::find(stack, w); });
    }
    bool becomesOrdered(const std::vector<X11Victim*>& bottomToTop) {
        return loop.runUntil([&] { return isInOrder(bottomToTop); });
    }
    // Each returns when the server has done it.
    static void raise(X11Victim& victim) {
        X11Stacking(victim.connection()).stackOnTop(victim.window());
        victim.connection().sync();
    }
    void keepOnTop(X11Victim& victim) {
        keeper.keepOnTop(victim.window());
        connection->sync();
    }
    void keepBelow(X11Victim& victim, xcb_window_t sibling) {
        keeper.keepBelow(victim.window(), sibling, By::us);
        connection->sync();
    }
    void keepBelowTheApplication(X11Victim& victim) { keepBelow(victim, application.window()); }
    // Whether the other one gives up its place to a window that comes back a few times and no more.
    bool isLeftToOneWhoInsists(X11Victim& insisting, const std::vector<X11Victim*>& kept) {
        int times = 0;
        loop.runUntil(
            [&] {
                if (isInOrder(kept)) ++times, raise(insisting);
                return times > 100;
            },
            500ms);
        return times > 1 && times <= 30;
    }

    X11Victim other{{150, 150, 300, 300, true}};
    X11Victim canvas{{0, 0, 1000, 1000, true}};
    X11StackKeeper keeper{*connection};
};

TEST_F(X11StackKeeperOnDesktop, WhatIsOnTopGoesAboveWhatComesLater) {
    keepOnTop(canvas);
    ASSERT_TRUE(becomesOrdered({&other, &canvas}));
    raise(other);
    EXPECT_TRUE(becomesOrdered({&other, &canvas}));
    X11Victim later({200, 200, 50, 50, true});
    ASSERT_TRUE(later.show());
    EXPECT_TRUE(becomesOrdered({&other, &later, &canvas}));
}

TEST_F(X11StackKeeperOnDesktop, SeveralOnTopKeepTheirOrder) {
    keepOnTop(panel);
    keepOnTop(canvas);
    EXPECT_TRUE(isInOrder({&panel, &canvas}));
    keepOnTop(panel);
    raise(other);
    EXPECT_TRUE(becomesOrdered({&other, &canvas, &panel}));
}

TEST_F(X11StackKeeperOnDesktop, UnderThoseIsAboveAllOthers) {
    keepOnTop(panel);
    keeper.keepUnderThose(canvas.window());
    connection->sync();
    EXPECT_TRUE(isInOrder({&other, &canvas, &panel}));
    raise(other);
    EXPECT_TRUE(becomesOrdered({&other, &canvas, &panel}));
}

TEST_F(X11StackKeeperOnDesktop, WhatIsUnmappedIsKeptNoLonger) {
    keepOnTop(canvas);
    canvas.hide();
    settle();
    ASSERT_TRUE(canvas.show());
    settle();
    raise(other);
    settle();
    EXPECT_TRUE(isInOrder({&canvas, &other}));
}

TEST_F(X11StackKeeperOnDesktop, AWindowElsewhereMayBeAbove) {
    X11Victim elsewhere({1500, 900, 50, 50, true});
    keepOnTop(canvas);
    ASSERT_TRUE(elsewhere.show());
    raise(elsewhere);
    settle();
    EXPECT_TRUE(isInOrder({&canvas, &elsewhere}));
}

TEST_F(X11StackKeeperOnDesktop, BelowIsDirectlyBelowTheWindowAndItsFrame) {
    keepBelowTheApplication(canvas);
    const auto stack = rootStack(*connection);
    const auto frame = childrenOfRoot(*connection, {application.window()}).front();
    const auto place = std::ranges::find(stack, frame);
    ASSERT_NE(place, stack.begin());
    EXPECT_EQ(*(place - 1), canvas.window());
}

TEST_F(X11StackKeeperOnDesktop, WhatComesInBetweenIsBelowSoonAfter) {
    keepBelowTheApplication(canvas);
    X11Stacking(other.connection()).stackBelow(other.window(), application.window());
    other.connection().sync();
    EXPECT_TRUE(becomesOrdered({&other, &canvas, &application}));
}

TEST_F(X11StackKeeperOnDesktop, RaisedItGoesBackBelow) {
    keepBelowTheApplication(canvas);
    raise(canvas);
    EXPECT_TRUE(becomesOrdered({&canvas, &application}));
}

TEST_F(X11StackKeeperOnDesktop, BelowAWindowThatHasGoneItStaysWhereItIs) {
    std::uint32_t gone = 0;
    {
        X11Victim closed({300, 300, 50, 50, true});
        ASSERT_TRUE(closed.show());
        gone = closed.window();
        keepBelow(canvas, gone);
        EXPECT_TRUE(isInOrder({&canvas, &closed}));
    }
    raise(canvas);
    settle();
    EXPECT_TRUE(isInOrder({&other, &canvas}));
}

TEST_F(X11StackKeeperOnDesktop, WhatWasLetGoIsLeftAlone) {
    keepOnTop(canvas);
    keepBelowTheApplication(panel);
    keeper.letGo(canvas.window());
    keeper.letGo(panel.window());
    raise(other);
    raise(panel);
    settle();
    EXPECT_TRUE(isInOrder({&canvas, &other, &panel}));
}

TEST_F(X11StackKeeperOnDesktop, TheOneWhoWantsToBeOnTopForEverWins) {
    keepOnTop(canvas);
    EXPECT_TRUE(isLeftToOneWhoInsists(other, {&other, &canvas}));
}

TEST_F(X11StackKeeperOnDesktop, TheOneWhoWantsItElsewhereForEverWins) {
    keepBelowTheApplication(canvas);
    EXPECT_TRUE(isLeftToOneWhoInsists(canvas, {&canvas, &application}));
}

}  // namespace
}  // namespace tarvix
