#include "report/Html.h"

#include <fmt/format.h>

#include <utility>

#include "report/HtmlPage.h"
#include "report/HtmlText.h"

namespace qvinspect {

namespace {

std::string idOf(size_t input) {
    return fmt::format("file-{}", input + 1);
}

}  // namespace

Html::Html(const std::string& path, HtmlOptions options) : output_(path), options_(std::move(options)) {
    writeHead();
}

void Html::writeHead() {
    const std::vector<std::string>& inputs = options_.inputs;
    const std::string title =
        inputs.size() == 1 ? htmlText(inputs.front()) : fmt::format("{} files", inputs.size());
    output_.print(
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<meta name=\"color-scheme\" content=\"light dark\">\n"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src '{}'; "
        "script-src '{}'; img-src data:; base-uri 'none'; form-action 'none'\">\n"
        "<link rel=\"icon\" href=\"data:,\">\n<title>{} - qvinspect</title>\n<style>",
        kHtmlStyleHash, kHtmlScriptHash, title);
    output_.write(kHtmlStyle);
    output_.print("</style>\n</head>\n<body class=\"no-script\">\n<main>\n<h1>Video stream report</h1>\n");
    if (inputs.size() > 1) {
        output_.print("<nav aria-label=\"Files\"><ol>\n");
        for (size_t i = 0; i < inputs.size(); ++i) {
            output_.print("<li><a href=\"#{}\"><bdi>{}</bdi></a></li>\n", idOf(i), htmlText(inputs[i]));
        }
        output_.print("</ol></nav>\n");
    }
    output_.print(
        "<noscript><p class=\"note\">Everything can be read without scripts; zoom, sorting, the filter of "
        "the "
        "table "
        "and the bytes of NAL units need them.</p></noscript>\n");
}

std::string Html::nextId() {
    return idOf(sections_++);
}

void Html::fail(const std::string& name, const std::string& reason) {
    section_.reset();
    writeFailedSection(output_, nextId(), name, reason);
}

void Html::begin(const StreamHead& head) {
    section_.emplace(head, options_.limits);
}

void Html::add(const AccessUnitView& view) {
    section_->add(view);
}

void Html::end(const StreamEnd& end) {
    section_->write(output_, nextId(), end);
    section_.reset();
}

void Html::finish() {
    while (sections_ < options_.inputs.size()) {
        const std::string& name = options_.inputs[sections_];
        writeFailedSection(output_, nextId(), name, "Interrupted before this input.");
    }
    output_.print("</main>\n");
    output_.write(kHtmlDrawer);
    output_.print("<footer><p>qvinspect " QVINSPECT_VERSION "{}</p></footer>\n<script>",
                  options_.stamp.empty() ? std::string() : ", " + htmlText(options_.stamp));
    output_.write(kHtmlScript);
    output_.print("</script>\n</body>\n</html>\n");
    output_.close();
}

}  // namespace qvinspect
