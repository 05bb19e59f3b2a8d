#include "linux/x11/XInputKeyboards.h"

#include <algorithm>
#include <string_view>

#include "linux/x11/XcbXkb.h"

namespace tarvix {

namespace {

constexpr std::string_view kXTestSuffix = "XTEST keyboard";  // the server's own naming

bool hasKeys(const xcb_input_xi_device_info_t& info) {
    for (auto c = xcb_input_xi_device_info_classes_iterator(&info); c.rem > 0; xcb_input_device_class_next(&c))
        if (c.data->type == XCB_INPUT_DEVICE_CLASS_TYPE_KEY) return true;
    return false;
}

}  // namespace

std::vector<std::uint16_t> XInputKeyboards::all() const {
    auto devices = physical;
    if (xtest) devices.push_back(*xtest);
    return devices;
}

bool startXInput(X11Connection& connection) {
    if (!connection.extension(xcb_input_id) || !connection.extension(xcb_xkb_id)) return false;
    xcb_connection_t* c = connection.get();
    const auto xinput = xcb_input_xi_query_version(c, 2, 2);
    const auto xkb = xcb_xkb_use_extension(c, 1, 0);
    const auto version = connection.reply<xcb_input_xi_query_version_reply>(xinput);
    const auto used = connection.reply<xcb_xkb_use_extension_reply>(xkb);
    return version && version->major_version * 100 + version->minor_version >= 202 && used && used->supported;
}

XInputKeyboards readKeyboards(X11Connection& connection) {
    xcb_connection_t* c = connection.get();
    const auto pointerAsked = xcb_input_xi_get_client_pointer(c, XCB_WINDOW_NONE);
    const auto devicesAsked = xcb_input_xi_query_device(c, XCB_INPUT_DEVICE_ALL);
    const auto pointer = connection.reply<xcb_input_xi_get_client_pointer_reply>(pointerAsked);
    const auto devices = connection.reply<xcb_input_xi_query_device_reply>(devicesAsked);
    XInputKeyboards keyboards;
    if (!pointer || !devices) return keyboards;
    const auto each = [&](auto visit) {
        for (auto i = xcb_input_xi_query_device_infos_iterator(devices.get()); i.rem > 0;
             xcb_input_xi_device_info_next(&i))
            visit(*i.data, std::string_view(xcb_input_xi_device_info_name(i.data), i.data->name_len));
    };
    each([&](const xcb_input_xi_device_info_t& info, std::string_view) {
        // Without one of the client's own it is the first one.
        const bool isPointer = pointer->set
                                   ? info.deviceid == pointer->deviceid
                                   : keyboards.master == 0 && info.type == XCB_INPUT_DEVICE_TYPE_MASTER_POINTER;
        if (isPointer) keyboards.master = info.attachment;
    });
    each([&](const xcb_input_xi_device_info_t& info, std::string_view name) {
        const bool attached = info.type == XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD && info.attachment == keyboards.master;
        const bool floating = info.type == XCB_INPUT_DEVICE_TYPE_FLOATING_SLAVE && hasKeys(info);
        if (!info.enabled || (!attached && !floating)) return;
        if (name.ends_with(kXTestSuffix)) {
            keyboards.xtest = info.deviceid;
        } else {
            keyboards.physical.push_back(info.deviceid);
        }
    });
    return keyboards;
}

const xcb_ge_generic_event_t* asXInput(const X11Connection& connection, const xcb_generic_event_t& event,
                                       std::initializer_list<std::uint16_t> types) {
    if ((event.response_type & 0x7f) != XCB_GE_GENERIC) return nullptr;
    const auto* generic = reinterpret_cast<const xcb_ge_generic_event_t*>(&event);
    const auto* xinput = connection.extension(xcb_input_id);
    if (!xinput || generic->extension != xinput->major_opcode) return nullptr;
    return std::ranges::count(types, generic->event_type) > 0 ? generic : nullptr;
}

}  // namespace tarvix
