// The totals of a stream on one screen.
#ifndef QVINSPECT_SUMMARYSCREEN_H
#define QVINSPECT_SUMMARYSCREEN_H

#include "report/Page.h"
#include "report/Presenter.h"

namespace qvinspect {

// Everything except the stream's name. 80 columns, or those of the terminal.
void addSummary(Page& page, const StreamHead& head, const StreamEnd& end);

}  // namespace qvinspect

#endif
