// A desktop with Tarvix running on it.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "core/TarvixApp.h"
#include "keys/KeyCombinationAdaptor.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {

// After each scenario the model's invariants are checked.
class SearchScenario : public testing::Test {
protected:
    using Texts = std::vector<std::string>;

    SearchScenario() {
        app.appDelegate().applicationDidFinishLaunching();
        desk.clearJournal();
    }

    void press(Key key, std::uint64_t flags = 0) { desk.press(qwertyKeyCode(key), flags); }
    void press(const KeyCombination& keys) {
        const KeyEvent event = KeyCombinationAdaptor::toCGEvent(keys, KeyEventType::keyDown, sauce_);
        desk.press(event.keyCode, event.flags);
    }
    void pressShortcut() { press(Key::space, eventFlag::shift | eventFlag::command); }
    // Opens The Input and lets the candidates be read.
    void open() {
        pressShortcut();
        desk.settle();
    }
    void search(std::string_view text) {
        open();
        desk.type(text);
    }
    // One step of the task: the reading, or a block of the main queue.
    void readCandidates() { ASSERT_TRUE(desk.runLoop.runBackgroundBody()); }

    bool inputIsShown() const { return desk.panels.input().isVisible(); }
    TarvixEngine& engine() { return core.tarvixEngine(); }
    Texts targets() {
        Texts titles;
        for (const Target& target : engine().targets()) titles.push_back(target.element.title.value_or(""));
        return titles;
    }
    std::string primary() {
        return engine().primaryTarget() ? engine().primaryTarget()->element.title.value_or("") : "none";
    }
    // What a person sees of a search: The Input, the pointer and the clicks.
    Texts seen() const { return desk.journal({Topic::theInput, Topic::mouse}); }

    void TearDown() override {
        const auto& views = engine().canvas().subviews();
        ASSERT_EQ(engine().targets().size(), views.size());
        for (std::size_t i = 0; i < views.size(); ++i) {
            const Target& target = engine().targets()[i];
            ASSERT_EQ(target.view, views[i]);
            ASSERT_EQ(target.view->isPrimary, engine().primaryTarget() == target);
        }
        ASSERT_EQ(desk.panels.canvas().markers().size(), views.size()) << "what is painted is what there is";
    }

    SimulatedDesktop desk;
    TarvixApp app{desk.platform()};
    AppCore& core = app.core();

private:
    Sauce sauce_{desk.inputSources};
};

}  // namespace tarvix
