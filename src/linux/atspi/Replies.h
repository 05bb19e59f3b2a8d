// Reading what the accessibility protocol's replies hold. Whatever an application sends that isn't what its interface
// promises reads as absent, and no text is taken whole if it is longer than anybody searches in.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "linux/atspi/Node.h"
#include "linux/atspi/SdBus.h"

namespace tarvix::atspi {

inline constexpr std::size_t kLongestName = 2'000;       // bytes
inline constexpr std::int32_t kLongestText = 4'000;      // characters asked for of a document
inline constexpr std::size_t kLongestTextBytes = 4'000;  // kept of any text
inline constexpr std::size_t kMostChildren = 20'000;     // of one object

// The text, cut at a whole character when it is longer than `limit` bytes.
std::string bounded(const char* text, std::size_t limit);

std::optional<std::uint64_t> readStates(sd_bus_message* reply);                 // au, two words
std::optional<std::uint32_t> readUnsigned(sd_bus_message* reply);               // u
std::optional<std::int32_t> readInteger(sd_bus_message* reply);                 // i
std::optional<std::string> readText(sd_bus_message* reply, std::size_t limit);  // s
std::optional<RawBox> readBox(sd_bus_message* reply);                           // (iiii)
std::optional<Reference> readReference(sd_bus_message* reply);                  // (so); absent for the null object
std::vector<Reference> readReferences(sd_bus_message* reply);                   // a(so), without null objects
std::uint32_t readInterfaces(sd_bus_message* reply);                            // as, as bits of `interface`
std::vector<std::pair<std::string, std::string>> readAttributes(sd_bus_message* reply);  // a{ss}, those of use

// What a property's value or all properties of the Accessible interface hold; into the node's own fields.
std::optional<std::string> readVariantText(sd_bus_message* reply);      // v of s
std::optional<double> readVariantDouble(sd_bus_message* reply);         // v of d
std::optional<std::int32_t> readVariantInteger(sd_bus_message* reply);  // v of i
void readAllProperties(sd_bus_message* reply, Node& node);              // a{sv}

// Opens a container of a message for as long as it lives.
class Inside {
public:
    Inside(sd_bus_message* m, char type, const char* contents)
        : m_(m), open_(sd_bus_message_enter_container(m, type, contents) > 0) {}
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;
    ~Inside() {
        if (open_) sd_bus_message_exit_container(m_);
    }
    explicit operator bool() const { return open_; }

private:
    sd_bus_message* m_;
    bool open_;
};

}  // namespace tarvix::atspi
