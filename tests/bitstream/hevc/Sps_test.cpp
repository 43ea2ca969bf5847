// The sequence parameter set of H.265.
#include "bitstream/hevc/Sps.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../support/StructureChecks.h"
#include "bitstream/hevc/SpsSyntax.h"
#include "bitstream/hevc/Vps.h"

namespace {

using namespace qv_test;
using qv::hevc::Sps;
using qv::hevc::Vps;

StructureUnderTest<Sps> sps(const Vps* vps = nullptr) {
    StructureUnderTest<Sps> structure;
    structure.generate = [vps](RandomUnit& s, Sps& record) {
        qv::hevc::seq_parameter_set_unit(s, record, vps);
    };
    structure.read = [vps](qv::Bytes unit) { return qv::hevc::readSps(unit, vps); };
    structure.trace = [vps](qv::Bytes unit, qv::TraceVisitor& visitor) {
        return qv::hevc::traceSps(unit, visitor, vps);
    };
    structure.write = [vps](const Sps& record, std::vector<uint8_t>& out) {
        return qv::hevc::writeSps(record, out, vps);
    };
    structure.size = [vps](const Sps& record) { return qv::hevc::sizeOf(record, vps); };
    structure.extensionData = {"sps_extension_data_flag"};
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("nal_unit_type", {qv::hevc::kNalSps});
        unit.choose("nuh_layer_id", {0});
    };
    return structure;
}

TEST(HevcSps, roundTrips) {
    checkRoundTrips(sps(), unitRounds());
}

TEST(HevcSps, everyRange) {
    checkRanges(sps(), unitRounds());
}

TEST(HevcSps, cutAtEveryBit) {
    checkCuts(sps(), unitRounds(50));
}

}  // namespace
