#include "Mp4Writer.h"

namespace qv_test {

namespace {

constexpr uint32_t kTimeScale = 1000;
constexpr uint32_t kSampleDuration = 40;
constexpr uint32_t kWidth = 320;
constexpr uint32_t kHeight = 192;

Bytes zeros(size_t count) {
    return Bytes(count, 0);
}

Bytes matrix() {
    return joined({u32(0x10000), zeros(12), u32(0x10000), zeros(12), u32(0x40000000)});
}

Bytes handlerName() {
    const std::string name = "VideoHandler";
    Bytes bytes(name.begin(), name.end());
    bytes.push_back(0);
    return bytes;
}

// VisualSampleEntry, 14496-12 12.1.3.
Bytes sampleEntry(const Mp4Track& track) {
    const bool isAvc = track.codec == QVCodecIDAvc;
    return box(isAvc ? "avc1" : "hvc1", {zeros(6), u16(1), zeros(16), u16(kWidth), u16(kHeight),
                                         u32(0x480000), u32(0x480000), zeros(4), u16(1), zeros(32), u16(24),
                                         u16(0xFFFF), box(isAvc ? "avcC" : "hvcC", {track.record})});
}

Bytes sampleTable(const Mp4Track& track, uint32_t mediaAt) {
    std::vector<Bytes> sizes = {u32(track.sample_size), u32(track.sample_count)};
    for (const uint32_t size : track.entry_sizes) {
        sizes.push_back(u32(size));
    }
    std::vector<Bytes> offsets = {u32(static_cast<uint32_t>(track.chunk_offsets.size()))};
    for (const uint32_t offset : track.chunk_offsets) {
        offsets.push_back(u32(mediaAt + offset));
    }
    // A track whose samples are all in fragments has empty tables.
    const bool isEmpty = track.chunk_offsets.empty();
    const Bytes times = isEmpty ? u32(0) : joined({u32(1), u32(track.sample_count), u32(kSampleDuration)});
    const Bytes chunks = isEmpty ? u32(0) : joined({u32(1), u32(1), u32(track.samples_per_chunk), u32(1)});
    return box("stbl", {fullBox("stsd", 0, {u32(1), sampleEntry(track)}), fullBox("stts", 0, {times}),
                        fullBox("stsc", 0, {chunks}), fullBox("stsz", 0, sizes), fullBox("stco", 0, offsets),
                        joined(track.moreTables)});
}

Bytes trackBox(const Mp4Track& track, uint32_t id, uint32_t mediaAt) {
    const Bytes information =
        box("minf", {fullBox("vmhd", 1, {zeros(8)}),
                     box("dinf", {fullBox("dref", 0, {u32(1), fullBox("url ", 1, {})})}),
                     sampleTable(track, mediaAt)});
    const std::string video = "vide";
    return box("trak",
               {fullBox("tkhd", 3,
                        {zeros(8), u32(id), zeros(4), u32(0), zeros(16), matrix(), u32(kWidth << 16),
                         u32(kHeight << 16)}),
                box("mdia", {fullBox("mdhd", 0, {zeros(8), u32(kTimeScale), u32(0), u32(0x55C40000)}),
                             fullBox("hdlr", 0,
                                     {zeros(4), Bytes(video.begin(), video.end()), zeros(12), handlerName()}),
                             information})});
}

Bytes movie(const std::vector<Mp4Track>& tracks, bool isFragmented, uint32_t mediaAt) {
    std::vector<Bytes> boxes = {
        fullBox("mvhd", 0,
                {zeros(8), u32(kTimeScale), u32(0), u32(0x10000), u16(0x0100), zeros(10), matrix(), zeros(24),
                 u32(static_cast<uint32_t>(tracks.size()) + 1)})};
    uint32_t id = 0;
    std::vector<Bytes> defaults;
    for (const Mp4Track& track : tracks) {
        boxes.push_back(trackBox(track, ++id, mediaAt));
        defaults.push_back(fullBox("trex", 0, {u32(id), u32(1), u32(kSampleDuration), u32(0), u32(0)}));
    }
    if (isFragmented) {
        boxes.push_back(box("mvex", defaults));
    }
    return box("moov", boxes);
}

// numberOfUnits, each after its 16-bit length.
Bytes recordUnits(const std::vector<Bytes>& units) {
    Bytes bytes;
    for (const Bytes& unit : units) {
        const Bytes length = u16(static_cast<uint32_t>(unit.size()));
        bytes.insert(bytes.end(), length.begin(), length.end());
        bytes.insert(bytes.end(), unit.begin(), unit.end());
    }
    return bytes;
}

}  // namespace

Bytes u16(uint32_t value) {
    return {static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)};
}

Bytes u32(uint32_t value) {
    return joined({u16(value >> 16), u16(value & 0xFFFF)});
}

Bytes joined(const std::vector<Bytes>& parts) {
    Bytes bytes;
    for (const Bytes& part : parts) {
        bytes.insert(bytes.end(), part.begin(), part.end());
    }
    return bytes;
}

Bytes box(const std::string& type, const std::vector<Bytes>& parts) {
    const Bytes content = joined(parts);
    return joined({u32(static_cast<uint32_t>(content.size()) + 8), Bytes(type.begin(), type.end()), content});
}

Bytes fullBox(const std::string& type, uint32_t flags, const std::vector<Bytes>& parts) {
    return box(type, {u32(flags), joined(parts)});
}

Bytes avcRecord(const std::vector<Bytes>& spsUnits, const std::vector<Bytes>& ppsUnits) {
    return joined({Bytes{1, 0x64, 0x00, 0x0C, 0xFF, static_cast<uint8_t>(0xE0 | spsUnits.size())},
                   recordUnits(spsUnits), Bytes{static_cast<uint8_t>(ppsUnits.size())},
                   recordUnits(ppsUnits)});
}

Bytes hevcRecord(const std::vector<std::vector<Bytes>>& arrays, unsigned lengthSize) {
    Bytes record(23, 0);
    record[0] = 1;
    record[1] = 1;
    record[21] = static_cast<uint8_t>(0x0C | (lengthSize - 1));
    record[22] = static_cast<uint8_t>(arrays.size());
    for (const std::vector<Bytes>& units : arrays) {
        const auto type = static_cast<uint8_t>(units.front()[0] >> 1 & 0x3F);
        record = joined({record, Bytes{type}, u16(static_cast<uint32_t>(units.size())), recordUnits(units)});
    }
    return record;
}

Mp4Track trackOf(QVCodecID codec, const Bytes& record, const std::vector<Bytes>& samples) {
    Mp4Track track;
    track.codec = codec;
    track.record = record;
    track.sample_count = static_cast<uint32_t>(samples.size());
    track.samples_per_chunk = track.sample_count;
    track.chunk_offsets = {0};
    for (const Bytes& sample : samples) {
        track.entry_sizes.push_back(static_cast<uint32_t>(sample.size()));
    }
    return track;
}

Bytes mp4File(const std::vector<Mp4Track>& tracks, const Bytes& mediaData, const std::vector<Bytes>& extra) {
    const std::string brand = "isom";
    const Bytes head =
        box("ftyp", {Bytes(brand.begin(), brand.end()), u32(0x200), Bytes(brand.begin(), brand.end())});
    const bool isFragmented = !extra.empty();
    const Bytes more = joined(extra);
    const auto moovSize = static_cast<uint32_t>(movie(tracks, isFragmented, 0).size());
    const auto mediaAt = static_cast<uint32_t>(head.size() + more.size()) + moovSize + 8;
    return joined({head, movie(tracks, isFragmented, mediaAt), more, box("mdat", {mediaData})});
}

}  // namespace qv_test
