// Writes the stream with its NAL units reframed by the library's conversions.
#ifndef QVINSPECT_STREAMWRITER_H
#define QVINSPECT_STREAMWRITER_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "report/Output.h"
#include "report/Presenter.h"
#include "report/SeiRemover.h"
#include "report/UnitRewriter.h"

namespace qvinspect {

enum class UnitSource {
    Stream,  // units keep their bytes
    Records  // units are written from the records that they are read into, if there are any; finish() reports
             // how many
};

enum class Framing {
    AnnexB,   // 4-byte start codes
    Lengths4  // 4-byte lengths, most significant byte first
};

// Writes every access unit of the part that is inspected, regardless of the filter.
//
// A raw stream has no configuration record. The record's parameter sets that an access unit does not have
// itself are inserted into the first access unit, every key access unit and every access unit that comes with
// a new record: after the access unit delimiter and before SEI units, since a buffering period message
// activates its sequence parameter set (H.264 7.4.1.2.1, H.265 C.3.2).
//
// SEI messages can be left out, also those of the record; finish() reports how many. All else stays as it is.
//
// Empty units, which only lengths can express, are left out. Anything else that is not written is reported on
// standard error; everything else is written, and finish() throws OutputError. If the input cannot be
// inspected, a file is not changed.
class StreamWriter : public Presenter {
public:
    StreamWriter(const std::string& path, Framing framing, UnitSource source = UnitSource::Stream,
                 SeiRemoval removal = {});

    void fail(const std::string& name, const std::string& reason) override;
    void begin(const StreamHead& head) override;
    void add(const AccessUnitView& view) override;
    void end(const StreamEnd& end) override;
    void finish() override;

private:
    struct ConfigurationUnit {
        uint32_t type;
        std::vector<uint8_t> bytes;
        std::vector<uint8_t> written;  // the bytes without the SEI messages that are left out
    };

    // Of the configuration, borrowed from it.
    struct MissingUnits {
        std::vector<qv::Bytes> units;
        size_t size = 0;  // with 4-byte lengths
    };

    // accessUnit: the number of the access unit with the record.
    void useConfiguration(QVCodecID codec, const std::vector<uint8_t>& record, uint64_t accessUnit);
    void addConfiguration(const AccessUnitView& view);
    MissingUnits missingUnits(const AccessUnitView& view) const;
    bool isInProportion(const MissingUnits& missing);
    void convertUnits(const AccessUnitView& view, size_t first, size_t last);
    std::string convertRun(const AccessUnitView& view, size_t first, size_t last);
    std::string convertEdited(const AccessUnitView& view, size_t first, size_t last);
    void appendWithLength(std::vector<uint8_t>& out, qv::Bytes unit);
    std::string convert(const unsigned char* data, size_t size, const QVCodecParameters& from, size_t units);
    void lose(uint64_t accessUnit, const std::string& what);
    void loseAt(const std::string& place, const std::string& what);

    Output output_;
    std::string outputName_;
    Framing framing_;
    bool isRewriting_;
    SeiRemoval removal_;
    std::optional<UnitRewriter> rewriter_;  // of the input
    std::optional<SeiRemover> remover_;     // of the input
    std::vector<uint8_t> edited_;           // a unit without the messages that are left out
    std::string streamName_;
    std::vector<ConfigurationUnit> configuration_;
    bool isFirst_ = true;
    bool hasFailed_ = false;
    uint64_t bytes_ = 0;        // of the access units so far
    uint64_t recordBytes_ = 0;  // of the record's units that were written with them
    uint64_t losses_ = 0;
};

}  // namespace qvinspect

#endif
