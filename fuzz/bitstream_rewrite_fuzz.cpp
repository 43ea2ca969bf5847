// What is read without a fault must be written without one, as bytes that read as the same record: a second
// write must give the bytes of the first, and the sizer must count its bits.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "bitstream/avc/AccessUnitDelimiter.h"
#include "bitstream/avc/FillerData.h"
#include "bitstream/avc/PrefixNalUnit.h"
#include "bitstream/avc/Unit.h"
#include "bitstream/hevc/SmallUnits.h"
#include "bitstream/hevc/Unit.h"
#include "bitstream/units/Rbsp.h"

namespace {

using qv::Bytes;
using Buffer = std::vector<uint8_t>;

Bytes bytesOf(const Buffer& buffer) {
    return {buffer.data(), buffer.size()};
}

template <class Read, class Write, class Size>
void checkStructure(Bytes unit, const Read& read, const Write& write, const Size& size) {
    const auto first = read(unit);
    if (!first.ok()) {
        return;
    }
    Buffer once;
    const qv::Written written = write(first.record, once);
    FUZZ_CHECK(written.ok());
    FUZZ_CHECK(written.size == once.size());
    const auto second = read(bytesOf(once));
    FUZZ_CHECK(second.ok());
    FUZZ_CHECK(second.trailing.bytes.empty());
    Buffer twice;
    FUZZ_CHECK(write(second.record, twice).ok());
    FUZZ_CHECK(once == twice);
    const qv::Sized sized = size(first.record);
    FUZZ_CHECK(sized.ok());
    FUZZ_CHECK(sized.bits <= 8 * uint64_t{once.size()});
}

template <class Sets, class Rewrite>
void checkRewriting(Bytes unit, const Sets& sets, const Rewrite& rewriteUnit) {
    Buffer out = {0xAA};
    const qv::UnitRewritten rewritten = rewriteUnit(unit, sets, out);
    FUZZ_CHECK(!rewritten.isRewritten || !rewritten.fault);
    FUZZ_CHECK(out.size() == 1 + (rewritten.isRewritten ? unit.size : 0));
    FUZZ_CHECK(out[0] == 0xAA && std::equal(out.begin() + 1, out.end(), unit.begin()));
}

void checkAvc(Bytes unit, uint32_t chroma_format_idc) {
    using namespace qv::avc;
    checkStructure(unit, readSps, writeSps, [](const Sps& sps) { return sizeOf(sps); });
    checkStructure(unit, readSubsetSps, writeSubsetSps, [](const SubsetSps& sps) { return sizeOf(sps); });
    checkStructure(unit, readSpsExtension, writeSpsExtension,
                   [](const SpsExtension& extension) { return sizeOf(extension); });
    checkStructure(
        unit, [=](Bytes bytes) { return readPps(bytes, chroma_format_idc); },
        [=](const Pps& pps, Buffer& out) { return writePps(pps, chroma_format_idc, out); },
        [=](const Pps& pps) { return sizeOf(pps, chroma_format_idc); });
    checkStructure(unit, readPrefixNalUnit, writePrefixNalUnit,
                   [](const PrefixNalUnit& prefix) { return sizeOf(prefix); });
    checkStructure(unit, readAccessUnitDelimiter, writeAccessUnitDelimiter,
                   [](const AccessUnitDelimiter& delimiter) { return sizeOf(delimiter); });
    checkStructure(unit, readFillerData, writeFillerData,
                   [](const FillerData& filler) { return sizeOf(filler); });
    checkRewriting(unit, ParameterSets(), rewriteUnit);
}

void checkHevc(Bytes unit) {
    using namespace qv::hevc;
    checkStructure(unit, readVps, writeVps, [](const Vps& vps) { return sizeOf(vps); });
    checkStructure(
        unit, [](Bytes bytes) { return readSps(bytes); },
        [](const Sps& sps, Buffer& out) { return writeSps(sps, out); },
        [](const Sps& sps) { return sizeOf(sps); });
    checkStructure(unit, readPps, writePps, [](const Pps& pps) { return sizeOf(pps); });
    checkStructure(unit, readAccessUnitDelimiter, writeAccessUnitDelimiter,
                   [](const AccessUnitDelimiter& delimiter) { return sizeOf(delimiter); });
    checkStructure(unit, readFillerData, writeFillerData,
                   [](const FillerData& filler) { return sizeOf(filler); });
    checkRewriting(unit, ParameterSets(), rewriteUnit);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    qv_fuzz::FuzzInput input(bytes, size);
    const uint8_t kind = input.byte();
    const qv_fuzz::ExactBlock rest = input.rest();
    const Bytes unit = {rest.data(), static_cast<size_t>(rest.size())};
    if (kind % 2 == 0) {
        checkAvc(unit, kind / 2 % 4);
    } else {
        checkHevc(unit);
    }
    return 0;
}
