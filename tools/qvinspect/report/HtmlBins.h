// Bins for plots: any number of items in a bounded number of bins of equal width.
#ifndef QVINSPECT_HTMLBINS_H
#define QVINSPECT_HTMLBINS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace qvinspect {

// Bin has merge(const Bin& next). A bin holds one item at first; if more than mostBins would be needed, pairs
// of bins are merged.
template <typename Bin>
class AdaptiveBins {
public:
    explicit AdaptiveBins(size_t mostBins) : mostBins_(mostBins) {}

    // The bin of the item. It may still be empty, as may those before it.
    Bin& binOf(uint64_t item) {
        while (item / width_ >= mostBins_) {
            mergePairs();
        }
        const auto index = static_cast<size_t>(item / width_);
        if (index >= bins_.size()) {
            bins_.resize(index + 1);
        }
        return bins_[index];
    }

    void mergePairs() {
        for (size_t i = 0; i < bins_.size(); ++i) {
            if (i % 2 != 0) {
                bins_[i / 2].merge(bins_[i]);
            } else if (i > 0) {
                bins_[i / 2] = bins_[i];
            }
        }
        bins_.resize((bins_.size() + 1) / 2);
        width_ *= 2;
    }

    uint64_t width() const { return width_; }  // items
    const std::vector<Bin>& bins() const { return bins_; }

private:
    size_t mostBins_;
    uint64_t width_ = 1;
    std::vector<Bin> bins_;
};

// maxRGB of HDR Vivid, 12-bit PQ codes.
struct VividBin {
    uint64_t count = 0;
    uint32_t minimum = 0;
    uint32_t maximum = 0;
    uint64_t averageSum = 0;

    void merge(const VividBin& next);
};

struct AccessUnitBin {
    uint64_t count = 0;
    uint64_t bytes = 0;
    uint64_t largest = 0;  // bytes of the largest access unit
    uint64_t keys = 0;
    uint64_t errors = 0;
    std::optional<double> time;  // of the first access unit, seconds
    VividBin vivid;
    std::vector<uint64_t> messages;  // SEI messages by lane; lanes after the last have none

    void merge(const AccessUnitBin& next);
    uint64_t messagesIn(size_t lane) const { return lane < messages.size() ? messages[lane] : 0; }
    void addMessage(size_t lane);
};

struct TimeBin {
    uint64_t count = 0;
    uint64_t bytes = 0;

    void merge(const TimeBin& next);
};

}  // namespace qvinspect

#endif
