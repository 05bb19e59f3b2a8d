// The row of status items, as far as it shows ours.
#pragma once

#include <cassert>
#include <memory>
#include <utility>

#include "platform/StatusBar.h"
#include "simulated/Journal.h"

namespace tarvix {

class SimulatedStatusItem : public StatusItem {
public:
    explicit SimulatedStatusItem(Journal& journal) : journal_(journal) {}

    void setButton(const StatusButton& button) override { button_ = button; }
    void setVisible(bool isVisible) override {
        if (isVisible_ != isVisible)
            journal_.note(Topic::statusItem, isVisible ? "status item shown" : "status item hidden");
        isVisible_ = isVisible;
    }
    void setBehavior(StatusItemBehavior behavior) override { behavior_ = behavior; }
    void setMenu(Menu menu, std::function<void(Menu&)> needsUpdate) override {
        menu_ = std::move(menu);
        needsUpdate_ = std::move(needsUpdate);
    }

    // The user opens the menu.
    const Menu& openMenu() {
        update(menu_);
        return menu_;
    }
    // As an opening does, of another menu.
    void update(Menu& menu) {
        if (needsUpdate_) needsUpdate_(menu);
    }
    // The user drags the item away, or tries to.
    void takeAway() {
        if (behavior_ == StatusItemBehavior::removalAllowed) setVisible(false);
    }
    bool isVisible() const { return isVisible_; }
    StatusItemBehavior behavior() const { return behavior_; }
    const StatusButton& button() const { return button_; }
    const Menu& menu() const { return menu_; }

private:
    Journal& journal_;
    bool isVisible_ = false;
    StatusItemBehavior behavior_ = StatusItemBehavior::none;
    StatusButton button_;
    Menu menu_;
    std::function<void(Menu&)> needsUpdate_;
};

// Remembers the latest item.
class SimulatedStatusBar : public StatusBar {
public:
    explicit SimulatedStatusBar(Journal& journal) : journal_(journal) {}

    std::unique_ptr<StatusItem> makeStatusItem() override {
        auto made = std::make_unique<SimulatedStatusItem>(journal_);
        item_ = made.get();
        return made;
    }

    bool hasItem() const { return item_ != nullptr; }
    // As long as its owner lives.
    SimulatedStatusItem& item() const {
        assert(item_);
        return *item_;
    }

private:
    Journal& journal_;
    SimulatedStatusItem* item_ = nullptr;
};

}  // namespace tarvix
