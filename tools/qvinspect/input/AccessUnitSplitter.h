// Finds where access units begin in a sequence of NAL units.
#ifndef QVINSPECT_ACCESSUNITSPLITTER_H
#define QVINSPECT_ACCESSUNITSPLITTER_H

#include <cstddef>
#include <memory>

#include "QVCodecParameters.h"

namespace qvinspect {

// What a NAL unit says about the border between two access units.
enum class UnitRole {
    Delimiter,         // begins an access unit
    MayBegin,          // begins one when the next picture begins behind it
    BeginsPicture,     // the first VCL NAL unit of a picture
    ContinuesPicture,  // another VCL NAL unit of the picture at hand
    SeemsToContinue,   // as far as can be told without its parameter sets
    Belongs            // to the access unit at hand, whichever that turns out to be
};

// Tells the role of each unit, in decoding order.
class UnitRoles {
public:
    virtual ~UnitRoles() = default;
    virtual UnitRole roleOf(const unsigned char* unit, size_t size) = 0;

    // The unit taken last is a slice of a field of a picture that is coded as two.
    virtual bool isFieldSlice() const { return false; }
};

// Both standards let units that can begin an access unit (parameter sets, SEI) stand between the slices of
// one picture as well, so such a unit is held until the next slice shows which of the two it is.
class AccessUnitSplitter {
public:
    explicit AccessUnitSplitter(std::unique_ptr<UnitRoles> roles);

    // Takes the next unit. Returns how many of the units taken last, this one included, make up the start of
    // a new access unit, or 0 when no access unit is known to begin.
    size_t take(const unsigned char* unit, size_t size);

    // Of the unit taken last.
    bool isFieldSlice() const { return roles_->isFieldSlice(); }

    // Behind the last unit: how many of the units taken last no picture followed. They are a new access unit
    // that the stream breaks off.
    size_t unitsWithoutPicture() const { return held_; }

private:
    size_t beginAccessUnit(bool hasPicture);

    std::unique_ptr<UnitRoles> roles_;
    bool hasPicture_ = false;  // the access unit at hand
    size_t held_ = 0;          // units since, and with, the one that may begin an access unit
};

// For the two supported codecs.
AccessUnitSplitter makeAccessUnitSplitter(QVCodecID codec);

}  // namespace qvinspect

#endif
