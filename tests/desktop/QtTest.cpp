#include "tests/desktop/QtTest.h"

#include <xcb/xtest.h>

#include <QElapsedTimer>
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <thread>

namespace tarvix {

namespace {

constexpr int kLimitMilliseconds = 10000;

template <class T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

class HazeRecorder : public HazeSurface {
public:
    explicit HazeRecorder(TestHaze& haze) : haze_(haze) {}

    void setFrame(AxRect frame) override { haze_.frame = frame; }
    void setAlpha(double alpha) override { haze_.alpha = alpha; }
    void showBelow(std::uint32_t window) override { show("below " + std::to_string(window)); }
    void showOverApplications() override { show("over applications"); }
    void hide() override {
        haze_.isShown = false;
        haze_.journal.push_back("hidden");
    }
    bool isShown() const override { return haze_.isShown; }

private:
    void show(std::string where) {
        haze_.isShown = true;
        haze_.journal.push_back(std::move(where));
    }

    TestHaze& haze_;
};

}  // namespace

QtTest::QtTest() {
    // One screen pixel is one unit, as in the program.
    qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");
    static int count = 1;
    static char name[] = "test";
    static char* arguments[] = {name, nullptr};
    static auto* application = new QApplication(count, arguments);
    application->setQuitOnLastWindowClosed(false);
}

bool runUntil(const std::function<bool()>& condition) {
    QElapsedTimer time;
    time.start();
    while (!condition()) {
        if (time.elapsed() > kLimitMilliseconds) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

void drain() {
    bool passed = false;
    QMetaObject::invokeMethod(
        qApp, [&] { passed = true; }, Qt::QueuedConnection);
    runUntil([&] { return passed; });
}

QWidget* topLevel(const QString& name) {
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->objectName() == name) return widget;
    return nullptr;
}

QImage screenshot() { return QGuiApplication::primaryScreen()->grabWindow(0).toImage(); }

TestServer::TestServer() : connection_(xcb_connect(nullptr, nullptr)) {
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
}

TestServer::~TestServer() { xcb_disconnect(connection_); }

void TestServer::sync() {
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

void TestServer::fake(std::uint8_t type, std::uint8_t detail, QPoint at) {
    xcb_test_fake_input(connection_, type, detail, XCB_CURRENT_TIME, root_, static_cast<std::int16_t>(at.x()),
                        static_cast<std::int16_t>(at.y()), 0);
}

void TestServer::type(std::uint32_t window, std::uint8_t keyCode, std::uint16_t modifiers) {
    xcb_key_press_event_t event{};
    event.detail = keyCode;
    event.root = root_;
    event.event = window;
    event.state = modifiers;
    event.same_screen = 1;
    for (const int type : {XCB_KEY_PRESS, XCB_KEY_RELEASE}) {
        event.response_type = static_cast<std::uint8_t>(type);
        xcb_send_event(connection_, 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&event));
    }
    sync();
}

void TestServer::sendFocus(std::uint32_t window, bool in) {
    char bytes[32] = {};
    auto& event = *reinterpret_cast<xcb_focus_in_event_t*>(bytes);
    event.response_type = in ? XCB_FOCUS_IN : XCB_FOCUS_OUT;
    event.detail = XCB_NOTIFY_DETAIL_NONLINEAR;
    event.event = window;
    xcb_send_event(connection_, 0, window, XCB_EVENT_MASK_NO_EVENT, bytes);
    sync();
}

void TestServer::movePointer(QPoint to) {
    fake(XCB_MOTION_NOTIFY, 0, to);
    sync();
}

void TestServer::button(bool press) {
    fake(press ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, 1);
    sync();
}

void TestServer::raise(std::uint32_t window) {
    const std::uint32_t mode = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(connection_, window, XCB_CONFIG_WINDOW_STACK_MODE, &mode);
    sync();
}

bool TestServer::hasCompositor() {
    const std::string name = "_NET_WM_CM_S0";
    const auto cookie = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(connection_, cookie, nullptr), std::free);
    const Reply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection_, xcb_get_selection_owner(connection_, atom->atom), nullptr),
        std::free);
    return owner->owner != XCB_NONE;
}

std::uint32_t TestServer::windowAt(QPoint point) {
    movePointer(point);
    const Reply<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(connection_, xcb_query_pointer(connection_, root_), nullptr), std::free);
    return pointer->child;
}

bool TestWindowing::takeKeyboard(std::uint32_t window, std::function<void()> whenLost) {
    journal.push_back("take keyboard");
    if (refusesKeyboard) return false;
    lost = std::move(whenLost);
    keyboardWindow = window;
    server.sendFocus(window, true);
    return true;
}

void TestWindowing::releaseKeyboard() {
    journal.push_back("release keyboard");
    lost = nullptr;
    server.sendFocus(keyboardWindow, false);
}

void TestWindowing::stackOnTop(std::uint32_t window) {
    journal.push_back("stack on top");
    server.raise(window);
}

std::unique_ptr<HazeSurface> TestWindowing::makeHazeSurface() { return std::make_unique<HazeRecorder>(haze); }

std::vector<PanelRect> TestScreens::frames() {
    const QRect whole = QGuiApplication::primaryScreen()->geometry();
    return {{{0, 0}, {static_cast<double>(whole.width()), static_cast<double>(whole.height())}}};
}

bool TestMilestones::has(const std::string& moment) const {
    return std::find(moments.begin(), moments.end(), moment) != moments.end();
}

}  // namespace tarvix
