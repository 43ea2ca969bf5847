#include "input/ContainerFraming.h"

#include <gtest/gtest.h>

#include "InspectSupport.h"

namespace qv_test {
namespace {

QVCodecParameters framing(QVCodecID codec, const std::string& container, const Bytes& extradata) {
    return qvinspect::containerFraming(codec, container, extradata.empty() ? nullptr : extradata.data(),
                                       extradata.size());
}

void expectAnnexB(const QVCodecParameters& parameters) {
    EXPECT_NE(parameters.isAnnexB, 0U);
}

void expectLengths(const QVCodecParameters& parameters, unsigned size) {
    EXPECT_EQ(parameters.isAnnexB, 0U);
    EXPECT_EQ(parameters.nalLengthSize, size);
}

// configurationVersion, profile, compatibility, level, reserved and lengthSizeMinusOne, ...
const Bytes kAvcRecord = hex("01 64 00 0C FF E1 00 00 00");

Bytes hevcRecord(uint8_t lengthSizeByte) {
    Bytes record(23, 0);
    record[0] = 1;
    record[21] = lengthSizeByte;
    return record;
}

TEST(ContainerFraming, avcRecord) {
    expectLengths(framing(QVCodecIDAvc, "mov,mp4,m4a,3gp,3g2,mj2", kAvcRecord), 4);
    expectLengths(framing(QVCodecIDAvc, "matroska,webm", hex("01 64 00 0C FC E1")), 1);
    expectLengths(framing(QVCodecIDAvc, "flv", hex("01 64 00 0C FD E1")), 2);
}

TEST(ContainerFraming, hevcRecord) {
    expectLengths(framing(QVCodecIDHevc, "mov,mp4,m4a,3gp,3g2,mj2", hevcRecord(0x0F)), 4);
    expectLengths(framing(QVCodecIDHevc, "matroska,webm", hevcRecord(0x0D)), 2);
    expectLengths(framing(QVCodecIDHevc, "matroska,webm", hevcRecord(0x0C)), 1);
}

TEST(ContainerFraming, codecIsKept) {
    EXPECT_EQ(framing(QVCodecIDAvc, "flv", kAvcRecord).codecId, QVCodecIDAvc);
    EXPECT_EQ(framing(QVCodecIDHevc, "mpegts", {}).codecId, QVCodecIDHevc);
}

TEST(ContainerFraming, withoutARecord) {
    expectAnnexB(framing(QVCodecIDAvc, "mxf", {}));
    expectAnnexB(framing(QVCodecIDAvc, "matroska,webm", hex("00 00 00 01 67 64 00 0C AC")));
    expectAnnexB(framing(QVCodecIDHevc, "nut",
                         hex("00 00 01 40 01 0C 01 FF FF 01 60 00 00 00 00 00 00 00 00 "
                             "00 00 00 00 00")));
}

TEST(ContainerFraming, recordTooShort) {
    expectAnnexB(framing(QVCodecIDAvc, "flv", hex("01 64 00 0C")));
    expectAnnexB(framing(QVCodecIDHevc, "flv", kAvcRecord));
}

TEST(ContainerFraming, byteStreamContainersHoldByteStreams) {
    for (const char* container : {"avi", "mpeg", "mpegts"}) {
        expectAnnexB(framing(QVCodecIDAvc, container, kAvcRecord));
    }
}

}  // namespace
}  // namespace qv_test
