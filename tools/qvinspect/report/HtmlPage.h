// The pieces of the HTML report's page, embedded from report/html/ at build time.
#ifndef QVINSPECT_HTMLPAGE_H
#define QVINSPECT_HTMLPAGE_H

namespace qvinspect {

extern const char kHtmlStyle[];
extern const char kHtmlScript[];
extern const char kHtmlDrawer[];

}  // namespace qvinspect

#endif
