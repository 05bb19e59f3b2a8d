// The windows of our own: The Input, the canvas of the markers, the dimming panel, the inspector. None of them ever
// becomes the active window or activates this program. All on the main thread; all rectangles in panel coordinates
// unless said otherwise.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/Geometry.h"
#include "base/Subscription.h"

namespace tarvix {

struct Color {
    double red = 0, green = 0, blue = 0, alpha = 1;
    friend bool operator==(Color, Color) = default;
};

// The colours that the desktop defines itself; they change with its appearance.
class SystemColors {
public:
    virtual ~SystemColors() = default;
    virtual Color findHighlight() = 0;
    virtual Color controlAccent() = 0;
    virtual Color selectedControl() = 0;
};

// A stroke or, with a line width of 0, a fill of a marker's bounds inset on each side.
struct MarkerShape {
    double inset = 0;
    double lineWidth = 0;
    Color color;
    friend bool operator==(const MarkerShape&, const MarkerShape&) = default;
};

// One marker as it is painted: shapes in order, the whole clipped to rounded corners and made translucent together.
struct MarkerDrawing {
    PanelRect frame;  // relative to the canvas's bottom left corner, y upwards
    double alpha = 1;
    double cornerRadius = 0;
    std::vector<MarkerShape> shapes;
    friend bool operator==(const MarkerDrawing&, const MarkerDrawing&) = default;
};

// The full-screen, click-through, transparent panel at level 1000.
class CanvasPanel {
public:
    virtual ~CanvasPanel() = default;
    virtual void setFrame(PanelRect frame) = 0;
    virtual PanelRect frame() const = 0;
    // Above everything, and shown if it wasn't.
    virtual void orderFrontRegardless() = 0;
    virtual void orderOut() = 0;
    // Asks for the content anew before the next frame; several requests in one pass of the loop cost one painting.
    virtual void setNeedsDisplay() = 0;
    // Where the content comes from when it is painted. Set once, right after creation.
    virtual void setContent(std::function<std::vector<MarkerDrawing>()> content) = 0;
};

// How The Input looks, in points.
struct InputLook {
    double textSize = 16;
    double backgroundOpacity = 0.9;
    double cornerRadius = 6;
    double borderThickness = 2;
    friend bool operator==(const InputLook&, const InputLook&) = default;
};

// The Input's own window and text field, at level 1000.
class InputPanel {
public:
    virtual ~InputPanel() = default;

    virtual PanelRect frame() const = 0;
    virtual void setFrame(PanelRect frame) = 0;
    virtual bool isVisible() const = 0;
    // Shows the panel in front of everything and gives it the keyboard; the application stays the active one.
    virtual void makeKeyAndOrderFront() = 0;
    // Shows it there and leaves the keyboard where it is.
    virtual void orderFrontRegardless() = 0;
    // Hides it and gives the keyboard back, with nothing held or grabbed.
    virtual void orderOut() = 0;

    // The text of the field. Setting it is not reported to onTextChanged.
    virtual void setText(const std::string& text) = 0;
    virtual void setShowsProgress(bool shows) = 0;
    virtual void setLook(const InputLook& look) = 0;

    // The user has changed the text.
    [[nodiscard]] virtual Subscription onTextChanged(std::function<void(const std::string& text)> changed) = 0;
    // The ideal width of the measuring text ("X", the text, "XX") in the present font, paddings not counted; told
    // at once, within the call, and whenever it changes.
    [[nodiscard]] virtual Subscription onMeasured(std::function<void(double width)> measured) = 0;
    // The panel has lost the keyboard other than by orderOut(): a click elsewhere, another active window.
    [[nodiscard]] virtual Subscription onResignKey(std::function<void()> resigned) = 0;
    // The cancel key reached the panel.
    [[nodiscard]] virtual Subscription onCancel(std::function<void()> cancelled) = 0;
};

// The black, click-through panel that dims one screen.
class DimmingPanel {
public:
    virtual ~DimmingPanel() = default;
    virtual void setFrame(PanelRect frame) = 0;
    // 1000: above all windows of applications. 0: among them.
    virtual void setLevel(int level) = 0;
    virtual void setAlpha(double alpha) = 0;
    // Goes over to an alpha by the platform's ordinary fade.
    virtual void animateAlpha(double alpha) = 0;
    virtual void orderFront() = 0;
    // Directly below a window of the window server's numbering.
    virtual void orderBelow(std::uint32_t windowNumber) = 0;
};

// What the inspector says: a heading, and below it plain text, each line of which ends with a line feed.
struct InspectorContent {
    std::string heading;
    std::string body;
    friend bool operator==(const InspectorContent&, const InspectorContent&) = default;
};

// The floating view beside the inspector's marker, at level 1000. The pointer goes through it, and it never takes the
// keyboard.
class InspectorPanel {
public:
    virtual ~InspectorPanel() = default;
    virtual void setContent(const InspectorContent& content) = 0;
    // What the content takes up, long lines broken to stay within the width of `most`; what is higher than `most` is
    // cut off at the end.
    virtual Size fittingSize(Size most) = 0;
    virtual void setFrame(PanelRect frame) = 0;
    // Above everything, and shown if it wasn't.
    virtual void orderFrontRegardless() = 0;
    virtual void orderOut() = 0;
};

class SplashPanel;

class Panels {
public:
    virtual ~Panels() = default;
    virtual std::unique_ptr<InputPanel> makeInputPanel() = 0;
    // `drawn` is the milestone that its content has reached the screen.
    virtual std::unique_ptr<CanvasPanel> makeCanvasPanel(std::string_view drawn) = 0;
    virtual std::unique_ptr<DimmingPanel> makeDimmingPanel() = 0;
    virtual std::unique_ptr<InspectorPanel> makeInspectorPanel() = 0;
    // The one of them that becomes the active window.
    virtual std::unique_ptr<SplashPanel> makeSplashPanel() = 0;
    virtual SystemColors& colors() = 0;
};

// A black window that the pointer goes through and that nobody paints. Rectangles in root pixels. It isn't shown where
// windows aren't blended, since it would hide what it is to dim.
class HazeSurface {
public:
    virtual ~HazeSurface() = default;
    virtual void setFrame(AxRect frame) = 0;
    // 0, transparent, to 1.
    virtual void setAlpha(double alpha) = 0;
    // Each shows it, and keeps it in its place as long as it is shown: directly below a window, over all applications
    // but below the panels that are kept on top.
    virtual void showBelow(std::uint32_t window) = 0;
    virtual void showOverApplications() = 0;
    virtual void hide() = 0;
    virtual bool isShown() const = 0;
};

// What a panel's implementation needs of the windowing system that its toolkit doesn't offer.
class PanelWindowing {
public:
    virtual ~PanelWindowing() = default;

    // Gives the keyboard to one of our windows without making it active; `lost` is called, once, when it is taken away
    // other than by releaseKeyboard(). False when the keyboard can't be had at all.
    virtual bool takeKeyboard(std::uint32_t window, std::function<void()> lost) = 0;
    virtual void releaseKeyboard() = 0;
    // The panel is ready for a key press: it has the keyboard now, or has dealt with the press before. From the first
    // call on, presses come one at a time, and later ones wait, so that the monitor is never offered a key before the
    // panel has taken in those that came earlier. Without any call they come as they are pressed.
    virtual void readyForKeyPress() {}
    // Puts a window of ours that is shown above everything, and keeps it above all other programs' windows as long as
    // it is shown; unless one of them insists on being on top itself.
    virtual void stackOnTop(std::uint32_t window) = 0;
    // Ends before this does.
    virtual std::unique_ptr<HazeSurface> makeHazeSurface() = 0;
    // Whether translucent windows are blended.
    virtual bool isComposited() = 0;
};

}  // namespace tarvix
