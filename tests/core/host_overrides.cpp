// A player that defines some platform functions itself and takes the rest from the stand-alone core. It
// overrides one function of each group, so the others of that group come from the stand-alone core.
#include <cstdio>
#include <cstdlib>

#include "QVCoreStandalone.h"
#include "QVNaluParser.h"

namespace {
int traced = 0;
int allocated = 0;
int dumped = 0;
}  // namespace

extern "C" void qvTraceLog(int, const char*, int, const char*, const char*, const char*, ...) {
    ++traced;
}

extern "C" void* qvMallocz(size_t size) {
    ++allocated;
    return std::calloc(1, size);
}

void QVDumpData::dumpActualData(const char*, const unsigned char*, int) {
    ++dumped;
}

extern "C" void freepQVSeiInfo(QVSeiInfo** info) {
    std::free((*info)->items);
    std::free(*info);
    *info = nullptr;
}

namespace {

bool check(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "host_overrides: %s\n", what);
    }
    return condition;
}

}  // namespace

int main() {
    const unsigned char sample[] = {0x00, 0x02, 0x65, 0x88};
    unsigned char* annexB = nullptr;
    int annexBSize = 0;
    bool isOk =
        check(QVNaluParser::connvertAvcCToAnnexB(sample, sizeof sample, 2, &annexB, annexBSize) == QVResultOk,
              "conversion failed");
    qvFree(annexB);  // from the stand-alone core

    const unsigned char broken[] = {0x00, 0x09, 0x65, 0x88};
    annexB = nullptr;
    isOk &= check(QVNaluParser::connvertAvcCToAnnexB(broken, sizeof broken, 2, &annexB, annexBSize) ==
                      QVResultInvalidData,
                  "broken framing was accepted");

    void* const plain = qvMalloc(8);  // from the stand-alone core
    isOk &= check(plain != nullptr, "qvMalloc failed");
    qvFree(plain);

    QVSeiInfo* info = createQVSeiInfo(2);
    isOk &= check(info != nullptr && info->itemCount == 2, "createQVSeiInfo failed");
    freepQVSeiInfo(&info);

    isOk &= check(traced == 1 && dumped == 1 && allocated == 1, "the host's own functions were not called");
    return isOk ? EXIT_SUCCESS : EXIT_FAILURE;
}
