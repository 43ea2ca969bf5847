// The totals of a whole stream.
#ifndef QVINSPECT_STREAMTOTALS_H
#define QVINSPECT_STREAMTOTALS_H

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "QVNaluParser.h"
#include "analysis/AccessUnitView.h"
#include "analysis/SequenceParameterSet.h"
#include "bitstream/sei/ColourVolume.h"
#include "bitstream/sei/HdrClass.h"
#include "bitstream/units/DolbyVisionConfiguration.h"
#include "input/AccessUnitReader.h"

namespace qvinspect {

// The distance from one key access unit to the next.
struct KeyIntervals {
    uint64_t count = 0;
    uint64_t least = 0;  // access units
    uint64_t sum = 0;

    // Here the runs before the first one and after the last one count as well.
    uint64_t most = 0;
    uint64_t mostAt = 0;       // number of the access unit where it begins
    bool isMostAtEnd = false;  // the longest is the run to the end, which may be incomplete

    // In seconds, for intervals between access units with known times.
    std::optional<double> leastSeconds;
    std::optional<double> mostSeconds;
    uint64_t mostSecondsAt = 0;
    double sumSeconds = 0;
    uint64_t timed = 0;
};

// Errors whose texts differ only in numbers.
struct ErrorKind {
    std::string first;  // the first of them, with its place
    uint64_t count = 0;
};

struct LargestUnit {
    uint64_t bytes = 0;
    uint64_t accessUnit = 0;  // number
    uint64_t offset = 0;      // of the NAL unit, as reported
};

struct HdrVividTotals {
    uint64_t messages = 0;
    uint64_t read = 0;               // of these, the ones that could be read
    uint32_t minimum_maxrgb_pq = 0;  // least of the stream, 12-bit code
    uint32_t maximum_maxrgb_pq = 0;  // most of the stream, 12-bit code
    uint64_t average_maxrgb_pq_sum = 0;
};

// HDR, captions and similar properties that the stream signals.
struct Signals {
    std::optional<qv::sei::MasteringDisplayColourVolume> masteringDisplay;  // the first
    std::optional<qv::sei::ContentLightLevelInfo> contentLight;             // the first
    std::optional<uint32_t> preferredTransfer;         // of alternative_transfer_characteristics, the last
    std::optional<uint32_t> transfer_characteristics;  // of the VUI of the active parameter set
    std::optional<uint32_t> containerTransfer;         // of the container
    std::optional<qv::DolbyVisionConfiguration> dolbyVision;  // of the container
    bool hasDolbyVisionRpu = false;                           // by NAL units
    bool hasDolbyVisionEnhancementLayer = false;              // by NAL units
    HdrVividTotals hdrVivid;
    uint64_t hdr10PlusMessages = 0;
    uint64_t slHdrMessages = 0;
    uint64_t captionMessages = 0;       // with constructs that have cc_valid
    uint32_t captionTypes = 0;          // of these: bit n is set for cc_type n
    uint64_t activeFormatMessages = 0;  // with an active_format

    qv::sei::HdrClass hdrClass() const;

    // Every class that applies, e.g. {"HDR10", "HDR Vivid"}. {"SDR"} if nothing is signalled; {"unknown"} if
    // there is metadata, but nothing says which transfer function it is for.
    std::vector<std::string> hdrClasses() const;
};

// What the caption constructs with cc_valid are: "CEA-608 field 1", "CEA-608 field 2", "CEA-708".
std::vector<std::string> captionTypeNames(const Signals& signals);

struct StreamTotals {
    QVCodecID codec = QVCodecIDAvc;
    uint64_t accessUnits = 0;
    uint64_t keyAccessUnits = 0;
    uint64_t firstKey = 0;      // its number; 0 without one
    uint64_t units = 0;         // NAL units, typed or not
    uint64_t untypedUnits = 0;  // of these, the ones with forbidden_zero_bit set and empty ones
    std::map<uint32_t, uint64_t> unitsByType;
    std::map<uint32_t, uint64_t> unitBytesByType;  // without start codes and length fields
    uint64_t bytes = 0;  // of all access units, start codes and length fields included

    uint64_t errors = 0;
    std::string firstError;             // with its place; empty without errors
    std::vector<ErrorKind> errorKinds;  // the first of them, in stream order
    uint64_t noteCount = 0;
    std::vector<Finding> notes;  // not errors; the first of them

    KeyIntervals keyIntervals;
    LargestUnit largestUnit;
    uint64_t largestAccessUnit = 0;    // bytes
    uint64_t largestAccessUnitAt = 0;  // its number

    uint64_t untimedAccessUnits = 0;

    // Seconds from the first picture shown to the end of the last one; not set if times are unknown.
    std::optional<double> duration;
    std::optional<double> averageBitrate;  // bits a second
    std::optional<double> peakBitrate;     // bits in the busiest second

    std::optional<SequenceParameterSet> sps;  // the first that the library accepts, with its video
    uint64_t distinctSps = 0;
    uint64_t repeatedSps = 0;
    uint64_t refusedSps = 0;
    bool hasConfiguration = false;  // the container has parameter sets

    // The number of the first key access unit if a parameter set that it needs is neither before its first
    // slice nor in the container; else 0.
    uint64_t keyWithoutParameterSets = 0;

    std::map<uint32_t, uint64_t> messagesByType;
    Signals signals;
    uint64_t seiItems = 0;
    uint64_t sideDataBytes = 0;
};

// Computes the totals of a stream from its access units. Its memory does not grow with the stream.
class StreamCounter {
public:
    explicit StreamCounter(const StreamInfo& info);

    void addConfiguration(const ConfigurationDetails& configuration);

    void add(const AccessUnitView& view);

    // Adds an access unit before the part that is inspected. Only its parameter sets, which the part needs,
    // and the SEI of the configuration record, which applies to the whole stream, count.
    void addBeforePart(const AccessUnitView& view);

    // Adds the findings after the last access unit and ends open intervals.
    void finish(const std::vector<Finding>& findings);

    const StreamTotals& totals() const { return totals_; }

private:
    struct AccessUnitPlace {
        uint64_t number;
        std::optional<double> time;
    };

    void noteParameterSet(uint32_t nal_unit_type);
    void addUnits(const AccessUnitView& view);
    void addUnit(const UnitReport& unit, const AccessUnitView& view);
    void noteFirstKeyPicture(const AccessUnitView& view);
    void addDetails(const AccessUnitDetails& details);
    void addSps(const SequenceParameterSet& sps);
    void addTransfer(const SequenceParameterSet& sps);
    void addRecordSei(const AccessUnitDetails& details);
    void addMessages(const SeiUnit& sei);
    void addMessage(const SeiMessage& message);
    void addRegistered(const SeiFacts& facts);
    void addHdrVivid(const SeiFacts& facts);
    void addFindings(const std::vector<Finding>& findings, uint64_t accessUnit);
    void addError(const Finding& finding, uint64_t accessUnit);
    void addUnitErrors(const UnitReport& unit, const UnitDetails& details, uint64_t accessUnit);
    void addKey(const AccessUnitView& view, std::optional<double> time);
    bool noteLongest(const AccessUnitPlace& from, const AccessUnitPlace& to);
    void addTime(const AccessUnitView& view, std::optional<double> time);
    void addLoad(double decodeTime, uint64_t bytes);

    StreamTotals totals_;
    std::vector<std::string> errorKindTexts_;  // without their numbers, parallel to totals_.errorKinds

    bool hasVps_ = false;  // H.264 has and needs none
    bool hasSps_ = false;
    bool hasPps_ = false;

    std::optional<AccessUnitPlace> first_;
    std::optional<AccessUnitPlace> key_;  // the last one
    uint64_t lastNumber_ = 0;

    std::optional<double> begin_;
    std::optional<double> end_;

    // Bits by decoding time in the last second, at most one entry for each millisecond.
    struct Load {
        int64_t millisecond;
        uint64_t bits;
    };
    std::deque<Load> second_;
    uint64_t bitsInSecond_ = 0;
    uint64_t mostBitsInSecond_ = 0;
};

}  // namespace qvinspect

#endif
