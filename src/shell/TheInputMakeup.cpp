#include "shell/TheInputMakeup.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace tarvix {

namespace {

using namespace std::chrono_literals;

constexpr auto kUntilPresetShows = 100ms;  // by then The Input has taken on the new look
constexpr auto kPresetShows = 1280ms;
constexpr auto kValueShows = 280ms;
constexpr auto kDerivationHolds = 280ms;

constexpr const char* kPresetText = "HODL, world!";
constexpr const char* kTextSizeText = "hello, world!";

struct PresetRow {
    InputPreset preset;
    InputPresetDefaults values;
};

// In the order in which values are compared with them.
constexpr auto kPresets = std::to_array<PresetRow>({
    {InputPreset::tarvix, {16.0, 0.9, 6.0, 2.0}},
    {InputPreset::spotlight, TheInputMakeup::spotlightInputDefaults},
    {InputPreset::alfred, TheInputMakeup::alfredInputDefaults},
    {InputPreset::invisibleMan, TheInputMakeup::invisibleManInputDefaults},
});

}  // namespace

TheInputMakeup::TheInputMakeup(UserDefaults& defaults, RunLoop& runLoop, InputPreview& preview)
    : runLoop_(runLoop),
      preview_(preview),
      inputTextSize_(defaults, {"inputTextSize", 16.0}),
      inputBackgroundOpacity_(defaults, {"inputBackgroundOpacity", 0.9}),
      inputCornerRadius_(defaults, {"inputCornerRadius", 6.0}),
      inputBorderThickness_(defaults, {"inputBorderThickness", 2.0}),
      inputPreset_(defaults, {"inputPreset", InputPreset::tarvix}),
      seen_(present()),
      changes_(defaults.onChange([this](std::string_view) { storeChanged(); })) {}

// The store says what has changed only if it knows, and others may have changed several at once.
void TheInputMakeup::storeChanged() {
    const Look now = present();
    const Look before = std::exchange(seen_, now);
    if (!isAnythingStored()) return;
    if (now.preset != before.preset) {
        presetChanged(now.preset);
    } else if (now.values != before.values) {
        valueChanged(now.values.textSize != before.values.textSize);
    }
}

TheInputMakeup::Look TheInputMakeup::present() const {
    return {inputPreset_.value(),
            {.textSize = inputTextSize_.value(),
             .backgroundOpacity = inputBackgroundOpacity_.value(),
             .cornerRadius = inputCornerRadius_.value(),
             .borderThickness = inputBorderThickness_.value()}};
}

bool TheInputMakeup::isAnythingStored() const {
    return inputTextSize_.isStored() || inputBackgroundOpacity_.isStored() || inputCornerRadius_.isStored() ||
           inputBorderThickness_.isStored() || inputPreset_.isStored();
}

void TheInputMakeup::presetChanged(InputPreset preset) {
    if (isApplyingInputPreset_) return;
    inputPreviewTimer_.invalidate();
    isApplyingInputPreset_ = true;
    for (const PresetRow& row : kPresets)
        if (row.preset == preset) write(row.values);
    inputPreviewTimer_.schedule(runLoop_, kUntilPresetShows, [this] { showPreset(); });
}

void TheInputMakeup::write(const InputPresetDefaults& values) {
    inputTextSize_.set(values.textSize);
    inputBackgroundOpacity_.set(values.backgroundOpacity);
    inputCornerRadius_.set(values.cornerRadius);
    inputBorderThickness_.set(values.borderThickness);
}

void TheInputMakeup::showPreset() {
    preview_.showPlaced(kPresetText);
    isApplyingInputPreset_ = false;
    after(kPresetShows, [this] { preview_.hide(); });
}

// A preview that is due stays as it is: a drag of the slider doesn't put its end off.
void TheInputMakeup::valueChanged(bool isTextSize) {
    if (isApplyingInputPreset_) return;
    preview_.showInPlace(isTextSize ? kTextSizeText : "");
    if (!inputPreviewTimer_.isValid()) inputPreviewTimer_.schedule(runLoop_, kValueShows, [this] { preview_.hide(); });
    isApplyingInputPreset_ = true;
    derivePreset();
    after(kDerivationHolds, [this] { isApplyingInputPreset_ = false; });
}

void TheInputMakeup::derivePreset() {
    const InputPresetDefaults values = present().values;
    const auto found = std::ranges::find(kPresets, values, &PresetRow::values);
    inputPreset_.set(found == kPresets.end() ? InputPreset::custom : found->preset);
}

void TheInputMakeup::after(std::chrono::milliseconds interval, std::function<void()> fired) {
    otherTimers_.remove_if([](const OneShotTimer& timer) { return !timer.isValid(); });
    otherTimers_.emplace_back().schedule(runLoop_, interval, std::move(fired));
}

}  // namespace tarvix
