#include "report/HtmlPlot.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "report/HtmlText.h"

namespace qvinspect {

namespace {

constexpr int kTicksAcross = 8;
constexpr double kStripHeight = 12;
constexpr double kLaneHeight = 36;
constexpr double kAxisHeight = 40;  // tick labels and the name of the axis

bool isByNumber(const PlotRange& range) {
    return std::strcmp(range.domain, "au") == 0;
}

// The middle of the mark for an access unit, the edge for a time.
std::vector<PlotTick> ticksAcross(const PlotRange& range) {
    const double half = isByNumber(range) ? 0.5 : 0;
    const double length = range.to() - range.from;
    std::vector<PlotTick> ticks;
    for (const double value : roundTicks(range.from, range.to() - 2 * half, kTicksAcross)) {
        if (half == 0 || value == std::floor(value)) {
            ticks.push_back({(value - range.from + half) / length, fmt::format("{:.10g}", value)});
        }
    }
    return ticks;
}

void writeTicksAcross(Output& out, const std::vector<PlotTick>& ticks, double y) {
    out.print("<g class=\"x\" data-y=\"{:.10g}\">", y);
    for (const PlotTick& tick : ticks) {
        out.print("<line x1=\"{0:.3f}%\" x2=\"{0:.3f}%\" y1=\"{1:.10g}\" y2=\"{2:.10g}\"/>", tick.at * 100, y,
                  y + 4);
        out.print("<text x=\"{:.3f}%\" y=\"{:.10g}\">{}</text>", tick.at * 100, y + 18, tick.label);
    }
    out.print("</g>\n");
}

void writeAxisName(Output& out, const std::string& name, double y) {
    out.print("<text class=\"axis\" x=\"50%\" y=\"{:.10g}\">{}</text>\n", y + 36, htmlText(name));
}

void openFrame(Output& out, const PlotRange& range, const std::string& label, double height) {
    out.print(
        "<div class=\"frame\" data-domain=\"{}\" data-from=\"{:.10g}\" data-per=\"{:.10g}\" "
        "data-width=\"{:.10g}\">\n",
        range.domain, range.from, range.perMark, range.width);
    out.print("<svg class=\"plot\" role=\"img\" aria-label=\"{}\" width=\"100%\" height=\"{:.10g}\">\n",
              htmlText(label), height);
}

void openDrawing(Output& out, const PlotRange& range, const std::string& className, double y, double height) {
    out.print(
        "<svg class=\"drawing {}\" x=\"0\" y=\"{:.10g}\" width=\"100%\" height=\"{:.10g}\" "
        "viewBox=\"0 0 {:.10g} {:.10g}\" preserveAspectRatio=\"none\">\n",
        className, y, height, range.width, kDrawingHeight);
}

void writeStrip(Output& out, const PlotRange& range, const PlotStrip& strip, double y) {
    out.print("<rect class=\"strip\" x=\"0\" y=\"{:.10g}\" width=\"100%\" height=\"{:.10g}\"/>\n", y,
              kStripHeight);
    openDrawing(out, range, strip.className, y, kStripHeight);
    strip.draw();
    out.print("</svg>\n");
}

}  // namespace

std::vector<double> roundTicks(double from, double to, int about) {
    const double rough = (to - from) / about;
    if (!(rough > 0)) {
        return {from};
    }
    const double power = std::pow(10, std::floor(std::log10(rough)));
    const double step = power * (rough <= power ? 1 : rough <= 2 * power ? 2 : rough <= 5 * power ? 5 : 10);
    std::vector<double> ticks;
    const double first = std::ceil(from / step - 1e-9);
    for (int i = 0; i <= 2 * about && (first + i) * step <= to + step * 1e-9; ++i) {
        ticks.push_back((first + i) * step);
    }
    return ticks;
}

PlotScale scaleUpTo(double most, std::string (*label)(double)) {
    constexpr int kTicksUp = 4;
    const std::vector<double> inside = roundTicks(0, std::max(most, 1.0), kTicksUp);
    const double step = inside.size() > 1 ? inside[1] - inside[0] : 1;
    PlotScale scale{std::ceil(std::max(most, 1.0) / step - 1e-9) * step, {}};
    for (const double value : roundTicks(0, scale.top, static_cast<int>(std::lround(scale.top / step)))) {
        scale.ticks.push_back({value / scale.top, label(value)});
    }
    return scale;
}

void openFigure(Output& out, const PlotHead& head) {
    const std::string id = head.id.empty() ? std::string() : fmt::format(" id=\"{}\"", head.id);
    out.print("<figure class=\"{}\"{}>\n<figcaption><h3>{}</h3>", head.className, id, htmlText(head.title));
    if (!head.note.empty()) {
        out.print("<p class=\"note\">{}</p>", head.note);
    }
    if (!head.legend.empty()) {
        out.print("<p class=\"legend\">{}</p>", head.legend);
    }
    out.print("</figcaption>\n");
}

void closeFigure(Output& out) {
    out.print("</figure>\n");
}

void writePlot(Output& out, const PlotBody& body) {
    constexpr double kGap = 6;
    constexpr double kGapBelow = 14;  // leaves room for the label of 0
    const double stripsTop = body.height + kGapBelow;
    const double bottom = body.strips.empty()
                              ? body.height
                              : stripsTop + (kStripHeight + kGap) * static_cast<double>(body.strips.size());
    openFrame(out, body.range, body.label, bottom + kAxisHeight);
    out.print("<g class=\"y\">");
    for (const PlotTick& tick : body.ticks) {
        const double y = body.height * (1 - tick.at);
        out.print("<line x1=\"0\" x2=\"100%\" y1=\"{0:.2f}\" y2=\"{0:.2f}\"/>", y);
        out.print("<text x=\"-8\" y=\"{:.2f}\">{}</text>", y + 4, htmlText(tick.label));
    }
    out.print("</g>\n");
    if (body.backdrop) {
        body.backdrop();
    }
    openDrawing(out, body.range, "main", 0, body.height);
    body.draw();
    out.print("</svg>\n");
    double y = stripsTop;
    for (const PlotStrip& strip : body.strips) {
        out.print("<text class=\"strip-name\" x=\"-8\" y=\"{:.10g}\">{}</text>\n", y + 10,
                  htmlText(strip.label));
        writeStrip(out, body.range, strip, y);
        y += kStripHeight + kGap;
    }
    writeTicksAcross(out, ticksAcross(body.range), bottom);
    writeAxisName(out, body.xLabel, bottom);
    out.print("</svg></div>\n");
}

void writeLanes(Output& out, const PlotLanes& lanes) {
    const double bottom = kLaneHeight * static_cast<double>(lanes.lanes.size()) + 4;
    openFrame(out, lanes.range, lanes.label, bottom + kAxisHeight);
    double y = 0;
    for (const PlotStrip& lane : lanes.lanes) {
        out.print("<text class=\"lane\" x=\"0\" y=\"{:.10g}\">{}</text>\n", y + 13, htmlText(lane.label));
        writeStrip(out, lanes.range, lane, y + 19);
        y += kLaneHeight;
    }
    writeTicksAcross(out, lanes.ticks.empty() ? ticksAcross(lanes.range) : lanes.ticks, bottom);
    writeAxisName(out, lanes.xLabel, bottom);
    out.print("</svg></div>\n");
}

MarkSpan spanOf(const PlotRange& range, size_t first, size_t end) {
    constexpr double kFew = 160;
    constexpr double kGap = 0.2;
    const auto left = static_cast<double>(first);
    const double width = std::min(static_cast<double>(end), range.width) - left;
    const double gap = range.width <= kFew ? kGap * std::min(width, 1.0) : 0;
    return {left + gap / 2, width - gap};
}

void writeMark(Output& out, const char* className, MarkSpan span, double y, double height,
               const std::string& tip) {
    out.print(
        "<rect class=\"{}\" x=\"{:.6g}\" y=\"{:.5g}\" width=\"{:.6g}\" height=\"{:.5g}\">"
        "<title>{}</title></rect>\n",
        className, span.left, y, span.width, height, htmlText(tip));
}

double drawingY(double share) {
    return kDrawingHeight * (1 - share);
}

void writeDataTable(Output& out, const DataTable& table) {
    out.print(
        "<details class=\"data\"><summary>Data table</summary>"
        "<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"Data table\"><table><thead><tr>");
    for (const std::string& column : table.columns) {
        out.print("<th scope=\"col\">{}</th>", htmlText(column));
    }
    out.print("</tr></thead><tbody>\n");
    table.rows();
    out.print("</tbody></table></div></details>\n");
}

}  // namespace qvinspect
