#include "tests/desktop/gallery/GalleryTable.h"

#include "shell/SettingEnumerations.h"
#include "shell/TheInputMakeup.h"

namespace tarvix {

namespace {

constexpr ScreenPart kControls{104, 513, 340, 188};
constexpr ScreenPart kTopLeft{60, 40, 480, 250};
constexpr ScreenPart kToggles{420, 230, 420, 250};
constexpr ScreenPart kBothWindows{60, 80, 1500, 960};

GallerySection markers() {
    GallerySection section{"Markers",
                           "The filled marker is the Primary Target, the others are outlines. The setting is "
                           "`targetsColor`; accent and highlight are the desktop's own colours.",
                           2,
                           {}};
    for (const SettingCase& color : targetsColorCases) {
        const std::string value(color.rawValue);
        GalleryPicture picture;
        picture.name = "markers-" + value;
        picture.caption = "`" + value + "`";
        picture.settings = {{"targetsColor", value}, {"hazeOverWindowStyle", "onlyTargets"}};
        if (value == rawValue(TargetsColor::custom)) {
            picture.caption += " with a `targetsCustomColorHue` of 0.06";
            picture.settings["targetsCustomColorHue"] = 0.06;
        }
        picture.query = "check";
        picture.moves = 4;
        picture.part = kControls;
        section.pictures.push_back(std::move(picture));
    }
    return section;
}

GallerySection presets() {
    GallerySection section{
        "The Input", "Its four looks by name. The setting is `inputPreset`; each of its parts is one too.", 2, {}};
    const auto add = [&](InputPreset preset, const InputPresetDefaults& values) {
        const std::string value(rawValue(preset));
        GalleryPicture picture;
        picture.name = "input-" + value;
        picture.caption = "`" + value + "`";
        picture.settings = {{"inputPreset", value},
                            {"inputTextSize", values.textSize},
                            {"inputBackgroundOpacity", values.backgroundOpacity},
                            {"inputCornerRadius", values.cornerRadius},
                            {"inputBorderThickness", values.borderThickness}};
        picture.query = "combo";
        picture.part = kTopLeft;
        section.pictures.push_back(std::move(picture));
    };
    add(InputPreset::tarvix, {16, 0.9, 6, 2});
    add(InputPreset::spotlight, TheInputMakeup::spotlightInputDefaults);
    add(InputPreset::alfred, TheInputMakeup::alfredInputDefaults);
    add(InputPreset::invisibleMan, TheInputMakeup::invisibleManInputDefaults);
    return section;
}

GallerySection dimming() {
    GallerySection section{"Dimming",
                           "What isn't searched steps back. The setting is `hazeOverWindowStyle`; here "
                           "`hazeOverWindowOpacity` is 0.5.",
                           1,
                           {}};
    const auto add = [&](HazeOverWindowStyle style, const char* caption) {
        const std::string value(rawValue(style));
        GalleryPicture picture;
        picture.name = "dimming-" + value;
        picture.caption = "`" + value + "`: " + caption;
        picture.application = GalleryApplication::calculator;
        picture.settings = {{"hazeOverWindowStyle", value}, {"hazeOverWindowOpacity", 0.5}};
        picture.query = "m";
        picture.part = kBothWindows;
        picture.percent = 50;
        section.pictures.push_back(std::move(picture));
    };
    add(HazeOverWindowStyle::fadeOutExceptDockMenuBarAndFrontmostApp, "everything but the window that is searched");
    add(HazeOverWindowStyle::fadeOutWholeScreen, "the whole screen");
    add(HazeOverWindowStyle::onlyTargets, "nothing");
    return section;
}

GallerySection settingsWindow() {
    GallerySection section{
        "The settings",
        "One window, whose controls apply at once; what they change of the looks shows itself on the "
        "desktop for a moment.",
        2,
        {}};
    const auto add = [&](const char* name, const char* caption, int tab, GalleryScene scene) -> GalleryPicture& {
        GalleryPicture picture;
        picture.name = name;
        picture.caption = caption;
        picture.scene = scene;
        picture.settings = {{"targetsColor", "custom"}};
        picture.inSettings.emplace(static_cast<std::size_t>(tab), Chord{keysym::control, keysym::tab});
        section.pictures.push_back(std::move(picture));
        return section.pictures.back();
    };
    add("settings-general", "General", 0, GalleryScene::light);
    add("settings-search", "Search", 1, GalleryScene::light);
    add("settings-looks", "Looks", 2, GalleryScene::light);
    add("settings-position", "Position", 3, GalleryScene::light);
    add("settings-extra", "Extra", 4, GalleryScene::light);
    add("settings-looks-dark", "Looks, dark", 2, GalleryScene::dark);
    add("settings-search-dark", "Search, dark", 1, GalleryScene::dark);
    GalleryPicture& scaled =
        add("settings-search-scaled", "Search on a desktop scaled to 200 %, at half its size", 1, GalleryScene::light);
    scaled.scale = 2;
    scaled.percent = 50;
    return section;
}

GalleryPicture inspector(const char* name, GalleryScene scene) {
    GalleryPicture picture;
    picture.name = name;
    picture.scene = scene;
    picture.pointer = ScreenPoint{560, 275};
    picture.part = kToggles;
    return picture;
}

GalleryPicture overview(const char* name, const char* caption, GalleryScene scene) {
    GalleryPicture picture;
    picture.name = name;
    picture.caption = caption;
    picture.scene = scene;
    picture.application = GalleryApplication::calculator;
    picture.query = "m";
    picture.moves = 1;
    picture.part = kBothWindows;
    picture.percent = 50;
    return picture;
}

GallerySection alerts() {
    GallerySection section{
        "A shortcut that is taken",
        "What the recorder of the settings says, in the user's language: of an entry of Tarvix's own "
        "menu, and of a key that the desktop uses.",
        2,
        {}};
    const auto add = [&](const char* name, const char* caption, const char* locale, const Chord& taken) {
        GalleryPicture picture;
        picture.name = name;
        picture.caption = caption;
        picture.inSettings = {{keysym::tab}, taken};
        picture.locale = locale;
        section.pictures.push_back(std::move(picture));
    };
    const Chord settings{keysym::super, ','}, taken{keysym::alt, keysym::f4};
    add("alert-menu", "Super+Comma", "en_US.UTF-8", settings);
    add("alert-system", "Alt+F4", "en_US.UTF-8", taken);
    add("alert-menu-de", "in German", "de_DE.UTF-8", settings);
    add("alert-system-de", "in German", "de_DE.UTF-8", taken);
    return section;
}

GallerySection firstRun() {
    GallerySection section{"The first run",
                           "While accessibility is off this panel stands in the place of all else; its button switches "
                           "accessibility on.",
                           3,
                           {}};
    const auto add = [&](const char* name, const char* caption, GalleryScene scene) -> GalleryPicture& {
        GalleryPicture picture;
        picture.name = name;
        picture.caption = caption;
        picture.scene = scene;
        picture.isFirstRun = true;
        picture.part = {810, 320, 300, 440};
        section.pictures.push_back(std::move(picture));
        return section.pictures.back();
    };
    add("splash", "light", GalleryScene::light);
    add("splash-dark", "dark", GalleryScene::dark);
    GalleryPicture& scaled =
        add("splash-scaled", "on a desktop scaled to 200 %, at half its size", GalleryScene::light);
    scaled.scale = 2;
    scaled.percent = 50;
    scaled.part = {660, 100, 600, 880};
    return section;
}

GallerySection trayMenu() {
    GallerySection section{
        "The status item",
        "Its icon in the desktop's tray opens the menu; here the tray is tint2's. The entry of reports "
        "names the frontmost application.",
        1,
        {}};
    GalleryPicture picture;
    picture.name = "tray-menu";
    picture.isTrayMenu = true;
    picture.part = {1480, 900, 440, 180};
    section.pictures.push_back(std::move(picture));
    return section;
}

std::vector<GallerySection> allSections() {
    GalleryPicture lightInspector = inspector("inspector", GalleryScene::light);
    lightInspector.caption = "light";
    GalleryPicture darkInspector = inspector("inspector-dark", GalleryScene::dark);
    darkInspector.caption = "dark";
    GalleryPicture monitors = overview("two-monitors", "", GalleryScene::twoMonitors);
    monitors.part = {0, 0, 2560, 1080};
    monitors.percent = 40;
    GalleryPicture bare = markers().pictures.front();
    bare.name = "no-compositor";
    bare.caption = "";
    bare.scene = GalleryScene::noCompositor;
    return {
        markers(),
        presets(),
        dimming(),
        firstRun(),
        trayMenu(),
        settingsWindow(),
        {"The inspector",
         "During a search it tells what is known of the control below the pointer, whether it matches or not.",
         2,
         {lightInspector, darkInspector}},
        alerts(),
        {"Light and dark",
         "Panels follow the appearance of the desktop as it changes.",
         2,
         {overview("light", "light", GalleryScene::light), overview("dark", "dark", GalleryScene::dark)}},
        {"Two monitors", "The monitor of the window that is searched is dimmed, and no other.", 1, {monitors}},
        {"Without a compositor",
         "Nothing can be translucent then: a fill leaves every second row to the application.",
         1,
         {bare}},
    };
}

}  // namespace

const std::vector<GallerySection>& gallery() {
    static const std::vector<GallerySection> sections = allSections();
    return sections;
}

ScreenPoint galleryPlace(GalleryScene scene, GalleryApplication application) {
    if (application == GalleryApplication::widgetFactory) return {100, 150};
    return scene == GalleryScene::twoMonitors ? ScreenPoint{1850, 230} : ScreenPoint{1000, 370};
}

std::vector<ScreenPart> galleryMonitors(GalleryScene scene) {
    if (scene == GalleryScene::twoMonitors) return {{0, 0, 1560, 1080}, {1560, 0, 1000, 860}};
    return {{0, 0, 1920, 1080}};
}

}  // namespace tarvix
