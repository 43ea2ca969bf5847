// The pieces of the HTML report's page, embedded from report/html/ at build time.
#ifndef QVINSPECT_HTMLPAGE_H
#define QVINSPECT_HTMLPAGE_H

namespace qvinspect {

extern const char kHtmlStyle[];
extern const char kHtmlScript[];
extern const char kHtmlDrawer[];

// "sha256-..." for the Content-Security-Policy: of exactly the bytes between the tags of the style or script.
extern const char kHtmlStyleHash[];
extern const char kHtmlScriptHash[];

}  // namespace qvinspect

#endif
