#include "linux/atspi/StatusNotifiers.h"

#include <algorithm>
#include <cstring>

#include "linux/atspi/Pipeline.h"
#include "linux/atspi/Replies.h"

namespace tarvix::atspi {

namespace {

constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";
constexpr const char* kItem = "org.kde.StatusNotifierItem";
constexpr const char* kUsualPath = "/StatusNotifierItem";
constexpr Milliseconds kLimit{150};
constexpr Milliseconds kLimitForTheSilent{25};
constexpr std::size_t kMostItems = 200;

Call getProperty(const std::string& bus, const std::string& path, const char* interface, const char* property) {
    Call call;
    call.destination = bus;
    call.path = path;
    call.interface = "org.freedesktop.DBus.Properties";
    call.member = "Get";
    call.signature = "ss";
    call.texts[0] = interface;
    call.texts[1] = property;
    return call;
}

std::vector<std::pair<std::string, std::string>> readRegistered(sd_bus_message* reply) {  // v of as
    std::vector<std::pair<std::string, std::string>> registered;
    const Inside variant(reply, 'v', "as");
    if (!variant) return registered;
    const Inside array(reply, 'a', "s");
    const char* name = nullptr;
    while (array && registered.size() < kMostItems && sd_bus_message_read(reply, "s", &name) > 0)
        registered.push_back(splitRegistered(bounded(name, kLongestName)));
    return registered;
}

std::vector<std::string> readNames(sd_bus_message* reply) {  // v of av of s
    std::vector<std::string> names;
    const Inside variant(reply, 'v', "av");
    if (!variant) return names;
    const Inside array(reply, 'a', "v");
    const char* name = nullptr;
    while (array && sd_bus_message_read(reply, "v", "s", &name) > 0) names.push_back(bounded(name, kLongestName));
    return names;
}

std::string readToolTip(sd_bus_message* reply) {  // v of (sa(iiay)ss): icon, pixels, title, text
    const Inside variant(reply, 'v', "(sa(iiay)ss)");
    if (!variant) return {};
    const Inside structure(reply, 'r', "sa(iiay)ss");
    const char *title = nullptr, *text = nullptr;
    if (!structure || sd_bus_message_skip(reply, "sa(iiay)") < 0 ||
        sd_bus_message_read(reply, "ss", &title, &text) <= 0)
        return {};
    std::string told = bounded(title, kLongestName);
    if (*text != '\0') told += (told.empty() ? "" : ". ") + bounded(text, kLongestName);
    return told;
}

// Asks them all at once; those that have answered by then.
std::vector<NotifierItem> ask(sd_bus* bus, std::vector<NotifierItem> items, Milliseconds limit) {
    Pipeline pipeline(bus, Clock::now() + limit);
    std::vector<int> answers(items.size(), 0);
    for (std::size_t i = 0; i < items.size(); ++i) {
        NotifierItem& item = items[i];
        const auto get = [&](const char* property, auto read) {
            pipeline.send(getProperty(item.bus, item.path, kItem, property), [&, i, read](sd_bus_message* reply) {
                ++answers[i];
                if (reply) read(reply);
            });
        };
        get("Id", [&item](sd_bus_message* reply) { item.id = readVariantText(reply).value_or(""); });
        get("Title", [&item](sd_bus_message* reply) { item.title = readVariantText(reply).value_or(""); });
        get("Status", [&item](sd_bus_message* reply) { item.isPassive = readVariantText(reply) == "Passive"; });
        get("ToolTip", [&item](sd_bus_message* reply) { item.toolTip = readToolTip(reply); });
    }
    pipeline.run();
    std::vector<NotifierItem> answered;
    for (std::size_t i = 0; i < items.size(); ++i)
        if (answers[i] == 4) answered.push_back(std::move(items[i]));
    return answered;
}

}  // namespace

std::pair<std::string, std::string> splitRegistered(const std::string& registered) {
    const std::size_t slash = registered.find('/');
    if (slash == std::string::npos) return {registered, kUsualPath};
    return {registered.substr(0, slash), registered.substr(slash)};
}

std::vector<NotifierItem> StatusNotifiers::items() {
    const std::lock_guard lock(mutex_);
    const Bus session = connectToSession();
    if (!session) return {};
    Pipeline pipeline(session.get(), Clock::now() + kLimit);
    pipeline.send(getProperty(kWatcher, "/StatusNotifierWatcher", kWatcher, "RegisteredStatusNotifierItems"),
                  [this](sd_bus_message* reply) { registered_ = reply ? readRegistered(reply) : std::vector<Key>(); });
    pipeline.run();

    std::map<Key, NotifierItem> now;
    std::vector<NotifierItem> healthy, silent;
    for (const Key& each : registered_) {
        NotifierItem item;
        std::tie(item.bus, item.path) = each;
        const auto known = known_.find(each);
        now[each] = known == known_.end() ? item : known->second;
        (silent_.contains(each) ? silent : healthy).push_back(std::move(item));
    }
    silent_.clear();
    for (const auto& [asked, limit] : {std::pair{healthy, kLimit}, std::pair{silent, kLimitForTheSilent}}) {
        if (asked.empty()) continue;
        for (const NotifierItem& each : asked) silent_.insert({each.bus, each.path});
        for (NotifierItem& each : ask(session.get(), asked, limit)) {
            silent_.erase({each.bus, each.path});
            now[{each.bus, each.path}] = std::move(each);
        }
    }
    known_ = std::move(now);
    std::vector<NotifierItem> result;
    for (const Key& each : registered_) result.push_back(known_[each]);
    return result;
}

std::optional<TrayOrder> StatusNotifiers::xfceOrder() {
    const std::lock_guard lock(mutex_);
    const Bus session = connectToSession();
    if (!session) return order_;
    Call call;
    call.destination = "org.xfce.Xfconf";
    call.path = "/org/xfce/Xfconf";
    call.interface = "org.xfce.Xfconf";
    call.member = "GetAllProperties";
    call.signature = "ss";
    call.texts[0] = "xfce4-panel";
    call.texts[1] = "/plugins";
    Pipeline pipeline(session.get(), Clock::now() + kLimit);
    pipeline.send(std::move(call), [this](sd_bus_message* reply) { order_ = readXfceOrder(reply); });
    pipeline.run();
    return order_;
}

std::optional<TrayOrder> readXfceOrder(sd_bus_message* reply) {
    if (!reply) return std::nullopt;
    const Inside all(reply, 'a', "{sv}");
    if (!all) return std::nullopt;
    TrayOrder order;
    while (sd_bus_message_enter_container(reply, 'e', "sv") > 0) {
        const char* name = nullptr;
        char type = 0;
        const char* contents = nullptr;
        if (sd_bus_message_read(reply, "s", &name) <= 0 || sd_bus_message_peek_type(reply, &type, &contents) <= 0)
            return std::nullopt;
        const std::string_view property = name;
        std::vector<std::string>* list = property.ends_with("/known-items")    ? &order.known
                                         : property.ends_with("/hidden-items") ? &order.hidden
                                                                               : nullptr;
        if (list && contents && std::strcmp(contents, "av") == 0)
            *list = readNames(reply);
        else
            sd_bus_message_skip(reply, "v");
        sd_bus_message_exit_container(reply);
    }
    return order;
}

}  // namespace tarvix::atspi
