#include "linux/atspi/Replies.h"

#include <array>
#include <cstring>
#include <string_view>

namespace tarvix::atspi {

namespace {

bool isNullObject(const char* path) { return std::strcmp(path, "/org/a11y/atspi/null") == 0; }

// What is kept of an object's attributes; the rest is layout and style.
bool isOfUse(std::string_view key) {
    static constexpr auto keys = std::to_array<std::string_view>(
        {"placeholder-text", "placeholder", "id", "class", "tag", "xml-roles", "roledescription", "valuetext", "src",
         "DocURL", "toolkit", "explicit-name", "name-from", "level", "sort"});
    for (const std::string_view each : keys)
        if (each == key) return true;
    return false;
}

std::vector<std::pair<std::string, std::string>> attributesHere(sd_bus_message* m) {
    std::vector<std::pair<std::string, std::string>> attributes;
    const Inside array(m, 'a', "{ss}");
    const char* key = nullptr;
    const char* value = nullptr;
    while (array && sd_bus_message_read(m, "{ss}", &key, &value) > 0)
        if (isOfUse(key)) attributes.emplace_back(key, bounded(value, kLongestName));
    return attributes;
}

struct InterfaceBit {
    std::string_view name;
    std::uint32_t bit;
};

constexpr auto kInterfaceBits = std::to_array<InterfaceBit>({{"Action", interface::action},
                                                             {"Component", interface::component},
                                                             {"Text", interface::text},
                                                             {"Value", interface::value},
                                                             {"Table", interface::table},
                                                             {"Hyperlink", interface::hyperlink},
                                                             {"EditableText", interface::editableText},
                                                             {"Selection", interface::selection},
                                                             {"Image", interface::image},
                                                             {"Document", interface::document}});

// The one property's value of the Accessible interface; false when it wasn't read.
bool propertyHere(sd_bus_message* m, std::string_view name, Node& node) {
    for (const auto& [property, field] : {std::pair{std::string_view("Name"), &Node::name},
                                          std::pair{std::string_view("Description"), &Node::description},
                                          std::pair{std::string_view("AccessibleId"), &Node::identifier}}) {
        if (name != property) continue;
        const std::optional<std::string> text = readVariantText(m);
        node.*field = text.value_or("");
        return text.has_value();
    }
    if (name == "ChildCount") {
        const std::optional<std::int32_t> count = readVariantInteger(m);
        node.childCount = count.value_or(0);
        return count.has_value();
    }
    if (name != "Attributes") return false;
    const Inside variant(m, 'v', "a{ss}");
    if (variant) node.attributes = attributesHere(m);
    return static_cast<bool>(variant);
}

}  // namespace

std::string bounded(const char* text, std::size_t limit) {
    std::size_t length = strnlen(text, limit + 1);
    if (length > limit) {
        length = limit;
        while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) --length;
    }
    return {text, length};
}

std::optional<std::uint64_t> readStates(sd_bus_message* reply) {
    const void* words = nullptr;
    std::size_t size = 0;
    if (!reply || sd_bus_message_read_array(reply, 'u', &words, &size) < 0 || size < 8) return std::nullopt;
    std::uint32_t pair[2];
    std::memcpy(pair, words, sizeof pair);
    return pair[0] | std::uint64_t{pair[1]} << 32U;
}

std::optional<std::uint32_t> readUnsigned(sd_bus_message* reply) {
    std::uint32_t value = 0;
    if (!reply || sd_bus_message_read(reply, "u", &value) <= 0) return std::nullopt;
    return value;
}

std::optional<std::int32_t> readInteger(sd_bus_message* reply) {
    std::int32_t value = 0;
    if (!reply || sd_bus_message_read(reply, "i", &value) <= 0) return std::nullopt;
    return value;
}

std::optional<std::string> readText(sd_bus_message* reply, std::size_t limit) {
    const char* text = nullptr;
    if (!reply || sd_bus_message_read(reply, "s", &text) <= 0) return std::nullopt;
    return bounded(text, limit);
}

std::optional<RawBox> readBox(sd_bus_message* reply) {
    RawBox box;
    if (!reply || sd_bus_message_read(reply, "(iiii)", &box.x, &box.y, &box.width, &box.height) <= 0)
        return std::nullopt;
    return box;
}

std::optional<Reference> readReference(sd_bus_message* reply) {
    const char* bus = nullptr;
    const char* path = nullptr;
    if (!reply || sd_bus_message_read(reply, "(so)", &bus, &path) <= 0 || isNullObject(path)) return std::nullopt;
    return Reference{bus, path};
}

std::vector<Reference> readReferences(sd_bus_message* reply) {
    std::vector<Reference> references;
    if (!reply) return references;
    const Inside array(reply, 'a', "(so)");
    const char* bus = nullptr;
    const char* path = nullptr;
    while (array && references.size() < kMostChildren && sd_bus_message_read(reply, "(so)", &bus, &path) > 0)
        if (!isNullObject(path)) references.push_back({bus, path});
    return references;
}

std::uint32_t readInterfaces(sd_bus_message* reply) {
    std::uint32_t bits = 0;
    if (!reply) return bits;
    const Inside array(reply, 'a', "s");
    const char* name = nullptr;
    while (array && sd_bus_message_read(reply, "s", &name) > 0) {
        const char* last = std::strrchr(name, '.');
        for (const InterfaceBit& row : kInterfaceBits)
            if (last && row.name == last + 1) bits |= row.bit;
    }
    return bits;
}

std::vector<std::pair<std::string, std::string>> readAttributes(sd_bus_message* reply) {
    if (!reply) return {};
    return attributesHere(reply);
}

std::optional<std::string> readVariantText(sd_bus_message* reply) {
    const char* text = nullptr;
    if (!reply || sd_bus_message_read(reply, "v", "s", &text) <= 0) return std::nullopt;
    return bounded(text, kLongestName);
}

std::optional<double> readVariantDouble(sd_bus_message* reply) {
    double value = 0;
    if (!reply || sd_bus_message_read(reply, "v", "d", &value) <= 0) return std::nullopt;
    return value;
}

std::optional<std::int32_t> readVariantInteger(sd_bus_message* reply) {
    std::int32_t value = 0;
    if (!reply || sd_bus_message_read(reply, "v", "i", &value) <= 0) return std::nullopt;
    return value;
}

void readAllProperties(sd_bus_message* reply, Node& node) {
    if (!reply) return;
    const Inside array(reply, 'a', "{sv}");
    while (array) {
        const Inside entry(reply, 'e', "sv");
        const char* name = nullptr;
        if (!entry || sd_bus_message_read(reply, "s", &name) <= 0) return;
        // One that isn't what it should be is passed over, so that the others can be read.
        if (!propertyHere(reply, name, node) && sd_bus_message_skip(reply, "v") < 0) return;
    }
}

}  // namespace tarvix::atspi
