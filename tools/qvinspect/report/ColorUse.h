// Whether a report for people is coloured.
#ifndef QVINSPECT_COLORUSE_H
#define QVINSPECT_COLORUSE_H

namespace qvinspect {

enum class ColorUse { Auto, Always, Never };

}  // namespace qvinspect

#endif
