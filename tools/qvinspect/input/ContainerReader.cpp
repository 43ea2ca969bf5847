// Containers through libavformat, which hands over the samples: nothing is decoded, and all analysis is left
// to the library.
extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/error.h>
#include <libavutil/log.h>
}

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include "input/ContainerFraming.h"
#include "input/Containers.h"

namespace qvinspect {

namespace {

struct CloseInput {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
using Context = std::unique_ptr<AVFormatContext, CloseInput>;

struct FreePacket {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
using Packet = std::unique_ptr<AVPacket, FreePacket>;

// Reading goes on behind an error, but not for ever when nothing but errors comes.
constexpr int kMostErrorsInARow = 16;

std::string errorText(int error) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(error, text, sizeof text);
    return text;
}

// libavformat's codec numbers are not the library's.
std::optional<QVCodecID> codecOf(AVCodecID id) {
    switch (id) {
        case AV_CODEC_ID_H264:
            return QVCodecIDAvc;
        case AV_CODEC_ID_HEVC:
            return QVCodecIDHevc;
        default:
            return std::nullopt;
    }
}

bool isPicture(const AVStream& stream) {
    return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
}

// The first video of the codec asked for, or of either; null when there is none.
AVStream* findVideo(const AVFormatContext& context, std::optional<QVCodecID> wanted) {
    for (unsigned i = 0; i < context.nb_streams; ++i) {
        AVStream* stream = context.streams[i];
        const auto codec = codecOf(stream->codecpar->codec_id);
        if (codec && !isPicture(*stream) && (!wanted || *codec == *wanted)) {
            return stream;
        }
    }
    return nullptr;
}

// Files that libavformat takes for raw byte streams are no containers.
bool isRawFormat(const AVInputFormat& format) {
    return std::strcmp(format.name, "h264") == 0 || std::strcmp(format.name, "hevc") == 0;
}

// The prefix keeps a colon or a dash in the name from being read as a protocol, and the whitelist keeps a
// file from naming anything but files.
Context openFile(const std::string& path, int& error) {
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    av_dict_set(&options, "advanced_editlist", "0", 0);  // every sample of an MP4, played or not
    AVFormatContext* context = nullptr;
    error = avformat_open_input(&context, ("file:" + path).c_str(), nullptr, &options);
    av_dict_free(&options);
    return Context(context);
}

// Other streams are passed over.
void selectOnly(const AVFormatContext& context, const AVStream& video) {
    for (unsigned i = 0; i < context.nb_streams; ++i) {
        context.streams[i]->discard =
            context.streams[i]->index == video.index ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
}

class ContainerReader : public AccessUnitReader {
public:
    ContainerReader(Context context, AVStream& video, QVCodecID codec)
        : context_(std::move(context)), video_(video), packet_(av_packet_alloc()) {
        info_.format = context_->iformat->long_name;
        if (video.codecpar->color_trc != AVCOL_TRC_UNSPECIFIED) {
            info_.transfer_characteristics = static_cast<uint32_t>(video.codecpar->color_trc);
        }
        const uint8_t* const record = video.codecpar->extradata;
        if (record != nullptr) {
            info_.configuration.assign(record, record + video.codecpar->extradata_size);
        }
        info_.parameters =
            framing(codec, video.codecpar->extradata, static_cast<size_t>(video.codecpar->extradata_size));
        parameters_ = info_.parameters;
        selectOnly(*context_, video);
    }

    const StreamInfo& info() const override { return info_; }

    bool next(AccessUnit& accessUnit) override {
        accessUnit = {};
        if (!readPacket(accessUnit.findings)) {
            return false;
        }
        followFraming();
        fill(accessUnit);
        return true;
    }

    ReadProgress progress() const override {
        ReadProgress progress;
        if (context_->pb != nullptr) {
            const int64_t size = avio_size(context_->pb);
            progress.bytes = static_cast<uint64_t>(std::max<int64_t>(avio_tell(context_->pb), 0));
            progress.size = size > 0 ? std::optional<uint64_t>(size) : std::nullopt;
        }
        return progress;
    }

private:
    QVCodecParameters framing(QVCodecID codec, const uint8_t* extradata, size_t size) const {
        return containerFraming(codec, context_->iformat->name, extradata, size);
    }

    // The next sample of the video. Findings tell of what could not be read ahead of it.
    bool readPacket(std::vector<Finding>& findings) {
        for (int errorsInARow = 0; errorsInARow < kMostErrorsInARow;) {
            av_packet_unref(packet_.get());
            const int result = av_read_frame(context_.get(), packet_.get());
            if (result == AVERROR_EOF) {
                return false;
            }
            if (result < 0) {
                ++errorsInARow;
                findings.push_back({Severity::Error, std::nullopt, readErrorText(result)});
                continue;
            }
            errorsInARow = 0;
            if (packet_->stream_index == video_.index) {
                return true;
            }
        }
        return false;
    }

    std::string readErrorText(int error) const {
        const int64_t position = context_->pb != nullptr ? avio_tell(context_->pb) : -1;
        return position < 0
                   ? fmt::format("reading failed: {}", errorText(error))
                   : fmt::format("reading failed at offset {} of the file: {}", position, errorText(error));
    }

    // A new configuration record can come with a sample.
    void followFraming() {
        size_t size = 0;
        const uint8_t* extradata = av_packet_get_side_data(packet_.get(), AV_PKT_DATA_NEW_EXTRADATA, &size);
        if (extradata != nullptr) {
            parameters_ = framing(parameters_.codecId, extradata, size);
        }
    }

    void fill(AccessUnit& accessUnit) const {
        accessUnit.data = packet_->data;
        accessUnit.size = static_cast<size_t>(packet_->size);
        accessUnit.parameters = parameters_;
        accessUnit.time = seconds(packet_->pts);
        accessUnit.decodeTime = seconds(packet_->dts);
        if (packet_->duration > 0) {
            accessUnit.duration = seconds(packet_->duration);
        }
        if ((packet_->flags & AV_PKT_FLAG_CORRUPT) != 0) {
            accessUnit.findings.push_back(
                {Severity::Error, std::nullopt, "the container's sample is damaged or cut short"});
        }
    }

    std::optional<double> seconds(int64_t time) const {
        return time == AV_NOPTS_VALUE
                   ? std::nullopt
                   : std::optional<double>(static_cast<double>(time) * av_q2d(video_.time_base));
    }

    Context context_;
    AVStream& video_;
    Packet packet_;
    StreamInfo info_;
    QVCodecParameters parameters_{};
};

std::string noVideoReason(const AVFormatContext& context, std::optional<QVCodecID> wanted) {
    const char* codec = !wanted ? "H.264 or H.265" : *wanted == QVCodecIDAvc ? "H.264" : "H.265";
    return fmt::format("holds no {} video ({}); choose another file", codec, context.iformat->long_name);
}

}  // namespace

ContainerResult openContainer(const std::string& path, std::optional<QVCodecID> codec) {
    av_log_set_level(AV_LOG_QUIET);  // what matters of it comes back as errors
    int error = 0;
    Context context = openFile(path, error);
    if (context == nullptr) {
        return {nullptr, fmt::format("cannot be opened as a container ({}); check that it is whole",
                                     errorText(error))};
    }
    if (isRawFormat(*context->iformat)) {
        return {nullptr, "is no container"};
    }
    // Most containers name their streams in a header. For those that do not, libavformat looks at the
    // first samples.
    if (findVideo(*context, codec) == nullptr) {
        avformat_find_stream_info(context.get(), nullptr);
    }
    AVStream* video = findVideo(*context, codec);
    if (video == nullptr) {
        return {nullptr, noVideoReason(*context, codec)};
    }
    const QVCodecID found = *codecOf(video->codecpar->codec_id);
    return {std::make_unique<ContainerReader>(std::move(context), *video, found), {}};
}

}  // namespace qvinspect
