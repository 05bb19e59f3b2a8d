#include "qt/MarkerPainter.h"

#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "qt/MarkerPainting.h"

namespace tarvix {

namespace {

using Pixel = std::uint32_t;

// Frames on whole pixels need a few dozen stamps of one look or two; fractions of all kinds would need any number.
constexpr std::size_t kMostStamps = 1000, kMostLooks = 16;

constexpr int kBlock = 4;  // pixels
constexpr int kRowsAhead = 4;

// What shows through a pixel, in each channel alike.
Pixel showingThrough(Pixel source) { return (255 - (source >> 24)) * 0x01010101u; }

// Source over destination, all premultiplied, rounded.
Pixel over(Pixel source, Pixel destination) {
    const Pixel rest = 255 - (source >> 24);
    const auto part = [rest](Pixel twoChannels) {
        const Pixel product = twoChannels * rest + 0x800080;
        return ((product + ((product >> 8) & 0xff00ff)) >> 8) & 0xff00ff;
    };
    return source + (part((destination >> 8) & 0xff00ff) << 8) + part(destination & 0xff00ff);
}

// The same for a block. Its length is known, its channels are bytes, and it is copied, so that compilers see that
// nothing depends on anything else and make a few instructions of it.
inline void blendBlock(Pixel* to, const Pixel* source, const Pixel* through) {
    std::array<std::uint8_t, sizeof(Pixel) * kBlock> channel, added, factor;
    std::memcpy(channel.data(), to, channel.size());
    std::memcpy(added.data(), source, added.size());
    std::memcpy(factor.data(), through, factor.size());
    for (std::size_t i = 0; i < channel.size(); ++i) {
        const auto product = static_cast<std::uint16_t>(channel[i] * factor[i] + 128);
        channel[i] = static_cast<std::uint8_t>(added[i] + ((product * 257u) >> 16));  // by 255
    }
    std::memcpy(to, channel.data(), channel.size());
}

void blend(Pixel* to, const Pixel* from, const Pixel* through, int count) {
    int i = 0;
    for (; i + kBlock <= count; i += kBlock) blendBlock(to + i, from + i, through + i);
    for (; i < count; ++i) to[i] = over(from[i], to[i]);
}

void blend(Pixel* to, Pixel color, int count) {
    if (color == 0) return;
    const Pixel through = showingThrough(color);
    const Pixel block[kBlock] = {color, color, color, color},
                throughBlock[kBlock] = {through, through, through, through};
    int i = 0;
    for (; i + kBlock <= count; i += kBlock) blendBlock(to + i, block, throughBlock);
    for (; i < count; ++i) to[i] = over(color, to[i]);
}

int reachOf(const MarkerDrawing& drawing, double scale) {
    double most = drawing.cornerRadius;
    for (const MarkerShape& shape : drawing.shapes) most = std::max(most, shape.inset + shape.lineWidth / 2);
    return static_cast<int>(std::ceil(most * scale)) + 1;  // it may begin anywhere in its first pixel
}

// Narrows a half-open range of a row to the pixels with anything in them, and widens it again to whole blocks.
void narrow(const Pixel* row, int& from, int& to) {
    const int first = from, last = to;
    while (from < to && row[from] == 0) ++from;
    while (from < to && row[to - 1] == 0) --to;
    while ((to - from) % kBlock != 0 && to < last) ++to;
    while ((to - from) % kBlock != 0 && from > first) --from;
}

}  // namespace

void MarkerPainter::begin(QImage& surface, const QRegion& exposed) {
    bits_ = surface.bits();
    bytesPerLine_ = surface.bytesPerLine();
    scale_ = surface.devicePixelRatio();
    exposed_ = exposed & QRect(QPoint(0, 0), surface.size());
    if (stamps_.size() <= kMostStamps && looks_.size() <= kMostLooks) return;
    stamps_.clear();
    looks_.clear();
}

void MarkerPainter::paint(const MarkerDrawing& marker, const QRectF& bounds) {
    const QRectF pixels(bounds.topLeft() * scale_, bounds.size() * scale_);
    const QRect place = pixels.toAlignedRect();
    if (!exposed_.intersects(place)) return;
    const Stamp& stamp = stampFor(lookOf(marker), pixels, place);
    for (const QRect& rect : exposed_) {
        const QRect part = rect & place;
        if (!part.isEmpty()) put(stamp, place, part);
    }
}

std::size_t MarkerPainter::lookOf(const MarkerDrawing& marker) {
    const auto known = std::find_if(looks_.begin(), looks_.end(), [&](const Look& look) {
        return look.scale == scale_ && look.drawing.alpha == marker.alpha &&
               look.drawing.cornerRadius == marker.cornerRadius && look.drawing.shapes == marker.shapes;
    });
    const auto place = static_cast<std::size_t>(known - looks_.begin());
    if (place == looks_.size()) looks_.push_back({scale_, marker, reachOf(marker, scale_)});
    return place;
}

const MarkerPainter::Stamp& MarkerPainter::stampFor(std::size_t look, const QRectF& bounds, const QRect& place) {
    const int reach = looks_[look].reach, most = 2 * reach + 1;
    const QSize size = place.size().boundedTo({most, most});
    const QRectF own(bounds.topLeft() - place.topLeft(), bounds.size() - (place.size() - size));
    const auto [entry, isNew] = stamps_.try_emplace({look, own.x(), own.y(), own.width(), own.height()}, Stamp());
    Stamp& stamp = entry->second;
    if (!isNew) return stamp;

    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.scale(scale_, scale_);
    paintMarker(painter, looks_[look].drawing, {own.topLeft() / scale_, own.size() / scale_});
    painter.end();

    stamp.size = size;
    stamp.repeats = {size.width() == most ? reach : size.width(), size.height() == most ? reach : size.height()};
    for (int y = 0; y < size.height(); ++y) {
        const auto* pixels = reinterpret_cast<const Pixel*>(image.constScanLine(y));
        stamp.pixels.insert(stamp.pixels.end(), pixels, pixels + size.width());
        Row row{0, stamp.repeats.x(), std::min(stamp.repeats.x() + 1, size.width()), size.width()};
        narrow(pixels, row.from, row.to);
        narrow(pixels, row.fromBehind, row.toBehind);
        stamp.rows.push_back(row);
    }
    std::transform(stamp.pixels.begin(), stamp.pixels.end(), std::back_inserter(stamp.through), showingThrough);
    return stamp;
}

void MarkerPainter::put(const Stamp& stamp, const QRect& place, const QRect& part) {
    const int width = stamp.size.width();
    const int longerX = place.width() - width, longerY = place.height() - stamp.size.height();
    const int left = part.left() - place.left(), right = left + part.width();
    const auto within = [&](int from, int to, auto painted) {
        const int first = std::max(from, left), last = std::min(to, right);
        if (first < last) painted(first, last - first);
    };
    for (int y = part.top(); y < part.top() + part.height(); ++y) {
        const int down = y - place.top();
        const int stampY = std::max(std::min(down, stamp.repeats.y()), down - longerY);
        const Row& row = stamp.rows[static_cast<std::size_t>(stampY)];
        const Pixel *from = stamp.pixels.data() + stampY * width, *through = stamp.through.data() + stampY * width;
        Pixel* to = reinterpret_cast<Pixel*>(bits_ + y * bytesPerLine_) + place.left();
        // Rows lie far from each other in memory; by the time that one is painted it has come nearer.
        if (y + kRowsAhead < part.top() + part.height()) {
            const Pixel* ahead = to + kRowsAhead * bytesPerLine_ / static_cast<qsizetype>(sizeof(Pixel));
            __builtin_prefetch(ahead + left, 1);
            __builtin_prefetch(ahead + right - 1, 1);
        }
        const auto copy = [&](int shift) {
            return
                [=](int first, int count) { blend(to + first, from + first - shift, through + first - shift, count); };
        };
        within(row.from, row.to, copy(0));
        within(row.fromBehind + longerX, row.toBehind + longerX, copy(longerX));
        if (stamp.repeats.x() < width)
            within(stamp.repeats.x(), stamp.repeats.x() + longerX + 1,
                   [&](int first, int count) { blend(to + first, from[stamp.repeats.x()], count); });
    }
}

}  // namespace tarvix
