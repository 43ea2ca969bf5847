// Demuxes a file into access units and prints what a player uses of each: whether it is a key picture, its
// NAL units, its SEI items with their HDR metadata, and the side data made from them.
extern "C" {
#include <libavformat/avformat.h>
}

#include <cstdio>
#include <deque>
#include <memory>
#include <vector>

#include "QVNaluParser.h"
#include "QVNaluVersion.h"
#include "core.h"

namespace {

typedef std::vector<QVNaluParser::NaluInfo> Units;

// The stream properties that parsing an access unit needs.
struct Stream {
    QVCodecParameters framing;
    QVAvcSps avcSps;
    QVHevcSps hevcSps;

    bool isAvc() const { return framing.codecId == QVCodecIDAvc; }
    void* sps() { return isAvc() ? static_cast<void*>(&avcSps) : static_cast<void*>(&hevcSps); }
    bool isSps(const QVNaluParser::NaluInfo& unit) const { return unit.naluType == (isAvc() ? 7U : 33U); }
    bool isSei(const QVNaluParser::NaluInfo& unit) const {
        return isAvc() ? unit.naluType == 6 : unit.naluType == 39 || unit.naluType == 40;
    }
};

// Reads the framing from the configuration record (ISO/IEC 14496-15 5.3.3.1, 8.3.3.1). A record begins with a
// 1. It gives the size of the length fields in byte 4 (avcC) or in byte 21 (hvcC). A stream without a record
// uses start codes.
QVCodecParameters framingOf(const AVCodecParameters& codec) {
    const bool isAvc = codec.codec_id == AV_CODEC_ID_H264;
    const int sizeAt = isAvc ? 4 : 21;
    QVCodecParameters framing = QVCodecParameters();
    framing.codecId = isAvc ? QVCodecIDAvc : QVCodecIDHevc;
    framing.isAnnexB = codec.extradata_size > sizeAt && codec.extradata[0] == 1 ? 0 : 1;
    if (framing.isAnnexB == 0) {
        framing.nalLengthSize = static_cast<uint8_t>((codec.extradata[sizeAt] & 3) + 1);
    }
    return framing;
}

// Returns a copy without emulation prevention bytes. The H.264 parser needs it, as it does not step over
// them.
std::vector<unsigned char> unescaped(const unsigned char* data, int size) {
    std::vector<unsigned char> bytes;
    int zeros = 0;
    for (int i = 0; i < size; ++i) {
        if (zeros >= 2 && data[i] == 3) {
            zeros = 0;
            continue;
        }
        zeros = data[i] == 0 ? zeros + 1 : 0;
        bytes.push_back(data[i]);
    }
    return bytes;
}

void readSps(Stream& stream, const unsigned char* data, int size) {
    if (stream.isAvc()) {
        const std::vector<unsigned char> bytes = unescaped(data, size);
        stream.avcSps = QVAvcSps();
        parseAvcSps(&stream.avcSps, std::make_shared<QVByteStream>(bytes.data(), bytes.size()));
    } else {
        stream.hevcSps = QVHevcSps();
        parseHevcSps(&stream.hevcSps, std::make_shared<QVByteStream>(data, static_cast<size_t>(size)));
    }
}

// Reads the first sequence parameter set of an avcC: after the count, each set has a 2-byte length. An hvcC
// is not read: the H.265 files of this example repeat their sets in the access units.
void readConfigurationRecord(Stream& stream, const AVCodecParameters& codec) {
    const uint8_t* const record = codec.extradata;
    if (!stream.isAvc() || stream.framing.isAnnexB != 0 || codec.extradata_size < 8 ||
        (record[5] & 31) == 0) {
        return;
    }
    const int size = record[6] << 8 | record[7];
    if (size <= codec.extradata_size - 8) {
        readSps(stream, record + 8, size);
    }
}

// Tests a length-prefixed sample after converting it to start codes: isKeyFrame detects the framing, and a
// length of 256 to 511 looks like a start code.
bool isKey(const unsigned char* data, int size, const QVCodecParameters& framing) {
    if (framing.isAnnexB != 0) {
        return QVNaluParser::isKeyFrame(framing.codecId, data, size);
    }
    unsigned char* reframed = nullptr;
    int reframedSize = 0;
    QVNaluParser::connvertAvcCToAnnexB(data, size, framing.nalLengthSize, &reframed, reframedSize);
    const bool found = QVNaluParser::isKeyFrame(framing.codecId, reframed, reframedSize);
    player::release(reframed);
    return found;
}

// One access unit, from its bytes to its side data.
class AccessUnit {
public:
    AccessUnit(const unsigned char* data, int size, Stream& stream)
        : sideData_(nullptr), sideDataSize_(0), isKey_(false) {
        QVNaluParser::parserDataToNaluType(data, size, units_, &stream.framing);
        isKey_ = isKey(data, size, stream.framing);

        const std::deque<int> requested;  // payload types to keep in addition to the library's own: none
        for (const QVNaluParser::NaluInfo& unit : units_) {
            if (stream.isSps(unit)) {
                readSps(stream, data + unit.offset, unit.length);
            } else if (stream.isSei(unit)) {
                QVNaluParser::parserDataToSei(stream.framing.codecId, data, unit, items_, stream.sps(),
                                              requested);
            }
        }
        if (!items_.empty()) {
            QVNaluParser::assembleSeiSideDataBuffer(items_, &sideData_, sideDataSize_);
        }
    }

    ~AccessUnit() {
        player::release(sideData_);
        for (const QVSeiItem& item : items_) {
            player::release(item.payloadData);
        }
    }

    AccessUnit(const AccessUnit&) = delete;
    AccessUnit& operator=(const AccessUnit&) = delete;

    void print(int number) const {
        std::printf("access unit %d%s: NAL units", number, isKey_ ? ", key" : "");
        for (const QVNaluParser::NaluInfo& unit : units_) {
            std::printf(" %u", unit.naluType);
        }
        std::printf("; %d bytes of side data\n", sideDataSize_);
        for (const QVSeiItem& item : items_) {
            std::printf("  SEI %u, %u bytes", item.payloadType, item.payloadSize);
            printHdr(item);
            std::printf("\n");
        }
    }

private:
    static void printHdr(const QVSeiItem& item) {
        QVHDR10StaticMetadata hdr10 = QVHDR10StaticMetadata();
        if (QVNaluParser::fillHDR10StaticMetadataFromHevcMasteringDisplayInfoSei(item, &hdr10) ==
            QVResultOk) {
            std::printf(": mastered at %u to %u, in 0.0001 cd/m2", hdr10.min_display_mastering_luminance,
                        hdr10.max_display_mastering_luminance);
        }
        QVHDRVividDynamicMetadata vivid = QVHDRVividDynamicMetadata();
        if (item.codecId == QVCodecIDHevc && item.payloadType == 4 &&
            QVNaluParser::fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(item, &vivid) == 0) {
            std::printf(": HDR Vivid, PQ average %u, maximum %u", vivid.averagePq, vivid.maximumPq);
        }
    }

    Units units_;
    std::vector<QVSeiItem> items_;
    unsigned char* sideData_;
    int sideDataSize_;
    bool isKey_;
};

// Prints every access unit of the input's video. Returns their number, or -1 if there is no H.264 or H.265
// video.
int play(AVFormatContext* input) {
    const int video = av_find_best_stream(input, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (video < 0) {
        return -1;
    }
    const AVCodecParameters& codec = *input->streams[video]->codecpar;
    if (codec.codec_id != AV_CODEC_ID_H264 && codec.codec_id != AV_CODEC_ID_HEVC) {
        return -1;
    }
    Stream stream = Stream();
    stream.framing = framingOf(codec);
    readConfigurationRecord(stream, codec);

    int number = 0;
    AVPacket* packet = av_packet_alloc();
    while (packet != nullptr && av_read_frame(input, packet) >= 0) {
        if (packet->stream_index == video) {
            AccessUnit(packet->data, packet->size, stream).print(++number);
        }
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
    return number;
}

}  // namespace

int main(int argc, char** argv) {
    AVFormatContext* input = nullptr;
    if (argc != 2 || avformat_open_input(&input, argv[1], nullptr, nullptr) < 0) {
        std::fprintf(stderr, "usage: player FILE\n");
        return 1;
    }
    if (qvNaluVersion() < QVNALU_VERSION) {
        std::fprintf(stderr, "qvnalu %s is older than this player was built for\n", qvNaluVersionString());
        return 1;
    }
    const int accessUnits = play(input);
    avformat_close_input(&input);
    if (accessUnits < 0) {
        std::fprintf(stderr, "%s holds no H.264 or H.265 video\n", argv[1]);
        return 1;
    }
    const player::CoreCounts& counts = player::coreCounts();
    std::printf("%d access units; %zu allocations, %zu blocks left; %zu log lines\n", accessUnits,
                counts.allocations, counts.liveBlocks, counts.logLines);
    return counts.liveBlocks == 0 ? 0 : 1;
}
