// Totals of streams, at the limits.
#include "analysis/StreamTotals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>

#include <cmath>
#include <limits>

#include "AccessUnits.h"
#include "InspectSupport.h"

namespace qv_test {
namespace {

using qvinspect::Finding;
using qvinspect::Severity;
using qvinspect::StreamTotals;
using qvinspect::UnitState;
using ::testing::ElementsAre;
using ::testing::Pair;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

class Summed {
public:
    explicit Summed(QVCodecID codec = QVCodecIDAvc) : counter_(infoOf(codec)) {}

    Summed& add(const MadeAccessUnit& accessUnit) {
        counter_.add(accessUnit.view(++number_));
        return *this;
    }
    Summed& configure(const qvinspect::ConfigurationDetails& configuration) {
        counter_.addConfiguration(configuration);
        return *this;
    }
    const StreamTotals& end(const std::vector<Finding>& findings = {}) {
        counter_.finish(findings);
        return counter_.totals();
    }

private:
    static qvinspect::StreamInfo infoOf(QVCodecID codec) {
        qvinspect::StreamInfo info;
        info.parameters.codecId = codec;
        return info;
    }

    qvinspect::StreamCounter counter_;
    uint64_t number_ = 0;
};

MadeAccessUnit picture() {
    return MadeAccessUnit().unit(1);
}

MadeAccessUnit keyPicture() {
    return MadeAccessUnit().unit(5).key();
}

// --- Key access units ---

// One letter for each access unit: K for a key, p for any other. With times, each lasts half a second.
StreamTotals keysOf(const std::string& pattern, bool isTimed = false) {
    Summed stream;
    double time = 0;
    for (const char c : pattern) {
        MadeAccessUnit unit = c == 'K' ? keyPicture() : picture();
        if (isTimed) {
            unit.at(time).lasting(0.5);
            time += 0.5;
        }
        stream.add(unit);
    }
    return stream.end();
}

struct KeyCase {
    const char* pattern;
    uint64_t keys;
    uint64_t first;
    uint64_t count;
    uint64_t least;
    uint64_t sum;
    uint64_t most;
    uint64_t mostAt;
    bool isMostAtEnd;
};

TEST(StreamTotals, keyIntervals) {
    const KeyCase cases[] = {
        {"", 0, 0, 0, 0, 0, 0, 0, false},        {"p", 0, 0, 0, 0, 0, 0, 0, false},
        {"K", 1, 1, 0, 0, 0, 1, 1, true},        {"Kppp", 1, 1, 0, 0, 0, 4, 1, true},
        {"KK", 2, 1, 1, 1, 1, 1, 1, false},      {"ppKpK", 2, 3, 1, 2, 2, 2, 1, false},
        {"KppKpKp", 3, 1, 2, 2, 5, 3, 1, false}, {"KpKppKpppp", 3, 1, 2, 2, 5, 5, 6, true},
        {"KppKpp", 2, 1, 1, 3, 3, 3, 1, false},
    };
    for (const KeyCase& expected : cases) {
        SCOPED_TRACE(expected.pattern);
        const StreamTotals totals = keysOf(expected.pattern);
        EXPECT_EQ(totals.keyAccessUnits, expected.keys);
        EXPECT_EQ(totals.firstKey, expected.first);
        EXPECT_EQ(totals.keyIntervals.count, expected.count);
        EXPECT_EQ(totals.keyIntervals.least, expected.least);
        EXPECT_EQ(totals.keyIntervals.sum, expected.sum);
        EXPECT_EQ(totals.keyIntervals.most, expected.most);
        EXPECT_EQ(totals.keyIntervals.mostAt, expected.mostAt);
        EXPECT_EQ(totals.keyIntervals.isMostAtEnd, expected.isMostAtEnd);
        EXPECT_EQ(totals.keyIntervals.leastSeconds, std::nullopt);
        EXPECT_EQ(totals.keyIntervals.mostSeconds, std::nullopt);
    }
}

TEST(StreamTotals, keyIntervalsInSeconds) {
    const StreamTotals totals = keysOf("KpKppKpppp", true);
    EXPECT_EQ(totals.keyIntervals.leastSeconds, 1.0);
    EXPECT_EQ(totals.keyIntervals.sumSeconds, 2.5);
    EXPECT_EQ(totals.keyIntervals.timed, 2U);
    EXPECT_EQ(totals.keyIntervals.mostSeconds, 2.5);  // from the last key to the end
}

TEST(StreamTotals, aKeyWithoutATimeLeavesTheOthersTheirs) {
    Summed stream;
    stream.add(keyPicture().at(0)).add(keyPicture()).add(keyPicture().at(2)).add(keyPicture().at(3));
    const StreamTotals& totals = stream.end();
    EXPECT_EQ(totals.keyIntervals.count, 3U);
    EXPECT_EQ(totals.keyIntervals.timed, 1U);
    EXPECT_EQ(totals.keyIntervals.leastSeconds, 1.0);
    EXPECT_EQ(totals.keyIntervals.mostSeconds, 1.0);
}

// --- Times ---

TEST(StreamTotals, durationIsFromTheFirstPictureShownToTheEndOfTheLast) {
    Summed stream;
    for (const double time : {1.0, 2.5, 1.5, 2.0}) {  // in decoding order
        stream.add(picture().at(time).lasting(0.5).bytesInAll(1000));
    }
    const StreamTotals& totals = stream.end();
    EXPECT_EQ(totals.duration, 2.0);
    EXPECT_EQ(totals.averageBitrate, 16000.0);
    EXPECT_EQ(totals.untimedAccessUnits, 0U);
}

struct UnknownTime {
    const char* what;
    std::vector<MadeAccessUnit> accessUnits;
    uint64_t untimed;
};

TEST(StreamTotals, unknownDurations) {
    const UnknownTime cases[] = {
        {"no access unit", {}, 0},
        {"no times", {picture(), picture()}, 2},
        {"one without a time", {picture().at(0), picture(), picture().at(2)}, 1},
        {"a first one without a time", {picture(), picture().at(1), picture().at(2)}, 1},
        {"a time that is no number", {picture().at(0), picture().at(kNaN).lasting(1)}, 1},
        {"an infinite time", {picture().at(0), picture().at(kInfinity)}, 1},
        {"a single time", {picture().at(1)}, 0},
        {"constant times", {picture().at(1), picture().at(1)}, 0},
        {"a negative duration", {picture().at(1).lasting(-5)}, 0},
        {"a duration that is no number", {picture().at(1).lasting(kNaN)}, 0},
        {"times further apart than numbers go", {picture().at(-1.7e308), picture().at(1.7e308)}, 0},
    };
    for (const UnknownTime& unknown : cases) {
        SCOPED_TRACE(unknown.what);
        Summed stream;
        for (const MadeAccessUnit& unit : unknown.accessUnits) {
            stream.add(unit);
        }
        const StreamTotals& totals = stream.end();
        EXPECT_EQ(totals.duration, std::nullopt);
        EXPECT_EQ(totals.averageBitrate, std::nullopt);
        EXPECT_EQ(totals.peakBitrate, std::nullopt);
        EXPECT_EQ(totals.untimedAccessUnits, unknown.untimed);
    }
}

TEST(StreamTotals, hugeTimes) {
    Summed stream;
    stream.add(picture().at(-1e300).bytesInAll(100)).add(picture().at(1e300).bytesInAll(100));
    const StreamTotals& totals = stream.end();
    EXPECT_EQ(totals.duration, 2e300);
    EXPECT_EQ(totals.peakBitrate, 800.0);  // they are not within a second
}

// --- The busiest second ---

struct Load {
    double decodeTime;
    size_t bytes;
};

// The given loads within ten seconds, with an empty access unit at each end.
std::optional<double> peakOf(const std::vector<Load>& loads) {
    Summed stream;
    stream.add(picture().at(0).bytesInAll(0));
    for (const Load& load : loads) {
        stream.add(picture().at(load.decodeTime).bytesInAll(load.bytes));
    }
    MadeAccessUnit last = picture().at(10).bytesInAll(0);
    last.accessUnit.decodeTime = kNaN;  // then the presentation time is used
    stream.add(last);
    return stream.end().peakBitrate;
}

TEST(StreamTotals, peakBitrate) {
    EXPECT_EQ(peakOf({{5, 1000}}), 8000.0);
    // A burst at any position relative to whole seconds.
    EXPECT_EQ(peakOf({{1.9, 1000}, {2.0, 1000}, {2.1, 1000}, {5, 1000}}), 24000.0);
    // The window is a second wide, its end excluded.
    EXPECT_EQ(peakOf({{2.0, 1000}, {2.999, 1000}}), 16000.0);
    EXPECT_EQ(peakOf({{2.0, 1000}, {3.0, 1000}}), 8000.0);
    // Equal times.
    EXPECT_EQ(peakOf({{2, 1000}, {2, 1000}, {2, 1000}}), 24000.0);
    // A time that goes backwards counts as the one before it.
    EXPECT_EQ(peakOf({{5, 1000}, {1, 1000}, {5.5, 1000}}), 24000.0);
    EXPECT_EQ(peakOf({{5, 1000}, {1, 1000}, {6, 1000}}), 16000.0);
}

TEST(StreamTotals, aStreamShorterThanASecondHasItsAverageForAPeak) {
    Summed stream;
    stream.add(picture().at(0).lasting(0.25).bytesInAll(1000)).add(picture().at(0.25).lasting(0.25));
    const StreamTotals& totals = stream.end();
    EXPECT_EQ(totals.peakBitrate, totals.averageBitrate);
}

// --- Units ---

TEST(StreamTotals, units) {
    Summed stream;
    stream.add(MadeAccessUnit().unit(7, 10).unit(8, 4).unit(5, 100).key());
    stream.add(MadeAccessUnit().unit(1, 20).unit(1, 30).brokenUnit(UnitState::ForbiddenBit));
    stream.add(MadeAccessUnit().brokenUnit(UnitState::Empty));
    const StreamTotals& totals = stream.end();
    EXPECT_EQ(totals.units, 7U);
    EXPECT_EQ(totals.untypedUnits, 2U);
    EXPECT_THAT(totals.unitsByType, ElementsAre(Pair(1, 2), Pair(5, 1), Pair(7, 1), Pair(8, 1)));
    EXPECT_THAT(totals.unitBytesByType, ElementsAre(Pair(1, 50), Pair(5, 100), Pair(7, 10), Pair(8, 4)));
    EXPECT_EQ(totals.bytes, 10 + 4 + 100 + 20 + 30 + 3 + 7 * 3U);
    EXPECT_EQ(totals.largestUnit.bytes, 100U);
    EXPECT_EQ(totals.largestUnit.accessUnit, 1U);
    EXPECT_EQ(totals.largestUnit.offset, 3 + 10 + 3 + 4 + 3U);
    EXPECT_EQ(totals.largestAccessUnit, 10 + 4 + 100 + 9U);
    EXPECT_EQ(totals.largestAccessUnitAt, 1U);
}

// --- Parameter sets before the first key picture ---

TEST(StreamTotals, parameterSetsOfH264) {
    const auto missingAt = [](const MadeAccessUnit& first, const MadeAccessUnit& second) {
        Summed stream;
        return stream.add(first).add(second).end().keyWithoutParameterSets;
    };
    const MadeAccessUnit key = keyPicture();
    EXPECT_EQ(missingAt(MadeAccessUnit().unit(7).unit(8).unit(5).key(), key), 0U);
    EXPECT_EQ(missingAt(MadeAccessUnit().unit(7).unit(8).unit(1), key), 0U);  // before another picture
    EXPECT_EQ(missingAt(picture(), key), 2U);
    EXPECT_EQ(missingAt(MadeAccessUnit().unit(7).unit(5).key(), key), 1U);
    EXPECT_EQ(missingAt(MadeAccessUnit().unit(8).unit(5).key(), key), 1U);
    EXPECT_EQ(missingAt(MadeAccessUnit().unit(5).unit(7).unit(8).key(), key), 1U);  // too late
    // Only the first key picture counts.
    EXPECT_EQ(missingAt(MadeAccessUnit().unit(7).unit(8).unit(5).key(), key), 0U);
    EXPECT_EQ(missingAt(picture(), picture()), 0U);
}

TEST(StreamTotals, parameterSetsOfH265) {
    const auto missingAt = [](const MadeAccessUnit& first) {
        Summed stream(QVCodecIDHevc);
        return stream.add(first).end().keyWithoutParameterSets;
    };
    EXPECT_EQ(missingAt(MadeAccessUnit().unit(32).unit(33).unit(34).unit(19).key()), 0U);
    EXPECT_EQ(missingAt(MadeAccessUnit().unit(33).unit(34).unit(19).key()), 1U);
    EXPECT_EQ(missingAt(MadeAccessUnit().unit(7).unit(8).unit(19).key()), 1U);
}

TEST(StreamTotals, parameterSetsOfTheContainer) {
    qvinspect::ConfigurationDetails configuration;
    configuration.unitTypes = {7, 8};
    Summed stream;
    const StreamTotals& totals = stream.configure(configuration).add(keyPicture()).end();
    EXPECT_EQ(totals.keyWithoutParameterSets, 0U);
    EXPECT_TRUE(totals.hasConfiguration);
}

TEST(StreamTotals, aRefusedParameterSetOfTheContainerIsAnError) {
    qvinspect::ConfigurationDetails configuration;
    configuration.unitTypes = {7};
    configuration.parameterSets.resize(1);
    Summed stream;
    const StreamTotals& totals = stream.configure(configuration).end();
    EXPECT_EQ(totals.refusedSps, 1U);
    EXPECT_EQ(totals.errors, 1U);
    EXPECT_EQ(totals.firstError, "the library refuses a parameter set of the configuration record");
    EXPECT_FALSE(totals.sps);
}

// --- Errors and notes ---

TEST(StreamTotals, theFirstErrorIsReportedWithItsPlace) {
    Summed stream;
    stream.add(picture().finding(Severity::Note, 0, "only a note"));
    stream.add(MadeAccessUnit().brokenUnit(UnitState::ForbiddenBit).brokenUnit(UnitState::Empty));
    const StreamTotals& totals = stream.end({{Severity::Error, std::nullopt, "reading failed"}});
    EXPECT_EQ(totals.errors, 3U);
    EXPECT_EQ(totals.firstError, "access unit 2: forbidden_zero_bit is set (at 3)");
    EXPECT_EQ(totals.noteCount, 1U);
}

TEST(StreamTotals, anErrorAfterTheStreamHasNoAccessUnit) {
    Summed stream;
    EXPECT_EQ(stream.end({{Severity::Error, 99, "reading failed"}}).firstError, "reading failed (at 99)");
}

std::vector<std::pair<std::string, uint64_t>> kindsOf(const StreamTotals& totals) {
    std::vector<std::pair<std::string, uint64_t>> kinds;
    for (const auto& kind : totals.errorKinds) {
        kinds.emplace_back(kind.first, kind.count);
    }
    return kinds;
}

TEST(StreamTotals, errorsThatDifferInNumbersAreOfOneKind) {
    Summed stream;
    stream.add(picture().finding(Severity::Error, 0, "3 bytes are left"));
    stream.add(picture().finding(Severity::Error, 0, "17 bytes are left"));
    stream.add(picture().finding(Severity::Error, 7, "other"));
    EXPECT_THAT(kindsOf(stream.end()), ElementsAre(Pair("access unit 1: 3 bytes are left (at 0)", 2),
                                                   Pair("access unit 3: other (at 7)", 1)));
}

TEST(StreamTotals, whatIsKeptOfErrorsAndNotesIsBounded) {
    Summed stream;
    for (char c = 'a'; c <= 'z'; ++c) {
        stream.add(picture()
                       .finding(Severity::Error, std::nullopt, std::string(1, c))
                       .finding(Severity::Note, std::nullopt, std::string(1, c)));
    }
    const StreamTotals& totals = stream.end();
    EXPECT_EQ(totals.errors, 26U);
    EXPECT_EQ(totals.errorKinds.size(), 8U);
    EXPECT_EQ(totals.noteCount, 26U);
    EXPECT_EQ(totals.notes.size(), 16U);
}

TEST(StreamTotals, theEndOfTheWalkIsNoErrorOfTheStream) {
    MadeAccessUnit unit = MadeAccessUnit().seiUnit(6, {});
    qvinspect::SeiUnit sei = *unit.details.units[0].sei;
    sei.result = 5;
    unit.details.units[0].sei = std::make_shared<const qvinspect::SeiUnit>(sei);
    Summed stream;
    EXPECT_EQ(stream.add(unit).end().errors, 0U);
}

// --- Signals ---

using Messages = std::vector<std::pair<uint32_t, Bytes>>;

StreamTotals totalsOf(const Messages& messages) {
    Summed stream(QVCodecIDHevc);
    return stream.add(MadeAccessUnit().seiUnit(39, messages)).end();
}

TEST(StreamTotals, hdrClasses) {
    const Bytes light = hex("03 E8 01 90");
    const Bytes display = hex("33 C2 86 C4 1D 4C 0B B8 84 D0 3E 80 3D 13 40 42 00 98 96 80 00 00 00 32");
    const Bytes vivid = hex("26 00 04 00 05 01 00 00 00 00 00 00 00");
    const std::pair<Messages, std::vector<std::string>> cases[] = {
        {{}, {"SDR"}},
        // Metadata alone does not say which transfer function it is for.
        {{{144, light}}, {"unknown"}},
        {{{137, display}}, {"unknown"}},
        {{{147, hex("10")}}, {"PQ"}},
        {{{147, hex("10")}, {144, light}}, {"PQ"}},
        {{{147, hex("10")}, {137, display}}, {"HDR10"}},
        {{{147, hex("10")}, {137, display}, {4, vivid}}, {"HDR10", "HDR Vivid"}},
        {{{147, hex("12")}}, {"HLG"}},
        {{{147, hex("01")}}, {"SDR"}},
        // HLG with the values of a mastering display is HLG only.
        {{{144, light}, {147, hex("12")}}, {"HLG"}},
        {{{137, display}, {144, light}, {147, hex("12")}}, {"HLG"}},
    };
    for (const auto& [messages, classes] : cases) {
        EXPECT_EQ(totalsOf(messages).signals.hdrClasses(), classes);
    }
}

// cc_data() with one construct, A/53 Part 4 6.2.3.1.
TEST(StreamTotals, captionsAreConstructsThatAreValid) {
    const std::tuple<const char*, uint64_t, std::vector<std::string>> cases[] = {
        {"B5 00 31 47 41 39 34 03 C1 FF FC 94 2C FF", 1, {"CEA-608 field 1"}},
        {"B5 00 31 47 41 39 34 03 C1 FF FD 94 2C FF", 1, {"CEA-608 field 2"}},
        {"B5 00 31 47 41 39 34 03 C1 FF FF 94 2C FF", 1, {"CEA-708"}},
        {"B5 00 31 47 41 39 34 03 C1 FF F8 94 2C FF", 0, {}},  // cc_valid 0
        {"B5 00 31 47 41 39 34 03 81 FF FC 94 2C FF", 0, {}},  // process_cc_data_flag 0
        {"B5 00 31 47 41 39 34 03 C0 FF FF", 0, {}},           // cc_count 0
        {"B5 00 31 47 41 39 34 06 30 C0 01 C0 02", 0, {}},     // bar data
    };
    for (const auto& [payload, messages, types] : cases) {
        const qvinspect::Signals signals = totalsOf({{4, hex(payload)}}).signals;
        EXPECT_EQ(signals.captionMessages, messages) << payload;
        EXPECT_EQ(captionTypeNames(signals), types) << payload;
    }
}

TEST(StreamTotals, theFirstLightLevelsAndTheLastPreferredTransferCount) {
    const StreamTotals totals =
        totalsOf({{144, hex("03 E8 01 90")}, {144, hex("00 01 00 02")}, {147, hex("10")}, {147, hex("12")}});
    EXPECT_EQ(totals.signals.contentLight->max_content_light_level, 1000);
    EXPECT_EQ(totals.signals.preferredTransfer, 18U);
    EXPECT_THAT(totals.messagesByType, ElementsAre(Pair(144, 2), Pair(147, 2)));
}

TEST(StreamTotals, hdrVividThatCannotBeReadIsCountedAllTheSame) {
    const StreamTotals totals = totalsOf({{4, hex("26 00 04 00 05 01 00")}});
    EXPECT_EQ(totals.signals.hdrVivid.messages, 1U);
    EXPECT_EQ(totals.signals.hdrVivid.read, 0U);
    EXPECT_EQ(totals.signals.hdrClasses(), std::vector<std::string>{"unknown"});
}

}  // namespace
}  // namespace qv_test
