#include "display/Inspector.h"

#include <vector>

#include "base/Text.h"
#include "display/InspectorPlacement.h"
#include "platform/Screens.h"

namespace tarvix {

namespace {

constexpr std::size_t kLongestValue = 128;

class Lines {
public:
    void add(const std::optional<std::string>& text) {
        if (text) add(*text);
    }
    void add(const std::string& text) {
        if (!text.empty()) lines_ += "≢ " + text + "\n";
    }
    std::string take() { return std::move(lines_); }

private:
    std::string lines_;
};

std::string shortened(const std::string& value) {
    if (value.size() <= kLongestValue) return value;  // a character has at least one byte
    const std::vector<std::string_view> characters = graphemes(value);
    if (characters.size() <= kLongestValue) return value;
    const auto end = static_cast<std::size_t>(characters[kLongestValue].data() - value.data());
    return value.substr(0, end) + "...";
}

}  // namespace

std::string inspectorText(const AccessibilityElement& element) {
    Lines lines;
    lines.add(element.label);
    lines.add(element.title);
    if (element.help != element.label && element.help != element.title) lines.add(element.help);
    lines.add(element.valueDescription);
    lines.add(element.placeholder);
    lines.add(element.roleDescription);
    lines.add(element.subrole);
    if (element.value) lines.add(shortened(*element.value));
    return lines.take();
}

std::string inspectorHeading(const AccessibilityElement& element) {
    return element.searchableText().empty() ? "No info for that element ☹️"
                                            : "The Inspector 🕵️♂️️ caught";
}

Inspector::Inspector(const Platform& platform, DisplayEngineProtocol& displayEngine, const TheInputProtocol& theInput)
    : platform_(platform),
      displayEngine_(displayEngine),
      theInput_(theInput),
      targetLook_(platform.userDefaults, platform.panels.colors()),
      panel_(platform.panels.makeInspectorPanel()) {}

void Inspector::showInspector(const AccessibilityElement& element) {
    if (!theInput_.isVisible()) return;
    const auto firstScreen = displayEngine_.firstScreen();
    if (!firstScreen) return;
    canvas().removeSubviews();
    canvas().orderOut();
    canvas().setFrame(flip(element.frame(), firstScreen->height()));
    const auto marker = std::make_shared<TargetView>(targetLook_, true, PanelRect{{0, 0}, canvas().frame().size});
    canvas().addSubview(marker);
    canvas().orderFrontRegardless();
    showTexts(element, marker->frame());
}

// `marker` is relative to the canvas.
void Inspector::showTexts(const AccessibilityElement& element, PanelRect marker) {
    const PanelPoint pointer = platform_.screens.mouseLocation();
    const Screen screen = inspectorScreen(displayEngine_.screens(), pointer);
    const PanelPoint corner = canvas().frame().origin;
    const PanelRect place{{corner.x + marker.origin.x, corner.y + marker.origin.y}, marker.size};
    panel_->setContent({inspectorHeading(element), inspectorText(element)});
    panel_->setFrame(inspectorFrame(place, panel_->fittingSize(inspectorRoom(screen)), screen, pointer));
    panel_->orderFrontRegardless();
}

void Inspector::close() {
    if (!canvas_) return;
    canvas_->removeSubviews();
    canvas_->orderOut();
    panel_->orderOut();
}

Canvas& Inspector::canvas() {
    if (!canvas_) canvas_.emplace(platform_.panels, milestone::inspectorMarkerDrawn);
    return *canvas_;
}

}  // namespace tarvix
