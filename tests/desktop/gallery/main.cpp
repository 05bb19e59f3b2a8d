// Takes the pictures of the gallery from the running program, one desktop at a time; writes the page; and says whether
// page, pictures and table agree. tools/gallery calls it.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <thread>

#include "linux/x11/X11Windows.h"
#include "tests/desktop/gallery/Desk.h"
#include "tests/desktop/gallery/GalleryPage.h"
#include "tests/desktop/gallery/GalleryTable.h"
#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Program.h"
#include "tests/desktop/play/ScreenImage.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;

constexpr ScreenPoint kAside{4, 1000};  // where the pointer is over no window
constexpr ScreenPoint kSettingsPlace{600, 300}, kScaledSettingsPlace{200, 60};

constexpr const char* kUsage =
    "usage: play_gallery take SCENE TARVIX TOOLS FOLDER [NAME]    takes the pictures of a scene, on the desktop of\n"
    "                                                             $DISPLAY; of these only whose name begins so\n"
    "       play_gallery page                              prints the page\n"
    "       play_gallery check DOCUMENTS                   says what is amiss with the page and its pictures\n";

bool fail(const std::string& what) {
    std::fprintf(stderr, "gallery: %s\n", what.c_str());
    return false;
}

std::string configurationFolder() {
    const char* folder = std::getenv("XDG_CONFIG_HOME");
    return folder ? folder : "";
}

void write(const std::filesystem::path& path, const std::string& content) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << content;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const auto place = text.find(from);
    return place == std::string::npos ? text : text.replace(place, from.size(), to);
}

// The desktop's own setting, which toolkits and Tarvix go by.
void makeDark() {
    for (const char* folder : {"/gtk-3.0", "/gtk-4.0"}) {
        const std::string path = configurationFolder() + folder + "/settings.ini";
        std::ifstream file(path);
        const std::string settings{std::istreambuf_iterator<char>(file), {}};
        write(path, replaced(settings, "prefer-dark-theme=0", "prefer-dark-theme=1"));
    }
    unsetenv("GTK_THEME");                               // it would overrule the setting
    setenv("ADW_DEBUG_COLOR_SCHEME", "prefer-dark", 1);  // some applications ask the desktop's portal alone
}

// The desktop uses Alt+F4, says its configuration; the recorder of the settings looks there. The window manager has
// read it before and leaves the key alone, so that it can be recorded.
void takeAltF4() {
    const std::string path = configurationFolder() + "/openbox/rc.xml";
    std::ifstream file(path);
    const std::string configuration{std::istreambuf_iterator<char>(file), {}};
    write(path, replaced(configuration, "<keyboard/>",
                         R"(<keyboard><keybind key="A-F4"><action name="Close"/></keybind></keyboard>)"));
}

bool switchAccessibility(bool on) {
    return outputOf({"dbus-send", "--session", "--print-reply", "--dest=org.a11y.Bus", "/org/a11y/bus",
                     "org.freedesktop.DBus.Properties.Set", "string:org.a11y.Status", "string:IsEnabled",
                     std::string("variant:boolean:") + (on ? "true" : "false")})
        .has_value();
}

bool makeMonitors(const std::vector<ScreenPart>& monitors) {
    for (std::size_t i = 0; i < monitors.size(); ++i) {
        const ScreenPart& part = monitors[i];
        const std::string geometry = std::to_string(part.width) + "/400x" + std::to_string(part.height) + "/280+" +
                                     std::to_string(part.x) + "+" + std::to_string(part.y);
        // The server's one output belongs to the first of them.
        if (!outputOf({"xrandr", "--setmonitor", "monitor" + std::to_string(i), geometry, i == 0 ? "screen" : "none"}))
            return false;
    }
    return true;
}

// As many pixels of a part of the screen as differ.
int differing(const ScreenImage& a, const ScreenImage& b, const ScreenPart& part) {
    int count = 0;
    for (int y = part.y; y < part.y + part.height; ++y)
        for (int x = part.x; x < part.x + part.width; ++x) count += a.at(x, y) != b.at(x, y);
    return count;
}

class Photographer {
public:
    // Of the scene's pictures those whose name begins with `wanted`.
    Photographer(GalleryScene scene, std::string program, std::string tools, std::string folder, std::string wanted)
        : scene_(scene),
          program_(std::move(program)),
          tools_(std::move(tools)),
          folder_(std::move(folder)),
          wanted_(std::move(wanted)) {}

    bool takeAll() {
        if (configurationFolder().empty()) return fail("XDG_CONFIG_HOME is not set; tools/gallery sets it");
        const bool isDark = scene_ == GalleryScene::dark;
        const std::vector<ScreenPart> monitors = galleryMonitors(scene_);
        if (isDark) makeDark();
        takeAltF4();
        if (monitors.size() > 1 && !makeMonitors(monitors)) return fail("the monitors can't be made");
        const Backdrop backdrop(monitors, isDark ? 0x2b3440 : 0x8fb3cf, isDark ? 0x171c24 : 0x4f7396);
        for (const auto application : {GalleryApplication::widgetFactory, GalleryApplication::calculator})
            if (!takeThoseOf(application)) return false;
        return true;
    }

private:
    bool takeThoseOf(GalleryApplication application) {
        if (!isNeeded(application)) return true;
        if (!start(application)) return false;
        for (const GallerySection& section : gallery())
            for (const GalleryPicture& picture : section.pictures) {
                if (!isWanted(picture) || picture.application != application) continue;
                if (!take(picture)) return fail("no picture " + picture.name);
                std::printf("  %s.png\n", picture.name.c_str());
                std::fflush(stdout);
            }
        return true;
    }

    // The widget factory stands behind the calculator.
    bool isNeeded(GalleryApplication application) const {
        for (const GallerySection& section : gallery())
            for (const GalleryPicture& picture : section.pictures)
                if (isWanted(picture) && picture.application >= application) return true;
        return false;
    }

    bool isWanted(const GalleryPicture& picture) const {
        return picture.scene == scene_ && picture.name.starts_with(wanted_);
    }

    bool start(GalleryApplication application) const {
        const std::string name = galleryApplications[static_cast<std::size_t>(application)];
        const auto started = outputOf({tools_ + "/start-app", name});
        if (!started) return fail(name + " did not start");
        int process = 0;
        std::uint32_t window = 0;
        std::istringstream(*started) >> process >> window;
        return moveWindow(window, galleryPlace(scene_, application)) || fail(name + " stays where it is");
    }

    bool take(const GalleryPicture& picture) {
        write(configurationFolder() + "/tarvix/tarvix.json", picture.settings.dump());
        keyboard_.movePointer(kAside);
        Process::Environment environment;
        if (!picture.locale.empty()) environment = {{"LANG", picture.locale}, {"LC_ALL", std::nullopt}};
        if (picture.scale > 1) environment["GDK_SCALE"] = std::to_string(picture.scale);
        if (picture.isFirstRun) return takeFirstRun(picture, environment);
        if (picture.isTrayMenu) return takeTrayMenu(picture);
        Program program(program_, environment);
        if (!program.isReady()) return fail("Tarvix did not become ready");
        if (picture.inSettings) return takeSettings(picture);
        const auto before = screenAtRest(picture.part, nullptr);
        if (!before) return fail("the screen doesn't come to rest");
        if (!search(program, picture)) return false;
        const auto shown = screenAtRest(picture.part, &*before);
        if (!shown || !save(*shown, picture)) return fail("nothing can be seen of the search");
        return program.press(keyboard_, keysym::escape, milestone::inputHidden) || fail("The Input stays");
    }

    bool takeFirstRun(const GalleryPicture& picture, const Process::Environment& environment) {
        const auto before = screenAtRest(picture.part, nullptr);
        if (!before || !switchAccessibility(false)) return fail("accessibility can't be switched off");
        const Program program(program_, environment);
        const auto shown = screenAtRest(picture.part, &*before);
        return switchAccessibility(true) && shown && save(*shown, picture);
    }

    bool takeTrayMenu(const GalleryPicture& picture) {
        constexpr ScreenPoint icon{1515, 1065};
        const std::string configuration = configurationFolder() + "/tint2rc";
        write(configuration,
              "panel_items = S\npanel_position = bottom right horizontal\npanel_size = 420 30\npanel_layer = top\n"
              "systray_padding = 4 2 4\nsystray_icon_size = 22\n");
        const Process panel({"tint2", "-c", configuration});
        const auto bare = screenAtRest(picture.part, nullptr);
        Program program(program_);
        const auto before = program.isReady() && bare ? screenAtRest({1500, 1050, 30, 30}, nullptr) : std::nullopt;
        if (!before) return fail("no tray");
        keyboard_.movePointer(icon);
        keyboard_.click();
        const auto shown = screenAtRest(picture.part, &*before);
        return (shown && save(*shown, picture)) || fail("no menu");
    }

    bool takeSettings(GalleryPicture picture) {
        if (Process({program_}).waitForEnd(10s) != 0) return fail("the second start did not end");
        std::optional<X11Window> window;
        const bool isInFront = await(5s, [&] {
            window = windows_->active();
            return window && window->title.starts_with("Settings");
        });
        if (!isInFront || !moveWindow(window->number, picture.scale > 1 ? kScaledSettingsPlace : kSettingsPlace))
            return fail("no settings window");
        picture.part = withFrame(window->number);
        auto shown = screenAtRest(picture.part, nullptr);
        for (const Chord& chord : *picture.inSettings) {
            if (!shown) return fail("the settings don't come to rest");
            keyboard_.chord(chord);
            shown = screenAtRest(picture.part, &*shown);
        }
        picture.part = withFrame(window->number);  // a tab has its own height
        return (shown && save(*shown, picture)) || fail("nothing can be seen of the settings");
    }

    ScreenPart withFrame(std::uint32_t number) {
        const auto window = windows_->window(number);
        if (!window) return {};
        const X11Window::Extents frame = window->frameExtents.value_or(X11Window::Extents{});
        return {static_cast<int>(window->client.minX() - frame.left),
                static_cast<int>(window->client.minY() - frame.top),
                static_cast<int>(window->client.width() + frame.left + frame.right),
                static_cast<int>(window->client.height() + frame.top + frame.bottom)};
    }

    bool search(Program& program, const GalleryPicture& picture) {
        const Program::Step opened = program.pressHotKey(keyboard_);
        if (!opened) return fail("The Input did not come up");
        if (!program.reached(milestone::candidatesRead, opened.pressed)) return fail("no candidates were read");
        if (!program.type(keyboard_, picture.query) && !picture.query.empty()) return fail("no markers");
        for (int i = 0; i < picture.moves; ++i)
            if (!program.press(keyboard_, keysym::down, milestone::markersDrawn)) return fail("no move");
        if (!picture.pointer) return true;
        const std::int64_t moved = monotonicMicroseconds();
        keyboard_.movePointer(*picture.pointer);
        return program.reached(milestone::inspectorShown, moved) || fail("the inspector did not come up");
    }

    // The screen once a part of it has stopped changing, and looks different from before. A few pixels may go on: some
    // applications have a clockwork.
    static std::optional<ScreenImage> screenAtRest(const ScreenPart& part, const ScreenImage* before) {
        constexpr int kLooks = 6;
        const int clockwork = part.width * part.height / 200;
        std::optional<ScreenImage> last;
        int looks = 0;
        const bool isAtRest = await(5s, [&] {
            std::this_thread::sleep_for(20ms);  // a compositor's frame
            auto now = captureScreen();
            if (!now) return false;
            const bool same = last && differing(*last, *now, part) <= clockwork;
            const bool shows = !before || differing(*before, *now, part) > 300;
            looks = same && shows ? looks + 1 : 0;
            last = std::move(now);
            return looks >= kLooks;
        });
        return isAtRest ? std::move(last) : std::nullopt;
    }

    bool save(const ScreenImage& screen, const GalleryPicture& picture) const {
        const ScratchFolder scratch;
        const std::string raw = scratch.file("part.ppm");
        std::ofstream file(raw, std::ios::binary);
        file << "P6 " << picture.part.width << ' ' << picture.part.height << " 255\n";
        for (int y = picture.part.y; y < picture.part.y + picture.part.height; ++y)
            for (int x = picture.part.x; x < picture.part.x + picture.part.width; ++x)
                for (const int shift : {16, 8, 0}) file.put(static_cast<char>((screen.at(x, y) >> shift) & 0xff));
        file.close();
        std::filesystem::create_directories(folder_);
        return outputOf({"convert", raw, "-resize", std::to_string(picture.percent) + "%", "-strip", "-define",
                         "png:compression-level=9", folder_ + "/" + picture.name + ".png"})
            .has_value();
    }

    const GalleryScene scene_;
    const std::string program_, tools_, folder_, wanted_;
    const std::unique_ptr<X11Windows> windows_ = std::move(X11Windows::open().value());
    Keyboard keyboard_;
};

int take(const std::string& scene, const char* program, const char* tools, const char* folder, const char* wanted) {
    for (std::size_t i = 0; i < std::size(galleryScenes); ++i)
        if (scene == galleryScenes[i])
            return Photographer(static_cast<GalleryScene>(i), program, tools, folder, wanted).takeAll() ? 0 : 1;
    fail("no scene " + scene);
    return 2;
}

int check(const char* documents) {
    const std::string faults = galleryFaults(documents);
    std::fputs(faults.c_str(), stderr);
    return faults.empty() ? 0 : 1;
}

}  // namespace
}  // namespace tarvix

int main(int count, char** words) {
    const std::string what = count > 1 ? words[1] : "";
    if (what == "take" && (count == 6 || count == 7))
        return tarvix::take(words[2], words[3], words[4], words[5], count == 7 ? words[6] : "");
    if (what == "page" && count == 2) return std::fputs(tarvix::galleryPage().c_str(), stdout) < 0;
    if (what == "check" && count == 3) return tarvix::check(words[2]);
    std::fputs(tarvix::kUsage, stderr);
    return 2;
}
