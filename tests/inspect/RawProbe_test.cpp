#include "input/RawProbe.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "AvcPictures.h"
#include "InspectSupport.h"

namespace qv_test {
namespace {

using qvinspect::probeRaw;
using qvinspect::RawCodec;

RawCodec codecOf(const Bytes& bytes) {
    return probeRaw(bytes.data(), bytes.size()).codec;
}

bool beginsWithStartCode(const Bytes& bytes) {
    return probeRaw(bytes.data(), bytes.size()).beginsWithStartCode;
}

const Bytes kJunk = hex("FF D8 12");

// As an encoder wrote them.
const Bytes kHevcVps = hex("40 01 0C 01 FF FF 02 20 00 00 03 00 90 00 00 03 00 00 03 00 3C 95 98 09");
const Bytes kHevcSps = hex("42 01 01 02 20 00 00 03 00 90 00 00 03 00 00 03 00 3C A0 0A 08 0B 9F");
const Bytes kHevcPps = hex("44 01 C1 72 B4 62 40");
const Bytes kHevcIdr = hex("28 01 AF 1D 20 87 A1 09");
const Bytes kHevcTrail = hex("02 01 D0 09 7E 10");
const Bytes kAvcSei = hex("06 05 03 DC 45 E9 80");

Bytes avcSlices(size_t count) {
    Bytes stream;
    for (size_t i = 0; i < count; ++i) {
        AvcSliceSyntax slice;
        slice.slice_type = 5;
        slice.frame_num = i % 16;
        stream = stream + byteStream({avcSliceUnit(slice)});
    }
    return stream;
}

Bytes hevcSlices(size_t count) {
    Bytes stream;
    for (size_t i = 0; i < count; ++i) {
        stream = stream + byteStream({kHevcTrail});
    }
    return stream;
}

TEST(RawProbe, parameterSets) {
    EXPECT_EQ(codecOf(byteStream({avcSpsUnit(), avcPpsUnit()})), RawCodec::Avc);
    EXPECT_EQ(codecOf(byteStream({kHevcVps, kHevcSps, kHevcPps})), RawCodec::Hevc);
}

TEST(RawProbe, oneParameterSetWillDo) {
    EXPECT_EQ(codecOf(byteStream({avcSpsUnit()})), RawCodec::Avc);
    EXPECT_EQ(codecOf(byteStream({kHevcVps})), RawCodec::Hevc);
    EXPECT_EQ(codecOf(byteStream({kHevcSps})), RawCodec::Hevc);
}

TEST(RawProbe, slicesWithoutParameterSets) {
    EXPECT_EQ(codecOf(avcSlices(1)), RawCodec::Avc);
    EXPECT_EQ(codecOf(hevcSlices(1)), RawCodec::Hevc);
    EXPECT_EQ(codecOf(byteStream({kHevcIdr})), RawCodec::Hevc);
}

// Each slice of it reads as an H.264 picture parameter set.
TEST(RawProbe, hevcIdrPicturesBehindOneParameterSet) {
    Bytes stream = byteStream({kHevcVps});
    for (int i = 0; i < 100; ++i) {
        stream = stream + byteStream({kHevcIdr});
    }
    EXPECT_EQ(codecOf(stream), RawCodec::Hevc);
}

// What reads as either is said to be so.
TEST(RawProbe, evidenceForBoth) {
    const Bytes avcDelimiter = hex("09 10");
    // Half of this speaks against H.265; for H.264 it is delimiters and data partitions.
    EXPECT_EQ(codecOf(byteStream({kHevcTrail, avcDelimiter, kHevcTrail, avcDelimiter})), RawCodec::Avc);
    EXPECT_EQ(codecOf(byteStream({kHevcTrail, kHevcTrail, kHevcTrail, kHevcTrail, avcDelimiter})),
              RawCodec::Ambiguous);
    EXPECT_EQ(codecOf(byteStream({avcSpsUnit()}) + byteStream({kHevcTrail})), RawCodec::Avc);
}

// An H.264 SEI unit reads as an H.265 slice.
TEST(RawProbe, slicesAndSeiWithoutParameterSets) {
    Bytes stream;
    for (int i = 0; i < 10; ++i) {
        stream = stream + byteStream({kAvcSei}) + avcSlices(1);
    }
    EXPECT_EQ(codecOf(stream), RawCodec::Avc);
}

TEST(RawProbe, slicesBehindOtherBytesHaveToBeMany) {
    EXPECT_EQ(codecOf(kJunk + avcSlices(7)), RawCodec::Neither);
    EXPECT_EQ(codecOf(kJunk + avcSlices(8)), RawCodec::Avc);
    EXPECT_EQ(codecOf(kJunk + hevcSlices(7)), RawCodec::Neither);
    EXPECT_EQ(codecOf(kJunk + hevcSlices(8)), RawCodec::Hevc);
}

TEST(RawProbe, parameterSetsBehindOtherBytes) {
    EXPECT_EQ(codecOf(kJunk + byteStream({avcSpsUnit()})), RawCodec::Avc);
    EXPECT_EQ(codecOf(kJunk + byteStream({kHevcVps})), RawCodec::Hevc);
}

TEST(RawProbe, startOfTheStream) {
    EXPECT_TRUE(beginsWithStartCode(hex("00 00 01 09 F0")));
    EXPECT_TRUE(beginsWithStartCode(hex("00 00 00 00 00 01 09 F0")));
    EXPECT_FALSE(beginsWithStartCode(hex("FF 00 00 01 09 F0")));
    EXPECT_FALSE(beginsWithStartCode(hex("09 F0 80")));
}

TEST(RawProbe, bothCodecsInOneFile) {
    EXPECT_EQ(codecOf(byteStream({avcSpsUnit(), avcPpsUnit(), kHevcVps, kHevcSps, kHevcPps})),
              RawCodec::Ambiguous);
    EXPECT_EQ(codecOf(byteStream({avcSpsUnit()}) + avcSlices(100) + byteStream({kHevcVps})),
              RawCodec::Ambiguous);
}

TEST(RawProbe, implausibleAvcParameterSets) {
    const auto sps = [](const AvcSpsChange& change) { return codecOf(byteStream({avcSpsUnit(change)})); };
    EXPECT_EQ(sps([](auto& s) { s.profile_idc = 67; }), RawCodec::Neither);
    EXPECT_EQ(sps([](auto& s) { s.level_idc = 14; }), RawCodec::Neither);
    EXPECT_EQ(sps([](auto& s) { s.reserved_zero_2bits = 1; }), RawCodec::Neither);
    EXPECT_EQ(sps([](auto& s) { s.seq_parameter_set_id = 32; }), RawCodec::Neither);
    EXPECT_EQ(sps([](auto& s) { s.nal_ref_idc = 0; }), RawCodec::Neither);
    EXPECT_EQ(sps([](auto& s) { s.forbidden_zero_bit = 1; }), RawCodec::Neither);
}

TEST(RawProbe, implausibleAvcSlices) {
    const auto slice = [](const std::function<void(AvcSliceSyntax&)>& change) {
        AvcSliceSyntax syntax;
        change(syntax);
        return codecOf(byteStream({avcSliceUnit(syntax)}));
    };
    EXPECT_EQ(slice([](auto& s) { s.slice_type = 9; }), RawCodec::Avc);
    EXPECT_EQ(slice([](auto& s) { s.slice_type = 10; }), RawCodec::Neither);
    EXPECT_EQ(slice([](auto& s) { s.pic_parameter_set_id = 255; }), RawCodec::Avc);
    EXPECT_EQ(slice([](auto& s) { s.pic_parameter_set_id = 256; }), RawCodec::Neither);
    EXPECT_EQ(slice([](auto& s) { s.first_mb_in_slice = 139264; }), RawCodec::Neither);
    const auto idr = [&](uint32_t slice_type, uint32_t nal_ref_idc) {
        return slice([=](auto& s) {
            s.nal_unit_type = 5;
            s.slice_type = slice_type;
            s.nal_ref_idc = nal_ref_idc;
        });
    };
    EXPECT_EQ(idr(7, 1), RawCodec::Avc);
    EXPECT_EQ(idr(5, 1), RawCodec::Neither);  // P
    EXPECT_EQ(idr(7, 0), RawCodec::Neither);
}

TEST(RawProbe, implausibleHevcParameterSets) {
    const auto changed = [](Bytes unit, size_t at, uint8_t value) {
        unit[at] = value;
        return codecOf(byteStream({unit}));
    };
    EXPECT_EQ(changed(kHevcVps, 1, 0x00), RawCodec::Neither);  // nuh_temporal_id_plus1 0
    EXPECT_EQ(changed(kHevcVps, 1, 0x02), RawCodec::Neither);  // TemporalId 1
    EXPECT_EQ(changed(kHevcVps, 1, 0x09), RawCodec::Neither);  // nuh_layer_id 1 says nothing alone
    EXPECT_EQ(changed(kHevcVps, 4, 0xFE), RawCodec::Neither);  // vps_reserved_0xffff_16bits
    EXPECT_EQ(changed(kHevcVps, 3, 0x0F), RawCodec::Neither);  // vps_max_sub_layers_minus1 7
    EXPECT_EQ(changed(kHevcSps, 1, 0x02), RawCodec::Neither);  // TemporalId 1
    EXPECT_EQ(changed(kHevcIdr, 1, 0x02), RawCodec::Neither);  // TemporalId 1
    EXPECT_EQ(changed(kHevcSps, 2, 0x0F), RawCodec::Neither);  // sps_max_sub_layers_minus1 7
    EXPECT_EQ(changed(kHevcSps, 3, 0x42), RawCodec::Neither);  // general_profile_space 1
    EXPECT_EQ(changed(kHevcSps, 3, 0x0C), RawCodec::Neither);  // general_profile_idc 12
}

// Damage does not hide a stream, but a parameter set among nonsense does not make one.
TEST(RawProbe, unitsAgainstParameterSets) {
    Bytes stream = byteStream({avcSpsUnit()}) + avcSlices(11);
    for (int i = 0; i < 11; ++i) {
        stream = stream + byteStream({hex("B8 00 12")});
    }
    EXPECT_EQ(codecOf(stream), RawCodec::Avc);
    EXPECT_EQ(codecOf(stream + byteStream({hex("B8 00 12")})), RawCodec::Neither);
}

// Metadata of an application in types 62 and 63 of H.265, or 24 to 31 of H.264, with each picture and more of
// it than of all else.
TEST(RawProbe, unspecifiedTypesCountForNothing) {
    const auto often = [](const char* unit) { return byteStream(std::vector<Bytes>(50, hex(unit))); };
    for (const char* unit : {"7C 01 19 08", "7E 01 08 09", "60 01 00 12"}) {
        EXPECT_EQ(codecOf(byteStream({kHevcVps, kHevcSps, kHevcPps}) + hevcSlices(8) + often(unit)),
                  RawCodec::Hevc)
            << unit;
        EXPECT_EQ(codecOf(often(unit)), RawCodec::Neither) << unit;
    }
    for (const char* unit : {"18 12 34", "1F 12 34", "7B 12 34"}) {
        EXPECT_EQ(codecOf(byteStream({avcSpsUnit(), avcPpsUnit()}) + avcSlices(8) + often(unit)),
                  RawCodec::Avc)
            << unit;
        EXPECT_EQ(codecOf(often(unit)), RawCodec::Neither) << unit;
    }
    // Reserved types speak against a codec as before.
    EXPECT_EQ(codecOf(byteStream({kHevcVps, kHevcSps, kHevcPps}) + often("52 01 12")), RawCodec::Neither);
}

TEST(RawProbe, whatIsNoVideo) {
    EXPECT_EQ(codecOf({}), RawCodec::Neither);
    EXPECT_EQ(codecOf(Bytes(100000, 0x00)), RawCodec::Neither);
    EXPECT_EQ(codecOf(Bytes(100000, 0x20)), RawCodec::Neither);
    EXPECT_EQ(codecOf(hex("00 00 01")), RawCodec::Neither);
    EXPECT_EQ(codecOf(hex("00 00 00 01")), RawCodec::Neither);
    // An MPEG-2 sequence header, GOP header and picture with slices; an MPEG-4 Visual object.
    EXPECT_EQ(codecOf(hex("00 00 01 B3 14 00 F0 00 00 01 B8 00 08 00 00 01 00 00 0F 00 00 01 01 13 "
                          "00 00 01 02 13 00 00 01 03 13")),
              RawCodec::Neither);
    EXPECT_EQ(codecOf(hex("00 00 01 B0 01 00 00 01 B5 89 00 00 01 00 00 00 01 20 00 C4 00 00 01 B6 10")),
              RawCodec::Neither);
}

TEST(RawProbe, randomBytes) {
    std::mt19937 random(3);
    std::uniform_int_distribution<int> byte(0, 255);
    for (int run = 0; run < 20; ++run) {
        Bytes bytes(100000);
        for (uint8_t& value : bytes) {
            value = static_cast<uint8_t>(byte(random));
        }
        EXPECT_EQ(codecOf(bytes), RawCodec::Neither);
    }
}

}  // namespace
}  // namespace qv_test
