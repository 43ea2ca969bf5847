// Scaling factors of H.264 as a decoder uses them.
#include "bitstream/avc/ScalingFactors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "StructureChecks.h"

namespace {

using namespace qv::avc;
using testing::Each;
using testing::ElementsAreArray;

// The default lists of Tables 7-3 and 7-4 as matrices.
constexpr uint8_t kIntra4x4[16] = {6, 13, 20, 28, 13, 20, 28, 32, 20, 28, 32, 37, 28, 32, 37, 42};
constexpr uint8_t kInter4x4[16] = {10, 14, 20, 24, 14, 20, 24, 27, 20, 24, 27, 30, 24, 27, 30, 34};
constexpr uint8_t kIntra8x8[64] = {6,  10, 13, 16, 18, 23, 25, 27, 10, 11, 16, 18, 23, 25, 27, 29,
                                   13, 16, 18, 23, 25, 27, 29, 31, 16, 18, 23, 25, 27, 29, 31, 33,
                                   18, 23, 25, 27, 29, 31, 33, 36, 23, 25, 27, 29, 31, 33, 36, 38,
                                   25, 27, 29, 31, 33, 36, 38, 40, 27, 29, 31, 33, 36, 38, 40, 42};
constexpr uint8_t kInter8x8[64] = {9,  13, 15, 17, 19, 21, 22, 24, 13, 13, 17, 19, 21, 22, 24, 25,
                                   15, 17, 19, 21, 22, 24, 25, 27, 17, 19, 21, 22, 24, 25, 27, 28,
                                   19, 21, 22, 24, 25, 27, 28, 30, 21, 22, 24, 25, 27, 28, 30, 32,
                                   22, 24, 25, 27, 28, 30, 32, 33, 24, 25, 27, 28, 30, 32, 33, 35};

// What a list comes to: a number that all its factors have, or the default list.
constexpr int kDefault = 0;

void expectList(const ScalingFactors& factors, uint32_t i, int expected) {
    SCOPED_TRACE("list " + std::to_string(i));
    if (i < 6) {
        if (expected == kDefault) {
            EXPECT_THAT(factors.list4x4[i], ElementsAreArray(i < 3 ? kIntra4x4 : kInter4x4));
        } else {
            EXPECT_THAT(factors.list4x4[i], Each(expected));
        }
    } else if (expected == kDefault) {
        EXPECT_THAT(factors.list8x8[i - 6], ElementsAreArray(i % 2 == 0 ? kIntra8x8 : kInter8x8));
    } else {
        EXPECT_THAT(factors.list8x8[i - 6], Each(expected));
    }
}

void expectLists(const ScalingFactors& factors, const std::vector<int>& expected) {
    for (uint32_t i = 0; i < expected.size(); ++i) {
        expectList(factors, i, expected[i]);
    }
}

// scaling_list() of one number, or with useDefaultScalingMatrixFlag.
void send(ScalingMatrix& matrix, uint32_t i, int value) {
    matrix.scaling_list_present_flag[i] = true;
    ScalingList& list = matrix.scaling_list[i];
    list.deltaCount = value == kDefault ? 1 : 2;
    list.delta_scale[0] = static_cast<int16_t>(value - 8);
    list.delta_scale[1] = static_cast<int16_t>(-value);
}

constexpr int kNotSent = -1;

// Lists that are sent as numbers of their own, as the default list, or not at all.
template <class ParameterSet>
void send(ParameterSet& set, const std::vector<int>& lists) {
    for (uint32_t i = 0; i < lists.size(); ++i) {
        if (lists[i] != kNotSent) {
            send(set.scaling_matrix, i, lists[i]);
        }
    }
}

SpsData setOf(uint32_t chroma_format_idc, const std::vector<int>& lists) {
    SpsData sps = {};
    sps.chroma_format_idc = chroma_format_idc;
    sps.seq_scaling_matrix_present_flag = !lists.empty();
    send(sps, lists);
    return sps;
}

Pps pictureSetOf(bool transform_8x8_mode_flag, const std::vector<int>& lists) {
    Pps pps = {};
    pps.transform_8x8_mode_flag = transform_8x8_mode_flag;
    pps.pic_scaling_matrix_present_flag = !lists.empty();
    send(pps, lists);
    return pps;
}

TEST(AvcScalingFactors, withoutListsTheyAreFlat) {
    const ScalingFactors factors = scalingFactorsOf(setOf(1, {}));
    expectLists(factors, std::vector<int>(12, 16));
    expectLists(scalingFactorsOf(setOf(1, {}), pictureSetOf(true, {})), std::vector<int>(12, 16));
}

TEST(AvcScalingFactors, defaultLists) {
    expectLists(scalingFactorsOf(setOf(3, std::vector<int>(12, kDefault))), std::vector<int>(12, kDefault));
}

TEST(AvcScalingFactors, fallBackRuleA) {
    const std::vector<int> none(12, kNotSent);
    expectLists(scalingFactorsOf(setOf(3, none)), std::vector<int>(12, kDefault));

    // Each list falls back to the one before it of its kind: 4x4 by one, 8x8 by two.
    expectLists(scalingFactorsOf(setOf(3, {20, -1, 22, -1, 24, -1, 26, 27, -1, 29, 30, -1})),
                {20, 20, 22, kDefault, 24, 24, 26, 27, 26, 29, 30, 29});
    expectLists(scalingFactorsOf(setOf(3, {-1, 21, -1, 23, -1, 25, -1, 27, 28, -1, -1, -1})),
                {kDefault, 21, 21, 23, 23, 25, kDefault, 27, 28, 27, 28, 27});
    // A default list that is sent is fallen back to as well.
    expectLists(
        scalingFactorsOf(setOf(3, {20, 0, -1, 30, 0, -1, 40, 41, 0, 0, -1, -1})),
        {20, kDefault, kDefault, 30, kDefault, kDefault, 40, 41, kDefault, kDefault, kDefault, kDefault});
}

TEST(AvcScalingFactors, outside444TheChroma8x8ListsFollowTheLumaOnes) {
    for (uint32_t chroma_format_idc = 0; chroma_format_idc <= 2; ++chroma_format_idc) {
        // Flags and lists past the eighth are not set by a read and must not be looked at.
        expectLists(
            scalingFactorsOf(setOf(chroma_format_idc, {20, 21, 22, 23, 24, 25, 26, 27, 90, 91, 92, 93})),
            {20, 21, 22, 23, 24, 25, 26, 27, 26, 27, 26, 27});
    }
}

TEST(AvcScalingFactors, aPictureSetWithoutListsTakesTheSequenceOnes) {
    const SpsData sps = setOf(1, {20, 21, 22, 23, 24, 25, 26, 27});
    expectLists(scalingFactorsOf(sps, pictureSetOf(true, {})), {20, 21, 22, 23, 24, 25, 26, 27});
}

TEST(AvcScalingFactors, fallBackRuleBTakesTheSequenceLists) {
    const SpsData sps = setOf(3, {20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31});
    // The first list of a kind is the sequence parameter set's, the others are the ones before them.
    expectLists(scalingFactorsOf(sps, pictureSetOf(true, std::vector<int>(12, kNotSent))),
                {20, 20, 20, 23, 23, 23, 26, 27, 26, 27, 26, 27});
    expectLists(scalingFactorsOf(sps, pictureSetOf(true, {-1, 51, -1, -1, -1, 55, -1, 57, 58, -1, -1, 61})),
                {20, 51, 51, 23, 23, 55, 26, 57, 58, 57, 58, 61});
    // useDefaultScalingMatrixFlag is the default list, not the sequence parameter set's.
    expectLists(scalingFactorsOf(sps, pictureSetOf(true, {0, -1, 52, 0, -1, 55, 0, 0, -1, -1, 60, -1})),
                {kDefault, kDefault, 52, kDefault, kDefault, 55, kDefault, kDefault, kDefault, kDefault, 60,
                 kDefault});
}

TEST(AvcScalingFactors, withoutSequenceListsAPictureSetFallsBackByRuleA) {
    expectLists(scalingFactorsOf(setOf(3, {}), pictureSetOf(true, {-1, 51, -1, -1, -1, 55, -1, 57})),
                {kDefault, 51, 51, kDefault, kDefault, 55, kDefault, 57});
}

TEST(AvcScalingFactors, withoutThe8x8TransformAPictureSetSendsSixLists) {
    const SpsData sps = setOf(1, {20, 21, 22, 23, 24, 25, 26, 27});
    // Those past the sixth are not set by a read and must not be looked at.
    expectLists(scalingFactorsOf(sps, pictureSetOf(false, {50, 51, 52, 53, 54, 55, 96, 97})),
                {50, 51, 52, 53, 54, 55, 26, 27});
}

// Factors 1, 2, 3 ... in the order of the list: the zig-zag scan of 8.5.6.
TEST(AvcScalingFactors, listsAreInZigZagOrder) {
    SpsData sps = setOf(1, {16, 16, 16, 16, 16, 16, 16, 16});
    for (const uint32_t i : {2U, 7U}) {
        ScalingList& list = sps.scaling_matrix.scaling_list[i];
        list.deltaCount = i < 6 ? 16 : 64;
        for (uint32_t j = 0; j < list.deltaCount; ++j) {
            list.delta_scale[j] = j == 0 ? -7 : 1;
        }
    }
    const ScalingFactors factors = scalingFactorsOf(sps);
    EXPECT_THAT(factors.list4x4[2],
                ElementsAreArray({1, 2, 6, 7, 3, 5, 8, 13, 4, 9, 12, 14, 10, 11, 15, 16}));
    EXPECT_THAT(factors.list8x8[1],
                ElementsAreArray({1,  2,  6,  7,  15, 16, 28, 29, 3,  5,  8,  14, 17, 27, 30, 43,
                                  4,  9,  13, 18, 26, 31, 42, 44, 10, 12, 19, 25, 32, 41, 45, 54,
                                  11, 20, 24, 33, 40, 46, 53, 55, 21, 23, 34, 39, 47, 52, 56, 61,
                                  22, 35, 38, 48, 51, 57, 60, 62, 36, 37, 49, 50, 58, 59, 63, 64}));
}

TEST(AvcScalingFactors, scalesWrapAt256AndStayWhereTheListEnds) {
    SpsData sps = setOf(1, {16, 16, 16, 16, 16, 16, 16, 16});
    ScalingList& list = sps.scaling_matrix.scaling_list[0];
    const int16_t deltas[] = {127, 120, 8, -9, 127, -121};
    list.deltaCount = 6;
    for (uint32_t j = 0; j < 6; ++j) {
        list.delta_scale[j] = deltas[j];
    }
    // 8 + 127 = 135, 255, 263 - 256 = 7, -2 + 256 = 254, 381 - 256 = 125, 4, and no list ends here by itself.
    EXPECT_THAT(scalingFactorsOf(sps).list4x4[0],
                ElementsAreArray({135, 255, 4, 4, 7, 125, 4, 4, 254, 4, 4, 4, 4, 4, 4, 4}));
}

// --- An encoder's lists ---

// Intra Y and Cr, inter Cb, inter Y 8x8 are sent, inter Y and intra Y 8x8 as default lists.
TEST(AvcScalingFactors, listsOfAnEncoder) {
    const std::vector<uint8_t> unit = {
        0x67, 0x64, 0x00, 0x28, 0xAD, 0x84, 0x85, 0x08, 0x38, 0x91, 0xC3, 0x4C, 0x3C, 0x50, 0x81, 0x22, 0x4A,
        0x20, 0x52, 0x22, 0x20, 0x50, 0xE1, 0x21, 0x81, 0xE2, 0x07, 0x85, 0x04, 0x8E, 0x20, 0x86, 0x89, 0x04,
        0x83, 0xCC, 0x38, 0x48, 0x40, 0x78, 0x81, 0x07, 0x1C, 0x25, 0x08, 0x39, 0x09, 0x0C, 0x21, 0xCA, 0x51,
        0x04, 0x20, 0x4C, 0x71, 0x4A, 0x52, 0x8A, 0x21, 0x02, 0x64, 0x20, 0x90, 0x81, 0x4A, 0x52, 0x85, 0x06,
        0xA2, 0x10, 0x26, 0x42, 0x18, 0x78, 0x48, 0xA5, 0x29, 0x4A, 0x38, 0x81, 0x32, 0x10, 0x83, 0x42, 0x45,
        0x29, 0x47, 0x04, 0xC8, 0x41, 0x85, 0x28, 0x92, 0x0A, 0xE6, 0x0B, 0x13, 0x90};
    const auto read = readSps(qv_test::bytesOf(unit));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    const ScalingFactors factors = scalingFactorsOf(read.record.data);
    const uint8_t intraY[16] = {17, 22, 26, 20, 26, 19, 23, 17, 23, 16, 21, 15, 21, 25, 19, 24};
    const uint8_t interCb[16] = {4, 22, 21, 29, 15, 25, 22, 30, 18, 26, 34, 31, 30, 27, 35, 32};
    const uint8_t inter8x8[64] = {17, 23, 18, 22, 16, 21, 26, 20, 25, 20, 24, 18, 23, 16, 21, 15,
                                  22, 26, 20, 25, 18, 23, 17, 22, 17, 22, 16, 20, 25, 19, 24, 18,
                                  24, 18, 22, 16, 21, 15, 20, 25, 20, 24, 18, 23, 17, 22, 16, 22,
                                  16, 20, 25, 19, 24, 18, 24, 18, 23, 16, 21, 15, 20, 26, 20, 25};
    EXPECT_THAT(factors.list4x4[0], ElementsAreArray(intraY));
    EXPECT_THAT(factors.list4x4[1], ElementsAreArray(intraY)) << "falls back";
    EXPECT_THAT(factors.list4x4[3], ElementsAreArray(kInter4x4));
    EXPECT_THAT(factors.list4x4[4], ElementsAreArray(interCb));
    EXPECT_THAT(factors.list4x4[5], ElementsAreArray(interCb)) << "falls back";
    EXPECT_THAT(factors.list8x8[0], ElementsAreArray(kIntra8x8));
    EXPECT_THAT(factors.list8x8[1], ElementsAreArray(inter8x8));
}

}  // namespace
