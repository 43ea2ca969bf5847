#include "HevcMessages.h"

#include <algorithm>
#include <stdexcept>

#include "StreamExpectation.h"

namespace qv_test {

namespace {

using nlohmann::json;

// Converts hexadecimal digits to bytes. Dots mark the omitted rest of a long payload.
Bytes bytesOfHex(const std::string& hex) {
    Bytes bytes;
    for (size_t i = 0; i < hex.size() && hex[i] != '.'; i += 2) {
        bytes.push_back(static_cast<uint8_t>(std::stoul(hex.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

std::vector<HevcMessage> messagesOf(const json& expectation, int payloadType) {
    std::vector<HevcMessage> messages;
    for (const json& unit : expectation.at("sei").at("list")) {
        for (const json& message : unit.at("messages")) {
            if (message.at("type") == payloadType) {
                const std::string hex = message.at("hex");
                messages.push_back(
                    {hex, bytesOfHex(hex), message.at("size"), message.value("fields", json())});
            }
        }
    }
    return messages;
}

}  // namespace

std::vector<HevcStream> hevcStreamsWith(int payloadType) {
    std::vector<HevcStream> found;
    for (const Stream& stream : streamsIn(streamsFolder())) {
        if (stream.codec() != QVCodecIDHevc) {
            continue;
        }
        std::vector<HevcMessage> messages = messagesOf(stream.expectation, payloadType);
        if (!messages.empty()) {
            const json& frames = stream.expectation.at("decoded_frames");
            found.push_back({stream.name, std::move(messages),
                             stream.expectation.at("sps").at(0).at("syntax"), frames.at("side_data_first"),
                             frames.at("side_data_counts")});
        }
    }
    if (found.empty()) {
        throw std::runtime_error("no stream has messages of type " + std::to_string(payloadType));
    }
    return found;
}

HevcStream hevcStreamWith(int payloadType, const std::string& name) {
    const std::vector<HevcStream> streams = hevcStreamsWith(payloadType);
    const auto found = std::find_if(streams.begin(), streams.end(),
                                    [&](const HevcStream& stream) { return stream.name == name; });
    if (found == streams.end()) {
        throw std::runtime_error("no stream " + name + " with messages of that type");
    }
    return *found;
}

}  // namespace qv_test
