// The picture parameter set of H.265.
#include "bitstream/hevc/Pps.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../support/StructureChecks.h"
#include "bitstream/hevc/PpsSyntax.h"

namespace {

using namespace qv_test;
using qv::hevc::Pps;

StructureUnderTest<Pps> pps() {
    StructureUnderTest<Pps> structure;
    structure.generate = [](RandomUnit& s, Pps& record) { qv::hevc::pic_parameter_set_unit(s, record); };
    structure.read = [](qv::Bytes unit) { return qv::hevc::readPps(unit); };
    structure.trace = [](qv::Bytes unit, qv::TraceVisitor& visitor) {
        return qv::hevc::tracePps(unit, visitor);
    };
    structure.write = [](const Pps& record, std::vector<uint8_t>& out) {
        return qv::hevc::writePps(record, out);
    };
    structure.size = [](const Pps& record) { return qv::hevc::sizeOf(record); };
    structure.extensionData = {"pps_extension_data_flag"};
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("nal_unit_type", {qv::hevc::kNalPps});
        unit.choose("pps_bit_depth_for_depth_layers_minus8", {0});
        unit.choose("pps_depth_layers_minus1", {0, 1, 2});
    };
    return structure;
}

TEST(HevcPps, roundTrips) {
    checkRoundTrips(pps(), unitRounds());
}

TEST(HevcPps, everyRange) {
    checkRanges(pps(), unitRounds());
}

TEST(HevcPps, cutAtEveryBit) {
    checkCuts(pps(), unitRounds(50));
}

}  // namespace
