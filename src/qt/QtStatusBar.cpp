#include "qt/QtStatusBar.h"

#include <QCursor>
#include <QGuiApplication>
#include <QTimer>
#include <QToolTip>
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>
#include <utility>

#include "qt/NotifierItem.h"
#include "qt/NotifierWatcher.h"
#include "qt/PopUpMenu.h"
#include "qt/StatusMenu.h"
#include "qt/WindSymbol.h"

namespace tarvix {

namespace {

constexpr int kMiddleButton = 2;
constexpr int kUntilToolTip = 700;  // milliseconds that the pointer rests

QRect pixelsOf(const AxRect& place) {
    return {static_cast<int>(place.minX()), static_cast<int>(place.minY()), static_cast<int>(place.width()),
            static_cast<int>(place.height())};
}

QColor colorOf(Color color) { return QColor::fromRgbF(float(color.red), float(color.green), float(color.blue)); }

TrayPicture symbolIn(int width, int height, bool isOnDark) {
    const int size = std::min(width, height);
    const QImage symbol = windSymbol(size, symbolColors(isOnDark));
    TrayPicture picture(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0);
    const int left = (width - size) / 2, top = (height - size) / 2;
    for (int row = 0; row < size; ++row)
        std::memcpy(&picture[static_cast<std::size_t>((top + row) * width + left)], symbol.constScanLine(row),
                    static_cast<std::size_t>(size) * sizeof(picture[0]));
    return picture;
}

class QtStatusItem : public StatusItem {
public:
    QtStatusItem(Appearance& appearance, const MakeTrayWindow& makeTrayWindow)
        : appearance_(appearance), makeTrayWindow_(makeTrayWindow), watcher_([this] { placeAnew(); }) {
        appearanceChanged_ = appearance_.onChange([this] { showAppearance(); });
        pointerRests_.setSingleShot(true);
        QObject::connect(&pointerRests_, &QTimer::timeout, &pointerRests_, [this] { showToolTip(); });
    }

    void setButton(const StatusButton& button) override {
        button_ = button;
        placeAnew();
    }

    void setVisible(bool isVisible) override {
        isVisible_ = isVisible;
        isRemoved_ = false;
        place();
    }

    void setBehavior(StatusItemBehavior behavior) override { behavior_ = behavior; }

    void setMenu(Menu menu, std::function<void(Menu&)> needsUpdate) override {
        menu_.set(std::move(menu), std::move(needsUpdate));
        if (onBus_) onBus_->menuIsChanged();
    }

private:
    void placeAnew() {
        onBus_.reset();
        inTray_.reset();
        isRefused_ = false;
        place();
    }

    // Where the item can be shown it is, once.
    void place() {
        const bool shows = isVisible_ && !isRemoved_;
        const bool onBus = shows && watcher_.host() == NotifierHost::present && !isRefused_;
        const bool inTray = shows && !onBus && watcher_.host() != NotifierHost::unknown;
        if (!onBus) onBus_.reset();
        if (!inTray) inTray_.reset();
        if (!shows) popUp_.close();
        if (onBus && !onBus_) makeOnBus();
        if (inTray && !inTray_) makeInTray();
    }

    void makeOnBus() {
        onBus_.emplace(watcher_, menu_, button_, appearance_.values().isDark,
                       StatusItemClicks{[this](QPoint where) { popUpAt(where); }, [this] { removeByUser(); }}, [this] {
                           isRefused_ = true;
                           placeLater();
                       });
    }

    void makeInTray() {
        inTray_ = makeTrayWindow_({
            button_.accessibilityTitle,
            [this](int width, int height, std::optional<Color> ground) {
                return symbolIn(width, height, ground ? isDark(colorOf(*ground)) : appearance_.values().isDark);
            },
            [this](int button, const AxRect& icon) {
                hideToolTip();
                if (button != kMiddleButton) return popUp_.open(menu_.refreshed(), pixelsOf(icon));
                removeByUser();
            },
            [this](std::optional<AxRect> icon) { icon ? pointerRests_.start(kUntilToolTip) : hideToolTip(); },
        });
    }

    // Some panels don't know where they are.
    void popUpAt(QPoint where) {
        popUp_.open(menu_.refreshed(), QRect(where.isNull() ? QCursor::pos() : where, QSize(1, 1)));
    }

    void removeByUser() {
        if (behavior_ != StatusItemBehavior::removalAllowed) return;
        isRemoved_ = true;
        placeLater();
    }

    // Not while what shows the item at present is calling.
    void placeLater() {
        QTimer::singleShot(0, &pointerRests_, [this] { place(); });
    }

    void showAppearance() {
        if (onBus_) onBus_->setIsOnDark(appearance_.values().isDark);
        if (inTray_) inTray_->redraw();
    }

    void showToolTip() { QToolTip::showText(QCursor::pos(), QString::fromStdString(button_.accessibilityHelp)); }
    void hideToolTip() {
        pointerRests_.stop();
        QToolTip::hideText();
    }

    Appearance& appearance_;
    const MakeTrayWindow& makeTrayWindow_;
    StatusButton button_;
    StatusMenu menu_;
    StatusItemBehavior behavior_ = StatusItemBehavior::none;
    bool isVisible_ = false;
    bool isRemoved_ = false;  // by the user, until it is made visible anew
    bool isRefused_ = false;  // by the present watcher
    QTimer pointerRests_;
    PopUpMenu popUp_;
    NotifierWatcher watcher_;
    std::optional<NotifierItem> onBus_;
    std::unique_ptr<TrayWindow> inTray_;
    Subscription appearanceChanged_;
};

}  // namespace

std::unique_ptr<StatusItem> QtStatusBar::makeStatusItem() {
    return std::make_unique<QtStatusItem>(appearance_, makeTrayWindow_);
}

}  // namespace tarvix
