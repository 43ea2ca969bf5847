// H.264: the order of NAL units and the first VCL NAL unit of a primary coded picture.
#ifndef QVINSPECT_AVCUNITROLES_H
#define QVINSPECT_AVCUNITROLES_H

#include <optional>

#include "bitstream/avc/ParameterSets.h"
#include "input/AccessUnitSplitter.h"
#include "input/AvcSliceHeader.h"

namespace qvinspect {

class AvcUnitRoles : public UnitRoles {
public:
    UnitRole roleOf(const unsigned char* unit, size_t size) override;
    bool isFieldSlice() const override { return isFieldSlice_; }

private:
    UnitRole roleOfSlice(const unsigned char* unit, size_t size);

    qv::avc::ParameterSets parameterSets_;
    std::optional<AvcSliceHeader> last_;  // of the current primary coded picture
    bool isFieldSlice_ = false;
    bool hasEnded_ = false;  // an end of sequence or stream follows it
};

}  // namespace qvinspect

#endif
