#include "input/OpenInput.h"

#include <fmt/format.h>

#include <utility>

#include "bitstream/units/CodecProbe.h"
#include "input/ContainerSignature.h"
#include "input/Containers.h"
#include "input/FileSource.h"
#include "input/InputError.h"
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

std::optional<QVCodecID> codecOf(const qv::CodecProbe& probe) {
    const std::optional<qv::Codec> codec = probe.codec();
    return !codec ? std::nullopt : std::optional(*codec == qv::Codec::Avc ? QVCodecIDAvc : QVCodecIDHevc);
}

qv::CodecProbe probe(const Head& head, qv::Framing framing) {
    return qv::probeCodec({head.data(), head.size()}, framing);
}

[[noreturn]] void refuse(const qv::CodecProbe& found) {
    if (found.answer == qv::CodecProbe::Answer::Ambiguous) {
        throw InputError("could be H.264 or H.265; choose with --codec h264 or --codec h265");
    }
    throw InputError(
        "is not recognised as H.264 or H.265; if it is a raw stream of one of them, choose with --codec h264 "
        "or --codec h265");
}

const Head& headOf(FileSource& file) {
    const Head& head = file.peek(qv::kProbeBytes);
    if (!head.empty()) {
        return head;
    }
    if (file.isInterrupted()) {
        throw InputError("interrupted before the first byte; nothing was read");
    }
    throw InputError(file.failure().empty()
                         ? "is empty; there is nothing to inspect"
                         : fmt::format("cannot be read: {}; check the file", file.failure()));
}

Reader openRaw(Input input, const QVCodecParameters& stream) {
    return std::make_unique<RawReader>(std::move(input.file), stream);
}

// --- Length fields ---

Reader openLengths(Input input, qv::Framing framing) {
    const std::optional<QVCodecID> codec =
        input.options.codec ? input.options.codec : codecOf(probe(input.head, framing));
    const auto lengthSize = static_cast<uint8_t>(qv::lengthSizeOf(framing));
    if (!codec) {
        throw InputError(
            fmt::format("is not recognised as H.264 or H.265 with lengths of {} bytes; check --format, or "
                        "choose with --codec h264 or --codec h265",
                        lengthSize));
    }
    return openRaw(std::move(input), {*codec, 0, lengthSize});
}

// --- Start codes ---

Reader openByteStream(Input input, QVCodecID codec) {
    return openRaw(std::move(input), {codec, 1, 0});
}

Reader openAnnexB(Input input) {
    const qv::CodecProbe found = probe(input.head, qv::Framing::StartCodes);
    const std::optional<QVCodecID> codec = input.options.codec ? input.options.codec : codecOf(found);
    if (!codec) {
        refuse(found);
    }
    return openByteStream(std::move(input), *codec);
}

// --- Containers ---

// Null, and the reason, if it cannot be read.
ContainerResult tryContainer(Input& input) {
    if (!input.file->canSeek() && hasIndexAfterSamples(input.head.data(), input.head.size())) {
        return {nullptr,
                "its index follows its samples, so it cannot be read from a pipe; name the file instead, or "
                "move its index to the front"};
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
    const qv::CodecProbe found = probe(head, qv::Framing::StartCodes);
    const std::optional<QVCodecID> codec = input.options.codec ? input.options.codec : codecOf(found);
    // Start codes that are not at the beginning can be in any file: the rarer containers come first.
    if (!codec || (!found.beginsWithStartCode && looksLikeContainer(head))) {
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
        refuse(found);
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
            return openLengths(std::move(input), qv::Framing::Lengths1);
        case InputFormat::Lengths2:
            return openLengths(std::move(input), qv::Framing::Lengths2);
        case InputFormat::Lengths4:
            return openLengths(std::move(input), qv::Framing::Lengths4);
        case InputFormat::Container:
            return openAsContainer(std::move(input));
        case InputFormat::Auto:
            break;
    }
    // Only containers have streams to select.
    return options.stream ? openAsContainer(std::move(input)) : openAsFound(std::move(input));
}

}  // namespace qvinspect
