#include "linux/atspi/TextStretches.h"

#include <cctype>

namespace tarvix::atspi {

namespace {

constexpr std::string_view kEmbedded = "\xEF\xBF\xBC";  // U+FFFC stands for a child in a text
constexpr std::string_view kNoBreakSpace = "\xC2\xA0";
constexpr std::string_view kBullets = "•◦▪▫–—·‣";

// The character at a place of valid UTF-8, as bytes.
std::string_view characterAt(std::string_view text, std::size_t at) {
    std::size_t length = 1;
    while (at + length < text.size() && (static_cast<unsigned char>(text[at + length]) & 0xC0U) == 0x80U) ++length;
    return text.substr(at, length);
}

bool isPlain(std::string_view character) { return static_cast<unsigned char>(character.front()) < 0x80U; }

bool isBlank(std::string_view character) {
    return isPlain(character) ? std::isspace(static_cast<unsigned char>(character.front())) != 0
                              : character == kNoBreakSpace;
}

bool isBulletSign(std::string_view character) {
    return isBlank(character) || (!isPlain(character) && kBullets.find(character) != std::string_view::npos);
}

bool isOrnamentSign(std::string_view character) {
    return isBulletSign(character) ||
           (isPlain(character) && std::isalnum(static_cast<unsigned char>(character.front())) == 0);
}

bool isAll(std::string_view text, bool (*are)(std::string_view)) {
    for (std::size_t at = 0; at < text.size();) {
        const std::string_view character = characterAt(text, at);
        if (!are(character)) return false;
        at += character.size();
    }
    return true;
}

class Splitter {
public:
    explicit Splitter(std::string_view text) : text_(text) {}

    std::vector<Stretch> split() {
        for (std::size_t at = 0; at < text_.size();) {
            const std::string_view character = characterAt(text_, at);
            if (character == kEmbedded) {
                open_.touchesNext = solid_ > 0 && solid_ == open_.text.size();
                finish();
                ++children_;
            } else if (!open_.text.empty() || !(position_ == 0 ? isBulletSign(character) : isBlank(character))) {
                if (open_.text.empty()) open_.start = position_;
                open_.text += character;
                if (!isBlank(character)) {
                    open_.end = position_ + 1;
                    solid_ = open_.text.size();
                }
            }
            at += character.size();
            ++position_;
        }
        finish();
        return std::move(stretches_);
    }

private:
    void finish() {
        open_.text.resize(solid_);
        open_.childrenBefore = children_;
        if (!isOrnament(open_.text)) stretches_.push_back(std::move(open_));
        open_ = {};
        solid_ = 0;
    }

    std::string_view text_;
    std::vector<Stretch> stretches_;
    Stretch open_;
    std::size_t solid_ = 0;  // bytes of it up to its last sign that is no blank
    std::int32_t position_ = 0, children_ = 0;
};

}  // namespace

std::vector<Stretch> stretchesOf(std::string_view text) { return Splitter(text).split(); }

std::string joined(const std::vector<Stretch>& stretches) {
    std::string all;
    for (const Stretch& each : stretches) all += (all.empty() ? "" : " ") + each.text;
    return all;
}

bool isOrnament(std::string_view text) { return isAll(text, isOrnamentSign); }

bool isBullet(std::string_view text) { return isAll(text, isBulletSign); }

}  // namespace tarvix::atspi
