// Prints the frame rate, the buffering periods and the picture timing of a raw stream. Files whose name ends
// in 265 hold H.265, all others H.264.
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "QVNaluParser.h"
#include "QVSpsCompletion.h"

namespace {

typedef std::vector<unsigned char> Bytes;

// The RBSP of a unit, its header included: no emulation prevention bytes, no zero bytes at the end.
Bytes rbspOf(const unsigned char* data, int size) {
    Bytes rbsp;
    int zeros = 0;
    for (int i = 0; i < size; ++i) {
        if (zeros >= 2 && data[i] == 3) {
            zeros = 0;
            continue;
        }
        zeros = data[i] == 0 ? zeros + 1 : 0;
        rbsp.push_back(data[i]);
    }
    while (!rbsp.empty() && rbsp.back() == 0) {
        rbsp.pop_back();
    }
    return rbsp;
}

std::shared_ptr<QVByteStream> streamOf(const Bytes& bytes) {
    return std::make_shared<QVByteStream>(bytes.data(), bytes.size());
}

// The H.264 parser reads the RBSP, the completion the unit.
void readAvcSps(const unsigned char* data, int size, QVAvcSps& sps) {
    if (!parseAvcSps(&sps, streamOf(rbspOf(data, size))) || completeAvcSps(&sps, data, size) != QVResultOk) {
        std::printf("a broken sequence parameter set\n");
        return;
    }
    std::printf("sps %d: time_scale %u / num_units_in_tick %u, pic_struct %d\n", sps.sps_id, sps.time_scale,
                sps.num_units_in_tick, sps.pic_struct_present_flag);
    std::printf("  HRD: NAL %d, VCL %d, %d CPB, delays of %d, %d and %d bits\n",
                sps.nal_hrd_parameters_present_flag, sps.vcl_hrd_parameters_present_flag, sps.cpb_cnt,
                sps.initial_cpb_removal_delay_length, sps.cpb_removal_delay_length,
                sps.dpb_output_delay_length);
}

void readHevcSps(const unsigned char* data, int size, QVHevcSps& sps) {
    const Bytes unit(data, data + size);
    if (!parseHevcSps(&sps, streamOf(unit)) || completeHevcSps(&sps, data, size) != QVResultOk) {
        std::printf("a broken sequence parameter set\n");
        return;
    }
    std::printf("sps %d: field_seq %d, frame_field_info_present %d\n", sps.sps_seq_parameter_set_id,
                sps.field_seq_flag, sps.frame_field_info_present_flag);
}

void printAvcMessage(int type, int size, const Bytes& payload, QVAvcSps& sps) {
    const std::shared_ptr<QVByteStream> stream = streamOf(payload);
    QVAvcSeiBufferingPeriod period = QVAvcSeiBufferingPeriod();
    QVAvcSeiPictureTiming timing = QVAvcSeiPictureTiming();
    if (type == 0 && QVNaluParser::parserAvcBufferingPeriod(*stream, size, &period, &sps) == QVResultOk) {
        std::printf("buffering period: initial_cpb_removal_delay %u\n", period.initial_cpb_removal_delay[0]);
    } else if (type == 1 &&
               QVNaluParser::parserAvcPictureTiming(*stream, size, &timing, &sps) == QVResultOk) {
        std::printf("picture timing: cpb_removal_delay %u, dpb_output_delay %u, pic_struct %u\n",
                    timing.cpb_removal_delay, timing.dpb_output_delay, timing.pic_struct);
    }
}

void printHevcMessage(int type, int size, const Bytes& payload, QVHevcSps& sps) {
    QVHevcSeiPictureTiming timing = QVHevcSeiPictureTiming();
    if (type == 1 &&
        QVNaluParser::parserHevcPictureTiming(*streamOf(payload), size, &timing, &sps) == QVResultOk) {
        std::printf("picture timing: fieldParity %u\n", timing.fieldParity);
    }
}

// Calls print for each message of an SEI unit (H.264 7.3.2.3, H.265 7.3.2.4).
template <class Sps>
void forEachMessage(const Bytes& rbsp, size_t header, Sps& sps, void (*print)(int, int, const Bytes&, Sps&)) {
    QVByteStream stream(rbsp.data(), rbsp.size());
    stream.skipBytes(header);
    while (stream.bytesLeft() > 1 && !stream.atEnd()) {  // rbsp_trailing_bits() are the last byte
        int type = 0;
        int size = 0;
        if (QVNaluParser::parserPayloadParams(stream, type, size) != QVResultOk || size < 0) {
            return;
        }
        const unsigned char* const payload = rbsp.data() + stream.bytePos;
        print(type, size, Bytes(payload, payload + size), sps);
        stream.skipBytes(static_cast<uint64_t>(size));
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: timing FILE\n");
        return 2;
    }
    const std::string name = argv[1];
    std::ifstream file(name.c_str(), std::ios::binary);
    const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const unsigned char* const data = reinterpret_cast<const unsigned char*>(bytes.data());
    const bool isHevc = name.size() >= 3 && name.compare(name.size() - 3, 3, "265") == 0;

    const QVCodecParameters byteStream = {isHevc ? QVCodecIDHevc : QVCodecIDAvc, 1, 0};
    std::vector<QVNaluParser::NaluInfo> units;
    QVNaluParser::parserDataToNaluType(data, static_cast<int>(bytes.size()), units, &byteStream);
    QVAvcSps avcSps = QVAvcSps();
    QVHevcSps hevcSps = QVHevcSps();
    for (const QVNaluParser::NaluInfo& unit : units) {
        const unsigned char* const begin = data + unit.offset;
        if (isHevc && unit.naluType == 33) {
            readHevcSps(begin, unit.length, hevcSps);
        } else if (isHevc && unit.naluType == 39) {
            forEachMessage(rbspOf(begin, unit.length), 2, hevcSps, printHevcMessage);
        } else if (!isHevc && unit.naluType == 7) {
            readAvcSps(begin, unit.length, avcSps);
        } else if (!isHevc && unit.naluType == 6) {
            forEachMessage(rbspOf(begin, unit.length), 1, avcSps, printAvcMessage);
        }
    }
}
