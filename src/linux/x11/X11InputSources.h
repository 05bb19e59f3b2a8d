// The layout groups of the X server's core keyboard.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Listeners.h"
#include "base/Outcome.h"
#include "linux/x11/X11Connection.h"
#include "platform/InputSources.h"
#include "platform/RunLoop.h"

struct xkb_context;
struct xkb_keymap;
struct xkb_state;

namespace tarvix {

// Each configured layout is a source, with an id such as "us" or "us(dvorak)"; option is the third-level shift. Keys of
// the keypad type what they type with Num Lock on. Main thread.
class X11InputSources : public InputSources {
public:
    // Brings a connection of its own. Fails without a display, without the keyboard extension or without a keyboard.
    static Outcome<std::unique_ptr<X11InputSources>> open(ReadWatcher& watcher);
    ~X11InputSources() override;

    std::vector<InputSourceInfo> enabled() override;
    InputSourceInfo currentKeyboardLayout() override;
    InputSourceInfo currentASCIICapable() override;
    std::optional<std::string> translate(const InputSourceInfo& source, std::uint16_t keyCode,
                                         std::uint32_t modifierState) override;
    std::optional<std::string> characters(std::uint16_t keyCode, std::uint64_t flags) override;
    [[nodiscard]] Subscription onSelectedChanged(std::function<void()> changed) override;
    [[nodiscard]] Subscription onEnabledChanged(std::function<void()> changed) override;

private:
    struct Release {
        void operator()(xkb_context* context) const noexcept;
        void operator()(xkb_keymap* keymap) const noexcept;
        void operator()(xkb_state* state) const noexcept;
    };

    // Everything that one reading of the server's keyboard gives.
    struct Keyboard {
        std::unique_ptr<xkb_keymap, Release> keymap;
        std::unique_ptr<xkb_state, Release> scratch;       // for translations; it doesn't follow the keyboard
        std::string description;                           // the whole keymap as a text, to tell whether it has changed
        std::uint32_t shift = 0, option = 0, numLock = 0;  // masks of real modifiers
        std::vector<InputSourceInfo> sources;              // one for each group
        std::size_t group = 0;                             // the selected one
    };

    explicit X11InputSources(std::unique_ptr<X11Connection> connection);
    bool start(ReadWatcher& watcher);
    void selectEvents();
    std::optional<Keyboard> read();
    static std::vector<InputSourceInfo> sourcesOf(const Keyboard& keyboard, const std::vector<std::string>& ids);
    static bool typesLatin(const Keyboard& keyboard, std::size_t group);
    // The symbol of a key; 0 for none.
    static std::uint32_t symbol(const Keyboard& keyboard, std::size_t group, std::uint16_t keyCode,
                                std::uint32_t modifierState);
    InputSourceInfo info(std::size_t group) const;
    X11Connection::Handled handle(const xcb_generic_event_t& event);
    void keyboardChanged();
    void groupChanged(std::size_t group);

    std::unique_ptr<X11Connection> connection_;
    std::unique_ptr<xkb_context, Release> context_;
    std::uint8_t eventType_ = 0;
    std::uint8_t device_ = 0;
    std::uint32_t readSequence_ = 0;  // what happened before that request is part of what was read
    Keyboard keyboard_;
    Listeners<> selectedChanged_;
    Listeners<> enabledChanged_;
    Subscription events_;
};

}  // namespace tarvix
