#include "StreamExpectation.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace qv_test {

namespace {

namespace fs = std::filesystem;

const std::string kSuffix = ".expect.json";

Bytes contentOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool isExpectation(const std::string& name) {
    return name.size() > kSuffix.size() &&
           name.compare(name.size() - kSuffix.size(), kSuffix.size(), kSuffix) == 0;
}

Stream loadStream(const fs::path& expectationPath) {
    Stream stream;
    stream.expectation = nlohmann::json::parse(contentOf(expectationPath));
    stream.name = stream.expectation.at("file");
    stream.bytes = contentOf(expectationPath.parent_path() / stream.name);
    return stream;
}

}  // namespace

QVCodecID Stream::codec() const {
    const std::string codec = expectation.at("codec");
    if (codec == "h264") {
        return QVCodecIDAvc;
    }
    if (codec == "hevc") {
        return QVCodecIDHevc;
    }
    throw std::runtime_error(name + ": unknown codec " + codec);
}

fs::path bundledStreams() {
    return QVNALU_BUNDLED_STREAMS_DIR;
}

fs::path streamsFolder() {
    return QVNALU_STREAMS_DIR;
}

std::vector<Stream> streamsIn(const fs::path& folder) {
    std::vector<fs::path> paths;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (isExpectation(entry.path().filename().string())) {
            paths.push_back(entry.path());
        }
    }
    std::sort(paths.begin(), paths.end());
    std::vector<Stream> streams;
    for (const fs::path& path : paths) {
        streams.push_back(loadStream(path));
    }
    return streams;
}

std::vector<Stream> streamsIn(const fs::path& folder, const std::string& framing) {
    std::vector<Stream> streams = streamsIn(folder);
    streams.erase(std::remove_if(streams.begin(), streams.end(),
                                 [&](const Stream& stream) { return stream.framing() != framing; }),
                  streams.end());
    return streams;
}

std::string sha256(const unsigned char* data, size_t size) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest;
    unsigned length = 0;
    if (EVP_Digest(data, size, digest.data(), &length, EVP_sha256(), nullptr) != 1) {
        throw std::runtime_error("SHA-256 failed");
    }
    static const char* const kDigits = "0123456789abcdef";
    std::string text;
    for (unsigned i = 0; i < length; ++i) {
        text += kDigits[digest[i] >> 4];
        text += kDigits[digest[i] & 0x0F];
    }
    return text;
}

std::string sha256(const Bytes& bytes) {
    return sha256(bytes.data(), bytes.size());
}

std::string sha256(const std::string& text) {
    return sha256(reinterpret_cast<const unsigned char*>(text.data()), text.size());
}

}  // namespace qv_test
