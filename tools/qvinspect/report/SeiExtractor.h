// Writes the payloads of SEI items as files of a folder.
#ifndef QVINSPECT_SEIEXTRACTOR_H
#define QVINSPECT_SEIEXTRACTOR_H

#include <cstdint>
#include <string>

#include "report/Output.h"
#include "report/Presenter.h"

namespace qvinspect {

// Writes each item that is shown as the library returns it, without emulation prevention bytes, into a file:
// 00000123_au00000045_sei137.bin is item 123, of access unit 45 and payloadType 137. The names are in stream
// order. index.json lists the files, one a line, and is written last:
//
//   input     name of the input           codec     "h264" or "h265"
//   items     for each file in order:
//     file          its name
//     access_unit   number, from 1
//     time          of presentation, seconds; null if it is not known
//     offset        of the NAL unit, in the file for a raw stream, otherwise in the access unit; null for a
//                   NAL unit of the container's configuration record
//     nal_unit_type of the NAL unit
//     payload_type, name, size (bytes)
//     requested     true if it is an item because of --request
//     delivery      "payload", or "text" for the text that the library makes from a display orientation
//   left_out  items that have no file: those after the first 1024 of an access unit, and those that are more
//             than 1024 and one for each 64 bytes of the stream. finish() throws OutputError then.
//   error     why the input could not be inspected, or not to its end; there may be no items then
class SeiExtractor : public Presenter {
public:
    // Makes the folder. Throws OutputError if it cannot be made or is not empty, so that items of two streams
    // are never mixed.
    explicit SeiExtractor(const std::string& folder);

    void fail(const std::string& name, const std::string& reason) override;
    void begin(const StreamHead& head) override;
    void add(const AccessUnitView& view) override;
    void end(const StreamEnd& end) override;
    void finish() override;

private:
    // Writes the item, or counts it as left out. unit: null for the configuration record.
    void take(const AccessUnitView& view, const UnitReport* unit, uint32_t nalUnitType, const SeiItem& item);
    void addItem(const AccessUnitView& view, const UnitReport* unit, uint32_t nalUnitType,
                 const SeiItem& item);

    std::string folder_;
    Output index_;
    QVCodecID codec_ = QVCodecIDAvc;
    uint64_t items_ = 0;
    uint64_t leftOut_ = 0;
    uint64_t bytes_ = 0;      // of the access units so far
    bool isListing_ = false;  // the list of items has begun
};

}  // namespace qvinspect

#endif
