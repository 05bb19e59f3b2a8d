// What the gallery shows: each picture with all that is needed to take it.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/desktop/play/Keyboard.h"

namespace tarvix {

// The desktop that a picture is taken on; tools/gallery makes one for each.
enum class GalleryScene { light, dark, twoMonitors, noCompositor };
inline constexpr std::string_view galleryScenes[] = {"light", "dark", "two-monitors", "no-compositor"};

// The application that is searched. The calculator stands over the widget factory.
enum class GalleryApplication { widgetFactory, calculator };
inline constexpr const char* galleryApplications[] = {"gtk3-widget-factory", "gnome-calculator"};

struct ScreenPart {
    int x = 0, y = 0, width = 0, height = 0;
};

using Chord = std::vector<std::uint32_t>;  // keysyms

struct GalleryPicture {
    std::string name;     // of the file, without .png
    std::string caption;  // in the page, as Markdown
    GalleryScene scene = GalleryScene::light;
    GalleryApplication application = GalleryApplication::widgetFactory;
    nlohmann::json settings = nlohmann::json::object();
    std::string query;
    int moves = 0;                       // of the Primary Target
    std::optional<ScreenPoint> pointer;  // brings up the inspector there
    // Instead of a search: the settings' window, in which these keys are pressed one chord after the other. The part of
    // the screen is that window then.
    std::optional<std::vector<Chord>> inSettings = std::nullopt;
    bool isTrayMenu = false;  // instead of a search: the status item's menu, in a panel of its own
    bool isFirstRun = false;  // instead of a search: the panel that asks for accessibility, which is off
    std::string locale = {};  // of the user, where it matters
    int scale = 1;            // of the desktop
    ScreenPart part;          // of the screen
    int percent = 100;        // of its size
};

struct GallerySection {
    std::string title, text;
    int columns = 1;
    std::vector<GalleryPicture> pictures;
};

const std::vector<GallerySection>& gallery();

// The screen has to have room for all of them. The first one is the first monitor.
std::vector<ScreenPart> galleryMonitors(GalleryScene scene);

// Where the windows stand, so that parts of the screen can be told beforehand.
ScreenPoint galleryPlace(GalleryScene scene, GalleryApplication application);

}  // namespace tarvix
