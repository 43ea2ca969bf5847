// One input in the HTML report. Its memory does not grow with the stream.
#ifndef QVINSPECT_HTMLSECTION_H
#define QVINSPECT_HTMLSECTION_H

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "analysis/SeiNames.h"
#include "report/HtmlBins.h"
#include "report/HtmlPlot.h"
#include "report/HtmlUnits.h"
#include "report/Output.h"
#include "report/Presenter.h"

namespace qvinspect {

class HtmlSection {
public:
    HtmlSection(const StreamHead& head, const HtmlLimits& limits);

    void add(const AccessUnitView& view);

    // id: of its element; the prefix of all ids in it.
    void write(Output& out, const std::string& id, const StreamEnd& end);

private:
    struct ErrorText {
        uint64_t number;  // of the access unit; 0 after the last
        std::optional<uint64_t> offset;
        std::string text;
    };
    struct TypeShare {
        uint64_t units = 0;
        uint64_t bytes = 0;
    };
    // payloadType, sender of an ITU-T T.35 message
    using LaneKey = std::pair<uint32_t, std::optional<qv::sei::T35Owner>>;
    struct Lane {
        std::string name;
        uint64_t messages = 0;
    };

    void addError(uint64_t number, std::optional<uint64_t> offset, std::string text);
    void addErrors(const AccessUnitView& view);
    void addUnits(const AccessUnitView& view, AccessUnitBin& bin);
    void addMessage(const SeiMessage& message, AccessUnitBin& bin);
    size_t laneOf(const LaneKey& key);
    std::string laneName(const LaneKey& key) const;
    std::vector<size_t> lanesInOrder() const;
    void forRuns(size_t lane, const std::function<void(size_t, size_t, uint64_t)>& call) const;
    std::pair<uint64_t, uint64_t> numbersOf(size_t first, size_t end) const;
    void addTime(const AccessUnitView& view);

    PlotRange numberRange() const;
    PlotRange rangeOf(const AdaptiveBins<AccessUnitBin>& bins) const;
    std::string numbersText(size_t first, size_t end) const;
    std::string placeText(size_t bin) const;

    void writeHeading(Output& out, const std::string& id, const StreamEnd& end) const;
    void writeCard(Output& out, const StreamEnd& end) const;
    void writeChecks(Output& out, const std::vector<CheckResult>& checks) const;
    void writeSizes(Output& out) const;
    void writeBitrate(Output& out, const StreamTotals& totals) const;
    void writeTimedBitrate(Output& out, const StreamTotals& totals) const;
    void writeUntimedBitrate(Output& out) const;
    void writeMix(Output& out) const;
    void writeLanesOfSei(Output& out) const;
    void writeErrors(Output& out, const std::string& id, const StreamTotals& totals) const;

    StreamHead head_;
    HtmlLimits limits_;
    QVCodecID codec_;

    uint64_t firstNumber_ = 0;  // of the added access units
    uint64_t accessUnits_ = 0;
    AdaptiveBins<AccessUnitBin> bins_;

    bool isTimed_ = true;
    double firstTime_ = 0;  // of decoding
    double lastTime_ = 0;
    double endTime_ = 0;
    AdaptiveBins<TimeBin> timeBins_;

    std::map<int64_t, TypeShare> types_;  // -1: none
    std::vector<Lane> lanes_;
    std::map<LaneKey, size_t> laneByKey_;  // without the lane of other types
    std::vector<ErrorText> errors_;
    uint64_t errorCount_ = 0;
    HtmlUnits units_;
};

// The HDR part of a section; nothing if the stream signals none.
void writeHdr(Output& out, const PlotRange& range, const AdaptiveBins<AccessUnitBin>& bins,
              const Signals& signals);

// An input that cannot be inspected, or was not reached.
void writeFailedSection(Output& out, const std::string& id, const std::string& name,
                        const std::string& reason);

}  // namespace qvinspect

#endif
