#include "TraceHeaders.h"

extern "C" {
#include <libavcodec/bsf.h>
#include <libavutil/log.h>
}

#include <cstring>
#include <sstream>
#include <stdexcept>

namespace qv_test {

namespace {

// The filter prints through libavutil's log, which has one callback for the process.
std::string* log = nullptr;

void appendToLog(void* context, int level, const char* format, va_list arguments) {
    if (log == nullptr || level > AV_LOG_INFO) {
        return;
    }
    char line[4096];
    int printPrefix = 0;
    av_log_format_line2(context, level, format, arguments, line, sizeof line, &printPrefix);
    *log += line;
}

void require(bool condition, const char* what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

// "51          pic_width_in_mbs_minus1                             000010100 = 19"; an element of no bits has
// nothing before the equals sign.
bool parseElement(const std::string& line, WitnessElement& element) {
    std::istringstream in(line);
    std::string bits;
    std::string equals = "=";
    if (!(in >> element.firstBit >> element.name >> bits)) {
        return false;
    }
    if (bits == "=") {
        bits.clear();
    } else if (!(in >> equals)) {
        return false;
    }
    element.width = static_cast<uint32_t>(bits.size());
    for (const char bit : bits) {
        element.bits = element.bits << 1 | (bit == '1' ? 1U : 0U);
    }
    return equals == "=" && bits.find_first_not_of("01") == std::string::npos &&
           static_cast<bool>(in >> element.value) && in.eof();
}

WitnessTrace parse(const std::string& text) {
    WitnessTrace trace;
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = text.find('\n', begin);
        const std::string line = text.substr(begin, end - begin);
        begin = end == std::string::npos ? text.size() : end + 1;
        WitnessElement element;
        if (parseElement(line, element)) {
            trace.elements.push_back(element);
        } else if (line.find("out of range") != std::string::npos ||
                   line.find("nvalid") != std::string::npos || line.find("Failed") != std::string::npos ||
                   line.find("not available") != std::string::npos) {
            trace.complaint += line + "; ";
        }
    }
    return trace;
}

}  // namespace

void TraceHeaders::Free::operator()(AVBSFContext* filter) const {
    av_bsf_free(&filter);
}

TraceHeaders::TraceHeaders(qv::Codec codec) {
    const AVBitStreamFilter* const filter = av_bsf_get_by_name("trace_headers");
    require(filter != nullptr, "libavcodec has no trace_headers");
    AVBSFContext* context = nullptr;
    require(av_bsf_alloc(filter, &context) >= 0, "trace_headers cannot be allocated");
    filter_.reset(context);
    context->par_in->codec_type = AVMEDIA_TYPE_VIDEO;
    context->par_in->codec_id = codec == qv::Codec::Avc ? AV_CODEC_ID_H264 : AV_CODEC_ID_HEVC;
    require(av_bsf_init(context) >= 0, "trace_headers cannot be initialised");
    av_log_set_callback(appendToLog);
    av_log_set_level(AV_LOG_INFO);
}

WitnessTrace TraceHeaders::trace(qv::Bytes unit) {
    constexpr size_t kStartCodeSize = 3;
    AVPacket* packet = av_packet_alloc();
    require(packet != nullptr && av_new_packet(packet, static_cast<int>(unit.size + kStartCodeSize)) >= 0,
            "a packet cannot be allocated");
    const uint8_t startCode[kStartCodeSize] = {0x00, 0x00, 0x01};
    std::memcpy(packet->data, startCode, kStartCodeSize);
    if (!unit.empty()) {
        std::memcpy(packet->data + kStartCodeSize, unit.data, unit.size);
    }
    std::string text;
    log = &text;
    if (av_bsf_send_packet(filter_.get(), packet) >= 0) {
        while (av_bsf_receive_packet(filter_.get(), packet) >= 0) {
            av_packet_unref(packet);
        }
    }
    log = nullptr;
    av_packet_free(&packet);
    return parse(text);
}

}  // namespace qv_test
