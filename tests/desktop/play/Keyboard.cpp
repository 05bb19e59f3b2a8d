#include "tests/desktop/play/Keyboard.h"

#include <xcb/xtest.h>

#include <cstdio>
#include <cstdlib>

namespace tarvix {

namespace {

template <class T>
using Reply = std::unique_ptr<T, decltype([](T* reply) { std::free(reply); })>;

[[noreturn]] void stop(const char* why) {
    std::fprintf(stderr, "keyboard: %s\n", why);
    std::exit(1);
}

}  // namespace

Keyboard::Keyboard() : x_(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(x_)) stop("no connection to the X server");
    const xcb_setup_t* setup = xcb_get_setup(x_);
    root_ = xcb_setup_roots_iterator(setup).data->root;
    firstCode_ = setup->min_keycode;
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const Reply<xcb_get_keyboard_mapping_reply_t> mapping{
        xcb_get_keyboard_mapping_reply(x_, xcb_get_keyboard_mapping(x_, firstCode_, count), nullptr)};
    if (!mapping) stop("no keyboard mapping");
    columns_ = mapping->keysyms_per_keycode;
    const xcb_keysym_t* keysyms = xcb_get_keyboard_mapping_keysyms(mapping.get());
    table_.assign(keysyms, keysyms + xcb_get_keyboard_mapping_keysyms_length(mapping.get()));
}

Keyboard::~Keyboard() { xcb_disconnect(x_); }

void Keyboard::chord(const std::vector<std::uint32_t>& keysyms) {
    std::vector<std::uint8_t> codes;
    for (const std::uint32_t keysym : keysyms) {
        codes.push_back(find(keysym).code);
        post(XCB_KEY_PRESS, codes.back());
    }
    for (auto code = codes.rbegin(); code != codes.rend(); ++code) post(XCB_KEY_RELEASE, *code);
    sync();
}

void Keyboard::hold(const std::vector<std::uint32_t>& keysyms) {
    for (const std::uint32_t keysym : keysyms) post(XCB_KEY_PRESS, find(keysym).code);
    sync();
}

void Keyboard::release(const std::vector<std::uint32_t>& keysyms) {
    for (const std::uint32_t keysym : keysyms) post(XCB_KEY_RELEASE, find(keysym).code);
    sync();
}

void Keyboard::type(std::string_view text) {
    const std::uint8_t shift = find(keysym::shift).code;
    for (const char character : text) {
        const Key key = find(static_cast<unsigned char>(character));
        if (key.shifted) post(XCB_KEY_PRESS, shift);
        post(XCB_KEY_PRESS, key.code);
        post(XCB_KEY_RELEASE, key.code);
        if (key.shifted) post(XCB_KEY_RELEASE, shift);
    }
    sync();
}

ScreenPoint Keyboard::pointer() {
    const Reply<xcb_query_pointer_reply_t> reply{xcb_query_pointer_reply(x_, xcb_query_pointer(x_, root_), nullptr)};
    if (!reply) stop("the X server has gone");
    return {reply->root_x, reply->root_y};
}

void Keyboard::movePointer(ScreenPoint to) {
    post(XCB_MOTION_NOTIFY, 0, to);
    sync();
}

void Keyboard::click(std::uint8_t button) {
    post(XCB_BUTTON_PRESS, button);
    post(XCB_BUTTON_RELEASE, button);
    sync();
}

Keyboard::Key Keyboard::find(std::uint32_t keysym) const {
    for (std::size_t i = 0; i < table_.size(); ++i) {
        // The first two columns: what the key types alone and with Shift.
        if (table_[i] == keysym && i % columns_ < 2)
            return {static_cast<std::uint8_t>(firstCode_ + i / columns_), i % columns_ == 1};
    }
    stop("no key types this on the present layout");
}

void Keyboard::post(std::uint8_t type, std::uint8_t detail, ScreenPoint at) {
    xcb_test_fake_input(x_, type, detail, XCB_CURRENT_TIME, root_, static_cast<std::int16_t>(at.x),
                        static_cast<std::int16_t>(at.y), 0);
}

void Keyboard::sync() {
    const Reply<xcb_get_input_focus_reply_t> reply{xcb_get_input_focus_reply(x_, xcb_get_input_focus(x_), nullptr)};
    if (!reply) stop("the X server has gone");
}

}  // namespace tarvix
