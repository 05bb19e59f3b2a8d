#include "linux/x11/X11Connection.h"

#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <utility>

namespace tarvix {

namespace {

constexpr std::uint32_t kLongestProperty = 64 * 1024 / 4;

const xcb_screen_t* screenOf(xcb_connection_t* connection, int number) {
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 0; xcb_screen_next(&screens))
        if (number-- == 0) return screens.data;
    return nullptr;
}

}  // namespace

Outcome<std::unique_ptr<X11Connection>> X11Connection::open() {
    int screenNumber = 0;
    xcb_connection_t* connection = xcb_connect(nullptr, &screenNumber);
    const bool connected = xcb_connection_has_error(connection) == 0;
    const xcb_screen_t* screen = connected ? screenOf(connection, screenNumber) : nullptr;
    if (!screen) {
        xcb_disconnect(connection);
        return Fault{"the X display can't be opened"};
    }
    return std::unique_ptr<X11Connection>(new X11Connection(connection, screenNumber, screen));
}

class X11Connection::XInputMasks {
public:
    XInputMasks(xcb_connection_t* connection, xcb_window_t root) : connection_(connection), root_(root) {}

    int add(std::uint16_t device, std::uint32_t mask) {
        const std::uint32_t before = maskOf(device);
        wanted_.emplace(++lastId_, Wanted{device, mask});
        if (maskOf(device) != before) select(device);
        return lastId_;
    }
    void remove(int id) {
        const std::uint16_t device = wanted_.at(id).device;
        const std::uint32_t before = maskOf(device);
        wanted_.erase(id);
        if (maskOf(device) != before) select(device);
    }

private:
    struct Wanted {
        std::uint16_t device = 0;
        std::uint32_t mask = 0;
    };

    std::uint32_t maskOf(std::uint16_t device) const {
        std::uint32_t mask = 0;
        for (const auto& [id, wanted] : wanted_)
            if (wanted.device == device) mask |= wanted.mask;
        return mask;
    }
    void select(std::uint16_t device) {
        const struct {
            xcb_input_event_mask_t head;
            std::uint32_t mask;
        } request{{device, 1}, maskOf(device)};
        xcb_input_xi_select_events(connection_, root_, 1, &request.head);
    }

    xcb_connection_t* connection_;
    xcb_window_t root_;
    int lastId_ = 0;
    std::map<int, Wanted> wanted_;
};

X11Connection::X11Connection(xcb_connection_t* connection, int screenNumber, const xcb_screen_t* screen)
    : connection_(connection),
      screenNumber_(screenNumber),
      screen_(screen),
      xinputMasks_(std::make_shared<XInputMasks>(connection, screen->root)) {}

X11Connection::~X11Connection() {
    watching_.reset();
    watchingWakeUp_.reset();
    if (wakeUp_ >= 0) close(wakeUp_);
    sync();  // the server drops what it hasn't read of a connection that is closed
    xcb_disconnect(connection_);
}

void X11Connection::noteRemainsIn(X11Remains& remains) {
    remains_ = &remains;
    remains.client = xcb_get_setup(connection_)->resource_id_base;
}

const xcb_query_extension_reply_t* X11Connection::extension(xcb_extension_t& extension) const {
    const xcb_query_extension_reply_t* record = xcb_get_extension_data(connection_, &extension);
    return record && record->present ? record : nullptr;
}

std::uint8_t X11Connection::errorOf(xcb_void_cookie_t cookie) {
    const Reply<xcb_generic_error_t> error(xcb_request_check(connection_, cookie));
    keepEvents();
    return error ? error->error_code : std::uint8_t{0};
}

xcb_atom_t X11Connection::atom(std::string_view name) {
    if (const auto known = atoms_.find(name); known != atoms_.end()) return known->second;
    intern({name});
    const auto found = atoms_.find(name);
    return found == atoms_.end() ? xcb_atom_t{XCB_ATOM_NONE} : found->second;
}

void X11Connection::intern(std::initializer_list<std::string_view> names) {
    std::vector<std::pair<std::string_view, xcb_intern_atom_cookie_t>> asked;
    for (const std::string_view name : names)
        asked.emplace_back(name, xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data()));
    for (const auto& [name, cookie] : asked)
        if (const auto answer = reply<xcb_intern_atom_reply>(cookie)) atoms_.emplace(name, answer->atom);
}

const std::string& X11Connection::atomName(xcb_atom_t atom) {
    const auto [entry, isNew] = atomNames_.try_emplace(atom);
    if (!isNew) return entry->second;
    if (const auto answer = reply<xcb_get_atom_name_reply>(xcb_get_atom_name(connection_, atom)))
        entry->second.assign(xcb_get_atom_name_name(answer.get()),
                             static_cast<std::size_t>(xcb_get_atom_name_name_length(answer.get())));
    return entry->second;
}

xcb_get_property_cookie_t X11Connection::askProperty(xcb_window_t window, std::string_view name) {
    return xcb_get_property(connection_, 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, kLongestProperty);
}

std::vector<std::uint32_t> X11Connection::items(xcb_get_property_cookie_t cookie) {
    const auto answer = reply<xcb_get_property_reply>(cookie);
    if (!answer || answer->format != 32) return {};
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(answer.get()));
    return {first, first + answer->value_len};
}

std::optional<std::string> X11Connection::text(xcb_get_property_cookie_t cookie) {
    const auto answer = reply<xcb_get_property_reply>(cookie);
    if (!answer || answer->format != 8) return std::nullopt;
    return std::string(static_cast<const char*>(xcb_get_property_value(answer.get())), answer->value_len);
}

void X11Connection::selectOnRoot(std::uint32_t mask) { countOnRoot(mask, 1); }

void X11Connection::deselectOnRoot(std::uint32_t mask) { countOnRoot(mask, -1); }

void X11Connection::countOnRoot(std::uint32_t mask, int times) {
    std::uint32_t selected = 0;
    for (std::size_t bit = 0; bit < rootSelections_.size(); ++bit) {
        const std::uint32_t event = std::uint32_t{1} << bit;
        if (mask & event) rootSelections_[bit] += times;
        if (rootSelections_[bit] > 0) selected |= event;
    }
    xcb_change_window_attributes(connection_, root(), XCB_CW_EVENT_MASK, &selected);
}

Subscription X11Connection::selectXInputOnRoot(std::uint16_t device, std::uint32_t mask) {
    return Subscription([masks = std::weak_ptr(xinputMasks_), id = xinputMasks_->add(device, mask)] {
        if (const auto alive = masks.lock()) alive->remove(id);
    });
}

Subscription X11Connection::onEvent(EventHandler handler) {
    const auto entry = handlers_->insert(handlers_->end(), std::move(handler));
    return Subscription([handlers = std::weak_ptr(handlers_), entry] {
        // The entry may be the one that runs right now, so it is emptied here and taken out by the next event.
        if (const auto alive = handlers.lock()) *entry = nullptr;
    });
}

void X11Connection::watch(ReadWatcher& watcher) {
    watcher_ = &watcher;
    wakeUp_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    watching_ = watcher.onReadable(xcb_get_file_descriptor(connection_), [this] { handOutEvents(); });
    watchingWakeUp_ = watcher.onReadable(wakeUp_, [this] { handOutEvents(); });
    keepEvents();
}

// Sending reads as well, and what arrives just then makes the descriptor silent.
void X11Connection::flush() {
    xcb_flush(connection_);
    if (wakeUp_ >= 0) keepEvents();
}

void X11Connection::sync() { reply<xcb_get_input_focus_reply>(xcb_get_input_focus(connection_)); }

void X11Connection::keepEvents(xcb_generic_event_t* (*next)(xcb_connection_t*)) {
    const bool hadNone = kept_.empty();
    while (Reply<xcb_generic_event_t> event{next(connection_)})
        if (keepsEvents()) kept_.push_back(std::move(event));
    if (hadNone && !kept_.empty() && wakeUp_ >= 0) eventfd_write(wakeUp_, 1);
}

void X11Connection::handOutArrived() {
    keepEvents();
    while (!kept_.empty()) {
        const auto event = std::move(kept_.front());
        kept_.pop_front();
        handOut(*event);
    }
}

std::vector<Reply<xcb_generic_event_t>> X11Connection::takeArrived(
    const std::function<bool(const xcb_generic_event_t&)>& wanted) {
    keepEvents();
    std::vector<Reply<xcb_generic_event_t>> taken;
    for (auto event = kept_.begin(); event != kept_.end();) {
        if (wanted(**event)) {
            taken.push_back(std::move(*event));
            event = kept_.erase(event);
        } else {
            ++event;
        }
    }
    return taken;
}

bool X11Connection::hasArrived(const std::function<bool(const xcb_generic_event_t&)>& wanted) {
    keepEvents(xcb_poll_for_event);
    return std::any_of(kept_.begin(), kept_.end(), [&](const auto& event) { return wanted(*event); });
}

Subscription X11Connection::after(std::chrono::milliseconds delay, std::function<void()> elapsed) {
    const int timer = watcher_ ? timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK) : -1;
    if (timer < 0) return {};
    itimerspec once{};
    once.it_value.tv_sec = delay.count() / 1000;
    once.it_value.tv_nsec = std::max<long>(1, delay.count() % 1000 * 1'000'000);
    timerfd_settime(timer, 0, &once, nullptr);
    auto watching = std::make_shared<Subscription>(watcher_->onReadable(timer, [timer, elapsed = std::move(elapsed)] {
        std::uint64_t times = 0;
        if (read(timer, &times, sizeof times) <= 0) return;
        const auto run = elapsed;  // it may end its own subscription
        run();
    }));
    return Subscription([watching, timer] {
        watching->reset();
        close(timer);
    });
}

void X11Connection::handOutEvents() {
    eventfd_t count;
    eventfd_read(wakeUp_, &count);
    const auto next = [this] {
        if (kept_.empty()) return Reply<xcb_generic_event_t>(xcb_poll_for_event(connection_));
        auto event = std::move(kept_.front());
        kept_.pop_front();
        return event;
    };
    while (const auto event = next()) handOut(*event);
    flush();
    if (isAlive() || !watching_) return;
    watching_.reset();  // a dead connection's descriptor stays readable for ever
    gone_();
}

void X11Connection::handOut(const xcb_generic_event_t& event) {
    if (event.response_type == 0) return;
    const auto handlers = handlers_;
    if (handingOut_ == 0) handlers->remove_if([](const EventHandler& handler) { return !handler; });
    ++handingOut_;
    for (const EventHandler& handler : *handlers) {
        const EventHandler running = handler;  // it may end its own subscription
        if (running && running(event) == Handled::yes) break;
    }
    --handingOut_;
}

}  // namespace tarvix
