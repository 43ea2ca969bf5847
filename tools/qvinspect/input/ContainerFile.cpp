#include "input/ContainerFile.h"

extern "C" {
#include <libavutil/avstring.h>
#include <libavutil/dict.h>
#include <libavutil/error.h>
#include <libavutil/log.h>
#include <libavutil/mem.h>
}

#include <fmt/format.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "Interrupt.h"
#include "bitstream/units/CodecProbe.h"
#include "input/Budgets.h"
#include "input/InputError.h"

namespace qvinspect {

namespace {

// The containers that are read, by their names in libavformat.
constexpr const char* kContainerFormats =
    "asf,avi,dhav,flv,ivf,live_flv,matroska,mov,mpeg,mpegts,mxf,nut,wtv";

constexpr int kIoBuffer = 64 * 1024;

// A playlist names other files or addresses. Only the input itself is read.
int openNothing(AVFormatContext* /*context*/, AVIOContext** /*io*/, const char* /*url*/, int /*flags*/,
                AVDictionary** /*options*/) {
    return AVERROR(EACCES);
}

int isToEnd(void* /*opaque*/) {
    return isInterrupted() ? 1 : 0;
}

// Files that libavformat recognises as raw byte streams are not containers.
bool isRawFormat(const AVInputFormat& format) {
    return std::strcmp(format.name, "h264") == 0 || std::strcmp(format.name, "hevc") == 0;
}

bool isTransportStream(const AVInputFormat& format) {
    return std::strcmp(format.name, "mpegts") == 0;
}

std::string mebibytes(uint64_t bytes) {
    return fmt::format("{} MiB", bytes / kMiB);
}

[[noreturn]] void refuseToOpen(int error, uint64_t bytes) {
    if (error == AVERROR(ENOMEM)) {
        throw InputError(fmt::format(
            "cannot be opened: its header needs more than {} of memory, the limit for a file of its size, or "
            "has more than {} streams; it is broken or malicious: check where it comes from",
            mebibytes(containerMemory(bytes)), kMostStreams));
    }
    throw InputError(
        fmt::format("cannot be opened as a container ({}); check that it is whole", avErrorText(error)));
}

}  // namespace

// A format has several names.
bool isContainerFormat(const AVInputFormat& format) {
    return av_match_list(format.name, kContainerFormats, ',') > 0;
}

Packet makePacket() {
    Packet packet(av_packet_alloc());
    if (packet == nullptr) {
        throw std::bad_alloc();
    }
    return packet;
}

std::string avErrorText(int error) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(error, text, sizeof text);
    return text;
}

// --- Bytes ---

void ContainerFile::FreeIo::operator()(AVIOContext* io) const {
    av_freep(static_cast<void*>(&io->buffer));
    avio_context_free(&io);
}

int ContainerFile::readBytes(void* opaque, uint8_t* to, int size) {
    auto& self = *static_cast<ContainerFile*>(opaque);
    FileSource& file = self.file_;
    self.isOverread_ = file.canSeek() && self.bytesRead_ > containerReading(*file.size());
    if (self.isOverread_) {
        return AVERROR_EOF;
    }
    const size_t count = file.read(to, static_cast<size_t>(size));
    if (count == 0) {
        return file.isInterrupted() ? AVERROR_EXIT : file.failure().empty() ? AVERROR_EOF : AVERROR(EIO);
    }
    self.bytesRead_ += count;
    if (!file.canSeek()) {
        self.applyMemoryBudget();
    }
    return static_cast<int>(count);
}

int64_t ContainerFile::seekBytes(void* opaque, int64_t offset, int whence) {
    FileSource& file = static_cast<ContainerFile*>(opaque)->file_;
    if ((whence & AVSEEK_SIZE) != 0) {
        return static_cast<int64_t>(file.size().value_or(0));
    }
    if ((whence & ~AVSEEK_FORCE) != SEEK_SET || offset < 0) {
        return AVERROR(EINVAL);
    }
    file.seek(static_cast<uint64_t>(offset));
    return offset;
}

uint64_t ContainerFile::bytes() const {
    return file_.size().value_or(bytesRead_);
}

uint64_t ContainerFile::position() const {
    return static_cast<uint64_t>(std::max<int64_t>(avio_tell(io_.get()), 0));
}

// Limits a single allocation of libavformat, and the memory of the process.
void ContainerFile::applyMemoryBudget() {
    const uint64_t most = containerMemory(bytes());
    av_max_alloc(static_cast<size_t>(std::min<uint64_t>(most, INT_MAX)));
    memory_.allow(isSelected_ ? inspectionMemory(bytes()) : most);
}

// --- Opening ---

ContainerFile::ContainerFile(FileSource& file)
    : file_(file), memory_(containerMemory(file.size().value_or(0))) {
    av_log_set_level(AV_LOG_QUIET);  // errors are returned
    applyMemoryBudget();
    auto* buffer = static_cast<uint8_t*>(av_malloc(kIoBuffer));
    io_.reset(avio_alloc_context(buffer, kIoBuffer, 0, this, readBytes, nullptr,
                                 file.canSeek() ? seekBytes : nullptr));
    if (io_ == nullptr) {
        av_free(buffer);
        throw std::bad_alloc();
    }
    open(probeFormat());
}

ContainerFile::~ContainerFile() = default;

// Throws InputError unless the format is one of those that are read.
const AVInputFormat* ContainerFile::probeFormat() {
    const AVInputFormat* format = nullptr;
    const int score = av_probe_input_buffer2(io_.get(), &format, "", nullptr, 0, 0);
    if (score < 0 || format == nullptr) {
        refuseToOpen(score < 0 ? score : AVERROR_INVALIDDATA, bytes());
    }
    if (isRawFormat(*format)) {
        throw InputError("is not a container; for a raw stream leave out --stream and --format container");
    }
    if (!isContainerFormat(*format)) {
        throw InputError(fmt::format(
            "is a file of {}, which is not one of the supported containers ({}); choose another file",
            format->long_name, kContainerFormats));
    }
    return format;
}

void ContainerFile::open(const AVInputFormat* format) {
    AVFormatContext* context = avformat_alloc_context();
    if (context == nullptr) {
        throw std::bad_alloc();
    }
    context->pb = io_.get();
    context->io_open = openNothing;
    context->interrupt_callback.callback = isToEnd;
    if (!isTransportStream(*format)) {
        context->max_streams = kMostStreams;
    }
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "none", 0);
    av_dict_set(&options, "format_whitelist", kContainerFormats, 0);
    av_dict_set(&options, "codec_whitelist", "none", 0);
    av_dict_set(&options, "advanced_editlist", "0",
                0);  // every sample of an MP4, even those that are not played
    const int error = avformat_open_input(&context, "", format, &options);  // frees the context if it fails
    av_dict_free(&options);
    if (error < 0) {
        refuseToOpen(error, bytes());
    }
    context_.reset(context);
}

// --- Streams ---

std::optional<QVCodecID> ContainerFile::codecOf(const AVStream& stream) const {
    // The numbers of libavformat's codecs are not the library's.
    switch (stream.codecpar->codec_id) {
        case AV_CODEC_ID_H264:
            return QVCodecIDAvc;
        case AV_CODEC_ID_HEVC:
            return QVCodecIDHevc;
        default:
            break;
    }
    const auto probed = probed_.find(stream.index);
    return probed == probed_.end() ? std::nullopt : std::optional<QVCodecID>(probed->second);
}

namespace {

// The container does not name the stream's codec.
bool isWithoutCodec(const AVStream& stream) {
    const AVMediaType type = stream.codecpar->codec_type;
    return stream.codecpar->codec_id == AV_CODEC_ID_NONE &&
           (type == AVMEDIA_TYPE_VIDEO || type == AVMEDIA_TYPE_UNKNOWN);
}

}  // namespace

// The header does not name all streams and their codecs.
bool ContainerFile::isUnnamed() const {
    AVStream** const end = context_->streams + context_->nb_streams;
    return (context_->ctx_flags & AVFMTCTX_NOHEADER) != 0 ||
           std::any_of(context_->streams, end,
                       [](const AVStream* stream) { return isWithoutCodec(*stream); });
}

// Reads one more packet. False at a limit or an error.
bool ContainerFile::readAhead() {
    if (ahead_.size() >= kProbedPackets || aheadBytes_ >= kProbedBytes) {
        return false;
    }
    Packet packet = makePacket();
    if (av_read_frame(context_.get(), packet.get()) < 0) {
        return false;
    }
    aheadBytes_ += static_cast<uint64_t>(packet->size);
    ahead_.push_back(std::move(packet));
    return true;
}

void ContainerFile::probeUnnamed() {
    std::map<int, std::vector<uint8_t>> heads;
    for (const Packet& packet : ahead_) {
        const AVStream& stream = *context_->streams[packet->stream_index];
        std::vector<uint8_t>& head = heads[packet->stream_index];
        if (isWithoutCodec(stream) && head.size() < qv::kProbeBytes) {
            head.insert(head.end(), packet->data, packet->data + packet->size);
        }
    }
    for (const auto& [index, head] : heads) {
        const std::optional<qv::Codec> codec =
            qv::probeCodec({head.data(), head.size()}, qv::Framing::StartCodes).codec();
        if (codec) {
            probed_[index] = *codec == qv::Codec::Avc ? QVCodecIDAvc : QVCodecIDHevc;
        }
    }
}

void ContainerFile::select(const AVStream& video) {
    for (unsigned i = 0; i < context_->nb_streams; ++i) {
        context_->streams[i]->discard =
            context_->streams[i]->index == video.index ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
    isSelected_ = true;
    applyMemoryBudget();
}

int ContainerFile::read(AVPacket& packet) {
    av_packet_unref(&packet);
    if (ahead_.empty()) {
        return av_read_frame(context_.get(), &packet);
    }
    av_packet_move_ref(&packet, ahead_.front().get());
    ahead_.pop_front();
    return 0;
}

}  // namespace qvinspect
