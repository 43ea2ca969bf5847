#include "report/HtmlSection.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "analysis/HdrValues.h"
#include "analysis/NalUnitNames.h"
#include "analysis/SeiNames.h"
#include "analysis/SeiTypes.h"
#include "report/FramingName.h"
#include "report/HtmlText.h"

namespace qvinspect {

namespace {

constexpr double kTicksPerSecond = 64;  // finest bins by time
constexpr int64_t kNoType = -1;
constexpr const char* kByNumber = "access unit";
constexpr const char* kNumberAxis = "access unit, in decoding order";

std::string counted(uint64_t count, const char* what) {
    return fmt::format("{} {}{}", groupedDigits(count), what, count == 1 ? "" : "s");
}

// The error of a unit itself, as counted by the totals.
std::optional<std::string> errorOf(const UnitReport& report, const UnitDetails& details) {
    if (report.state != UnitState::Typed) {
        return report.state == UnitState::Empty ? "empty unit" : "forbidden_zero_bit is set";
    }
    const auto because = [](std::string text, const std::vector<std::string>& log) {
        return log.empty() ? text : fmt::format("{}: {}", text, log.front());
    };
    if (details.newSps && !details.newSps->isAccepted) {
        return because("the library refuses the parameter set", details.newSps->log);
    }
    return std::nullopt;
}

// --- The card ---

class Card {
public:
    explicit Card(Output& out) : out_(out) {}

    void add(const char* name, const std::string& value, const char* className = "") {
        if (!value.empty()) {
            out_.print("<div class=\"{}\"><dt>{}</dt><dd>{}</dd></div>\n", className, name, htmlText(value));
        }
    }

private:
    Output& out_;
};

void addPicture(Card& card, const VideoFormat& video) {
    card.add("Profile", video.profile);
    card.add("Level",
             video.tier == nullptr ? video.level : fmt::format("{}, {} tier", video.level, video.tier));
    card.add("Size", sizeText(video));
    card.add("Bit depth", bitDepthText(video));
    card.add("Chroma", video.chroma.name);
}

std::string keyIntervalText(const StreamTotals& totals) {
    const KeyIntervals& intervals = totals.keyIntervals;
    if (totals.keyAccessUnits == 0) {
        return "no key access unit";
    }
    if (intervals.count == 0) {
        return fmt::format("one key access unit, {} from it to the end", counted(intervals.most, kByNumber));
    }
    const bool isTimed = intervals.leastSeconds && intervals.mostSeconds;
    if (intervals.least == intervals.most) {
        return fmt::format(
            "{}{}", counted(intervals.most, kByNumber),
            isTimed ? fmt::format(" ({} s)", shortNumber(*intervals.mostSeconds)) : std::string());
    }
    const double average = static_cast<double>(intervals.sum) / static_cast<double>(intervals.count);
    return fmt::format("{} least, {} average, {} most{}", intervals.least, shortNumber(average),
                       intervals.most,
                       isTimed ? fmt::format(" ({} to {} s)", shortNumber(*intervals.leastSeconds),
                                             shortNumber(*intervals.mostSeconds))
                               : std::string());
}

std::string bitrateRange(const StreamTotals& totals) {
    if (!totals.averageBitrate) {
        return "unknown without times";
    }
    return fmt::format("{} average, {} peak over a second", bitrateText(*totals.averageBitrate),
                       bitrateText(totals.peakBitrate.value_or(*totals.averageBitrate)));
}

std::string parameterSetsText(const StreamTotals& totals) {
    std::string text = fmt::format("{} SPS, {} repeated unchanged", totals.distinctSps, totals.repeatedSps);
    if (totals.refusedSps > 0) {
        text += fmt::format(", {} refused", totals.refusedSps);
    }
    return totals.hasConfiguration ? text + "; with the container" : text;
}

uint64_t messagesIn(const StreamTotals& totals) {
    uint64_t messages = 0;
    for (const auto& entry : totals.messagesByType) {
        messages += entry.second;
    }
    return messages;
}

}  // namespace

// --- Collecting ---

HtmlSection::HtmlSection(const StreamHead& head, const HtmlLimits& limits)
    : head_(head),
      limits_(limits),
      codec_(head.info.parameters.codecId),
      bins_(limits.mostBins),
      timeBins_(limits.mostBins),
      units_(codec_, head.isRaw, limits) {}

void HtmlSection::add(const AccessUnitView& view) {
    if (firstNumber_ == 0) {
        firstNumber_ = view.number;
    }
    accessUnits_ = view.number - firstNumber_ + 1;
    AccessUnitBin& bin = bins_.binOf(view.number - firstNumber_);
    if (bin.count == 0) {
        bin.time = view.time;
    }
    ++bin.count;
    bin.bytes += view.accessUnit.size;
    bin.largest = std::max<uint64_t>(bin.largest, view.accessUnit.size);
    bin.keys += view.report.isKey ? 1U : 0U;
    bin.errors += view.errors;
    addUnits(view, bin);
    addErrors(view);
    addTime(view);
    units_.add(view);
}

void HtmlSection::addUnits(const AccessUnitView& view, AccessUnitBin& bin) {
    for (const UnitReport& report : view.report.units) {
        TypeShare& share = types_[report.state == UnitState::Typed ? int64_t{report.type} : kNoType];
        ++share.units;
        share.bytes += report.length;
    }
    for (const UnitDetails& unit : view.details.units) {
        if (unit.sei) {
            for (const SeiMessage& message : unit.sei->messages) {
                addMessage(message, bin);
            }
        }
    }
}

void HtmlSection::addMessage(const SeiMessage& message, AccessUnitBin& bin) {
    const size_t lane = laneOf({message.payloadType, message.facts ? message.facts->owner : std::nullopt});
    ++lanes_[lane].messages;
    bin.addMessage(lane);
    if (message.facts && message.facts->hdrVivid) {
        const VividLevels& levels = *message.facts->hdrVivid;
        bin.vivid.merge(
            {1, levels.minimum_maxrgb_pq, levels.maximum_maxrgb_pq, uint64_t{levels.average_maxrgb_pq}});
    }
}

// The last lane takes the types without a lane of their own.
size_t HtmlSection::laneOf(const LaneKey& key) {
    const auto known = laneByKey_.find(key);
    if (known != laneByKey_.end()) {
        return known->second;
    }
    if (laneByKey_.size() + 1 < limits_.mostLanes) {
        lanes_.push_back({laneName(key), 0});
        laneByKey_.emplace(key, lanes_.size() - 1);
    } else if (lanes_.size() < limits_.mostLanes) {
        lanes_.push_back({"other types", 0});
    }
    return lanes_.size() - 1;
}

std::string HtmlSection::laneName(const LaneKey& key) const {
    const auto& [type, owner] = key;
    const std::string name = fmt::format("{} {}", type, seiName(codec_, type));
    const qv::sei::T35OwnerName* const sender = owner ? qv::sei::t35OwnerNameOf(*owner) : nullptr;
    return sender == nullptr ? name : fmt::format("{}: {}", name, sender->name);
}

std::vector<size_t> HtmlSection::lanesInOrder() const {
    std::vector<size_t> order;
    for (const auto& entry : laneByKey_) {
        order.push_back(entry.second);
    }
    if (order.size() < lanes_.size()) {
        order.push_back(lanes_.size() - 1);
    }
    return order;
}

void HtmlSection::addErrors(const AccessUnitView& view) {
    const auto addFindings = [&](const std::vector<Finding>& findings) {
        for (const Finding& finding : findings) {
            if (finding.severity == Severity::Error) {
                addError(view.number, finding.offset, finding.text);
            }
        }
    };
    addFindings(view.accessUnit.findings);
    for (size_t i = 0; i < view.report.units.size(); ++i) {
        const UnitReport& unit = view.report.units[i];
        if (std::optional<std::string> error = errorOf(unit, view.details.units[i])) {
            addError(view.number, unit.offset, std::move(*error));
        }
    }
    addFindings(view.report.findings);
}

void HtmlSection::addError(uint64_t number, std::optional<uint64_t> offset, std::string text) {
    if (++errorCount_ <= limits_.mostErrors) {
        errors_.push_back({number, offset, std::move(text)});
    }
}

void HtmlSection::addTime(const AccessUnitView& view) {
    const std::optional<double> known = view.decodeTime ? view.decodeTime : view.time;
    if (!known) {
        isTimed_ = false;
    }
    if (!isTimed_) {
        return;
    }
    if (view.number == firstNumber_) {
        firstTime_ = *known;
        lastTime_ = *known;
    }
    lastTime_ = std::max(lastTime_, *known);
    endTime_ = std::max(endTime_, lastTime_ - firstTime_ + view.duration.value_or(0));
    constexpr double kMostTicks = 1e15;  // far longer than any stream, within the range of the integer
    const double ticks = std::clamp((lastTime_ - firstTime_) * kTicksPerSecond + 1e-6, 0.0, kMostTicks);
    TimeBin& bin = timeBins_.binOf(static_cast<uint64_t>(ticks));
    ++bin.count;
    bin.bytes += view.accessUnit.size;
}

// --- Writing ---

PlotRange HtmlSection::rangeOf(const AdaptiveBins<AccessUnitBin>& bins) const {
    const auto perBin = static_cast<double>(bins.width());
    return {"au", static_cast<double>(firstNumber_), perBin, static_cast<double>(accessUnits_) / perBin};
}

PlotRange HtmlSection::numberRange() const {
    return rangeOf(bins_);
}

// "access unit 7", "access units 9 to 12".
std::string HtmlSection::numbersText(size_t first, size_t end) const {
    const auto [from, to] = numbersOf(first, end);
    return from == to ? fmt::format("access unit {}", from) : fmt::format("access units {} to {}", from, to);
}

// The same for one bin, with the time if it is known.
std::string HtmlSection::placeText(size_t bin) const {
    const std::optional<double>& time = bins_.bins()[bin].time;
    const std::string numbers = numbersText(bin, bin + 1);
    return time ? fmt::format("{}, {:.3f} s", numbers, *time) : numbers;
}

void HtmlSection::write(Output& out, const std::string& id, const StreamEnd& end) {
    for (const Finding& finding : end.findings) {
        if (finding.severity == Severity::Error) {
            addError(0, finding.offset, finding.text);
        }
    }
    out.print("<section class=\"file\" id=\"{0}\" aria-labelledby=\"{0}-name\">\n", id);
    writeHeading(out, id, end);
    writeCard(out, end);
    writeChecks(out, end.checks);
    writeSizes(out);
    writeBitrate(out, end.totals);
    if (!end.totals.signals.hdrClasses().empty() && end.totals.signals.hdrClasses().front() != "SDR") {
        writeHdr(out, numberRange(), bins_, end.totals.signals);
    }
    writeErrors(out, id, end.totals);
    writeLanesOfSei(out);
    writeMix(out);
    units_.write(out, id, end.totals.units);
    out.print("</section>\n");
}

void HtmlSection::writeHeading(Output& out, const std::string& id, const StreamEnd& end) const {
    const StreamTotals& totals = end.totals;
    out.print("<header><h2 id=\"{}-name\"><bdi>{}</bdi></h2><p class=\"badges\">", id, htmlText(head_.name));
    out.print("<span class=\"badge\">{}</span> ", htmlText(codecName(codec_)));
    for (const std::string& hdrClass : totals.signals.hdrClasses()) {
        out.print("<span class=\"badge{}\">{}</span> ", hdrClass == "SDR" ? "" : " hdr", htmlText(hdrClass));
    }
    if (totals.errors > 0) {
        out.print("<a class=\"badge bad\" href=\"#{}-errors\">{}</a>", id, counted(totals.errors, "error"));
    } else {
        out.print("<span class=\"badge good\">no errors</span>");
    }
    out.print("</p></header>\n");
    if (end.isInterrupted) {
        out.print("<p class=\"banner\">Interrupted: this is what was read so far.</p>\n");
    }
}

void HtmlSection::writeCard(Output& out, const StreamEnd& end) const {
    const StreamTotals& totals = end.totals;
    out.print("<dl class=\"card\">\n");
    Card card(out);
    card.add("Codec", codecName(codec_));
    if (totals.sps) {
        addPicture(card, *totals.sps->video);
    } else {
        card.add("Picture", "no parameter set that can be read", "bad");
    }
    card.add("Format", head_.info.format);
    card.add("Framing", framingName(head_.info.parameters));
    card.add("Duration", totals.duration ? durationText(*totals.duration) : "unknown without times");
    card.add("Access units", fmt::format("{}, {} key", groupedDigits(totals.accessUnits),
                                         groupedDigits(totals.keyAccessUnits)));
    card.add("Key interval", keyIntervalText(totals));
    card.add("Bitrate", bitrateRange(totals));
    card.add("Bytes", groupedDigits(totals.bytes));
    card.add("Largest access unit",
             fmt::format("{} bytes, number {}", groupedDigits(totals.largestAccessUnit),
                         totals.largestAccessUnitAt));
    card.add("NAL units", groupedDigits(totals.units));
    card.add("Parameter sets", parameterSetsText(totals));
    card.add("SEI messages", groupedDigits(messagesIn(totals)));
    card.add("HDR", fmt::format("{}", fmt::join(totals.signals.hdrClasses(), ", ")));
    card.add("Captions", totals.signals.captionMessages > 0
                             ? fmt::format("{}, {}", fmt::join(captionTypeNames(totals.signals), ", "),
                                           counted(totals.signals.captionMessages, "message"))
                             : "none");
    card.add("Active format", totals.signals.activeFormatMessages > 0
                                  ? counted(totals.signals.activeFormatMessages, "message")
                                  : "not signalled");
    card.add("Side data", fmt::format("{}, {} bytes", counted(totals.seiItems, "item"),
                                      groupedDigits(totals.sideDataBytes)));
    card.add("Errors", totals.errors == 0 ? "none" : groupedDigits(totals.errors),
             totals.errors == 0 ? "" : "bad");
    out.print("</dl>\n");
}

void HtmlSection::writeChecks(Output& out, const std::vector<CheckResult>& checks) const {
    if (checks.empty()) {
        return;
    }
    out.print("<section class=\"checks\"><h3>Checks</h3><ul>\n");
    for (const CheckResult& check : checks) {
        out.print("<li><span class=\"badge {}\">{}</span> <code>{}</code> {}</li>\n",
                  check.isMet ? "good" : "bad", check.isMet ? "met" : "failed", htmlText(check.rule),
                  htmlText(check.evidence));
    }
    out.print("</ul></section>\n");
}

void HtmlSection::writeSizes(Output& out) const {
    const std::vector<AccessUnitBin>& bins = bins_.bins();
    const PlotRange range = numberRange();
    const bool isEach = bins_.width() == 1;
    uint64_t most = 0;
    for (const AccessUnitBin& bin : bins) {
        most = std::max(most, bin.largest);
    }
    const PlotScale scale = scaleUpTo(static_cast<double>(most), bytesText);
    openFigure(out, {"sizes", "Access-unit sizes",
                     isEach ? "" : fmt::format("Each bar represents {} access units.", bins_.width()),
                     isEach ? "<span class=\"swatch size\"></span>access unit "
                              "<span class=\"swatch key\"></span>key access unit"
                            : "<span class=\"swatch size\"></span>average "
                              "<span class=\"swatch largest\"></span>largest "
                              "<span class=\"swatch key\"></span>with a key access unit"});
    const auto average = [](const AccessUnitBin& bin) {
        return static_cast<double>(bin.bytes) / static_cast<double>(std::max<uint64_t>(bin.count, 1));
    };
    const auto tip = [&](size_t i) {
        const AccessUnitBin& bin = bins[i];
        return isEach ? fmt::format("{}: {} bytes{}", placeText(i), bin.bytes, bin.keys > 0 ? ", key" : "")
                      : fmt::format("{}: {} bytes on average, {} at most{}", placeText(i),
                                    shortNumber(average(bin)), bin.largest,
                                    bin.keys > 0 ? fmt::format(", {} key", bin.keys) : std::string());
    };
    const auto bar = [&](const char* className, size_t i, double bytes) {
        const double height = kDrawingHeight * bytes / scale.top;
        writeMark(out, className, spanOf(range, i, i + 1), kDrawingHeight - height, height, tip(i));
    };
    PlotBody body;
    body.range = range;
    body.height = 200;
    body.ticks = scale.ticks;
    body.label = fmt::format("Sizes of access units {} to {}, up to {} bytes", firstNumber_,
                             firstNumber_ + accessUnits_ - 1, most);
    body.xLabel = kNumberAxis;
    body.draw = [&] {
        for (size_t i = 0; i < bins.size(); ++i) {
            if (!isEach) {
                bar("largest", i, static_cast<double>(bins[i].largest));
            }
            bar(isEach && bins[i].keys > 0 ? "size key" : "size", i, average(bins[i]));
        }
    };
    body.strips = {{"key", "key", [&] {
                        for (size_t i = 0; i < bins.size(); ++i) {
                            if (bins[i].keys > 0) {
                                writeMark(out, "key", spanOf(range, i, i + 1), 0, kDrawingHeight, tip(i));
                            }
                        }
                    }}};
    writePlot(out, body);
    writeDataTable(out, {{"First access unit", "Time [s]", "Access units", "Bytes", "Largest", "Key"}, [&] {
                             for (size_t i = 0; i < bins.size(); ++i) {
                                 out.print("<tr><td>{}<td>{}<td>{}<td>{}<td>{}<td>{}\n",
                                           firstNumber_ + i * bins_.width(),
                                           bins[i].time ? fmt::format("{:.6f}", *bins[i].time) : "-",
                                           bins[i].count, bins[i].bytes, bins[i].largest, bins[i].keys);
                             }
                         }});
    closeFigure(out);
}

void HtmlSection::writeBitrate(Output& out, const StreamTotals& totals) const {
    if (isTimed_ && endTime_ > 0) {
        writeTimedBitrate(out, totals);
    } else {
        writeUntimedBitrate(out);
    }
}

void HtmlSection::writeTimedBitrate(Output& out, const StreamTotals& totals) const {
    AdaptiveBins<TimeBin> windows = timeBins_;
    const double least = endTime_ < 10 ? 0.25 : 1;  // seconds
    while (static_cast<double>(windows.width()) < least * kTicksPerSecond) {
        windows.mergePairs();
    }
    const std::vector<TimeBin>& bins = windows.bins();
    const double seconds = static_cast<double>(windows.width()) / kTicksPerSecond;
    const auto covered = [&](size_t i) {
        const double rest = endTime_ - static_cast<double>(i) * seconds;
        return i + 1 == bins.size() && rest > 0 ? std::min(rest, seconds) : seconds;
    };
    const auto rate = [&](size_t i) { return static_cast<double>(bins[i].bytes) * 8 / covered(i); };
    double most = 0;
    for (size_t i = 0; i < bins.size(); ++i) {
        most = std::max(most, rate(i));
    }
    const PlotScale scale = scaleUpTo(most, bitrateText);
    openFigure(out, {"rates", "Bitrate",
                     fmt::format("By decoding time, over windows of {} s each.", shortNumber(seconds)),
                     "<span class=\"swatch rate\"></span>bitrate "
                     "<span class=\"swatch average\"></span>average"});
    PlotBody body;
    body.range = {"time", 0, seconds, endTime_ / seconds};
    body.height = 160;
    body.ticks = scale.ticks;
    body.label = fmt::format("Bitrate over {}, up to {}", durationText(endTime_), bitrateText(most));
    body.xLabel = "seconds, by decoding time";
    body.draw = [&] {
        for (size_t i = 0; i < bins.size(); ++i) {
            const double height = kDrawingHeight * rate(i) / scale.top;
            writeMark(out, "rate", spanOf(body.range, i, i + 1), kDrawingHeight - height, height,
                      fmt::format("{} to {} s: {}, {}", shortNumber(static_cast<double>(i) * seconds),
                                  shortNumber(static_cast<double>(i) * seconds + covered(i)),
                                  bitrateText(rate(i)), counted(bins[i].count, kByNumber)));
        }
        if (totals.averageBitrate) {
            out.print("<path class=\"average\" d=\"M0 {:.5g}H{:.10g}\"/>\n",
                      drawingY(*totals.averageBitrate / scale.top), body.range.width);
        }
    };
    writePlot(out, body);
    writeDataTable(out, {{"From [s]", "Seconds", "Access units", "Bytes", "Bits a second"}, [&] {
                             for (size_t i = 0; i < bins.size(); ++i) {
                                 out.print("<tr><td>{:.3f}<td>{:.3f}<td>{}<td>{}<td>{:.0f}\n",
                                           static_cast<double>(i) * seconds, covered(i), bins[i].count,
                                           bins[i].bytes, rate(i));
                             }
                         }});
    closeFigure(out);
}

void HtmlSection::writeUntimedBitrate(Output& out) const {
    constexpr size_t kShort = 256;
    const uint64_t least = bins_.bins().size() < kShort ? 8 : 32;  // access units
    AdaptiveBins<AccessUnitBin> windows = bins_;
    while (windows.width() < least) {
        windows.mergePairs();
    }
    const std::vector<AccessUnitBin>& bins = windows.bins();
    const auto bits = [&](size_t i) {
        return static_cast<double>(bins[i].bytes) * 8 /
               static_cast<double>(std::max<uint64_t>(bins[i].count, 1));
    };
    double most = 0;
    for (size_t i = 0; i < bins.size(); ++i) {
        most = std::max(most, bits(i));
    }
    const auto bitsText = [](double value) {
        const std::string text = bitrateText(value);
        return text.substr(0, text.size() - 2);  // without "/s"
    };
    const PlotScale scale = scaleUpTo(most, bitsText);
    openFigure(out, {"rates", "Bits per access unit",
                     fmt::format("The stream has no times, so this is by access unit number: averages of {} "
                                 "access units each. <code>--frame-rate</code> gives bits a second.",
                                 windows.width()),
                     ""});
    PlotBody body;
    body.range = rangeOf(windows);
    body.height = 160;
    body.ticks = scale.ticks;
    body.label = fmt::format("Bits per access unit, up to {}", bitsText(most));
    body.xLabel = kNumberAxis;
    const auto first = [&](size_t i) { return firstNumber_ + i * windows.width(); };
    body.draw = [&] {
        for (size_t i = 0; i < bins.size(); ++i) {
            const double height = kDrawingHeight * bits(i) / scale.top;
            writeMark(out, "rate", spanOf(body.range, i, i + 1), kDrawingHeight - height, height,
                      fmt::format("access units {} to {}: {} on average", first(i),
                                  first(i) + std::max<uint64_t>(bins[i].count, 1) - 1, bitsText(bits(i))));
        }
    };
    writePlot(out, body);
    writeDataTable(out, {{"First access unit", "Access units", "Bytes", "Bits per access unit"}, [&] {
                             for (size_t i = 0; i < bins.size(); ++i) {
                                 out.print("<tr><td>{}<td>{}<td>{}<td>{:.0f}\n", first(i), bins[i].count,
                                           bins[i].bytes, bits(i));
                             }
                         }});
    closeFigure(out);
}

// A table that includes its plot.
void HtmlSection::writeMix(Output& out) const {
    TypeShare all;
    for (const auto& [type, share] : types_) {
        all.units += share.units;
        all.bytes += share.bytes;
    }
    const auto percent = [](uint64_t part, uint64_t whole) {
        return whole == 0 ? 0.0 : static_cast<double>(part) * 100 / static_cast<double>(whole);
    };
    openFigure(out, {"mix", "NAL unit types", "",
                     "<span class=\"swatch size\"></span>share of units "
                     "<span class=\"swatch rate\"></span>share of bytes"});
    out.print(
        "<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"NAL unit "
        "types\"><table><thead><tr>"
        "<th scope=\"col\">Type</th><th scope=\"col\">Name</th><th scope=\"col\">Units</th>"
        "<th scope=\"col\">Bytes</th><th scope=\"col\" class=\"shares\">Shares</th></tr></thead><tbody>\n");
    for (const auto& [type, share] : types_) {
        const double units = percent(share.units, all.units);
        const double bytes = percent(share.bytes, all.bytes);
        out.print(
            "<tr class=\"type\"><td>{}<td>{}<td>{}<td>{}<td><svg class=\"share\" role=\"img\" width=\"100%\" "
            "height=\"16\" aria-label=\"{:.1f} % of units, {:.1f} % of bytes\">",
            type == kNoType ? std::string("-") : fmt::format("{}", type),
            htmlText(type == kNoType ? "forbidden_zero_bit set, or empty"
                                     : nalUnitName(codec_, static_cast<uint32_t>(type))),
            share.units, share.bytes, units, bytes);
        out.print(
            "<title>{0:.1f} % of units, {1:.1f} % of bytes</title>"
            "<rect class=\"size\" x=\"0\" y=\"1\" width=\"{0:.3f}%\" height=\"6\"/>"
            "<rect class=\"rate\" x=\"0\" y=\"9\" width=\"{1:.3f}%\" height=\"6\"/></svg>\n",
            units, bytes);
    }
    out.print("</tbody></table></div>\n");
    closeFigure(out);
}

// Calls with the first bin, the bin after the last, and the messages of each run of bins with messages.
void HtmlSection::forRuns(size_t lane, const std::function<void(size_t, size_t, uint64_t)>& call) const {
    const std::vector<AccessUnitBin>& bins = bins_.bins();
    for (size_t i = 0; i < bins.size(); ++i) {
        const size_t first = i;
        uint64_t messages = 0;
        for (; i < bins.size() && bins[i].messagesIn(lane) > 0; ++i) {
            messages += bins[i].messagesIn(lane);
        }
        if (i > first) {
            call(first, i, messages);
        }
    }
}

// The access units in the bins from first to the one before end.
std::pair<uint64_t, uint64_t> HtmlSection::numbersOf(size_t first, size_t end) const {
    const uint64_t last =
        firstNumber_ + (end - 1) * bins_.width() + std::max<uint64_t>(bins_.bins()[end - 1].count, 1) - 1;
    return {firstNumber_ + first * bins_.width(), last};
}

void HtmlSection::writeLanesOfSei(Output& out) const {
    if (lanes_.empty()) {
        return;
    }
    openFigure(out,
               {"sei", "SEI messages",
                bins_.width() == 1 ? "" : fmt::format("In steps of {} access units.", bins_.width()), ""});
    PlotLanes plot;
    plot.range = numberRange();
    plot.label = fmt::format("SEI messages of {} by access unit", counted(lanes_.size(), "kind"));
    plot.xLabel = kNumberAxis;
    for (const size_t lane : lanesInOrder()) {
        const auto drawRun = [this, &out, &plot](size_t first, size_t end, uint64_t messages) {
            writeMark(out, "sei", spanOf(plot.range, first, end), 0, kDrawingHeight,
                      fmt::format("{}: {}", numbersText(first, end), counted(messages, "message")));
        };
        plot.lanes.push_back(
            {fmt::format("{}, {}", lanes_[lane].name, counted(lanes_[lane].messages, "message")), "sei",
             [this, lane, drawRun] { forRuns(lane, drawRun); }});
    }
    writeLanes(out, plot);
    writeDataTable(out, {{"Message", "First access unit", "Last access unit", "Messages"}, [&] {
                             for (const size_t lane : lanesInOrder()) {
                                 forRuns(lane, [&](size_t first, size_t end, uint64_t messages) {
                                     const auto [from, to] = numbersOf(first, end);
                                     out.print("<tr><td>{}<td>{}<td>{}<td>{}\n", htmlText(lanes_[lane].name),
                                               from, to, messages);
                                 });
                             }
                         }});
    closeFigure(out);
}

void HtmlSection::writeErrors(Output& out, const std::string& id, const StreamTotals& totals) const {
    if (errorCount_ == 0 && totals.notes.empty()) {
        return;
    }
    const std::vector<AccessUnitBin>& bins = bins_.bins();
    openFigure(out, {"errors", errorCount_ > 0 ? "Errors" : "Notes", "", "", id + "-errors"});
    if (errorCount_ > 0) {
        PlotLanes plot;
        plot.range = numberRange();
        plot.label = fmt::format("{} by access unit", counted(errorCount_, "error"));
        plot.xLabel = kNumberAxis;
        plot.lanes = {{counted(errorCount_, "error"), "error", [&] {
                           for (size_t i = 0; i < bins.size(); ++i) {
                               if (bins[i].errors > 0) {
                                   writeMark(
                                       out, "error", spanOf(plot.range, i, i + 1), 0, kDrawingHeight,
                                       fmt::format("{}: {}", placeText(i), counted(bins[i].errors, "error")));
                               }
                           }
                       }}};
        writeLanes(out, plot);
    }
    out.print(
        "<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"Errors and notes\"><table "
        "class=\"texts\"><thead><tr><th scope=\"col\">Access unit</th><th scope=\"col\">Offset</th>"
        "<th scope=\"col\">What</th></tr></thead><tbody>\n");
    const auto offsetText = [](const std::optional<uint64_t>& offset) {
        return offset ? fmt::format("{}", *offset) : std::string("-");
    };
    for (const ErrorText& error : errors_) {
        out.print("<tr class=\"bad\"><td>{}<td>{}<td>{}\n",
                  error.number == 0 ? std::string("end") : fmt::format("{}", error.number),
                  offsetText(error.offset), htmlText(error.text));
    }
    for (const Finding& note : totals.notes) {
        out.print("<tr><td>note<td>{}<td>{}\n", offsetText(note.offset), htmlText(note.text));
    }
    out.print("</tbody></table></div>\n");
    if (errors_.size() < errorCount_) {
        out.print(
            "<p class=\"note\">The first {} of {} errors; all of them are in <code>--ndjson</code>.</p>\n",
            groupedDigits(errors_.size()), groupedDigits(errorCount_));
    }
    closeFigure(out);
}

void writeFailedSection(Output& out, const std::string& id, const std::string& name,
                        const std::string& reason) {
    out.print(
        "<section class=\"file failed\" id=\"{0}\" aria-labelledby=\"{0}-name\">\n<header><h2 "
        "id=\"{0}-name\">"
        "<bdi>{1}</bdi></h2><p class=\"badges\"><span class=\"badge bad\">not inspected</span></p></header>\n"
        "<p class=\"banner\">{2}</p></section>\n",
        id, htmlText(name), htmlText(reason));
}

}  // namespace qvinspect
