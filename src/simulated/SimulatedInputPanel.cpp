#include "simulated/SimulatedInputPanel.h"

#include <algorithm>

namespace tarvix {

namespace {

constexpr std::uint16_t kA = 0, kDelete = 51, kEscape = 53;  // positions on the table of `Key`

bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

std::size_t characters(const std::string& utf8) {
    return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) { return !isContinuation(c); }));
}

bool isPrintable(const std::string& text) { return !text.empty() && static_cast<unsigned char>(text.front()) >= ' '; }

}  // namespace

void SimulatedInputPanel::makeKeyAndOrderFront() {
    visible_ = key_ = true;
    journal_.note(Topic::theInput, "The Input shown");
}

void SimulatedInputPanel::orderFrontRegardless() {
    visible_ = true;
    journal_.note(Topic::theInput, "The Input shown");
}

void SimulatedInputPanel::orderOut() {
    visible_ = key_ = false;
    journal_.note(Topic::theInput, "The Input hidden");
}

void SimulatedInputPanel::setText(const std::string& text) {
    selected_ = false;
    change(text);
}

void SimulatedInputPanel::handleKey(const KeyEvent& event, const std::string& text) {
    keys_.push_back(event);
    const bool command = event.flags & eventFlag::command;
    if (event.keyCode == kEscape) {
        cancelled_();
    } else if (event.keyCode == kDelete) {
        deleteBackwards();
    } else if (event.keyCode == kA && command) {
        selected_ = true;
    } else if (!command && !(event.flags & eventFlag::control) && isPrintable(text)) {
        insert(text);
    }
}

void SimulatedInputPanel::insert(const std::string& text) { edit((selected_ ? "" : text_) + text); }

void SimulatedInputPanel::takeKeyboardAway() {
    if (!key_) return;
    key_ = false;
    resigned_();
}

double SimulatedInputPanel::measuredWidth() const {
    return static_cast<double>(characters(text_) + 3) * characterWidth;
}

void SimulatedInputPanel::edit(std::string text) {
    selected_ = false;
    if (text == text_) return;
    change(std::move(text));
    textChanged_(text_);
}

void SimulatedInputPanel::change(std::string text) {
    const double before = measuredWidth();
    text_ = std::move(text);
    if (measuredWidth() != before) measured_(measuredWidth());
}

void SimulatedInputPanel::deleteBackwards() {
    std::string text = selected_ ? "" : text_;
    while (!text.empty() && isContinuation(text.back())) text.pop_back();
    if (!text.empty()) text.pop_back();
    edit(text);
}

}  // namespace tarvix
