#include "input/ContainerSignature.h"

#include <gtest/gtest.h>

#include "InspectSupport.h"

namespace qv_test {
namespace {

std::string signatureOf(const Bytes& bytes) {
    const char* name = qvinspect::containerSignature(bytes.data(), bytes.size());
    return name != nullptr ? name : "";
}

// Packets that are empty except for their sync bytes.
Bytes packets(size_t count, size_t firstSync, size_t length) {
    Bytes bytes(count * length, 0xFF);
    for (size_t i = 0; i < count; ++i) {
        bytes[firstSync + i * length] = 0x47;
    }
    return bytes;
}

TEST(ContainerSignature, known) {
    EXPECT_EQ(signatureOf(hex("00 00 00 20 66 74 79 70 69 73 6F 6D")), "MP4 or QuickTime");
    EXPECT_EQ(signatureOf(hex("00 00 00 01 6D 64 61 74 00 00 00 00")), "MP4 or QuickTime");
    EXPECT_EQ(signatureOf(hex("1A 45 DF A3 01")), "Matroska");
    EXPECT_EQ(signatureOf(hex("46 4C 56 01 05")), "FLV");
    EXPECT_EQ(signatureOf(hex("52 49 46 46 00 10 00 00 41 56 49 20")), "AVI");
    EXPECT_EQ(signatureOf(hex("00 00 01 BA 44")), "MPEG program stream");
}

TEST(ContainerSignature, transportPackets) {
    EXPECT_EQ(signatureOf(packets(4, 0, 188)), "MPEG transport stream");
    EXPECT_EQ(signatureOf(packets(4, 4, 192)), "MPEG transport stream");
    EXPECT_EQ(signatureOf(packets(4, 0, 204)), "MPEG transport stream");
    EXPECT_EQ(signatureOf(packets(3, 0, 188)), "");
}

TEST(ContainerSignature, rawStreamsHaveNone) {
    EXPECT_EQ(signatureOf(hex("00 00 00 01 67 64 00 0C AC D9")), "");
    EXPECT_EQ(signatureOf(hex("00 00 01 40 01 0C 01 FF FF")), "");
    EXPECT_EQ(signatureOf(fileContent(sampleFolder() / "hevc_hdr10.h265")), "");
}

TEST(ContainerSignature, shortFilesHaveNone) {
    EXPECT_EQ(signatureOf({}), "");
    EXPECT_EQ(signatureOf(hex("1A 45 DF")), "");
    EXPECT_EQ(signatureOf(hex("00 00 00 20 66 74 79")), "");
    EXPECT_EQ(signatureOf(hex("47")), "");
}

// --- The position of the index in a file of boxes ---

Bytes box(const std::string& type, const Bytes& content) {
    Bytes bytes = lengthPrefixed({Bytes(content.size() + 8, 0)}, 4);
    bytes.resize(4);
    bytes.insert(bytes.end(), type.begin(), type.end());
    return bytes + content;
}

bool hasIndexAfterSamples(const Bytes& head) {
    return qvinspect::hasIndexAfterSamples(head.data(), head.size());
}

TEST(IndexAfterSamples, isFoundByTheOrderOfTheBoxes) {
    const Bytes type = box("ftyp", Bytes(8, 1));
    EXPECT_TRUE(hasIndexAfterSamples(type + box("mdat", Bytes(100, 2)) + box("moov", {})));
    EXPECT_TRUE(hasIndexAfterSamples(type + box("free", {}) + hex("7F FF FF FF 6D 64 61 74")));
    EXPECT_TRUE(hasIndexAfterSamples(hex("00 00 00 00 6D 64 61 74")));  // up to the end of the file
    EXPECT_TRUE(
        hasIndexAfterSamples(hex("00 00 00 01 66 72 65 65 00 00 00 00 00 00 00 10") + box("mdat", {})));
    EXPECT_FALSE(hasIndexAfterSamples(type + box("moov", Bytes(100, 2)) + box("mdat", {})));
    EXPECT_FALSE(hasIndexAfterSamples(type + box("moof", {}) + box("mdat", {})));
}

TEST(IndexAfterSamples, brokenBoxes) {
    for (const char* head :
         {"", "00", "00 00 00 08 66 72 65", "00 00 00 00 66 72 65 65 00 00 00 08 6D 64 61 74",
          "00 00 00 07 66 72 65 65 00 00 00 08 6D 64 61 74", "FF FF FF FF 66 72 65 65",
          "00 00 00 01 66 72 65 65", "00 00 00 01 66 72 65 65 FF FF FF FF FF FF FF FF"}) {
        EXPECT_FALSE(hasIndexAfterSamples(hex(head))) << head;
    }
}

}  // namespace
}  // namespace qv_test
