#include "EveryOperation.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <ostream>

namespace qv_test {

namespace {

using Parser = QVNaluParser;

// Room for any record, so that keeping one allocates nothing.
constexpr size_t kMostRecordBytes = 4096;

int sizeOf(size_t size) {
    return static_cast<int>(size);
}

QVCodecParameters codecParameters(const Parameters& parameters, bool isAnnexB) {
    return {parameters.codec, isAnnexB ? 1U : 0U, static_cast<uint8_t>(parameters.lengthSize)};
}

// Calls parse(stream, record) on the caller's bytes and keeps what it filled.
template <class Record, class Parse>
int withRecord(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller, Parse parse) {
    PlacedReader stream(data, size);
    moveTo(stream, parameters.cursor);
    Record record;
    std::memset(&record, 0, sizeof record);
    const int result = parse(stream, &record);
    caller.record.resize(sizeof record);
    std::memcpy(caller.record.data(), &record, sizeof record);
    caller.cursor = cursorOf(stream);
    return result;
}

template <class Call>
int withReader(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller, Call call) {
    PlacedReader stream(data, size);
    moveTo(stream, parameters.cursor);
    const int result = call(stream);
    caller.cursor = cursorOf(stream);
    return result;
}

template <class Record, int (*kParse)(QVByteStream&, int, Record*)>
int payload(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    return withRecord<Record>(data, size, parameters, caller, [&](QVByteStream& stream, Record* record) {
        return kParse(stream, parameters.payloadSize, record);
    });
}

template <class Record, class Sps, int (*kParse)(QVByteStream&, int, Record*, Sps*), Sps Parameters::*kSps>
int payloadWithSps(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    Sps sps = parameters.*kSps;
    return withRecord<Record>(data, size, parameters, caller, [&](QVByteStream& stream, Record* record) {
        return kParse(stream, parameters.payloadSize, record, &sps);
    });
}

template <int (*kParse)(QVByteStream&, int)>
int payloadWithoutRecord(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    return withReader(data, size, parameters, caller,
                      [&](QVByteStream& stream) { return kParse(stream, parameters.payloadSize); });
}

template <int (*kDispatch)(QVByteStream&, int, int, std::vector<QVSeiItem>&, QVHevcSps*, const Requested&)>
int dispatch(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    QVHevcSps sps = parameters.hevcSps;
    return withReader(data, size, parameters, caller, [&](QVByteStream& stream) {
        return kDispatch(stream, parameters.payloadType, parameters.payloadSize, caller.items, &sps,
                         parameters.requested);
    });
}

template <class Sps, bool (*kParse)(Sps*, const std::shared_ptr<QVByteStream>&)>
int parameterSet(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    PlacedReader stream(data, size);
    moveTo(stream, parameters.cursor);
    // Without a control block, which would be an allocation of the test itself.
    const std::shared_ptr<QVByteStream> shared(std::shared_ptr<QVByteStream>(), &stream);
    Sps sps;
    std::memset(&sps, 0, sizeof sps);
    const bool isAccepted = kParse(&sps, shared);
    caller.record.resize(sizeof sps);
    std::memcpy(caller.record.data(), &sps, sizeof sps);
    caller.cursor = cursorOf(stream);
    return isAccepted ? 1 : 0;
}

bool parseAvc(QVAvcSps* sps, const std::shared_ptr<QVByteStream>& stream) {
    return parseAvcSps(sps, stream);
}

bool parseHevc(QVHevcSps* sps, const std::shared_ptr<QVByteStream>& stream) {
    return parseHevcSps(sps, stream);
}

int isAnnexB(unsigned char* data, size_t size, const Parameters&, Caller&) {
    return Parser::isAnnexBData(data, sizeOf(size)) ? 1 : 0;
}

int scanByteStream(unsigned char* data, size_t size, const Parameters&, Caller& caller) {
    return Parser::parserDataToNaluIdx(data, sizeOf(size), caller.nalus);
}

int scanLengths(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    return Parser::parserDataToNalus(data, sizeOf(size), caller.nalus, parameters.lengthSize);
}

// Units everywhere in the bytes, and one after them, which must not be read.
int typeUnits(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    static thread_local NalIndexList nalus;
    nalus.clear();
    for (size_t i = 0; i < size; i += 1 + i / 2) {
        nalus.emplace_back(sizeOf(i), sizeOf(size - i));
    }
    nalus.emplace_back(sizeOf(size), 0);
    return Parser::parseNalusToNaluType(data, nalus, caller.infos, parameters.codec);
}

int cutByteStream(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    const QVCodecParameters params = codecParameters(parameters, true);
    return Parser::parserDataToNaluType(data, sizeOf(size), caller.infos, &params);
}

int cutLengths(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    const QVCodecParameters params = codecParameters(parameters, false);
    return Parser::parserDataToNaluType(data, sizeOf(size), caller.infos, &params);
}

int keyFrame(unsigned char* data, size_t size, const Parameters& parameters, Caller&) {
    return Parser::isKeyFrame(parameters.codec, data, sizeOf(size)) ? 1 : 0;
}

int toLengths(unsigned char* data, size_t size, const Parameters&, Caller& caller) {
    return Parser::converAnnexBToAvcC(data, sizeOf(size), caller.out);
}

int toByteStream(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    return Parser::connvertAvcCToAnnexB(data, sizeOf(size), parameters.lengthSize, &caller.buffer,
                                        caller.bufferSize);
}

int walkUnit(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    QVAvcSps avcSps = parameters.avcSps;
    QVHevcSps hevcSps = parameters.hevcSps;
    void* const sps =
        parameters.codec == QVCodecIDAvc ? static_cast<void*>(&avcSps) : static_cast<void*>(&hevcSps);
    const Parser::NaluInfo unit{static_cast<uint32_t>(parameters.naluType), 0, sizeOf(size), false};
    return Parser::parserDataToSei(parameters.codec, data, unit, caller.items, sps, parameters.requested);
}

int walkAvc(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    QVAvcSps sps = parameters.avcSps;
    return Parser::parserAvcDataToSei(data, sizeOf(size), caller.items, &sps, parameters.requested);
}

int walkHevc(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    QVHevcSps sps = parameters.hevcSps;
    return Parser::parserHevcDataToSei(parameters.naluType, data, sizeOf(size), caller.items, &sps,
                                       parameters.requested);
}

int payloadParams(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    int sums[2] = {0, 0};
    const int result = withReader(data, size, parameters, caller, [&](QVByteStream& stream) {
        return Parser::parserPayloadParams(stream, sums[0], sums[1]);
    });
    caller.record.resize(sizeof sums);
    std::memcpy(caller.record.data(), sums, sizeof sums);
    return result;
}

int capture(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    return withReader(data, size, parameters, caller, [&](QVByteStream& stream) {
        return Parser::fillSeiDataWithoutParsing(stream, parameters.payloadSize, caller.items,
                                                 parameters.codec, parameters.payloadType, false);
    });
}

int displayOrientation(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    return withRecord<QVHevcSeiDisplayOrientation>(
        data, size, parameters, caller, [&](QVByteStream& stream, QVHevcSeiDisplayOrientation* record) {
            return Parser::parserHevcDisplayOrientation(stream, parameters.payloadSize, caller.items, record);
        });
}

QVSeiItem itemOf(unsigned char* data, size_t size, uint32_t payloadType) {
    return {QVCodecIDHevc, payloadType, static_cast<uint32_t>(size), false, size > 0 ? data : nullptr};
}

int sideData(unsigned char* data, size_t size, const Parameters&, Caller& caller) {
    static thread_local std::vector<QVSeiItem> items;
    items.assign(3, itemOf(data, size, 4));
    unsigned char* buffer = nullptr;
    return Parser::assembleSeiSideDataBuffer(items, &buffer, caller.bufferSize);
}

int hdr10(unsigned char* data, size_t size, const Parameters&, Caller& caller) {
    QVHDR10StaticMetadata metadata;
    std::memset(&metadata, 0, sizeof metadata);
    const int result =
        Parser::fillHDR10StaticMetadataFromHevcMasteringDisplayInfoSei(itemOf(data, size, 137), &metadata);
    caller.record.resize(sizeof metadata);
    std::memcpy(caller.record.data(), &metadata, sizeof metadata);
    return result;
}

int hdrVivid(unsigned char* data, size_t size, const Parameters&, Caller&) {
    return Parser::fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(itemOf(data, size, 4), nullptr);
}

// One operation of the reader, with the count of the parameters.
template <class Call>
int readWith(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller, Call call) {
    uint32_t value = 0;
    withReader(data, size, parameters, caller, [&](QVByteStream& stream) {
        value = call(stream, parameters.count);
        return 0;
    });
    caller.record.resize(sizeof value);
    std::memcpy(caller.record.data(), &value, sizeof value);
    return 0;
}

template <uint32_t (QVByteStream::*kRead)()>
int readOne(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    return readWith(data, size, parameters, caller,
                    [](QVByteStream& stream, int64_t) { return (stream.*kRead)(); });
}

template <class Count, uint32_t (QVByteStream::*kRead)(Count)>
int readCount(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    return readWith(data, size, parameters, caller, [](QVByteStream& stream, int64_t count) {
        return (stream.*kRead)(static_cast<Count>(count));
    });
}

template <class Count, void (QVByteStream::*kMove)(Count)>
int moveCount(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    return readWith(data, size, parameters, caller, [](QVByteStream& stream, int64_t count) {
        (stream.*kMove)(static_cast<Count>(count));
        return 0U;
    });
}

int readGolombSe(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    return readWith(data, size, parameters, caller, [](QVByteStream& stream, int64_t) {
        return static_cast<uint32_t>(stream.readGolombSe());
    });
}

// Raw capture of as many bytes as the caller has, from the caller's cursor.
int readRbspBytes(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller) {
    caller.record.resize(size);
    return withReader(data, size, parameters, caller, [&](QVByteStream& stream) {
        stream.readRbspBytes(caller.record.data(), size);
        return 0;
    });
}

// The reader's own copy, read to the end.
int copyOfBytes(unsigned char* data, size_t size, const Parameters&, Caller& caller) {
    QVByteStream stream(data, size);
    caller.record.resize(size);
    stream.readRbspBytes(caller.record.data(), size);
    caller.cursor = cursorOf(stream);
    return sizeOf(static_cast<size_t>(stream.size));
}

}  // namespace

const std::vector<Operation>& everyOperation() {
    static const std::vector<Operation> operations = {
        {"isAnnexBData", isAnnexB},
        {"parserDataToNaluIdx", scanByteStream},
        {"parserDataToNalus", scanLengths},
        {"parseNalusToNaluType", typeUnits},
        {"parserDataToNaluType, Annex B", cutByteStream},
        {"parserDataToNaluType, lengths", cutLengths},
        {"isKeyFrame", keyFrame},
        {"converAnnexBToAvcC", toLengths},
        {"connvertAvcCToAnnexB", toByteStream},
        {"parserDataToSei", walkUnit},
        {"parserAvcDataToSei", walkAvc},
        {"parserHevcDataToSei", walkHevc},
        {"parserHevcSeiPrefix", dispatch<Parser::parserHevcSeiPrefix>},
        {"parserHevcSeiSuffix", dispatch<Parser::parserHevcSeiSuffix>},
        {"parserPayloadParams", payloadParams},
        {"fillSeiDataWithoutParsing", capture},
        {"assembleSeiSideDataBuffer", sideData},
        {"parserAvcBufferingPeriod", payloadWithSps<QVAvcSeiBufferingPeriod, QVAvcSps,
                                                    Parser::parserAvcBufferingPeriod, &Parameters::avcSps>},
        {"parserAvcPictureTiming", payloadWithSps<QVAvcSeiPictureTiming, QVAvcSps,
                                                  Parser::parserAvcPictureTiming, &Parameters::avcSps>},
        {"parserAvcRecoveryPoint", payload<QVAvcSeiRecoveryPoint, Parser::parserAvcRecoveryPoint>},
        {"parserAvcRegisteredUserData",
         payloadWithSps<QVAvcSeiAfd, QVAvcSps, Parser::parserAvcRegisteredUserData, &Parameters::avcSps>},
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
        {"parserHevcPictureTiming", payloadWithSps<QVHevcSeiPictureTiming, QVHevcSps,
                                                   Parser::parserHevcPictureTiming, &Parameters::hevcSps>},
        {"parserHevcPictureHash", payload<QVHevcSeiPictureHash, Parser::parserHevcPictureHash>},
        {"parserHevcActiveParameterSets", payloadWithoutRecord<Parser::parserHevcActiveParameterSets>},
        {"parserHevcFramePacking", payload<QVHevcSeiFramePacking, Parser::parserHevcFramePacking>},
        {"parserHevcDisplayOrientation", displayOrientation},
        {"parserHevcRegisteredUserData", payload<QVHevcSeiA53Caption, Parser::parserHevcRegisteredUserData>},
        {"parserHevcRegisteredUserDataClosedCaption",
         payload<QVHevcSeiA53Caption, Parser::parserHevcRegisteredUserDataClosedCaption>},
        {"fillHDR10StaticMetadataFromHevcMasteringDisplayInfoSei", hdr10},
        {"fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei", hdrVivid},
        {"parseAvcSps", parameterSet<QVAvcSps, parseAvc>},
        {"parseHevcSps", parameterSet<QVHevcSps, parseHevc>},
        {"QVByteStream", copyOfBytes},
        {"QVByteStream::readRbspBits", readCount<unsigned long, &QVByteStream::readRbspBits>},
        {"QVByteStream::readRbspBytes", readRbspBytes},
        {"QVByteStream::readBit", readOne<&QVByteStream::readBit>},
        {"QVByteStream::readBits", readCount<uint32_t, &QVByteStream::readBits>},
        {"QVByteStream::readGolombUe", readOne<&QVByteStream::readGolombUe>},
        {"QVByteStream::readGolombSe", readGolombSe},
        {"QVByteStream::skipBits", moveCount<uint64_t, &QVByteStream::skipBits>},
        {"QVByteStream::skipBytes", moveCount<uint64_t, &QVByteStream::skipBytes>},
        {"QVByteStream::readByte", readOne<&QVByteStream::readByte>},
        {"QVByteStream::seekBytes", moveCount<int64_t, &QVByteStream::seekBytes>},
    };
    return operations;
}

Parameters randomParameters(std::mt19937& random, size_t size) {
    static constexpr int kPayloadTypes[] = {0, 1, 4, 5, 6, 45, 47, 56, 129, 132, 137, 144, 147, 256, 200};
    const auto below = [&random](size_t bound) { return static_cast<size_t>(random()) % bound; };
    const auto anyType = [&] { return kPayloadTypes[below(std::size(kPayloadTypes))]; };
    Parameters parameters;
    parameters.codec = below(2) == 0 ? QVCodecIDAvc : QVCodecIDHevc;
    parameters.lengthSize = static_cast<int>(below(6));
    parameters.naluType = below(4) == 0 ? 40 : 39;
    parameters.payloadType = anyType();
    parameters.payloadSize = static_cast<int>(below(2) == 0 ? below(size + 8) : below(64));
    parameters.count = static_cast<int64_t>(below(80)) - 40;
    if (below(16) == 0) {
        parameters.count = below(2) == 0 ? INT64_MAX : INT64_MIN;
    }
    parameters.requested.resize(below(3));
    std::generate(parameters.requested.begin(), parameters.requested.end(), anyType);
    if (below(2) == 0) {
        parameters.cursor = {below(size + 3), static_cast<unsigned>(below(8)),
                             static_cast<unsigned>(below(8))};
    }
    QVAvcSps& sps = parameters.avcSps;
    sps.nal_hrd_parameters_present_flag = static_cast<int32_t>(below(2));
    sps.vcl_hrd_parameters_present_flag = static_cast<int32_t>(below(2));
    sps.pic_struct_present_flag = static_cast<int32_t>(below(2));
    sps.cpb_cnt = below(8) == 0 ? INT32_MAX : static_cast<int32_t>(below(40));
    sps.initial_cpb_removal_delay_length = static_cast<int32_t>(below(40)) - 2;
    sps.cpb_removal_delay_length = static_cast<int32_t>(below(40)) - 2;
    sps.dpb_output_delay_length = static_cast<int32_t>(below(40)) - 2;
    sps.time_offset_length = static_cast<int32_t>(below(40)) - 2;
    parameters.hevcSps.frame_field_info_present_flag = static_cast<int32_t>(below(2));
    return parameters;
}

Caller::Caller() {
    record.reserve(kMostRecordBytes);
}

Caller::~Caller() {
    for (const QVSeiItem& item : items) {
        releaseBlock(item.payloadData);
    }
    if (buffer != nullptr) {
        releaseBlock(buffer);
    }
}

std::vector<KeptItem> Caller::kept() const {
    std::vector<KeptItem> values;
    for (const QVSeiItem& item : items) {
        values.push_back(keptItem(item));
    }
    return values;
}

Outcome outcomeOf(int result, const Caller& caller) {
    std::vector<std::string> infos;
    for (const Parser::NaluInfo& info : caller.infos) {
        infos.push_back(std::to_string(info.naluType) + " " + std::to_string(info.offset) + " " +
                        std::to_string(info.length) + (info.isNonReference ? " non-reference" : ""));
    }
    const Bytes buffer =
        caller.buffer != nullptr ? Bytes(caller.buffer, caller.buffer + caller.bufferSize) : Bytes();
    return {result, caller.nalus,      infos,         caller.out,   caller.kept(),
            buffer, caller.bufferSize, caller.record, caller.cursor};
}

bool operator==(const Outcome& a, const Outcome& b) {
    return a.result == b.result && a.nalus == b.nalus && a.infos == b.infos && a.out == b.out &&
           a.items == b.items && a.buffer == b.buffer && a.bufferSize == b.bufferSize &&
           a.record == b.record && a.cursor == b.cursor;
}

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
    return out << "result " << outcome.result << ", " << outcome.nalus.size() << " pairs, "
               << outcome.infos.size() << " units, " << outcome.out.size() << " bytes, "
               << outcome.items.size() << " items, a buffer of " << outcome.buffer.size() << " ("
               << outcome.bufferSize << "), a record of " << outcome.record.size() << ", cursor at "
               << outcome.cursor;
}

}  // namespace qv_test
