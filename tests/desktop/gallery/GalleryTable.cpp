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
        {"The inspector",
         "During a search it tells what is known of the control below the pointer, whether it matches or not.",
         2,
         {lightInspector, darkInspector}},
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
