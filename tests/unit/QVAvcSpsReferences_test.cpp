// The references that parseAvcSps holds to its stream, and exceptions from each of its log lines.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <utility>

#include "AvcSpsRecord.h"
#include "AvcSpsSyntax.h"
#include "QVAvcSps.h"

namespace qv_test {
namespace {

using Step = AvcSpsStep;

class QVAvcSpsReferences : public AvcSpsTest {
protected:
    // Parses while every log line throws, so the first line ends the parse.
    void expectThrow(const BitWriter& syntax, const QVAvcSps& record, const ExpectedLine& line) {
        SCOPED_TRACE(line.text);
        sps = patternAvcSps();
        core().lines.clear();
        core().throwFromLog = true;
        const Bytes bytes = syntax.bytes();
        stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
        EXPECT_THROW(parseAvcSps(&sps, stream), LogFailure);
        expectOutcome(record, {line});
    }
};

TEST_F(QVAvcSpsReferences, theStreamIsTakenByValue) {
    const Bytes bytes = avcSps().bytes();
    auto moved = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
    const std::weak_ptr<QVByteStream> watch = moved;
    EXPECT_TRUE(parseAvcSps(&sps, std::move(moved)));
    EXPECT_TRUE(watch.expired()) << "a reference outlives the call";
}

// The caller and the parameter hold one reference each. Each sub-step that logs holds one more.
TEST_F(QVAvcSpsReferences, eachSubStepHoldsOne) {
    const Bytes bytes = highAvcSps([](AvcSpsSyntax& s) {
                            s.seq_scaling_matrix_present_flag = 1;
                            s.scalingLists[0] = {1, {128}};
                            s.frame_cropping_flag = 1;
                        }).bytes();
    stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
    std::map<std::string, long> references;
    core().onLog = [&](const LogLine& line) { references[line.function] = stream.use_count(); };
    EXPECT_TRUE(parseAvcSps(&sps, stream));
    EXPECT_EQ(references, (std::map<std::string, long>{{"parseScalingList", 4},  // in the profile step
                                                       {"parseAvcSpsForCrop", 3},
                                                       {"parseAvcSps", 2}}));
    EXPECT_EQ(stream.use_count(), 1);
}

TEST_F(QVAvcSpsReferences, theProfileAndPocStepsHoldOne) {
    const std::pair<const char*, BitWriter> cases[] = {
        {"parseAvcSpsForProfile", highAvcSps([](AvcSpsSyntax& s) { s.chroma_format_idc = 4; })},
        {"parseAvcSpsForPoc", avcSps([](AvcSpsSyntax& s) { s.pic_order_cnt_type = 3; })}};
    for (const auto& [function, syntax] : cases) {
        SCOPED_TRACE(function);
        const Bytes bytes = syntax.bytes();
        stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
        std::map<std::string, long> references;
        core().onLog = [&](const LogLine& line) { references[line.function] = stream.use_count(); };
        EXPECT_FALSE(parseAvcSps(&sps, stream));
        EXPECT_EQ(references, (std::map<std::string, long>{{function, 3}}));
        EXPECT_EQ(stream.use_count(), 1);
    }
}

TEST_F(QVAvcSpsReferences, throwFromTheHead) {
    expectThrow(avcSps([](AvcSpsSyntax& s) { s.seq_parameter_set_id = 32; }), patternAvcSps(),
                avcError("parseAvcSps", "parseAvcCDecoderSps, sps_id 32 out of range\n"));
}

TEST_F(QVAvcSpsReferences, throwFromTheProfileStep) {
    QVAvcSps record = highAvcSpsAfter(Step::Head);
    record.chroma_format_idc = 4;
    expectThrow(highAvcSps([](AvcSpsSyntax& s) { s.chroma_format_idc = 4; }), record,
                avcError("parseAvcSpsForProfile", "parseAvcCDecoderSps, chroma_format_idc : 4"));

    record.chroma_format_idc = 3;
    record.residual_color_transform_flag = 1;
    expectThrow(
        highAvcSps([](AvcSpsSyntax& s) {
            s.chroma_format_idc = 3;
            s.separate_colour_plane_flag = 1;
        }),
        record,
        avcError("parseAvcSpsForProfile", "parseAvcCDecoderSps, separate color planes are not supported\n"));

    record = highAvcSpsAfter(Step::Head);
    record.chroma_format_idc = 1;
    record.bit_depth_luma = 9;
    record.bit_depth_chroma = 8;
    expectThrow(
        highAvcSps([](AvcSpsSyntax& s) { s.bit_depth_luma_minus8 = 1; }), record,
        avcError("parseAvcSpsForProfile", "parseAvcCDecoderSps, Different chroma and luma bit depth"));

    record.bit_depth_luma = record.bit_depth_chroma = 15;
    expectThrow(
        highAvcSps([](AvcSpsSyntax& s) { s.bit_depth_luma_minus8 = s.bit_depth_chroma_minus8 = 7; }), record,
        avcError("parseAvcSpsForProfile", "parseAvcCDecoderSps, illegal bit depth value : (15, 15)\n"));
}

TEST_F(QVAvcSpsReferences, throwFromAScalingList) {
    expectThrow(highAvcSps([](AvcSpsSyntax& s) {
                    s.seq_scaling_matrix_present_flag = 1;
                    s.scalingLists[0] = {1, {128}};
                }),
                highAvcSpsAfter(Step::Profile),
                avcError("parseScalingList", "parse_scaling_list, delta scale 128 is invalid\n"));
}

TEST_F(QVAvcSpsReferences, throwFromTheFrameNumber) {
    expectThrow(
        avcSps([](AvcSpsSyntax& s) { s.log2_max_frame_num_minus4 = 13; }), avcSpsAfter(Step::Profile),
        avcError("parseAvcSps", "parseAvcCDecoderSps, log2MaxFrameNumMinus4 out of range (0-12): 13\n"));
}

TEST_F(QVAvcSpsReferences, throwFromThePocStep) {
    QVAvcSps record = avcSpsAfter(Step::FrameNum);
    record.poc_type = 0;
    expectThrow(avcSps([](AvcSpsSyntax& s) { s.log2_max_pic_order_cnt_lsb_minus4 = 13; }), record,
                avcError("parseAvcSpsForPoc", "parseAvcCDecoderSps, logMmaxPocLsb is out of range : 13 \n"));

    record.poc_type = 3;
    expectThrow(avcSps([](AvcSpsSyntax& s) { s.pic_order_cnt_type = 3; }), record,
                avcError("parseAvcSpsForPoc", "parseAvcCDecoderSps, illegal POC type : 3\n"));

    record.poc_type = 1;
    record.delta_pic_order_always_zero_flag = 0;
    record.offset_for_non_ref_pic = 0;
    record.offset_for_top_to_bottom_field = 0;
    record.poc_cycle_length = 256;
    expectThrow(avcSps([](AvcSpsSyntax& s) {
                    s.pic_order_cnt_type = 1;
                    s.num_ref_frames_in_pic_order_cnt_cycle = 256;
                }),
                record,
                avcError("parseAvcSpsForPoc", "parseAvcCDecoderSps, pocCycleLength overflow : 256\n"));
}

TEST_F(QVAvcSpsReferences, throwFromTheRest) {
    QVAvcSps record = avcSpsAfter(Step::Poc);
    record.ref_frame_count = 17;
    expectThrow(avcSps([](AvcSpsSyntax& s) { s.max_num_ref_frames = 17; }), record,
                avcError("parseAvcSps", "parseAvcCDecoderSps, too many reference frames : 17\n"));

    record = avcSpsAfter(Step::MbSize);
    record.mb_width = 134217727;
    expectThrow(avcSps([](AvcSpsSyntax& s) { s.pic_width_in_mbs_minus1 = 134217726; }), record,
                avcError("parseAvcSps", "parseAvcCDecoderSps, mb_width/height overflow\n"));

    record = avcSpsAfter(Step::FrameCoding);
    record.frame_mbs_only_flag = 0;
    record.mb_aff = 1;
    record.direct_8x8_inference_flag = 1;
    expectThrow(avcSps([](AvcSpsSyntax& s) {
                    s.frame_mbs_only_flag = 0;
                    s.mb_adaptive_frame_field_flag = 1;
                    s.direct_8x8_inference_flag = 1;
                }),
                record,
                avcError("parseAvcSps",
                         "parseAvcCDecoderSps, MBAFF support not included, enable it at compile-time.\n"));

    expectThrow(avcSps(), avcSpsAfter(Step::Vui),
                avcSummary("sps:0 profile:66/10 poc:0 ref:0 1x1 FRM  crop:0/0/0/0  420"));
}

TEST_F(QVAvcSpsReferences, throwFromTheCropStep) {
    QVAvcSps record = avcSpsAfter(Step::FrameCoding);
    record.crop = 1;
    record.crop_left = 1;
    record.crop_right = 2;
    record.crop_top = 3;
    record.crop_bottom = 4;
    expectThrow(avcSps([](AvcSpsSyntax& s) {
                    s.frame_cropping_flag = 1;
                    s.frame_crop_left_offset = 1;
                    s.frame_crop_right_offset = 2;
                    s.frame_crop_top_offset = 3;
                    s.frame_crop_bottom_offset = 4;
                }),
                record, avcCropNotice("l:1 r:2 t:3 b:4"));
}

}  // namespace
}  // namespace qv_test
