// The sequence parameter set of H.264.
#include "bitstream/avc/Sps.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../support/StructureChecks.h"
#include "bitstream/avc/SpsSyntax.h"

namespace {

using namespace qv_test;
using qv::avc::Sps;

StructureUnderTest<Sps> sps() {
    StructureUnderTest<Sps> structure;
    structure.generate = [](RandomUnit& s, Sps& record) { qv::avc::seq_parameter_set_unit(s, record); };
    structure.read = [](qv::Bytes unit) { return qv::avc::readSps(unit); };
    structure.trace = [](qv::Bytes unit, qv::TraceVisitor& visitor) {
        return qv::avc::traceSps(unit, visitor);
    };
    structure.write = [](const Sps& record, std::vector<uint8_t>& out) {
        return qv::avc::writeSps(record, out);
    };
    structure.size = [](const Sps& record) { return qv::avc::sizeOf(record); };
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("nal_unit_type", {qv::avc::kNalSps});
        unit.choose("profile_idc",
                    {66, 77, 88, 100, 110, 122, 244, 44, 83, 86, 118, 128, 134, 135, 138, 139, 144});
    };
    return structure;
}

TEST(AvcSps, roundTrips) {
    checkRoundTrips(sps(), unitRounds());
}

TEST(AvcSps, everyRange) {
    checkRanges(sps(), unitRounds());
}

TEST(AvcSps, cutAtEveryBit) {
    checkCuts(sps(), unitRounds(50));
}

}  // namespace
