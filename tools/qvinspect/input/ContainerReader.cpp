// Containers through libavformat, which returns the samples. Nothing is decoded, and the library does all
// analysis.
extern "C" {
#include <libavutil/avstring.h>
#include <libavutil/dovi_meta.h>
}

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include "input/Budgets.h"
#include "input/ContainerFile.h"
#include "input/ContainerFraming.h"
#include "input/Containers.h"
#include "input/InputError.h"

namespace qvinspect {

namespace {

// Reading continues after an error, but ends after this many in a row.
constexpr int kMostErrorsInARow = 16;

bool isPicture(const AVStream& stream) {
    return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
}

bool isVideo(const ContainerFile& file, const AVStream& stream, std::optional<QVCodecID> wanted) {
    const auto codec = file.codecOf(stream);
    return codec && !isPicture(stream) && (!wanted || *codec == *wanted);
}

// The first video of the wanted codec, or of either; null if there is none.
AVStream* findVideo(const ContainerFile& file, std::optional<QVCodecID> wanted) {
    const AVFormatContext& context = file.context();
    AVStream** const end = context.streams + context.nb_streams;
    AVStream** const found = std::find_if(
        context.streams, end, [&](const AVStream* stream) { return isVideo(file, *stream, wanted); });
    return found == end ? nullptr : *found;
}

// transfer_characteristics as coded in the file. It may be a number outside the range of libavformat's
// enumeration, which must not be loaded as a value of that type.
std::optional<uint32_t> transferOf(const AVCodecParameters& parameters) {
    uint32_t transfer_characteristics = 0;
    static_assert(sizeof transfer_characteristics == sizeof parameters.color_trc);
    std::memcpy(&transfer_characteristics, &parameters.color_trc, sizeof transfer_characteristics);
    if (transfer_characteristics == AVCOL_TRC_UNSPECIFIED) {
        return std::nullopt;
    }
    return transfer_characteristics;
}

// The Dolby Vision decoder configuration record, from libavformat's reading of it.
std::optional<qv::DolbyVisionConfiguration> dolbyVisionOf(const AVStream& stream) {
    size_t size = 0;
    const uint8_t* const data = av_stream_get_side_data(&stream, AV_PKT_DATA_DOVI_CONF, &size);
    AVDOVIDecoderConfigurationRecord record{};
    if (data == nullptr || size < sizeof record) {
        return std::nullopt;
    }
    std::memcpy(&record, data, sizeof record);
    qv::DolbyVisionConfiguration configuration{};
    configuration.dv_version_major = record.dv_version_major;
    configuration.dv_version_minor = record.dv_version_minor;
    configuration.dv_profile = record.dv_profile;
    configuration.dv_level = record.dv_level;
    configuration.rpu_present_flag = record.rpu_present_flag != 0;
    configuration.el_present_flag = record.el_present_flag != 0;
    configuration.bl_present_flag = record.bl_present_flag != 0;
    configuration.dv_bl_signal_compatibility_id = record.dv_bl_signal_compatibility_id;
    return configuration;
}

// Limits the samples in proportion to the size of the file.
class SampleBudget {
public:
    // Counts a sample and its new configuration record. False if the samples so far exceed the limit for a
    // file of that size.
    bool take(size_t size, uint64_t fileBytes) {
        ++samples_;
        bytes_ += size;
        return bytes_ + samples_ * kSampleCost <= containerSamples(fileBytes);
    }

    std::string text(uint64_t fileBytes) const {
        return fmt::format(
            "{} samples of {} bytes in total, from a file of {} bytes: its tables refer to the same bytes "
            "repeatedly; this sample and the rest are left out",
            samples_, bytes_, fileBytes);
    }

private:
    uint64_t samples_ = 0;
    uint64_t bytes_ = 0;
};

class ContainerReader : public AccessUnitReader {
public:
    ContainerReader(std::unique_ptr<FileSource> source, std::unique_ptr<ContainerFile> file,
                    const AVStream& video, QVCodecID codec)
        : source_(std::move(source)), file_(std::move(file)), video_(video), packet_(makePacket()) {
        info_.format = file_->context().iformat->long_name;
        info_.transfer_characteristics = transferOf(*video.codecpar);
        info_.dolbyVision = dolbyVisionOf(video);
        const uint8_t* const record = video.codecpar->extradata;
        if (record != nullptr) {
            info_.configuration.assign(record, record + video.codecpar->extradata_size);
        }
        info_.parameters =
            framing(codec, video.codecpar->extradata, static_cast<size_t>(video.codecpar->extradata_size));
        parameters_ = info_.parameters;
        file_->select(video);
        noteMissingSamples();
    }

    const StreamInfo& info() const override { return info_; }

    bool next(AccessUnit& accessUnit) override {
        accessUnit = {};
        accessUnit.findings = std::exchange(findings_, {});
        if (isAtEnd_ || !readPacket(accessUnit.findings)) {
            return false;
        }
        followConfiguration(accessUnit);
        const size_t size = static_cast<size_t>(packet_->size) + accessUnit.newConfiguration.size();
        if (!budget_.take(size, file_->bytes())) {
            accessUnit.findings.push_back({Severity::Error, std::nullopt, budget_.text(file_->bytes())});
            accessUnit.newConfiguration.clear();
            isAtEnd_ = true;
            return false;
        }
        fill(accessUnit);
        return true;
    }

    ReadProgress progress() const override { return {file_->position(), source_->size()}; }

private:
    QVCodecParameters framing(QVCodecID codec, const uint8_t* extradata, size_t size) const {
        return containerFraming(codec, file_->context().iformat->name, extradata, size);
    }

    // Reports an MP4 sample table with more samples than libavformat's index has.
    void noteMissingSamples() {
        const int64_t found = avformat_index_get_entries_count(&video_);
        if (av_match_list("mov", file_->context().iformat->name, ',') > 0 && video_.nb_frames > found) {
            findings_.push_back(
                {Severity::Error, std::nullopt,
                 fmt::format(
                     "the sample table has {} samples, of which {} are read: the others are not in the file, "
                     "or their index needs more memory than the limit for a file of its size",
                     video_.nb_frames, found)});
        }
    }

    // The next sample of the video. Findings report what could not be read before it.
    bool readPacket(std::vector<Finding>& findings) {
        for (int errorsInARow = 0; errorsInARow < kMostErrorsInARow;) {
            const int result = file_->read(*packet_);
            if (file_->isOverread()) {
                findings.push_back({Severity::Error, std::nullopt, overreadText()});
                return false;
            }
            if (result == AVERROR_EOF || source_->isInterrupted()) {
                return false;  // an interrupted sample may not be whole
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

    std::string overreadText() const {
        return fmt::format(
            "{} bytes were read from a file of {} bytes, which is the limit: its samples are not in order; "
            "the rest is left out",
            file_->bytesRead(), file_->bytes());
    }

    std::string readErrorText(int error) const {
        const std::string& reason = source_->failure();
        return fmt::format("reading failed at offset {} of the file: {}", file_->position(),
                           reason.empty() ? avErrorText(error) : reason);
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
                {Severity::Error, std::nullopt, "the container's sample is damaged or truncated"});
        }
    }

    std::optional<double> seconds(int64_t time) const {
        return time == AV_NOPTS_VALUE
                   ? std::nullopt
                   : std::optional<double>(static_cast<double>(time) * av_q2d(video_.time_base));
    }

    std::unique_ptr<FileSource> source_;
    std::unique_ptr<ContainerFile> file_;  // reads source_
    const AVStream& video_;
    Packet packet_;
    StreamInfo info_;
    QVCodecParameters parameters_{};
    SampleBudget budget_;
    std::vector<Finding> findings_;  // before the next sample
    bool isAtEnd_ = false;
};

std::string noVideoReason(const AVFormatContext& context, std::optional<QVCodecID> wanted) {
    const char* codec = !wanted ? "H.264 or H.265" : *wanted == QVCodecIDAvc ? "H.264" : "H.265";
    return fmt::format("has no {} video ({}); choose another file", codec, context.iformat->long_name);
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
                         : *options.codec == QVCodecIDAvc ? "H.264 video, as --codec requires"
                                                          : "H.265 video, as --codec requires";
    const std::string what = index < context.nb_streams ? fmt::format("is no {}", wanted) : "does not exist";
    return fmt::format("stream {} {}; select one with --stream: {}", index, what, streamsOf(context));
}

AVStream* findStream(const ContainerFile& file, const InputOptions& options) {
    if (!options.stream) {
        return findVideo(file, options.codec);
    }
    const AVFormatContext& context = file.context();
    if (*options.stream >= context.nb_streams) {
        return nullptr;
    }
    AVStream* const stream = context.streams[*options.stream];
    return isVideo(file, *stream, options.codec) ? stream : nullptr;
}

}  // namespace

ContainerResult openContainer(std::unique_ptr<FileSource>& source, const InputOptions& options) {
    try {
        auto file = std::make_unique<ContainerFile>(*source);
        file->nameVideo([&] { return findStream(*file, options) != nullptr; });
        const AVStream* video = findStream(*file, options);
        if (video == nullptr) {
            const AVFormatContext& context = file->context();
            return {nullptr, options.stream ? noStreamReason(context, options)
                                            : noVideoReason(context, options.codec)};
        }
        const QVCodecID codec = *file->codecOf(*video);
        return {std::make_unique<ContainerReader>(std::move(source), std::move(file), *video, codec), {}};
    } catch (const InputError& error) {
        return {nullptr, error.what()};
    }
}

bool looksLikeContainer(const std::vector<unsigned char>& head) {
    // The probes may read some bytes after the end, which have to be zero.
    std::vector<unsigned char> padded = head;
    padded.resize(head.size() + AVPROBE_PADDING_SIZE);
    const AVProbeData data = {"", padded.data(), static_cast<int>(head.size()), nullptr};
    int score = AVPROBE_SCORE_RETRY;
    const AVInputFormat* const format = av_probe_input_format2(&data, 1, &score);
    return format != nullptr && isContainerFormat(*format);
}

}  // namespace qvinspect
