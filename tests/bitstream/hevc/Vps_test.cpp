// The video parameter set of H.265.
#include "bitstream/hevc/Vps.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../support/StructureChecks.h"
#include "bitstream/hevc/VpsSyntax.h"

namespace {

using namespace qv_test;
using qv::hevc::Vps;

StructureUnderTest<Vps> vps() {
    StructureUnderTest<Vps> structure;
    structure.generate = [](RandomUnit& s, Vps& record) { qv::hevc::video_parameter_set_unit(s, record); };
    structure.read = [](qv::Bytes unit) { return qv::hevc::readVps(unit); };
    structure.trace = [](qv::Bytes unit, qv::TraceVisitor& visitor) {
        return qv::hevc::traceVps(unit, visitor);
    };
    structure.write = [](const Vps& record, std::vector<uint8_t>& out) {
        return qv::hevc::writeVps(record, out);
    };
    structure.size = [](const Vps& record) { return qv::hevc::sizeOf(record); };
    structure.extensionData = {"vps_extension_data_flag"};
    structure.steer = [](RandomUnit& unit, Random&) { unit.choose("nal_unit_type", {qv::hevc::kNalVps}); };
    return structure;
}

TEST(HevcVps, roundTrips) {
    checkRoundTrips(vps(), unitRounds());
}

TEST(HevcVps, everyRange) {
    checkRanges(vps(), unitRounds());
}

TEST(HevcVps, cutAtEveryBit) {
    checkCuts(vps(), unitRounds(50));
}

}  // namespace
