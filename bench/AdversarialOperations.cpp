// Runs every operation on worst-case inputs of a size, twice the size and four times the size. Callgrind
// counts the instructions of each call; the bytes that the call allocates are printed to standard output.
#include <valgrind/callgrind.h>

#include <climits>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "AllocationCount.h"
#include "Measure.h"
#include "Pools.h"
#include "QVCoreStandalone.h"
#include "QVNaluParser.h"
#include "SeiStreams.h"
#include "bitstream/avc/AccessUnitDelimiter.h"
#include "bitstream/avc/EndOfSequence.h"
#include "bitstream/avc/FillerData.h"
#include "bitstream/avc/ParameterSets.h"
#include "bitstream/avc/PrefixNalUnit.h"
#include "bitstream/avc/SliceHeader.h"
#include "bitstream/avc/SubsetSps.h"
#include "bitstream/avc/Unit.h"
#include "bitstream/hevc/ParameterSets.h"
#include "bitstream/hevc/SmallUnits.h"
#include "bitstream/hevc/Unit.h"
#include "bitstream/sei/SeiEdit.h"
#include "bitstream/sei/SeiMessages.h"
#include "bitstream/units/CodecProbe.h"
#include "bitstream/units/ConfigurationRecord.h"
#include "bitstream/units/NalUnits.h"
#include "bitstream/units/Rbsp.h"
#include "bitstream/units/Reframe.h"

// Valgrind's client requests are macros that cause these warnings.
#pragma GCC diagnostic ignored "-Wold-style-cast"
#pragma GCC diagnostic ignored "-Wcast-qual"

namespace {

using namespace qv_bench;

using Call = std::function<void(const Bytes&)>;

constexpr size_t kSize = size_t{16} << 10;
constexpr size_t kUnitsSize = size_t{512} << 10;  // one empty unit per byte: up to two million units

// Calls call on the bytes that input returns for each size.
void grow(const std::string& name, size_t size, const std::function<Bytes(size_t)>& input, const Call& call) {
    for (const size_t factor : {1U, 2U, 4U}) {
        const Bytes bytes = input(factor * size);
        require(bytes.size() == factor * size, name.c_str());
        const std::string counted = name + " @ " + std::to_string(bytes.size());
        const unsigned long before = allocatedBytes();
        CALLGRIND_ZERO_STATS;
        CALLGRIND_TOGGLE_COLLECT;
        call(bytes);
        CALLGRIND_TOGGLE_COLLECT;
        CALLGRIND_DUMP_STATS_AT(counted.c_str());
        std::printf("%lu %s\n", allocatedBytes() - before, counted.c_str());
    }
}

int sizeOf(const Bytes& bytes) {
    return static_cast<int>(bytes.size());
}

// Returns head followed by repetitions of the pattern, cut to size bytes.
std::function<Bytes(size_t)> repeated(const Bytes& head, const Bytes& pattern) {
    return [=](size_t size) {
        Bytes bytes = head;
        while (bytes.size() < size) {
            bytes.insert(bytes.end(), pattern.begin(), pattern.end());
        }
        bytes.resize(size);
        return bytes;
    };
}

// Returns input followed by tail, size bytes in all.
std::function<Bytes(size_t)> closed(const std::function<Bytes(size_t)>& input, const Bytes& tail) {
    return [=](size_t size) {
        Bytes bytes = input(size - tail.size());
        bytes.insert(bytes.end(), tail.begin(), tail.end());
        return bytes;
    };
}

const Bytes kStartCode = {0, 0, 1, 0x41};

// --- Framing ---

void scanByteStream(const Bytes& bytes) {
    NalIndexList nalus;
    require(QVNaluParser::parserDataToNaluIdx(bytes.data(), sizeOf(bytes), nalus) == QVResultOk, "scan");
}

void cutByteStream(const Bytes& bytes) {
    const QVCodecParameters params{QVCodecIDAvc, 1, 0};
    std::vector<QVNaluParser::NaluInfo> infos;
    QVNaluParser::parserDataToNaluType(bytes.data(), sizeOf(bytes), infos, &params);
    require(!infos.empty(), "typing");
}

void noKeyFrame(const Bytes& bytes) {
    require(!QVNaluParser::isKeyFrame(QVCodecIDAvc, bytes.data(), sizeOf(bytes)), "isKeyFrame");
}

void toLengths(const Bytes& bytes) {
    Bytes out;
    require(QVNaluParser::converAnnexBToAvcC(bytes.data(), sizeOf(bytes), out) == QVResultOk, "to lengths");
}

Call scanLengths(int lengthSize) {
    return [lengthSize](const Bytes& bytes) {
        NalIndexList nalus;
        QVNaluParser::parserDataToNalus(bytes.data(), sizeOf(bytes), nalus, lengthSize);
        require(nalus.size() + 1 >= bytes.size() / static_cast<size_t>(lengthSize), "units of length 0");
    };
}

void toByteStream(const Bytes& bytes) {
    unsigned char* out = nullptr;
    int size = 0;
    require(QVNaluParser::connvertAvcCToAnnexB(bytes.data(), sizeOf(bytes), 1, &out, size) == QVResultOk,
            "to byte stream");
    qvFree(out);
}

void growFraming() {
    const struct {
        const char* name;
        std::function<Bytes(size_t)> input;
    } streams[] = {
        {"zeros", repeated(kStartCode, {0})},
        {"start codes alone", repeated({}, {0, 0, 1})},
        {"4-byte start codes alone", repeated({}, {0, 0, 0, 1})},
        {"a start code every 4 bytes", repeated({}, kStartCode)},
        {"00 01", repeated(kStartCode, {0, 1})},
        {"00 00 03", repeated(kStartCode, {0, 0, 3})},
    };
    for (const auto& [name, input] : streams) {
        grow(std::string("parserDataToNaluIdx, ") + name, kSize, input, scanByteStream);
        grow(std::string("parserDataToNaluType, ") + name, kSize, input, cutByteStream);
        grow(std::string("isKeyFrame, ") + name, kSize, input, noKeyFrame);
        grow(std::string("converAnnexBToAvcC, ") + name, kSize, input, toLengths);
    }
    const auto zeros = repeated({}, {0});
    grow("parserDataToNalus, empty units, 1-byte lengths", kUnitsSize, zeros, scanLengths(1));
    grow("parserDataToNalus, empty units, 2-byte lengths", kSize, zeros, scanLengths(2));
    grow("parserDataToNalus, empty units, 4-byte lengths", kSize, zeros, scanLengths(4));
    grow("connvertAvcCToAnnexB, empty units", kSize, closed(zeros, {1, 0x41}), toByteStream);
    grow("isKeyFrame, empty units", kSize, zeros, noKeyFrame);
    grow("isKeyFrame, lengths past the end", kSize, repeated({}, {0x7F, 0xFF, 0xFF, 0xFF, 0x41}), noKeyFrame);
}

// --- SEI ---

struct Walk {
    bool isHevc = false;
    QVAvcSps sps{};
    std::deque<int> requested;
};

constexpr size_t kNone = 0;
constexpr size_t kOne = SIZE_MAX;
constexpr size_t kAny = SIZE_MAX - 1;

bool hasKept(size_t items, size_t bytes, size_t bytesOfAnItem) {
    return bytesOfAnItem == kNone  ? items == 0
           : bytesOfAnItem == kOne ? items == 1
           : bytesOfAnItem == kAny ? true
                                   : items + 1 >= bytes / bytesOfAnItem;
}

// Walks the bytes as one unit, checks how many items it gives, and releases them. bytesOfAnItem is kNone,
// kOne, kAny or the number of unit bytes per item.
Call walk(const Walk& walk, size_t bytesOfAnItem) {
    return [walk, bytesOfAnItem](const Bytes& bytes) {
        QVAvcSps sps = walk.sps;
        std::vector<QVSeiItem> items;
        if (walk.isHevc) {
            QVNaluParser::parserHevcDataToSei(39, bytes.data(), sizeOf(bytes), items, nullptr,
                                              walk.requested);
        } else {
            QVNaluParser::parserAvcDataToSei(bytes.data(), sizeOf(bytes), items, &sps, walk.requested);
        }
        require(hasKept(items.size(), bytes.size(), bytesOfAnItem), "kept messages");
        for (const QVSeiItem& item : items) {
            qvFree(item.payloadData);
        }
    };
}

// One message that fills size bytes.
Bytes oneKeptMessage(size_t size) {
    Bytes head = {4};
    head.resize(1 + (size - 3) / 256, 0xFF);
    head.push_back(1);
    return repeated(head, {0, 0, 3})(size);
}

Walk withHrd(int32_t cpb_cnt, int32_t length) {
    Walk walk;
    walk.sps.nal_hrd_parameters_present_flag = 1;
    walk.sps.vcl_hrd_parameters_present_flag = 1;
    walk.sps.cpb_cnt = cpb_cnt;
    walk.sps.initial_cpb_removal_delay_length = length;
    return walk;
}

void growSei() {
    Walk requesting;
    requesting.requested = {201, 202, 203, 200};
    Walk hevc;
    hevc.isHevc = true;
    grow("parserAvcDataToSei, empty messages", kSize, repeated({}, {200, 0}), walk({}, kNone));
    grow("parserAvcDataToSei, kept messages of a byte", kSize, repeated({}, {5, 1, 0x55}), walk({}, 3));
    grow("parserAvcDataToSei, requested messages of a byte", kSize, repeated({}, {200, 1, 0x55}),
         walk(requesting, 3));
    grow("parserAvcDataToSei, empty recovery points", kSize, repeated({}, {6, 0, 0x80, 200, 0}),
         walk({}, kNone));
    grow("parserAvcDataToSei, ff_bytes", kSize, repeated({}, {0xFF}), walk({}, kNone));
    grow("parserAvcDataToSei, smallest captions", kSize,
         repeated({}, {4, 7, 0xB5, 0x00, 0x31, 'G', 'A', '9', '4'}), walk({}, kNone));
    grow("parserAvcDataToSei, captions of 31 in little room", kSize,
         repeated({}, {4, 10, 0xB5, 0x00, 0x31, 'G', 'A', '9', '4', 3, 0xDF, 0xFF}), walk({}, kNone));
    grow("parserAvcDataToSei, smallest active formats", kSize,
         repeated({}, {4, 8, 0xB5, 0x00, 0x31, 'D', 'T', 'G', '1', 0x01}), walk({}, kNone));
    for (const int32_t cpb_cnt : {1, 32, INT_MAX}) {
        for (const int32_t length : {0, 1, 32}) {
            grow("parserAvcDataToSei, buffering periods, cpb_cnt " + std::to_string(cpb_cnt) + " of " +
                     std::to_string(length) + " bits",
                 kSize, repeated({}, {0, 1, 0x80}), walk(withHrd(cpb_cnt, length), kAny));
        }
    }
    grow("parserHevcDataToSei, one kept message, 00 00 03", kSize, oneKeptMessage, walk(hevc, kOne));
    grow("parserHevcDataToSei, ff_bytes", kSize, repeated({}, {0xFF}), walk(hevc, kNone));
}

// --- SEI payloads, with payloadSize set to the size of all the bytes ---

template <class Record, int (*kParse)(QVByteStream&, int, Record*)>
void payload(const Bytes& bytes) {
    QVByteStream stream(bytes.data(), bytes.size());
    Record record{};
    kParse(stream, sizeOf(bytes), &record);
}

template <int (*kParse)(QVByteStream&, int)>
void payloadWithoutRecord(const Bytes& bytes) {
    QVByteStream stream(bytes.data(), bytes.size());
    kParse(stream, sizeOf(bytes));
}

// With every field of the SPS record at its largest value.
template <class Record, int (*kParse)(QVByteStream&, int, Record*, QVAvcSps*)>
void payloadWithLargestSps(const Bytes& bytes) {
    QVByteStream stream(bytes.data(), bytes.size());
    QVAvcSps sps = withHrd(INT_MAX, INT_MAX).sps;
    sps.pic_struct_present_flag = 1;
    sps.cpb_removal_delay_length = INT_MAX;
    sps.dpb_output_delay_length = INT_MAX;
    sps.time_offset_length = INT_MAX;
    Record record{};
    kParse(stream, sizeOf(bytes), &record, &sps);
}

void hevcPictureTiming(const Bytes& bytes) {
    QVByteStream stream(bytes.data(), bytes.size());
    QVHevcSps sps{};
    sps.frame_field_info_present_flag = 1;
    QVHevcSeiPictureTiming timing{};
    QVNaluParser::parserHevcPictureTiming(stream, sizeOf(bytes), &timing, &sps);
}

void hevcDisplayOrientation(const Bytes& bytes) {
    QVByteStream stream(bytes.data(), bytes.size());
    QVHevcSeiDisplayOrientation orientation{};
    std::vector<QVSeiItem> items;
    QVNaluParser::parserHevcDisplayOrientation(stream, sizeOf(bytes), items, &orientation);
    for (const QVSeiItem& item : items) {
        qvFree(item.payloadData);
    }
}

void requestedSuffix(const Bytes& bytes) {
    QVByteStream stream(bytes.data(), bytes.size());
    std::vector<QVSeiItem> items;
    QVNaluParser::parserHevcSeiSuffix(stream, 132, sizeOf(bytes), items, nullptr, {132});
    require(items.size() == 1, "parserHevcSeiSuffix");
    qvFree(items[0].payloadData);
}

void growPayloads() {
    using Parser = QVNaluParser;
    const struct {
        const char* name;
        Call call;
    } parsers[] = {
        {"parserAvcBufferingPeriod",
         payloadWithLargestSps<QVAvcSeiBufferingPeriod, Parser::parserAvcBufferingPeriod>},
        {"parserAvcPictureTiming",
         payloadWithLargestSps<QVAvcSeiPictureTiming, Parser::parserAvcPictureTiming>},
        {"parserAvcRecoveryPoint", payload<QVAvcSeiRecoveryPoint, Parser::parserAvcRecoveryPoint>},
        {"parserAvcRegisteredUserData",
         payloadWithLargestSps<QVAvcSeiAfd, Parser::parserAvcRegisteredUserData>},
        {"parserAvcRegisteredUserDataAfd", payload<QVAvcSeiAfd, Parser::parserAvcRegisteredUserDataAfd>},
        {"parserAvcRegisteredUserDataClosedCaption",
         payloadWithoutRecord<Parser::parserAvcRegisteredUserDataClosedCaption>},
        {"parserAvcFramePackingArrangement",
         payload<QVAvcSeiFramePacking, Parser::parserAvcFramePackingArrangement>},
        {"parserAvcDisplayOrientation",
         payload<QVAvcSeiDisplayOrientation, Parser::parserAvcDisplayOrientation>},
        {"parserAvcAlternativeTransfer",
         payload<QVAvcSeiAlternativeTransfer, Parser::parserAvcAlternativeTransfer>},
        {"parserAvcGreenMetaData", payload<QVAvcSeiGreenMetaData, Parser::parserAvcGreenMetaData>},
        {"parserHevcMasteringDisplayInfo",
         payload<QVHevcSeiMasteringDisplay, Parser::parserHevcMasteringDisplayInfo>},
        {"parserHevcContentLightInfo", payload<QVHevcSeiContentLight, Parser::parserHevcContentLightInfo>},
        {"parserHevcAlternativeTransfer",
         payload<QVHevcSeiAlternativeTransfer, Parser::parserHevcAlternativeTransfer>},
        {"parserHevcPictureTiming", hevcPictureTiming},
        {"parserHevcPictureHash", payload<QVHevcSeiPictureHash, Parser::parserHevcPictureHash>},
        {"parserHevcActiveParameterSets", payloadWithoutRecord<Parser::parserHevcActiveParameterSets>},
        {"parserHevcFramePacking", payload<QVHevcSeiFramePacking, Parser::parserHevcFramePacking>},
        {"parserHevcDisplayOrientation", hevcDisplayOrientation},
        {"parserHevcRegisteredUserData", payload<QVHevcSeiA53Caption, Parser::parserHevcRegisteredUserData>},
        {"parserHevcRegisteredUserDataClosedCaption",
         payload<QVHevcSeiA53Caption, Parser::parserHevcRegisteredUserDataClosedCaption>},
        {"parserHevcSeiSuffix, kept", requestedSuffix},
    };
    for (const auto& [name, call] : parsers) {
        grow(std::string(name) + ", zeros", kSize, repeated({}, {0}), call);
        grow(std::string(name) + ", ones", kSize, repeated({}, {0xFF}), call);
    }
}

// --- Parameter sets ---

// Writes bits, most significant bit first.
class Bits {
public:
    Bits& u(unsigned width, uint64_t value) {
        for (; width > 0; --width) {
            if (used_ % 8 == 0) {
                bytes_.push_back(0);
            }
            bytes_.back() =
                static_cast<unsigned char>(bytes_.back() | (value >> (width - 1) & 1) << (7 - used_ % 8));
            ++used_;
        }
        return *this;
    }

    Bits& ue(uint64_t codeNum) {
        unsigned width = 1;
        while ((codeNum + 1) >> width != 0) {
            ++width;
        }
        return u(width - 1, 0).u(width, codeNum + 1);
    }

    const Bytes& bytes() const { return bytes_; }

private:
    Bytes bytes_;
    size_t used_ = 0;
};

// High 4:4:4 with twelve complete scaling lists and a picture order count cycle of 255 offsets.
Bytes largestAvcSps() {
    Bits bits;
    bits.u(8, 0x67).u(8, 244).u(8, 0).u(8, 51).ue(31).ue(3).u(1, 0).ue(6).ue(6).u(1, 0).u(1, 1);
    for (int list = 0; list < 12; ++list) {
        bits.u(1, 1);
        for (int i = 0; i < (list < 6 ? 16 : 64); ++i) {
            bits.ue(254);  // -127
        }
    }
    bits.ue(12).ue(1).u(1, 0).ue(0).ue(0).ue(255);
    for (int i = 0; i < 255; ++i) {
        bits.ue(0xFFFFFFFE);
    }
    bits.ue(16).u(1, 0).ue(3).ue(3).u(1, 1).u(1, 1).u(1, 0).u(1, 0).u(1, 1);
    return bits.bytes();
}

template <class Sps, bool (*kParse)(Sps*, std::shared_ptr<QVByteStream>)>
void parseSet(const Bytes& bytes) {
    Sps sps{};
    kParse(&sps, std::make_shared<QVByteStream>(bytes.data(), bytes.size()));
}

void largestIsAccepted(const Bytes& bytes) {
    QVAvcSps sps{};
    require(parseAvcSps(&sps, std::make_shared<QVByteStream>(bytes.data(), bytes.size())), "parseAvcSps");
    require(sps.poc_cycle_length == 255, "parseAvcSps");
}

void growParameterSets() {
    grow("parseAvcSps, the largest counts", kSize, repeated(largestAvcSps(), {0x80}), largestIsAccepted);
    grow("parseAvcSps, zeros", kSize, repeated({0x67, 66, 0, 30}, {0}), parseSet<QVAvcSps, parseAvcSps>);
    grow("parseAvcSps, zeros, High", kSize, repeated({0x67, 244, 0, 30}, {0}),
         parseSet<QVAvcSps, parseAvcSps>);
    grow("parseAvcSps, ones", kSize, repeated({0x67, 244, 0, 30}, {0xFF}), parseSet<QVAvcSps, parseAvcSps>);
    grow("parseHevcSps, zeros", kSize, repeated({0x42, 1}, {0}), parseSet<QVHevcSps, parseHevcSps>);
    grow("parseHevcSps, ones", kSize, repeated({0x42, 1}, {0xFF}), parseSet<QVHevcSps, parseHevcSps>);
}

// --- Side data and HDR ---

void sideData(const Bytes& bytes) {
    unsigned char payload = 0x55;
    std::vector<QVSeiItem> items(bytes.size() / 16, QVSeiItem{QVCodecIDAvc, 5, 1, false, &payload});
    unsigned char* buffer = nullptr;
    int size = 0;
    require(QVNaluParser::assembleSeiSideDataBuffer(items, &buffer, size) == QVResultOk, "side data");
    std::vector<QVSeiItem> read;
    require(qvReadSideData(buffer, size, &read) == QVSideDataOk && read.size() == items.size(), "side data");
    freepQVSideData(&buffer);
}

void hdr(const Bytes& bytes) {
    Bytes payload = bytes;
    const QVSeiItem display{QVCodecIDHevc, 137, static_cast<uint32_t>(payload.size()), false, payload.data()};
    QVHDR10StaticMetadata hdr10{};
    QVNaluParser::fillHDR10StaticMetadataFromHevcMasteringDisplayInfoSei(display, &hdr10);
    const QVSeiItem registered{QVCodecIDHevc, 4, static_cast<uint32_t>(payload.size()), false,
                               payload.data()};
    QVHDRVividDynamicMetadata vivid{};
    require(QVNaluParser::fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(registered, &vivid) ==
                QVHDRVividOk,
            "HDR Vivid");
}

void growSideData() {
    grow("assembleSeiSideDataBuffer and back, an item for 16 bytes", kSize, repeated({}, {0}), sideData);
    grow("HDR10 and HDR Vivid, ones", kSize, repeated({0x26, 0x00, 0x04, 0x00, 0x05, 0x01}, {0xFF}), hdr);
}

// --- The standard's library ---

qv::Bytes borrowed(const Bytes& bytes) {
    return {bytes.data(), bytes.size()};
}

template <class Read>
Call reading(const Read& read) {
    return [read](const Bytes& bytes) {
        const auto result = read(borrowed(bytes));
        require(result.ok() || result.fault.element.name != nullptr, "a fault names its element");
    };
}

// Units whose elements are all 0, all 1, or small codes with an emulation prevention byte every few bytes.
void growStructure(const std::string& name, const Bytes& head, const Call& read) {
    grow(name + ", zeros", kSize, repeated(head, {0}), read);
    grow(name + ", ones", kSize, repeated(head, {0xFF}), read);
    grow(name + ", 00 00 03", kSize, repeated(head, {0, 0, 3, 0x55}), read);
}

// An extension that the standard reserves: its flags go on to the end of the unit.
Bytes hevcPpsWithExtension() {
    Bits bits;
    bits.u(16, 0x4401).ue(0).ue(0).u(1, 0).u(1, 0).u(3, 0).u(1, 0).u(1, 0).ue(0).ue(0).ue(0);
    bits.u(1, 0).u(1, 0).u(1, 0).ue(0).ue(0).u(1, 0).u(1, 0).u(1, 0).u(1, 0).u(1, 0).u(1, 0);
    bits.u(1, 0).u(1, 0).u(1, 0).u(1, 0).ue(0).u(1, 0).u(1, 1).u(4, 0).u(4, 15);
    return bits.bytes();
}

// slice_group_map_type 6 of as many map units as the bytes have groups of 3 bits, nearly.
Bytes avcPpsWithSliceGroups(size_t size) {
    Bits bits;
    bits.u(8, 0x68).ue(0).ue(0).u(1, 0).u(1, 0).ue(7).ue(6).ue(2 * size);
    return repeated(bits.bytes(), {0x55})(size);
}

void growStructures() {
    growStructure("avc::readSps", {0x67, 244, 0, 30},
                  reading([](qv::Bytes unit) { return qv::avc::readSps(unit); }));
    grow("avc::readSps, the largest counts", kSize, repeated(largestAvcSps(), {0x80}),
         reading([](qv::Bytes unit) { return qv::avc::readSps(unit); }));
    growStructure("avc::readSubsetSps", {0x6F, 118, 0, 30},
                  reading([](qv::Bytes unit) { return qv::avc::readSubsetSps(unit); }));
    growStructure("avc::readSpsExtension", {0x6D},
                  reading([](qv::Bytes unit) { return qv::avc::readSpsExtension(unit); }));
    const Call readAvcPps = reading([](qv::Bytes unit) { return qv::avc::readPps(unit, 3); });
    growStructure("avc::readPps", {0x68}, readAvcPps);
    grow("avc::readPps, slice_group_id", kSize, avcPpsWithSliceGroups, readAvcPps);
    growStructure("avc::readAccessUnitDelimiter", {0x09},
                  reading([](qv::Bytes unit) { return qv::avc::readAccessUnitDelimiter(unit); }));
    growStructure("avc::readEndOfSequence", {0x0A},
                  reading([](qv::Bytes unit) { return qv::avc::readEndOfSequence(unit); }));
    growStructure("avc::readFillerData", {0x0C},
                  reading([](qv::Bytes unit) { return qv::avc::readFillerData(unit); }));
    growStructure("avc::readPrefixNalUnit", {0x6E, 0x80, 0, 7},
                  reading([](qv::Bytes unit) { return qv::avc::readPrefixNalUnit(unit); }));
    growStructure("hevc::readVps", {0x40, 1},
                  reading([](qv::Bytes unit) { return qv::hevc::readVps(unit); }));
    growStructure("hevc::readSps", {0x42, 1},
                  reading([](qv::Bytes unit) { return qv::hevc::readSps(unit); }));
    const Call readHevcPps = reading([](qv::Bytes unit) { return qv::hevc::readPps(unit); });
    growStructure("hevc::readPps", {0x44, 1}, readHevcPps);
    growStructure("hevc::readPps, pps_extension_data_flag", hevcPpsWithExtension(), readHevcPps);
    growStructure("hevc::readAccessUnitDelimiter", {0x46, 1},
                  reading([](qv::Bytes unit) { return qv::hevc::readAccessUnitDelimiter(unit); }));
    growStructure("hevc::readFillerData", {0x4C, 1},
                  reading([](qv::Bytes unit) { return qv::hevc::readFillerData(unit); }));
}

void growConfigurationRecords() {
    const Call readAvc = reading([](qv::Bytes bytes) { return qv::avc::readConfigurationRecord(bytes); });
    const Call readHevc = reading([](qv::Bytes bytes) { return qv::hevc::readConfigurationRecord(bytes); });
    const Bytes avc = {1, 100, 0, 30, 0xFF};
    Bytes hevc(22);
    hevc[0] = 1;
    hevc[21] = 3;
    hevc.push_back(255);  // numOfArrays
    growStructure("avc::readConfigurationRecord", avc, readAvc);
    grow("hevc::readConfigurationRecord, zeros", kSize, repeated(hevc, {0}), readHevc);
    grow("hevc::readConfigurationRecord, ones", kSize, repeated(hevc, {0xFF}), readHevc);
    // Units of 768 bytes at most. With 55 in the pattern they have up to 21 760, and the work grows in steps.
    grow("hevc::readConfigurationRecord, 00 00 03", kSize, repeated(hevc, {0, 0, 3}), readHevc);
    grow("hevc::readConfigurationRecord, units of a byte", kSize,
         repeated(
             [&hevc] {
                 Bytes head = hevc;
                 head.insert(head.end(), {0x20, 0xFF, 0xFF});
                 return head;
             }(),
             {0, 1, 0x40}),
         readHevc);
    grow("forEachConfigurationUnit, start codes", kSize, repeated({}, {0, 0, 1, 0x67}),
         [](const Bytes& bytes) {
             size_t units = 0;
             qv::forEachConfigurationUnit(qv::Codec::Avc, borrowed(bytes),
                                          [&](const qv::NalUnit&) { ++units; });
             require(units >= bytes.size() / 4, "units of a configuration");
         });
}

Call walking(qv::Framing framing, size_t bytesOfAUnit) {
    return [=](const Bytes& bytes) {
        size_t units = 0;
        size_t end = 0;
        for (const qv::NalUnit& unit : qv::NalUnits(borrowed(bytes), framing, qv::Codec::Avc)) {
            ++units;
            end = unit.end();
        }
        require(end == bytes.size() && units >= bytes.size() / bytesOfAUnit, "NalUnits");
    };
}

void reframing(qv::Framing from, qv::Framing to, const Bytes& bytes) {
    std::vector<uint8_t> out;
    const qv::Reframed reframed = qv::reframe(borrowed(bytes), {from, to, 3}, out);
    require(reframed.size == out.size(), "reframe");
}

void mapEveryByte(const Bytes& bytes) {
    qv::RbspPositions positions(borrowed(bytes), 1);
    const size_t size = qv::unescapedSize(borrowed(bytes), 1);
    size_t last = 0;
    for (size_t i = 0; i < size; ++i) {
        last = positions.codedByte(i);
    }
    require(last < bytes.size(), "RbspPositions");
}

void escapeAndBack(const Bytes& bytes) {
    std::vector<uint8_t> coded(qv::mostEscapedSize(bytes.size()));
    coded.resize(qv::escape(borrowed(bytes), 1, coded.data(), coded.size()));
    // An emulation prevention byte at the end stays where the RBSP does not end with whole cabac_zero_words.
    const size_t size = qv::unescape(borrowed(coded), 1, coded.data(), coded.size());
    require(size == bytes.size() || size == bytes.size() + 1, "Rbsp");
}

void growUnits() {
    const auto zeros = repeated({}, {0});
    const struct {
        const char* name;
        std::function<Bytes(size_t)> input;
        size_t bytesOfAUnit;
    } streams[] = {
        {"zeros", repeated(kStartCode, {0}), SIZE_MAX},
        {"no start code", repeated({}, {0}), SIZE_MAX},
        {"start codes alone", repeated({}, {0, 0, 1}), 3},
        {"a start code every 4 bytes", repeated({}, kStartCode), 4},
        {"00 01", repeated(kStartCode, {0, 1}), SIZE_MAX},
        {"00 00 03", repeated(kStartCode, {0, 0, 3}), SIZE_MAX},
    };
    for (const auto& [name, input, bytesOfAUnit] : streams) {
        grow(std::string("NalUnits, ") + name, kSize, input, walking(qv::Framing::StartCodes, bytesOfAUnit));
        grow(std::string("reframe to lengths, ") + name, kSize, input,
             [](const Bytes& bytes) { reframing(qv::Framing::StartCodes, qv::Framing::Lengths4, bytes); });
        grow(std::string("probeCodec, ") + name, kSize, input,
             [](const Bytes& bytes) { require(qv::probeCodec(borrowed(bytes)).bytes != 0, "probe"); });
        grow(std::string("RbspPositions, ") + name, kSize, input, mapEveryByte);
        grow(std::string("escape and unescape, ") + name, kSize, input, escapeAndBack);
    }
    grow("NalUnits, empty units, 1-byte lengths", kSize, zeros, walking(qv::Framing::Lengths1, 1));
    grow("NalUnits, empty units, 4-byte lengths", kSize, zeros, walking(qv::Framing::Lengths4, 4));
    grow("reframe to start codes, units of a byte, 1-byte lengths", kSize, repeated({}, {1, 0x41}),
         [](const Bytes& bytes) { reframing(qv::Framing::Lengths1, qv::Framing::StartCodes, bytes); });
    grow("probeCodec, units of a byte, 1-byte lengths", kSize, repeated({}, {1, 0x41}),
         [](const Bytes& bytes) { qv::probeCodec(borrowed(bytes)); });
}

// An SPS of 4 bits of frame_num, and a PPS of CAVLC.
const qv::avc::ParameterSets& setsOfSlices() {
    static const auto sets = [] {
        auto made = std::make_unique<qv::avc::ParameterSets>();
        const Bytes sps = {0x67, 0x42, 0x00, 0x1E, 0xDA, 0x05, 0x07, 0xE4};
        const Bytes pps = {0x68, 0xCE, 0x38, 0x80};
        require(!made->take(borrowed(sps)).fault && !made->take(borrowed(pps)).fault, "the sets of slices");
        return made;
    }();
    return *sets;
}

void readSlice(const Bytes& bytes) {
    const auto slice = qv::avc::readSliceHeader(borrowed(bytes), setsOfSlices());
    require(slice.fault.kind == qv::FaultKind::EndOfData, "a slice header without an end");
}

void writeSliceAgain(const Bytes& bytes) {
    const auto slice = qv::avc::readSliceHeader(borrowed(bytes), setsOfSlices());
    std::vector<uint8_t> out;
    require(qv::avc::writeSlice(slice.record, setsOfSlices(), borrowed(bytes), out).size == bytes.size(),
            "writeSlice");
}

void growSlices() {
    setsOfSlices();  // they are made before anything is counted
    // difference_of_pic_nums_minus1 0 again and again, in four bits each.
    grow("readSliceHeader, memory management without end", kSize, repeated({0x61, 0x88, 0x85}, {0x55}),
         readSlice);
    grow("readSliceHeader, a list without end", kSize, repeated({0x01, 0xE0}, {0xFF}), readSlice);
    grow("writeSlice, 00 00 03 01", kSize, repeated({0x01, 0x88, 0x87}, {0, 0, 3, 1}), writeSliceAgain);
}

void readEveryMessage(const Bytes& bytes) {
    size_t messages = 0;
    for (const qv::SeiMessage& message : qv::SeiMessages(borrowed(bytes), qv::Codec::Avc)) {
        uint32_t value = 0;
        message.reader().u(8, "byte", value);
        ++messages;
    }
    require(messages > 0, "SeiMessages");
}

void removeEveryOther(const Bytes& bytes) {
    std::vector<uint8_t> out;
    size_t messages = 0;
    qv::sei::removeMessages(borrowed(bytes), qv::Codec::Avc, out,
                            [&messages](const qv::SeiMessage&) { return messages++ % 2 == 0; });
    require(messages > 0 || out == bytes, "removeMessages");
}

// A payload that takes nearly the whole unit.
Bytes oneSeiPayload(size_t size) {
    Bytes unit = {0x06, 0x05};
    unit.insert(unit.end(), size / 512, 0xFF);
    unit.push_back(0);
    return repeated(unit, {0, 0, 3, 1})(size);
}

void growSeiMessages() {
    const struct {
        const char* name;
        std::function<Bytes(size_t)> input;
    } units[] = {
        {"zeros", repeated({0x06}, {0})},
        {"ones", repeated({0x06}, {0xFF})},
        {"no payloads", repeated({0x06}, {5, 0})},
        {"messages that look like trailing bits", repeated({0x06}, {0x80, 0})},
        {"payloads of a byte", repeated({0x06}, {5, 1, 0x55})},
        {"00 00 03 at the end of each message", repeated({0x06}, {5, 2, 0, 0, 3})},
        {"one payload", oneSeiPayload},
    };
    for (const auto& [name, input] : units) {
        grow(std::string("SeiMessages, ") + name, kSize, input, readEveryMessage);
        grow(std::string("removeMessages, ") + name, kSize, input, removeEveryOther);
    }
}

// --- SEI units traced and rewritten, with parameter sets in force ---

constexpr unsigned kSeiTypes = 206;  // H.264 and H.265 define types up to 205

// Only counts.
class CountingVisitor : public qv::TraceVisitor {
public:
    void element(const qv::TracedElement& element) override { bits += element.width; }
    uint64_t bits = 0;
};

template <class Sets>
struct SeiUse {
    qv::UnitTrace (*traceUnit)(qv::Bytes, const Sets&, qv::TraceVisitor&);
    qv::UnitRewritten (*rewriteUnit)(qv::Bytes, const Sets&, std::vector<uint8_t>&);
    Sets sets;

    void traceAndRewrite(const Bytes& unit) const {
        CountingVisitor visitor;
        traceUnit(borrowed(unit), sets, visitor);
        require(visitor.bits != 0, "a trace has elements");
        std::vector<uint8_t> out;
        out.reserve(unit.size());
        rewriteUnit(borrowed(unit), sets, out);
    }
};

// A message of each type in turn, whose payload of 16 bytes repeats a pattern.
std::function<Bytes(size_t)> messagesOfEveryType(const Bytes& header, const Bytes& pattern) {
    constexpr size_t kPayload = 16;
    Bytes messages;
    for (unsigned type = 0; type < kSeiTypes; ++type) {
        const Bytes payload = repeated({}, pattern)(kPayload);
        messages.push_back(static_cast<unsigned char>(type));
        messages.push_back(kPayload);
        messages.insert(messages.end(), payload.begin(), payload.end());
    }
    return repeated(header, messages);
}

// A header and a payload that takes the rest of the unit, whose type is filled in later.
std::function<Bytes(size_t)> onePayload(const Bytes& header, const Bytes& pattern) {
    return [=](size_t size) {
        Bytes unit = header;
        unit.push_back(0);
        const size_t left = size - unit.size() - 1;
        const size_t payload = left - left / 255 - 1;
        unit.insert(unit.end(), payload / 255, 0xFF);
        unit.push_back(static_cast<unsigned char>(payload % 255));
        unit = repeated(unit, pattern)(size);
        unit.back() = 0x80;
        return unit;
    };
}

template <class Sets>
void growSeiUses(const SeiUse<Sets>& use, const char* name, const Bytes& header) {
    const struct {
        const char* name;
        Bytes bytes;
    } patterns[] = {{"zeros", {0}}, {"ones", {0xFF}}, {"00 00 03", {0, 0, 3, 0x55}}, {"80", {0x80}}};
    const auto call = [&use](const Bytes& unit) { use.traceAndRewrite(unit); };
    for (const auto& pattern : patterns) {
        grow(std::string(name) + ", messages of every type, " + pattern.name, kSize,
             messagesOfEveryType(header, pattern.bytes), call);
        grow(std::string(name) + ", a long payload of every type, " + pattern.name, kSize / 16,
             onePayload(header, pattern.bytes), [&use, &header](const Bytes& unit) {
                 for (unsigned type = 0; type < kSeiTypes; ++type) {
                     Bytes ofType = unit;
                     ofType[header.size()] = static_cast<unsigned char>(type);
                     use.traceAndRewrite(ofType);
                 }
             });
    }
    grow(std::string(name) + ", no payloads", kSize, closed(repeated(header, {3, 0}), {0x80}), call);
    grow(std::string(name) + ", ff_bytes", kSize, repeated(header, {0xFF}), call);
}

// all_layers_flag 1, and messages without bytes in the rest of the payload.
Bytes nestedMessages(size_t size) {
    Bytes unit = onePayload({0x4E, 1}, {3, 0})(size);
    unit[2] = 133;
    for (size_t i = 3; i + 1 < size; ++i) {
        if (unit[i] != 0xFF) {
            unit[i + 1] = 0x20;
            break;
        }
    }
    return unit;
}

template <class Sets>
void takeSets(Sets& sets, qv::Codec codec, const Bytes& stream) {
    for (const qv::NalUnit& unit : qv::NalUnits(borrowed(stream), qv::Framing::StartCodes, codec)) {
        require(sets.take(unit.bytes).event != qv::SetEvent::Broken, "a parameter set");
    }
}

void growSeiUnits() {
    const auto avc = std::make_unique<SeiUse<qv::avc::ParameterSets>>();
    avc->traceUnit = qv::avc::traceUnit;
    avc->rewriteUnit = qv::avc::rewriteUnit;
    takeSets(avc->sets, qv::Codec::Avc, qv_test::avcSetsForSei());
    growSeiUses(*avc, "avc::traceUnit and rewriteUnit", {0x06});
    const auto hevc = std::make_unique<SeiUse<qv::hevc::ParameterSets>>();
    hevc->traceUnit = qv::hevc::traceUnit;
    hevc->rewriteUnit = qv::hevc::rewriteUnit;
    takeSets(hevc->sets, qv::Codec::Hevc, qv_test::hevcSetsForSei());
    growSeiUses(*hevc, "hevc::traceUnit and rewriteUnit", {0x4E, 0x01});
    grow("hevc::traceUnit and rewriteUnit, nested messages", kSize, nestedMessages,
         [&hevc](const Bytes& unit) { hevc->traceAndRewrite(unit); });
}

template <class Sets>
void takeEveryUnit(qv::Codec codec, const Bytes& bytes) {
    Sets sets;
    for (const qv::NalUnit& unit : qv::NalUnits(borrowed(bytes), qv::Framing::StartCodes, codec)) {
        sets.take(unit.bytes);
    }
}

void growParameterSetsInForce() {
    const auto takeAvc = [](const Bytes& bytes) {
        takeEveryUnit<qv::avc::ParameterSets>(qv::Codec::Avc, bytes);
    };
    const auto takeHevc = [](const Bytes& bytes) {
        takeEveryUnit<qv::hevc::ParameterSets>(qv::Codec::Hevc, bytes);
    };
    grow("avc::ParameterSets, one long SPS", kSize, repeated({0, 0, 1, 0x67, 66, 0, 30}, {0xFF}), takeAvc);
    grow("avc::ParameterSets, the smallest SPS", kSize, repeated({}, {0, 0, 1, 0x67}), takeAvc);
    grow("avc::ParameterSets, the smallest PPS", kSize,
         repeated({}, {0, 0, 1, 0x68, 0xFF, 0, 0, 1, 0x68, 0x7F}), takeAvc);
    grow("hevc::ParameterSets, one long PPS", kSize, repeated({0, 0, 1, 0x44, 1}, {0xFF}), takeHevc);
    grow("hevc::ParameterSets, VPS and SPS of a layer above 0", kSize,
         repeated({}, {0, 0, 1, 0x40, 1, 0x0C, 0, 0, 1, 0x42, 9, 0x0E, 0x85}), takeHevc);
}

}  // namespace

int main() {
    qvSetTraceLevel(-1);
    growFraming();
    growSei();
    growPayloads();
    growParameterSets();
    growSideData();
    growStructures();
    growConfigurationRecords();
    growUnits();
    growSlices();
    growSeiMessages();
    growSeiUnits();
    growParameterSetsInForce();
}
