#include "linux/atspi/LongList.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "linux/atspi/Replies.h"
#include "linux/atspi/TreeFetch.h"

namespace tarvix::atspi {

namespace {

constexpr std::int32_t kProbes = 32;
constexpr std::int32_t kShortEnough = 64;
constexpr std::int32_t kMostVisited = 20'000;

struct Probe {
    std::int32_t at = 0;
    std::optional<AxRect> frame;
};

}  // namespace

// One search in one list; it lives as long as replies for it are awaited.
class LongListSearch : public std::enable_shared_from_this<LongListSearch> {
public:
    using Visit = std::function<void(std::vector<Reference>)>;
    using Child = std::function<void(std::int32_t at, std::function<void(std::optional<Reference>)>)>;
    using Frame = std::function<void(const Reference&, std::function<void(std::optional<AxRect>)>)>;

    LongListSearch(std::int32_t count, AxRect clip, Child child, Frame frame, Visit visit)
        : high_(count), clip_(clip), child_(std::move(child)), frame_(std::move(frame)), visit_(std::move(visit)) {}

    void narrow() {
        const std::int32_t length = high_ - low_;
        if (length <= kShortEnough) {
            visitAll();
            return;
        }
        probes_.clear();
        awaited_ = 1;
        for (std::int32_t k = 0; k < kProbes; ++k)
            probes_.push_back({low_ + static_cast<std::int32_t>(std::int64_t{length - 1} * k / (kProbes - 1)), {}});
        for (std::size_t k = 0; k < probes_.size(); ++k) {
            ++awaited_;
            child_(probes_[k].at, [self = shared_from_this(), k](std::optional<Reference> reference) {
                if (!reference) return self->arrived();
                self->frame_(*reference, [self, k](std::optional<AxRect> frame) {
                    self->probes_[k].frame = frame;
                    self->arrived();
                });
            });
        }
        arrived();
    }

private:
    void arrived() {
        if (--awaited_ > 0) return;
        const std::int32_t low = low_, high = high_;
        if (!inOrder()) {
            visitAll();
            return;
        }
        for (const Probe& probe : probes_) {
            if (!probe.frame) continue;
            if (probe.frame->maxY() < clip_.minY()) low_ = std::max(low_, probe.at);
            if (probe.frame->minY() > clip_.maxY()) high_ = std::min(high_, probe.at + 1);
        }
        if (low_ == low && high_ == high)
            visitAll();
        else
            narrow();
    }

    bool inOrder() const {
        double last = -1e9;
        for (const Probe& probe : probes_) {
            if (!probe.frame) continue;
            if (probe.frame->minY() < last) return false;
            last = probe.frame->minY();
        }
        return true;
    }

    void visitAll() {
        const auto count = static_cast<std::size_t>(std::clamp(high_ - low_, 0, kMostVisited));
        found_.assign(count, std::nullopt);
        awaited_ = 1;
        for (std::size_t k = 0; k < count; ++k) {
            ++awaited_;
            child_(low_ + static_cast<std::int32_t>(k),
                   [self = shared_from_this(), k](std::optional<Reference> reference) {
                       self->found_[k] = std::move(reference);
                       self->visited();
                   });
        }
        visited();
    }

    void visited() {
        if (--awaited_ > 0) return;
        std::vector<Reference> references;
        for (auto& each : found_)
            if (each) references.push_back(std::move(*each));
        visit_(std::move(references));
    }

    std::int32_t low_ = 0, high_;
    AxRect clip_;
    Child child_;
    Frame frame_;
    Visit visit_;
    std::vector<Probe> probes_;
    std::vector<std::optional<Reference>> found_;
    int awaited_ = 0;
};

void LongList::fetch(TreeFetch& fetch, int index) {
    const auto i = static_cast<std::size_t>(index);
    const AxRect clip = fetch.clipBelow(index);
    const bool web = fetch.tree_[i].inWebContent || fetch.tree_[i].role == Role::documentWeb;
    const auto child = [&fetch, i](std::int32_t at, std::function<void(std::optional<Reference>)> answer) {
        Call call = fetch.callTo(fetch.tree_[i].reference, "org.a11y.atspi.Accessible", "GetChildAtIndex");
        call.signature = "i";
        call.integers[0] = at;
        fetch.pipeline_.send(std::move(call),
                             [answer = std::move(answer)](sd_bus_message* r) { answer(readReference(r)); });
    };
    const auto frame = [&fetch, web](const Reference& reference, std::function<void(std::optional<AxRect>)> answer) {
        Call call = fetch.callTo(reference, "org.a11y.atspi.Component", "GetExtents");
        call.signature = "u";
        call.integers[0] = static_cast<std::int32_t>(coordinatesOf(fetch.application_.toolkit));
        fetch.pipeline_.send(std::move(call), [&fetch, web, answer = std::move(answer)](sd_bus_message* r) {
            const std::optional<RawBox> box = readBox(r);
            answer(box && isSane(*box) ? std::optional(fetch.placement_.toRoot(*box, web)) : std::nullopt);
        });
    };
    const auto visit = [&fetch, index, clip](const std::vector<Reference>& references) {
        fetch.visitChildren(index, references, clip, TreeFetch::Kind::ordinary);
    };
    std::make_shared<LongListSearch>(fetch.tree_[i].childCount, clip, child, frame, visit)->narrow();
}

}  // namespace tarvix::atspi
