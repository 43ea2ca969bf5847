// Splits the fuzzer's input: parameters from the front, the rest as data.
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

// A copy of bytes in a heap block of exactly their size, so the address sanitizer detects any access outside
// it.
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

    // Returns the next byte, or 0 past the end.
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

    // Returns up to most values. Each is a byte or, if that byte is 0xFF, the word that follows it.
    std::deque<int> payloadTypes(size_t most) {
        std::deque<int> types;
        for (size_t left = byte() % (most + 1); left > 0; --left) {
            const uint8_t value = byte();
            types.push_back(value == 0xFF ? static_cast<int>(word()) : value);
        }
        return types;
    }

    // Fills a record with bytes of the input. The record must contain only integers.
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
