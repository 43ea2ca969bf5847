#include "QVSeiInfo.h"

extern "C" unsigned char* createSideDataFromQVSeiInfo(QVSeiInfo* /*info*/, int* size) {
    if (size != nullptr) {
        *size = 0;
    }
    return nullptr;
}
