#include "QVSeiInfo.h"

#include <cstdlib>

#include "QVSeiItem.h"

extern "C" QVSeiInfo* createQVSeiInfo(uint32_t itemCount) {
    auto* info = static_cast<QVSeiInfo*>(std::calloc(1, sizeof(QVSeiInfo)));
    if (info == nullptr) {
        return nullptr;
    }
    // Allocate at least one entry: calloc(0) may return null, which would look like a failed allocation.
    info->items = static_cast<QVSeiItem*>(std::calloc(itemCount > 0 ? itemCount : 1, sizeof(QVSeiItem)));
    if (info->items == nullptr) {
        std::free(info);
        return nullptr;
    }
    info->itemCount = itemCount;
    return info;
}
