// The stand-alone core's readers of untrusted bytes: HDR Vivid payloads and side-data buffers. Each input is
// read directly before an inaccessible page and directly after one. Both results must be the same.
#include <gtest/gtest.h>

#include <cstring>

#include "GuardedBuffer.h"
#include "HdrVividSyntax.h"
#include "QVCoreStandalone.h"
#include "QVSeiItem.h"
#include "QVSideDataLayout.h"
#include "RandomRounds.h"

namespace qv_test {
namespace {

constexpr size_t kLongest = 4096;

// Flips some bits and often truncates the bytes.
Bytes mutated(Random& random, Bytes bytes) {
    for (size_t flips = below(random, 6); flips > 0; --flips) {
        const size_t bit = below(random, bytes.size() * 8);
        bytes[bit / 8] = static_cast<uint8_t>(bytes[bit / 8] ^ 1U << bit % 8);
    }
    bytes.resize(below(random, 2) == 0 ? bytes.size() : below(random, bytes.size() + 1));
    return bytes;
}

struct Vivid {
    int status;
    Bytes metadata;
};

Vivid readVivid(unsigned char* data, size_t size) {
    const QVSeiItem item{QVCodecIDHevc, 4, static_cast<uint32_t>(size), false, data};
    QVHDRVividDynamicMetadata metadata;
    std::memset(&metadata, 0, sizeof metadata);
    const int status =
        qv_hdr_vivid_parser::fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(item, &metadata);
    Bytes copy(sizeof metadata);
    std::memcpy(copy.data(), &metadata, sizeof metadata);
    return {status, copy};
}

TEST(StandaloneGuardPage, hdrVivid) {
    Random random(1);
    GuardedBuffer memory(kLongest);
    const Bytes whole = hdrVivid(largestHdrVivid()).bytes();
    int accepted = 0;
    for (int round = 0; round < rounds(); ++round) {
        const Bytes bytes = mutated(random, whole);
        const Vivid atEnd = readVivid(memory.placeAtEnd(bytes), bytes.size());
        const Vivid atBegin = readVivid(memory.placeAtBegin(bytes), bytes.size());
        ASSERT_EQ(atEnd.status, atBegin.status);
        ASSERT_EQ(atEnd.metadata, atBegin.metadata);
        accepted += atEnd.status == QVHDRVividOk ? 1 : 0;
    }
    EXPECT_GT(accepted, 0);
}

Bytes writtenSideData() {
    Bytes payloads[] = {Bytes(1, 0x11), Bytes(40, 0x22), Bytes(300, 0x33)};
    QVSeiInfo* info = createQVSeiInfo(4);
    for (size_t i = 0; i < 3; ++i) {  // the fourth item has no payload
        info->items[i] = {QVCodecIDAvc, 5, static_cast<uint32_t>(payloads[i].size()), false,
                          payloads[i].data()};
    }
    int size = 0;
    unsigned char* buffer = createSideDataFromQVSeiInfo(info, &size);
    const Bytes bytes(buffer, buffer + size);
    freepQVSideData(&buffer);
    freepQVSeiInfo(&info);
    return bytes;
}

// Corrects the size and the checksum, so that the reader goes on to check the changed bytes between them.
void seal(Bytes& bytes) {
    if (bytes.size() >= qv_side_data::kHeaderSize + qv_side_data::kChecksumSize) {
        qv_side_data::writeU32(bytes.data() + 8, static_cast<uint32_t>(bytes.size()));
        const size_t checked = bytes.size() - qv_side_data::kChecksumSize;
        qv_side_data::writeU32(bytes.data() + checked, qv_side_data::checksum(bytes.data(), checked));
    }
}

struct SideData {
    QVSideDataStatus status;
    std::vector<Bytes> payloads;
};

SideData readSideData(unsigned char* data, size_t size) {
    std::vector<QVSeiItem> items;
    SideData read{qvReadSideData(data, static_cast<int>(size), &items), {}};
    for (const QVSeiItem& item : items) {
        read.payloads.emplace_back(item.payloadData, item.payloadData + item.payloadSize);
    }
    return read;
}

TEST(StandaloneGuardPage, sideData) {
    Random random(2);
    GuardedBuffer memory(kLongest);
    const Bytes whole = writtenSideData();
    int accepted = 0;
    int broken = 0;
    for (int round = 0; round < rounds(); ++round) {
        Bytes bytes = mutated(random, whole);
        if (below(random, 8) != 0) {
            seal(bytes);
        }
        const SideData atEnd = readSideData(memory.placeAtEnd(bytes), bytes.size());
        const SideData atBegin = readSideData(memory.placeAtBegin(bytes), bytes.size());
        ASSERT_EQ(atEnd.status, atBegin.status);
        ASSERT_EQ(atEnd.payloads, atBegin.payloads);
        accepted += atEnd.status == QVSideDataOk ? 1 : 0;
        broken += atEnd.status == QVSideDataBrokenItems ? 1 : 0;
    }
    EXPECT_GT(accepted, 0);
    EXPECT_GT(broken, 0);
}

}  // namespace
}  // namespace qv_test
