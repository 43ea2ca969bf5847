// Real streams and the results of independent tools: each media file X has an expectation X.expect.json.
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
    Bytes bytes;                 // the whole media file
    nlohmann::json expectation;  // by section: nal_units, reframed, packets, sps, sei, ...

    QVCodecID codec() const;

    // "annexb": the bytes are a byte stream. "length-prefixed" and "annexb in container": they are a
    // container file.
    std::string framing() const { return expectation.at("framing").at("type"); }
};

// The folder of the streams in the repository. It always exists.
std::filesystem::path bundledStreams();

// The folder of additional streams, configured with QVNALU_STREAMS_DIR. It may not exist.
std::filesystem::path streamsFolder();

// Returns every stream of the folder that has an expectation, sorted by name. Throws if a file cannot be
// read.
std::vector<Stream> streamsIn(const std::filesystem::path& folder);

// Returns only the streams with that framing.
std::vector<Stream> streamsIn(const std::filesystem::path& folder, const std::string& framing);

// Return the SHA-256 in lower-case hexadecimal.
std::string sha256(const unsigned char* data, size_t size);
std::string sha256(const Bytes& bytes);
std::string sha256(const std::string& text);

}  // namespace qv_test

#endif
