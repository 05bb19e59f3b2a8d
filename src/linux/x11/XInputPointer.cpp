#include "linux/x11/XInputPointer.h"

#include <algorithm>

namespace tarvix {

namespace {

constexpr std::uint16_t kFirstPointer = 2;  // the server's own pointer, which is always there
constexpr int kPositionAxes = 2;            // of every pointer the first ones

}  // namespace

std::uint16_t clientPointer(X11Connection& connection) {
    const auto pointer = connection.reply<xcb_input_xi_get_client_pointer_reply>(
        xcb_input_xi_get_client_pointer(connection.get(), XCB_WINDOW_NONE));
    return pointer && pointer->set ? pointer->deviceid : kFirstPointer;
}

RawMotion XInputWheels::read(const xcb_input_raw_button_press_event_t& motion) {
    const std::uint32_t* mask = xcb_input_raw_button_press_valuator_mask(&motion);
    const auto changed = [&](unsigned axis) {
        return axis / 32 < motion.valuators_len && (mask[axis / 32] >> axis % 32 & 1) != 0;
    };
    RawMotion result;
    for (unsigned axis = 0; axis < kPositionAxes; ++axis) result.moves = result.moves || changed(axis);
    result.scrolls = std::ranges::any_of(axesOf(motion.sourceid), changed);
    return result;
}

const std::vector<std::uint16_t>& XInputWheels::axesOf(std::uint16_t device) {
    const auto [entry, isNew] = axes_.try_emplace(device);
    if (!isNew) return entry->second;
    const auto answer = x_.reply<xcb_input_xi_query_device_reply>(xcb_input_xi_query_device(x_.get(), device));
    if (!answer) return entry->second;
    for (auto info = xcb_input_xi_query_device_infos_iterator(answer.get()); info.rem > 0;
         xcb_input_xi_device_info_next(&info))
        for (auto c = xcb_input_xi_device_info_classes_iterator(info.data); c.rem > 0; xcb_input_device_class_next(&c))
            if (c.data->type == XCB_INPUT_DEVICE_CLASS_TYPE_SCROLL)
                entry->second.push_back(reinterpret_cast<const xcb_input_scroll_class_t*>(c.data)->number);
    return entry->second;
}

}  // namespace tarvix
