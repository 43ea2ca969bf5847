// Luminances on the PQ scale of SMPTE ST 2084, whose steps are perceptually uniform.
#include <fmt/format.h>

#include <cstdint>

#include "QVCoreStandalone.h"
#include "analysis/SeiNames.h"
#include "report/HtmlPlot.h"
#include "report/HtmlSection.h"
#include "report/HtmlText.h"

namespace qvinspect {

namespace {

constexpr double kLuminanceUnit = 0.0001;      // cd/m2, H.265 D.3.28
constexpr double kChromaticityUnit = 0.00002;  // H.265 D.3.28
constexpr const char* kUnit = "cd/m\xC2\xB2";

// The position of a luminance on the scale, 0 to 1, by bisection: the core has only the inverse function.
double pqOf(double luminance) {
    constexpr int kSteps = 40;
    double low = 0;
    double high = 1;
    for (int i = 0; i < kSteps; ++i) {
        const double middle = (low + high) / 2;
        (qvPqToLuminance(middle) < luminance ? low : high) = middle;
    }
    return high;
}

double luminanceOfCode(double code) {
    constexpr double kMostCode = 4095;
    return qvPqToLuminance(code / kMostCode);
}

std::string luminanceText(double luminance) {
    return fmt::format("{} {}", shortNumber(luminance), kUnit);
}

std::vector<PlotTick> luminanceTicks() {
    std::vector<PlotTick> ticks;
    for (const double luminance : {0.0, 0.1, 1.0, 10.0, 100.0, 1000.0, 4000.0, 10000.0}) {
        ticks.push_back({luminance == 0 ? 0 : pqOf(luminance), shortNumber(luminance)});
    }
    return ticks;
}

struct Range {
    std::string name;
    const char* className;
    double low;   // cd/m2
    double high;  // cd/m2
    std::string text;
};

// A range of equal values is drawn as a line, so that it is visible.
void writeRange(Output& out, const Range& range) {
    const double left = range.low <= 0 ? 0 : pqOf(range.low);
    const double width = std::max(pqOf(range.high) - left, 0.004);
    writeMark(out, range.className, {left * kDrawingHeight, width * kDrawingHeight}, 0, kDrawingHeight,
              range.text);
}

std::vector<Range> rangesOf(const Signals& signals) {
    std::vector<Range> ranges;
    const auto addRange = [&](const char* name, const char* className, double low, double high) {
        ranges.push_back(
            {name, className, low, high, fmt::format("{} to {}", shortNumber(low), luminanceText(high))});
    };
    if (signals.masteringDisplay) {
        addRange("Mastering display", "mastering",
                 signals.masteringDisplay->min_display_mastering_luminance * kLuminanceUnit,
                 signals.masteringDisplay->max_display_mastering_luminance * kLuminanceUnit);
    }
    if (signals.contentLight) {
        const double most = signals.contentLight->max_content_light_level;
        const double average = signals.contentLight->max_pic_average_light_level;
        // 0 means that no limit is indicated, H.265 D.3.35.
        const auto text = [](double light) {
            return light == 0 ? std::string("not indicated") : luminanceText(light);
        };
        ranges.push_back({"MaxCLL", "light", 0, most, text(most)});
        ranges.push_back({"MaxFALL", "light", 0, average, text(average)});
    }
    if (signals.hdrVivid.read > 0) {
        const HdrVividTotals& vivid = signals.hdrVivid;
        addRange("HDR Vivid, least to most", "band", luminanceOfCode(vivid.minimum_maxrgb_pq),
                 luminanceOfCode(vivid.maximum_maxrgb_pq));
    }
    return ranges;
}

void writeRanges(Output& out, const std::vector<Range>& ranges) {
    PlotLanes plot;
    plot.range = {"pq", 0, 1 / kDrawingHeight, kDrawingHeight};
    plot.label = "HDR luminance ranges";
    plot.xLabel = fmt::format("{}, on the PQ scale", kUnit);
    plot.ticks = luminanceTicks();
    for (const Range& range : ranges) {
        plot.label += fmt::format("; {}: {}", range.name, range.text);
        plot.lanes.push_back({fmt::format("{}: {}", range.name, range.text), range.className, [&out, &range] {
                                  if (range.high > 0) {
                                      writeRange(out, range);
                                  }
                              }});
    }
    writeLanes(out, plot);
}

void writeRow(Output& out, const std::string& name, const std::string& value) {
    out.print("<tr><td>{}<td>{}\n", htmlText(name), htmlText(value));
}

void writeValues(Output& out, const Signals& signals, const std::vector<Range>& ranges) {
    for (const Range& range : ranges) {
        writeRow(out, range.name, range.text);
    }
    if (signals.masteringDisplay) {
        const qv::sei::MasteringDisplayColourVolume& display = *signals.masteringDisplay;
        const auto point = [](uint32_t x, uint32_t y) {
            return fmt::format("x {:.5f}, y {:.5f}", x * kChromaticityUnit, y * kChromaticityUnit);
        };
        static constexpr const char* kNames[] = {"Green primary", "Blue primary", "Red primary"};
        for (size_t c = 0; c < 3; ++c) {
            writeRow(out, kNames[c], point(display.display_primaries_x[c], display.display_primaries_y[c]));
        }
        writeRow(out, "White point", point(display.white_point_x, display.white_point_y));
    }
    if (signals.preferredTransfer) {
        writeRow(out, "Preferred transfer",
                 fmt::format("{} {}", *signals.preferredTransfer, transferName(*signals.preferredTransfer)));
    }
    if (signals.transfer_characteristics) {
        writeRow(out, "Transfer characteristics",
                 fmt::format("{} {}", *signals.transfer_characteristics,
                             transferName(*signals.transfer_characteristics)));
    }
    if (signals.hdrVivid.messages > 0) {
        writeRow(out, "HDR Vivid messages",
                 fmt::format("{}, {} of them read", signals.hdrVivid.messages, signals.hdrVivid.read));
    }
    if (signals.hdr10PlusMessages > 0) {
        writeRow(out, "HDR10+ messages", fmt::format("{}", signals.hdr10PlusMessages));
    }
}

// A line across the plot with its name at one end.
enum class End { Left, Right };

void writeLevel(Output& out, double height, const char* name, double luminance, End end) {
    const double y = height * (1 - pqOf(luminance));
    out.print("<line class=\"level\" x1=\"0\" x2=\"100%\" y1=\"{0:.2f}\" y2=\"{0:.2f}\"/>", y);
    out.print("<text class=\"level {}\" x=\"{}\" dx=\"{}\" y=\"{:.2f}\">{} {}</text>\n",
              end == End::Left ? "left" : "right", end == End::Left ? "0" : "100%", end == End::Left ? 4 : -4,
              y - 4, name, luminanceText(luminance));
}

double averageOf(const VividBin& bin) {
    return static_cast<double>(bin.averageSum) / static_cast<double>(bin.count);
}

void writeVivid(Output& out, const PlotRange& range, const AdaptiveBins<AccessUnitBin>& bins,
                const Signals& signals) {
    constexpr double kHeight = 220;
    constexpr double kMostCode = 4095;
    const auto number = [&](size_t i) {
        return static_cast<uint64_t>(range.from) + static_cast<uint64_t>(i) * bins.width();
    };
    openFigure(out, {"vivid", "HDR Vivid maxRGB",
                     fmt::format("Least, average and most of each {}, in {} on the PQ scale.",
                                 bins.width() == 1 ? std::string("access unit")
                                                   : fmt::format("{} access units", bins.width()),
                                 kUnit),
                     "<span class=\"swatch band\"></span>least to most "
                     "<span class=\"swatch mean\"></span>average"});
    PlotBody body;
    body.range = range;
    body.height = kHeight;
    body.ticks = luminanceTicks();
    body.label = "HDR Vivid maxRGB by access unit, on the PQ scale";
    body.xLabel = "access unit, in decoding order";
    body.backdrop = [&] {
        if (signals.masteringDisplay) {
            writeLevel(out, kHeight, "mastering display",
                       signals.masteringDisplay->max_display_mastering_luminance * kLuminanceUnit,
                       End::Right);
        }
        if (signals.contentLight && signals.contentLight->max_content_light_level > 0) {
            writeLevel(out, kHeight, "MaxCLL", signals.contentLight->max_content_light_level, End::Left);
        }
    };
    body.draw = [&] {
        std::string mean;
        for (size_t i = 0; i < bins.bins().size(); ++i) {
            const VividBin& bin = bins.bins()[i].vivid;
            if (bin.count == 0) {
                continue;
            }
            const double top = drawingY(bin.maximum / kMostCode);
            const MarkSpan span = spanOf(range, i, i + 1);
            writeMark(out, "band", span, top,
                      std::max(drawingY(bin.minimum / kMostCode) - top, kDrawingHeight / kHeight),
                      fmt::format("access unit {}: least {}, average {}, most {} {}", number(i),
                                  shortNumber(luminanceOfCode(bin.minimum)),
                                  shortNumber(luminanceOfCode(averageOf(bin))),
                                  shortNumber(luminanceOfCode(bin.maximum)), kUnit));
            mean += fmt::format("M{:.6g} {:.5g}h{:.3g}", span.left, drawingY(averageOf(bin) / kMostCode),
                                span.width);
        }
        out.print("<path class=\"mean\" d=\"{}\"/>\n", mean);
    };
    writePlot(out, body);
    writeDataTable(
        out, {{"First access unit", "Messages", "Least, code", "Average, code", "Most, code", "Least [cd/m2]",
               "Average [cd/m2]", "Most [cd/m2]"},
              [&] {
                  for (size_t i = 0; i < bins.bins().size(); ++i) {
                      const VividBin& bin = bins.bins()[i].vivid;
                      if (bin.count > 0) {
                          out.print("<tr><td>{}<td>{}<td>{}<td>{:.1f}<td>{}<td>{:.4f}<td>{:.4f}<td>{:.4f}\n",
                                    number(i), bin.count, bin.minimum, averageOf(bin), bin.maximum,
                                    luminanceOfCode(bin.minimum), luminanceOfCode(averageOf(bin)),
                                    luminanceOfCode(bin.maximum));
                      }
                  }
              }});
    closeFigure(out);
}

}  // namespace

void writeHdr(Output& out, const PlotRange& range, const AdaptiveBins<AccessUnitBin>& bins,
              const Signals& signals) {
    const std::vector<Range> ranges = rangesOf(signals);
    openFigure(out, {"hdr", "HDR", fmt::format("{}", fmt::join(signals.hdrClasses(), ", ")), ""});
    if (!ranges.empty()) {
        writeRanges(out, ranges);
    }
    writeDataTable(out, {{"What", "Value"}, [&] { writeValues(out, signals, ranges); }});
    closeFigure(out);
    if (signals.hdrVivid.read > 0) {
        writeVivid(out, range, bins, signals);
    }
}

}  // namespace qvinspect
