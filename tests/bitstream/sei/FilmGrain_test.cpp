// Film grain.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

#include "HandMadePayload.h"
#include "PayloadChecks.h"
#include "bitstream/sei/FilmGrain.h"
#include "bitstream/sei/FilmGrainSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using qv::FaultKind;
using testing::IsSupersetOf;

qv::avc::SpsData avcSps() {
    qv::avc::SpsData sps = {};
    sps.bit_depth_chroma_minus8 = 2;
    return sps;
}

qv::hevc::Sps hevcSps() {
    qv::hevc::Sps sps = {};
    sps.bit_depth_luma_minus8 = 2;
    return sps;
}

const qv::avc::SpsData kAvcSps = avcSps();
const qv::hevc::Sps kHevcSps = hevcSps();

Context contextOf(Codec codec, bool withSps = true) {
    Context context(codec);
    if (withSps && codec == Codec::Avc) {
        context.avcSps = &kAvcSps;
    } else if (withSps) {
        context.hevcSps = &kHevcSps;
    }
    return context;
}

PayloadUnderTest<FilmGrainCharacteristics> filmGrain(Codec codec, bool withSps = true) {
    auto structure = payloadUnderTest<FilmGrainCharacteristics>(
        contextOf(codec, withSps),
        [](auto& s, const auto& c, auto& payload) { film_grain_characteristics(s, c, payload); });
    structure.steer = [](RandomUnit& unit, Random& random) {
        if (random() % 16 != 0) {
            unit.choose("film_grain_characteristics_cancel_flag", {0});
        }
        unit.choose("num_intensity_intervals_minus1", {0, 1, 2, 7});
        if (random() % 64 == 0) {
            unit.choose("num_intensity_intervals_minus1", {255});
        }
    };
    structure.violable = 12;
    return structure;
}

template <class Check>
void forEach(Check check) {
    for (const bool withSps : {false, true}) {
        check(filmGrain(Codec::Avc, withSps));
        check(filmGrain(Codec::Hevc, withSps));
    }
}

TEST(SeiFilmGrain, roundTrips) {
    forEach([](const auto& structure) { checkRoundTrips(structure, unitRounds()); });
}

TEST(SeiFilmGrain, cutAtEveryByte) {
    forEach([](const auto& structure) { checkCuts(structure, unitRounds(50)); });
}

TEST(SeiFilmGrain, everyRange) {
    EXPECT_THAT(checkRanges(filmGrain(Codec::Avc), unitRounds()),
                IsSupersetOf({"num_model_values_minus1", "comp_model_value",
                              "film_grain_characteristics_repetition_period"}));
    EXPECT_THAT(checkRanges(filmGrain(Codec::Hevc), unitRounds()),
                IsSupersetOf({"num_model_values_minus1", "comp_model_value"}));
}

TEST(SeiFilmGrain, noAllocationAndNoByteOutside) {
    for (const Codec codec : {Codec::Avc, Codec::Hevc}) {
        checkMemory(filmGrain(codec), unitRounds(25),
                    {{"intervals", [](const FilmGrainCharacteristics& payload) {
                          uint64_t sum = 0;
                          for (uint32_t c = 0; c < 4; ++c) {
                              FilmGrainIntervals intervals(payload, c);
                              for (FilmGrainInterval interval = {}; intervals.next(interval);) {
                                  sum += interval.intensity_interval_upper_bound + 1;
                              }
                          }
                          return sum;
                      }}});
    }
}

TEST(SeiFilmGrain, oneIntervalOfLuma) {
    // 0 film_grain_characteristics_cancel_flag, 00 film_grain_model_id, 0
    // separate_colour_description_present_flag, 00 blending_mode_id, 0010 log2_scale_factor, 100
    // comp_model_present_flag, 00000000 num_intensity_intervals_minus1, 001 num_model_values_minus1; bounds
    // 00000000 and 11111111, comp_model_value 00110 3 and 000010000 8; 1
    // film_grain_characteristics_persistence_flag
    const HandMadePayload<FilmGrainCharacteristics> payload(contextOf(Codec::Hevc),
                                                            {0x00, 0xA0, 0x01, 0x00, 0xFF, 0x30, 0x43});
    ASSERT_TRUE(payload.ok()) << qv::textOf(payload.fault());
    EXPECT_EQ(payload->film_grain_model_id, 0U);
    EXPECT_EQ(payload->log2_scale_factor, 2U);
    EXPECT_TRUE(payload->comp_model_present_flag[0]);
    EXPECT_FALSE(payload->comp_model_present_flag[1]);
    EXPECT_EQ(payload->num_intensity_intervals_minus1[0], 0U);
    EXPECT_EQ(payload->num_model_values_minus1[0], 1U);
    EXPECT_TRUE(payload->film_grain_characteristics_persistence_flag);
    FilmGrainIntervals intervals(*payload, 0);
    FilmGrainInterval interval = {};
    ASSERT_TRUE(intervals.next(interval));
    EXPECT_EQ(interval.intensity_interval_lower_bound, 0U);
    EXPECT_EQ(interval.intensity_interval_upper_bound, 255U);
    EXPECT_THAT(interval.comp_model_value, testing::ElementsAre(3, 8, 0, 0, 0, 0));
    EXPECT_FALSE(intervals.next(interval));
    EXPECT_FALSE(FilmGrainIntervals(*payload, 1).next(interval));
    EXPECT_FALSE(FilmGrainIntervals(*payload, 3).next(interval));
}

// The values of a model with another bit depth or of another kind have another range.
TEST(SeiFilmGrain, rangeOfTheModelValues) {
    FilmGrainCharacteristics payload = {};
    const auto range = [&payload](const Context& context, uint32_t c) {
        const ModelValueRange values = modelValueRange(payload, context, c);
        return std::pair<int32_t, int32_t>(values.least, values.most);
    };
    using Range = std::pair<int32_t, int32_t>;
    EXPECT_EQ(range(contextOf(Codec::Avc), 0), Range(0, 255));
    EXPECT_EQ(range(contextOf(Codec::Avc), 1), Range(0, 1023));
    EXPECT_EQ(range(contextOf(Codec::Hevc), 0), Range(0, 1023));
    EXPECT_EQ(range(contextOf(Codec::Hevc), 2), Range(0, 255));
    EXPECT_EQ(range(contextOf(Codec::Hevc, false), 0), Range(-qv::kMostSe, qv::kMostSe));
    payload.film_grain_model_id = 1;
    EXPECT_EQ(range(contextOf(Codec::Avc), 0), Range(-128, 127));
    payload.separate_colour_description_present_flag = true;
    payload.film_grain_bit_depth_luma_minus8 = 7;
    payload.film_grain_bit_depth_chroma_minus8 = 1;
    EXPECT_EQ(range(contextOf(Codec::Avc, false), 0), Range(-16384, 16383));
    EXPECT_EQ(range(contextOf(Codec::Avc, false), 1), Range(-256, 255));
    payload.film_grain_model_id = 2;
    EXPECT_EQ(range(contextOf(Codec::Avc), 0), Range(-qv::kMostSe, qv::kMostSe));
}

TEST(SeiFilmGrain, namesOfBothCodecs) {
    // 0 cancel flag, 00 film_grain_model_id, 1 separate_colour_description_present_flag, 000 and 000 bit
    // depths, 0 film_grain_full_range_flag, 1, 1 and 1 in 8 bits each, 00 blending_mode_id, 0000
    // log2_scale_factor, 000 comp_model_present_flag; then 1: a repetition period of 0, or the persistence
    // flag
    const std::vector<uint8_t> bytes = {0x10, 0x00, 0x20, 0x20, 0x20, 0x0C};
    const HandMadePayload<FilmGrainCharacteristics> avc(contextOf(Codec::Avc), bytes);
    ASSERT_TRUE(avc.ok()) << qv::textOf(avc.fault());
    EXPECT_EQ(avc->film_grain_matrix_coeffs, 1U);
    EXPECT_THAT(avc.names(), IsSupersetOf({"film_grain_matrix_coefficients",
                                           "film_grain_characteristics_repetition_period"}));
    const HandMadePayload<FilmGrainCharacteristics> hevc(contextOf(Codec::Hevc), bytes);
    ASSERT_TRUE(hevc.ok()) << qv::textOf(hevc.fault());
    EXPECT_EQ(hevc->film_grain_matrix_coeffs, 1U);
    EXPECT_THAT(hevc.names(),
                IsSupersetOf({"film_grain_matrix_coeffs", "film_grain_characteristics_persistence_flag"}));
}

}  // namespace
