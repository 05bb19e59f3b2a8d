#include "core/InputPreviewer.h"

namespace tarvix {

InputPreviewer::InputPreviewer(TheInput& theInput, QuerySession& session)
    : theInput_(theInput),
      session_(session),
      visibility_(theInput.onVisibilityChanged([this] { visibilityChanged(); })) {}

void InputPreviewer::showPlaced(const std::string& text) {
    if (!begin()) return;
    theInput_.setValue(text);
    theInput_.open();
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

bool InputPreviewer::begin() {
    if (isShowing_) return true;
    if (theInput_.isVisible()) return false;
    keptText_ = theInput_.value();
    return true;
}

// The last search has left its Primary Target, and a Return would click it.
void InputPreviewer::shown() {
    isShowing_ = theInput_.isVisible();
    if (isShowing_)
        session_.showTargets({});
    else
        theInput_.setValue(keptText_);
}

// However it was hidden. Where texts aren't kept, it is emptied after this.
void InputPreviewer::visibilityChanged() {
    if (!isShowing_ || theInput_.isVisible()) return;
    isShowing_ = false;
    theInput_.setValue(keptText_);
}

}  // namespace tarvix
