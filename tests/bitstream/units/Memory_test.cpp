// What takes bytes and is no structure of its own: nothing of it allocates or touches a byte outside.
#include <gtest/gtest.h>

#include "../support/Hex.h"
#include "../support/MemoryChecks.h"
#include "bitstream/avc/NalUnitHeader.h"
#include "bitstream/avc/Unit.h"
#include "bitstream/hevc/Unit.h"
#include "bitstream/units/CodecProbe.h"
#include "bitstream/units/CodecString.h"
#include "bitstream/units/ConfigurationRecord.h"
#include "bitstream/units/NalUnits.h"
#include "bitstream/units/Rbsp.h"
#include "bitstream/units/Reframe.h"
#include "bitstream/units/SpsHead.h"

namespace {

using namespace qv_test;
using qv::Codec;
using qv::Framing;

constexpr Framing kFramings[] = {Framing::StartCodes, Framing::Lengths1, Framing::Lengths2, Framing::Lengths3,
                                 Framing::Lengths4};

const char* const kAvcUnits[] = {
    "67 64 00 1F AC D9 40 50 05 BB 01 10 00 00 03 00 10 00 00 03 03 20 F1 83 19 60", "68 EB E3 CB 22 C0",
    "09 F0", "0E 40 00 07", "65 88 84 00 33 FF 80"};
const char* const kHevcUnits[] = {"40 01 0C 01 FF FF 02 20 00 00 03 00 90 00 00 03 00 00 03 00 3C 95 98 09",
                                  ("42 01 01 02 20 00 00 03 00 90 00 00 03 00 00 03 00 3C A0 0A 08 0B 9F 79 "
                                   "65 94 92 4C AE 01 00 00 03 00 01"
                                   " 00 00 03 00 32 08"),
                                  "44 01 C1 72 B4 62 40", "46 01 50", "28 01 AF 1D 20 87 A1 09"};

// The units of both codecs, alone and in each framing.
std::vector<std::vector<uint8_t>> inputs() {
    std::vector<std::vector<uint8_t>> inputs;
    for (const auto& units : {kAvcUnits, kHevcUnits}) {
        std::vector<uint8_t> stream;
        for (size_t i = 0; i < std::size(kAvcUnits); ++i) {
            const std::vector<uint8_t> unit = hex(units[i]);
            inputs.push_back(unit);
            stream.insert(stream.end(), {0, 0, 1});
            stream.insert(stream.end(), unit.begin(), unit.end());
        }
        inputs.push_back(stream);
        for (const Framing framing : kFramings) {
            std::vector<uint8_t> framed;
            qv::reframe(bytesOf(stream), {Framing::StartCodes, framing}, framed);
            inputs.push_back(framed);
        }
    }
    inputs.push_back(hex("01 42 C0 0D FD E1 0004 67 42 C0 0D 01 0003 68 CE 0F"));
    inputs.push_back(
        hex("01 01 60000000 900000000000 3C F000 FC FD F8 F8 0000 0C 02 20 0001 0003 40 01 0C 27 "
            "0001 0003 4E 01 90"));
    return inputs;
}

UnitUse framingUse(Framing framing, Codec codec) {
    return {std::string("NalUnits ") + qv::textOf(framing), [=](qv::Bytes bytes) {
                size_t sum = 0;
                for (const qv::NalUnit& unit : qv::NalUnits(bytes, framing, codec)) {
                    sum += unit.bytes.size + qv::nalUnitOf(unit.bytes, codec).bytes.size;
                }
                const qv::Reframed size = qv::reframedSize(bytes, {framing, Framing::Lengths4});
                return sum != 0 && size.ok() && qv::probeCodec(bytes, framing).framing == framing;
            }};
}

UnitUse configurationUse(Codec codec) {
    return {"configuration", [=](qv::Bytes bytes) {
                size_t sum = 0;
                qv::forEachConfigurationUnit(codec, bytes,
                                             [&sum](const qv::NalUnit& unit) { sum += unit.bytes.size; });
                return sum != 0 && qv::framingOf(codec, bytes).has_value() &&
                       qv::configurationKindOf(codec, bytes) == qv::ConfigurationKind::Record;
            }};
}

bool escapes(qv::Bytes bytes) {
    const size_t unescaped = qv::unescapedSize(bytes, 1);
    qv::RbspPositions positions(bytes, 1);
    return qv::findEmulationPrevention(bytes, 1, 1) < bytes.size && unescaped < bytes.size &&
           qv::escapedSize(bytes, 1) > bytes.size && positions.codedByte(unescaped) == bytes.size &&
           positions.unescapedBit(8 * uint64_t{bytes.size}) == 8 * uint64_t{unescaped};
}

TEST(UnitMemory, noAllocationAndNoByteOutside) {
    qv::avc::ParameterSets avcSets;
    avcSets.take(bytesOf(hex(kAvcUnits[0])));
    qv::hevc::ParameterSets hevcSets;
    hevcSets.take(bytesOf(hex(kHevcUnits[0])));
    std::vector<UnitUse> uses = {
        {"avc::traceUnit",
         [&avcSets](qv::Bytes unit) {
             SummingVisitor visitor;
             return qv::avc::traceUnit(unit, avcSets, visitor).isWhole && visitor.sum != 0;
         }},
        {"hevc::traceUnit",
         [&hevcSets](qv::Bytes unit) {
             SummingVisitor visitor;
             return qv::hevc::traceUnit(unit, hevcSets, visitor).isWhole && visitor.sum != 0;
         }},
        {"avc::readNalUnitHeader", [](qv::Bytes unit) { return qv::avc::readNalUnitHeader(unit).ok(); }},
        {"avc::codecStringOfSps", [](qv::Bytes unit) { return qv::avc::codecStringOfSps(unit).ok(); }},
        {"hevc::codecStringOfSps", [](qv::Bytes unit) { return qv::hevc::codecStringOfSps(unit).ok(); }},
        {"avc::codecStringOf",
         [](qv::Bytes bytes) {
             const auto read = qv::avc::readConfigurationRecord(bytes);
             return read.ok() && qv::avc::codecStringOf(read.record).level_idc != 0;
         }},
        {"hevc::codecStringOf",
         [](qv::Bytes bytes) {
             const auto read = qv::hevc::readConfigurationRecord(bytes);
             return read.ok() && qv::hevc::codecStringOf(read.record).general_level_idc != 0;
         }},
        {"avc::readSpsHead",
         [](qv::Bytes unit) {
             qv::avc::SpsHead head = {};
             return !qv::avc::readSpsHead(unit, head);
         }},
        {"hevc::readSpsHead",
         [](qv::Bytes unit) {
             qv::hevc::SpsHead head = {};
             return !qv::hevc::readSpsHead(unit, head);
         }},
        {"hevc::readVpsHead",
         [](qv::Bytes unit) {
             qv::hevc::SpsHead head = {};
             return !qv::hevc::readVpsHead(unit, head);
         }},
        {"probeCodec",
         [](qv::Bytes bytes) { return qv::probeCodec(bytes).answer == qv::CodecProbe::Answer::Hevc; }},
        {"Rbsp", escapes},
        configurationUse(Codec::Avc),
        configurationUse(Codec::Hevc),
    };
    for (const Framing framing : kFramings) {
        uses.push_back(framingUse(framing, Codec::Avc));
        uses.push_back(framingUse(framing, Codec::Hevc));
    }
    MemoryCheck check(std::move(uses));
    Random random(7);
    for (const std::vector<uint8_t>& input : inputs()) {
        for (int round = 0; round < 4; ++round) {
            check.checkVariants(input, random);
        }
    }
    check.expectEverythingWasUsed();
}

}  // namespace
