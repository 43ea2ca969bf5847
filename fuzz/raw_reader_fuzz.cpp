// The inspector's reader of raw streams. For any bytes, in pieces of any size, it must deliver each byte at
// most once and in order.
#include <algorithm>

#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "analysis/Analysis.h"
#include "analysis/StreamDetails.h"
#include "bitstream/units/CodecProbe.h"
#include "input/RawReader.h"

namespace {

class PieceSource : public qvinspect::ByteSource {
public:
    PieceSource(std::vector<uint8_t> bytes, size_t mostBytes) : bytes_(std::move(bytes)), most_(mostBytes) {}

    size_t read(unsigned char* to, size_t size) override {
        const size_t count = std::min({size, most_, bytes_.size() - position_});
        std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(position_), count, to);
        position_ += count;
        return count;
    }
    std::string failure() const override { return {}; }

private:
    std::vector<uint8_t> bytes_;
    size_t most_;
    size_t position_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    qv_fuzz::FuzzInput input(bytes, size);
    const uint8_t kind = input.byte();
    static constexpr uint8_t kLengthSizes[] = {0, 1, 2, 4};  // 0: start codes
    const uint8_t lengthSize = kLengthSizes[kind >> 1 & 3];
    const QVCodecID codec = kind % 2 == 0 ? QVCodecIDAvc : QVCodecIDHevc;
    const QVCodecParameters parameters{codec, lengthSize == 0 ? 1U : 0U, lengthSize};
    qvinspect::RawLimits limits;
    limits.chunk = size_t{1} + input.byte();
    limits.accessUnit = size_t{32} + input.byte() * size_t{16};
    const size_t mostBytes = size_t{1} + input.byte();
    const std::vector<uint8_t> data = input.restAsVector();

    qv::probeCodec({data.data(), data.size()}, qv::Framing::StartCodes);
    qvinspect::RawReader reader(std::make_unique<PieceSource>(data, mostBytes), parameters, limits);
    qvinspect::StreamDetails details(codec, {});
    qvinspect::AccessUnit accessUnit;
    uint64_t end = 0;
    while (reader.next(accessUnit)) {
        FUZZ_CHECK(accessUnit.fileOffset && *accessUnit.fileOffset >= end);
        end = *accessUnit.fileOffset + accessUnit.size;
        FUZZ_CHECK(accessUnit.size > 0 && end <= data.size());
        FUZZ_CHECK(std::equal(accessUnit.data, accessUnit.data + accessUnit.size,
                              data.begin() + static_cast<std::ptrdiff_t>(*accessUnit.fileOffset)));
        auto report = qvinspect::analyse(accessUnit);
        details.add(accessUnit, report);
    }
    return 0;
}
