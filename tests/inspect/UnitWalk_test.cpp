// The units of a stream in their order, and the parameter sets in force.
#include "analysis/UnitWalk.h"

#include <gtest/gtest.h>

#include "AvcSpsSyntax.h"
#include "InspectSupport.h"

namespace qv_test {
namespace {

using Units = std::vector<Bytes>;

Bytes sized(const Bytes& unit) {
    return Bytes{static_cast<uint8_t>(unit.size() >> 8U), static_cast<uint8_t>(unit.size())} + unit;
}

// ISO/IEC 14496-15 5.3.3.1.2, for a profile without the bytes at the end.
Bytes avcC(const Bytes& sps, const Bytes& pps) {
    return hex("01 42 00 0A FF E1") + sized(sps) + hex("01") + sized(pps);
}

Units visited(qvinspect::UnitWalk& walk, const Bytes& record) {
    Units units;
    walk.record(record, [&](const qvinspect::UnitBytes& unit) {
        units.emplace_back(unit.bytes.begin(), unit.bytes.end());
    });
    return units;
}

TEST(UnitWalk, aRecordIsVisitedOnce) {
    qvinspect::UnitWalk walk(QVCodecIDAvc);
    const Units first{hex("67 42"), hex("68 CE")};
    const Units second{hex("67 42"), hex("68 CF")};
    EXPECT_EQ(visited(walk, avcC(first[0], first[1])), first);
    EXPECT_EQ(visited(walk, avcC(second[0], second[1])), second);
    EXPECT_EQ(visited(walk, avcC(first[0], first[1])), Units{});
    EXPECT_EQ(visited(walk, avcC(second[0], second[1])), Units{});
    EXPECT_EQ(visited(walk, {}), Units{});
}

Bytes spsWithChroma(uint32_t chroma_format_idc) {
    return highAvcSps([=](AvcSpsSyntax& sps) { sps.chroma_format_idc = chroma_format_idc; })
        .trailingBits()
        .bytes();
}

// With a flag for each scaling list, as many as there are with chroma_format_idc 3 and 8x8 transforms.
Bytes ppsWithScalingLists() {
    BitWriter out;
    out.u(8, "nal_unit_header", 0x68).ue("pic_parameter_set_id", 0).ue("seq_parameter_set_id", 0);
    out.bits("entropy_coding_mode_flag to redundant_pic_cnt_present_flag", "0 0 1 1 1 0 00 1 1 1 0 0 0");
    out.u(1, "transform_8x8_mode_flag", 1).u(1, "pic_scaling_matrix_present_flag", 1);
    out.u(12, "pic_scaling_list_present_flag", 0).se("second_chroma_qp_index_offset", 0).trailingBits();
    return out.bytes();
}

class ListFlags : public qv::TraceVisitor {
public:
    void element(const qv::TracedElement& element) override {
        count += std::string(element.element.name).find("pic_scaling_list_present_flag") == 0 ? 1U : 0U;
    }

    size_t count = 0;
};

// How many flags the picture parameter set has by the sequence parameter set in force.
size_t listFlags(const qvinspect::UnitWalk& walk) {
    const Bytes pps = ppsWithScalingLists();
    ListFlags flags;
    walk.sets().trace({pps.data(), pps.size()}, flags);
    return flags.count;
}

// ITU-T H.264 (08/2021) 7.3.2.2: 6 + 2 or 6 + 6 lists.
TEST(UnitWalk, setsOfARecordThatIsNotVisitedAreInForce) {
    qvinspect::UnitWalk walk(QVCodecIDAvc);
    const Bytes chroma420 = avcC(spsWithChroma(1), hex("68 CE"));
    const Bytes chroma444 = avcC(spsWithChroma(3), hex("68 CE"));
    visited(walk, chroma420);
    EXPECT_EQ(listFlags(walk), 8U);
    visited(walk, chroma444);
    EXPECT_EQ(listFlags(walk), 12U);
    visited(walk, chroma420);
    EXPECT_EQ(listFlags(walk), 8U);
}

TEST(UnitWalk, aUnitIsVisitedBeforeItIsInForce) {
    qvinspect::UnitWalk walk(QVCodecIDAvc);
    visited(walk, avcC(spsWithChroma(1), hex("68 CE")));
    std::vector<size_t> before;
    walk.record(avcC(spsWithChroma(3), hex("68 CE")),
                [&](const qvinspect::UnitBytes&) { before.push_back(listFlags(walk)); });
    EXPECT_EQ(before, (std::vector<size_t>{8, 12}));
}

}  // namespace
}  // namespace qv_test
