#include "QVCoreStandalone.h"
#include "QVSideData.h"

void freepQVSideData(unsigned char** data) {
    if (data == nullptr) {
        return;
    }
    qvFree(*data);
    *data = nullptr;
}
