// Payloads that a test lays out bit by bit.
#ifndef QV_TESTS_BITSTREAM_SEI_PAYLOADBITS_H
#define QV_TESTS_BITSTREAM_SEI_PAYLOADBITS_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../../support/AllocationFault.h"
#include "../../support/BitWriter.h"
#include "PayloadChecks.h"

namespace qv_test {

// A payload of bits as written, e.g. "0101 1", with the end of sei_payload() unless they are whole bytes. It
// is read, and without a fault written as it was.
template <class Payload>
struct PayloadOfBits {
    PayloadOfBits(const qv::sei::Context& context, const std::string& pattern) {
        BitWriter bits;
        bits.bits("payload", pattern);
        if (bits.bitCount() % 8 != 0) {
            bits.trailingBits();
        }
        const std::vector<uint8_t> rbsp = bits.bytes();
        unit = rbsp;
        unit.push_back(0x80);
        read = qv::sei::readPayload<Payload>(messageOf<Payload>(bytesOf(unit), context.codec), context);
        if (read.ok()) {
            std::vector<uint8_t> written;
            EXPECT_TRUE(qv::sei::writePayload(read.record, context, written).ok());
            EXPECT_EQ(written, rbsp);
        }
    }

    const Payload& operator*() const { return read.record; }
    const Payload* operator->() const { return &read.record; }

    std::vector<uint8_t> unit;
    qv::Read<Payload> read;
};

// Expects that the payload is read without a fault.
template <class Payload>
PayloadOfBits<Payload> payloadOf(const qv::sei::Context& context, const std::string& pattern) {
    PayloadOfBits<Payload> payload(context, pattern);
    EXPECT_TRUE(payload.read.ok()) << qv::textOf(payload.read.fault);
    EXPECT_EQ(payload.read.trailing.bits, 0U);
    return payload;
}

// The first fault of a payload, as text.
template <class Payload>
std::string faultOf(const qv::sei::Context& context, const std::string& pattern) {
    return qv::textOf(PayloadOfBits<Payload>(context, pattern).read.fault);
}

// A payload that depends on a parameter set is neither written nor traced without it. The elements before
// are in the first byte.
template <class Payload>
void expectNotWritten(qv::Codec codec, uint8_t firstByte = 0x83) {
    std::vector<uint8_t> out;
    EXPECT_EQ(qv::sei::writePayload(Payload(), qv::sei::Context(codec), out).fault.kind,
              qv::FaultKind::NoSuchSet);
    EXPECT_TRUE(out.empty());
    EXPECT_EQ(qv::sei::sizeOfPayload(Payload(), qv::sei::Context(codec)).fault.kind,
              qv::FaultKind::NoSuchSet);
    const std::vector<uint8_t> unit = {firstByte, 0x80};
    RecordingVisitor visitor;
    const auto message = messageOf<Payload>(bytesOf(unit), codec);
    EXPECT_EQ(qv::sei::tracePayload<Payload>(message, qv::sei::Context(codec), visitor).fault.kind,
              qv::FaultKind::NoSuchSet);
    EXPECT_EQ(visitor.depth, 0);
}

// What holds for a payload without elements, on which the other checks have nothing to do.
template <class Payload>
void checkEmptyPayload(const PayloadUnderTest<Payload>& structure) {
    checkRoundTrips(structure, 1);
    const std::vector<uint8_t> extension = {0x40, 0x80};
    const AllocationFault allocations(Allocator::New, 0);
    const qv::Read<Payload> read = structure.read(bytesOf(extension));
    EXPECT_TRUE(read.ok());
    EXPECT_EQ(read.trailing.bits, 1U);
    EXPECT_EQ(allocations.seen(), 0);
}

}  // namespace qv_test

#endif
