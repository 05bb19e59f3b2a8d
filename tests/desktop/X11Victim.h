// Another application of the desktop, as far as the X server knows: a connection of its own with a window that logs the
// events it gets. And the hardware in front of it.
#pragma once

#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "linux/x11/X11Connection.h"
#include "linux/x11/XInputKeyboards.h"

namespace tarvix {

class X11Victim {
public:
    struct Placement {
        std::int16_t x = 100, y = 100;
        std::uint16_t width = 400, height = 300;
        bool overrideRedirect = false;
    };

    X11Victim() : X11Victim(Placement{}) {}
    explicit X11Victim(Placement place) : x_(std::move(X11Connection::open().value())) {
        window_ = xcb_generate_id(x_->get());
        const std::uint32_t values[] = {x_->screen().white_pixel, place.overrideRedirect,
                                        XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE |
                                            XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                            XCB_EVENT_MASK_FOCUS_CHANGE};
        xcb_create_window(x_->get(), XCB_COPY_FROM_PARENT, window_, x_->root(), place.x, place.y, place.width,
                          place.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
        // The window manager leaves a window with a position of the user's where it is.
        const std::uint32_t hints[18] = {1};
        set32("WM_NORMAL_HINTS", "WM_SIZE_HINTS", {hints, hints + 18});
        setText("WM_CLASS", std::string("victim\0Victim\0", 14));
    }
    ~X11Victim() { xcb_destroy_window(x_->get(), window_); }
    X11Victim(const X11Victim&) = delete;
    X11Victim& operator=(const X11Victim&) = delete;

    X11Connection& connection() { return *x_; }
    xcb_window_t window() const { return window_; }

    void setText(const char* property, const std::string& text) {
        xcb_change_property(x_->get(), XCB_PROP_MODE_REPLACE, window_, x_->atom(property), XCB_ATOM_STRING, 8,
                            static_cast<std::uint32_t>(text.size()), text.data());
    }
    void set32(const char* property, const char* type, const std::vector<std::uint32_t>& items) {
        xcb_change_property(x_->get(), XCB_PROP_MODE_REPLACE, window_, x_->atom(property), x_->atom(type), 32,
                            static_cast<std::uint32_t>(items.size()), items.data());
    }

    // Returns when the window can be seen.
    bool show() {
        xcb_map_window(x_->get(), window_);
        for (int tries = 0; tries < 2000; ++tries) {
            const auto attributes =
                x_->reply<xcb_get_window_attributes_reply>(xcb_get_window_attributes(x_->get(), window_));
            if (attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE) return true;
            usleep(5000);
        }
        return false;
    }
    void hide() {
        xcb_unmap_window(x_->get(), window_);
        x_->sync();
    }
    // Gives the window the keyboard, with a window manager or without.
    bool focus() {
        for (int tries = 0; tries < 2000; ++tries) {
            xcb_set_input_focus(x_->get(), XCB_INPUT_FOCUS_PARENT, window_, XCB_CURRENT_TIME);
            const auto focus = x_->reply<xcb_get_input_focus_reply>(xcb_get_input_focus(x_->get()));
            const auto active = x_->items(x_->root(), "_NET_ACTIVE_WINDOW");
            const bool told = active.empty() || active.front() == window_;
            if (focus && focus->focus == window_ && told) return true;
            usleep(5000);
        }
        return false;
    }

    // What an open menu does to the keyboard.
    bool grabKeyboard() {
        const auto grabbed = x_->reply<xcb_grab_keyboard_reply>(
            xcb_grab_keyboard(x_->get(), 1, window_, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        return grabbed && grabbed->status == XCB_GRAB_STATUS_SUCCESS;
    }
    void ungrabKeyboard() {
        xcb_ungrab_keyboard(x_->get(), XCB_CURRENT_TIME);
        x_->sync();
    }

    // Everything the window has been sent so far, one line for each event, and forgets it.
    std::vector<std::string> takeLog() {
        std::vector<std::string> log;
        syncKeepingEvents();
        while (Reply<xcb_generic_event_t> event{xcb_poll_for_event(x_->get())}) describe(*event, log);
        return log;
    }

private:
    // Not X11Connection::sync(), which drops the events of an unwatched connection.
    void syncKeepingEvents() {
        Reply<void>(xcb_get_input_focus_reply(x_->get(), xcb_get_input_focus(x_->get()), nullptr));
    }

    static void describe(const xcb_generic_event_t& event, std::vector<std::string>& log) {
        const auto line = [&](const char* what, unsigned detail, unsigned state) {
            log.push_back(std::string(what) + " " + std::to_string(detail) +
                          (state == 0 ? "" : " with " + std::to_string(state)));
        };
        const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(event);
        const auto& focus = reinterpret_cast<const xcb_focus_in_event_t&>(event);
        switch (event.response_type) {
            case XCB_KEY_PRESS:
                return line("key down", key.detail, key.state);
            case XCB_KEY_RELEASE:
                return line("key up", key.detail, key.state);
            case XCB_BUTTON_PRESS:
                return line("button down", key.detail, key.state & 0xffu);
            case XCB_BUTTON_RELEASE:
                return line("button up", key.detail, key.state & 0xffu);
            case XCB_KEY_PRESS | 0x80:
                return line("sent key down", key.detail, key.state);
            case XCB_KEY_RELEASE | 0x80:
                return line("sent key up", key.detail, key.state);
            case XCB_FOCUS_IN:
                return line("focus in, mode", focus.mode, 0);
            case XCB_FOCUS_OUT:
                return line("focus out, mode", focus.mode, 0);
            case XCB_FOCUS_IN | 0x80:
                return line("sent focus in, mode", focus.mode, 0);
            case XCB_FOCUS_OUT | 0x80:
                return line("sent focus out, mode", focus.mode, 0);
            case XCB_GE_GENERIC:
                if (reinterpret_cast<const xcb_ge_generic_event_t&>(event).event_type == XCB_INPUT_MOTION)
                    log.emplace_back("motion");
                return;
            default:
                return;
        }
    }

    std::unique_ptr<X11Connection> x_;
    xcb_window_t window_ = XCB_WINDOW_NONE;
};

// The keys and buttons that a hand presses: events of the physical devices themselves, not of the server's device for
// posted ones.
class Hardware {
public:
    Hardware() : x_(std::move(X11Connection::open().value())) {
        startXInput(*x_);
        keyboard_ = readKeyboards(*x_).physical.front();
    }

    void keyDown(std::uint8_t keycode) { fakeDevice(XCB_INPUT_DEVICE_KEY_PRESS, keycode); }
    void keyUp(std::uint8_t keycode) { fakeDevice(XCB_INPUT_DEVICE_KEY_RELEASE, keycode); }
    void tap(std::uint8_t keycode) {
        keyDown(keycode);
        keyUp(keycode);
    }

    // As another program posts them.
    void postedKeyDown(std::uint8_t keycode) { post(XCB_KEY_PRESS, keycode, 0, 0); }
    void postedKeyUp(std::uint8_t keycode) { post(XCB_KEY_RELEASE, keycode, 0, 0); }
    void postedTap(std::uint8_t keycode) {
        postedKeyDown(keycode);
        postedKeyUp(keycode);
    }
    void movePointer(std::int16_t x, std::int16_t y) { post(XCB_MOTION_NOTIFY, 0, x, y); }
    void click(std::uint8_t button = 1) {
        post(XCB_BUTTON_PRESS, button, 0, 0);
        post(XCB_BUTTON_RELEASE, button, 0, 0);
    }

    X11Connection& connection() { return *x_; }
    std::uint16_t keyboard() const { return keyboard_; }

private:
    void fakeDevice(int type, std::uint8_t keycode) {
        const int first = x_->extension(xcb_input_id)->first_event;
        xcb_test_fake_input(x_->get(), static_cast<std::uint8_t>(first + type), keycode, XCB_CURRENT_TIME,
                            XCB_WINDOW_NONE, 0, 0, static_cast<std::uint8_t>(keyboard_));
        x_->sync();
    }
    void post(int type, std::uint8_t detail, std::int16_t x, std::int16_t y) {
        xcb_test_fake_input(x_->get(), static_cast<std::uint8_t>(type), detail, XCB_CURRENT_TIME, x_->root(), x, y, 0);
        x_->sync();
    }

    std::unique_ptr<X11Connection> x_;
    std::uint16_t keyboard_ = 0;
};

}  // namespace tarvix
