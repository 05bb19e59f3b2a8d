#include "linux/atspi/Plank.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>

#include "linux/atspi/Pipeline.h"
#include "linux/atspi/Replies.h"

namespace tarvix::atspi {

namespace {

constexpr const char* kName = "net.launchpad.plank";
constexpr const char* kRoot = "/net/launchpad/plank";
constexpr const char* kItems = "net.launchpad.plank.Items";
constexpr Milliseconds kLimit{150};
constexpr std::size_t kMostItems = 200;
constexpr std::size_t kLongestIntrospection = 100'000;  // bytes
constexpr std::string_view kSuffix = ".desktop";

Call callTo(const std::string& dock, const char* member) {
    Call call;
    call.destination = kName;
    call.path = dock;
    call.interface = kItems;
    call.member = member;
    return call;
}

// One process may show several docks.
std::vector<std::string> docksIn(const std::string& introspection) {
    static constexpr std::string_view opening = "<node name=\"";
    std::vector<std::string> docks;
    for (std::size_t at = introspection.find(opening); at != std::string::npos;) {
        at += opening.size();
        const std::size_t end = introspection.find('"', at);
        if (end == std::string::npos) break;
        docks.push_back(std::string(kRoot) + '/' + introspection.substr(at, end - at));
        at = introspection.find(opening, end);
    }
    return docks;
}

std::optional<PlankItem> readPosition(sd_bus_message* reply, const std::string& uri) {  // x, y, edge, whether
    std::int32_t x = 0, y = 0, edge = 0;
    int isThere = 0;
    if (!reply || sd_bus_message_read(reply, "iiib", &x, &y, &edge, &isThere) <= 0) return std::nullopt;
    if (isThere == 0 || edge < 0 || edge > static_cast<int>(PlankItem::Edge::bottom)) return std::nullopt;
    return PlankItem{uri, {double(x), double(y)}, static_cast<PlankItem::Edge>(edge)};
}

std::vector<std::string> readUris(sd_bus_message* reply) {
    std::vector<std::string> uris;
    if (!reply) return uris;
    const Inside array(reply, 'a', "s");
    const char* uri = nullptr;
    while (array && uris.size() < kMostItems && sd_bus_message_read(reply, "s", &uri) > 0)
        uris.push_back(bounded(uri, kLongestName));
    return uris;
}

bool isAcross(PlankItem::Edge edge) { return edge == PlankItem::Edge::top || edge == PlankItem::Edge::bottom; }

// The file's name without its folder and its extension; spaces and the like are written by their numbers.
std::string idOf(const std::string& uri) {
    std::string file;
    for (std::size_t i = uri.rfind('/') + 1; i < uri.size(); ++i) {
        if (uri[i] == '%' && i + 2 < uri.size()) {
            file += static_cast<char>(std::strtol(uri.substr(i + 1, 2).c_str(), nullptr, 16));
            i += 2;
        } else {
            file += uri[i];
        }
    }
    if (file.ends_with(kSuffix)) file.resize(file.size() - kSuffix.size());
    return file;
}

double along(const PlankItem& item) { return isAcross(item.edge) ? item.tip.x : item.tip.y; }

// The least distance between two neighbours; all have the same. Of one alone it is the dock's own length.
double stepOf(const std::vector<PlankItem>& row, double length) {
    double step = length;
    for (std::size_t i = 1; i < row.size(); ++i) step = std::min(step, along(row[i]) - along(row[i - 1]));
    return step;
}

// The dock that an item is in has its middle beside the item's tip.
bool isIn(const X11Window& panel, const PlankItem& item) {
    const AxRect& box = panel.client;
    return item.tip.x >= box.minX() && item.tip.x <= box.maxX() && item.tip.y >= box.minY() && item.tip.y <= box.maxY();
}

AxRect frameOf(const PlankItem& item, double step, const AxRect& dock) {
    const double start = std::round(along(item) - step / 2);
    const AxRect cell = isAcross(item.edge) ? AxRect{{start, dock.minY()}, {step, dock.height()}}
                                            : AxRect{{dock.minX(), start}, {dock.width(), step}};
    return intersection(cell, dock);
}

}  // namespace

std::vector<PlankItem> readPlankItems() {
    const Bus session = connectToSession();
    if (!session) return {};
    std::vector<PlankItem> items;
    Pipeline pipeline(session.get(), Clock::now() + kLimit);
    const auto askPosition = [&](const std::string& dock, const std::string& uri) {
        Call call = callTo(dock, "GetHoverPosition");
        call.signature = "s";
        call.texts[0] = uri.c_str();
        pipeline.send(std::move(call), [&items, uri](sd_bus_message* reply) {
            if (auto item = readPosition(reply, uri)) items.push_back(std::move(*item));
        });
    };
    const auto askItems = [&](const std::string& dock) {
        for (const char* member : {"GetPersistentApplications", "GetTransientApplications"})
            pipeline.send(callTo(dock, member), [&, dock](sd_bus_message* reply) {
                for (const std::string& uri : readUris(reply)) askPosition(dock, uri);
            });
    };
    Call docks = callTo(kRoot, "Introspect");
    docks.interface = "org.freedesktop.DBus.Introspectable";
    pipeline.send(std::move(docks), [&](sd_bus_message* reply) {
        for (const std::string& dock : docksIn(readText(reply, kLongestIntrospection).value_or(""))) askItems(dock);
    });
    pipeline.run();
    return items;
}

std::vector<PanelItem> plankRow(const std::vector<PlankItem>& items, const std::vector<X11Window>& panels,
                                const std::function<std::string(std::string_view id)>& nameOf) {
    std::vector<PanelItem> result;
    for (const X11Window& panel : panels) {
        std::vector<PlankItem> row;
        std::ranges::copy_if(items, std::back_inserter(row), [&](const PlankItem& item) { return isIn(panel, item); });
        if (row.empty()) continue;
        std::ranges::stable_sort(row, {}, along);
        const AxRect& dock = panel.clickable;
        const double step = stepOf(row, isAcross(row.front().edge) ? dock.width() : dock.height());
        for (const PlankItem& item : row) {
            Node node;
            node.reference.path = item.uri;
            node.role = Role::pushButton;
            node.roleWord = "dock item";
            const std::string id = idOf(item.uri), name = nameOf(id);
            node.name = name.empty() ? id : name;
            if (node.name != id) node.description = id;
            node.frame = frameOf(item, step, dock);
            node.shows = true;
            if (!node.frame.isNull()) result.push_back({std::move(node), PanelRow::dock});
        }
    }
    return result;
}

}  // namespace tarvix::atspi
