// The times of a raw stream.
#include "analysis/Clock.h"

#include <gtest/gtest.h>

#include <limits>

#include "AccessUnits.h"

namespace qv_test {
namespace {

using qvinspect::Clock;

// A frame takes two ticks.
qvinspect::SequenceParameterSet spsOf(uint32_t num_units_in_tick, uint32_t time_scale) {
    qvinspect::SequenceParameterSet sps{};
    sps.codec = QVCodecIDAvc;
    sps.isAccepted = true;
    sps.video.emplace();
    sps.video->pictureRate = qv::ratioOf(time_scale, 2 * uint64_t{num_units_in_tick});
    return sps;
}

struct Times {
    std::optional<double> time;
    std::optional<double> decodeTime;
    std::optional<double> duration;
};

Times apply(Clock& clock, const MadeAccessUnit& made) {
    qvinspect::AccessUnitView view = made.view(1);
    clock.apply(view);
    return {view.time, view.decodeTime, view.duration};
}

MadeAccessUnit picture(const qvinspect::SequenceParameterSet* sps, bool isField = false) {
    MadeAccessUnit made;
    made.unit(1);
    made.details.sps = sps;
    made.accessUnit.isField = isField;
    return made;
}

void expectTimes(const Times& times, double time, double duration) {
    EXPECT_EQ(times.time, time);
    EXPECT_EQ(times.decodeTime, time);
    EXPECT_EQ(times.duration, duration);
}

void expectNone(const Times& times) {
    EXPECT_EQ(times.time, std::nullopt);
    EXPECT_EQ(times.decodeTime, std::nullopt);
    EXPECT_EQ(times.duration, std::nullopt);
}

TEST(Clock, aFrameTakesTwoTicksOfTheVui) {
    const auto sps = spsOf(1, 8);
    Clock clock(std::nullopt);
    expectTimes(apply(clock, picture(&sps)), 0, 0.25);
    expectTimes(apply(clock, picture(&sps)), 0.25, 0.25);
}

TEST(Clock, aFieldTakesOneTick) {
    const auto sps = spsOf(1, 8);
    Clock clock(std::nullopt);
    expectTimes(apply(clock, picture(&sps, true)), 0, 0.125);
    expectTimes(apply(clock, picture(&sps, true)), 0.125, 0.125);
    expectTimes(apply(clock, picture(&sps)), 0.25, 0.25);
}

TEST(Clock, aNewParameterSetChangesTheRate) {
    const auto slow = spsOf(1, 2);
    const auto fast = spsOf(1, 8);
    Clock clock(std::nullopt);
    expectTimes(apply(clock, picture(&slow)), 0, 1);
    expectTimes(apply(clock, picture(&fast)), 1, 0.25);
}

TEST(Clock, theGivenRateComesFirst) {
    const auto sps = spsOf(1, 8);
    Clock clock(2.0);
    expectTimes(apply(clock, picture(&sps)), 0, 0.5);
    expectTimes(apply(clock, picture(nullptr)), 0.5, 0.5);
}

TEST(Clock, theLargestTiming) {
    constexpr uint32_t kMost = std::numeric_limits<uint32_t>::max();
    const auto sps = spsOf(kMost, 1);
    Clock clock(std::nullopt);
    expectTimes(apply(clock, picture(&sps)), 0, 2.0 * kMost);
}

TEST(Clock, withoutTimingThereAreNoTimes) {
    qvinspect::SequenceParameterSet noVideo{};
    const auto noTicks = spsOf(0, 8);
    const auto noScale = spsOf(1, 0);
    const qvinspect::SequenceParameterSet* const cases[] = {nullptr, &noVideo, &noTicks, &noScale};
    for (const auto* sps : cases) {
        Clock clock(std::nullopt);
        expectNone(apply(clock, picture(sps)));
    }
}

TEST(Clock, afterAnUnknownDurationNothingIsKnown) {
    const auto sps = spsOf(1, 8);
    Clock clock(std::nullopt);
    expectNone(apply(clock, picture(nullptr)));
    expectNone(apply(clock, picture(&sps)));
}

TEST(Clock, timesOfAContainerStay) {
    Clock clock(2.0);
    MadeAccessUnit timed = picture(nullptr);
    timed.accessUnit.time = 7;
    EXPECT_EQ(apply(clock, timed).time, 7.0);
    expectNone(apply(clock, picture(nullptr)));  // none is invented between them

    Clock other(2.0);
    MadeAccessUnit decoded = picture(nullptr);
    decoded.accessUnit.decodeTime = 7;
    const Times times = apply(other, decoded);
    EXPECT_EQ(times.time, std::nullopt);
    EXPECT_EQ(times.decodeTime, 7.0);
}

TEST(Clock, ratesThatAreNone) {
    for (const double rate :
         {std::numeric_limits<double>::denorm_min(), 0.0, std::numeric_limits<double>::quiet_NaN()}) {
        Clock clock(rate);
        expectNone(apply(clock, picture(nullptr)));
    }
}

}  // namespace
}  // namespace qv_test
