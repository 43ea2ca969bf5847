// The uses of a syntax function: a reader, a tracer, a writer and a sizer of its record.
#ifndef QV_BITSTREAM_SYNTAX_USES_H
#define QV_BITSTREAM_SYNTAX_USES_H

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <vector>

#include "bitstream/Read.h"
#include "bitstream/syntax/Reader.h"
#include "bitstream/syntax/Tracer.h"
#include "bitstream/syntax/Writer.h"

namespace qv::detail {

// How many bytes of a record a read sets to zero first. A record with large arrays has them last and names
// its own number: their elements are set as far as their counts go.
template <class Record>
constexpr size_t kClearedBytes = sizeof(Record);

// memset() as a call. A compiler that knows the size may write rep stos instead, which is slow to start: 13
// ns for 200 bytes, where the call takes 3. For the 1456 bytes of a VPS it is the faster one.
void setToZero(void* bytes, size_t size) noexcept;

constexpr size_t kMostBytesOfCall = 1024;

template <class Record>
void clear(Record& record) noexcept {
    static_assert(std::is_trivially_copyable_v<Record>, "records are plain data");
    if constexpr (kClearedBytes<Record> <= kMostBytesOfCall) {
        setToZero(&record, kClearedBytes<Record>);
    } else {
        std::memset(static_cast<void*>(&record), 0, kClearedBytes<Record>);
    }
}

// A table is a function object that takes a use and a record.
template <class Record, class Table>
Read<Record> readUnit(Bytes unit, const Table& table) noexcept {
    Read<Record> read;
    clear(read.record);
    Reader reader(unit);
    table(reader, read.record);
    if (reader.failed()) {
        read.fault = reader.fault();
    }
    read.trailing = reader.trailing();
    return read;
}

template <class Record, class Table>
Read<Record> traceUnit(Bytes unit, TraceVisitor& visitor, const Table& table) {
    Read<Record> read;
    clear(read.record);
    Tracer tracer(unit, visitor);
    table(tracer, read.record);
    read.fault = tracer.fault();
    read.trailing = tracer.trailing();
    return read;
}

// The writer and the sizer work on a copy, where elements that do not fit become 0.
template <class Record, class Table>
Written writeUnit(Record record, std::vector<uint8_t>& out, const Table& table) {
    Writer writer(out);
    table(writer, record);
    return writer.finish();
}

template <class Record, class Table>
Sized sizeUnit(Record record, const Table& table) noexcept {
    Sizer sizer;
    table(sizer, record);
    return {sizer.failed() ? 0 : sizer.position(), sizer.fault()};
}

// --- A table that ends before the data of a unit does: a slice header ---

// What follows is not looked at.
template <class Record, class Table>
Read<Record> readBegin(Bytes unit, const Table& table) noexcept {
    Read<Record> read;
    clear(read.record);
    Reader reader(unit);
    table(reader, read.record);
    read.fault = reader.fault();
    return read;
}

template <class Record, class Table>
Read<Record> traceBegin(Bytes unit, TraceVisitor& visitor, const Table& table) {
    Read<Record> read;
    clear(read.record);
    Tracer tracer(unit, visitor);
    table(tracer, read.record);
    read.fault = tracer.fault();
    return read;
}

// What follows is that of a unit, bit by bit, and the bytes after its rbsp_trailing_bits().
template <class Record, class Table>
Written writeBegin(Record record, Bytes unit, std::vector<uint8_t>& out, const Table& table) {
    Read<Record> own;
    clear(own.record);
    Reader reader(unit);
    table(reader, own.record);
    CodedBits rest;
    reader.payload_bytes("", rest);
    if (reader.failed()) {
        return {0, reader.fault()};
    }
    Writer writer(out);
    table(writer, record);
    writer.payload_bytes("", rest);
    writer.rbsp_trailing_bits();
    Written written = writer.finish();
    if (written.ok()) {
        const Bytes after = reader.trailing().bytes;
        out.insert(out.end(), after.begin(), after.end());
        written.size += after.size;
    }
    return written;
}

}  // namespace qv::detail

#endif
