// The descriptors of the syntax tables over the plain cursor of a reader.
#ifndef QV_DEMUXER_DETAIL_PLAINBITS_H
#define QV_DEMUXER_DETAIL_PLAINBITS_H

#include "QVByteStream.h"

namespace qv_detail {

class PlainBits {
public:
    explicit PlainBits(QVByteStream& stream) : stream_(stream) {}

    uint32_t u(uint32_t n) { return stream_.readBits(n); }
    uint32_t ue() { return stream_.readGolombUe(); }
    int32_t se() { return stream_.readGolombSe(); }

    // A flag as the records hold it.
    int32_t flag() { return static_cast<int32_t>(stream_.readBit()); }

    // Reads n bits, as far as there are any, and forgets them.
    void drop(uint32_t n) { stream_.readBits(n); }

    // Skips n bits whole or not at all. Two skips are not one: at the end of the data they differ.
    void skip(uint64_t n) { stream_.skipBits(n); }

private:
    QVByteStream& stream_;
};

}  // namespace qv_detail

#endif
