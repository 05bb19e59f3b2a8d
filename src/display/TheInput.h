// The floating search field.
#pragma once

#include <memory>
#include <string>

#include "base/Listeners.h"
#include "display/DisplayEngineProtocol.h"
#include "display/QuerySession.h"
#include "display/TheInputProtocol.h"
#include "keys/Sauce.h"
#include "platform/Panels.h"
#include "platform/Platform.h"
#include "shell/Setting.h"

namespace tarvix {

// Notifications to every program of the user's session.
namespace inputNotification {
inline constexpr std::string_view didAppear = "TarvixInputDidAppear";
inline constexpr std::string_view didDisappear = "TarvixInputDidDisappear";
}  // namespace inputNotification

// Made once and shown and hidden. It ends the session when it loses the keyboard or is cancelled. What is given
// outlives it.
class TheInput : public TheInputProtocol {
public:
    TheInput(const Platform& platform, DisplayEngineProtocol& displayEngine, QuerySession& session, const Sauce& sauce);

    void open() override;
    // As previews of itself, with a text: the keyboard stays where it is. Where the settings say, or where it stands.
    void openPlaced(const std::string& text);
    void openInPlace(const std::string& text);
    void close() override;
    bool isVisible() const override { return panel_->isVisible(); }
    [[nodiscard]] Subscription onVisibilityChanged(std::function<void()> changed) override {
        return visibilityChanged_.add(std::move(changed));
    }
    const std::string& value() const override { return value_; }
    // The field takes over a text; the markers stay as they are.
    void setValue(const std::string& text);
    // The same, and the markers follow as if it had been typed.
    void enter(const std::string& text);
    void setShowPreloading(bool shows) override;
    bool showPreloading() const { return showPreloading_; }

private:
    enum class Keyboard { taken, left };
    void placeAndShow(Keyboard keyboard);
    void show(Keyboard keyboard);
    void appeared();
    // False when the panel is to stay hidden.
    bool place(InputPosition position);
    bool placeAtWindow(InputPosition position);
    void placeAtMouse();
    void moveTo(PanelPoint objectTopLeft, const Screen& screen);
    void stayInSight();
    void valueChanged(const std::string& text);
    void widthChanged(double width);
    void selectText();
    void applyLook();

    Platform platform_;
    DisplayEngineProtocol& displayEngine_;
    QuerySession& session_;
    const Sauce& sauce_;
    Setting<InputPosition> inputPosition_;
    Setting<bool> dontFlushTheInput_;
    Setting<double> inputTextSize_;
    Setting<double> inputBackgroundOpacity_;
    Setting<double> inputCornerRadius_;
    Setting<double> inputBorderThickness_;
    std::string value_;
    bool showPreloading_ = false;
    InputLook look_;  // what a new panel looks like
    std::unique_ptr<InputPanel> panel_;
    PanelPoint corner_;             // of the first screen: where it stands until somebody moves it
    double firstScreenHeight_ = 0;  // which its place goes by
    Listeners<> visibilityChanged_;
    std::vector<Subscription> subscriptions_;
};

}  // namespace tarvix
