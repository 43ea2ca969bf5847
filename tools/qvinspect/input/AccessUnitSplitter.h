// Finds the beginnings of access units in a sequence of NAL units.
#ifndef QVINSPECT_ACCESSUNITSPLITTER_H
#define QVINSPECT_ACCESSUNITSPLITTER_H

#include <cstddef>
#include <memory>

#include "QVCodecParameters.h"

namespace qvinspect {

// What a NAL unit means for the border between two access units.
enum class UnitRole {
    Delimiter,         // begins an access unit
    MayBegin,          // begins one if the next picture begins after it
    BeginsPicture,     // the first VCL NAL unit of a picture
    ContinuesPicture,  // another VCL NAL unit of the current picture
    SeemsToContinue,   // probably, in the absence of its parameter sets
    Belongs            // to the current access unit
};

// Determines the role of each unit, in decoding order.
class UnitRoles {
public:
    virtual ~UnitRoles() = default;
    virtual UnitRole roleOf(const unsigned char* unit, size_t size) = 0;

    // Whether the last unit is a slice of a field of a picture that is coded as two.
    virtual bool isFieldSlice() const { return false; }
};

// In both standards, units that can begin an access unit (parameter sets, SEI) may also be between the slices
// of one picture. Such a unit is held until the next slice decides.
class AccessUnitSplitter {
public:
    explicit AccessUnitSplitter(std::unique_ptr<UnitRoles> roles);

    // Takes the next unit. Returns how many of the last units, this one included, are the beginning of a new
    // access unit, or 0 if no access unit is known to begin.
    size_t take(const unsigned char* unit, size_t size);

    // Of the last unit.
    bool isFieldSlice() const { return roles_->isFieldSlice(); }

    // After the last unit: how many of the last units are not followed by a picture. They are a new access
    // unit that the end of the stream truncates.
    size_t unitsWithoutPicture() const { return held_; }

private:
    size_t beginAccessUnit(bool hasPicture);

    std::unique_ptr<UnitRoles> roles_;
    bool hasPicture_ = false;  // the current access unit
    size_t held_ = 0;          // units from the one that may begin an access unit on
};

// For the two supported codecs.
AccessUnitSplitter makeAccessUnitSplitter(QVCodecID codec);

}  // namespace qvinspect

#endif
