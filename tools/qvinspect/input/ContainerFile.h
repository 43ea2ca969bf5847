// A file that libavformat demuxes. No decoder and no other file is ever opened. The memory used and the bytes
// read are limited in proportion to the size of the file.
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

// libavutil's text for one of its errors, such as "Invalid data found when processing input".
std::string avErrorText(int error);

// Whether it is one of the containers that are read: those that carry H.264 or H.265 in practice. Other
// demuxers are never opened.
bool isContainerFormat(const AVInputFormat& format);

class ContainerFile {
public:
    // file must outlive this. Throws InputError, which says what to do next, if it cannot be opened.
    explicit ContainerFile(FileSource& file);
    ~ContainerFile();
    ContainerFile(const ContainerFile&) = delete;
    ContainerFile& operator=(const ContainerFile&) = delete;

    const AVFormatContext& context() const { return *context_; }

    // The codec of a video stream from the container, or from the samples that nameVideo() read. None for
    // other streams and other codecs.
    std::optional<QVCodecID> codecOf(const AVStream& stream) const;

    // Reads packets until isFound, for containers whose header does not name all streams and their codecs.
    // read() returns these packets later. Streams without a codec in the container are probed for H.264 and
    // H.265.
    template <class IsFound>
    void nameVideo(const IsFound& isFound) {
        while (isUnnamed() && !isFound() && readAhead()) {
        }
        if (!isFound()) {
            probeUnnamed();
        }
    }

    // Selects the stream whose samples are read; those of other streams are skipped.
    void select(const AVStream& video);

    // The next packet of any stream: 0, or an error of libavutil.
    int read(AVPacket& packet);

    // Size of the file, or the bytes read so far from a pipe. The limits are in proportion to it.
    uint64_t bytes() const;
    uint64_t bytesRead() const { return bytesRead_; }

    // Whether reading ended at the limit for a file of this size.
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
