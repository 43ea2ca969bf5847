// An item under construction at the end of a caller's list.
#ifndef QV_DEMUXER_DETAIL_SEIITEMS_H
#define QV_DEMUXER_DETAIL_SEIITEMS_H

#include <vector>

#include "QVSeiItem.h"

namespace qv_detail {

// Takes its place in the list before its payload is allocated: the list's growth may throw, and a block of
// the player's allocators could not be given back here. Without keep() the place is given up again.
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

    // The item stays, with payload as its bytes.
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
