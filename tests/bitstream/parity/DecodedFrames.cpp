#include "DecodedFrames.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <memory>
#include <stdexcept>

#include "FileUnits.h"

namespace qv_test {

namespace {

struct CloseFormat {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
struct FreeDecoder {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
struct FreePacket {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
struct FreeFrame {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};

using Format = std::unique_ptr<AVFormatContext, CloseFormat>;
using Decoder = std::unique_ptr<AVCodecContext, FreeDecoder>;
using Packet = std::unique_ptr<AVPacket, FreePacket>;
using Frame = std::unique_ptr<AVFrame, FreeFrame>;

Format open(const std::filesystem::path& file) {
    AVFormatContext* context = nullptr;
    if (avformat_open_input(&context, file.c_str(), nullptr, nullptr) < 0) {
        throw std::runtime_error("cannot open " + file.string());
    }
    Format format(context);
    if (avformat_find_stream_info(context, nullptr) < 0) {
        throw std::runtime_error("cannot read " + file.string());
    }
    return format;
}

const AVStream& videoOf(const AVFormatContext& format) {
    for (unsigned i = 0; i < format.nb_streams; ++i) {
        const AVCodecID codec = format.streams[i]->codecpar->codec_id;
        if (codec == AV_CODEC_ID_H264 || codec == AV_CODEC_ID_HEVC) {
            return *format.streams[i];
        }
    }
    throw std::runtime_error("no H.264 or H.265");
}

Decoder decoderOf(const AVStream& video) {
    Decoder decoder(avcodec_alloc_context3(nullptr));
    if (avcodec_parameters_to_context(decoder.get(), video.codecpar) < 0) {
        throw std::runtime_error("no decoder");
    }
    decoder->thread_count = 1;
    if (avcodec_open2(decoder.get(), avcodec_find_decoder(video.codecpar->codec_id), nullptr) < 0) {
        throw std::runtime_error("no decoder");
    }
    return decoder;
}

DecodedFrame frameOf(const AVFrame& frame) {
    DecodedFrame result;
    result.packet = static_cast<size_t>(frame.pts);
    const AVFrameSideData* const captions = av_frame_get_side_data(&frame, AV_FRAME_DATA_A53_CC);
    if (captions != nullptr) {
        result.captions.assign(captions->data, captions->data + captions->size);
    }
    const AVFrameSideData* const activeFormat = av_frame_get_side_data(&frame, AV_FRAME_DATA_AFD);
    if (activeFormat != nullptr) {
        result.activeFormat = activeFormat->data[0];
    }
    return result;
}

// Without a packet, the frames that the decoder holds back. What it refuses has no frame.
void decode(AVCodecContext& decoder, const AVPacket* packet, std::vector<DecodedFrame>& frames) {
    const Frame frame(av_frame_alloc());
    if (avcodec_send_packet(&decoder, packet) < 0) {
        return;
    }
    while (avcodec_receive_frame(&decoder, frame.get()) >= 0) {
        frames.push_back(frameOf(*frame));
    }
}

}  // namespace

DecodedFrames framesOf(const std::filesystem::path& file) {
    const Format format = open(file);
    const AVStream& video = videoOf(*format);
    const AVCodecParameters& parameters = *video.codecpar;
    const Decoder decoder = decoderOf(video);
    DecodedFrames result;
    result.codec = parameters.codec_id == AV_CODEC_ID_H264 ? qv::Codec::Avc : qv::Codec::Hevc;
    std::vector<std::vector<uint8_t>> ofRecord;
    const size_t lengthSize = addUnitsOfRecord(result.codec, parameters.extradata,
                                               static_cast<size_t>(parameters.extradata_size), ofRecord);
    const Packet packet(av_packet_alloc());
    while (av_read_frame(format.get(), packet.get()) >= 0) {
        if (packet->stream_index == video.index) {
            const auto size = static_cast<size_t>(packet->size);
            std::vector<std::vector<uint8_t>> units;
            if (lengthSize != 0) {
                addUnitsOfLengths(packet->data, size, lengthSize, units);
            } else {
                addUnitsOfByteStream(packet->data, size, units);
            }
            // A frame has the time of its packet.
            packet->pts = static_cast<int64_t>(result.packets.size());
            result.packets.push_back(std::move(units));
            decode(*decoder, packet.get(), result.frames);
        }
        av_packet_unref(packet.get());
    }
    decode(*decoder, nullptr, result.frames);
    result.reorderedFrames = static_cast<uint32_t>(decoder->has_b_frames);
    return result;
}

}  // namespace qv_test
