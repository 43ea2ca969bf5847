// The bytes that a fuzzer hands over, taken apart: parameters from the front, the rest as data.
#ifndef QV_FUZZ_FUZZINPUT_H
#define QV_FUZZ_FUZZINPUT_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <memory>
#include <vector>

namespace qv_fuzz {

// A copy in a heap block of exactly its size, so that the address sanitizer sees the first byte outside.
class ExactBlock {
public:
    ExactBlock(const uint8_t* bytes, size_t size) : bytes_(new uint8_t[size]), size_(size) {
        if (size > 0) {
            std::memcpy(bytes_.get(), bytes, size);
        }
    }

    uint8_t* data() { return bytes_.get(); }
    const uint8_t* data() const { return bytes_.get(); }
    int size() const { return static_cast<int>(size_); }

private:
    std::unique_ptr<uint8_t[]> bytes_;
    size_t size_;
};

class FuzzInput {
public:
    FuzzInput(const uint8_t* bytes, size_t size) : bytes_(bytes), size_(size) {}

    // Zero bytes stand for what lies past the end.
    uint8_t byte() {
        if (size_ == 0) {
            return 0;
        }
        --size_;
        return *bytes_++;
    }

    uint32_t word() {
        uint32_t value = 0;
        for (int i = 0; i < 4; ++i) {
            value = value << 8 | byte();
        }
        return value;
    }

    // Up to most values, each of the low byte or of a whole word.
    std::deque<int> payloadTypes(size_t most) {
        std::deque<int> types;
        for (size_t left = byte() % (most + 1); left > 0; --left) {
            const uint8_t value = byte();
            types.push_back(value == 0xFF ? static_cast<int>(word()) : value);
        }
        return types;
    }

    // A record with the bytes of the input in it. Only for records that hold integers alone.
    template <class Record>
    void fill(Record& record) {
        auto* const bytes = reinterpret_cast<uint8_t*>(&record);
        for (size_t i = 0; i < sizeof record; ++i) {
            bytes[i] = byte();
        }
    }

    size_t left() const { return size_; }
    ExactBlock rest() const { return ExactBlock(bytes_, size_); }
    std::vector<uint8_t> restAsVector() const { return std::vector<uint8_t>(bytes_, bytes_ + size_); }

private:
    const uint8_t* bytes_;
    size_t size_;
};

}  // namespace qv_fuzz

#endif
