// The pictures of a short-term reference picture set (H.265 7.4.8).
#include "bitstream/hevc/ShortTermRefPicSet.h"

#include "bitstream/hevc/ShortTermRefPicSetSyntax.h"

namespace qv::hevc {

namespace {

constexpr uint32_t kMostPics = ShortTermRefPicSet::kMostPics;

// The candidates for one half of a predicted set: those that use_delta_flag keeps and that are on the right
// side of the current picture.
class Half {
public:
    Half(const ShortTermRefPicSet& set, bool negative, int32_t* deltaPocs, bool* used)
        : set_(set), negative_(negative), deltaPocs_(deltaPocs), used_(used) {}

    void offer(int32_t dPoc, uint32_t j) {
        if (!set_.use_delta_flag[j] || (negative_ ? dPoc >= 0 : dPoc <= 0)) {
            return;
        }
        if (count_ < kMostPics) {
            deltaPocs_[count_] = dPoc;
            used_[count_] = set_.used_by_curr_pic_flag[j];
        }
        ++count_;
    }

    uint32_t count() const { return count_; }

private:
    const ShortTermRefPicSet& set_;
    bool negative_;
    int32_t* deltaPocs_;
    bool* used_;
    uint32_t count_ = 0;
};

}  // namespace

bool predictShortTermRefPicSet(const ShortTermRefPicSet& reference, ShortTermRefPicSet& set) noexcept {
    const auto magnitude = static_cast<int32_t>(set.abs_delta_rps_minus1 + 1);
    const int32_t deltaRps = set.delta_rps_sign ? -magnitude : magnitude;
    const uint32_t negative = reference.NumNegativePics;
    const uint32_t positive = reference.NumPositivePics;

    Half s0(set, true, set.DeltaPocS0, set.UsedByCurrPicS0);
    for (uint32_t j = positive; j-- > 0;) {
        s0.offer(reference.DeltaPocS1[j] + deltaRps, negative + j);
    }
    s0.offer(deltaRps, negative + positive);
    for (uint32_t j = 0; j < negative; ++j) {
        s0.offer(reference.DeltaPocS0[j] + deltaRps, j);
    }

    Half s1(set, false, set.DeltaPocS1, set.UsedByCurrPicS1);
    for (uint32_t j = negative; j-- > 0;) {
        s1.offer(reference.DeltaPocS0[j] + deltaRps, j);
    }
    s1.offer(deltaRps, negative + positive);
    for (uint32_t j = 0; j < positive; ++j) {
        s1.offer(reference.DeltaPocS1[j] + deltaRps, negative + j);
    }

    const bool fits = s0.count() + s1.count() <= kMostPics;
    set.NumNegativePics = s0.count() <= kMostPics ? s0.count() : kMostPics;
    set.NumPositivePics = fits ? s1.count() : kMostPics - set.NumNegativePics;
    return fits;
}

void accumulateShortTermRefPicSet(ShortTermRefPicSet& set) noexcept {
    int32_t dPoc = 0;
    for (uint32_t i = 0; i < set.num_negative_pics; ++i) {
        dPoc -= set.delta_poc_s0_minus1[i] + 1;
        set.DeltaPocS0[i] = dPoc;
        set.UsedByCurrPicS0[i] = set.used_by_curr_pic_s0_flag[i];
    }
    dPoc = 0;
    for (uint32_t i = 0; i < set.num_positive_pics; ++i) {
        dPoc += set.delta_poc_s1_minus1[i] + 1;
        set.DeltaPocS1[i] = dPoc;
        set.UsedByCurrPicS1[i] = set.used_by_curr_pic_s1_flag[i];
    }
    set.NumNegativePics = set.num_negative_pics;
    set.NumPositivePics = set.num_positive_pics;
}

}  // namespace qv::hevc
