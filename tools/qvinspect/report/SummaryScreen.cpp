#include "report/SummaryScreen.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <numeric>

#include "QVHDRVividDynamicMetadata.h"
#include "analysis/NalUnitNames.h"
#include "analysis/SeiNames.h"
#include "bitstream/avc/NalUnitType.h"
#include "bitstream/hevc/NalUnitType.h"
#include "report/FramingName.h"

namespace qvinspect {

namespace {

constexpr size_t kUsualWidth = 80;
constexpr size_t kLabelWidth = 20;
constexpr size_t kMostRows = 8;  // of a table of types
constexpr size_t kMostNotes = 3;

// --- Words and numbers ---

std::string counted(uint64_t count, const char* thing) {
    return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

std::string bitrate(double bitsPerSecond) {
    if (bitsPerSecond >= 1e6) {
        return fmt::format("{:.2f} Mbit/s", bitsPerSecond / 1e6);
    }
    return bitsPerSecond >= 1e3 ? fmt::format("{:.1f} kbit/s", bitsPerSecond / 1e3)
                                : fmt::format("{:.0f} bit/s", bitsPerSecond);
}

std::string seconds(double value) {
    constexpr double kMostInFull = 1e9;  // about thirty years
    return std::abs(value) < kMostInFull ? fmt::format("{:.3f} s", value) : fmt::format("{:.3g} s", value);
}

// "1:02:03", for durations from a minute to the length of the longest films.
std::string clockTime(double value) {
    constexpr double kMinute = 60;
    constexpr double kMost = 1e7;
    if (!(value >= kMinute && value < kMost)) {
        return "";
    }
    const auto whole = static_cast<uint64_t>(value);
    return fmt::format(" ({}:{:02}:{:02})", whole / 3600, whole / 60 % 60, whole % 60);
}

double percent(uint64_t part, uint64_t whole) {
    return whole == 0 ? 0 : 100 * static_cast<double>(part) / static_cast<double>(whole);
}

uint64_t countOf(const std::map<uint32_t, uint64_t>& counts, uint32_t type) {
    const auto entry = counts.find(type);
    return entry == counts.end() ? 0 : entry->second;
}

// --- Lines ---

// Lines of at most width characters, broken at blanks if there are any.
std::vector<std::string> wrapped(const std::string& text, size_t width) {
    std::vector<std::string> lines;
    std::string rest = text;
    while (rest.size() > width) {
        size_t blank = rest.rfind(' ', width);
        if (blank == std::string::npos || blank == 0) {
            blank = rest.find(' ', width);
        }
        if (blank == std::string::npos) {
            break;
        }
        lines.push_back(rest.substr(0, blank));
        rest.erase(0, blank + 1);
    }
    lines.push_back(std::move(rest));
    return lines;
}

class Screen {
public:
    explicit Screen(Page& page)
        : page_(page), width_(std::max(page.width().value_or(kUsualWidth), 2 * kLabelWidth)) {}

    void value(const char* label, const std::string& text, Style style = Style::Plain) {
        for (const std::string& line : wrapped(text, width_ - kLabelWidth)) {
            page_.add("  {:<18}", label).add(style, "{}", line).endLine();
            label = "";
        }
    }

    void part(const char* label, const std::string& text) { value(fmt::format("  {}", label).c_str(), text); }

    void empty() { page_.endLine(); }

    Page& page() { return page_; }

private:
    Page& page_;
    size_t width_;
};

// --- What it is ---

std::string profileAndLevel(const VideoFormat& video) {
    const std::string tier = video.tier == nullptr ? "" : fmt::format(", {} tier", video.tier);
    return fmt::format("{}, level {}{}", video.profile, video.level, tier);
}

std::string cropOf(const VideoFormat& video) {
    const std::array<uint64_t, 4> crop = {video.cropLeft, video.cropRight, video.cropTop, video.cropBottom};
    constexpr const char* kSides[] = {"left", "right", "top", "bottom"};
    std::vector<std::string> sides;
    for (size_t i = 0; i < std::size(kSides); ++i) {
        if (crop[i] != 0) {
            sides.push_back(fmt::format("{} {}", kSides[i], crop[i]));
        }
    }
    return sides.empty() ? ""
                         : fmt::format(", cropped from {}x{} ({})", video.codedWidth, video.codedHeight,
                                       fmt::join(sides, ", "));
}

std::string describePicture(const VideoFormat& video) {
    return fmt::format("{}x{}{}, {}, {}", video.width, video.height, cropOf(video), video.chroma.name,
                       bitDepthText(video));
}

std::string parameterSets(const StreamHead& head, const StreamTotals& totals) {
    const bool isAvc = totals.codec == QVCodecIDAvc;
    const auto& units = totals.unitsByType;
    std::string text = isAvc ? "" : fmt::format("{} VPS, ", countOf(units, qv::hevc::kNalVps));
    text += fmt::format("{} SPS, {} PPS", countOf(units, isAvc ? qv::avc::kNalSps : qv::hevc::kNalSps),
                        countOf(units, isAvc ? qv::avc::kNalPps : qv::hevc::kNalPps));
    if (totals.hasConfiguration) {
        text += fmt::format("; {} SPS in the container", head.parameterSets.size());
    }
    if (totals.distinctSps > 1) {
        text += fmt::format("; {} different SPS, the first is described", totals.distinctSps);
    }
    return totals.refusedSps == 0 ? text : text + fmt::format("; {} refused", totals.refusedSps);
}

void addStream(Screen& screen, const StreamHead& head, const StreamTotals& totals) {
    const char* const unknown = "unknown: no sequence parameter set that the library accepts";
    screen.value("codec", fmt::format("{} {}", codecName(totals.codec),
                                      totals.sps ? profileAndLevel(*totals.sps->video) : std::string()));
    screen.value("picture", totals.sps ? describePicture(*totals.sps->video) : unknown);
    screen.value("container", head.isRaw ? "none, " + head.info.format : head.info.format);
    screen.value("framing", framingName(head.info.parameters));
    screen.value("parameter sets", parameterSets(head, totals));
}

// --- Time ---

std::string whyUntimed(const StreamHead& head, const StreamTotals& totals) {
    if (totals.untimedAccessUnits == 0) {
        return "unknown: the access units have no duration";
    }
    if (totals.untimedAccessUnits < totals.accessUnits) {
        return fmt::format("unknown: {} without a time", counted(totals.untimedAccessUnits, "access unit"));
    }
    return head.isRaw ? "unknown: the stream has no frame rate; give --frame-rate"
                      : "unknown: the container has no times; give --frame-rate";
}

// "12", or "12 (0.480 s)".
std::string interval(const std::string& accessUnits, const std::optional<double>& time) {
    return time ? fmt::format("{} ({})", accessUnits, seconds(*time)) : accessUnits;
}

std::string keyIntervals(const StreamTotals& totals) {
    const KeyIntervals& intervals = totals.keyIntervals;
    if (totals.keyAccessUnits == 0) {
        return "none: no key access unit";
    }
    std::string text;
    if (intervals.count == 0) {
        text = fmt::format("one key only, then {} to the end", counted(intervals.most, "access unit"));
    } else {
        const bool isTimed = intervals.timed > 0;
        const double average = static_cast<double>(intervals.sum) / static_cast<double>(intervals.count);
        std::optional<double> averageSeconds;
        if (isTimed) {
            averageSeconds = intervals.sumSeconds / static_cast<double>(intervals.timed);
        }
        text = fmt::format("min {}, average {}, max {}{}",
                           interval(fmt::format("{}", intervals.least), intervals.leastSeconds),
                           interval(fmt::format("{:.1f}", average), averageSeconds),
                           interval(fmt::format("{}", intervals.most), intervals.mostSeconds),
                           isTimed ? "" : " access units");
        if (intervals.isMostAtEnd) {
            text += fmt::format("; the longest from {} to the end", intervals.mostAt);
        }
    }
    return totals.firstKey == 1 ? text : text + fmt::format("; the first is {}", totals.firstKey);
}

void addTime(Screen& screen, const StreamHead& head, const StreamTotals& totals) {
    screen.value("duration", totals.duration
                                 ? fmt::format("{}{}, {:.3f} access units a second",
                                               seconds(*totals.duration), clockTime(*totals.duration),
                                               static_cast<double>(totals.accessUnits) / *totals.duration)
                                 : whyUntimed(head, totals));
    if (!totals.duration) {
        screen.value("bitrate", "unknown without a duration");
    } else if (*totals.duration < 1) {
        screen.value("bitrate",
                     fmt::format("average {}, over less than a second", bitrate(*totals.averageBitrate)));
    } else {
        screen.value("bitrate", fmt::format("average {}, peak {} (busiest second)",
                                            bitrate(*totals.averageBitrate), bitrate(*totals.peakBitrate)));
    }
    screen.value("bytes", fmt::format("{}", totals.bytes));
    screen.value("access units", fmt::format("{}", totals.accessUnits));
    screen.value("key access units", fmt::format("{}", totals.keyAccessUnits));
    screen.value("key interval", keyIntervals(totals));
}

// --- Tables ---

using Counts = std::map<uint32_t, uint64_t>;

// The rows that are shown: the most frequent types, by number.
std::vector<uint32_t> rowsOf(const Counts& counts) {
    std::vector<uint32_t> types;
    std::transform(counts.begin(), counts.end(), std::back_inserter(types),
                   [](const auto& entry) { return entry.first; });
    if (types.size() > kMostRows) {
        std::stable_sort(types.begin(), types.end(),
                         [&](uint32_t a, uint32_t b) { return counts.at(a) > counts.at(b); });
        types.resize(kMostRows);
        std::sort(types.begin(), types.end());
    }
    return types;
}

// The types without a row, each with its count.
void addOthers(Screen& screen, const Counts& counts, const std::vector<uint32_t>& rows) {
    std::vector<std::string> others;
    for (const auto& [type, count] : counts) {
        if (!std::binary_search(rows.begin(), rows.end(), type)) {
            others.push_back(fmt::format("{} ({})", type, count));
        }
    }
    if (!others.empty()) {
        screen.part("other types", fmt::format("{}", fmt::join(others, ", ")));
    }
}

void addUnits(Screen& screen, const StreamTotals& totals) {
    screen.page()
        .add("  NAL units         {:<27}", totals.units)
        .add(Style::Faint, "{:>10}  {:>12}  {:>6}", "count", "bytes", "share")
        .endLine();
    const std::vector<uint32_t> rows = rowsOf(totals.unitsByType);
    for (const uint32_t type : rows) {
        const uint64_t bytes = countOf(totals.unitBytesByType, type);
        screen.page()
            .add("    {:>3}  {:<38}{:>10}  {:>12}  {:>5.1f}%", type, nalUnitName(totals.codec, type),
                 totals.unitsByType.at(type), bytes, percent(bytes, totals.bytes))
            .endLine();
    }
    addOthers(screen, totals.unitsByType, rows);
    if (totals.untypedUnits > 0) {
        screen.page()
            .add(Style::Bad, "      -  {:<38}{:>10}", "forbidden_zero_bit set, or empty", totals.untypedUnits)
            .endLine();
    }
}

void addMessages(Screen& screen, const StreamTotals& totals) {
    const Counts& counts = totals.messagesByType;
    const uint64_t messages =
        std::accumulate(counts.begin(), counts.end(), uint64_t{0},
                        [](uint64_t sum, const auto& entry) { return sum + entry.second; });
    screen.value("SEI messages", messages == 0 ? "none" : fmt::format("{}", messages));
    const std::vector<uint32_t> rows = rowsOf(counts);
    for (const uint32_t type : rows) {
        screen.page()
            .add("    {:>3}  {:<40}{:>8}", type, seiName(totals.codec, type), counts.at(type))
            .endLine();
    }
    addOthers(screen, counts, rows);
}

// --- What it signals ---

void addMasteringDisplay(Screen& screen, const qv::sei::MasteringDisplayColourVolume& display) {
    constexpr double kStep = 0.00002;          // of chromaticity, H.265 D.3.28
    constexpr double kLuminanceStep = 0.0001;  // cd/m2
    // Encoders send the primaries in the order green, blue, red.
    constexpr const char* kNames[] = {"G", "B", "R"};
    std::string text;
    for (size_t c = 0; c < std::size(kNames); ++c) {
        text += fmt::format("{} {:.4f} {:.4f}, ", kNames[c], display.display_primaries_x[c] * kStep,
                            display.display_primaries_y[c] * kStep);
    }
    text.resize(text.size() - 2);
    screen.part("mastering", text);
    screen.part("", fmt::format("white {:.4f} {:.4f}, {:.4f} to {:.4f} cd/m2", display.white_point_x * kStep,
                                display.white_point_y * kStep,
                                display.min_display_mastering_luminance * kLuminanceStep,
                                display.max_display_mastering_luminance * kLuminanceStep));
}

// H.265 (08/2021) D.3.35: 0 means no limit.
std::string lightLevel(const char* name, uint32_t level) {
    return level == 0 ? fmt::format("{} 0 (no bound)", name) : fmt::format("{} {} cd/m2", name, level);
}

double luminance(uint32_t code) {
    return qvPqToLuminance(qvHdrVividPq(code));
}

void addHdrVivid(Screen& screen, const HdrVividTotals& vivid) {
    if (vivid.messages == 0) {
        return;
    }
    if (vivid.read == 0) {
        screen.part("HDR Vivid",
                    fmt::format("{}, none of them readable", counted(vivid.messages, "message")));
        return;
    }
    const auto average = static_cast<uint32_t>((vivid.average_maxrgb_pq_sum + vivid.read / 2) / vivid.read);
    screen.part("HDR Vivid", fmt::format("PQ min {}, average {}, max {}", vivid.minimum_maxrgb_pq, average,
                                         vivid.maximum_maxrgb_pq));
    screen.part(
        "", fmt::format("{:.4g}, {:.4g} and {:.4g} cd/m2; {} of {} readable",
                        luminance(vivid.minimum_maxrgb_pq), luminance(average),
                        luminance(vivid.maximum_maxrgb_pq), vivid.read, counted(vivid.messages, "message")));
}

std::string transfer(uint32_t transfer_characteristics) {
    return fmt::format("{} {}", transfer_characteristics, transferName(transfer_characteristics));
}

std::string hdrClass(const StreamTotals& totals) {
    const Signals& signals = totals.signals;
    const std::string text = fmt::format("{}", fmt::join(signals.hdrClasses(), ", "));
    const bool isGuess = signals.hdrClass().base == qv::sei::HdrBase::Unknown;
    return isGuess ? text + ", as no transfer function is signalled" : text;
}

void addHdr(Screen& screen, const StreamTotals& totals) {
    const Signals& signals = totals.signals;
    screen.value("HDR", hdrClass(totals));
    if (signals.masteringDisplay) {
        addMasteringDisplay(screen, *signals.masteringDisplay);
    }
    if (signals.contentLight) {
        screen.part("light level",
                    lightLevel("MaxCLL", signals.contentLight->max_content_light_level) + ", " +
                        lightLevel("MaxFALL", signals.contentLight->max_pic_average_light_level));
    }
    addHdrVivid(screen, signals.hdrVivid);
    if (signals.hdr10PlusMessages > 0) {
        screen.part("HDR10+", counted(signals.hdr10PlusMessages, "message"));
    }
    if (signals.transfer_characteristics || signals.containerTransfer) {
        screen.part("transfer", transfer(signals.transfer_characteristics ? *signals.transfer_characteristics
                                                                          : *signals.containerTransfer));
    }
    if (signals.preferredTransfer) {
        screen.part("preferred", transfer(*signals.preferredTransfer));
    }
}

void addCompanions(Screen& screen, const StreamTotals& totals) {
    const Signals& signals = totals.signals;
    const auto presence = [](uint64_t messages, const std::string& what) {
        return messages == 0 ? std::string("none")
                             : fmt::format("{}, {}", what, counted(messages, "message"));
    };
    screen.value("captions", presence(signals.captionMessages,
                                      fmt::format("{}", fmt::join(captionTypeNames(signals), ", "))));
    screen.value("active format", presence(signals.activeFormatMessages, "signalled (AFD)"));
    screen.value("side data", totals.seiItems == 0 ? "none"
                                                   : fmt::format("{} bytes of {}", totals.sideDataBytes,
                                                                 counted(totals.seiItems, "SEI item")));
}

// --- What is wrong ---

void addErrors(Screen& screen, const StreamTotals& totals) {
    screen.value("errors", fmt::format("{}", totals.errors), totals.errors == 0 ? Style::Plain : Style::Bad);
    uint64_t shown = 0;
    for (const ErrorKind& kind : totals.errorKinds) {
        screen.value("", kind.count == 1 ? kind.first
                                         : fmt::format("{}; {} more like it", kind.first, kind.count - 1));
        shown += kind.count;
    }
    if (shown < totals.errors) {
        screen.value("", fmt::format("and {} of other kinds", totals.errors - shown));
    }
}

void addNotes(Screen& screen, const StreamTotals& totals) {
    const char* label = "notes";
    size_t shown = 0;
    for (const Finding& note : totals.notes) {
        if (shown == kMostNotes) {
            break;
        }
        const std::string place = note.offset ? fmt::format(" (at {})", *note.offset) : std::string();
        screen.value(std::exchange(label, ""), note.text + place);
        ++shown;
    }
    if (shown < totals.noteCount) {
        screen.value("", fmt::format("and {} more; --level samples shows all", totals.noteCount - shown));
    }
}

void addChecks(Screen& screen, const std::vector<CheckResult>& checks) {
    if (!checks.empty()) {
        screen.empty();
    }
    for (const CheckResult& check : checks) {
        screen.page()
            .add(check.isMet ? Style::Good : Style::Bad, "{}", check.isMet ? "[OK]" : "[FAIL]")
            .add(" {}: {}", check.rule, check.evidence)
            .endLine();
    }
}

}  // namespace

void addSummary(Page& page, const StreamHead& head, const StreamEnd& end) {
    Screen screen(page);
    if (end.isInterrupted) {
        page.add(Style::Bad, "  interrupted: this is what was read so far").endLine();
    }
    addStream(screen, head, end.totals);
    addTime(screen, head, end.totals);
    screen.empty();
    addUnits(screen, end.totals);
    addMessages(screen, end.totals);
    screen.empty();
    addHdr(screen, end.totals);
    addCompanions(screen, end.totals);
    addErrors(screen, end.totals);
    addNotes(screen, end.totals);
    addChecks(screen, end.checks);
}

}  // namespace qvinspect
