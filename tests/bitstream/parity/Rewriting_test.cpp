// Parameter sets and SEI units of real streams, read into their records and written from them.
#include <gtest/gtest.h>

#include <cstdint>
#include <iostream>
#include <vector>

#include "FileUnits.h"
#include "SeiUnits.h"
#include "StreamFolder.h"
#include "bitstream/avc/NalUnitType.h"
#include "bitstream/avc/Unit.h"
#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/hevc/Unit.h"

using qv::Codec;

namespace qv_test {

namespace {

struct Counts {
    size_t sets = 0;
    size_t setsRewritten = 0;
    size_t sei = 0;
    size_t seiRewritten = 0;
    size_t units = 0;
    size_t unitsRewritten = 0;
};

// VPS, SPS and PPS. One stream has units of types 13 and 15 with the payload AA 55, which are no sets.
bool isParameterSet(Codec codec, uint32_t nal_unit_type) {
    if (codec == Codec::Hevc) {
        return nal_unit_type >= qv::hevc::kNalVps && nal_unit_type <= qv::hevc::kNalPps;
    }
    return nal_unit_type == qv::avc::kNalSps || nal_unit_type == qv::avc::kNalPps;
}

template <class Sets, class Rewrite>
void rewriteUnits(const FileUnits& in, const Rewrite& rewriteUnit, Counts& counts) {
    Sets sets;
    for (const std::vector<uint8_t>& bytes : in.units) {
        const qv::Bytes unit = {bytes.data(), bytes.size()};
        std::vector<uint8_t> out;
        const qv::UnitRewritten rewritten = rewriteUnit(unit, sets, out);
        const uint32_t nal_unit_type = sets.take(unit).nal_unit_type;
        ASSERT_EQ(out, rewritten.isRewritten ? bytes : std::vector<uint8_t>());
        const size_t one = rewritten.isRewritten ? 1 : 0;
        ++counts.units;
        counts.unitsRewritten += one;
        if (isParameterSet(in.codec, nal_unit_type)) {
            ++counts.sets;
            counts.setsRewritten += one;
        } else if (isSei(in.codec, unit)) {
            ++counts.sei;
            counts.seiRewritten += one;
            if (!rewritten.isRewritten) {
                std::cout << "  not rewritten: " << qv::textOf(rewritten.fault) << "\n";
            }
        }
    }
}

class Rewriting : public StreamFolderTest<::testing::Test> {};

TEST_P(Rewriting, ParameterSetsAndSeiAreWrittenFromTheirRecords) {
    Counts counts;
    for (const Stream& stream : streamsIn(GetParam().path)) {
        SCOPED_TRACE(stream.name);
        const FileUnits in = unitsOf(GetParam().path / stream.name);
        if (in.codec == Codec::Avc) {
            rewriteUnits<qv::avc::ParameterSets>(in, qv::avc::rewriteUnit, counts);
        } else {
            rewriteUnits<qv::hevc::ParameterSets>(in, qv::hevc::rewriteUnit, counts);
        }
    }
    std::cout << counts.setsRewritten << " of " << counts.sets << " parameter sets, " << counts.seiRewritten
              << " of " << counts.sei << " SEI units and " << counts.unitsRewritten << " of " << counts.units
              << " units are written from their records\n";
    EXPECT_GT(counts.sets, 0U);
    EXPECT_GE(100 * counts.setsRewritten, 99 * counts.sets);
    EXPECT_GT(counts.sei, 0U);
    EXPECT_GE(100 * counts.seiRewritten, 99 * counts.sei);
}

INSTANTIATE_TEST_SUITE_P(Streams, Rewriting, everyStreamFolder(),
                         [](const auto& folder) { return nameOf(folder); });

}  // namespace

}  // namespace qv_test
