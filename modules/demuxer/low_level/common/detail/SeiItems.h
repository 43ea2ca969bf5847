// An item under construction at the end of a caller's list.
#ifndef QV_DEMUXER_DETAIL_SEIITEMS_H
#define QV_DEMUXER_DETAIL_SEIITEMS_H

#include <vector>

#include "QVSeiItem.h"

namespace qv_detail {

// The item enters the list before its payload is allocated: growing the list may throw, and the library
// cannot release a block of the player's allocators. Without keep() the item is removed again.
class NewSeiItem {
public:
    NewSeiItem(std::vector<QVSeiItem>& items, const QVSeiItem& item) : items_(items) {
        items_.push_back(item);
    }

    ~NewSeiItem() {
        if (!isKept_) {
            items_.pop_back();
        }
    }

    NewSeiItem(const NewSeiItem&) = delete;
    NewSeiItem& operator=(const NewSeiItem&) = delete;

    // Keeps the item, with payload as its bytes.
    void keep(uint8_t* payload, uint32_t payloadSize) {
        items_.back().payloadData = payload;
        items_.back().payloadSize = payloadSize;
        isKept_ = true;
    }

private:
    std::vector<QVSeiItem>& items_;
    bool isKept_ = false;
};

}  // namespace qv_detail

#endif
