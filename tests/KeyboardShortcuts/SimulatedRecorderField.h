// A search field in a window of its own, used by hand.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "KeyboardShortcuts/RecorderCocoa.h"

namespace tarvix {

// It is 130 points wide and 22 high. `recorder` is told of what is done to the field.
class SimulatedRecorderField : public RecorderControl {
public:
    // A click on the field, or the keyboard's way to it.
    void focus() { makeFirstResponder(FirstResponder::control); }
    // Whether the window would have got the event itself.
    bool reachesTheWindow(const LocalEvent& event) {
        const auto seen = seen_;
        return !seen || !(mask_ & maskOf(event.type)) || (*seen)(event) == Verdict::pass;
    }
    void pressCancelButton() { clickCancelButton(); }
    void answer(int response) {
        alert.reset();
        std::exchange(answered_, nullptr)(response);
    }
    void closeWindow() {
        hasWindow = false;
        makeFirstResponder(FirstResponder::none);
        recorder->viewDidMoveToWindow(false);
    }

    Subscription addLocalMonitor(LocalEventMask events, std::function<Verdict(const LocalEvent&)> seen) override {
        mask_ = events;
        seen_ = lastSeen = std::make_shared<std::function<Verdict(const LocalEvent&)>>(std::move(seen));
        return Subscription([this, mine = std::weak_ptr(seen_)] {
            if (mine.lock() == seen_) seen_.reset();
        });
    }
    void setText(const std::string& shown, const std::string& inWords) override {
        text = shown;
        spoken = inWords;
    }
    bool isEmpty() const override { return text.empty(); }
    void setPlaceholder(const std::string& shown) override { placeholder = shown; }
    void showCancelButton(bool isShown) override { hasCancelButton = isShown; }
    void clickCancelButton() override {
        text = "";
        recorder->controlTextDidChange();
    }
    void showInsertionPoint(bool isShown) override { hasInsertionPoint = isShown; }
    ControlRect bounds() const override { return {{0, 0}, {130, 22}}; }
    void makeFirstResponder(FirstResponder responder) override {
        const bool becomesFirst = responder == FirstResponder::control && hasWindow;
        if (std::exchange(isFirstResponder, becomesFirst) == becomesFirst || !recorder) return;
        if (becomesFirst)
            recorder->becomeFirstResponder();
        else
            recorder->controlTextDidEndEditing();
    }
    void runAlert(const RecorderAlert& shown, std::function<void(int)> answered) override {
        wasRecordingAtAlert = recorder->isRecording();
        alert = shown;
        answered_ = std::move(answered);
    }
    void beep() override { ++beeps; }

    RecorderCocoa* recorder = nullptr;
    std::string text, spoken, placeholder;
    bool hasCancelButton = false;
    bool hasInsertionPoint = true;
    bool hasWindow = true;
    bool isFirstResponder = false;
    std::optional<RecorderAlert> alert;
    bool wasRecordingAtAlert = false;
    int beeps = 0;
    // What was listening last, kept beyond its end as a desktop may.
    std::shared_ptr<std::function<Verdict(const LocalEvent&)>> lastSeen;

private:
    LocalEventMask mask_ = 0;
    std::shared_ptr<std::function<Verdict(const LocalEvent&)>> seen_;
    std::function<void(int)> answered_;
};

}  // namespace tarvix
