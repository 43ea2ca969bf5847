// The payload of an SEI message whose bytes are written down in a test.
#ifndef QV_TESTS_BITSTREAM_HANDMADEPAYLOAD_H
#define QV_TESTS_BITSTREAM_HANDMADEPAYLOAD_H

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "PayloadChecks.h"
#include "bitstream/sei/SeiPayload.h"

namespace qv_test {

// Reads a payload. Without a fault it writes the same bytes.
template <class Payload>
class HandMadePayload {
public:
    // The bytes are those of the RBSP.
    HandMadePayload(const qv::sei::Context& context, std::vector<uint8_t> payload) : context_(context) {
        const std::vector<uint8_t> bytes = payload;
        payload.push_back(0x80);
        unit_.resize(qv::mostEscapedSize(payload.size()));
        unit_.resize(qv::escape(bytesOf(payload), 0, unit_.data(), unit_.size()));
        const qv::Read<Payload> read = qv::sei::readPayload<Payload>(message(), context_);
        record_ = read.record;
        fault_ = read.fault;
        if (!fault_) {
            std::vector<uint8_t> written;
            EXPECT_TRUE(qv::sei::writePayload(record_, context_, written).ok());
            EXPECT_EQ(written, bytes);
        }
    }

    // The record borrows bytes of this object.
    HandMadePayload(const HandMadePayload&) = delete;
    HandMadePayload& operator=(const HandMadePayload&) = delete;
    ~HandMadePayload() = default;

    const Payload* operator->() const { return &record_; }
    const Payload& operator*() const { return record_; }
    const qv::Fault& fault() const { return fault_; }
    bool ok() const { return !fault_; }

    // The names of the elements, without subscripts.
    std::set<std::string> names() const {
        RecordingVisitor visitor;
        qv::sei::tracePayload<Payload>(message(), context_, visitor);
        std::set<std::string> names;
        for (const qv::TracedElement& traced : visitor.elements) {
            names.insert(traced.element.name);
        }
        return names;
    }

private:
    qv::SeiMessage message() const { return messageOf<Payload>(bytesOf(unit_), context_.codec); }

    qv::sei::Context context_;
    std::vector<uint8_t> unit_;
    Payload record_ = {};
    qv::Fault fault_;
};

}  // namespace qv_test

#endif
