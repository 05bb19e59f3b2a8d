#include "updates/UpdateChoice.h"

#include <algorithm>
#include <array>
#include <compare>
#include <cstddef>
#include <optional>

#include "updates/UpdateAddress.h"
#include "updates/Version.h"

namespace tarvix {

namespace {

constexpr std::size_t kLongestNotes = 20000;
constexpr std::size_t kLongestDisplayVersion = 64;

// What Debian's installers call a package.
constexpr auto kTypes = std::to_array<std::string_view>(
    {"application/vnd.debian.binary-package", "application/x-debian-package", "application/x-deb"});

bool isKnownType(const UpdateFile& file) { return std::ranges::find(kTypes, file.type) != kTypes.end(); }

bool isFor(const UpdateFile& file, const UpdateSystem& system) {
    return file.system == system.name || file.system == system.name + "-" + system.architecture ||
           (file.system.empty() && isKnownType(file));
}

bool isFor(const AppcastItem& item, const UpdateSystem& system) {
    // A system that tells no version is one that always has the newest.
    const bool isNewEnough = item.minimumSystemVersion.empty() || system.version.empty() ||
                             std::is_gteq(compareVersions(system.version, item.minimumSystemVersion));
    return item.channel.empty() && isVersion(item.version) && isNewEnough &&
           std::is_gt(compareVersions(item.version, system.programVersion)) &&
           std::ranges::any_of(item.files, [&](const UpdateFile& file) { return isFor(file, system); });
}

// One of a type that can be installed, if there is one.
const UpdateFile& fileOf(const AppcastItem& item, const UpdateSystem& system) {
    const UpdateFile* found = nullptr;
    for (const UpdateFile& file : item.files)
        if (isFor(file, system) && (found == nullptr || (isKnownType(file) && !isKnownType(*found)))) found = &file;
    return *found;
}

std::string displayVersionOf(const AppcastItem& item) {
    const bool isPrintable = std::ranges::all_of(item.displayVersion, [](char c) { return c >= ' ' && c < 0x7f; });
    return isPrintable && !item.displayVersion.empty() && item.displayVersion.size() <= kLongestDisplayVersion
               ? item.displayVersion
               : item.version;
}

UpdateChoice examined(const AppcastItem& item, const UpdateFile& file) {
    if (!isKnownType(file)) return UpdateRefusal::unknownType;
    if (const auto refusal = refuseAddress(file.address)) return *refusal;
    if (file.signature.empty()) return UpdateRefusal::missingSignature;
    const auto signature = updateSignatureFrom(file.signature);
    if (!signature) return UpdateRefusal::wrongSignature;
    if (file.length == 0) return UpdateRefusal::missingLength;
    if (file.length > kLargestUpdate) return UpdateRefusal::oversized;
    return AvailableUpdate{item.version, displayVersionOf(item), plainNotes(item.notes), file.address, file.length,
                           *signature};
}

struct Reference {
    std::string_view name, text;
};
constexpr auto kReferences = std::to_array<Reference>(
    {{"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&apos;", "'"}, {"&#39;", "'"}, {"&nbsp;", " "}, {"&amp;", "&"}});

// What a tag leaves in the text.
std::string_view leftBy(std::string_view tag) {
    const bool closes = tag.starts_with('/');
    if (closes) tag.remove_prefix(1);
    std::string name;
    for (const char c : tag.substr(0, tag.find_first_of(" \t\r\n/")))
        name += c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
    static constexpr auto kParagraphs =
        std::to_array<std::string_view>({"p", "div", "ul", "ol", "h1", "h2", "h3", "h4", "tr"});
    if (name == "br" || (name == "li" && closes)) return "\n";
    if (name == "li") return "• ";
    return closes && std::ranges::find(kParagraphs, name) != kParagraphs.end() ? "\n" : "";
}

bool isTag(std::string_view text) {
    if (text.size() < 2 || text.front() != '<') return false;
    const int next = text[1] | 0x20;
    return (next >= 'a' && next <= 'z') || text[1] == '/' || text[1] == '!';
}

// No more than one empty line in a row, none at both ends.
std::string tidied(std::string_view text) {
    std::string result;
    std::size_t feeds = 2;
    for (const char c : text) {
        if (c == '\n' ? ++feeds > 2 : static_cast<unsigned char>(c) < ' ' || c == 0x7f) continue;
        if (c != '\n') feeds = 0;
        result += c;
    }
    while (result.ends_with('\n') || result.ends_with(' ')) result.pop_back();
    return result;
}

// Not within a character.
void cut(std::string& text) {
    if (text.size() <= kLongestNotes) return;
    std::size_t end = kLongestNotes;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xc0U) == 0x80U) --end;
    text.resize(end);
    text += "…";
}

}  // namespace

UpdateChoice chooseUpdate(const Appcast& appcast, const UpdateSystem& system) {
    const AppcastItem* best = nullptr;
    for (const AppcastItem& item : appcast)
        if (isFor(item, system) && (best == nullptr || std::is_gt(compareVersions(item.version, best->version))))
            best = &item;
    if (best == nullptr) return UpToDate{};
    return examined(*best, fileOf(*best, system));
}

bool isTold(const UpdateChoice& choice, CheckReason reason, std::string_view skippedVersion) {
    if (reason == CheckReason::user) return true;
    const auto* update = std::get_if<AvailableUpdate>(&choice);
    return update != nullptr &&
           (skippedVersion.empty() || std::is_neq(compareVersions(update->version, skippedVersion)));
}

std::string plainNotes(std::string_view notes) {
    std::string text;
    while (!notes.empty()) {
        std::size_t taken = 1;
        if (isTag(notes)) {
            taken = std::min(notes.find('>'), notes.size() - 1) + 1;
            text += leftBy(notes.substr(1, taken - 2));
        } else if (const auto found = std::ranges::find_if(
                       kReferences, [&](const Reference& each) { return notes.starts_with(each.name); });
                   found != kReferences.end()) {
            taken = found->name.size();
            text += found->text;
        } else {
            text += notes.front() == '\t' ? ' ' : notes.front();
        }
        notes.remove_prefix(taken);
    }
    text = tidied(text);
    cut(text);
    return text;
}

}  // namespace tarvix
