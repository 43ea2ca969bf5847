// A file as libavformat demuxes it. Its pictures are not decoded: no decoder is ever opened, no other file
// is, and memory and reading are bounded by the size of the file.
#ifndef QVINSPECT_CONTAINERFILE_H
#define QVINSPECT_CONTAINERFILE_H

extern "C" {
#include <libavformat/avformat.h>
}

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "QVCodecParameters.h"
#include "input/FileSource.h"
#include "input/MemoryLimit.h"

namespace qvinspect {

struct FreePacket {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
using Packet = std::unique_ptr<AVPacket, FreePacket>;

// Throws std::bad_alloc.
Packet makePacket();

// "Invalid data found when processing input", as libavutil calls an error of it.
std::string avErrorText(int error);

// It is one of the containers that are read: those that hold H.264 or H.265 in the field. Other demuxers are
// never opened.
bool isContainerFormat(const AVInputFormat& format);

class ContainerFile {
public:
    // file outlives this. Throws InputError, with what to do next, when it cannot be opened.
    explicit ContainerFile(FileSource& file);
    ~ContainerFile();
    ContainerFile(const ContainerFile&) = delete;
    ContainerFile& operator=(const ContainerFile&) = delete;

    const AVFormatContext& context() const { return *context_; }

    // The codec of a video stream by its name in the container, or by the samples that nameVideo() read;
    // nothing for other streams and other codecs.
    std::optional<QVCodecID> codecOf(const AVStream& stream) const;

    // Reads ahead until isFound, for containers whose header does not name all streams and their codecs.
    // Packets that were read are not lost. Streams that the container gives no codec are probed for H.264 and
    // H.265.
    template <class IsFound>
    void nameVideo(const IsFound& isFound) {
        while (isUnnamed() && !isFound() && readAhead()) {
        }
        if (!isFound()) {
            probeUnnamed();
        }
    }

    // From here on samples are read: those of all other streams are left out.
    void select(const AVStream& video);

    // The next packet of any stream: 0, or an error of libavutil.
    int read(AVPacket& packet);

    // Bytes of the file; of a pipe, those that came so far. What budgets count by.
    uint64_t bytes() const;
    uint64_t bytesRead() const { return bytesRead_; }

    // Reading ended because more was read than a file of this size warrants.
    bool isOverread() const { return isOverread_; }

    uint64_t position() const;

private:
    struct FreeIo {
        void operator()(AVIOContext* io) const;
    };
    struct CloseInput {
        void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
    };

    static int readBytes(void* opaque, uint8_t* to, int size);
    static int64_t seekBytes(void* opaque, int64_t offset, int whence);

    void applyMemoryBudget();
    const AVInputFormat* probeFormat();
    void open(const AVInputFormat* format);
    bool isUnnamed() const;
    bool readAhead();
    void probeUnnamed();

    FileSource& file_;
    uint64_t bytesRead_ = 0;
    bool isOverread_ = false;
    bool isSelected_ = false;
    MemoryLimit memory_;
    std::unique_ptr<AVIOContext, FreeIo> io_;
    std::unique_ptr<AVFormatContext, CloseInput> context_;  // reads through io_
    std::deque<Packet> ahead_;
    uint64_t aheadBytes_ = 0;
    std::map<int, QVCodecID> probed_;  // by the index of the stream
};

}  // namespace qvinspect

#endif
