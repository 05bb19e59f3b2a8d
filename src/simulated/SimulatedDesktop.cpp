#include "simulated/SimulatedDesktop.h"

#include "platform/Modifiers.h"

namespace tarvix {

namespace {

constexpr std::uint32_t kShiftState = 2, kOptionState = 8;
constexpr int kOrdinaryLayer = 0, kDockLayer = 20, kStatusItemLayer = 25;
constexpr AxRect kMenuBarFrame = {{0, 0}, {1600, 24}}, kDockFrame = {{400, 940}, {800, 60}};

// The characters of a UTF-8 text.
std::vector<std::string> charactersOf(std::string_view text) {
    std::vector<std::string> characters;
    for (const char byte : text) {
        const bool continues = (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
        if (!continues || characters.empty()) characters.emplace_back();
        characters.back().push_back(byte);
    }
    return characters;
}

}  // namespace

SimulatedDesktop::SimulatedDesktop()
    : accessibility(log, faults),
      application(log),
      workspace(log, faults),
      windowServer(faults),
      events(log, faults, screens,
             [this](const KeyEvent& event) {
                 if (event.type == KeyEventType::keyDown) runLoop.onMain([this, event] { deliver(event); });
             }),
      eventTaps(faults),
      hotKeys(faults),
      panels(log),
      pasteboard(log),
      notificationCenter(log),
      statusBar(log),
      loginItems(log),
      updater(log) {}

Platform SimulatedDesktop::platform() {
    return {.accessibility = accessibility,
            .application = application,
            .workspace = workspace,
            .windowServer = windowServer,
            .screens = screens,
            .events = events,
            .eventTaps = eventTaps,
            .hotKeys = hotKeys,
            .inputSources = inputSources,
            .panels = panels,
            .runLoop = runLoop,
            .userDefaults = userDefaults,
            .pasteboard = pasteboard,
            .notificationCenter = notificationCenter,
            .milestones = milestones,
            .statusBar = statusBar,
            .loginItems = loginItems,
            .updater = updater};
}

std::int32_t SimulatedDesktop::launch(const std::string& name, const std::optional<std::string>& bundleIdentifier) {
    const std::int32_t pid = launchInBackground(name, bundleIdentifier);
    activate(pid);
    return pid;
}

std::int32_t SimulatedDesktop::launchInBackground(const std::string& name,
                                                  const std::optional<std::string>& bundleIdentifier) {
    const std::int32_t pid = ++lastPid_;
    workspace.launch({pid, bundleIdentifier.value_or("org.example." + name), name});
    return pid;
}

SimulatedWindow SimulatedDesktop::window(const std::string& name, AxRect frame,
                                         const std::optional<std::string>& bundleIdentifier) {
    return addWindow(launch(name, bundleIdentifier), name, frame);
}

SimulatedWindow SimulatedDesktop::addWindow(std::int32_t pid, const std::string& title, AxRect frame) {
    const std::uint32_t number = ++lastWindow_;
    const SimulatedElement element{.role = "AXWindow",
                                   .title = title,
                                   .frame = frame,
                                   .children = {},
                                   .attributes = {{std::string(ax::fullScreen), false}}};
    windowServer.add({number, pid, workspace.runningApplication(pid)->localizedName, kOrdinaryLayer, frame});
    return {&accessibility, pid, number, accessibility.addWindow(pid, element, number)};
}

SimulatedWindow SimulatedDesktop::addSurface(std::int32_t pid, AxRect frame, int layer,
                                             const SimulatedElement& container) {
    const std::uint32_t number = ++lastWindow_;
    windowServer.add({number, pid, workspace.runningApplication(pid)->localizedName, layer, frame});
    return {&accessibility, pid, number, accessibility.add(accessibility.addApplication(pid), container)};
}

UIElement SimulatedDesktop::addMenuBar(std::int32_t pid, const std::vector<SimulatedElement>& items) {
    const UIElement owner = accessibility.addApplication(pid);
    UIElement bar = accessibility.add(owner, {.role = "AXMenuBar", .frame = kMenuBarFrame, .children = items});
    accessibility.set(owner, ax::menuBar, bar);
    return bar;
}

SimulatedWindow SimulatedDesktop::addStatusItems(std::int32_t pid, const std::vector<SimulatedElement>& items) {
    SimulatedWindow bar = addSurface(pid, kMenuBarFrame, kStatusItemLayer,
                                     {.role = "AXMenuBar", .frame = kMenuBarFrame, .children = items});
    accessibility.set(accessibility.application(pid), ax::extrasMenuBar, bar.element);
    return bar;
}

SimulatedWindow SimulatedDesktop::addNotification(AxRect frame, const std::vector<SimulatedElement>& children) {
    if (!notifications_) notifications_ = launchInBackground("Notification Center", "com.apple.notificationcenterui");
    SimulatedWindow window = addWindow(*notifications_, "", frame);
    for (const SimulatedElement& child : children) window.add(child);
    return window;
}

SimulatedWindow SimulatedDesktop::addDock(const std::vector<SimulatedElement>& items) {
    return addSurface(launchInBackground("Dock", "com.apple.dock"), kDockFrame, kDockLayer,
                      {.role = "AXList", .frame = kDockFrame, .children = items});
}

void SimulatedDesktop::activate(std::optional<std::int32_t> pid) {
    accessibility.setFocusedApplication(pid);
    workspace.activate(pid);
}

void SimulatedDesktop::press(std::uint16_t keyCode, std::uint64_t flags) {
    deliver({KeyEventType::keyDown, keyCode, flags});
}

void SimulatedDesktop::deliver(const KeyEvent& event) {
    if (hotKeys.press({event.keyCode, ModifierTransformer::carbonFlags(event.flags)})) return;
    if (!panelHasKeyboard()) {
        log.note(Topic::key, "key " + std::to_string(event.keyCode) + " reached the " + keyboardsOwner(event));
    } else if (events.offer(event) == Verdict::pass) {
        panels.input().handleKey(event, typed(event));
    }
}

std::string SimulatedDesktop::keyboardsOwner(const KeyEvent& event) const {
    if (hotKeys.hasMenu()) return "menu";
    const SimulatedHotKeys::Chord chord{event.keyCode, ModifierTransformer::carbonFlags(event.flags)};
    return hotKeys.takenByOthers.contains(chord) ? "program that holds it" : "application";
}

bool SimulatedDesktop::panelHasKeyboard() const { return panels.hasInput() && panels.input().isKey(); }

std::string SimulatedDesktop::typed(const KeyEvent& event) {
    const std::uint32_t state =
        ((event.flags & eventFlag::shift) ? kShiftState : 0) + ((event.flags & eventFlag::option) ? kOptionState : 0);
    return inputSources.translate(inputSources.currentKeyboardLayout(), event.keyCode, state).value_or("");
}

void SimulatedDesktop::type(std::string_view text) {
    for (const std::string& character : charactersOf(text)) typeCharacter(character);
}

void SimulatedDesktop::typeCharacter(const std::string& character) {
    constexpr std::uint16_t codes = 128;
    for (const std::uint64_t flags : {std::uint64_t{0}, eventFlag::shift})
        for (std::uint16_t code = 0; code < codes; ++code)
            if (typed({KeyEventType::keyDown, code, flags}) == character) return press(code, flags);
    if (panelHasKeyboard()) panels.input().insert(character);
}

void SimulatedDesktop::clickElsewhere() {
    if (panels.hasInput()) panels.input().takeKeyboardAway();
}

void SimulatedDesktop::movePointer(AxPoint to) {
    screens.pointer = flip(to, screens.firstHeight());
    eventTaps.move();
}

bool SimulatedDesktop::scroll() {
    const bool arrives = eventTaps.scroll();
    if (arrives) log.note(Topic::wheel, "wheel reached the application");
    return arrives;
}

}  // namespace tarvix
