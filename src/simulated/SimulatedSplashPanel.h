// The splash panel.
#pragma once

#include <cstddef>
#include <functional>
#include <utility>

#include "platform/SplashPanel.h"
#include "simulated/Journal.h"

namespace tarvix {

class SimulatedSplashPanel : public SplashPanel {
public:
    explicit SimulatedSplashPanel(Journal& journal) : journal_(journal) {}

    void setContent(const SplashContent& view, std::function<void(SplashAction)> pressed) override {
        content_ = view;
        pressed_ = std::move(pressed);
        ++contents_;
    }
    void orderFrontRegardless() override {
        visible_ = true;
        journal_.note(Topic::splash, "splash in front");
    }
    void orderOut() override {
        visible_ = false;
        journal_.note(Topic::splash, "splash hidden");
    }

    // The user presses a button.
    void press(SplashAction action) { pressed_(action); }
    bool isVisible() const { return visible_; }
    const SplashContent& content() const { return content_; }
    // How often it was given one.
    std::size_t contents() const { return contents_; }

private:
    Journal& journal_;
    bool visible_ = false;
    SplashContent content_{};
    std::size_t contents_ = 0;
    std::function<void(SplashAction)> pressed_;
};

}  // namespace tarvix
