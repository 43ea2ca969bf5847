#include "HostileFiles.h"

#include <algorithm>

#include "AvcPictures.h"
#include "InspectSupport.h"
#include "Mp4Writer.h"

namespace qv_test {

namespace {

constexpr uint8_t kUserDataUnregistered = 5;
constexpr uint8_t kFramePackingArrangement = 45;

// The first slice segment of an IDR picture, up to the bytes that are read.
Bytes hevcIdrUnit() {
    return hex("26 01 AF 08");
}

Bytes hevcVpsUnit() {
    return hex("40 01");
}

Mp4Track emptyTrack() {
    Mp4Track track;
    track.codec = QVCodecIDHevc;
    track.record = hevcRecord({{hevcVpsUnit()}});
    return track;
}

}  // namespace

Bytes sampleTableOf(uint32_t count, unsigned tracks) {
    Mp4Track track = emptyTrack();
    track.sample_size = 1;
    track.sample_count = count;
    track.samples_per_chunk = count;
    track.chunk_offsets = {0};
    return mp4File(std::vector<Mp4Track>(tracks, track), hevcIdrUnit());
}

Bytes fragmentRunsOf(uint32_t count, unsigned runs) {
    constexpr uint32_t kDefaultBaseIsMoof = 0x020000;
    constexpr uint32_t kDefaultSampleSizePresent = 0x000010;
    std::vector<Bytes> fragments;
    for (uint32_t run = 0; run < runs; ++run) {
        fragments.push_back(box(
            "moof",
            {fullBox("mfhd", 0, {u32(run + 1)}),
             box("traf", {fullBox("tfhd", kDefaultBaseIsMoof | kDefaultSampleSizePresent, {u32(1), u32(1)}),
                          fullBox("trun", 0, {u32(count)})})}));
    }
    return mp4File({emptyTrack()}, hevcIdrUnit(), fragments);
}

Bytes repeatedChunks(unsigned chunks, uint32_t sampleSize) {
    Mp4Track track = emptyTrack();
    track.sample_size = sampleSize;
    track.sample_count = chunks;
    track.chunk_offsets.assign(chunks, 0);
    Bytes sample = lengthPrefixed({hevcIdrUnit()}, 4);
    sample.resize(sampleSize, 0xFF);
    const Bytes length = u32(sampleSize - 4);
    std::copy(length.begin(), length.end(), sample.begin());
    return mp4File({track}, sample);
}

Bytes manyParameterSets(unsigned sets, unsigned keyPictures) {
    const Bytes record = hevcRecord({std::vector<Bytes>(sets, hevcVpsUnit())});
    const std::vector<Bytes> samples(keyPictures, lengthPrefixed({hevcIdrUnit()}, 4));
    return mp4File({trackOf(QVCodecIDHevc, record, samples)}, joined(samples));
}

Bytes manyRecordSeiUnits(unsigned seiUnits, unsigned units) {
    const Bytes record = hevcRecord({std::vector<Bytes>(seiUnits, hex("4E 01 05 00 80"))});
    std::vector<Bytes> sampleUnits(units, hex("4E 01 05 00 81"));
    sampleUnits.push_back(hevcIdrUnit());
    const std::vector<Bytes> samples = {lengthPrefixed(sampleUnits, 4)};
    return mp4File({trackOf(QVCodecIDHevc, record, samples)}, samples[0]);
}

Bytes emptyUnits(unsigned count) {
    const Bytes record = hevcRecord({{hevcVpsUnit()}}, 1);
    const std::vector<Bytes> samples = {Bytes(count, 0)};
    return mp4File({trackOf(QVCodecIDHevc, record, samples)}, samples[0]);
}

Bytes manySeiMessages(unsigned count, uint8_t payloadType, uint8_t payloadSize) {
    const Bytes message = Bytes{payloadType, payloadSize} + Bytes(payloadSize, 0xFF);
    Bytes sei = {0x06};
    for (unsigned i = 0; i < count; ++i) {
        sei.insert(sei.end(), message.begin(), message.end());
    }
    sei.push_back(0x80);
    AvcSliceSyntax slice;
    slice.nal_unit_type = 5;
    return byteStream({avcSpsUnit(), avcPpsUnit(), sei, avcSliceUnit(slice)});
}

Bytes manySeiUnits(unsigned count) {
    AvcSliceSyntax slice;
    slice.nal_unit_type = 5;
    Bytes bytes = byteStream({avcSpsUnit(), avcPpsUnit()});
    const Bytes unit = hex("00 00 01 06");
    bytes.reserve(bytes.size() + 4 * size_t{count} + 64);
    for (unsigned i = 0; i < count; ++i) {
        bytes.insert(bytes.end(), unit.begin(), unit.end());
    }
    return bytes + byteStream({avcSliceUnit(slice)});
}

Bytes manyDistinctSps(unsigned count) {
    std::vector<Bytes> units;
    for (unsigned i = 0; i < count; ++i) {
        units.push_back(avcSpsUnit([i](AvcSpsSyntax& sps) {
            sps.pic_order_cnt_type = 1;
            sps.offset_for_non_ref_pic = static_cast<int32_t>(i);
        }));
    }
    units.push_back(avcPpsUnit());
    AvcSliceSyntax slice;
    slice.nal_unit_type = 5;
    units.push_back(avcSliceUnit(slice));
    return byteStream(units);
}

std::vector<HostileFile> hostileFiles() {
    return {
        {"sample_table.mp4", "--level samples", sampleTableOf(80'000'000)},
        {"sample_tables.mp4", "--level samples", sampleTableOf(2'000'000, 64)},
        {"fragment_runs.mp4", "--level samples", fragmentRunsOf(2'000'000, 20)},
        {"repeated_chunks.mp4", "--to-annexb OUT", repeatedChunks(50'000, 8000)},
        {"parameter_sets.mp4", "--to-annexb OUT", manyParameterSets(60'000, 5000)},
        {"record_sei_units.mp4", "--to-annexb OUT", manyRecordSeiUnits(64'000, 50'000)},
        {"empty_units.mp4", "", emptyUnits(1'000'000)},
        {"sei_messages.h264", "", manySeiMessages(15'000, kFramePackingArrangement, 0)},
        {"sei_units.h264", "", manySeiUnits(250'000)},
        {"sei_items.h264", "--extract-sei OUT", manySeiMessages(100'000, kUserDataUnregistered, 1)},
        {"distinct_sps.h264", "", manyDistinctSps(100'000)},
    };
}

}  // namespace qv_test
