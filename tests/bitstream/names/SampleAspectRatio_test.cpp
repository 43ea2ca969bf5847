// Sample aspect ratios.
#include "bitstream/names/SampleAspectRatio.h"

#include <gtest/gtest.h>

namespace {

using qv::Ratio;
using qv::sampleAspectRatio;

TEST(SampleAspectRatio, tableE1) {
    EXPECT_FALSE(sampleAspectRatio(0, 0, 0).isKnown());
    EXPECT_EQ(sampleAspectRatio(1, 0, 0), (Ratio{1, 1}));
    EXPECT_EQ(sampleAspectRatio(2, 0, 0), (Ratio{12, 11}));
    EXPECT_EQ(sampleAspectRatio(13, 0, 0), (Ratio{160, 99}));
    EXPECT_EQ(sampleAspectRatio(14, 0, 0), (Ratio{4, 3}));
    EXPECT_EQ(sampleAspectRatio(16, 0, 0), (Ratio{2, 1}));
}

TEST(SampleAspectRatio, everyRatioIsInLowestTerms) {
    for (const Ratio& ratio : qv::kSampleAspectRatios) {
        EXPECT_EQ(ratio, qv::ratioOf(ratio.numerator, ratio.denominator));
    }
}

TEST(SampleAspectRatio, reservedValuesAreUnknown) {
    for (uint32_t aspect_ratio_idc = 17; aspect_ratio_idc < 255; ++aspect_ratio_idc) {
        EXPECT_FALSE(sampleAspectRatio(aspect_ratio_idc, 1, 1).isKnown()) << aspect_ratio_idc;
    }
}

TEST(SampleAspectRatio, extended) {
    EXPECT_EQ(sampleAspectRatio(255, 128, 66), (Ratio{64, 33}));
    EXPECT_EQ(sampleAspectRatio(255, 65535, 1), (Ratio{65535, 1}));
    EXPECT_FALSE(sampleAspectRatio(255, 0, 9).isKnown());
    EXPECT_FALSE(sampleAspectRatio(255, 16, 0).isKnown());
    EXPECT_NE(sampleAspectRatio(255, 1, 2), sampleAspectRatio(255, 2, 1));
    EXPECT_NE(sampleAspectRatio(255, 1, 2), sampleAspectRatio(255, 1, 3));
}

}  // namespace
