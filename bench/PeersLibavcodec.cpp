#include "Peers.h"

#if defined(QV_BENCH_WITH_LIBAVCODEC)

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/bsf.h>
#include <libavutil/log.h>
#include <libavutil/mem.h>
}

#include <cstring>

#include "Measure.h"

namespace qv_bench {

namespace {

using Padded = std::shared_ptr<Bytes>;

// The parsers may read this many bytes past the end.
Padded padded(Bytes bytes) {
    bytes.resize(bytes.size() + AV_INPUT_BUFFER_PADDING_SIZE, 0);
    return std::make_shared<Bytes>(std::move(bytes));
}

struct KeyFrameParser {
    explicit KeyFrameParser(AVCodecID id)
        : parser(av_parser_init(id)), context(avcodec_alloc_context3(nullptr)) {
        require(parser != nullptr && context != nullptr, "libavcodec's parser");
        parser->flags |= PARSER_FLAG_COMPLETE_FRAMES;
    }
    ~KeyFrameParser() {
        av_parser_close(parser);
        avcodec_free_context(&context);
    }
    KeyFrameParser(const KeyFrameParser&) = delete;
    KeyFrameParser& operator=(const KeyFrameParser&) = delete;

    bool parse(const Bytes& bytes) const {
        uint8_t* out = nullptr;
        int size = 0;
        av_parser_parse2(parser, context, &out, &size, bytes.data(),
                         static_cast<int>(bytes.size()) - AV_INPUT_BUFFER_PADDING_SIZE, AV_NOPTS_VALUE,
                         AV_NOPTS_VALUE, 0);
        return parser->key_frame == 1;
    }

    AVCodecParserContext* parser;
    AVCodecContext* context;
};

// AVCDecoderConfigurationRecord, ISO/IEC 14496-15.
Bytes configurationRecord(const Bytes& sps, const Bytes& pps) {
    Bytes record = {1, sps[1], sps[2], sps[3], 0xFF, 0xE1};
    const auto append = [&record](const Bytes& unit) {
        record.push_back(static_cast<unsigned char>(unit.size() >> 8));
        record.push_back(static_cast<unsigned char>(unit.size() & 0xFF));
        record.insert(record.end(), unit.begin(), unit.end());
    };
    append(sps);
    record.push_back(1);
    append(pps);
    return record;
}

struct Filter {
    explicit Filter(const Bytes& record) : packet(av_packet_alloc()) {
        const AVBitStreamFilter* const filter = av_bsf_get_by_name("h264_mp4toannexb");
        require(filter != nullptr && av_bsf_alloc(filter, &context) == 0, "libavcodec's filter");
        context->par_in->codec_type = AVMEDIA_TYPE_VIDEO;
        context->par_in->codec_id = AV_CODEC_ID_H264;
        context->par_in->extradata =
            static_cast<uint8_t*>(av_mallocz(record.size() + AV_INPUT_BUFFER_PADDING_SIZE));
        std::memcpy(context->par_in->extradata, record.data(), record.size());
        context->par_in->extradata_size = static_cast<int>(record.size());
        require(av_bsf_init(context) == 0, "libavcodec's filter");
    }
    ~Filter() {
        av_packet_free(&packet);
        av_bsf_free(&context);
    }
    Filter(const Filter&) = delete;
    Filter& operator=(const Filter&) = delete;

    // The packet borrows the sample, so no copy is timed.
    size_t run(uint8_t* data, int size) const {
        packet->buf = av_buffer_create(
            data, static_cast<size_t>(size), [](void*, uint8_t*) {}, nullptr, AV_BUFFER_FLAG_READONLY);
        packet->data = data;
        packet->size = size;
        size_t written = 0;
        if (av_bsf_send_packet(context, packet) == 0 && av_bsf_receive_packet(context, packet) == 0) {
            written = static_cast<size_t>(packet->size);
        }
        av_packet_unref(packet);
        return written;
    }

    AVBSFContext* context = nullptr;
    AVPacket* packet;
};

}  // namespace

std::string libavcodecName() {
    const unsigned version = avcodec_version();
    return "libavcodec " + std::to_string(version >> 16) + '.' + std::to_string(version >> 8 & 0xFF) + '.' +
           std::to_string(version & 0xFF);
}

std::function<bool()> libavcodecKeyFrame(QVCodecID codec, const Bytes& accessUnit) {
    av_log_set_level(AV_LOG_QUIET);
    const AVCodecID id = codec == QVCodecIDAvc ? AV_CODEC_ID_H264 : AV_CODEC_ID_HEVC;
    return [parser = std::make_shared<KeyFrameParser>(id), bytes = padded(accessUnit)] {
        return parser->parse(*bytes);
    };
}

std::function<size_t()> libavcodecToStartCodes(const std::shared_ptr<const Samples>& samples,
                                               const Bytes& sps, const Bytes& pps) {
    av_log_set_level(AV_LOG_QUIET);
    const auto filter = std::make_shared<Filter>(configurationRecord(sps, pps));
    const Padded bytes = padded(samples->bytes);
    return [=] {
        size_t written = 0;
        for (const auto& [offset, size] : samples->pieces) {
            written += filter->run(bytes->data() + offset, size);
        }
        return written;
    };
}

}  // namespace qv_bench

#else

namespace qv_bench {

std::string libavcodecName() {
    return "";
}

std::function<bool()> libavcodecKeyFrame(QVCodecID /*codec*/, const Bytes& /*accessUnit*/) {
    return {};
}

std::function<size_t()> libavcodecToStartCodes(const std::shared_ptr<const Samples>& /*samples*/,
                                               const Bytes& /*sps*/, const Bytes& /*pps*/) {
    return {};
}

}  // namespace qv_bench

#endif
