#include "FileUnits.h"

extern "C" {
#include <libavformat/avformat.h>
}

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace qv_test {

namespace {

namespace fs = std::filesystem;

using Units = std::vector<std::vector<uint8_t>>;

bool isStartCode(const uint8_t* bytes, size_t size, size_t position) {
    return position + 2 < size && bytes[position] == 0 && bytes[position + 1] == 0 &&
           bytes[position + 2] == 1;
}

}  // namespace

void addUnitsOfByteStream(const uint8_t* bytes, size_t size, Units& units) {
    size_t position = 0;
    while (position < size && !isStartCode(bytes, size, position)) {
        ++position;
    }
    while (position < size) {
        const size_t begin = position + 3;
        size_t end = begin;
        while (end < size && !isStartCode(bytes, size, end)) {
            ++end;
        }
        end = end + 2 >= size ? size : end;
        position = end;
        size_t last = end;
        while (last > begin && bytes[last - 1] == 0) {
            --last;
        }
        if (last > begin) {
            units.emplace_back(bytes + begin, bytes + last);
        }
    }
}

void addUnitsOfLengths(const uint8_t* bytes, size_t size, size_t lengthSize, Units& units) {
    for (size_t position = 0; position + lengthSize < size;) {
        size_t length = 0;
        for (size_t i = 0; i < lengthSize; ++i) {
            length = length << 8 | bytes[position + i];
        }
        position += lengthSize;
        if (length == 0 || length > size - position) {
            return;
        }
        units.emplace_back(bytes + position, bytes + position + length);
        position += length;
    }
}

namespace {

// The 16-bit lengths of a configuration record from a place on; returns where they end.
size_t addUnitsOfArray(const uint8_t* bytes, size_t size, size_t position, size_t count, Units& units) {
    for (; count > 0 && position + 2 <= size; --count) {
        const size_t length = static_cast<size_t>(bytes[position] << 8 | bytes[position + 1]);
        position += 2;
        if (length > size - position) {
            return size;
        }
        units.emplace_back(bytes + position, bytes + position + length);
        position += length;
    }
    return position;
}

}  // namespace

size_t addUnitsOfRecord(qv::Codec codec, const uint8_t* bytes, size_t size, Units& units) {
    if (codec == qv::Codec::Avc) {
        if (size < 7 || bytes[0] != 1) {
            return 0;
        }
        size_t position = addUnitsOfArray(bytes, size, 6, bytes[5] & 0x1F, units);
        if (position < size) {
            position = addUnitsOfArray(bytes, size, position + 1, bytes[position], units);
        }
        if (position + 4 <= size) {  // the fields of High profiles
            addUnitsOfArray(bytes, size, position + 4, bytes[position + 3], units);
        }
        return (bytes[4] & 3U) + 1;
    }
    if (size < 23 || (bytes[0] == 0 && bytes[1] == 0)) {
        return 0;
    }
    size_t position = 23;
    for (size_t arrays = bytes[22]; arrays > 0 && position + 3 <= size; --arrays) {
        const size_t count = static_cast<size_t>(bytes[position + 1] << 8 | bytes[position + 2]);
        position = addUnitsOfArray(bytes, size, position + 3, count, units);
    }
    return (bytes[21] & 3U) + 1;
}

namespace {

FileUnits unitsOfContainer(const fs::path& file) {
    AVFormatContext* context = nullptr;
    if (avformat_open_input(&context, file.c_str(), nullptr, nullptr) < 0 ||
        avformat_find_stream_info(context, nullptr) < 0) {
        avformat_close_input(&context);
        throw std::runtime_error("cannot open " + file.string());
    }
    FileUnits result;
    int video = -1;
    for (unsigned i = 0; i < context->nb_streams && video < 0; ++i) {
        const AVCodecID codec = context->streams[i]->codecpar->codec_id;
        if (codec == AV_CODEC_ID_H264 || codec == AV_CODEC_ID_HEVC) {
            video = static_cast<int>(i);
            result.codec = codec == AV_CODEC_ID_H264 ? qv::Codec::Avc : qv::Codec::Hevc;
        }
    }
    if (video < 0) {
        avformat_close_input(&context);
        throw std::runtime_error("no H.264 or H.265 in " + file.string());
    }
    const AVCodecParameters* const parameters = context->streams[video]->codecpar;
    const size_t lengthSize = addUnitsOfRecord(result.codec, parameters->extradata,
                                               static_cast<size_t>(parameters->extradata_size), result.units);
    AVPacket* packet = av_packet_alloc();
    while (av_read_frame(context, packet) >= 0) {
        const auto size = static_cast<size_t>(packet->size);
        if (packet->stream_index == video && lengthSize != 0) {
            addUnitsOfLengths(packet->data, size, lengthSize, result.units);
        } else if (packet->stream_index == video) {
            addUnitsOfByteStream(packet->data, size, result.units);
        }
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
    avformat_close_input(&context);
    return result;
}

}  // namespace

FileUnits unitsOf(const fs::path& file) {
    const std::string extension = file.extension();
    if (extension != ".h264" && extension != ".h265") {
        return unitsOfContainer(file);
    }
    std::ifstream in(file, std::ios::binary);
    const std::vector<char> content{std::istreambuf_iterator<char>(in), {}};
    FileUnits result;
    result.codec = extension == ".h264" ? qv::Codec::Avc : qv::Codec::Hevc;
    addUnitsOfByteStream(reinterpret_cast<const uint8_t*>(content.data()), content.size(), result.units);
    return result;
}

}  // namespace qv_test
