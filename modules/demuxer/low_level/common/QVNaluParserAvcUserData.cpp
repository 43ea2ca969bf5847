// user_data_registered_itu_t_t35() with A/53 captions and the active format description: ITU-T H.264
// (08/2021) D.1.6, ATSC A/53 Part 4 (2009) 6.2, ETSI TS 101 154 V2.3.1 B.3.
#include <cstdint>

#include "QVNaluParser.h"
#include "detail/A53Captions.h"
#include "detail/Log.h"
#include "detail/PlainBits.h"
#include "detail/SeiTypes.h"

using namespace qv_detail;

namespace {

// Log lines name the size minus one or two. The subtraction wraps for the smallest int.
int sizeLess(int size, uint32_t count) {
    return static_cast<int>(static_cast<uint32_t>(size) - count);
}

// cc_data() after user_data_type_code: each construct is one skip.
void skipCcData(QVByteStream& stream, int size) {
    PlainBits in(stream);
    const int cc_count = readCcCount(stream, size);
    for (int i = 0; i < cc_count; ++i) {
        in.skip(5 + 1 + 2 + 8 + 8);  // marker_bits, cc_valid, cc_type, cc_data_1, cc_data_2
    }
    if (cc_count > 0) {
        in.skip(8);  // marker_bits
    }
}

}  // namespace

int QVNaluParser::parserAvcRegisteredUserData(QVByteStream& stream, int payloadSize, QVAvcSeiAfd* afd,
                                              QVAvcSps* /*sps*/) {
    constexpr const char* kFunction = "parserAvcRegisteredUserData";
    if (afd == nullptr) {
        QV_LOG(QVTraceError, kFunction, "parserAvcRegisteredUserData: afd is NULL!\n");
        return QVResultFailed;
    }
    if (payloadSize < kT35HeaderSize) {
        QV_LOG(QVTraceError, kFunction, "parserAvcRegisteredUserData: size:%d error.\n", payloadSize);
        return QVResultFailed;
    }
    PlainBits in(stream);
    int remaining = payloadSize - kT35HeaderSize;
    const uint32_t itu_t_t35_country_code = in.u(8);
    if (itu_t_t35_country_code == kCountryCodeExtended) {
        in.skip(8);  // itu_t_t35_country_code_extension_byte
        --remaining;
    }
    in.skip(8);  // itu_t_t35_provider_code
    in.skip(8);
    const uint32_t user_identifier = in.u(32);
    switch (user_identifier) {  // D18: country and provider code are not compared
        case kUserIdentifierGa94:
            return parserAvcRegisteredUserDataClosedCaption(stream, remaining);
        case kUserIdentifierDtg1:
            return parserAvcRegisteredUserDataAfd(stream, remaining, afd);
        default:
            stream.seekBytes(remaining);
            return QVResultOk;
    }
}

int QVNaluParser::parserAvcRegisteredUserDataAfd(QVByteStream& stream, int size, QVAvcSeiAfd* afd) {
    constexpr const char* kFunction = "parserAvcRegisteredUserDataAfd";
    if (afd == nullptr) {
        QV_LOG(QVTraceError, kFunction, "parserAvcRegisteredUserDataAfd: afd is NULL!\n");
        return QVResultFailed;
    }
    if (size <= 0) {
        QV_LOG(QVTraceError, kFunction, "parserAvcRegisteredUserData afd: size:%d error.\n",
               sizeLess(size, 1));
        return QVResultFailed;
    }
    PlainBits in(stream);
    in.skip(1);  // '0'
    const uint32_t active_format_flag = in.u(1);
    in.skip(6);  // reserved
    if (active_format_flag == 0) {
        return QVResultOk;
    }
    if (size == 1) {
        QV_LOG(QVTraceError, kFunction, "parserAvcRegisteredUserData afd: size:%d error 2.\n",
               sizeLess(size, 2));
        return QVResultFailed;
    }
    in.skip(4);  // reserved
    afd->active_format = static_cast<uint8_t>(in.u(4));
    afd->isValid = 1;
    return QVResultOk;
}

int QVNaluParser::parserAvcRegisteredUserDataClosedCaption(QVByteStream& stream, int size) {
    if (size < kSmallestCaption) {
        return QVResultFailed;
    }
    const bool isCcData = stream.hasData() && PlainBits(stream).u(8) == kUserDataTypeCcData;
    if (isCcData) {
        skipCcData(stream, size);
    } else {
        skipUserData(stream, size);
    }
    return QVResultOk;
}
