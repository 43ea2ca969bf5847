#include "analysis/Check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "analysis/AccessUnitView.h"

namespace qv_test {
namespace {

using namespace qvinspect;
using ::testing::HasSubstr;

struct Case {
    const char* check;
    std::function<void(StreamTotals&)> make;
    bool isMet;
    const char* evidence;
};

// A stream of 10 access units in which nothing is wrong.
StreamTotals soundTotals() {
    StreamTotals totals;
    totals.codec = QVCodecIDHevc;
    totals.accessUnits = 10;
    totals.keyAccessUnits = 2;
    totals.keyIntervals.most = 6;
    totals.keyIntervals.mostAt = 5;
    totals.keyIntervals.mostSeconds = 0.24;
    totals.keyIntervals.mostSecondsAt = 1;
    totals.largestUnit = {1000, 5, 4096};
    totals.largestAccessUnit = 1200;
    totals.largestAccessUnitAt = 7;
    return totals;
}

const auto kAsItIs = [](StreamTotals&) {};
const auto kNoKey = [](StreamTotals& totals) { totals.keyAccessUnits = 0; };

TEST(Check, everyRuleBothWays) {
    const std::vector<Case> cases = {
        {"max-key-interval=6", kAsItIs, true, "the longest takes 6 access units, from access unit 5 on"},
        {"max-key-interval=5", kAsItIs, false, "the longest takes 6 access units, from access unit 5 on"},
        {"max-key-interval=100", kNoKey, false, "no key access unit"},
        {"max-key-interval=0.24s", kAsItIs, true, "the longest lasts 0.240 s, from access unit 1 on"},
        {"max-key-interval=0.2s", kAsItIs, false, "the longest lasts 0.240 s, from access unit 1 on"},
        {"max-key-interval=2s", [](StreamTotals& totals) { totals.keyIntervals.mostSeconds.reset(); }, false,
         "the stream has no times; give --frame-rate, or the interval in access units"},
        {"max-unit-size=1000", kAsItIs, true,
         "the largest NAL unit has 1000 bytes, in access unit 5 at 4096"},
        {"max-unit-size=999", kAsItIs, false,
         "the largest NAL unit has 1000 bytes, in access unit 5 at 4096"},
        {"max-access-unit-size=1200", kAsItIs, true, "the largest access unit has 1200 bytes, number 7"},
        {"max-access-unit-size=1199", kAsItIs, false, "the largest access unit has 1200 bytes, number 7"},
        {"parameter-sets-first", kAsItIs, true, "they are before the first key picture"},
        {"parameter-sets-first", [](StreamTotals& totals) { totals.hasConfiguration = true; }, true,
         "they are in the container or before the first key picture"},
        {"parameter-sets-first", [](StreamTotals& totals) { totals.keyWithoutParameterSets = 3; }, false,
         "access unit 3, the first key access unit, lacks parameter sets"},
        {"parameter-sets-first", kNoKey, false, "no key access unit"},
        {"hdr10", kAsItIs, false, "transfer: not signalled, mastering display: no, content light level: no"},
        {"hdr10",
         [](StreamTotals& totals) {
             totals.signals.masteringDisplay.emplace();
             totals.signals.transfer_characteristics = 16;
         },
         true, "transfer: SMPTE ST 2084 (PQ), mastering display: yes, content light level: no"},
        {"hdr10",
         [](StreamTotals& totals) {
             totals.signals.contentLight.emplace();
             totals.signals.containerTransfer = 16;
         },
         false, "transfer: SMPTE ST 2084 (PQ), mastering display: no, content light level: yes"},
        {"hdr10",
         [](StreamTotals& totals) {
             totals.signals.masteringDisplay.emplace();
             totals.signals.transfer_characteristics = 18;
         },
         false, "transfer: ARIB STD-B67 (HLG), mastering display: yes, content light level: no"},
        {"hdr-vivid", kAsItIs, false, "no messages"},
        {"hdr-vivid", [](StreamTotals& totals) { totals.signals.hdrVivid.messages = 1; }, true, "1 message"},
        {"captions", kAsItIs, false, "no messages"},
        {"captions", [](StreamTotals& totals) { totals.signals.captionMessages = 10; }, true, "10 messages"},
        {"no-errors", kAsItIs, true, "no errors"},
        {"no-errors",
         [](StreamTotals& totals) {
             totals.errors = 1;
             totals.firstError = "access unit 2: empty unit (at 9)";
         },
         false, "1 error; the first: access unit 2: empty unit (at 9)"},
        {"no-errors",
         [](StreamTotals& totals) {
             totals.errors = 2;
             totals.firstError = "x";
         },
         false, "2 errors; the first: x"},
        {"codec=h265", kAsItIs, true, "H.265"},
        {"codec=h264", kAsItIs, false, "H.265"},
        {"codec=h264", [](StreamTotals& totals) { totals.codec = QVCodecIDAvc; }, true, "H.264"},
    };
    for (const Case& each : cases) {
        StreamTotals totals = soundTotals();
        each.make(totals);
        const CheckResult result = evaluate(parseCheck(each.check), totals);
        EXPECT_EQ(result.rule, each.check);
        EXPECT_EQ(result.isMet, each.isMet) << each.check;
        EXPECT_EQ(result.evidence, each.evidence);
    }
    for (const CheckRule& rule : checkRules()) {
        for (const bool isMet : {true, false}) {
            EXPECT_TRUE(std::any_of(cases.begin(), cases.end(), [&](const Case& each) {
                return each.isMet == isMet && parseCheck(each.check).rule == rule.name;
            })) << rule.name;
        }
    }
}

TEST(Check, wrongRules) {
    const std::vector<std::pair<const char*, const char*>> cases = {
        {"", "no such rule; --list-checks shows all of them"},
        {"no-error", "no such rule; --list-checks shows all of them"},
        {"no-errors=", "no-errors takes no value"},
        {"no-errors=1", "no-errors takes no value"},
        {"max-unit-size", "write max-unit-size=BYTES"},
        {"max-unit-size=", "write max-unit-size=BYTES"},
        {"max-unit-size=1k", "write max-unit-size=BYTES"},
        {"max-unit-size=-1", "write max-unit-size=BYTES"},
        {"max-unit-size=99999999999999999999", "write max-unit-size=BYTES"},
        {"max-key-interval=2m", "write max-key-interval=N[s]"},
        {"max-key-interval=s", "write max-key-interval=N[s]"},
        {"max-key-interval=-1s", "write max-key-interval=N[s]"},
        {"max-key-interval=infs", "write max-key-interval=N[s]"},
        {"max-key-interval=nans", "write max-key-interval=N[s]"},
        {"codec=vp9", "write codec=h264|h265"},
    };
    for (const auto& [text, advice] : cases) {
        try {
            parseCheck(text);
            ADD_FAILURE() << text;
        } catch (const std::invalid_argument& error) {
            EXPECT_EQ(error.what(), "--check " + std::string(text) + ": " + advice);
        }
    }
}

// --- The totals that the checks use ---

StreamTotals totalsOf(const std::vector<bool>& keys, std::optional<double> frameDuration) {
    StreamCounter counter{StreamInfo{}};
    for (size_t i = 0; i < keys.size(); ++i) {
        const AccessUnit accessUnit;
        AccessUnitReport report;
        report.isKey = keys[i];
        const AccessUnitDetails details;
        AccessUnitView view = viewOf(i + 1, accessUnit, report, details);
        if (frameDuration) {
            view.time = static_cast<double>(i) * *frameDuration;
            view.duration = frameDuration;
        }
        counter.add(view);
    }
    counter.finish({});
    return counter.totals();
}

struct KeyCase {
    std::vector<bool> keys;
    uint64_t most;
    uint64_t mostAt;
};

TEST(Check, longestKeyInterval) {
    const std::vector<KeyCase> cases = {
        {{true, false, false, true, false}, 3, 1},
        {{true, true, false, false}, 3, 2},        // up to the end of the stream
        {{false, false, true, false}, 2, 1},       // before the first one
        {{true, false, true, false, true}, 2, 1},  // the first of the longest
        {{true}, 1, 1},
    };
    for (const KeyCase& each : cases) {
        const KeyIntervals untimed = totalsOf(each.keys, std::nullopt).keyIntervals;
        EXPECT_EQ(untimed.most, each.most);
        EXPECT_EQ(untimed.mostAt, each.mostAt);
        EXPECT_EQ(untimed.mostSeconds, std::nullopt);
        const KeyIntervals timed = totalsOf(each.keys, 0.5).keyIntervals;
        EXPECT_EQ(timed.mostSeconds, 0.5 * static_cast<double>(each.most));
        EXPECT_EQ(timed.mostSecondsAt, each.mostAt);
    }
}

}  // namespace
}  // namespace qv_test
