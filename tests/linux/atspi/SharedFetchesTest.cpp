#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <stdexcept>
#include <thread>

#include "linux/atspi/SharedFetches.h"

namespace tarvix::atspi {
namespace {

using Tree = SharedFetches::Tree;
using Reader = SharedFetches::Reader;

Tree treeOf(std::size_t calls) {
    auto tree = std::make_shared<WindowTree>();
    tree->calls = calls;
    return tree;
}

// A fetch that has begun and ends when the test says so.
class HeldFetch {
public:
    HeldFetch(SharedFetches& fetches, Reader reader, std::uint32_t window, Tree gives)
        : result_(std::async(std::launch::async, [=, this, &fetches] {
              return fetches.fetch(reader, window, [=, this] {
                  begun_.set_value();
                  goOn_.get_future().wait();
                  if (!gives) throw std::runtime_error("the fetch has died");
                  return gives;
              });
          })) {
        begun_.get_future().wait();
    }
    void end() { goOn_.set_value(); }
    Tree result() { return result_.get(); }

private:
    std::promise<void> begun_, goOn_;
    std::future<Tree> result_;  // last: its body uses the two above
};

Tree mustNotFetch() {
    ADD_FAILURE() << "fetched a second time";
    return nullptr;
}

// Has joined another reader's fetch, and waits in a thread of its own until that has ended.
std::future<Tree> join(SharedFetches& fetches, Reader reader, std::uint32_t window) {
    const std::size_t before = fetches.waiting(window);
    auto result = std::async(std::launch::async,
                             [&fetches, reader, window] { return fetches.fetch(reader, window, mustNotFetch); });
    while (fetches.waiting(window) == before && result.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
        std::this_thread::yield();
    return result;
}

TEST(SharedFetches, TheMenuBarsFetchJoinsTheWalksOfTheSameWindow) {
    SharedFetches fetches;
    const Tree tree = treeOf(1);
    HeldFetch walk(fetches, Reader::walk, 7, tree);
    std::future<Tree> menuBar = join(fetches, Reader::menuBar, 7);
    walk.end();
    EXPECT_EQ(menuBar.get(), tree);
    EXPECT_EQ(walk.result(), tree);
}

TEST(SharedFetches, AnotherWindowIsFetchedByItself) {
    SharedFetches fetches;
    HeldFetch walk(fetches, Reader::walk, 7, treeOf(1));
    EXPECT_EQ(fetches.fetch(Reader::menuBar, 8, [] { return treeOf(2); })->calls, 2u);
    walk.end();
    EXPECT_EQ(walk.result()->calls, 1u);
}

TEST(SharedFetches, TheNextSearchsWalkDoesNotJoinTheOneBefore) {
    SharedFetches fetches;
    HeldFetch before(fetches, Reader::walk, 7, treeOf(1));
    HeldFetch next(fetches, Reader::walk, 7, treeOf(2));
    std::future<Tree> menuBar = join(fetches, Reader::menuBar, 7);
    before.end();
    EXPECT_EQ(before.result()->calls, 1u);
    next.end();
    EXPECT_EQ(next.result()->calls, 2u);
    EXPECT_EQ(menuBar.get()->calls, 2u) << "the menu bar of the latest walk";
}

TEST(SharedFetches, AFetchThatHasEndedIsNotJoined) {
    SharedFetches fetches;
    EXPECT_EQ(fetches.fetch(Reader::walk, 7, [] { return treeOf(1); })->calls, 1u);
    EXPECT_EQ(fetches.fetch(Reader::menuBar, 7, [] { return treeOf(2); })->calls, 2u);
}

TEST(SharedFetches, AFetchThatDiesLeavesNobodyWaiting) {
    SharedFetches fetches;
    HeldFetch walk(fetches, Reader::walk, 7, nullptr);
    std::future<Tree> menuBar = join(fetches, Reader::menuBar, 7);
    walk.end();
    EXPECT_THROW(walk.result(), std::runtime_error);
    EXPECT_EQ(menuBar.get(), nullptr);
    EXPECT_EQ(fetches.fetch(Reader::menuBar, 7, [] { return treeOf(3); })->calls, 3u);
}

}  // namespace
}  // namespace tarvix::atspi
