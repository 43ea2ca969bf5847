// H.265 NAL units for tests: laid out element by element, or copied from a stream.
#ifndef QV_TESTS_BITSTREAM_HEVC_UNITS_H
#define QV_TESTS_BITSTREAM_HEVC_UNITS_H

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "../../support/BitWriter.h"
#include "../support/CodedUnit.h"
#include "../support/Hex.h"
#include "../support/StructureChecks.h"
#include "bitstream/hevc/Vps.h"

namespace qv_test {

// A unit of bytes of an RBSP: with its header and emulation prevention bytes.
inline std::vector<uint8_t> hevcUnitOf(uint32_t nal_unit_type, const std::vector<uint8_t>& rbsp,
                                       uint32_t nuh_layer_id = 0) {
    return coded({static_cast<uint8_t>(nal_unit_type << 1 | nuh_layer_id >> 5),
                  static_cast<uint8_t>((nuh_layer_id & 31) << 3 | 1)},
                 rbsp);
}

// A unit with rbsp_trailing_bits() after the elements.
inline std::vector<uint8_t> hevcUnit(uint32_t nal_unit_type, BitWriter rbsp, uint32_t nuh_layer_id = 0) {
    rbsp.trailingBits();
    return hevcUnitOf(nal_unit_type, rbsp.bytes(), nuh_layer_id);
}

// The same with nothing of the elements but their first bits.
inline std::vector<uint8_t> hevcUnitCutAt(uint32_t nal_unit_type, const BitWriter& rbsp, size_t bits) {
    std::vector<uint8_t> bytes = rbsp.bytesCutAt(bits);
    bytes.resize(bits / 8 + 1);
    bytes[bits / 8] = static_cast<uint8_t>(bytes[bits / 8] | 0x80 >> bits % 8);
    return hevcUnitOf(nal_unit_type, bytes);
}

// The 88 bits of the Main profile and a level.
inline void mainProfileTierLevel(BitWriter& bits, uint32_t level_idc = 93) {
    bits.u(2, "general_profile_space", 0).u(1, "general_tier_flag", 0).u(5, "general_profile_idc", 1);
    bits.u(32, "general_profile_compatibility_flag", 0x60000000);
    bits.bits("source and packing flags", "1001");
    bits.u(43, "general_reserved_zero_43bits", 0).u(1, "general_inbld_flag", 0);
    bits.u(8, "general_level_idc", level_idc);
}

// Elements with a range that no unit was generated with a value outside of, or that a read did not name as
// its fault.
template <class Record>
std::set<std::string> elementsNotViolated(const StructureUnderTest<Record>& structure,
                                          std::set<std::string> wanted) {
    Random random(4);
    for (int round = 0; round < 40000 && !wanted.empty(); ++round) {
        RandomUnit generator(random);
        structure.steer(generator, random);
        generator.violate(random() % structure.violable);
        Record generated = {};
        structure.generate(generator, generated);
        const qv::TracedElement* const wrong = generator.violated();
        if (!generator.isLegal() || wrong == nullptr || wanted.count(wrong->element.name) == 0) {
            continue;
        }
        const qv::Read<Record> read = structure.read(bytesOf(generator.finish()));
        if (read.fault.kind == qv::FaultKind::OutOfRange &&
            qv::textOf(read.fault.element) == qv::textOf(wrong->element)) {
            wanted.erase(wrong->element.name);
        }
    }
    return wanted;
}

// What a writer gives for a record that was read is the unit that it was read from.
template <class Record>
void expectRewritten(const StructureUnderTest<Record>& structure, const std::vector<uint8_t>& unit) {
    const qv::Read<Record> read = structure.read(bytesOf(unit));
    EXPECT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.trailing.bits, 0U);
    std::vector<uint8_t> written;
    EXPECT_TRUE(structure.write(read.record, written).ok());
    EXPECT_EQ(written, unit);
}

}  // namespace qv_test

#endif
