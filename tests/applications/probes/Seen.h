// What a probe inside an application tells of what is on the screen.
#pragma once

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace tarvix::probe {

struct Box {
    int x = 0, y = 0, w = 0, h = 0;  // pixels of the root window

    bool isEmpty() const { return w <= 0 || h <= 0; }
    bool holds(int px, int py) const { return px >= x && px < x + w && py >= y && py < y + h; }
    long area() const { return static_cast<long>(w) * h; }
};

inline Box intersection(const Box& a, const Box& b) {
    const int x = std::max(a.x, b.x), y = std::max(a.y, b.y);
    return {x, y, std::min(a.x + a.w, b.x + b.w) - x, std::min(a.y + a.h, b.y + b.h) - y};
}

struct Seen {
    std::string id, kind, text;
    Box frame;
    std::optional<Box> textFrame = std::nullopt;
    Box visible = {};  // the part of the frame that nothing cuts off
    bool counted = false;
    bool clickable = false;
    std::string inside = {};      // the counted control that it is a part of
    const void* owner = nullptr;  // the widget that gets its mouse events, for the toolkit's own use

    bool isWhole() const { return visible.holds(frame.x + frame.w / 2, frame.y + frame.h / 2); }
};

inline nlohmann::json toJson(const Box& box) { return {box.x, box.y, box.w, box.h}; }

inline nlohmann::json toJson(const std::vector<Seen>& all) {
    nlohmann::json list = nlohmann::json::array();
    for (const Seen& seen : all) {
        nlohmann::json one = {{"id", seen.id},
                              {"kind", seen.kind},
                              {"text", seen.text},
                              {"frame", toJson(seen.frame)},
                              {"visible", toJson(seen.visible)},
                              {"visible", toJson(seen.visible)},
                              {"counted", seen.counted},
                              {"seen", seen.isWhole() ? "whole" : "cut"},
                              {"clickable", seen.clickable}};
        if (seen.textFrame) one["text_frame"] = toJson(*seen.textFrame);
        if (!seen.inside.empty()) one["inside"] = seen.inside;
        list.push_back(one);
    }
    return list;
}

// The smallest counted control with the point on its visible part, out of those that `mayBe` lets pass.
template <class MayBe>
const Seen* smallestAt(const std::vector<Seen>& all, int x, int y, MayBe mayBe) {
    const Seen* best = nullptr;
    for (const Seen& seen : all)
        if (seen.counted && seen.visible.holds(x, y) && mayBe(seen) &&
            (!best || seen.visible.area() < best->visible.area()))
            best = &seen;
    return best;
}

}  // namespace tarvix::probe
