#include "tests/desktop/AtspiFake.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cstring>
#include <utility>

namespace tarvix::atspi {

namespace {

constexpr const char* kFolder = "/org/a11y/atspi/accessible/";

std::string nameOf(const char* path) {
    const std::string text = path;
    return text.compare(0, std::strlen(kFolder), kFolder) == 0 ? text.substr(std::strlen(kFolder)) : text;
}

std::string pathOf(const std::string& object) {
    return object == "null" ? std::string("/org/a11y/atspi/null") : kFolder + object;
}

int appendStates(sd_bus_message* m, const FakeObject& of) {
    std::uint64_t states = 0;
    const auto add = [&states](State state) { states |= std::uint64_t{1} << static_cast<unsigned>(state); };
    add(State::visible);
    add(State::sensitive);
    if (of.showing) add(State::showing);
    if (of.managesDescendants) add(State::managesDescendants);
    return sd_bus_message_append(m, "au", 2, static_cast<std::uint32_t>(states),
                                 static_cast<std::uint32_t>(states >> 32U));
}

int appendInterfaces(sd_bus_message* m, const FakeObject& of) {
    if (const int r = sd_bus_message_open_container(m, 'a', "s"); r < 0) return r;
    sd_bus_message_append(m, "s", "org.a11y.atspi.Accessible");
    for (const std::string& each : of.interfaces) sd_bus_message_append(m, "s", ("org.a11y.atspi." + each).c_str());
    return sd_bus_message_close_container(m);
}

}  // namespace

AtspiFake::AtspiFake(std::string toolkit) : toolkit_(std::move(toolkit)), wake_(eventfd(0, EFD_CLOEXEC)) {
    const Bus session = connectToSession();
    const auto address = session ? accessibilityBusAddress(session.get()) : std::nullopt;
    bus_ = address ? connectTo(*address, Peer::messageBus) : nullptr;
    const char* name = nullptr;
    if (!bus_ || sd_bus_get_unique_name(bus_.get(), &name) < 0) return;
    busName_ = name;
    sd_bus_add_filter(bus_.get(), nullptr, onMessage, this);
    sd_bus_message* raw = nullptr;
    const int r =
        sd_bus_call_method(bus_.get(), "org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root",
                           "org.a11y.atspi.Socket", "Embed", nullptr, &raw, "(so)", name, pathOf("root").c_str());
    const Message embedded(raw);
    inRegistry_ = r >= 0;
    objects_["root"] = {
        .role = Role::application, .name = "fake", .children = {"frame"}, .interfaces = {"Application"}};
    thread_ = std::thread([this] { work(); });
}

AtspiFake::~AtspiFake() {
    {
        const std::lock_guard lock(mutex_);
        ends_ = true;
    }
    wakeUp();
    if (thread_.joinable()) thread_.join();
    close(wake_);
}

void AtspiFake::wakeUp() const { EXPECT_EQ(eventfd_write(wake_, 1), 0); }

void AtspiFake::set(const std::string& object, FakeObject what) {
    const std::lock_guard lock(mutex_);
    objects_[object] = std::move(what);
}

void AtspiFake::setBus(const std::string& object, const std::string& bus) {
    const std::lock_guard lock(mutex_);
    buses_[object] = bus;
}

void AtspiFake::setMaker(std::function<std::optional<FakeObject>(const std::string&)> maker) {
    const std::lock_guard lock(mutex_);
    maker_ = std::move(maker);
}

void AtspiFake::stopAfter(std::size_t answers) {
    const std::lock_guard lock(mutex_);
    left_ = answers;
}

void AtspiFake::stopAt(const std::string& member) {
    const std::lock_guard lock(mutex_);
    stopAt_ = member;
}

void AtspiFake::answerAgain() {
    {
        const std::lock_guard lock(mutex_);
        left_.reset();
        stopAt_.clear();
    }
    wakeUp();
}

void AtspiFake::exitAfter(std::size_t answers) {
    const std::lock_guard lock(mutex_);
    left_ = answers;
    exits_ = true;
}

std::vector<FakeCall> AtspiFake::calls() const {
    const std::lock_guard lock(mutex_);
    return calls_;
}

std::size_t AtspiFake::count(const std::string& member) const {
    std::size_t count = 0;
    for (const FakeCall& each : calls()) count += each.member == member ? 1 : 0;
    return count;
}

void AtspiFake::forgetCalls() {
    const std::lock_guard lock(mutex_);
    calls_.clear();
}

void AtspiFake::work() {
    while (bus_) {
        int processed = 0;
        while ((processed = sd_bus_process(bus_.get(), nullptr)) > 0) {
            const std::lock_guard lock(mutex_);
            if (exits_ && left_ == 0U) break;
        }
        std::vector<Message> again;
        {
            const std::lock_guard lock(mutex_);
            if (ends_ || processed < 0) return;
            if (exits_ && left_ == 0U) {
                // The bus daemon throws away what it hasn't read of a connection that has gone; once it answers this,
                // it has read all that was said before.
                sd_bus_flush(bus_.get());
                sd_bus_call_method(bus_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                   "GetId", nullptr, nullptr, "");
                bus_.reset();
                return;
            }
            if (!left_) again = std::exchange(held_, {});
        }
        for (const Message& each : again) handle(each.get());
        if (!again.empty()) continue;
        pollfd waited[] = {{sd_bus_get_fd(bus_.get()), static_cast<short>(sd_bus_get_events(bus_.get())), 0},
                           {wake_, POLLIN, 0}};
        poll(waited, 2, -1);
        eventfd_t ignored = 0;
        if ((waited[1].revents & POLLIN) != 0) eventfd_read(wake_, &ignored);
    }
}

int AtspiFake::onMessage(sd_bus_message* message, void* self, sd_bus_error*) {
    if (sd_bus_message_is_method_call(message, nullptr, nullptr) <= 0) return 0;
    static_cast<AtspiFake*>(self)->handle(message);
    return 1;
}

void AtspiFake::handle(sd_bus_message* message) {
    const std::string object = nameOf(sd_bus_message_get_path(message));
    std::string member = sd_bus_message_get_member(message);
    const char *interface = nullptr, *property = nullptr;
    sd_bus_message_rewind(message, 1);
    if (member == "Get" && sd_bus_message_read(message, "ss", &interface, &property) > 0)
        member += std::string(" ") + property;
    Message answer;
    {
        const std::lock_guard lock(mutex_);
        calls_.push_back({object, member});
        if (!stopAt_.empty() && member == stopAt_) left_ = 0;
        if (left_ == 0U) {
            held_.emplace_back(sd_bus_message_ref(message));
            return;
        }
        if (left_) --*left_;
        answer = answerTo(message, object, member);
    }
    if (answer) sd_bus_send(bus_.get(), answer.get(), nullptr);
}

Message AtspiFake::error(sd_bus_message* message) const {
    sd_bus_message* raw = nullptr;
    const sd_bus_error unknown = SD_BUS_ERROR_MAKE_CONST("org.freedesktop.DBus.Error.UnknownMethod", "no such thing");
    sd_bus_message_new_method_error(message, &raw, &unknown);
    return Message(raw);
}

Message AtspiFake::reply(sd_bus_message* message) const {
    sd_bus_message* raw = nullptr;
    sd_bus_message_new_method_return(message, &raw);
    return Message(raw);
}

Message AtspiFake::answerTo(sd_bus_message* message, const std::string& object, const std::string& member) {
    const bool isProperty = member.compare(0, 4, "Get ") == 0;
    const std::string what = isProperty ? member.substr(4) : member;
    Message answer = reply(message);
    sd_bus_message* m = answer.get();
    if (member == "Set") return answer;
    if (member == "GetItems") return appendItems(m) < 0 ? error(message) : std::move(answer);
    const std::optional<FakeObject> of = find(object);
    if (!of || of->refused.count(what) != 0) return error(message);
    if (of->nonsense.count(what) != 0) {
        EXPECT_GE(isProperty ? sd_bus_message_append(m, "v", "y", 7) : sd_bus_message_append(m, "y", 7), 0);
        return answer;
    }
    const int r = isProperty ? appendProperty(m, *of, what) : appendAnswer(m, message, *of, object, what);
    return r < 0 ? error(message) : std::move(answer);
}

int AtspiFake::appendReference(sd_bus_message* m, const std::string& object) const {
    const auto elsewhere = buses_.find(object);
    const std::string& bus = elsewhere == buses_.end() ? busName_ : elsewhere->second;
    return sd_bus_message_append(m, "(so)", bus.c_str(), pathOf(object).c_str());
}

int AtspiFake::appendAnswer(sd_bus_message* m, sd_bus_message* call, const FakeObject& of, const std::string& object,
                            const std::string& member) {
    std::int32_t x = 0, y = 0;
    const auto offers = [&of](const char* name) {
        for (const std::string& each : of.interfaces)
            if (each == name) return true;
        return false;
    };
    if (member == "GetState") return appendStates(m, of);
    if (member == "GetRole") return sd_bus_message_append(m, "u", static_cast<std::uint32_t>(of.role));
    if (member == "GetInterfaces") return appendInterfaces(m, of);
    if (member == "GetLocalizedRoleName")
        return sd_bus_message_append(m, "s", ("role " + std::to_string(static_cast<unsigned>(of.role))).c_str());
    if (member == "GetAttributes") return sd_bus_message_append(m, "a{ss}", 0);
    if (member == "GetApplicationBusAddress") return sd_bus_message_append(m, "s", "");
    if (member == "GetIndexInParent") return sd_bus_message_append(m, "i", of.index);
    if (member == "GetChildren") {
        sd_bus_message_open_container(m, 'a', "(so)");
        for (const std::string& child : of.children) appendReference(m, child);
        return sd_bus_message_close_container(m);
    }
    if (member == "GetChildAtIndex" && sd_bus_message_read(call, "i", &x) > 0) {
        if (x < 0 || x >= countOf(of)) return appendReference(m, "null");
        return appendReference(m, of.childAt ? of.childAt(x) : of.children[static_cast<std::size_t>(x)]);
    }
    if (member == "GetExtents" && offers("Component"))
        return sd_bus_message_append(m, "(iiii)", of.box.x, of.box.y, of.box.width, of.box.height);
    if (member == "GetAccessibleAtPoint" && of.hit && sd_bus_message_read(call, "ii", &x, &y) > 0)
        return appendReference(m, of.hit(x, y));
    if (member == "GetText" && offers("Text") && sd_bus_message_read(call, "ii", &x, &y) > 0) {
        if (of.mostText >= 0 && (y < 0 || y - x > of.mostText)) return -EINVAL;
        return sd_bus_message_append(
            m, "s", of.mostText < 0 ? of.text.c_str() : of.text.substr(0, static_cast<std::size_t>(y)).c_str());
    }
    if (member == "DoAction" && offers("Action") && sd_bus_message_read(call, "i", &x) > 0)
        return sd_bus_message_append(m, "b", x == 0);
    if (member == "GetTree" && object == "frame") return appendTree(m);
    if (member != "GetAll") return -ENOENT;
    return sd_bus_message_append(m, "a{sv}", 2, "Name", "s", of.name.c_str(), "ChildCount", "i", countOf(of));
}

int AtspiFake::appendProperty(sd_bus_message* m, const FakeObject& of, const std::string& property) const {
    if (property == "ToolkitName") return sd_bus_message_append(m, "v", "s", toolkit_.c_str());
    if (property == "Name") return sd_bus_message_append(m, "v", "s", of.name.c_str());
    if (property == "Description") return sd_bus_message_append(m, "v", "s", "");
    if (property == "ChildCount") return sd_bus_message_append(m, "v", "i", countOf(of));
    if (property == "CharacterCount")
        return sd_bus_message_append(m, "v", "i", static_cast<std::int32_t>(of.text.size()));
    if (property == "NRows" && of.rows > 0) return sd_bus_message_append(m, "v", "i", of.rows);
    if (property == "NColumns" && of.rows > 0) return sd_bus_message_append(m, "v", "i", of.columns);
    return -ENOENT;
}

int AtspiFake::appendItems(sd_bus_message* m) const {
    sd_bus_message_open_container(m, 'a', "((so)(so)(so)iiassusau)");
    std::map<std::string, std::pair<std::string, std::int32_t>> places;
    for (const auto& [object, of] : objects_)
        for (std::size_t i = 0; i < of.children.size(); ++i)
            places[of.children[i]] = {object, static_cast<std::int32_t>(i)};
    for (const auto& [object, of] : objects_) {
        const auto place = places.find(object);
        sd_bus_message_open_container(m, 'r', "(so)(so)(so)iiassusau");
        appendReference(m, object);
        appendReference(m, "root");
        appendReference(m, place == places.end() ? "null" : place->second.first);
        sd_bus_message_append(m, "ii", place == places.end() ? -1 : place->second.second, countOf(of));
        appendInterfaces(m, of);
        sd_bus_message_append(m, "sus", of.name.c_str(), static_cast<std::uint32_t>(of.role), "");
        appendStates(m, of);
        if (const int r = sd_bus_message_close_container(m); r < 0) return r;
    }
    return sd_bus_message_close_container(m);
}

int AtspiFake::appendTree(sd_bus_message* m) const {
    sd_bus_message_open_container(m, 'a', "((so)a{sv})");
    for (const auto& [object, of] : objects_) {
        const int r = sd_bus_message_append(
            m, "((so)a{sv})", busName_.c_str(), pathOf(object).c_str(), 1, "Component.ScreenExtents", "(uuuu)",
            static_cast<std::uint32_t>(of.box.x), static_cast<std::uint32_t>(of.box.y),
            static_cast<std::uint32_t>(of.box.width), static_cast<std::uint32_t>(of.box.height));
        if (r < 0) return r;
    }
    return sd_bus_message_close_container(m);
}

std::optional<FakeObject> AtspiFake::find(const std::string& object) const {
    if (const auto found = objects_.find(object); found != objects_.end()) return found->second;
    return maker_ ? maker_(object) : std::nullopt;
}

std::int32_t AtspiFake::countOf(const FakeObject& of) const {
    return of.childCount >= 0 ? of.childCount : static_cast<std::int32_t>(of.children.size());
}

}  // namespace tarvix::atspi
