#include "core/InputPreviewer.h"

namespace tarvix {

InputPreviewer::InputPreviewer(TheInput& theInput, QuerySession& session)
    : theInput_(theInput),
      session_(session),
      visibility_(theInput.onVisibilityChanged([this] { visibilityChanged(); })) {}

void InputPreviewer::showPlaced(const std::string& text) {
    if (!begin()) return;
    theInput_.openPlaced(text);
    shown();
}

void InputPreviewer::showInPlace(const std::string& text) {
    if (!begin()) return;
    theInput_.openInPlace(text);
    shown();
}

void InputPreviewer::hide() {
    if (isShowing_) theInput_.close();
}

// It counts as one before The Input tells that it is visible.
bool InputPreviewer::begin() {
    if (isShowing_) return true;
    if (theInput_.isVisible()) return false;
    keptText_ = theInput_.value();
    isShowing_ = true;
    return true;
}

// The last search has left its Primary Target, and markers may be shown as a preview of their own.
void InputPreviewer::shown() {
    isShowing_ = theInput_.isVisible();
    if (isShowing_) {
        session_.removeTargets();
        session_.showTargets({});
    } else {
        theInput_.setValue(keptText_);
    }
}

// However it was hidden. Where texts aren't kept, it is emptied after this.
void InputPreviewer::visibilityChanged() {
    if (!isShowing_ || theInput_.isVisible()) return;
    isShowing_ = false;
    theInput_.setValue(keptText_);
}

}  // namespace tarvix
