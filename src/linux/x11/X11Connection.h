// A connection to the X server: replies with an owner, atoms, properties, and its events handed out in order.
#pragma once

#include <xcb/xcb.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <functional>
#include <initializer_list>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "base/Listeners.h"
#include "base/Outcome.h"
#include "base/Subscription.h"
#include "linux/x11/X11Remains.h"
#include "platform/RunLoop.h"

namespace tarvix {

struct FreeMemory {
    void operator()(void* memory) const noexcept { std::free(memory); }
};
// What xcb allocates and the caller frees: replies, errors, events.
template <class T>
using Reply = std::unique_ptr<T, FreeMemory>;

// One thread at a time. After the server has gone replies are null and properties are empty; nothing throws.
class X11Connection {
public:
    // Connects to the display of the environment.
    static Outcome<std::unique_ptr<X11Connection>> open();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;
    ~X11Connection();

    xcb_connection_t* get() const { return connection_; }
    xcb_window_t root() const { return screen_->root; }
    const xcb_screen_t& screen() const { return *screen_; }
    int screenNumber() const { return screenNumber_; }
    // False once the server has gone.
    bool isAlive() const { return xcb_connection_has_error(connection_) == 0; }

    // Where what doesn't end with this connection is noted; a record of its own until another one is given, which
    // outlives it.
    X11Remains& remains() { return *remains_; }
    void noteRemainsIn(X11Remains& remains);

    // The server's own record of an extension; null when it hasn't got it. A request of a missing extension ends the
    // connection, so this is asked first.
    const xcb_query_extension_reply_t* extension(xcb_extension_t& extension) const;

    // Waits for the reply of a request; null after an error, for instance when the window has gone. All replies are
    // read here: the events that arrive along with a reply make the descriptor silent, and are kept for the loop.
    template <auto Receive, class Cookie>
    auto reply(Cookie cookie) {
        using Answer = std::remove_pointer_t<decltype(Receive(connection_, cookie, nullptr))>;
        Reply<Answer> answer(Receive(connection_, cookie, nullptr));
        keepEvents();
        return answer;
    }
    // Whether a checked request went well; 0 or the error's code.
    std::uint8_t errorOf(xcb_void_cookie_t cookie);

    // An atom is asked for once; intern() asks for several in one round trip.
    xcb_atom_t atom(std::string_view name);
    void intern(std::initializer_list<std::string_view> names);
    // The name of an atom; empty when there is no such atom.
    const std::string& atomName(xcb_atom_t atom);

    // Properties of any type; at most 64 KiB of each.
    xcb_get_property_cookie_t askProperty(xcb_window_t window, std::string_view name);
    // The items of a property of 32-bit items; empty when it is absent or of another format.
    std::vector<std::uint32_t> items(xcb_get_property_cookie_t cookie);
    std::vector<std::uint32_t> items(xcb_window_t window, std::string_view name) {
        return items(askProperty(window, name));
    }
    // The bytes of a property of 8-bit items; absent when it is absent or of another format.
    std::optional<std::string> text(xcb_get_property_cookie_t cookie);
    std::optional<std::string> text(xcb_window_t window, std::string_view name) {
        return text(askProperty(window, name));
    }

    // Adds to the event mask that this connection has on the root window.
    void selectOnRoot(std::uint32_t mask);
    // Takes back what was added once; another part that has added the same keeps it.
    void deselectOnRoot(std::uint32_t mask);
    // The same for the XInput 2 events of a device, which the server has to have, until the token is dropped. The
    // server keeps one mask for each device and client, so nobody else selects these.
    [[nodiscard]] Subscription selectXInputOnRoot(std::uint16_t device, std::uint32_t mask);

    // An event goes to the handlers in the order in which these were added, until one has handled it for good. Errors
    // of requests that nobody waits for are dropped: what they were about has gone meanwhile.
    enum class Handled { no, yes };
    using EventHandler = std::function<Handled(const xcb_generic_event_t&)>;
    [[nodiscard]] Subscription onEvent(EventHandler handler);

    // Hands events out whenever the loop finds some.
    void watch(ReadWatcher& watcher);
    // Hands out the events that have arrived along with replies. For a connection that no loop watches, whose events
    // are dropped as long as there is no handler.
    void handOutArrived();
    // Takes those that have arrived and that `wanted` says yes to out of the line.
    std::vector<Reply<xcb_generic_event_t>> takeArrived(const std::function<bool(const xcb_generic_event_t&)>& wanted);
    // Whether one that `wanted` says yes to has come and waits in the line. Nothing is asked of the server, but what it
    // has sent is read: what another client's request has led to is known as soon as that client knows of it.
    bool hasArrived(const std::function<bool(const xcb_generic_event_t&)>& wanted);
    // Whether an event is being handed out right now.
    bool isHandingOut() const { return handingOut_ > 0; }
    // Calls back once after a delay, on the loop that watches; never without one.
    [[nodiscard]] Subscription after(std::chrono::milliseconds delay, std::function<void()> elapsed);
    // Called once when the server has gone, or has thrown this client out; by the loop that watches.
    [[nodiscard]] Subscription onGone(std::function<void()> gone) { return gone_.add(std::move(gone)); }

    void flush();
    // Waits until the server has processed every request so far.
    void sync();

private:
    X11Connection(xcb_connection_t* connection, int screenNumber, const xcb_screen_t* screen);
    bool keepsEvents() const { return wakeUp_ >= 0 || !handlers_->empty(); }
    void keepEvents(xcb_generic_event_t* (*next)(xcb_connection_t*) = xcb_poll_for_queued_event);
    void countOnRoot(std::uint32_t mask, int times);
    void handOutEvents();
    void handOut(const xcb_generic_event_t& event);

    xcb_connection_t* connection_;
    int screenNumber_;
    const xcb_screen_t* screen_;
    std::map<std::string, xcb_atom_t, std::less<>> atoms_;
    std::map<xcb_atom_t, std::string> atomNames_;
    std::array<int, 32> rootSelections_{};  // how many parts have each bit of the root's event mask
    X11Remains ownRemains_;
    X11Remains* remains_ = &ownRemains_;

    // The XInput masks of the root: what was asked for, by device.
    class XInputMasks;
    std::shared_ptr<XInputMasks> xinputMasks_;

    std::shared_ptr<std::list<EventHandler>> handlers_ = std::make_shared<std::list<EventHandler>>();
    std::deque<Reply<xcb_generic_event_t>> kept_;
    int handingOut_ = 0;
    ReadWatcher* watcher_ = nullptr;
    int wakeUp_ = -1;  // an eventfd: readable while events are kept
    Listeners<> gone_;
    Subscription watching_, watchingWakeUp_;
};

}  // namespace tarvix
