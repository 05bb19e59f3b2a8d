#include "core/UrlCommands.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "base/UrlComponents.h"

namespace tarvix {

namespace {

enum class ActsWhile : std::uint8_t { hidden, visible, either };
enum class With : std::uint8_t { isRead, isIgnored };

struct UrlCommand {
    std::string_view prefix;
    ActsWhile actsWhile;
    With with;

    bool fits(std::string_view text, bool isVisible) const {
        return text.starts_with(prefix) &&
               (actsWhile == ActsWhile::either || isVisible == (actsWhile == ActsWhile::visible));
    }
};

// An open leaves the text of a panel that is up alone; a toggle sets it and then closes the panel.
constexpr auto kCommands = std::to_array<UrlCommand>({
    {"tarvix://openTheInput", ActsWhile::hidden, With::isRead},
    {"tarvix://closeTheInput", ActsWhile::visible, With::isIgnored},
    {"tarvix://toggleTheInput", ActsWhile::either, With::isRead},
});

// Only the first item of the name counts; without a value it leaves the text alone.
void applyWith(const UrlComponents& components, TheInput& theInput) {
    const auto& items = components.queryItems();
    const auto with =
        std::find_if(items.begin(), items.end(), [](const QueryItem& item) { return item.name == "with"; });
    if (with != items.end() && with->value) theInput.enter(*with->value);
}

}  // namespace

void handleURLs(std::span<const std::string> urls, AppCore& core) {
    if (!core.isRunning() || urls.empty()) return;
    const std::string& text = urls.front();
    const bool isVisible = core.theInput().isVisible();
    const auto command = std::find_if(kCommands.begin(), kCommands.end(),
                                      [&](const UrlCommand& candidate) { return candidate.fits(text, isVisible); });
    if (command == kCommands.end() || text.size() > kLongestUrl) return;
    const auto components = UrlComponents::parse(text);
    if (!components) return;
    if (command->with == With::isRead) applyWith(*components, core.theInput());
    core.toggleTheInput();
}

}  // namespace tarvix
