// The rows follow ITU-T H.264 (08/2021) 7.4.1.2.3 and 7.4.1.2.4.
#include "input/AvcUnitRoles.h"

#include <gtest/gtest.h>

#include <memory>

#include "AvcPictures.h"
#include "InspectSupport.h"

namespace qv_test {
namespace {

using qvinspect::AvcUnitRoles;
using qvinspect::UnitRole;

UnitRole take(AvcUnitRoles& roles, const Bytes& unit) {
    return roles.roleOf(unit.data(), unit.size());
}

// --- Types ---

struct TypeCase {
    unsigned type;
    UnitRole role;
};

class AvcTypes : public ::testing::TestWithParam<TypeCase> {};

TEST_P(AvcTypes, haveTheirRole) {
    AvcUnitRoles roles;
    EXPECT_EQ(take(roles, {static_cast<uint8_t>(GetParam().type), 0x80}), GetParam().role);
}

INSTANTIATE_TEST_SUITE_P(Rows, AvcTypes,
                         ::testing::Values(TypeCase{0, UnitRole::Belongs},
                                           TypeCase{1, UnitRole::BeginsPicture},
                                           TypeCase{2, UnitRole::BeginsPicture},
                                           TypeCase{3, UnitRole::Belongs}, TypeCase{4, UnitRole::Belongs},
                                           TypeCase{5, UnitRole::BeginsPicture},
                                           TypeCase{6, UnitRole::MayBegin}, TypeCase{7, UnitRole::MayBegin},
                                           TypeCase{8, UnitRole::MayBegin}, TypeCase{9, UnitRole::Delimiter},
                                           TypeCase{10, UnitRole::Belongs}, TypeCase{11, UnitRole::Belongs},
                                           TypeCase{12, UnitRole::Belongs}, TypeCase{13, UnitRole::Belongs},
                                           TypeCase{14, UnitRole::MayBegin}, TypeCase{15, UnitRole::MayBegin},
                                           TypeCase{16, UnitRole::MayBegin}, TypeCase{17, UnitRole::MayBegin},
                                           TypeCase{18, UnitRole::MayBegin}, TypeCase{19, UnitRole::Belongs},
                                           TypeCase{20, UnitRole::Belongs}, TypeCase{21, UnitRole::Belongs},
                                           TypeCase{22, UnitRole::Belongs}, TypeCase{23, UnitRole::Belongs},
                                           TypeCase{24, UnitRole::Belongs}, TypeCase{31, UnitRole::Belongs}),
                         [](const auto& row) { return "type" + std::to_string(row.param.type); });

TEST(AvcUnitRoles, forbiddenZeroBit) {
    AvcUnitRoles roles;
    EXPECT_EQ(take(roles, hex("89 10")), UnitRole::Belongs);
}

// --- The first VCL NAL unit of a primary coded picture ---

// Two slices in sequence, in a stream with these parameter sets.
struct SliceCase {
    const char* name;
    std::vector<Bytes> parameterSets;
    AvcSliceSyntax last;
    AvcSliceSyntax slice;
    UnitRole role;
};

class AvcSlices : public ::testing::TestWithParam<SliceCase> {};

TEST_P(AvcSlices, areDistinguished) {
    const SliceCase& row = GetParam();
    AvcUnitRoles roles;
    for (const Bytes& unit : row.parameterSets) {
        take(roles, unit);
    }
    EXPECT_EQ(take(roles, avcSliceUnit(row.last)), UnitRole::BeginsPicture);
    EXPECT_EQ(take(roles, avcSliceUnit(row.slice)), row.role);
}

using SliceChange = std::function<void(AvcSliceSyntax&)>;

AvcSliceSyntax changed(AvcSliceSyntax slice, const SliceChange& change) {
    change(slice);
    return slice;
}

// The second slice of a picture, except for the change. The bytes after the header differ as well, so that an
// element that is read from there makes a difference.
SliceCase row(const char* name, const std::vector<Bytes>& parameterSets, const AvcSliceSyntax& last,
              const SliceChange& change, UnitRole role) {
    const AvcSliceSyntax second = changed(last, [](auto& s) {
        s.first_mb_in_slice = 40;
        s.rest = "0110 0111 0011 0101 0110 1100 1";
    });
    return {name, parameterSets, last, changed(second, change), role};
}

std::vector<SliceCase> plainCases() {
    const std::vector<Bytes> sets = {avcSpsUnit(), avcPpsUnit(),
                                     avcPpsUnit([](auto& p) { p.pic_parameter_set_id = 1; })};
    const AvcSliceSyntax last = changed({}, [](auto& s) {
        s.frame_num = 3;
        s.pic_order_cnt_lsb = 6;
    });
    const AvcSliceSyntax idr = changed(last, [](auto& s) {
        s.nal_unit_type = 5;
        s.idr_pic_id = 1;
    });
    const UnitRole same = UnitRole::ContinuesPicture;
    const UnitRole next = UnitRole::BeginsPicture;
    return {
        row(
            "nothingDiffers", sets, last, [](auto&) {}, same),
        row(
            "frameNum", sets, last, [](auto& s) { s.frame_num = 4; }, next),
        row(
            "ppsId", sets, last, [](auto& s) { s.pic_parameter_set_id = 1; }, next),
        row(
            "becomesNonReference", sets, last, [](auto& s) { s.nal_ref_idc = 0; }, next),
        row(
            "anotherReferenceIdc", sets, last, [](auto& s) { s.nal_ref_idc = 3; }, same),
        row(
            "pocLsb", sets, last, [](auto& s) { s.pic_order_cnt_lsb = 7; }, next),
        row(
            "sliceType", sets, last, [](auto& s) { s.slice_type = 5; }, same),
        row(
            "partitionA", sets, last, [](auto& s) { s.nal_unit_type = 2; }, same),
        row(
            "becomesIdr", sets, last, [](auto& s) { s.nal_unit_type = 5; }, next),
        row(
            "idr", sets, idr, [](auto&) {}, same),
        row(
            "idrPicId", sets, idr, [](auto& s) { s.idr_pic_id = 2; }, next),
        row(
            "noLongerIdr", sets, idr, [](auto& s) { s.nal_unit_type = 1; }, next),
        row(
            "macroblockZeroAgain", sets, last, [](auto& s) { s.first_mb_in_slice = 0; }, same),
    };
}

std::vector<SliceCase> fieldCases() {
    const std::vector<Bytes> sets = {avcSpsUnit([](auto& s) { s.frame_mbs_only_flag = 0; }), avcPpsUnit()};
    const AvcSliceSyntax frame = changed({}, [](auto& s) { s.writesFieldFlag = true; });
    const AvcSliceSyntax top = changed(frame, [](auto& s) { s.field_pic_flag = 1; });
    return {
        row(
            "frame", sets, frame, [](auto&) {}, UnitRole::ContinuesPicture),
        row(
            "becomesField", sets, frame, [](auto& s) { s.field_pic_flag = 1; }, UnitRole::BeginsPicture),
        row(
            "field", sets, top, [](auto&) {}, UnitRole::ContinuesPicture),
        row(
            "otherField", sets, top, [](auto& s) { s.bottom_field_flag = 1; }, UnitRole::BeginsPicture),
    };
}

std::vector<SliceCase> pictureOrderCases() {
    const Bytes ppsWithBottom =
        avcPpsUnit([](auto& p) { p.bottom_field_pic_order_in_frame_present_flag = 1; });
    const Bytes fields = avcSpsUnit([](auto& s) {
        s.frame_mbs_only_flag = 0;
        s.log2_max_frame_num_minus4 = 12;
        s.log2_max_pic_order_cnt_lsb_minus4 = 12;
    });
    const Bytes type1 = avcSpsUnit([](auto& s) { s.pic_order_cnt_type = 1; });
    const Bytes type1AlwaysZero = avcSpsUnit([](auto& s) {
        s.pic_order_cnt_type = 1;
        s.delta_pic_order_always_zero_flag = 1;
    });
    const Bytes type2 = avcSpsUnit([](auto& s) { s.pic_order_cnt_type = 2; });

    const AvcSliceSyntax frame = changed({}, [](auto& s) {
        s.frameNumBits = 16;
        s.pocLsbBits = 16;
        s.writesFieldFlag = true;
        s.writesDeltaBottom = true;
    });
    const AvcSliceSyntax topField = changed(frame, [](auto& s) {
        s.field_pic_flag = 1;
        s.writesDeltaBottom = false;
    });
    const AvcSliceSyntax plain1 = changed({}, [](auto& s) {
        s.pocLsbBits = 0;
        s.writesDelta0 = true;
    });
    const AvcSliceSyntax both1 = changed(plain1, [](auto& s) { s.writesDelta1 = true; });
    const AvcSliceSyntax without = changed({}, [](auto& s) { s.pocLsbBits = 0; });
    const UnitRole same = UnitRole::ContinuesPicture;
    const UnitRole next = UnitRole::BeginsPicture;
    return {
        row(
            "widePocLsb", {fields, ppsWithBottom}, frame, [](auto& s) { s.pic_order_cnt_lsb = 1; }, next),
        row(
            "wideFrameNum", {fields, ppsWithBottom}, frame, [](auto& s) { s.frame_num = 1; }, next),
        row(
            "deltaBottom", {fields, ppsWithBottom}, frame, [](auto& s) { s.delta_pic_order_cnt_bottom = -1; },
            next),
        row(
            "sameDeltaBottom", {fields, ppsWithBottom}, frame, [](auto&) {}, same),
        row(
            "fieldsHaveNoDeltaBottom", {fields, ppsWithBottom}, topField, [](auto&) {}, same),
        row(
            "type1", {type1, avcPpsUnit()}, plain1, [](auto&) {}, same),
        row(
            "type1Delta0", {type1, avcPpsUnit()}, plain1, [](auto& s) { s.delta_pic_order_cnt_0 = 1; }, next),
        row(
            "type1Delta1", {type1, ppsWithBottom}, both1, [](auto& s) { s.delta_pic_order_cnt_1 = -1; },
            next),
        row(
            "type1SameDeltas", {type1, ppsWithBottom}, both1, [](auto&) {}, same),
        row(
            "type1AlwaysZero", {type1AlwaysZero, ppsWithBottom}, without, [](auto&) {}, same),
        row(
            "type2", {type2, avcPpsUnit()}, without, [](auto&) {}, same),
        row(
            "type2FrameNum", {type2, avcPpsUnit()}, without, [](auto& s) { s.frame_num = 1; }, next),
    };
}

std::vector<SliceCase> redundantCases() {
    const Bytes pps = avcPpsUnit([](auto& p) { p.redundant_pic_cnt_present_flag = 1; });
    const AvcSliceSyntax last = changed({}, [](auto& s) { s.writesRedundantPicCnt = true; });
    return {
        row(
            "primary", {avcSpsUnit(), pps}, last, [](auto&) {}, UnitRole::ContinuesPicture),
        row(
            "redundant", {avcSpsUnit(), pps}, last, [](auto& s) { s.redundant_pic_cnt = 1; },
            UnitRole::Belongs),
        row(
            "redundantOfAnotherFrameNum", {avcSpsUnit(), pps}, last,
            [](auto& s) {
                s.redundant_pic_cnt = 1;
                s.frame_num = 9;
            },
            UnitRole::Belongs),
        row(
            "notSent", {avcSpsUnit(), avcPpsUnit()}, {}, [](auto&) {}, UnitRole::ContinuesPicture),
    };
}

// Slice groups before redundant_pic_cnt_present_flag: reading the flag from another place makes a difference.
struct SliceGroups {
    const char* name;
    uint32_t num_slice_groups_minus1;
    std::function<void(BitWriter&)> write;
};

SliceGroups explicitGroups(const char* name, uint32_t num_slice_groups_minus1, unsigned idBits) {
    return {name, num_slice_groups_minus1, [idBits](BitWriter& out) {
                out.ue("slice_group_map_type", 6);
                out.ue("pic_size_in_map_units_minus1", 8);
                for (uint32_t i = 0; i < 9; ++i) {
                    out.u(idBits, "slice_group_id", i % 2);
                }
            }};
}

SliceGroups changingGroups(const char* name, uint32_t slice_group_map_type) {
    return {name, 1, [=](BitWriter& out) {
                out.ue("slice_group_map_type", slice_group_map_type);
                out.u(1, "slice_group_change_direction_flag", 1);
                out.ue("slice_group_change_rate_minus1", 8);
            }};
}

std::vector<SliceGroups> sliceGroups() {
    return {
        {"mapType0", 2,
         [](BitWriter& out) {
             out.ue("slice_group_map_type", 0);
             for (const uint32_t run : {5U, 6U, 1000U}) {
                 out.ue("run_length_minus1", run);
             }
         }},
        {"mapType1", 1, [](BitWriter& out) { out.ue("slice_group_map_type", 1); }},
        {"mapType2", 2,
         [](BitWriter& out) {
             out.ue("slice_group_map_type", 2);
             for (const uint32_t corner : {0U, 12U, 3U, 1000U}) {
                 out.ue("top_left, bottom_right", corner);
             }
         }},
        changingGroups("mapType3", 3),
        changingGroups("mapType4", 4),
        changingGroups("mapType5", 5),
        explicitGroups("mapType6TwoGroups", 1, 1),
        explicitGroups("mapType6ThreeGroups", 2, 2),
        explicitGroups("mapType6FourGroups", 3, 2),
        explicitGroups("mapType6FiveGroups", 4, 3),
        explicitGroups("mapType6EightGroups", 7, 3),
    };
}

SliceCase sliceGroupCase(const SliceGroups& groups, uint32_t redundant_pic_cnt_present_flag) {
    const Bytes pps = avcPpsUnit([&](auto& p) {
        p.num_slice_groups_minus1 = groups.num_slice_groups_minus1;
        p.writeSliceGroups = groups.write;
        p.redundant_pic_cnt_present_flag = redundant_pic_cnt_present_flag;
    });
    const bool isPresent = redundant_pic_cnt_present_flag == 1;
    const AvcSliceSyntax last = changed({}, [=](auto& s) { s.writesRedundantPicCnt = isPresent; });
    return row(
        groups.name, {avcSpsUnit(), pps}, last, [](auto& s) { s.redundant_pic_cnt = 1; },
        isPresent ? UnitRole::Belongs : UnitRole::ContinuesPicture);
}

std::vector<SliceCase> sliceGroupCases(uint32_t redundant_pic_cnt_present_flag) {
    std::vector<SliceCase> cases;
    for (const SliceGroups& groups : sliceGroups()) {
        cases.push_back(sliceGroupCase(groups, redundant_pic_cnt_present_flag));
    }
    return cases;
}

// Without parameter sets only first_mb_in_slice decides.
std::vector<SliceCase> fallBackCases() {
    const AvcSliceSyntax last = changed({}, [](auto& s) { s.frame_num = 1; });
    const SliceChange zero = [](auto& s) { s.first_mb_in_slice = 0; };
    const SliceChange otherFrameNum = [](auto& s) { s.frame_num = 2; };
    const Bytes badSps = avcSpsUnit([](auto& s) { s.pic_order_cnt_type = 3; });
    const Bytes badPps = avcPpsUnit([](auto& p) {
        p.num_slice_groups_minus1 = 8;
        p.writeSliceGroups = [](BitWriter&) {};
    });
    const UnitRole seems = UnitRole::SeemsToContinue;
    const UnitRole next = UnitRole::BeginsPicture;
    return {
        row("noSets", {}, last, otherFrameNum, seems),
        row("noSetsMacroblockZero", {}, last, zero, next),
        row("noPps", {avcSpsUnit()}, last, otherFrameNum, seems),
        row("noSps", {avcPpsUnit()}, last, zero, next),
        row("ppsOfAnotherSps", {avcSpsUnit(), avcPpsUnit([](auto& p) { p.seq_parameter_set_id = 1; })}, last,
            otherFrameNum, seems),
        row("badSps", {badSps, avcPpsUnit()}, last, otherFrameNum, seems),
        row("badPps", {avcSpsUnit(), badPps}, last, otherFrameNum, seems),
        // The last one that is whole stays in force.
        row("badSpsAfterAnother", {avcSpsUnit(), badSps, avcPpsUnit()}, last, otherFrameNum, next),
        row("badPpsAfterAnother", {avcSpsUnit(), avcPpsUnit(), badPps}, last, otherFrameNum, next),
        row("spsIdOutOfRange",
            {avcSpsUnit(), avcSpsUnit([](auto& s) { s.seq_parameter_set_id = 32; }), avcPpsUnit()}, last,
            otherFrameNum, next),
    };
}

// The slices of the three colour planes of a picture all begin at macroblock 0.
std::vector<SliceCase> colourPlaneCases() {
    const Bytes sps = withEmulationPrevention(highAvcSps([](auto& s) {
                                                  s.chroma_format_idc = 3;
                                                  s.separate_colour_plane_flag = 1;
                                              }).bytes());
    const AvcSliceSyntax last = changed({}, [](auto& s) { s.writesColourPlane = true; });
    const auto plane = [](uint32_t id, uint32_t first_mb_in_slice) {
        return [=](AvcSliceSyntax& s) {
            s.colour_plane_id = id;
            s.first_mb_in_slice = first_mb_in_slice;
        };
    };
    return {
        row("plane1", {sps, avcPpsUnit()}, last, plane(1, 0), UnitRole::ContinuesPicture),
        row("plane2", {sps, avcPpsUnit()}, last, plane(2, 0), UnitRole::ContinuesPicture),
        row("plane0Later", {sps, avcPpsUnit()}, last, plane(0, 7), UnitRole::ContinuesPicture),
        row(
            "nextPicture", {sps, avcPpsUnit()}, last, [](auto& s) { s.frame_num = 1; },
            UnitRole::BeginsPicture),
    };
}

const auto sliceCaseName = [](const auto& info) { return info.param.name; };

INSTANTIATE_TEST_SUITE_P(Plain, AvcSlices, ::testing::ValuesIn(plainCases()), sliceCaseName);
INSTANTIATE_TEST_SUITE_P(Field, AvcSlices, ::testing::ValuesIn(fieldCases()), sliceCaseName);
INSTANTIATE_TEST_SUITE_P(PictureOrder, AvcSlices, ::testing::ValuesIn(pictureOrderCases()), sliceCaseName);
INSTANTIATE_TEST_SUITE_P(Redundant, AvcSlices, ::testing::ValuesIn(redundantCases()), sliceCaseName);
INSTANTIATE_TEST_SUITE_P(SliceGroups, AvcSlices, ::testing::ValuesIn(sliceGroupCases(0)), sliceCaseName);
INSTANTIATE_TEST_SUITE_P(SliceGroupsAndRedundant, AvcSlices, ::testing::ValuesIn(sliceGroupCases(1)),
                         sliceCaseName);
INSTANTIATE_TEST_SUITE_P(FallBack, AvcSlices, ::testing::ValuesIn(fallBackCases()), sliceCaseName);
INSTANTIATE_TEST_SUITE_P(ColourPlanes, AvcSlices, ::testing::ValuesIn(colourPlaneCases()), sliceCaseName);

// --- In a stream ---

struct StreamCase {
    const char* name;
    std::vector<std::vector<Bytes>> accessUnits;
};

class AvcAccessUnits : public ::testing::TestWithParam<StreamCase> {};

TEST_P(AvcAccessUnits, areFound) {
    std::vector<size_t> expected;
    Bytes stream;
    for (const auto& units : GetParam().accessUnits) {
        expected.push_back(byteStream(units).size());
        stream = stream + byteStream(units);
    }
    std::vector<size_t> sizes;
    for (const auto& accessUnit :
         readRaw(std::make_unique<MemorySource>(stream), byteStreamOf(QVCodecIDAvc)).accessUnits) {
        sizes.push_back(accessUnit.bytes.size());
    }
    EXPECT_EQ(sizes, expected);
}

Bytes slice(uint32_t frame_num, uint32_t first_mb_in_slice = 0, uint32_t nal_unit_type = 1) {
    return avcSliceUnit(changed({}, [=](auto& s) {
        s.frame_num = frame_num;
        s.first_mb_in_slice = first_mb_in_slice;
        s.nal_unit_type = nal_unit_type;
    }));
}

std::vector<StreamCase> streamCases() {
    const Bytes sps = avcSpsUnit();
    const Bytes pps = avcPpsUnit();
    const Bytes subsetSps = hex("6F 76 00 14 80");
    const Bytes sei = hex("06 05 01 00 80");
    const Bytes delimiter = hex("09 F0");
    const Bytes prefix = hex("6E 80 00 07");
    const Bytes extension = hex("74 80 00 07 88 80");
    const Bytes endOfSequence = hex("0A");
    const Bytes endOfStream = hex("0B");
    const Bytes filler = hex("0C FF 80");
    const Bytes partitionB = hex("43 80 80");
    const Bytes partitionC = hex("44 80 80");
    const Bytes auxiliary = hex("13 80 80");
    return {
        {"slices", {{sps, pps, slice(0, 0, 5), slice(0, 40, 5)}, {slice(1), slice(1, 40)}, {slice(2)}}},
        {"delimiters", {{delimiter, sps, pps, sei, slice(0)}, {delimiter, slice(1)}}},
        {"parameterSetsInMidStream", {{sps, pps, slice(0)}, {sps, pps, slice(1)}, {sei, slice(2)}}},
        {"ppsBetweenSlices", {{sps, pps, slice(0), pps, slice(0, 40)}, {pps, slice(1)}}},
        {"partitions", {{sps, pps, slice(0, 0, 2), partitionB, partitionC}, {slice(1, 0, 2), partitionC}}},
        {"trailingUnits", {{sps, pps, slice(0), auxiliary, filler}, {slice(1), filler}}},
        {"prefixUnitsBeforeEverySlice",
         {{sps, subsetSps, pps, prefix, slice(0), prefix, slice(0, 40), extension},
          {prefix, slice(1), prefix, slice(1, 40), extension}}},
        {"endOfSequence",
         {{sps, pps, slice(0, 0, 5), endOfSequence},
          {slice(0, 0, 5), slice(0, 40, 5), endOfStream},
          {slice(0, 0, 5)}}},
        {"brokenOff", {{sps, pps, slice(0)}, {sps, pps}}},
    };
}

INSTANTIATE_TEST_SUITE_P(Rows, AvcAccessUnits, ::testing::ValuesIn(streamCases()),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace qv_test
