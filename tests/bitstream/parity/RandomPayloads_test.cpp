// Random payloads of SEI messages against libavcodec's trace_headers filter, for the ones that it has a table
// for and that no stream holds: every element, subscripts and range included.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "FileUnits.h"
#include "RandomUnit.h"
#include "StreamExpectation.h"
#include "StructureChecks.h"
#include "TraceHeaders.h"
#include "bitstream/avc/Unit.h"
#include "bitstream/hevc/Unit.h"
#include "bitstream/sei/DisplaySyntax.h"
#include "bitstream/sei/FilmGrainSyntax.h"
#include "bitstream/units/Rbsp.h"

using qv::Codec;

namespace qv_test {

namespace {

// A unit with one message.
std::vector<uint8_t> unitOf(Codec codec, uint32_t payloadType, RandomUnit& generator) {
    constexpr size_t kFf = 0xFF;
    const std::vector<uint8_t> escaped = generator.finish();
    std::vector<uint8_t> payload(escaped.size());
    payload.resize(qv::unescape(bytesOf(escaped), 0, payload.data(), payload.size()));
    std::vector<uint8_t> unit =
        codec == Codec::Avc ? std::vector<uint8_t>{0x06} : std::vector<uint8_t>{0x4E, 0x01};
    const size_t header = unit.size();
    unit.push_back(static_cast<uint8_t>(payloadType));
    size_t payloadSize = payload.size() - 1;
    for (; payloadSize >= kFf; payloadSize -= kFf) {
        unit.push_back(kFf);
    }
    unit.push_back(static_cast<uint8_t>(payloadSize));
    unit.insert(unit.end(), payload.begin(), payload.end());
    std::vector<uint8_t> out(qv::mostEscapedSize(unit.size()));
    out.resize(qv::escape(bytesOf(unit), header, out.data(), out.size()));
    return out;
}

// The filter has the names of H.264 for the bits after a payload.
std::string standardName(const std::string& theirs) {
    return theirs == "bit_equal_to_one" || theirs == "bit_equal_to_zero" ? "payload_" + theirs : theirs;
}

std::vector<std::string> textsOf(Codec codec, const std::vector<WitnessElement>& theirs) {
    std::vector<std::string> texts;
    for (const WitnessElement& element : theirs) {
        const std::string name = codec == Codec::Hevc ? standardName(element.name) : element.name;
        texts.push_back(std::to_string(element.firstBit) + " " + std::to_string(element.width) + " " + name +
                        " " + std::to_string(element.value));
    }
    return texts;
}

std::vector<std::string> textsOf(const std::vector<qv::TracedElement>& ours) {
    std::vector<std::string> texts;
    std::transform(ours.begin(), ours.end(), std::back_inserter(texts),
                   [](const qv::TracedElement& element) { return textOf(element); });
    return texts;
}

// A stream whose sets the messages refer to, and the filter after it.
template <class Sets>
class PayloadComparison {
public:
    PayloadComparison(Codec codec, const char* file) : witness_(codec), context_(codec) {
        for (const std::vector<uint8_t>& unit : unitsOf(bundledStreams() / file).units) {
            witness_.trace(bytesOf(unit));
            sets_.take(bytesOf(unit));
        }
        context_ = qv::sei::Context(sets_);
    }

    // The payload of one unit. With a value that is out of its range both stop before it.
    template <class Payload, class Table, class TraceUnit>
    void compare(RandomUnit& generator, Table table, TraceUnit traceUnit) {
        Payload record = {};
        table(generator, context_, record);
        generator.endPayload(context_.codec);
        const std::vector<uint8_t> unit =
            unitOf(context_.codec, Payload::kPayloadTypes.of(context_.codec), generator);
        WitnessTrace theirs = witness_.trace(bytesOf(unit));
        RecordingVisitor visitor;
        const qv::UnitTrace ours = traceUnit(bytesOf(unit), sets_, visitor);
        if (generator.violated() != nullptr) {
            // The filter ends with the element; here the end of the unit follows what is before it.
            ASSERT_FALSE(theirs.elements.empty());
            theirs.elements.pop_back();
            ASSERT_GT(visitor.elements.size(), theirs.elements.size());
            EXPECT_STREQ(visitor.elements[theirs.elements.size()].element.name, "rbsp_stop_one_bit");
            visitor.elements.resize(theirs.elements.size());
        }
        ASSERT_EQ(textsOf(visitor.elements), textsOf(context_.codec, theirs.elements)) << theirs.complaint;
        ASSERT_EQ(ours.ok(), theirs.complaint.empty()) << qv::textOf(ours.fault) << theirs.complaint;
        ASSERT_EQ(ours.ok(), generator.violated() == nullptr);
    }

private:
    TraceHeaders witness_;
    Sets sets_;
    qv::sei::Context context_;
};

// The filter knows the models and the blending modes that are not reserved.
void chooseFilmGrain(RandomUnit& unit, Random& random) {
    unit.choose("film_grain_model_id", {0, 1});
    unit.choose("blending_mode_id", {0, 1});
    unit.choose("num_intensity_intervals_minus1", {0, 1, 2, 20});
    if (random() % 8 != 0) {
        unit.choose("film_grain_characteristics_cancel_flag", {0});
    }
    if (random() % 3 == 0) {
        unit.violate(random() % 12);
    }
}

template <class Sets, class TraceUnit>
void compareBoth(Codec codec, const char* file, TraceUnit traceUnit) {
    PayloadComparison<Sets> comparison(codec, file);
    Random random(1);
    for (int round = 0; round < unitRounds(500) && !testing::Test::HasFailure(); ++round) {
        SCOPED_TRACE(round);
        RandomUnit filmGrain(random);
        chooseFilmGrain(filmGrain, random);
        comparison.template compare<qv::sei::FilmGrainCharacteristics>(
            filmGrain,
            [](auto& s, const auto& c, auto& payload) { film_grain_characteristics(s, c, payload); },
            traceUnit);
        RandomUnit orientation(random);
        orientation.choose("display_orientation_extension_flag", {0});
        comparison.template compare<qv::sei::DisplayOrientation>(
            orientation, [](auto& s, const auto& c, auto& payload) { display_orientation(s, c, payload); },
            traceUnit);
    }
}

TEST(RandomPayloads, agreeWithTraceHeaders) {
    compareBoth<qv::avc::ParameterSets>(Codec::Avc, "avc_hrd_picstruct.h264", qv::avc::traceUnit);
    compareBoth<qv::hevc::ParameterSets>(Codec::Hevc, "hevc_interlace_tff.h265", qv::hevc::traceUnit);
}

}  // namespace

}  // namespace qv_test
