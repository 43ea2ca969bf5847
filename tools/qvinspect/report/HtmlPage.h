// The pieces of the HTML report's page, embedded from report/html/ at build time.
#ifndef QVINSPECT_HTMLPAGE_H
#define QVINSPECT_HTMLPAGE_H

namespace qvinspect {

extern const char kHtmlStyle[];
extern const char kHtmlScript[];
extern const char kHtmlDrawer[];

// "sha256-..." as a Content-Security-Policy names a style or a script: of the very bytes between the tags.
extern const char kHtmlStyleHash[];
extern const char kHtmlScriptHash[];

}  // namespace qvinspect

#endif
