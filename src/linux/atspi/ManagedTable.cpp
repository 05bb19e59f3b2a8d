#include "linux/atspi/ManagedTable.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <vector>

#include "linux/atspi/Replies.h"
#include "linux/atspi/TableNumbering.h"
#include "linux/atspi/TreeFetch.h"

namespace tarvix::atspi {

namespace {

constexpr int kMostRows = 400;    // of a screen; smaller rows than this leaves can't be read
constexpr int kManyColumns = 24;  // up to here all columns are visited, and the clip leaves out what doesn't show
constexpr int kMostColumns = 200;

}  // namespace

// One table's fetch; it lives as long as replies for it are awaited.
class ManagedTableFetch : public std::enable_shared_from_this<ManagedTableFetch> {
public:
    ManagedTableFetch(TreeFetch& fetch, int index) : fetch_(fetch), index_(index) {
        const Node& node = fetch.tree_[static_cast<std::size_t>(index)];
        reference_ = node.reference;
        clip_ = fetch.clipBelow(index);
        const double x = std::max(clip_.minX(), node.frame.minX()), y = std::max(clip_.minY(), node.frame.minY());
        seen_ = {{x, y},
                 {std::min(clip_.maxX(), node.frame.maxX()) - x, std::min(clip_.maxY(), node.frame.maxY()) - y}};
        // Its lists in windows of their own are GTK's.
        const std::string* toolkit = node.attribute("toolkit");
        sheet_ = fetch.application_.toolkit == Toolkit::libreOffice && !(toolkit && *toolkit == "gtk");
    }

    void start() {
        if (seen_.size.width < 2 || seen_.size.height < 2) return;
        awaited_ = 1;
        askCount("org.a11y.atspi.Table", "NRows", rows_);
        askCount("org.a11y.atspi.Table", "NColumns", columns_);
        askCount("org.a11y.atspi.Accessible", "ChildCount", children_);
        // Qt answers for cells only, not for the row headers that may stand at the left.
        const bool headersAreDeaf = fetch_.application_.toolkit == Toolkit::qt;
        for (const double fromLeft : {20.0, 80.0, 160.0}) {
            const double x = seen_.minX() + std::min(fromLeft, seen_.size.width / 2);
            for (const double fromTop : {2.0, 14.0, 26.0, 40.0, 60.0}) hit({x, seen_.minY() + fromTop}, Edge::top);
            for (const double fromBottom : {2.0, 14.0, 30.0}) hit({x, seen_.maxY() - fromBottom}, Edge::bottom);
            if (!headersAreDeaf) break;
        }
        const double middle = seen_.minY() + seen_.size.height / 2;
        hit({seen_.maxX() - 3, middle}, Edge::right);
        hit({seen_.minX() + 3, middle}, Edge::left);
        arrived(&ManagedTableFetch::locate);
    }

private:
    enum class Edge { top, bottom, left, right };
    struct Hit {
        Edge edge;
        Reference reference;
        std::optional<std::int64_t> row, column;
        std::optional<AxRect> frame;
    };

    void arrived(void (ManagedTableFetch::*next)()) {
        if (--awaited_ == 0) (this->*next)();
    }

    Call call(const Reference& to, const char* interface, const char* member) const {
        return fetch_.callTo(to, interface, member);
    }

    void askCount(const char* interface, const char* property, std::int64_t& into) {
        ++awaited_;
        Call get = call(reference_, "org.freedesktop.DBus.Properties", "Get");
        get.signature = "ss";
        get.texts[0] = interface;
        get.texts[1] = property;
        fetch_.pipeline_.send(std::move(get), [self = shared_from_this(), &into](sd_bus_message* reply) {
            into = readVariantInteger(reply).value_or(0);
            self->arrived(&ManagedTableFetch::locate);
        });
    }

    void hit(AxPoint at, Edge edge) {
        if (at.y < seen_.minY() || at.y > seen_.maxY()) return;
        ++awaited_;
        const RawBox raw = fetch_.placement_.fromRoot(at, false);
        Call ask = call(reference_, "org.a11y.atspi.Component", "GetAccessibleAtPoint");
        ask.signature = "iiu";
        ask.integers[0] = raw.x;
        ask.integers[1] = raw.y;
        ask.integers[2] = static_cast<std::int32_t>(Coordinates::screen);
        fetch_.pipeline_.send(std::move(ask), [self = shared_from_this(), edge](sd_bus_message* reply) {
            const std::optional<Reference> found = readReference(reply);
            if (found && *found != self->reference_) self->hits_.push_back({edge, *found, {}, {}, {}});
            self->arrived(&ManagedTableFetch::locate);
        });
    }

    // All hits are in: where in the table is each?
    void locate() {
        numbering_ = numberingOf(rows_, columns_, children_);
        if (columns_ <= 0) return;
        awaited_ = 1;
        for (std::size_t k = 0; k < hits_.size(); ++k) {
            awaited_ += 2;
            sheet_ ? locateByName(k) : locateByIndex(k);
            Call extents = call(hits_[k].reference, "org.a11y.atspi.Component", "GetExtents");
            extents.signature = "u";
            extents.integers[0] = static_cast<std::int32_t>(Coordinates::screen);
            fetch_.pipeline_.send(std::move(extents), [self = shared_from_this(), k](sd_bus_message* reply) {
                const std::optional<RawBox> box = readBox(reply);
                if (box && isSane(*box)) self->hits_[k].frame = self->fetch_.placement_.toRoot(*box, false);
                self->arrived(&ManagedTableFetch::span);
            });
        }
        arrived(&ManagedTableFetch::span);
    }

    void locateByIndex(std::size_t k) {
        fetch_.pipeline_.send(call(hits_[k].reference, "org.a11y.atspi.Accessible", "GetIndexInParent"),
                              [self = shared_from_this(), k](sd_bus_message* reply) {
                                  const std::int64_t index = readInteger(reply).value_or(-1);
                                  const std::int64_t row = self->numbering_.row(index);
                                  if (index >= 0 && row >= 0 && row < self->rows_) {
                                      self->hits_[k].row = row;
                                      self->hits_[k].column = self->numbering_.column(index);
                                  }
                                  self->arrived(&ManagedTableFetch::span);
                              });
    }

    void locateByName(std::size_t k) {
        Call get = call(hits_[k].reference, "org.freedesktop.DBus.Properties", "Get");
        get.signature = "ss";
        get.texts[0] = "org.a11y.atspi.Accessible";
        get.texts[1] = "Name";
        fetch_.pipeline_.send(std::move(get), [self = shared_from_this(), k](sd_bus_message* reply) {
            if (const auto cell = parseCellName(readVariantText(reply).value_or(""))) {
                self->hits_[k].row = cell->row;
                self->hits_[k].column = cell->column;
            }
            self->arrived(&ManagedTableFetch::span);
        });
    }

    // Rows and columns between the hits, and as many rows more as the lowest hit leaves room for.
    void span() {
        std::int64_t first = rows_, last = -1, left = 0, right = columns_ - 1;
        double rowHeight = 0, lowest = seen_.minY();
        bool bottomHit = false;
        for (const Hit& each : hits_) {
            if (!each.row) continue;
            first = std::min(first, *each.row);
            last = std::max(last, *each.row);
            bottomHit = bottomHit || each.edge == Edge::bottom;
            if (!each.frame || each.frame->size.height < 1) continue;
            rowHeight = rowHeight == 0 ? each.frame->size.height : std::min(rowHeight, each.frame->size.height);
            lowest = std::max(lowest, each.frame->maxY());
            if (columns_ > kManyColumns && each.column && each.edge == Edge::right) right = *each.column;
            if (columns_ > kManyColumns && each.column && each.edge == Edge::left)
                left = std::max<std::int64_t>(0, *each.column);
        }
        if (last >= 0 && !bottomHit && rowHeight >= 1)
            last += static_cast<std::int64_t>(std::ceil((seen_.maxY() - lowest) / rowHeight)) + 1;
        first = std::max<std::int64_t>(0, first - 1);
        last = std::min({last + 1, rows_ - 1, first + kMostRows});
        right = std::min(right, left + kMostColumns);
        collect(first, last, left, right);
    }

    void collect(std::int64_t first, std::int64_t last, std::int64_t left, std::int64_t right) {
        awaited_ = 1;
        if (numbering_.columnHeaders != 0)
            for (std::int64_t c = left; c <= right; ++c) askChild(numbering_.index(-1, c));
        for (std::int64_t r = first; r <= last; ++r) {
            if (numbering_.rowHeaders != 0) askChild(numbering_.index(r, -1));
            for (std::int64_t c = left; c <= right; ++c) sheet_ ? askCell(r, c) : askChild(numbering_.index(r, c));
        }
        arrived(&ManagedTableFetch::visit);
    }

    void askChild(std::int64_t at) {
        Call ask = call(reference_, "org.a11y.atspi.Accessible", "GetChildAtIndex");
        ask.signature = "i";
        ask.integers[0] = static_cast<std::int32_t>(at);
        keep(std::move(ask));
    }

    void askCell(std::int64_t row, std::int64_t column) {
        Call ask = call(reference_, "org.a11y.atspi.Table", "GetAccessibleAt");
        ask.signature = "ii";
        ask.integers[0] = static_cast<std::int32_t>(row);
        ask.integers[1] = static_cast<std::int32_t>(column);
        keep(std::move(ask));
    }

    void keep(Call ask) {
        ++awaited_;
        const std::size_t k = cells_.size();
        cells_.emplace_back();
        fetch_.pipeline_.send(std::move(ask), [self = shared_from_this(), k](sd_bus_message* reply) {
            self->cells_[k] = readReference(reply);
            self->arrived(&ManagedTableFetch::visit);
        });
    }

    void visit() {
        std::vector<Reference> references;
        for (auto& each : cells_)
            if (each) references.push_back(std::move(*each));
        AxRect clip = seen_;
        fetch_.visitChildren(index_, references, clip, TreeFetch::Kind::cell);
    }

    TreeFetch& fetch_;
    const int index_;
    Reference reference_;
    AxRect clip_, seen_;
    bool sheet_ = false;
    std::int64_t rows_ = 0, columns_ = 0, children_ = 0;
    Numbering numbering_;
    std::vector<Hit> hits_;
    std::vector<std::optional<Reference>> cells_;
    int awaited_ = 0;
};

void ManagedTable::fetch(TreeFetch& fetch, int index) { std::make_shared<ManagedTableFetch>(fetch, index)->start(); }

}  // namespace tarvix::atspi
