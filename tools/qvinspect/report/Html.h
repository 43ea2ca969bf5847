// The report for a browser: one self-contained file.
#ifndef QVINSPECT_HTML_H
#define QVINSPECT_HTML_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "report/HtmlSection.h"
#include "report/Output.h"
#include "report/Presenter.h"

namespace qvinspect {

struct HtmlOptions {
    std::vector<std::string> inputs;  // the printable names of all inputs, in order
    std::string stamp;                // date and time; empty for none
    HtmlLimits limits;
};

class Html : public Presenter {
public:
    Html(const std::string& path, HtmlOptions options);

    void fail(const std::string& name, const std::string& reason) override;
    void begin(const StreamHead& head) override;
    void add(const AccessUnitView& view) override;
    void end(const StreamEnd& end) override;
    void finish() override;

private:
    void writeHead();
    std::string nextId();

    Output output_;
    HtmlOptions options_;
    std::optional<HtmlSection> section_;
    size_t sections_ = 0;  // written so far
};

}  // namespace qvinspect

#endif
