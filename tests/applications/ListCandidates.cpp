// The candidates of the active window as a search gathers them, and clicks on them as a search makes them, by commands
// on the standard input: README.md says which.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "core/Pointer.h"
#include "search/SearchEngine.h"
#include "tests/desktop/RealServices.h"

namespace tarvix {
namespace {

using nlohmann::json;

json rectangle(const AxRect& frame) { return {frame.origin.x, frame.origin.y, frame.size.width, frame.size.height}; }

json describe(const std::optional<X11Window>& window) {
    if (!window) return nullptr;
    return {{"pid", window->pid},
            {"number", window->number},
            {"title", window->title},
            {"frame", rectangle(window->visible())}};
}

json describe(const AccessibilityElement& element) {
    json texts = json::array();
    for (const auto& text :
         {element.label, element.title, element.help, element.value, element.valueDescription, element.placeholder})
        if (text && !text->empty()) texts.push_back(*text);
    const AxPoint click = clickPoint(element);
    return {{"role", rawValue(element.role)},
            {"subrole", element.subrole.value_or("")},
            {"roleDescription", element.roleDescription},
            {"texts", texts},
            {"url", element.url ? element.url->absolute : ""},
            {"identifier", element.identifier.value_or("")},
            {"frame", rectangle(element.frame())},
            {"click", {click.x, click.y}}};
}

class Lister {
public:
    json answer(const std::string& line) {
        std::istringstream words(line);
        std::string command;
        words >> command;
        if (command == "window") return describe(services_.windows->active());
        if (command == "candidates") {
            int rounds = 1;
            if (!(words >> rounds)) rounds = 1;
            return candidates(rounds);
        }
        std::size_t number = 0;
        if (command == "click" && words >> number && number < listed_.size()) return click(listed_[number]);
        if (command == "escape") return escape();
        return {{"error", "not understood: " + line}};
    }

private:
    json candidates(int rounds) {
        const auto window = services_.windows->active();
        std::vector<double> milliseconds;
        OrderedSet<AccessibilityElement> found;
        for (int round = 0; round < std::max(rounds, 1); ++round) {
            const auto start = std::chrono::steady_clock::now();
            found = search_.candidates(window ? window->pid : -1);
            const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
            milliseconds.push_back(taken.count());
        }
        std::sort(milliseconds.begin(), milliseconds.end());
        listed_.assign(found.begin(), found.end());
        json elements = json::array();
        for (const AccessibilityElement& element : listed_) elements.push_back(describe(element));
        return {{"window", describe(window)},
                {"milliseconds", milliseconds[milliseconds.size() / 2]},
                {"candidates", elements}};
    }

    json click(const AccessibilityElement& element) {
        const AxPoint point = clickPoint(element);
        pointer_.act(element, MouseButton::left, point);
        return {{"clicked", {point.x, point.y}}};
    }

    json escape() {
        for (const KeyEventType type : {KeyEventType::keyDown, KeyEventType::keyUp})
            services_.events->post(KeyEvent{.type = type, .keyCode = kEscape});
        return json::object();
    }

    static constexpr std::uint16_t kEscape = 53;

    RealServices services_;
    const SearchEngine search_{services_.platform()};
    const Pointer pointer_{services_.platform()};
    std::vector<AccessibilityElement> listed_;
};

}  // namespace
}  // namespace tarvix

int main() {
    tarvix::Lister lister;
    for (std::string line; std::getline(std::cin, line);)
        // Names come as the applications give them, which needn't be valid UTF-8.
        std::cout << lister.answer(line).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << std::endl;
}
