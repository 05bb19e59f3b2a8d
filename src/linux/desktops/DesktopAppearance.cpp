#include "linux/desktops/DesktopAppearance.h"

#include <array>
#include <sstream>
#include <utility>

namespace tarvix {

namespace {

using Order = std::array<const AppearanceTold*, 4>;

bool isKde(const std::string& currentDesktop) {
    std::istringstream names(currentDesktop);
    for (std::string name; std::getline(names, name, ':');)
        if (name == "KDE") return true;
    return false;
}

template <class Value>
std::optional<Value> firstOf(const Order& order, std::optional<Value> AppearanceTold::*value) {
    for (const AppearanceTold* told : order)
        if (told->*value) return told->*value;
    return std::nullopt;
}

// Half of it, half of the ground that it lies on.
Color tint(Color accent, bool isDark) {
    const double ground = isDark ? 0 : 1;
    return {(accent.red + ground) / 2, (accent.green + ground) / 2, (accent.blue + ground) / 2, 1};
}

}  // namespace

AppearanceValues appearanceOf(const AppearancesTold& told, const std::string& currentDesktop) {
    const Order order = isKde(currentDesktop) ? Order{&told.portal, &told.kde, &told.xsettings, &told.gtk}
                                              : Order{&told.portal, &told.xsettings, &told.kde, &told.gtk};
    AppearanceValues values = told.toolkit;
    values.isDark = firstOf(order, &AppearanceTold::isDark).value_or(values.isDark);
    const auto accent = firstOf(order, &AppearanceTold::accent);
    if (accent) {
        values.accent = *accent;
        values.selection = tint(*accent, values.isDark);
    }
    values.selection = firstOf(order, &AppearanceTold::selection).value_or(values.selection);
    return values;
}

DesktopAppearance::DesktopAppearance(const Sources& sources, std::string currentDesktop)
    : sources_(sources), currentDesktop_(std::move(currentDesktop)), values_(read()) {
    for (AppearanceSource* source : {&sources.portal, &sources.xsettings, &sources.kde, &sources.gtk, &sources.toolkit})
        subscriptions_.push_back(source->onChange([this] { refresh(); }));
}

AppearanceValues DesktopAppearance::read() const {
    const AppearanceTold toolkit = sources_.toolkit.told();
    const AppearanceValues known{*toolkit.isDark, *toolkit.accent, *toolkit.selection, 1};
    return appearanceOf(
        {sources_.portal.told(), sources_.xsettings.told(), sources_.kde.told(), sources_.gtk.told(), known},
        currentDesktop_);
}

void DesktopAppearance::refresh() {
    AppearanceValues now = read();
    now.scale = values_.scale;
    change(now);
}

void DesktopAppearance::setScale(double scale) {
    AppearanceValues now = values_;
    now.scale = scale;
    change(now);
}

void DesktopAppearance::change(const AppearanceValues& now) {
    if (now == values_) return;
    values_ = now;
    changed_();
}

}  // namespace tarvix
