// user_data_registered_itu_t_t35() with A/53 captions: ITU-T H.265 (08/2021) D.2.6, ATSC A/53 Part 4 (2009)
// 6.2. Captions are validated and walked, not kept.
#include <cstdint>

#include "QVNaluParser.h"
#include "detail/A53Captions.h"
#include "detail/Log.h"
#include "detail/PlainBits.h"
#include "detail/SeiTypes.h"

using namespace qv_detail;

namespace {

// cc_data() after user_data_type_code. Unlike in H.264, the bytes of a construct are skipped one by one.
void skipCcData(QVByteStream& stream, int size) {
    PlainBits in(stream);
    const int cc_count = readCcCount(stream, size);
    for (int i = 0; i < cc_count; ++i) {
        in.skip(5 + 1 + 2);  // marker_bits, cc_valid, cc_type
        in.skip(8);          // cc_data_1
        in.skip(8);          // cc_data_2
    }
    if (cc_count > 0) {
        in.skip(8);  // marker_bits
    }
}

}  // namespace

int QVNaluParser::parserHevcRegisteredUserData(QVByteStream& stream, int payloadSize,
                                               QVHevcSeiA53Caption* a53Caption) {
    constexpr const char* kFunction = "parserHevcRegisteredUserData";
    if (a53Caption == nullptr) {
        QV_LOG(QVTraceError, kFunction, "parserHevcRegisteredUserData: a53Caption is NULL!\n");
        return QVResultFailed;
    }
    if (payloadSize < kT35HeaderSize) {
        QV_LOG(QVTraceError, kFunction, "parserHevcRegisteredUserData: payloadSize < 7 !\n");
        return QVResultFailed;
    }
    PlainBits in(stream);
    int remaining = payloadSize - kT35HeaderSize;
    const uint32_t itu_t_t35_country_code = stream.hasData() ? in.u(8) : 0;
    if (itu_t_t35_country_code == kCountryCodeExtended) {
        in.skip(8);  // itu_t_t35_country_code_extension_byte
        --remaining;
    }
    in.skip(8);  // itu_t_t35_provider_code
    in.skip(8);
    const uint32_t user_identifier = stream.hasData() ? in.u(32) : 0;
    if (user_identifier == kUserIdentifierGa94) {  // D18: country and provider code are not compared
        return parserHevcRegisteredUserDataClosedCaption(stream, remaining, a53Caption);
    }
    stream.seekBytes(remaining);
    return QVResultOk;
}

int QVNaluParser::parserHevcRegisteredUserDataClosedCaption(QVByteStream& stream, int payloadSize,
                                                            QVHevcSeiA53Caption* a53Caption) {
    constexpr const char* kFunction = "parserHevcRegisteredUserDataClosedCaption";
    if (a53Caption == nullptr) {
        QV_LOG(QVTraceError, kFunction, "parserHevcRegisteredUserDataClosedCaption: a53Caption is NULL!\n");
        return QVResultFailed;
    }
    if (payloadSize < kSmallestCaption) {
        // The text says 7 although the limit is 3; hosts know it.
        QV_LOG(QVTraceError, kFunction, "parserHevcRegisteredUserDataClosedCaption: payloadSize < 7 !\n");
        return QVResultFailed;
    }
    const bool isCcData = stream.hasData() && PlainBits(stream).u(8) == kUserDataTypeCcData;
    if (isCcData) {
        skipCcData(stream, payloadSize);
    } else {
        skipUserData(stream, payloadSize);
    }
    return QVResultOk;
}
