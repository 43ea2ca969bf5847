#include "QVCoreStandalone.h"
#include "RatioTable.h"

int main(int argc, char** argv) {
    qvSetTraceLevel(-1);
    qv_bench::addFramingRows();
    qv_bench::addParsingRows();
    return qv_bench::runTable(argc, argv);
}
