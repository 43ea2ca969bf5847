// The depth of a report. Each level up to Fields includes the ones before it.
#ifndef QVINSPECT_LEVEL_H
#define QVINSPECT_LEVEL_H

namespace qvinspect {

struct Filter;

enum class Level {
    Summary,  // the stream as a whole
    Samples,  // a line for each access unit
    Nalus,    // a line for each NAL unit
    Sei,      // a line for each SEI message
    Fields,   // every parsed field, and bytes in hexadecimal
    Elements  // the syntax elements of each NAL unit, bit by bit, in place of messages and fields
};

// The first level that shows what the filter selects; the summary without a filter.
Level levelFor(const Filter& filter);

}  // namespace qvinspect

#endif
