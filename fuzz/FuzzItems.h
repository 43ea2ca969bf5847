// A list of SEI items, and checks on it.
#ifndef QV_FUZZ_FUZZITEMS_H
#define QV_FUZZ_FUZZITEMS_H

#include <algorithm>
#include <deque>
#include <vector>

#include "FuzzCheck.h"
#include "QVCoreStandalone.h"
#include "QVNaluParser.h"

namespace qv_fuzz {

// Owns the payloads of its items.
class Items {
public:
    Items() = default;
    Items(const Items&) = delete;
    Items& operator=(const Items&) = delete;
    ~Items() {
        for (const QVSeiItem& item : list) {
            qvFree(item.payloadData);
        }
    }

    // Checks that every item has payloadSize readable bytes, and that the type of an item marked as requested
    // was requested.
    void check(QVCodecID codec, const std::deque<int>& requested) const {
        for (const QVSeiItem& item : list) {
            FUZZ_CHECK(item.codecId == codec);
            FUZZ_CHECK(item.payloadData != nullptr);
            FUZZ_CHECK(item.payloadSize > 0);
            const std::vector<uint8_t> isReadable(item.payloadData, item.payloadData + item.payloadSize);
            FUZZ_CHECK(isReadable.size() == item.payloadSize);
            FUZZ_CHECK(!item.isRequested || std::find(requested.begin(), requested.end(),
                                                      static_cast<int>(item.payloadType)) != requested.end());
        }
    }

    // Checks that the items are unchanged after they are written to a side-data buffer and read back.
    void checkSideData() const {
        unsigned char* buffer = nullptr;
        int size = 0;
        FUZZ_CHECK(QVNaluParser::assembleSeiSideDataBuffer(list, &buffer, size) == QVResultOk);
        std::vector<QVSeiItem> read;
        FUZZ_CHECK(qvReadSideData(buffer, size, &read) == QVSideDataOk);
        FUZZ_CHECK(read.size() == list.size());
        for (size_t i = 0; i < read.size(); ++i) {
            FUZZ_CHECK(read[i].payloadType == list[i].payloadType);
            FUZZ_CHECK(read[i].payloadSize == list[i].payloadSize);
            FUZZ_CHECK(std::equal(read[i].payloadData, read[i].payloadData + read[i].payloadSize,
                                  list[i].payloadData));
        }
        freepQVSideData(&buffer);
    }

    std::vector<QVSeiItem> list;
};

}  // namespace qv_fuzz

#endif
