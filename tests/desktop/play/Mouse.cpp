#include "tests/desktop/play/Mouse.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace tarvix {

namespace {

constexpr std::uint8_t kWheelUp = 4, kWheelDown = 5;

// The messages of the X server's device for tests (inputtest(4)).
namespace message {

enum class Type : std::uint32_t { version = 0, sync = 1, motion = 2, button = 4 };

struct Head {
    std::uint32_t length;
    Type type;
};
struct Version {
    Head head{sizeof(Version), Type::version};
    std::uint16_t major = 1, minor = 0;
};
struct Sync {
    Head head{sizeof(Sync), Type::sync};
};
struct Axes {
    std::uint32_t hasUnaccelerated = 0;
    std::uint8_t changed[8] = {};
    double values[64] = {};
    double unaccelerated[64] = {};
};
struct Motion {
    Head head{sizeof(Motion), Type::motion};
    std::uint32_t isAbsolute = 0;
    Axes axes;
};
struct Button {
    Head head{sizeof(Button), Type::button};
    std::int32_t isAbsolute = 0;
    std::int32_t button = 0;
    std::uint32_t isPress = 0;
    Axes axes;
};

constexpr unsigned kVerticalAxis = 3;
constexpr double kNotch = 120;

void set(Axes& axes, unsigned axis, double value) {
    axes.changed[axis / 8] |= static_cast<std::uint8_t>(1u << axis % 8);
    axes.values[axis] = value;
}

}  // namespace message

[[noreturn]] void stop(const char* why) {
    std::fprintf(stderr, "mouse: %s\n", why);
    std::exit(1);
}

template <class Message>
void tell(int device, const Message& message) {
    if (write(device, &message, sizeof message) != sizeof message) stop("its device doesn't listen");
}

template <class Message>
void hear(int device) {
    Message answer;
    if (recv(device, &answer, sizeof answer, MSG_WAITALL) != sizeof answer) stop("its device doesn't answer");
}

void sync(xcb_connection_t* connection) {
    xcb_get_input_focus_reply_t* reply =
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr);
    if (!reply) stop("the X server has gone");
    std::free(reply);
}

int connectToDevice() {
    const char* desktop = std::getenv("TARVIX_VIRTUAL_DESKTOP");
    sockaddr_un address{AF_UNIX, {}};
    std::snprintf(address.sun_path, sizeof address.sun_path, "%s/run/pointer", desktop ? desktop : "");
    if (access(address.sun_path, F_OK) != 0) return -1;
    const int device = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connect(device, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) stop("its device is taken");
    tell(device, message::Version());
    hear<message::Version>(device);
    return device;
}

// Returns when the applications' queues have what came of it.
template <class Message>
void act(int device, const Message& what) {
    tell(device, what);
    tell(device, message::Sync());
    hear<message::Sync>(device);
}

}  // namespace

Mouse::Mouse() : x_(xcb_connect(nullptr, nullptr)), device_(connectToDevice()) {
    if (xcb_connection_has_error(x_)) stop("no connection to the X server");
}

Mouse::~Mouse() {
    if (device_ >= 0) close(device_);
    xcb_disconnect(x_);
}

void Mouse::moveTo(ScreenPoint to) {
    if (device_ >= 0) {
        message::Motion motion;
        motion.isAbsolute = 1;
        message::set(motion.axes, 0, to.x);
        message::set(motion.axes, 1, to.y);
        return act(device_, motion);
    }
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x_)).data->root;
    xcb_test_fake_input(x_, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, root, static_cast<std::int16_t>(to.x),
                        static_cast<std::int16_t>(to.y), 0);
    sync(x_);
}

void Mouse::click() { press(1); }

void Mouse::scroll(double notches) {
    if (device_ >= 0) {
        message::Motion motion;
        message::set(motion.axes, message::kVerticalAxis, notches * message::kNotch);
        return act(device_, motion);
    }
    for (int i = 0; i < std::lround(std::abs(notches)); ++i) press(notches > 0 ? kWheelDown : kWheelUp);
}

void Mouse::press(std::uint8_t button) {
    if (device_ >= 0) {
        message::Button down;
        down.button = button;
        down.isPress = 1;
        act(device_, down);
        message::Button up;
        up.button = button;
        return act(device_, up);
    }
    xcb_test_fake_input(x_, XCB_BUTTON_PRESS, button, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_test_fake_input(x_, XCB_BUTTON_RELEASE, button, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    sync(x_);
}

}  // namespace tarvix
