// Lists that the records of SEI payloads keep, and payloads made by hand.
#ifndef QV_TESTS_BITSTREAM_ENTRYCHECKS_H
#define QV_TESTS_BITSTREAM_ENTRYCHECKS_H

#include <cstdint>
#include <string>
#include <vector>

#include "BitWriter.h"
#include "MemoryChecks.h"
#include "PayloadChecks.h"
#include "bitstream/sei/EntryReader.h"

namespace qv_test {

// How many entries a list has.
template <class Entry, class Record>
uint64_t countOf(const Record& record) {
    qv::sei::EntryReader<Record, Entry> entries(record);
    Entry entry;
    uint64_t count = 0;
    while (entries.next(entry)) {
        ++count;
    }
    return count;
}

// Counts the entries of a list in memory that is watched.
template <class Entry, class Record>
Derivation<Record> listOf(const std::string& name) {
    return {name, [](const Record& record) { return countOf<Entry>(record); }};
}

// The bits of a payload as a unit for messageOf(), after the bits that align an H.264 or H.265 payload.
inline std::vector<uint8_t> payloadUnit(BitWriter bits) {
    if (bits.bitCount() % 8 != 0) {
        bits.trailingBits();
    }
    return withEmulationPrevention(bits.trailingBits().bytes());
}

template <class Payload>
qv::Read<Payload> readUnit(const std::vector<uint8_t>& unit, qv::Codec codec) {
    return qv::sei::readPayload<Payload>(messageOf<Payload>(bytesOf(unit), codec), qv::sei::Context(codec));
}

}  // namespace qv_test

#endif
