#include "linux/desktops/XSettings.h"

#include <cstddef>
#include <optional>

namespace tarvix {

namespace {

enum class Kind : std::uint8_t { number = 0, text = 1, color = 2 };

constexpr std::size_t kColorBytes = 8;

// Numbers in the order of bytes that the first byte tells, texts filled up to whole words. Nothing is given once the
// end has been passed.
class Bytes {
public:
    explicit Bytes(std::string_view bytes) : bytes_(bytes), isBigEndian_(!bytes.empty() && bytes.front() == 1) {}

    bool isGood() const { return isGood_; }
    std::string_view take(std::size_t count) {
        if (!isGood_ || count > bytes_.size() - at_) {
            isGood_ = false;
            return {};
        }
        at_ += count;
        return bytes_.substr(at_ - count, count);
    }
    std::uint32_t number(std::size_t width) {
        std::uint32_t value = 0;
        const std::string_view digits = take(width);
        for (std::size_t i = 0; i < digits.size(); ++i) {
            const std::size_t shift = 8 * (isBigEndian_ ? digits.size() - 1 - i : i);
            value |= static_cast<std::uint32_t>(static_cast<unsigned char>(digits[i])) << shift;
        }
        return value;
    }
    std::string text(std::size_t length) {
        const std::string_view characters = take(length);
        take((4 - length % 4) % 4);
        return std::string(characters);
    }

private:
    std::string_view bytes_;
    std::size_t at_ = 0;
    bool isBigEndian_;
    bool isGood_ = true;
};

}  // namespace

XSettings xSettings(std::string_view bytes) {
    Bytes from(bytes);
    XSettings settings;
    from.take(4);    // the order of bytes
    from.number(4);  // counts the changes
    const std::uint32_t count = from.number(4);
    for (std::uint32_t i = 0; i < count && from.isGood(); ++i) {
        const auto kind = static_cast<Kind>(from.number(1));
        from.take(1);
        const std::string name = from.text(from.number(2));
        from.number(4);  // counts this one's changes
        if (kind == Kind::number) {
            const auto value = static_cast<std::int32_t>(from.number(4));
            if (from.isGood()) settings[name] = value;
        } else if (kind == Kind::text) {
            std::string value = from.text(from.number(4));
            if (from.isGood()) settings[name] = std::move(value);
        } else if (kind == Kind::color) {
            from.take(kColorBytes);
        } else {
            break;
        }
    }
    return settings;
}

GtkChoice gtkChoice(const XSettings& settings) {
    GtkChoice choice;
    if (const auto theme = settings.find("Net/ThemeName"); theme != settings.end())
        if (const auto* name = std::get_if<std::string>(&theme->second); name && !name->empty()) choice.theme = *name;
    if (const auto dark = settings.find("Gtk/ApplicationPreferDarkTheme"); dark != settings.end())
        if (const auto* number = std::get_if<std::int32_t>(&dark->second)) choice.prefersDark = *number != 0;
    return choice;
}

}  // namespace tarvix
