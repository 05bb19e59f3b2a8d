#include "shell/StatusBarController.h"

#include <utility>

#include "base/Fatal.h"
#include "base/UrlComponents.h"
#include "platform/Application.h"
#include "platform/Workspace.h"

namespace tarvix {

namespace {

constexpr std::size_t kReportEntry = 2, kUpdatesEntry = 5;
constexpr const char* kNobody = "\U0001F605\uFE0F";  // until the menu is opened
constexpr const char* kUnknownVersion = "\u26A0\uFE0F";
constexpr const char* kSomeApplication =
    "?subject=not%20working%20on%20some%20app%20we%20can't%20even%20determine%20:(%20sad";

MenuItem separator() { return {}; }

std::string notWorkingOn(const std::string& application) { return "Not working on \"" + application + "\"?"; }

std::optional<std::string> nameOfFrontmost(Workspace& workspace) {
    const auto application = workspace.frontmostApplication();
    if (!application || application->localizedName.empty()) return std::nullopt;
    return application->localizedName;
}

}  // namespace

StatusBarController::StatusBarController(const Platform& platform, UpdaterController& updater,
                                         std::function<void()> showSettings, Deployment deployment)
    : platform_(platform),
      updater_(updater),
      showSettings_(std::move(showSettings)),
      deployment_(std::move(deployment)),
      hideMenuBarIcon_(platform.userDefaults, {"hideMenuBarIcon", false}),
      allowTemporaryHidingOfMenuBarIcon_(platform.userDefaults, {"allowTemporaryHidingOfMenuBarIcon", false}) {
    setUpStatusItem();
    setUpMenu();
    settings_ = platform.userDefaults.onChange([this](std::string_view) { settingsChanged(); });
}

void StatusBarController::setUpStatusItem() {
    statusItem_ = platform_.statusBar.makeStatusItem();
    statusItem_->setButton({.symbol = "wind",
                            .imageDescription = "Tarvix",
                            .accessibilityLabel = "Tarvix status bar status item icon",
                            .accessibilityTitle = "Tarvix",
                            .accessibilityHelp = "access Ts' " + std::string(settingsWindowName) + " here"});
    updateStatusItem();
}

void StatusBarController::updateStatusItem() {
    isHidden_ = hideMenuBarIcon_.value();
    allowsHiding_ = allowTemporaryHidingOfMenuBarIcon_.value();
    statusItem_->setVisible(!isHidden_);
    statusItem_->setBehavior(allowsHiding_ ? StatusItemBehavior::removalAllowed : StatusItemBehavior::none);
}

// An item that the user has taken away comes back when it is made visible: a change of any other setting leaves it be.
void StatusBarController::settingsChanged() {
    if (hideMenuBarIcon_.value() != isHidden_ || allowTemporaryHidingOfMenuBarIcon_.value() != allowsHiding_)
        updateStatusItem();
}

void StatusBarController::setUpMenu() {
    statusItem_->setMenu(menu(), [this](Menu& opening) { menuNeedsUpdate(opening); });
}

Menu StatusBarController::menu() {
    const std::string version = deployment_.version.empty() ? kUnknownVersion : deployment_.version;
    return {
        {.title = std::string(settingsWindowName) + "...", .keyEquivalent = ",", .action = [this] { showSettings_(); }},
        separator(),
        {.title = notWorkingOn(kNobody), .submenu = {{.title = kNobody}, {.title = kNobody}}},
        separator(),
        {.title = "Tarvix " + version},
        {.title = "Check for Updates...", .keyEquivalent = "u", .action = checkForUpdates()},
        separator(),
        {.title = "Quit", .keyEquivalent = "q", .action = [this] { platform_.application.terminate(); }},
    };
}

void StatusBarController::menuNeedsUpdate(Menu& menu) {
    if (menu.size() > kUpdatesEntry) menu[kUpdatesEntry].action = checkForUpdates();
    const auto name = nameOfFrontmost(platform_.workspace);
    if (menu.size() <= kReportEntry || !name) return;
    menu[kReportEntry].title = notWorkingOn(*name);
    menu[kReportEntry].submenu = {
        {.title = "Drop an issue on GitHub", .action = [this] { dropAnIssueOnGitHub(); }},
        {.title = "Report by email", .action = [this] { reportByEmail(); }},
    };
}

// None while there can't be a check, so that the entry shows disabled.
std::function<void()> StatusBarController::checkForUpdates() {
    if (!updater_.canCheckForUpdates()) return nullptr;
    return [this] { updater_.checkForUpdates(); };
}

void StatusBarController::dropAnIssueOnGitHub() {
    const std::string page = deployment_.issueTracker + "/issues/new";
    reportProblem(page + "?title=not+working+on+", page);
}

void StatusBarController::reportByEmail() {
    const std::string address = "mailto:" + deployment_.supportAddress;
    reportProblem(address + "?subject=not%20working%20on%20", address + kSomeApplication);
}

void StatusBarController::reportProblem(const std::string& prefix, const std::string& fallback) {
    const auto name = nameOfFrontmost(platform_.workspace);
    const auto encodedName = name ? encodedForQuery(*name) : std::nullopt;
    if (encodedName && UrlComponents::parse(prefix + *encodedName)) {
        platform_.application.openUrl(prefix + *encodedName);
        return;
    }
    if (!UrlComponents::parse(fallback)) fatal("this build's address for reports is none: " + fallback);
    platform_.application.openUrl(fallback);
}

}  // namespace tarvix
