// Raw capture of SEI payloads into items, and the side-data buffer of an access unit.
#include "QVMemory.h"
#include "QVNaluParser.h"
#include "QVSeiInfo.h"
#include "detail/SeiItems.h"

using namespace qv_detail;

namespace {

void describeItems(QVSeiInfo& info, const std::vector<QVSeiItem>& items) {
    for (size_t i = 0; i < info.itemCount && i < items.size(); ++i) {
        if (items[i].payloadData != nullptr) {
            info.items[i].codecId = items[i].codecId;
            info.items[i].payloadType = items[i].payloadType;
            info.items[i].payloadSize = items[i].payloadSize;
            info.items[i].payloadData = items[i].payloadData;
            info.items[i].isRequested = items[i].isRequested;
        }
    }
}

}  // namespace

int QVNaluParser::fillSeiDataWithoutParsing(QVByteStream& stream, int payloadSize,
                                            std::vector<QVSeiItem>& items, QVCodecID codec, int payloadType,
                                            bool requested) {
    if (payloadSize < 1) {  // D28
        return QVResultFailed;
    }
    NewSeiItem item(items, {codec, static_cast<uint32_t>(payloadType), static_cast<uint32_t>(payloadSize),
                            requested, nullptr});
    const auto count = static_cast<size_t>(payloadSize);
    auto* const payload = static_cast<uint8_t*>(qvMalloc(count));
    if (payload == nullptr) {
        return QVResultFailed;
    }
    stream.readRbspBytes(payload, count);
    item.keep(payload, static_cast<uint32_t>(payloadSize));
    return QVResultOk;
}

int QVNaluParser::assembleSeiSideDataBuffer(const std::vector<QVSeiItem>& items, unsigned char** out,
                                            int& outSize) {
    if (out == nullptr) {
        return QVResultFailed;
    }
    QVSeiInfo* info = createQVSeiInfo(static_cast<uint32_t>(items.size()));
    if (info == nullptr) {
        return QVResultFailed;
    }
    describeItems(*info, items);
    *out = createSideDataFromQVSeiInfo(info, &outSize);
    freepQVSeiInfo(&info);
    return QVResultOk;
}
