#include "input/OpenInput.h"

#include <fmt/format.h>

#include <utility>

#include "QVCoreStandalone.h"
#include "QVNaluParser.h"
#include "analysis/CoreHooks.h"
#include "input/ContainerSignature.h"
#include "input/Containers.h"
#include "input/FileSource.h"
#include "input/InputError.h"
#include "input/RawProbe.h"
#include "input/RawReader.h"

namespace qvinspect {

namespace {

using Head = std::vector<unsigned char>;
using Reader = std::unique_ptr<AccessUnitReader>;

struct Input {
    std::unique_ptr<FileSource> file;
    const Head& head;  // the file's
    const InputOptions& options;
};

std::optional<QVCodecID> codecOf(RawCodec codec) {
    switch (codec) {
        case RawCodec::Avc:
            return QVCodecIDAvc;
        case RawCodec::Hevc:
            return QVCodecIDHevc;
        case RawCodec::Neither:
        case RawCodec::Ambiguous:
            break;
    }
    return std::nullopt;
}

[[noreturn]] void refuse(RawCodec codec) {
    if (codec == RawCodec::Ambiguous) {
        throw InputError("could be H.264 or H.265; say which with --codec h264 or --codec h265");
    }
    throw InputError(
        "holds neither H.264 nor H.265 as far as can be told; if it is a raw stream of one of them, say "
        "which with --codec h264 or --codec h265");
}

const Head& headOf(FileSource& file) {
    const Head& head = file.peek(kProbeBytes);
    if (!head.empty()) {
        return head;
    }
    if (file.isInterrupted()) {
        throw InputError("interrupted ahead of the first byte; nothing was read");
    }
    throw InputError(file.failure().empty()
                         ? "is empty; there is nothing to inspect"
                         : fmt::format("cannot be read: {}; check the file", file.failure()));
}

Reader openRaw(Input input, const QVCodecParameters& stream) {
    return std::make_unique<RawReader>(std::move(input.file), stream);
}

// --- Length fields ---

struct QvFree {
    void operator()(unsigned char* memory) const { qvFree(memory); }
};

// The units that are whole, with start codes as the probe wants them.
RawProbe probeLengths(const Head& head, unsigned lengthSize) {
    const LogCapture brokenLengths;  // the reader will tell
    const auto size = static_cast<int>(head.size());
    std::vector<std::pair<int, int>> nalus;
    QVNaluParser::parserDataToNalus(head.data(), size, nalus, static_cast<int>(lengthSize));
    const int end = nalus.empty() ? 0 : nalus.back().first + nalus.back().second;
    unsigned char* annexB = nullptr;
    int annexBSize = 0;
    if (QVNaluParser::connvertAvcCToAnnexB(head.data(), end, static_cast<int>(lengthSize), &annexB,
                                           annexBSize) != QVResultOk) {
        return {RawCodec::Neither, false};
    }
    const std::unique_ptr<unsigned char, QvFree> owner(annexB);
    return probeRaw(annexB, static_cast<size_t>(annexBSize));
}

Reader openLengths(Input input, uint8_t lengthSize) {
    const std::optional<QVCodecID> codec =
        input.options.codec ? input.options.codec : codecOf(probeLengths(input.head, lengthSize).codec);
    if (!codec) {
        throw InputError(fmt::format(
            "holds no H.264 or H.265 behind lengths of {} bytes as far as can be told; check --format, or "
            "say which it is with --codec h264 or --codec h265",
            lengthSize));
    }
    return openRaw(std::move(input), {*codec, 0, lengthSize});
}

// --- Start codes ---

Reader openByteStream(Input input, QVCodecID codec) {
    return openRaw(std::move(input), {codec, 1, 0});
}

Reader openAnnexB(Input input) {
    const RawCodec found = probeRaw(input.head.data(), input.head.size()).codec;
    const std::optional<QVCodecID> codec = input.options.codec ? input.options.codec : codecOf(found);
    if (!codec) {
        refuse(found);
    }
    return openByteStream(std::move(input), *codec);
}

// --- Containers ---

// Null, and why, when it is none that can be read.
ContainerResult tryContainer(Input& input) {
    if (!input.file->canSeek() && hasIndexBehindSamples(input.head.data(), input.head.size())) {
        return {nullptr,
                "its index stands behind its samples, so that it cannot be read from a pipe; name the file "
                "instead, or have its index put in front"};
    }
    return openContainer(input.file, input.options);
}

Reader openAsContainer(Input input) {
    const char* const signature = containerSignature(input.head.data(), input.head.size());
    ContainerResult container = tryContainer(input);
    if (container.reader == nullptr) {
        throw InputError(signature != nullptr ? fmt::format("{} file: {}", signature, container.reason)
                                              : container.reason);
    }
    return std::move(container.reader);
}

// --- Either ---

Reader openAsFound(Input input) {
    const Head& head = input.head;
    if (containerSignature(head.data(), head.size()) != nullptr) {
        return openAsContainer(std::move(input));
    }
    const RawProbe probe = probeRaw(head.data(), head.size());
    const std::optional<QVCodecID> codec = input.options.codec ? input.options.codec : codecOf(probe.codec);
    // Start codes further in can stand inside of anything: the rarer containers come first.
    if (!codec || (!probe.beginsWithStartCode && looksLikeContainer(head))) {
        ContainerResult container = tryContainer(input);
        if (container.reader != nullptr) {
            return std::move(container.reader);
        }
        if (codec && !input.file->canSeek()) {
            throw InputError(container.reason + "; for a raw stream give --format annexb");
        }
        input.file->seek(0);
    }
    if (!codec) {
        refuse(probe.codec);
    }
    return openByteStream(std::move(input), *codec);
}

}  // namespace

std::unique_ptr<AccessUnitReader> openInput(const std::string& path, const InputOptions& options) {
    auto file = std::make_unique<FileSource>(path);
    const Head& head = headOf(*file);
    Input input{std::move(file), head, options};
    switch (options.format) {
        case InputFormat::AnnexB:
            return openAnnexB(std::move(input));
        case InputFormat::Lengths1:
            return openLengths(std::move(input), 1);
        case InputFormat::Lengths2:
            return openLengths(std::move(input), 2);
        case InputFormat::Lengths4:
            return openLengths(std::move(input), 4);
        case InputFormat::Container:
            return openAsContainer(std::move(input));
        case InputFormat::Auto:
            break;
    }
    // Only containers have streams to choose from.
    return options.stream ? openAsContainer(std::move(input)) : openAsFound(std::move(input));
}

}  // namespace qvinspect
