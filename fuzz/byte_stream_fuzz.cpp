// Compares the bit reader with its model over any sequence of operations.
#include "CursorModel.h"
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "QVByteStream.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    qv_fuzz::FuzzInput input(bytes, size);
    std::vector<uint8_t> operations(input.byte() % 64);
    for (uint8_t& operation : operations) {
        operation = input.byte();
    }
    const qv_test::Bytes data = input.restAsVector();
    QVByteStream stream(data.data(), data.size());
    qv_test::CursorModel model(data);
    for (const uint8_t operation : operations) {
        const uint32_t n = operation / 10;  // 0 to 25
        switch (operation % 10) {
            case 0:
                FUZZ_CHECK(stream.readRbspBits(n) == model.readRbspBits(n));
                break;
            case 1:
                FUZZ_CHECK(stream.readRbspBits(n * 2) == model.readRbspBits(n * 2));
                break;
            case 2:
                FUZZ_CHECK(stream.readBit() == model.readBit());
                break;
            case 3:
                FUZZ_CHECK(stream.readBits(n * 3) == model.readBits(n * 3));
                break;
            case 4:
                FUZZ_CHECK(stream.readGolombUe() == model.readGolombUe());
                break;
            case 5:
                FUZZ_CHECK(stream.readGolombSe() == model.readGolombSe());
                break;
            case 6:
                stream.skipBits(n * 5);
                model.skipBits(n * 5);
                break;
            case 7:
                stream.skipBytes(n);
                model.skipBytes(n);
                break;
            case 8:
                FUZZ_CHECK(stream.readByte() == model.readByte());
                break;
            default:
                stream.seekBytes(int64_t{n} - 12);
                model.seekBytes(int64_t{n} - 12);
                break;
        }
        FUZZ_CHECK(stream.bytePos == model.bytePos());
        FUZZ_CHECK(stream.bitOffset == model.plainBitsUsed());
        FUZZ_CHECK(7 - stream.rbspBitIndex == model.rbspBitsUsed());
    }
    return 0;
}
