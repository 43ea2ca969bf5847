#include "input/OpenInput.h"

#include <fmt/format.h>

#include <utility>

#include "input/ContainerSignature.h"
#include "input/Containers.h"
#include "input/FileSource.h"
#include "input/InputError.h"
#include "input/RawProbe.h"
#include "input/RawReader.h"

namespace qvinspect {

namespace {

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

}  // namespace

std::unique_ptr<AccessUnitReader> openInput(const std::string& path, const InputOptions& options) {
    const std::optional<QVCodecID> codec = options.codec;
    auto file = std::make_unique<FileSource>(path);
    const auto& head = file->peek(kProbeBytes);
    if (head.empty()) {
        throw InputError(file->failure().empty()
                             ? "is empty; there is nothing to inspect"
                             : fmt::format("cannot be read: {}; check the file", file->failure()));
    }
    const char* signature = containerSignature(head.data(), head.size());
    if (signature != nullptr) {
        ContainerResult container = openContainer(path, codec);
        if (container.reader == nullptr) {
            throw InputError(fmt::format("{} file: {}", signature, container.reason));
        }
        return std::move(container.reader);
    }

    const RawProbe probe = probeRaw(head.data(), head.size());
    const std::optional<QVCodecID> rawCodec = codec ? codec : codecOf(probe.codec);
    if (!rawCodec || !probe.beginsWithStartCode) {
        // Start codes further in can stand inside of anything: the rarer containers come first.
        ContainerResult container = openContainer(path, codec);
        if (container.reader != nullptr) {
            return std::move(container.reader);
        }
    }
    if (!rawCodec) {
        refuse(probe.codec);
    }
    return std::make_unique<RawReader>(std::move(file), *rawCodec);
}

}  // namespace qvinspect
