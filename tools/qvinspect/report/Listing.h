// The listing for people.
#ifndef QVINSPECT_LISTING_H
#define QVINSPECT_LISTING_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "analysis/UnitWalk.h"
#include "report/Level.h"
#include "report/Page.h"
#include "report/Presenter.h"

namespace qvinspect {

class Listing : public Presenter {
public:
    Listing(const std::string& path, Level level, PageFormat format = {});

    void fail(const std::string& name, const std::string& reason) override;
    void begin(const StreamHead& head) override;
    void add(const AccessUnitView& view) override;
    void end(const StreamEnd& end) override;
    void finish() override;

private:
    void addColumns();
    void addAccessUnit(const AccessUnitView& view);
    void addBrokenUnits(const AccessUnitView& view);
    void addUnit(const UnitView& unit);
    bool showsSei() const { return level_ == Level::Sei || level_ == Level::Fields; }
    void addUnitElements(const AccessUnitView& view);
    void addRecordElements(const std::vector<uint8_t>& record);
    void addElements(qv::Bytes unit);
    void addUnitFields(const UnitView& unit);
    void addSps(const SequenceParameterSet& sps);
    void addSei(const UnitView& unit);
    void addRecordSei();
    void addSeiLog(const SeiUnit& sei);
    void addMessageLine(const SeiMessage& message);
    void addMessage(const UnitView& unit, const SeiMessage& message);
    void addBlock(const Block& block);
    void addHex(const unsigned char* bytes, size_t size, uint64_t offset);
    void addFindings(const std::vector<Finding>& findings);

    Page page_;
    Level level_;
    StreamHead head_;
    bool isFirst_ = true;
    bool hasShown_ = false;         // an access unit of the stream
    std::optional<UnitWalk> walk_;  // at Level::Elements
};

}  // namespace qvinspect

#endif
