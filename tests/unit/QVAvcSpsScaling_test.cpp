// The scaling lists of the H.264 sequence parameter set (7.3.2.1.1.1), and the fall-back rules and default
// lists of 7.4.2.1.1.1.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "AvcSpsRecord.h"
#include "AvcSpsSyntax.h"
#include "QVAvcSps.h"
#include "SyntaxElements.h"

namespace qv_test {
namespace {

using Weights = std::vector<uint8_t>;

// Table 7-3, idx 0..15.
const Weights kDefault4x4Intra = {6, 13, 13, 20, 20, 20, 28, 28, 28, 28, 32, 32, 32, 37, 37, 42};
const Weights kDefault4x4Inter = {10, 14, 14, 20, 20, 20, 24, 24, 24, 24, 27, 27, 27, 30, 30, 34};

// Table 7-4, idx 0..63.
const Weights kDefault8x8Intra = {6,  10, 10, 13, 11, 13, 16, 16, 16, 16, 18, 18, 18, 18, 18, 23,   // 0..15
                                  23, 23, 23, 23, 23, 25, 25, 25, 25, 25, 25, 25, 27, 27, 27, 27,   // 16..31
                                  27, 27, 27, 27, 29, 29, 29, 29, 29, 29, 29, 31, 31, 31, 31, 31,   // 32..47
                                  31, 33, 33, 33, 33, 33, 36, 36, 36, 36, 38, 38, 38, 40, 40, 42};  // 48..63
const Weights kDefault8x8Inter = {9,  13, 13, 15, 13, 15, 17, 17, 17, 17, 19, 19, 19, 19, 19, 21,   // 0..15
                                  21, 21, 21, 21, 21, 22, 22, 22, 22, 22, 22, 22, 24, 24, 24, 24,   // 16..31
                                  24, 24, 24, 24, 25, 25, 25, 25, 25, 25, 25, 27, 27, 27, 27, 27,   // 32..47
                                  27, 28, 28, 28, 28, 28, 30, 30, 30, 30, 32, 32, 32, 33, 33, 35};  // 48..63

// Returns the frame scan of 8.5.6 or 8.5.7 as raster indices: the anti-diagonals in order, odd ones downwards
// and even ones upwards.
std::vector<size_t> zigzag(size_t side) {
    std::vector<size_t> scan;
    for (size_t diagonal = 0; diagonal < 2 * side - 1; ++diagonal) {
        std::vector<size_t> places;
        for (size_t y = 0; y < side; ++y) {
            if (diagonal >= y && diagonal - y < side) {
                places.push_back(y * side + (diagonal - y));
            }
        }
        if (diagonal % 2 == 0) {
            std::reverse(places.begin(), places.end());
        }
        scan.insert(scan.end(), places.begin(), places.end());
    }
    return scan;
}

TEST(Zigzag, isTheFrameScan) {
    EXPECT_EQ(zigzag(4), (std::vector<size_t>{0, 1, 4, 8, 5, 2, 3, 6, 9, 12, 13, 10, 7, 11, 14, 15}));
    const std::vector<size_t> scan = zigzag(8);
    ASSERT_EQ(scan.size(), 64U);
    EXPECT_EQ(std::vector<size_t>(scan.begin(), scan.begin() + 10),
              (std::vector<size_t>{0, 1, 8, 16, 9, 2, 3, 10, 17, 24}));
    EXPECT_EQ(std::vector<size_t>(scan.end() - 2, scan.end()), (std::vector<size_t>{62, 63}));
}

// The twelve lists in bitstream order (Table 7-2), and their matrices in the record.
constexpr size_t kLists = 12;
constexpr size_t kFirst8x8 = 6;
constexpr size_t kMatrixIndex[kLists] = {0, 1, 2, 3, 4, 5, 0, 3, 1, 4, 2, 5};
constexpr bool kIsInter[kLists] = {false, false, false, true, true,  true,
                                   false, true,  false, true, false, true};

bool is8x8(size_t list) {
    return list >= kFirst8x8;
}

size_t entriesOf(size_t list) {
    return is8x8(list) ? 64 : 16;
}

const Weights& defaultOf(size_t list) {
    if (is8x8(list)) {
        return kIsInter[list] ? kDefault8x8Inter : kDefault8x8Intra;
    }
    return kIsInter[list] ? kDefault4x4Inter : kDefault4x4Intra;
}

// Stores a list, given in scan order, in its matrix of the record.
void store(QVAvcSps& record, size_t list, const Weights& inScanOrder) {
    const std::vector<size_t> scan = zigzag(is8x8(list) ? 8 : 4);
    ASSERT_EQ(inScanOrder.size(), scan.size());
    uint8_t* const matrix =
        is8x8(list) ? record.scaling_matrix8[kMatrixIndex[list]] : record.scaling_matrix4[kMatrixIndex[list]];
    for (size_t i = 0; i < scan.size(); ++i) {
        matrix[scan[i]] = inScanOrder[i];
    }
}

class QVAvcSpsScaling : public AvcSpsTest {
protected:
    // Returns a parameter set with lists. The values after them would change if a bit were lost or added.
    static AvcSpsSyntax syntaxWithLists(uint32_t chroma_format_idc) {
        AvcSpsSyntax s;
        s.profile_idc = 100;
        s.writesChromaSyntax = true;
        s.chroma_format_idc = chroma_format_idc;
        s.seq_scaling_matrix_present_flag = 1;
        s.log2_max_frame_num_minus4 = 5;
        s.max_num_ref_frames = 3;
        s.pic_width_in_mbs_minus1 = 19;
        s.pic_height_in_map_units_minus1 = 11;
        return s;
    }

    // Returns the record that syntaxWithLists() gives if every list is flat.
    static QVAvcSps recordOf(uint32_t chroma_format_idc) {
        QVAvcSps record = highAvcSpsAfter(AvcSpsStep::Vui);
        record.chroma_format_idc = static_cast<int32_t>(chroma_format_idc);
        if (chroma_format_idc == 3) {
            record.residual_color_transform_flag = 0;
        }
        record.log2_max_frame_num = 9;
        record.ref_frame_count = 3;
        record.mb_width = 20;
        record.mb_height = 12;
        record.width = 320;
        record.height = 192;
        return record;
    }

    static size_t listsOf(uint32_t chroma_format_idc) { return chroma_format_idc == 3 ? 12 : 8; }

    // Returns the record if no list is sent: every list is its default.
    static QVAvcSps recordWithDefaults(uint32_t chroma_format_idc) {
        QVAvcSps record = recordOf(chroma_format_idc);
        for (size_t list = 0; list < listsOf(chroma_format_idc); ++list) {
            store(record, list, defaultOf(list));
        }
        return record;
    }

    static ExpectedLine summary(uint32_t chroma_format_idc) {
        const char* const names[] = {"Gray", "420", "422", "444"};
        return avcSummary(std::string("sps:0 profile:100/10 poc:0 ref:3 20x12 FRM  crop:0/0/0/0  ") +
                          names[chroma_format_idc]);
    }

    void expectParsed(const AvcSpsSyntax& syntax, const QVAvcSps& record,
                      std::vector<ExpectedLine> lines = {}) {
        const BitWriter written = writeAvcSps(syntax);
        SCOPED_TRACE(written.map());
        ASSERT_TRUE(parse(written));
        lines.push_back(summary(syntax.chroma_format_idc));
        expectOutcome(record, lines);
        EXPECT_EQ(cursor(), endOf(written, "vui_parameters_present_flag"));
    }
};

ExpectedLine invalidDelta(int32_t delta) {
    return avcError("parseScalingList",
                    "parse_scaling_list, delta scale " + std::to_string(delta) + " is invalid\n");
}

TEST_F(QVAvcSpsScaling, withoutMatricesEveryListIsFlat) {
    for (uint32_t format = 0; format < 4; ++format) {
        AvcSpsSyntax s = syntaxWithLists(format);
        s.seq_scaling_matrix_present_flag = 0;
        expectParsed(s, recordOf(format));
    }
}

TEST_F(QVAvcSpsScaling, D33_theRecordDoesNotTellThatMatricesWereSent) {
    ASSERT_TRUE(parse(writeAvcSps(syntaxWithLists(1))));
    EXPECT_EQ(sps.scaling_matrix_present, 0);
}

TEST_F(QVAvcSpsScaling, listsThatAreNotSentFallBackToTheDefaults) {
    for (uint32_t format = 0; format < 4; ++format) {
        expectParsed(syntaxWithLists(format), recordWithDefaults(format));
    }
}

TEST_F(QVAvcSpsScaling, theDefaultsInRasterOrder) {
    ASSERT_TRUE(parse(writeAvcSps(syntaxWithLists(1))));
    // Rows of the matrices. Tables 7-3 and 7-4 are in scan order, along the anti-diagonals.
    EXPECT_EQ(Weights(sps.scaling_matrix4[0], sps.scaling_matrix4[0] + 8),
              (Weights{6, 13, 20, 28, 13, 20, 28, 32}));
    EXPECT_EQ(Weights(sps.scaling_matrix4[3] + 8, sps.scaling_matrix4[3] + 16),
              (Weights{20, 24, 27, 30, 24, 27, 30, 34}));
    EXPECT_EQ(Weights(sps.scaling_matrix8[0], sps.scaling_matrix8[0] + 8),
              (Weights{6, 10, 13, 16, 18, 23, 25, 27}));
    EXPECT_EQ(Weights(sps.scaling_matrix8[3] + 56, sps.scaling_matrix8[3] + 64),
              (Weights{24, 25, 27, 28, 30, 32, 33, 35}));
}

// --- The matrix of each list ---

TEST_F(QVAvcSpsScaling, entriesFollowTheZigzagScan) {
    for (size_t list = 0; list < kLists; ++list) {
        SCOPED_TRACE(list);
        AvcSpsSyntax s = syntaxWithLists(3);
        // 9, 10, 11, ...: all entries differ.
        s.scalingLists[list] = {1, std::vector<int32_t>(entriesOf(list), 1)};
        Weights rising(entriesOf(list));
        for (size_t i = 0; i < rising.size(); ++i) {
            rising[i] = static_cast<uint8_t>(9 + i);
        }
        // Later lists of the same kind fall back to this list.
        QVAvcSps record = recordWithDefaults(3);
        for (size_t later = list; later < kLists; ++later) {
            if (is8x8(later) == is8x8(list) && kIsInter[later] == kIsInter[list]) {
                store(record, later, rising);
            }
        }
        expectParsed(s, record);
    }
}

TEST_F(QVAvcSpsScaling, fallBackOfEveryPatternOf4x4Lists) {
    for (unsigned pattern = 0; pattern < 64; ++pattern) {
        SCOPED_TRACE(pattern);
        AvcSpsSyntax s = syntaxWithLists(1);
        QVAvcSps record = recordWithDefaults(1);
        Weights last;
        for (size_t list = 0; list < 6; ++list) {
            const bool isSent = (pattern >> list & 1) != 0;
            if (isSent) {
                // Each list has one weight for all entries, different for each list.
                s.scalingLists[list] = {1, std::vector<int32_t>(16, 0)};
                s.scalingLists[list].delta_scale[0] = static_cast<int32_t>(list) + 100;
            }
            const Weights own(16, static_cast<uint8_t>(8 + list + 100));
            const bool isFirstOfItsKind = list == 0 || list == 3;
            const Weights& inherited = isFirstOfItsKind ? defaultOf(list) : last;
            last = isSent ? own : inherited;
            store(record, list, last);
        }
        expectParsed(s, record);
    }
}

TEST_F(QVAvcSpsScaling, fallBackOfEveryPatternOf8x8ListsIn444) {
    for (unsigned pattern = 0; pattern < 64; ++pattern) {
        SCOPED_TRACE(pattern);
        AvcSpsSyntax s = syntaxWithLists(3);
        QVAvcSps record = recordWithDefaults(3);
        Weights last[2] = {kDefault8x8Intra, kDefault8x8Inter};
        for (size_t i = 0; i < 6; ++i) {
            const size_t list = kFirst8x8 + i;
            if ((pattern >> i & 1) != 0) {
                s.scalingLists[list] = {1, std::vector<int32_t>(64, 0)};
                s.scalingLists[list].delta_scale[0] = static_cast<int32_t>(list) + 100;
                last[list % 2] = Weights(64, static_cast<uint8_t>(8 + list + 100));
            }
            store(record, list, last[list % 2]);
        }
        expectParsed(s, record);
    }
}

TEST_F(QVAvcSpsScaling, only444SendsTheChroma8x8Lists) {
    for (uint32_t format = 0; format < 4; ++format) {
        SCOPED_TRACE(format);
        AvcSpsSyntax s = syntaxWithLists(format);
        for (size_t list = kFirst8x8; list < kLists; ++list) {
            s.scalingLists[list] = {1, std::vector<int32_t>(64, 0)};
            s.scalingLists[list].delta_scale[0] = static_cast<int32_t>(list);
        }
        QVAvcSps record = recordWithDefaults(format);
        for (size_t list = kFirst8x8; list < listsOf(format); ++list) {
            store(record, list, Weights(64, static_cast<uint8_t>(8 + list)));
        }
        expectParsed(s, record);
    }
}

// --- How a list ends ---

TEST_F(QVAvcSpsScaling, nextScale0AtTheStartTakesTheDefault) {
    for (size_t list = 0; list < kLists; ++list) {
        SCOPED_TRACE(list);
        AvcSpsSyntax s = syntaxWithLists(3);
        // All other lists have explicit weights, so falling back to one of them would be detected.
        for (size_t other = 0; other < kLists; ++other) {
            s.scalingLists[other] = {1, std::vector<int32_t>(entriesOf(other), 0)};
            s.scalingLists[other].delta_scale[0] = 90;
        }
        s.scalingLists[list].delta_scale = {-8};
        QVAvcSps record = recordOf(3);
        for (size_t other = 0; other < kLists; ++other) {
            store(record, other, other == list ? defaultOf(list) : Weights(entriesOf(other), 98));
        }
        expectParsed(s, record);
    }
}

TEST_F(QVAvcSpsScaling, nextScale0LaterKeepsTheLastWeight) {
    for (const size_t list : {0U, 5U, 6U, 11U}) {
        for (size_t end = 1; end < entriesOf(list); ++end) {
            SCOPED_TRACE("list " + std::to_string(list) + " ends at " + std::to_string(end));
            AvcSpsSyntax s = syntaxWithLists(3);
            s.scalingLists[list] = {1, std::vector<int32_t>(end, 1)};
            s.scalingLists[list].delta_scale.push_back(-8 - static_cast<int32_t>(end));
            Weights weights(entriesOf(list), static_cast<uint8_t>(8 + end));
            for (size_t i = 0; i < end; ++i) {
                weights[i] = static_cast<uint8_t>(9 + i);
            }
            QVAvcSps record = recordWithDefaults(3);
            for (size_t later = list; later < kLists; ++later) {
                if (is8x8(later) == is8x8(list) && kIsInter[later] == kIsInter[list]) {
                    store(record, later, weights);
                }
            }
            expectParsed(s, record);
        }
    }
}

TEST_F(QVAvcSpsScaling, weightsWrapModulo256) {
    AvcSpsSyntax s = syntaxWithLists(1);
    s.scalingLists[5] = {1, {127, 127, -128, -128, 127, 1, 0, -127, -7}};
    QVAvcSps record = recordWithDefaults(1);
    store(record, 5, {135, 6, 134, 6, 133, 134, 134, 7, 7, 7, 7, 7, 7, 7, 7, 7});
    expectParsed(s, record);

    s.scalingLists[5].delta_scale = {-7, -2, 1};
    store(record, 5, {1, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255});
    expectParsed(s, record);
}

TEST_F(QVAvcSpsScaling, theLimitsOfDeltaScaleAreValid) {
    const std::pair<int32_t, uint8_t> cases[] = {{127, 135}, {-128, 136}};
    for (const auto& [delta, weight] : cases) {
        SCOPED_TRACE(delta);
        AvcSpsSyntax s = syntaxWithLists(1);
        s.scalingLists[5] = {1, std::vector<int32_t>(16, 0)};
        s.scalingLists[5].delta_scale[0] = delta;
        QVAvcSps record = recordWithDefaults(1);
        store(record, 5, Weights(16, weight));
        expectParsed(s, record);
    }
}

TEST_F(QVAvcSpsScaling, D09_anInvalidDeltaScaleEndsItsListAlone) {
    for (const int32_t delta : {128, -129, 300, -300, 0x7FFFFFFF, -0x7FFFFFFF}) {
        for (const size_t list : {0U, 3U, 4U, 6U, 7U, 9U, 11U}) {
            for (const size_t end : {size_t{0}, size_t{1}, size_t{7}, entriesOf(list) - 1}) {
                SCOPED_TRACE("delta " + std::to_string(delta) + " at " + std::to_string(end) + " of list " +
                             std::to_string(list));
                AvcSpsSyntax s = syntaxWithLists(3);
                s.scalingLists[list] = {1, std::vector<int32_t>(end, 1)};
                s.scalingLists[list].delta_scale.push_back(delta);
                // The entries that are not read stay flat, and the next list falls back to this incomplete
                // list.
                Weights weights(entriesOf(list), 16);
                for (size_t i = 0; i < end; ++i) {
                    weights[i] = static_cast<uint8_t>(9 + i);
                }
                QVAvcSps record = recordWithDefaults(3);
                for (size_t later = list; later < kLists; ++later) {
                    if (is8x8(later) == is8x8(list) && kIsInter[later] == kIsInter[list]) {
                        store(record, later, weights);
                    }
                }
                expectParsed(s, record, {invalidDelta(delta)});
            }
        }
    }
}

TEST_F(QVAvcSpsScaling, D09_invalidInEveryList) {
    AvcSpsSyntax s = syntaxWithLists(3);
    std::vector<ExpectedLine> lines;
    for (size_t list = 0; list < kLists; ++list) {
        const int32_t delta = 128 + static_cast<int32_t>(list);
        s.scalingLists[list] = {1, {delta}};
        lines.push_back(invalidDelta(delta));
    }
    expectParsed(s, recordOf(3), lines);
}

TEST_F(QVAvcSpsScaling, D09_aListThatIsPresentAfterAnInvalidOne) {
    AvcSpsSyntax s = syntaxWithLists(1);
    s.scalingLists[0] = {1, {1, 1, -129}};
    s.scalingLists[1] = {1, std::vector<int32_t>(16, 2)};
    QVAvcSps record = recordWithDefaults(1);
    store(record, 0, {9, 10, 16, 16, 16, 16, 16, 16, 16, 16, 16, 16, 16, 16, 16, 16});
    const Weights even = {10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30, 32, 34, 36, 38, 40};
    store(record, 1, even);
    store(record, 2, even);
    expectParsed(s, record, {invalidDelta(-129)});
}

TEST_F(QVAvcSpsScaling, aThrowingLogLeavesTheListsSoFar) {
    core().throwFromLog = true;
    AvcSpsSyntax s = syntaxWithLists(3);
    s.scalingLists[7] = {1, {1, 1, 128}};
    const Bytes bytes = writeAvcSps(s).bytes();
    stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
    EXPECT_THROW(parseAvcSps(&sps, stream), LogFailure);

    QVAvcSps record = highAvcSpsAfter(AvcSpsStep::Profile);
    record.chroma_format_idc = 3;
    record.residual_color_transform_flag = 0;
    for (size_t list = 0; list < 7; ++list) {
        store(record, list, defaultOf(list));
    }
    Weights torso(64, 16);
    torso[0] = 9;
    torso[1] = 10;
    store(record, 7, torso);
    expectOutcome(record, {invalidDelta(128)});
}

}  // namespace
}  // namespace qv_test
