// Light levels of the content.
#include "bitstream/sei/LightLevel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "PayloadChecks.h"
#include "bitstream/sei/LightLevelSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;

StructureUnderTest<ContentLightLevelInfo> lightLevel(Codec codec) {
    return payloadUnderTest<ContentLightLevelInfo>(Context(codec), [](auto& s, const auto& c, auto& payload) {
        content_light_level_info(s, c, payload);
    });
}

TEST(SeiLightLevel, roundTrips) {
    checkRoundTrips(lightLevel(Codec::Avc), unitRounds());
    checkRoundTrips(lightLevel(Codec::Hevc), unitRounds());
}

TEST(SeiLightLevel, cutAtEveryByte) {
    checkCuts(lightLevel(Codec::Avc), unitRounds(50));
    checkCuts(lightLevel(Codec::Hevc), unitRounds(50));
}

TEST(SeiLightLevel, noAllocationAndNoByteOutside) {
    checkMemory(lightLevel(Codec::Avc), unitRounds(25));
    checkMemory(lightLevel(Codec::Hevc), unitRounds(25));
}

}  // namespace
