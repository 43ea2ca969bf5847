// The syntax elements of every NAL unit, a JSON array of them on a line for each unit.
#ifndef QVINSPECT_ELEMENTLINES_H
#define QVINSPECT_ELEMENTLINES_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "analysis/UnitWalk.h"
#include "report/Output.h"
#include "report/Presenter.h"

namespace qvinspect {

// Units of a configuration record have access unit number 0: they come before the access unit that the record
// comes with, and once if the record comes again. An input that cannot be inspected has no lines; standard
// error has the reason.
class ElementLines : public Presenter {
public:
    // severalInputs: the lines have a file_index.
    ElementLines(const std::string& path, bool severalInputs);

    void fail(const std::string& name, const std::string& reason) override;
    void begin(const StreamHead& head) override;
    void add(const AccessUnitView& view) override;
    void end(const StreamEnd& end) override;
    void finish() override;

private:
    void addRecord(const std::vector<uint8_t>& record);
    void addUnit(uint64_t accessUnit, const UnitBytes& unit);

    Output output_;
    bool severalInputs_;
    uint64_t fileIndex_ = 0;
    std::optional<UnitWalk> walk_;
};

}  // namespace qvinspect

#endif
