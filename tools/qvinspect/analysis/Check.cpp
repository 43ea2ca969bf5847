#include "analysis/Check.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <stdexcept>

#include "analysis/NalUnitNames.h"
#include "analysis/SeiNames.h"

namespace qvinspect {

namespace {

std::optional<uint64_t> wholeNumber(const std::string& text) {
    uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional<uint64_t>(number)
                                                                    : std::nullopt;
}

// "2s", "0.5s".
std::optional<double> secondsOf(const std::string& text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end + 1 == text.data() + text.size() && *end == 's' &&
                   std::isfinite(number) && number >= 0
               ? std::optional<double>(number)
               : std::nullopt;
}

const char* plural(uint64_t count) {
    return count == 1 ? "" : "s";
}

[[noreturn]] void refuse(const std::string& text, const std::string& advice) {
    throw std::invalid_argument(fmt::format("--check {}: {}", text, advice));
}

std::string howToWrite(const CheckRule& rule) {
    return fmt::format("write {}={}", rule.name, rule.value);
}

CheckResult keyInterval(const Check& check, const StreamTotals& totals) {
    const KeyIntervals& keys = totals.keyIntervals;
    if (totals.keyAccessUnits == 0) {
        return {check.text, false, "no key access unit"};
    }
    if (const auto most = wholeNumber(check.value)) {
        return {
            check.text, keys.most <= *most,
            fmt::format("the longest takes {} access units, from access unit {} on", keys.most, keys.mostAt)};
    }
    if (!keys.mostSeconds) {
        return {check.text, false,
                "the stream has no times; give --frame-rate, or the interval in access units"};
    }
    return {check.text, *keys.mostSeconds <= *secondsOf(check.value),
            fmt::format("the longest lasts {:.3f} s, from access unit {} on", *keys.mostSeconds,
                        keys.mostSecondsAt)};
}

CheckResult unitSize(const Check& check, const StreamTotals& totals) {
    const LargestUnit& largest = totals.largestUnit;
    return {check.text, largest.bytes <= *wholeNumber(check.value),
            fmt::format("the largest NAL unit has {} bytes, in access unit {} at {}", largest.bytes,
                        largest.accessUnit, largest.offset)};
}

CheckResult accessUnitSize(const Check& check, const StreamTotals& totals) {
    return {check.text, totals.largestAccessUnit <= *wholeNumber(check.value),
            fmt::format("the largest access unit has {} bytes, number {}", totals.largestAccessUnit,
                        totals.largestAccessUnitAt)};
}

CheckResult parameterSets(const Check& check, const StreamTotals& totals) {
    if (totals.keyAccessUnits == 0) {
        return {check.text, false, "no key access unit"};
    }
    if (totals.keyWithoutParameterSets != 0) {
        return {check.text, false,
                fmt::format("access unit {}, the first key access unit, lacks parameter sets",
                            totals.keyWithoutParameterSets)};
    }
    return {check.text, true,
            totals.hasConfiguration ? "they are in the container or before the first key picture"
                                    : "they are before the first key picture"};
}

CheckResult hdr10(const Check& check, const StreamTotals& totals) {
    const Signals& signals = totals.signals;
    const qv::sei::HdrClass hdr = signals.hdrClass();
    const char* const transfer =
        hdr.transferSource ? transferName(hdr.transfer_characteristics) : "not signalled";
    return {check.text, hdr.base == qv::sei::HdrBase::Hdr10,
            fmt::format("transfer: {}, mastering display: {}, content light level: {}", transfer,
                        signals.masteringDisplay ? "yes" : "no", signals.contentLight ? "yes" : "no")};
}

CheckResult presence(const Check& check, uint64_t messages) {
    return {check.text, messages > 0,
            messages == 0 ? "no messages" : fmt::format("{} message{}", messages, plural(messages))};
}

CheckResult noErrors(const Check& check, const StreamTotals& totals) {
    return {check.text, totals.errors == 0,
            totals.errors == 0 ? "no errors"
                               : fmt::format("{} error{}; the first: {}", totals.errors,
                                             plural(totals.errors), totals.firstError)};
}

CheckResult codec(const Check& check, const StreamTotals& totals) {
    return {check.text, (check.value == "h264") == (totals.codec == QVCodecIDAvc), codecName(totals.codec)};
}

}  // namespace

const std::vector<CheckRule>& checkRules() {
    static const std::vector<CheckRule> rules = {
        {"max-key-interval", "N[s]", "most access units, or seconds, between key pictures"},
        {"max-unit-size", "BYTES", "no NAL unit is larger"},
        {"max-access-unit-size", "BYTES", "no access unit is larger"},
        {"parameter-sets-first", "", "no key picture precedes its parameter sets"},
        {"hdr10", "", "mastering display or content light level, not HLG"},
        {"hdr-vivid", "", "HDR Vivid metadata is present"},
        {"captions", "", "A/53 captions are present"},
        {"no-errors", "", "nothing in the stream is broken"},
        {"codec", "h264|h265", "the video has this codec"},
    };
    return rules;
}

Check parseCheck(const std::string& text) {
    const size_t equals = text.find('=');
    Check check{text, text.substr(0, equals), equals == std::string::npos ? "" : text.substr(equals + 1)};
    const auto& rules = checkRules();
    const auto rule = std::find_if(rules.begin(), rules.end(),
                                   [&](const CheckRule& known) { return check.rule == known.name; });
    if (rule == rules.end()) {
        refuse(text, "no such rule; --list-checks shows all of them");
    }
    const bool wantsValue = *rule->value != '\0';
    if (wantsValue != !check.value.empty() || (!wantsValue && equals != std::string::npos)) {
        refuse(text, wantsValue ? howToWrite(*rule) : fmt::format("{} takes no value", rule->name));
    }
    const bool isRight =
        !wantsValue ||
        (check.rule == "codec"              ? check.value == "h264" || check.value == "h265"
         : check.rule == "max-key-interval" ? wholeNumber(check.value) || secondsOf(check.value)
                                            : wholeNumber(check.value).has_value());
    if (!isRight) {
        refuse(text, howToWrite(*rule));
    }
    return check;
}

CheckResult evaluate(const Check& check, const StreamTotals& totals) {
    if (check.rule == "max-key-interval") {
        return keyInterval(check, totals);
    }
    if (check.rule == "max-unit-size") {
        return unitSize(check, totals);
    }
    if (check.rule == "max-access-unit-size") {
        return accessUnitSize(check, totals);
    }
    if (check.rule == "parameter-sets-first") {
        return parameterSets(check, totals);
    }
    if (check.rule == "hdr10") {
        return hdr10(check, totals);
    }
    if (check.rule == "hdr-vivid") {
        return presence(check, totals.signals.hdrVivid.messages);
    }
    if (check.rule == "captions") {
        return presence(check, totals.signals.captionMessages);
    }
    if (check.rule == "no-errors") {
        return noErrors(check, totals);
    }
    return codec(check, totals);
}

}  // namespace qvinspect
