// The recorder of a shortcut: the control with which the user picks one.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "KeyboardShortcuts/LocalEventMonitor.h"
#include "KeyboardShortcuts/RecorderControl.h"
#include "KeyboardShortcuts/RecorderStrings.h"
#include "base/Subscription.h"
#include "platform/InputSources.h"
#include "platform/Menu.h"
#include "platform/RunLoop.h"

namespace tarvix {

// What a recorder works with. Everything outlives it, and the background bodies that it has asked the loop for.
struct RecorderParts {
    KeyboardShortcuts& shortcuts;
    InputSources& inputSources;
    RunLoop& runLoop;
    std::function<Menu()> mainMenu;  // of this program
    RecorderLanguage language = RecorderLanguage::english;
};

// The logic behind one control: at rest it shows the shortcut of a name, and while the control has the keyboard it
// records a new one. The global shortcuts are paused exactly while it records. Main thread; `control` outlives it.
class RecorderCocoa {
public:
    using OnChange = std::function<void(const std::optional<Shortcut>&)>;

    static constexpr double minimumWidth = 130;  // points

    RecorderCocoa(RecorderControl& control, RecorderParts parts, ShortcutName name, OnChange onChange = nullptr);
    // Ends recording.
    ~RecorderCocoa();
    RecorderCocoa(const RecorderCocoa&) = delete;
    RecorderCocoa& operator=(const RecorderCocoa&) = delete;

    const ShortcutName& shortcutName() const { return shortcutName_; }
    // Shows the shortcut of another name.
    void setShortcutName(const ShortcutName& name);

    bool isRecording() const { return eventMonitor_ != nullptr; }

    // What the control tells of.
    void becomeFirstResponder();      // it has the keyboard now
    void controlTextDidEndEditing();  // it has lost it
    void controlTextDidChange();      // by its cancel button
    void viewDidMoveToWindow(bool hasWindow);
    void windowDidResignKey();

private:
    Verdict handle(const LocalEvent& event);
    Verdict handleKey(const LocalEvent& event);
    void record(const Shortcut& shortcut);
    void askTheSystem(const Shortcut& shortcut);
    void tellOfMenuItem(const MenuItem& item);
    void tellOfSystem(const Shortcut& shortcut);
    void save(const Shortcut& shortcut);
    void endRecording() { control_.makeFirstResponder(FirstResponder::none); }
    void showShortcut();
    void showText(const Shortcut& shortcut);
    void showCancelButtonByText() { control_.showCancelButton(!control_.isEmpty()); }
    void learnReserved();
    // The same with a guard against the recorder's end.
    template <class Body>
    auto whileAlive(Body body);

    RecorderControl& control_;
    RecorderParts parts_;
    OnChange onChange_;
    std::unique_ptr<LocalEventMonitor> eventMonitor_;  // while recording
    Subscription shortcutsNameChangeObserver_;
    Subscription pressedWhilePaused_;
    ShortcutName shortcutName_;
    std::shared_ptr<bool> life_ = std::make_shared<bool>(true);

    // What the system has taken, as it was asked when recording began; absent until it has answered.
    std::optional<std::vector<Shortcut>> reserved_;
    std::optional<Shortcut> waiting_;  // a shortcut that waits for that answer
};

}  // namespace tarvix
