#include <cstdlib>

#include "QVSeiInfo.h"

extern "C" void freepQVSeiInfo(QVSeiInfo** info) {
    if (info == nullptr || *info == nullptr) {
        return;
    }
    std::free((*info)->items);
    std::free(*info);
    *info = nullptr;
}
