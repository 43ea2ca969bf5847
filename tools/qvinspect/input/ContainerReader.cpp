// Containers through libavformat, which hands over the samples: nothing is decoded, and all analysis is left
// to the library.
extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/error.h>
#include <libavutil/log.h>
#include <libavutil/mem.h>
}

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include "Interrupt.h"
#include "input/ContainerFraming.h"
#include "input/Containers.h"

namespace qvinspect {

namespace {

// --- libavformat's view of the file ---

struct FreeIo {
    void operator()(AVIOContext* io) const {
        av_freep(static_cast<void*>(&io->buffer));
        avio_context_free(&io);
    }
};
using Io = std::unique_ptr<AVIOContext, FreeIo>;

constexpr int kIoBuffer = 64 * 1024;

int readBytes(void* opaque, uint8_t* to, int size) {
    auto& file = *static_cast<FileSource*>(opaque);
    const size_t count = file.read(to, static_cast<size_t>(size));
    if (count > 0) {
        return static_cast<int>(count);
    }
    return file.isInterrupted() ? AVERROR_EXIT : file.failure().empty() ? AVERROR_EOF : AVERROR(EIO);
}

int64_t seekBytes(void* opaque, int64_t offset, int whence) {
    auto& file = *static_cast<FileSource*>(opaque);
    if ((whence & AVSEEK_SIZE) != 0) {
        return static_cast<int64_t>(file.size().value_or(0));
    }
    if ((whence & ~AVSEEK_FORCE) != SEEK_SET || offset < 0) {
        return AVERROR(EINVAL);
    }
    file.seek(static_cast<uint64_t>(offset));
    return offset;
}

Io openIo(FileSource& file) {
    auto* buffer = static_cast<uint8_t*>(av_malloc(kIoBuffer));
    return Io(avio_alloc_context(buffer, kIoBuffer, 0, &file, readBytes, nullptr,
                                 file.canSeek() ? seekBytes : nullptr));
}

// A playlist names other files or addresses: nothing but the input itself is read.
int openNothing(AVFormatContext* /*context*/, AVIOContext** /*io*/, const char* /*url*/, int /*flags*/,
                AVDictionary** /*options*/) {
    return AVERROR(EACCES);
}

int isToEnd(void* /*opaque*/) {
    return isInterrupted() ? 1 : 0;
}

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

bool isVideo(const AVStream& stream, std::optional<QVCodecID> wanted) {
    const auto codec = codecOf(stream.codecpar->codec_id);
    return codec && !isPicture(stream) && (!wanted || *codec == *wanted);
}

// The first video of the codec asked for, or of either; null when there is none.
AVStream* findVideo(const AVFormatContext& context, std::optional<QVCodecID> wanted) {
    AVStream** const end = context.streams + context.nb_streams;
    AVStream** const found = std::find_if(
        context.streams, end, [wanted](const AVStream* stream) { return isVideo(*stream, wanted); });
    return found == end ? nullptr : *found;
}

// Files that libavformat takes for raw byte streams are no containers.
bool isRawFormat(const AVInputFormat& format) {
    return std::strcmp(format.name, "h264") == 0 || std::strcmp(format.name, "hevc") == 0;
}

Context openFile(AVIOContext& io, int& error) {
    AVFormatContext* context = avformat_alloc_context();
    if (context == nullptr) {
        error = AVERROR(ENOMEM);
        return nullptr;
    }
    context->pb = &io;
    context->io_open = openNothing;
    context->interrupt_callback.callback = isToEnd;
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "none", 0);
    av_dict_set(&options, "advanced_editlist", "0", 0);            // every sample of an MP4, played or not
    error = avformat_open_input(&context, "", nullptr, &options);  // frees the context when it fails
    av_dict_free(&options);
    return Context(error < 0 ? nullptr : context);
}

// transfer_characteristics as the file has it. A number that the enumeration of libavformat has no room for
// comes through there as well, and may not be loaded as what it is not.
std::optional<uint32_t> transferOf(const AVCodecParameters& parameters) {
    uint32_t transfer_characteristics = 0;
    static_assert(sizeof transfer_characteristics == sizeof parameters.color_trc);
    std::memcpy(&transfer_characteristics, &parameters.color_trc, sizeof transfer_characteristics);
    if (transfer_characteristics == AVCOL_TRC_UNSPECIFIED) {
        return std::nullopt;
    }
    return transfer_characteristics;
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
    ContainerReader(std::unique_ptr<FileSource> file, Io io, Context context, AVStream& video,
                    QVCodecID codec)
        : file_(std::move(file)),
          io_(std::move(io)),
          context_(std::move(context)),
          video_(video),
          packet_(av_packet_alloc()) {
        info_.format = context_->iformat->long_name;
        info_.transfer_characteristics = transferOf(*video.codecpar);
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
        followConfiguration(accessUnit);
        fill(accessUnit);
        return true;
    }

    ReadProgress progress() const override {
        return {static_cast<uint64_t>(std::max<int64_t>(avio_tell(io_.get()), 0)), file_->size()};
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
            if (result == AVERROR_EOF || file_->isInterrupted()) {
                return false;  // a sample that was interrupted need not be whole
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
        const std::string& reason = file_->failure();
        return fmt::format("reading failed at offset {} of the file: {}", avio_tell(io_.get()),
                           reason.empty() ? errorText(error) : reason);
    }

    // A new configuration record can come with a sample.
    void followConfiguration(AccessUnit& accessUnit) {
        size_t size = 0;
        const uint8_t* extradata = av_packet_get_side_data(packet_.get(), AV_PKT_DATA_NEW_EXTRADATA, &size);
        if (extradata != nullptr) {
            parameters_ = framing(parameters_.codecId, extradata, size);
            accessUnit.newConfiguration.assign(extradata, extradata + size);
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

    std::unique_ptr<FileSource> file_;
    Io io_;
    Context context_;  // reads through io_, which reads file_
    AVStream& video_;
    Packet packet_;
    StreamInfo info_;
    QVCodecParameters parameters_{};
};

std::string noVideoReason(const AVFormatContext& context, std::optional<QVCodecID> wanted) {
    const char* codec = !wanted ? "H.264 or H.265" : *wanted == QVCodecIDAvc ? "H.264" : "H.265";
    return fmt::format("holds no {} video ({}); choose another file", codec, context.iformat->long_name);
}

std::string describe(const AVStream& stream) {
    const char* type = isPicture(stream) ? "picture" : av_get_media_type_string(stream.codecpar->codec_type);
    return fmt::format("{} {} {}", stream.index, type != nullptr ? type : "data",
                       avcodec_get_name(stream.codecpar->codec_id));
}

std::string streamsOf(const AVFormatContext& context) {
    constexpr unsigned kMostNamed = 32;
    std::string text;
    for (unsigned i = 0; i < std::min(context.nb_streams, kMostNamed); ++i) {
        text += (i > 0 ? ", " : "") + describe(*context.streams[i]);
    }
    return context.nb_streams > kMostNamed
               ? fmt::format("{} and {} more", text, context.nb_streams - kMostNamed)
               : text;
}

std::string noStreamReason(const AVFormatContext& context, const InputOptions& options) {
    const unsigned index = *options.stream;
    const char* wanted = !options.codec                   ? "H.264 or H.265 video"
                         : *options.codec == QVCodecIDAvc ? "H.264 video, as --codec has it"
                                                          : "H.265 video, as --codec has it";
    const std::string what = index < context.nb_streams ? fmt::format("is no {}", wanted) : "does not exist";
    return fmt::format("stream {} {}; choose with --stream among: {}", index, what, streamsOf(context));
}

AVStream* findStream(const AVFormatContext& context, const InputOptions& options) {
    if (!options.stream) {
        return findVideo(context, options.codec);
    }
    if (*options.stream >= context.nb_streams) {
        return nullptr;
    }
    AVStream* const stream = context.streams[*options.stream];
    return isVideo(*stream, options.codec) ? stream : nullptr;
}

}  // namespace

ContainerResult openContainer(std::unique_ptr<FileSource>& file, const InputOptions& options) {
    av_log_set_level(AV_LOG_QUIET);  // what matters of it comes back as errors
    Io io = openIo(*file);
    int error = 0;
    Context context = openFile(*io, error);
    if (context == nullptr) {
        return {nullptr, fmt::format("cannot be opened as a container ({}); check that it is whole",
                                     errorText(error))};
    }
    if (isRawFormat(*context->iformat)) {
        return {nullptr, "is no container; for a raw stream leave out --stream and --format container"};
    }
    // Most containers name their streams in a header. For those that do not, libavformat looks at the
    // first samples.
    if (findStream(*context, options) == nullptr) {
        avformat_find_stream_info(context.get(), nullptr);
    }
    AVStream* video = findStream(*context, options);
    if (video == nullptr) {
        return {nullptr,
                options.stream ? noStreamReason(*context, options) : noVideoReason(*context, options.codec)};
    }
    const QVCodecID found = *codecOf(video->codecpar->codec_id);
    return {
        std::make_unique<ContainerReader>(std::move(file), std::move(io), std::move(context), *video, found),
        {}};
}

bool looksLikeContainer(const std::vector<unsigned char>& head) {
    // The probes may read some bytes behind the end, which have to be zero.
    std::vector<unsigned char> padded = head;
    padded.resize(head.size() + AVPROBE_PADDING_SIZE);
    const AVProbeData data = {"", padded.data(), static_cast<int>(head.size()), nullptr};
    int score = AVPROBE_SCORE_RETRY;
    const AVInputFormat* const format = av_probe_input_format2(&data, 1, &score);
    return format != nullptr && !isRawFormat(*format);
}

}  // namespace qvinspect
