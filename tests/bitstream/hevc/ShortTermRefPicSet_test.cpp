// Short-term reference picture sets of H.265.
#include "bitstream/hevc/ShortTermRefPicSet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "../support/StructureChecks.h"
#include "Units.h"
#include "bitstream/hevc/ShortTermRefPicSetSyntax.h"
#include "bitstream/hevc/Sps.h"
#include "bitstream/syntax/Tracer.h"

namespace {

using namespace qv_test;
using qv::hevc::ShortTermRefPicSet;
using qv::hevc::Sps;
using testing::ElementsAre;

// A picture of a set: its distance, and whether the current picture uses it.
struct Picture {
    int32_t deltaPoc;
    bool used;
};

bool operator==(const Picture& a, const Picture& b) {
    return a.deltaPoc == b.deltaPoc && a.used == b.used;
}

void PrintTo(const Picture& picture, std::ostream* out) {
    *out << picture.deltaPoc << (picture.used ? " used" : "");
}

// The pictures before the current one, nearest first, then those after it, nearest first.
std::vector<Picture> picturesOf(const ShortTermRefPicSet& set) {
    std::vector<Picture> pictures;
    for (uint32_t i = 0; i < set.NumNegativePics; ++i) {
        pictures.push_back({set.DeltaPocS0[i], set.UsedByCurrPicS0[i]});
    }
    for (uint32_t i = 0; i < set.NumPositivePics; ++i) {
        pictures.push_back({set.DeltaPocS1[i], set.UsedByCurrPicS1[i]});
    }
    return pictures;
}

// What inter prediction comes to: each picture of the reference set, and the picture that the reference set
// belongs to, at their distances from the current picture, as far as use_delta_flag keeps them; nearest first
// on both sides. Flags are in the order of the reference set, with that of the picture itself at the end.
std::vector<Picture> predicted(const std::vector<Picture>& reference, int32_t deltaRps,
                               const std::vector<bool>& used, const std::vector<bool>& kept) {
    std::vector<Picture> before;
    std::vector<Picture> after;
    for (size_t j = 0; j <= reference.size(); ++j) {
        const int32_t distance = deltaRps + (j < reference.size() ? reference[j].deltaPoc : 0);
        if (kept[j] && distance != 0) {
            (distance < 0 ? before : after).push_back({distance, used[j]});
        }
    }
    std::sort(before.begin(), before.end(),
              [](const Picture& a, const Picture& b) { return a.deltaPoc > b.deltaPoc; });
    std::sort(after.begin(), after.end(),
              [](const Picture& a, const Picture& b) { return a.deltaPoc < b.deltaPoc; });
    before.insert(before.end(), after.begin(), after.end());
    return before;
}

// An SPS around reference picture sets.
void spsBefore(BitWriter& bits) {
    bits.u(4, "sps_video_parameter_set_id", 0).u(3, "sps_max_sub_layers_minus1", 0).u(1, "nesting", 1);
    mainProfileTierLevel(bits);
    bits.ue("sps_seq_parameter_set_id", 0).ue("chroma_format_idc", 1).ue("width", 64).ue("height", 64);
    bits.u(1, "conformance_window_flag", 0).ue("luma", 0).ue("chroma", 0).ue("log2_max_poc", 4);
    bits.u(1, "sub_layer_ordering_info", 1).ue("", 15).ue("", 0).ue("", 0);
    bits.ue("block sizes", 0).ue("", 3).ue("", 0).ue("", 3).ue("", 0).ue("", 0);
    bits.bits("scaling lists, amp, sao, pcm", "0000");
}

std::vector<uint8_t> spsWith(BitWriter bits) {
    bits.bits("long term, temporal mvp, smoothing, vui, extension", "00000");
    return hevcUnit(33, bits);
}

// Set 0 has -1, -3 and +2; set 1 is the same picture order one later with the picture itself.
TEST(HevcShortTermRefPicSet, predictionByHand) {
    BitWriter bits;
    spsBefore(bits);
    bits.ue("num_short_term_ref_pic_sets", 3).ue("num_negative_pics", 2).ue("num_positive_pics", 1);
    bits.ue("delta_poc_s0_minus1[0]", 0).u(1, "used", 1).ue("delta_poc_s0_minus1[1]", 1).u(1, "used", 0);
    bits.ue("delta_poc_s1_minus1[0]", 1).u(1, "used", 1);
    // deltaRps -1: -2 used, -4 dropped, +1 kept but not used, -1 used.
    bits.u(1, "inter_ref_pic_set_prediction_flag", 1).u(1, "delta_rps_sign", 1).ue("abs_delta_rps_minus1", 0);
    bits.bits("used_by_curr_pic_flag and use_delta_flag", "1 00 01 1");
    // deltaRps +2 on { -1, -2, +1 }: +1, 0 (dropped), +3, +2.
    bits.u(1, "inter_ref_pic_set_prediction_flag", 1).u(1, "delta_rps_sign", 0).ue("abs_delta_rps_minus1", 1);
    bits.bits("used_by_curr_pic_flag", "1 1 1 1");
    const Sps sps = qv::hevc::readSps(bytesOf(spsWith(bits))).record;
    EXPECT_THAT(picturesOf(sps.st_ref_pic_set[0]),
                ElementsAre(Picture{-1, true}, Picture{-3, false}, Picture{2, true}));
    EXPECT_THAT(picturesOf(sps.st_ref_pic_set[1]),
                ElementsAre(Picture{-1, true}, Picture{-2, true}, Picture{1, false}));
    EXPECT_THAT(picturesOf(sps.st_ref_pic_set[2]),
                ElementsAre(Picture{1, true}, Picture{2, true}, Picture{3, true}));
    EXPECT_EQ(numDeltaPocs(sps.st_ref_pic_set[2]), 3U);
    EXPECT_TRUE(sps.st_ref_pic_set[1].use_delta_flag[0]);
    EXPECT_FALSE(sps.st_ref_pic_set[1].use_delta_flag[1]);
    EXPECT_TRUE(sps.st_ref_pic_set[1].use_delta_flag[2]);
    EXPECT_EQ(sps.st_ref_pic_set[2].num_negative_pics, 0U);
}

// 64 sets, each but the first predicted from the one before, against the definition.
TEST(HevcShortTermRefPicSet, predictionOf64Sets) {
    Random random(6);
    for (int round = 0; round < 50; ++round) {
        BitWriter bits;
        spsBefore(bits);
        bits.ue("num_short_term_ref_pic_sets", 64);
        std::vector<std::vector<Picture>> sets(1);
        bits.ue("num_negative_pics", 3).ue("num_positive_pics", 2);
        int32_t poc = 0;
        for (uint32_t i = 0; i < 5; ++i) {
            const auto step = static_cast<uint32_t>(random() % 5);
            poc = i == 3 ? 0 : poc;
            poc += (i < 3 ? -1 : 1) * static_cast<int32_t>(step + 1);
            sets[0].push_back({poc, i % 2 == 0});
            bits.ue("delta_poc_minus1", step).u(1, "used_by_curr_pic", i % 2 == 0 ? 1 : 0);
        }
        for (uint32_t i = 1; i < 64; ++i) {
            const std::vector<Picture>& reference = sets.back();
            const auto magnitude = static_cast<int32_t>(random() % 8 + 1);
            const bool sign = random() % 2 == 0;
            bits.u(1, "inter_ref_pic_set_prediction_flag", 1).u(1, "delta_rps_sign", sign ? 1 : 0);
            bits.ue("abs_delta_rps_minus1", static_cast<uint32_t>(magnitude - 1));
            std::vector<bool> used;
            std::vector<bool> kept;
            for (size_t j = 0; j <= reference.size(); ++j) {
                used.push_back(random() % 2 == 0);
                // A set that is nearly full grows no more.
                kept.push_back(used.back() || (reference.size() < 14 && random() % 4 != 0));
                bits.u(1, "used_by_curr_pic_flag", used.back() ? 1 : 0);
                if (!used.back()) {
                    bits.u(1, "use_delta_flag", kept.back() ? 1 : 0);
                }
            }
            sets.push_back(predicted(reference, sign ? -magnitude : magnitude, used, kept));
        }
        const std::vector<uint8_t> unit = spsWith(bits);
        const auto read = std::make_unique<qv::Read<Sps>>(qv::hevc::readSps(bytesOf(unit)));
        ASSERT_TRUE(read->ok()) << qv::textOf(read->fault);
        for (uint32_t i = 0; i < 64; ++i) {
            ASSERT_EQ(picturesOf(read->record.st_ref_pic_set[i]), sets[i]) << i;
        }
        std::vector<uint8_t> written;
        ASSERT_TRUE(writeSps(read->record, written).ok());
        ASSERT_EQ(written, unit);
    }
}

// Prediction can add a picture to a full set.
TEST(HevcShortTermRefPicSet, moreThan16Pictures) {
    BitWriter bits;
    spsBefore(bits);
    bits.ue("num_short_term_ref_pic_sets", 2).ue("num_negative_pics", 16).ue("num_positive_pics", 0);
    for (uint32_t i = 0; i < 16; ++i) {
        bits.ue("delta_poc_s0_minus1", 0).u(1, "used_by_curr_pic_s0_flag", 1);
    }
    bits.u(1, "inter_ref_pic_set_prediction_flag", 1).u(1, "delta_rps_sign", 1).ue("abs_delta_rps_minus1", 0);
    BitWriter all = bits;
    all.u(17, "used_by_curr_pic_flag", 0x1FFFF);
    const qv::Read<Sps> read = qv::hevc::readSps(bytesOf(spsWith(all)));
    EXPECT_EQ(read.fault.kind, qv::FaultKind::TooManyEntries);
    EXPECT_STREQ(read.fault.element.name, "NumDeltaPocs");
    EXPECT_STREQ(read.fault.structure->name, "st_ref_pic_set()");
    EXPECT_EQ(read.record.st_ref_pic_set[1].NumNegativePics, 16U);
    EXPECT_EQ(read.record.st_ref_pic_set[1].NumPositivePics, 0U);

    BitWriter one = bits;
    one.bits("used_by_curr_pic_flag, use_delta_flag", "00").u(16, "used_by_curr_pic_flag", 0xFFFF);
    EXPECT_TRUE(qv::hevc::readSps(bytesOf(spsWith(one))).ok());
}

// The same with pictures on both sides.
TEST(HevcShortTermRefPicSet, moreThan16PicturesOnBothSides) {
    ShortTermRefPicSet reference = {};
    for (uint32_t i = 0; i < 8; ++i) {
        reference.DeltaPocS0[i] = -2 - 2 * static_cast<int32_t>(i);
        reference.DeltaPocS1[i] = 2 + 2 * static_cast<int32_t>(i);
    }
    reference.NumNegativePics = 8;
    reference.NumPositivePics = 8;
    ShortTermRefPicSet set = {};
    for (bool& use : set.use_delta_flag) {
        use = true;
    }
    EXPECT_FALSE(qv::hevc::predictShortTermRefPicSet(reference, set));
    EXPECT_EQ(numDeltaPocs(set), 16U);
    set.use_delta_flag[3] = false;
    EXPECT_TRUE(qv::hevc::predictShortTermRefPicSet(reference, set));
    EXPECT_EQ(numDeltaPocs(set), 16U);
}

TEST(HevcShortTermRefPicSet, greatestDistances) {
    BitWriter bits;
    spsBefore(bits);
    bits.ue("num_short_term_ref_pic_sets", 2).ue("num_negative_pics", 8).ue("num_positive_pics", 8);
    for (uint32_t i = 0; i < 16; ++i) {
        bits.ue("delta_poc_minus1", 32767).u(1, "used", 0);
    }
    bits.u(1, "inter_ref_pic_set_prediction_flag", 1).u(1, "delta_rps_sign", 1);
    bits.ue("abs_delta_rps_minus1", 32767)
        .bits("of set 0", "01 01 01 01 01 01 01 01 01 01 01 01 01 01 01 01");
    bits.bits("itself", "00");
    const qv::Read<Sps> read = qv::hevc::readSps(bytesOf(spsWith(bits)));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.st_ref_pic_set[0].DeltaPocS0[7], -8 * 32768);
    EXPECT_EQ(read.record.st_ref_pic_set[0].DeltaPocS1[7], 8 * 32768);
    EXPECT_EQ(read.record.st_ref_pic_set[1].DeltaPocS0[7], -9 * 32768);
    EXPECT_EQ(read.record.st_ref_pic_set[1].DeltaPocS1[6], 7 * 32768);
}

// The set of a slice segment header names the set that it is predicted from.
TEST(HevcShortTermRefPicSet, setOfASlice) {
    BitWriter bits;
    spsBefore(bits);
    bits.ue("num_short_term_ref_pic_sets", 2);
    bits.ue("num_negative_pics", 1).ue("num_positive_pics", 0).ue("delta_poc_s0_minus1", 4).u(1, "used", 1);
    bits.u(1, "inter_ref_pic_set_prediction_flag", 0).ue("num_negative_pics", 0).ue("num_positive_pics", 0);
    const Sps sps = qv::hevc::readSps(bytesOf(spsWith(bits))).record;

    BitWriter slice;
    slice.u(1, "inter_ref_pic_set_prediction_flag", 1).ue("delta_idx_minus1", 1).u(1, "delta_rps_sign", 1);
    slice.ue("abs_delta_rps_minus1", 0).bits("used_by_curr_pic_flag", "11");
    const std::vector<uint8_t> unit = hevcUnit(1, slice);
    RecordingVisitor visitor;
    qv::Tracer tracer(bytesOf(unit), visitor);
    tracer.header(2);
    uint32_t header = 0;
    tracer.u(16, "header", header);
    tracer.rbsp();
    ShortTermRefPicSet set = {};
    st_ref_pic_set(tracer, sps.st_ref_pic_set, 2, 2, set);
    EXPECT_FALSE(tracer.failed());
    EXPECT_FALSE(tracer.more_rbsp_data());
    EXPECT_EQ(textOf(visitor.elements.at(2)), "17 3 delta_idx_minus1 1");
    EXPECT_EQ(set.delta_idx_minus1, 1U);
    EXPECT_THAT(picturesOf(set), ElementsAre(Picture{-1, true}, Picture{-6, true}));
}

}  // namespace
