// Real streams and what independent tools say of them: for each media file X a file X.expect.json.
#ifndef QV_TESTS_STREAMEXPECTATION_H
#define QV_TESTS_STREAMEXPECTATION_H

#include <cstddef>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "BitWriter.h"
#include "QVNaluParser.h"

namespace qv_test {

struct Stream {
    std::string name;
    Bytes bytes;                 // the media file as it is
    nlohmann::json expectation;  // by section: nal_units, reframed, packets, sps, sei, ...

    QVCodecID codec() const;

    // "annexb": the bytes are a byte stream. "length-prefixed", "annexb in container": they are a
    // container's.
    std::string framing() const { return expectation.at("framing").at("type"); }
};

// The streams that come with the tests. Always there.
std::filesystem::path bundledStreams();

// The folder of many more streams that the build was told of (QVNALU_STREAMS_DIR). May be absent.
std::filesystem::path streamsFolder();

// Every stream of the folder that has an expectation, by name. Throws when a file cannot be read.
std::vector<Stream> streamsIn(const std::filesystem::path& folder);

// Those of them with that framing.
std::vector<Stream> streamsIn(const std::filesystem::path& folder, const std::string& framing);

// SHA-256 in lower-case hexadecimal.
std::string sha256(const unsigned char* data, size_t size);
std::string sha256(const Bytes& bytes);
std::string sha256(const std::string& text);

}  // namespace qv_test

#endif
