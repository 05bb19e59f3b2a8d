// The Input as a preview of its own look.
#pragma once

#include <string>

#include "display/QuerySession.h"
#include "display/TheInput.h"
#include "shell/InputPreview.h"

namespace tarvix {

// The keyboard stays where it is. Tells a preview from a search: while a search is up, its look changes, and nothing
// else happens to it. A search that has taken a preview's place isn't hidden with it either, and the kept text is the
// last search's afterwards. Main thread; what is given outlives it.
class InputPreviewer : public InputPreview {
public:
    InputPreviewer(TheInput& theInput, QuerySession& session);

    void showPlaced(const std::string& text) override;
    void showInPlace(const std::string& text) override;
    void hide() override;
    bool isShowing() const { return isShowing_; }

private:
    bool begin();
    void shown();
    void visibilityChanged();

    TheInput& theInput_;
    QuerySession& session_;
    bool isShowing_ = false;
    std::string keptText_;
    Subscription visibility_;
};

}  // namespace tarvix
