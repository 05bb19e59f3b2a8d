// A desktop's appearance as a test chooses it.
#pragma once

#include <functional>
#include <utility>

#include "base/Listeners.h"
#include "platform/Appearance.h"

namespace tarvix {

class TestAppearance : public Appearance {
public:
    explicit TestAppearance(const AppearanceValues& values = {}) : values_(values) {}

    const AppearanceValues& values() const override { return values_; }
    Subscription onChange(std::function<void()> changed) override { return changed_.add(std::move(changed)); }
    void change(const AppearanceValues& values) {
        values_ = values;
        changed_();
    }

private:
    AppearanceValues values_;
    Listeners<> changed_;
};

}  // namespace tarvix
