// The appearance by Qt's palette, which goes by the desktop as far as Qt has a plugin for it.
#pragma once

#include <QObject>

#include "base/Listeners.h"
#include "platform/Appearance.h"

namespace tarvix {

// Tells everything. Main thread, with the application there.
class PaletteAppearance final : public QObject, public AppearanceSource {
public:
    PaletteAppearance();

    AppearanceTold told() const override;
    [[nodiscard]] Subscription onChange(std::function<void()> changed) override {
        return changed_.add(std::move(changed));
    }

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    Listeners<> changed_;
};

}  // namespace tarvix
