// The stand-alone core's HDR Vivid parser (T/UWA 005.1).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "HdrVividSyntax.h"
#include "QVHDRVividDynamicMetadata.h"
#include "QVSeiItem.h"

namespace qv_test {
namespace {

static_assert(std::is_standard_layout<QVHDRVividDynamicMetadata>::value);
static_assert(std::is_trivially_copyable<QVHDRVividDynamicMetadata>::value);
static_assert(std::is_trivially_default_constructible<QVHDRVividDynamicMetadata>::value);

using Metadata = QVHDRVividDynamicMetadata;
using Fields = std::vector<std::pair<std::string, uint32_t>>;

void addSpline(Fields& fields, const std::string& in, const QVHDRVividSpline& spline) {
    fields.insert(fields.end(), {{in + "TH_enable_mode", spline.TH_enable_mode},
                                 {in + "has_TH_enable_MB", spline.has_TH_enable_MB},
                                 {in + "TH_enable_MB", spline.TH_enable_MB},
                                 {in + "TH_enable", spline.TH_enable},
                                 {in + "TH_enable_Delta1", spline.TH_enable_Delta1},
                                 {in + "TH_enable_Delta2", spline.TH_enable_Delta2},
                                 {in + "enable_Strength", spline.enable_Strength}});
}

void addToneMapping(Fields& fields, const std::string& in, const QVHDRVividToneMapping& mapping) {
    fields.insert(fields.end(), {{in + "targeted_system_display_maximum_luminance_pq",
                                  mapping.targeted_system_display_maximum_luminance_pq},
                                 {in + "base_enable_flag", mapping.base_enable_flag},
                                 {in + "base_param_m_p", mapping.base_param_m_p},
                                 {in + "base_param_m_m", mapping.base_param_m_m},
                                 {in + "base_param_m_a", mapping.base_param_m_a},
                                 {in + "base_param_m_b", mapping.base_param_m_b},
                                 {in + "base_param_m_n", mapping.base_param_m_n},
                                 {in + "base_param_K1", mapping.base_param_K1},
                                 {in + "base_param_K2", mapping.base_param_K2},
                                 {in + "base_param_K3", mapping.base_param_K3},
                                 {in + "base_param_Delta_enable_mode", mapping.base_param_Delta_enable_mode},
                                 {in + "base_param_enable_Delta", mapping.base_param_enable_Delta},
                                 {in + "three_Spline_enable_flag", mapping.three_Spline_enable_flag},
                                 {in + "three_Spline_enable_num", mapping.three_Spline_enable_num},
                                 {in + "numSplines", mapping.numSplines}});
    for (size_t i = 0; i < 2; ++i) {
        addSpline(fields, in + "spline " + std::to_string(i) + " ", mapping.splines[i]);
    }
}

// Returns every field with its name, in order.
Fields fieldsOf(const Metadata& metadata) {
    Fields fields = {{"system_start_code", metadata.system_start_code},
                     {"minimum_maxrgb_pq", metadata.minimum_maxrgb_pq},
                     {"average_maxrgb_pq", metadata.average_maxrgb_pq},
                     {"variance_maxrgb_pq", metadata.variance_maxrgb_pq},
                     {"maximum_maxrgb_pq", metadata.maximum_maxrgb_pq},
                     {"tone_mapping_enable_mode_flag", metadata.tone_mapping_enable_mode_flag},
                     {"tone_mapping_param_enable_num", metadata.tone_mapping_param_enable_num},
                     {"numToneMappings", metadata.numToneMappings}};
    for (size_t w = 0; w < 2; ++w) {
        addToneMapping(fields, "set " + std::to_string(w) + " ", metadata.toneMappings[w]);
    }
    fields.emplace_back("color_saturation_mapping_enable_flag",
                        metadata.color_saturation_mapping_enable_flag);
    fields.emplace_back("color_saturation_enable_num", metadata.color_saturation_enable_num);
    for (const uint32_t gain : metadata.color_saturation_enable_gain) {
        fields.emplace_back("color_saturation_enable_gain", gain);
    }
    return fields;
}

// Returns the record that the syntax must give. Elements that are not present are 0.
QVHDRVividSpline recordOf(const HdrVividSplineSyntax& s) {
    const bool hasMb = s.TH_enable_mode == 0 || s.TH_enable_mode == 2;
    return {s.TH_enable_mode, hasMb ? 1U : 0U,    hasMb ? s.TH_enable_MB : 0U,
            s.TH_enable,      s.TH_enable_Delta1, s.TH_enable_Delta2,
            s.enable_Strength};
}

QVHDRVividToneMapping recordOf(const HdrVividToneMappingSyntax& s) {
    QVHDRVividToneMapping mapping{};
    mapping.targeted_system_display_maximum_luminance_pq = s.targeted_system_display_maximum_luminance_pq;
    mapping.base_enable_flag = s.base_enable_flag;
    if (s.base_enable_flag == 1) {
        mapping.base_param_m_p = s.base_param_m_p;
        mapping.base_param_m_m = s.base_param_m_m;
        mapping.base_param_m_a = s.base_param_m_a;
        mapping.base_param_m_b = s.base_param_m_b;
        mapping.base_param_m_n = s.base_param_m_n;
        mapping.base_param_K1 = s.base_param_K1;
        mapping.base_param_K2 = s.base_param_K2;
        mapping.base_param_K3 = s.base_param_K3;
        mapping.base_param_Delta_enable_mode = s.base_param_Delta_enable_mode;
        mapping.base_param_enable_Delta = s.base_param_enable_Delta;
    }
    mapping.three_Spline_enable_flag = s.three_Spline_enable_flag;
    if (s.three_Spline_enable_flag == 1) {
        mapping.three_Spline_enable_num = s.three_Spline_enable_num;
        mapping.numSplines = s.three_Spline_enable_num + 1;
        std::transform(s.splines.begin(), s.splines.begin() + mapping.numSplines, mapping.splines,
                       [](const HdrVividSplineSyntax& spline) { return recordOf(spline); });
    }
    return mapping;
}

Metadata recordOf(const HdrVividSyntax& s) {
    Metadata metadata{};
    metadata.system_start_code = 1;
    metadata.minimum_maxrgb_pq = s.minimum_maxrgb_pq;
    metadata.average_maxrgb_pq = s.average_maxrgb_pq;
    metadata.variance_maxrgb_pq = s.variance_maxrgb_pq;
    metadata.maximum_maxrgb_pq = s.maximum_maxrgb_pq;
    metadata.tone_mapping_enable_mode_flag = s.tone_mapping_enable_mode_flag;
    if (s.tone_mapping_enable_mode_flag == 1) {
        metadata.tone_mapping_param_enable_num = s.tone_mapping_param_enable_num;
        metadata.numToneMappings = s.tone_mapping_param_enable_num + 1;
        std::transform(s.toneMappings.begin(), s.toneMappings.begin() + metadata.numToneMappings,
                       metadata.toneMappings,
                       [](const HdrVividToneMappingSyntax& mapping) { return recordOf(mapping); });
    }
    metadata.color_saturation_mapping_enable_flag = s.color_saturation_mapping_enable_flag;
    if (s.color_saturation_mapping_enable_flag == 1) {
        metadata.color_saturation_enable_num = s.color_saturation_enable_num;
        std::copy_n(s.color_saturation_enable_gain.begin(), s.color_saturation_enable_num,
                    metadata.color_saturation_enable_gain);
    }
    return metadata;
}

Metadata patternMetadata() {
    Metadata metadata;
    std::memset(&metadata, 0xA5, sizeof metadata);
    return metadata;
}

struct Outcome {
    int status;
    Metadata metadata;
};

int fill(const QVSeiItem& item, Metadata* metadata) {
    return qv_hdr_vivid_parser::fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(item, metadata);
}

// Parses an exact-size copy of the payload into a record that is filled with a pattern.
Outcome parse(const Bytes& payload, QVCodecID codec = QVCodecIDHevc, uint32_t payloadType = 4) {
    const std::unique_ptr<uint8_t[]> copy(new uint8_t[payload.size()]);
    std::copy(payload.begin(), payload.end(), copy.get());
    Outcome outcome = {-1, patternMetadata()};
    outcome.status = fill({codec, payloadType, static_cast<uint32_t>(payload.size()), false, copy.get()},
                          &outcome.metadata);
    return outcome;
}

void expectRead(const Outcome& outcome, const HdrVividSyntax& syntax) {
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(fieldsOf(outcome.metadata), fieldsOf(recordOf(syntax)));
}

void expectRefused(const Outcome& outcome, int status) {
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(fieldsOf(outcome.metadata), fieldsOf(patternMetadata()));
}

// Two tone mappings with all elements and two splines each, and seven gains.
HdrVividSyntax everything() {
    HdrVividSyntax s = largestHdrVivid();
    s.color_saturation_enable_gain = {{255, 1, 128, 64, 38, 25, 254}};
    for (HdrVividToneMappingSyntax& mapping : s.toneMappings) {
        mapping.splines[1].TH_enable_mode = 3;
        mapping.splines[1].TH_enable = 4095;
    }
    s.toneMappings[1].targeted_system_display_maximum_luminance_pq = 2770;
    s.toneMappings[1].base_param_m_p = 16383;
    s.toneMappings[1].base_param_Delta_enable_mode = 7;
    s.toneMappings[1].splines[0].TH_enable_mode = 2;
    s.toneMappings[1].splines[1].TH_enable_mode = 1;
    return s;
}

// --- Statuses ---

TEST(HdrVividStatus, distinct) {
    const std::set<int> statuses = {QVHDRVividOk,
                                    QVHDRVividNullArgument,
                                    QVHDRVividOtherItem,
                                    QVHDRVividForeignHeader,
                                    QVHDRVividOtherStartCode,
                                    QVHDRVividTruncated};
    EXPECT_EQ(statuses.size(), 6U);
    EXPECT_EQ(QVHDRVividOk, 0);
}

TEST(HdrVividStatus, nullArguments) {
    const Bytes payload = hdrVivid(everything()).bytes();
    Bytes copy = payload;
    Metadata metadata = patternMetadata();
    EXPECT_EQ(fill({QVCodecIDHevc, 4, static_cast<uint32_t>(copy.size()), false, copy.data()}, nullptr),
              QVHDRVividNullArgument);
    EXPECT_EQ(fill({QVCodecIDHevc, 4, 36, false, nullptr}, &metadata), QVHDRVividNullArgument);
    EXPECT_EQ(fill({QVCodecIDHevc, 4, 0, false, nullptr}, nullptr), QVHDRVividNullArgument);
    EXPECT_EQ(fieldsOf(metadata), fieldsOf(patternMetadata()));
}

TEST(HdrVividStatus, otherItems) {
    const Bytes payload = hdrVivid(everything()).bytes();
    for (const uint32_t codec : {0U, 26U, 171U, 173U, 0xFFFFFFFFU}) {
        expectRefused(parse(payload, static_cast<QVCodecID>(codec)), QVHDRVividOtherItem);
    }
    for (const uint32_t type : {0U, 3U, 5U, 137U, 4U + 256U}) {
        expectRefused(parse(payload, QVCodecIDHevc, type), QVHDRVividOtherItem);
    }
}

TEST(HdrVividStatus, foreignHeaders) {
    const std::vector<std::function<void(HdrVividSyntax&)>> changes = {
        [](HdrVividSyntax& s) { s.itu_t_t35_country_code = 0xB5; },
        [](HdrVividSyntax& s) { s.itu_t_t35_country_code = 0x27; },
        [](HdrVividSyntax& s) { s.terminal_provider_code = 0x0003; },
        [](HdrVividSyntax& s) { s.terminal_provider_code = 0x0104; },
        [](HdrVividSyntax& s) { s.terminal_provider_code = 0x0400; },
        [](HdrVividSyntax& s) { s.terminal_provider_oriented_code = 0x0004; },
        [](HdrVividSyntax& s) { s.terminal_provider_oriented_code = 0x0105; },
    };
    for (const auto& change : changes) {
        HdrVividSyntax syntax = everything();
        change(syntax);
        expectRefused(parse(hdrVivid(syntax).bytes()), QVHDRVividForeignHeader);
    }
}

TEST(HdrVividStatus, otherStartCodes) {
    for (uint32_t code = 0; code < 256; ++code) {
        HdrVividSyntax syntax = everything();
        syntax.system_start_code = code;
        const Outcome outcome = parse(hdrVivid(syntax).bytes());
        if (code == 1) {
            expectRead(outcome, syntax);
        } else {
            expectRefused(outcome, QVHDRVividOtherStartCode);
        }
    }
}

// --- Reading ---

TEST(HdrVividRead, golden) {
    // 26 0004 0005 01; PQ codes 00A 384 12C BB8; 0: no tone mapping; 1 001: one gain; its code 40
    const Outcome outcome =
        parse({0x26, 0x00, 0x04, 0x00, 0x05, 0x01, 0x00, 0xA3, 0x84, 0x12, 0xCB, 0xB8, 0x4A, 0x00});
    ASSERT_EQ(outcome.status, 0);
    Metadata expected{};
    expected.system_start_code = 1;
    expected.minimum_maxrgb_pq = 10;
    expected.average_maxrgb_pq = 900;
    expected.variance_maxrgb_pq = 300;
    expected.maximum_maxrgb_pq = 3000;
    expected.color_saturation_mapping_enable_flag = 1;
    expected.color_saturation_enable_num = 1;
    expected.color_saturation_enable_gain[0] = 64;
    EXPECT_EQ(fieldsOf(outcome.metadata), fieldsOf(expected));
}

TEST(HdrVividRead, smallestMessage) {
    const HdrVividSyntax syntax;
    const BitWriter payload = hdrVivid(syntax);
    ASSERT_EQ(payload.bitCount(), 98U);
    expectRead(parse(payload.bytes()), syntax);
}

TEST(HdrVividRead, largestMessage) {
    const BitWriter payload = hdrVivid(everything());
    SCOPED_TRACE(payload.map());
    expectRead(parse(payload.bytes()), everything());
}

// A broadcast message: two tone mappings for targets of 500 and 100 cd/m2 with one spline each, and two
// gains.
TEST(HdrVividRead, publicTrace) {
    HdrVividSyntax syntax;
    syntax.minimum_maxrgb_pq = 0;
    syntax.average_maxrgb_pq = 3046;
    syntax.variance_maxrgb_pq = 1535;
    syntax.maximum_maxrgb_pq = 4095;
    syntax.tone_mapping_enable_mode_flag = syntax.tone_mapping_param_enable_num = 1;
    syntax.toneMappings[0].targeted_system_display_maximum_luminance_pq = 2770;
    syntax.toneMappings[1].targeted_system_display_maximum_luminance_pq = 2080;
    syntax.toneMappings[0].three_Spline_enable_flag = syntax.toneMappings[1].three_Spline_enable_flag = 1;
    syntax.color_saturation_mapping_enable_flag = 1;
    syntax.color_saturation_enable_num = 2;
    syntax.color_saturation_enable_gain = {{38, 25}};

    const Outcome outcome = parse(hdrVivid(syntax).bytes());
    expectRead(outcome, syntax);
    const Metadata& read = outcome.metadata;
    EXPECT_EQ(read.minimum_maxrgb_pq, 0U);
    EXPECT_EQ(read.average_maxrgb_pq, 3046U);
    EXPECT_EQ(read.variance_maxrgb_pq, 1535U);
    EXPECT_EQ(read.maximum_maxrgb_pq, 4095U);
    ASSERT_EQ(read.numToneMappings, 2U);
    EXPECT_EQ(read.toneMappings[0].targeted_system_display_maximum_luminance_pq, 2770U);
    EXPECT_EQ(read.toneMappings[1].targeted_system_display_maximum_luminance_pq, 2080U);
    EXPECT_EQ(read.toneMappings[0].numSplines, 1U);
    EXPECT_EQ(read.toneMappings[1].numSplines, 1U);
    ASSERT_EQ(read.color_saturation_enable_num, 2U);
    EXPECT_EQ(read.color_saturation_enable_gain[0], 38U);
    EXPECT_EQ(read.color_saturation_enable_gain[1], 25U);
    EXPECT_NEAR(qvPqToLuminance(qvHdrVividPq(2770)), 500, 1);
    EXPECT_NEAR(qvPqToLuminance(qvHdrVividPq(2080)), 100, 0.2);
}

TEST(HdrVividRead, bytesBehindTheMessageAreLeft) {
    const Bytes whole = hdrVivid(everything()).bytes();
    for (const uint8_t extra : Bytes{0x00, 0x80, 0xFF}) {
        Bytes longer = whole;
        longer.insert(longer.end(), 5, extra);
        expectRead(parse(longer), everything());
    }
}

TEST(HdrVividRead, theItemIsOnlyRead) {
    Bytes payload = hdrVivid(everything()).bytes();
    const Bytes before = payload;
    const QVSeiItem item = {QVCodecIDHevc, 4, static_cast<uint32_t>(payload.size()), true, payload.data()};
    Metadata metadata = patternMetadata();
    EXPECT_EQ(fill(item, &metadata), 0) << "a requested item is read as well";
    EXPECT_EQ(payload, before);
    EXPECT_EQ(fieldsOf(metadata), fieldsOf(recordOf(everything())));
}

// Inverts each element on which the presence of later elements does not depend.
TEST(HdrVividRead, eachElementHasItsFieldAndItsWidth) {
    const BitWriter layout = hdrVivid(everything());
    const Fields reference = fieldsOf(recordOf(everything()));
    for (const BitWriter::Element& element : layout.elements()) {
        const bool decidesWhatFollows = element.position < 48 ||
                                        element.name.find("enable_flag") != std::string::npos ||
                                        element.name.find("enable_num") != std::string::npos ||
                                        element.name.find("TH_enable_mode") != std::string::npos ||
                                        element.name.find("mode_flag") != std::string::npos;
        if (decidesWhatFollows) {
            continue;
        }
        SCOPED_TRACE(element.name);
        Bytes changed = layout.bytes();
        for (size_t bit = element.position; bit < element.position + element.width; ++bit) {
            changed[bit / 8] = static_cast<uint8_t>(changed[bit / 8] ^ 0x80U >> bit % 8);
        }
        const Outcome outcome = parse(changed);
        EXPECT_EQ(outcome.status, 0);
        const Fields fields = fieldsOf(outcome.metadata);
        std::vector<std::string> differing;
        for (size_t i = 0; i < fields.size(); ++i) {
            if (fields[i] != reference[i]) {
                differing.push_back(fields[i].first);
                const uint32_t mask = static_cast<uint32_t>((uint64_t{1} << element.width) - 1);
                EXPECT_EQ(fields[i].second, reference[i].second ^ mask);
            }
        }
        EXPECT_EQ(differing.size(), 1U);
    }
}

// --- Every combination of optional elements ---

// Calls use for every form of the spline list: none, one spline of each mode, two of each pair of modes.
void forEachSplineList(HdrVividToneMappingSyntax mapping,
                       const std::function<void(const HdrVividToneMappingSyntax&)>& use) {
    mapping.three_Spline_enable_flag = 0;
    use(mapping);
    mapping.three_Spline_enable_flag = 1;
    for (uint32_t first = 0; first < 4; ++first) {
        mapping.splines[0].TH_enable_mode = first;
        mapping.three_Spline_enable_num = 0;
        use(mapping);
        mapping.three_Spline_enable_num = 1;
        for (uint32_t second = 0; second < 4; ++second) {
            mapping.splines[1].TH_enable_mode = second;
            use(mapping);
        }
    }
}

std::vector<HdrVividToneMappingSyntax> everyToneMapping(const HdrVividToneMappingSyntax& values) {
    std::vector<HdrVividToneMappingSyntax> mappings;
    for (const uint32_t base_enable_flag : {0U, 1U}) {
        HdrVividToneMappingSyntax mapping = values;
        mapping.base_enable_flag = base_enable_flag;
        forEachSplineList(mapping, [&](const HdrVividToneMappingSyntax& one) { mappings.push_back(one); });
    }
    return mappings;
}

void expectReadWithEveryGainList(HdrVividSyntax syntax) {
    syntax.color_saturation_mapping_enable_flag = 0;
    expectRead(parse(hdrVivid(syntax).bytes()), syntax);
    syntax.color_saturation_mapping_enable_flag = 1;
    for (uint32_t num = 0; num < 8; ++num) {
        syntax.color_saturation_enable_num = num;
        expectRead(parse(hdrVivid(syntax).bytes()), syntax);
    }
}

TEST(HdrVividPresence, noToneMapping) {
    HdrVividSyntax syntax = everything();
    syntax.tone_mapping_enable_mode_flag = 0;
    expectReadWithEveryGainList(syntax);
}

TEST(HdrVividPresence, everyToneMappingAlone) {
    HdrVividSyntax syntax = everything();
    syntax.tone_mapping_param_enable_num = 0;
    const auto mappings = everyToneMapping(syntax.toneMappings[0]);
    ASSERT_EQ(mappings.size(), 2U * (1 + 4 + 16));
    for (const HdrVividToneMappingSyntax& mapping : mappings) {
        syntax.toneMappings[0] = mapping;
        SCOPED_TRACE(hdrVivid(syntax).map());
        expectReadWithEveryGainList(syntax);
    }
}

TEST(HdrVividPresence, everyPairOfToneMappings) {
    HdrVividSyntax syntax = everything();
    const auto firsts = everyToneMapping(syntax.toneMappings[0]);
    const auto seconds = everyToneMapping(syntax.toneMappings[1]);
    for (const HdrVividToneMappingSyntax& first : firsts) {
        for (const HdrVividToneMappingSyntax& second : seconds) {
            syntax.toneMappings = {{first, second}};
            expectRead(parse(hdrVivid(syntax).bytes()), syntax);
        }
    }
}

TEST(HdrVividPresence, randomValues) {
    std::mt19937 random(20240501);
    const auto code = [&](unsigned width) { return static_cast<uint32_t>(random() >> (32 - width)); };
    for (int round = 0; round < 2000; ++round) {
        HdrVividSyntax s;
        s.minimum_maxrgb_pq = code(12);
        s.average_maxrgb_pq = code(12);
        s.variance_maxrgb_pq = code(12);
        s.maximum_maxrgb_pq = code(12);
        s.tone_mapping_enable_mode_flag = code(1);
        s.tone_mapping_param_enable_num = code(1);
        for (HdrVividToneMappingSyntax& mapping : s.toneMappings) {
            mapping = {code(12), code(1), code(14), code(6), code(10), code(10), code(6), code(2),
                       code(2),  code(4), code(3),  code(7), code(1),  code(1),  {}};
            for (HdrVividSplineSyntax& spline : mapping.splines) {
                spline = {code(2), code(8), code(12), code(10), code(10), code(8)};
            }
        }
        s.color_saturation_mapping_enable_flag = code(1);
        s.color_saturation_enable_num = code(3);
        for (uint32_t& gain : s.color_saturation_enable_gain) {
            gain = code(8);
        }
        SCOPED_TRACE(hdrVivid(s).map());
        expectRead(parse(hdrVivid(s).bytes()), s);
    }
}

// --- Truncation ---

TEST(HdrVividTruncation, everyLengthInBytes) {
    const Bytes whole = hdrVivid(everything()).bytes();
    for (size_t size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        expectRefused(parse(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size))),
                      QVHDRVividTruncated);
    }
    expectRead(parse(whole), everything());
}

TEST(HdrVividTruncation, theLastBitMayStandAnywhereInItsByte) {
    for (uint32_t gains = 0; gains < 8; ++gains) {
        for (const uint32_t mode : {0U, 1U}) {
            HdrVividSyntax syntax = everything();
            syntax.color_saturation_enable_num = gains;
            syntax.toneMappings[0].base_enable_flag = mode;
            syntax.toneMappings[1].three_Spline_enable_num = mode;
            const Bytes whole = hdrVivid(syntax).bytes();
            expectRead(parse(whole), syntax);
            expectRefused(parse(Bytes(whole.begin(), whole.end() - 1)), QVHDRVividTruncated);
        }
    }
}

// The payload is cut at a bit and padded with zero bits to a whole byte. A code of the header whose bytes are
// all present but whose low bits are lost is a foreign code. A code that lacks a byte is truncated.
TEST(HdrVividTruncation, headerCutAtEveryBit) {
    const struct {
        size_t lastCut;
        int status;
    } rows[] = {
        {0, QVHDRVividTruncated},      {6, QVHDRVividForeignHeader},   {16, QVHDRVividTruncated},
        {21, QVHDRVividForeignHeader}, {32, QVHDRVividTruncated},      {39, QVHDRVividForeignHeader},
        {40, QVHDRVividTruncated},     {47, QVHDRVividOtherStartCode}, {48, QVHDRVividTruncated},
    };
    const BitWriter payload = hdrVivid(everything());
    size_t cut = 0;
    for (const auto& row : rows) {
        for (; cut <= row.lastCut; ++cut) {
            SCOPED_TRACE(cut);
            expectRefused(parse(payload.bytesCutAt(cut)), row.status);
        }
    }
}

// The same cut after the header. The zero bits may code a shorter message that is complete; otherwise the
// message is truncated.
TEST(HdrVividTruncation, windowCutAtEveryBit) {
    HdrVividSyntax noToneMapping = everything();
    noToneMapping.tone_mapping_enable_mode_flag = 0;
    HdrVividSyntax noBase = everything();
    noBase.toneMappings[0].base_enable_flag = noBase.toneMappings[1].base_enable_flag = 0;
    size_t wholeAfterAll = 0;
    for (const HdrVividSyntax& syntax : {everything(), noToneMapping, noBase, HdrVividSyntax()}) {
        const BitWriter payload = hdrVivid(syntax);
        for (size_t cut = 49; cut < payload.bitCount(); ++cut) {
            SCOPED_TRACE(cut);
            const Bytes bytes = payload.bytesCutAt(cut);
            const HdrVividSyntax left = cutAt(syntax, cut);
            if (hdrVivid(left).bitCount() <= bytes.size() * 8) {
                expectRead(parse(bytes), left);
                ++wholeAfterAll;
            } else {
                expectRefused(parse(bytes), QVHDRVividTruncated);
            }
        }
    }
    EXPECT_GT(wholeAfterAll, 0U);
}

// --- Values ---

TEST(HdrVividValues, pqCodes) {
    EXPECT_DOUBLE_EQ(qvHdrVividPq(0), 0.0);
    EXPECT_DOUBLE_EQ(qvHdrVividPq(4095), 1.0);
    EXPECT_DOUBLE_EQ(qvHdrVividPq(2080), 2080 / 4095.0);
    EXPECT_NEAR(qvHdrVividPq(3000), 0.7326007326, 1e-10);
}

// Points of the curve from ITU-R BT.2408 and BT.2100.
TEST(HdrVividValues, luminanceOfThePqRange) {
    EXPECT_EQ(qvPqToLuminance(0), 0);
    EXPECT_DOUBLE_EQ(qvPqToLuminance(1), 10000);
    EXPECT_NEAR(qvPqToLuminance(0.508078), 100, 0.001);
    EXPECT_NEAR(qvPqToLuminance(0.751827), 1000, 0.01);
    EXPECT_NEAR(qvPqToLuminance(0.580689), 203, 0.01);
    EXPECT_NEAR(qvPqToLuminance(0.902572), 4000, 0.1);
    EXPECT_NEAR(qvPqToLuminance(0.5), 92.2457, 0.0001);
    EXPECT_NEAR(qvPqToLuminance(0.149946), 1, 0.0001);
    EXPECT_NEAR(qvPqToLuminance(2080 / 4095.0), 99.86, 0.01);
}

TEST(HdrVividValues, luminanceRisesWithEveryCode) {
    double before = -1;
    for (uint32_t code = 0; code < 4096; ++code) {
        const double luminance = qvPqToLuminance(qvHdrVividPq(code));
        EXPECT_GT(luminance, before) << code;
        before = luminance;
    }
}

TEST(HdrVividValues, luminanceStaysInItsRange) {
    EXPECT_EQ(qvPqToLuminance(-0.5), 0);
    EXPECT_DOUBLE_EQ(qvPqToLuminance(1.5), 10000);
}

TEST(HdrVividValues, baseParameters) {
    QVHDRVividToneMapping mapping{};
    for (const auto value :
         {&qvHdrVividM_p, &qvHdrVividM_m, &qvHdrVividM_a, &qvHdrVividM_b, &qvHdrVividM_n, &qvHdrVividDelta}) {
        EXPECT_EQ(value(mapping), 0);
    }
    mapping.base_param_m_p = 16383;
    mapping.base_param_m_m = 63;
    mapping.base_param_m_a = 1023;
    mapping.base_param_m_b = 1023;
    mapping.base_param_m_n = 63;
    EXPECT_DOUBLE_EQ(qvHdrVividM_p(mapping), 1);
    EXPECT_DOUBLE_EQ(qvHdrVividM_m(mapping), 6.3);
    EXPECT_DOUBLE_EQ(qvHdrVividM_a(mapping), 1);
    EXPECT_DOUBLE_EQ(qvHdrVividM_b(mapping), 1);
    EXPECT_DOUBLE_EQ(qvHdrVividM_n(mapping), 6.3);
    mapping = recordOf(HdrVividToneMappingSyntax());
    mapping.base_param_m_p = 5915;
    mapping.base_param_m_m = 24;
    mapping.base_param_m_a = 1000;
    mapping.base_param_m_b = 6;
    mapping.base_param_m_n = 10;
    EXPECT_NEAR(qvHdrVividM_p(mapping), 0.36104498565, 1e-10);
    EXPECT_NEAR(qvHdrVividM_m(mapping), 2.4, 1e-12);
    EXPECT_NEAR(qvHdrVividM_a(mapping), 0.97751710655, 1e-10);
    EXPECT_NEAR(qvHdrVividM_b(mapping), 0.00586510264, 1e-10);
    EXPECT_NEAR(qvHdrVividM_n(mapping), 1.0, 1e-12);
}

TEST(HdrVividValues, oddModesSubtractDelta) {
    QVHDRVividToneMapping mapping{};
    mapping.base_param_enable_Delta = 127;
    for (uint32_t mode = 0; mode < 8; ++mode) {
        mapping.base_param_Delta_enable_mode = mode;
        EXPECT_DOUBLE_EQ(qvHdrVividDelta(mapping), mode == 1 || mode == 3 || mode == 5 || mode == 7 ? -1 : 1);
    }
    mapping.base_param_enable_Delta = 3;
    mapping.base_param_Delta_enable_mode = 0;
    EXPECT_NEAR(qvHdrVividDelta(mapping), 0.02362204724, 1e-10);
}

TEST(HdrVividValues, splines) {
    QVHDRVividSpline spline{};
    for (const auto value :
         {&qvHdrVividThMb, &qvHdrVividTh, &qvHdrVividThDelta1, &qvHdrVividThDelta2, &qvHdrVividStrength}) {
        EXPECT_EQ(value(spline), 0);
    }
    spline = {0, 1, 255, 4095, 1023, 1023, 255};
    EXPECT_DOUBLE_EQ(qvHdrVividThMb(spline), 1);
    EXPECT_DOUBLE_EQ(qvHdrVividTh(spline), 1);
    EXPECT_DOUBLE_EQ(qvHdrVividThDelta1(spline), 0.25);
    EXPECT_DOUBLE_EQ(qvHdrVividThDelta2(spline), 0.25);
    EXPECT_DOUBLE_EQ(qvHdrVividStrength(spline), 1);
    spline = {0, 1, 51, 819, 200, 300, 102};
    EXPECT_DOUBLE_EQ(qvHdrVividThMb(spline), 0.2);
    EXPECT_DOUBLE_EQ(qvHdrVividTh(spline), 0.2);
    EXPECT_NEAR(qvHdrVividThDelta1(spline), 0.04887585533, 1e-10);
    EXPECT_NEAR(qvHdrVividThDelta2(spline), 0.07331378299, 1e-10);
    EXPECT_DOUBLE_EQ(qvHdrVividStrength(spline), 0.4);
}

TEST(HdrVividValues, gains) {
    EXPECT_EQ(qvHdrVividGain(0), 0);
    EXPECT_DOUBLE_EQ(qvHdrVividGain(64), 0.5);
    EXPECT_DOUBLE_EQ(qvHdrVividGain(128), 1);
    EXPECT_DOUBLE_EQ(qvHdrVividGain(255), 1.9921875);
}

}  // namespace
}  // namespace qv_test
