// What may come onto the screen a moment later than The Input.
#pragma once

#include <QTimer>
#include <functional>
#include <memory>
#include <vector>

#include "base/Subscription.h"

namespace tarvix {

// Mapping a window that fills the screen costs the toolkit, the server and the compositor more than all of The Input.
// So at the start of a search these come when The Input has been painted, or soon after where it isn't shown. Main
// thread.
class AfterTheInput {
public:
    AfterTheInput();

    // Runs it once; not after the token has been dropped.
    [[nodiscard]] Subscription run(std::function<void()> show);
    void theInputIsPainted();

private:
    std::vector<std::weak_ptr<const std::function<void()>>> waiting_;  // the tokens own them
    QTimer patience_;
};

}  // namespace tarvix
