#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "AvcSeiRecord.h"
#include "AvcSeiSyntax.h"
#include "QVNaluParser.h"

namespace qv_test {
namespace {

using Green = QVAvcSeiGreenMetaData;

static_assert(std::is_standard_layout<Green>::value && std::is_trivial<Green>::value);
static_assert(sizeof(Green) == 14);
static_assert(offsetof(Green, green_metadata_type) == 0);
static_assert(offsetof(Green, period_type) == 1);
static_assert(offsetof(Green, num_seconds) == 2);
static_assert(offsetof(Green, num_pictures) == 4);
static_assert(offsetof(Green, percent_non_zero_macroblocks) == 6);
static_assert(offsetof(Green, percent_intra_coded_macroblocks) == 7);
static_assert(offsetof(Green, percent_six_tap_filtering) == 8);
static_assert(offsetof(Green, percent_alpha_point_deblocking_instance) == 9);
static_assert(offsetof(Green, xsd_metric_type) == 10);
static_assert(offsetof(Green, xsd_metric_value) == 12);
static_assert(std::is_same<decltype(Green::green_metadata_type), uint8_t>::value);
static_assert(std::is_same<decltype(Green::period_type), uint8_t>::value);
static_assert(std::is_same<decltype(Green::num_seconds), uint16_t>::value);
static_assert(std::is_same<decltype(Green::num_pictures), uint16_t>::value);
static_assert(std::is_same<decltype(Green::percent_non_zero_macroblocks), uint8_t>::value);
static_assert(std::is_same<decltype(Green::percent_intra_coded_macroblocks), uint8_t>::value);
static_assert(std::is_same<decltype(Green::percent_six_tap_filtering), uint8_t>::value);
static_assert(std::is_same<decltype(Green::percent_alpha_point_deblocking_instance), uint8_t>::value);
static_assert(std::is_same<decltype(Green::xsd_metric_type), uint8_t>::value);
static_assert(std::is_same<decltype(Green::xsd_metric_value), uint16_t>::value);

int parseGreenMetadata(QVByteStream& stream, Green* record) {
    return QVNaluParser::parserAvcGreenMetaData(stream, 0, record);
}

void keepComplexityMetrics(Green& record, const GreenMetadataSyntax& syntax) {
    record.period_type = static_cast<uint8_t>(syntax.period_type);
    if (syntax.period_type == 2) {
        record.num_seconds = static_cast<uint16_t>(syntax.num_seconds);
    }
    if (syntax.period_type == 3) {
        record.num_pictures = static_cast<uint16_t>(syntax.num_pictures);
    }
    record.percent_non_zero_macroblocks = static_cast<uint8_t>(syntax.percent_non_zero_macroblocks);
    record.percent_intra_coded_macroblocks = static_cast<uint8_t>(syntax.percent_intra_coded_macroblocks);
    record.percent_six_tap_filtering = static_cast<uint8_t>(syntax.percent_six_tap_filtering);
    record.percent_alpha_point_deblocking_instance =
        static_cast<uint8_t>(syntax.percent_alpha_point_deblocking_instance);
}

Green kept(const GreenMetadataSyntax& syntax) {
    Green record = patternRecord<Green>();
    record.green_metadata_type = static_cast<uint8_t>(syntax.green_metadata_type);
    if (syntax.green_metadata_type == 0) {
        keepComplexityMetrics(record, syntax);
    }
    if (syntax.green_metadata_type == 1) {
        record.xsd_metric_type = static_cast<uint8_t>(syntax.xsd_metric_type);
        record.xsd_metric_value = static_cast<uint16_t>(syntax.xsd_metric_value);
    }
    return record;
}

Outcome<Green> greenMetadataContract(ModelledData& in) {
    Outcome<Green> outcome;
    outcome.record = kept(readGreenMetadata(in));
    outcome.cursor = in.cursor();
    return outcome;
}

GreenMetadataSyntax complexityMetrics(uint32_t period_type) {
    GreenMetadataSyntax syntax;
    syntax.period_type = period_type;
    syntax.num_seconds = 0x0102;
    syntax.num_pictures = 0xFEFD;
    syntax.percent_non_zero_macroblocks = 30;
    syntax.percent_intra_coded_macroblocks = 60;
    syntax.percent_six_tap_filtering = 255;
    syntax.percent_alpha_point_deblocking_instance = 101;
    return syntax;
}

class AvcGreenMetadata : public AvcSeiTest<Green> {
protected:
    // Checks that `consumed` bytes are read and that they give this record.
    static void checkRecord(const Bytes& bytes, const Green& record, size_t consumed) {
        Outcome<Green> expected;
        expected.record = record;
        expected.cursor = atBit(consumed * 8);
        check(bytes, parseGreenMetadata, expected);
    }

    static Green percentages(uint8_t period_type) {
        Green record = patternRecord<Green>();
        record.green_metadata_type = 0;
        record.period_type = period_type;
        record.percent_non_zero_macroblocks = 0x1E;
        record.percent_intra_coded_macroblocks = 0x3C;
        record.percent_six_tap_filtering = 0x5A;
        record.percent_alpha_point_deblocking_instance = 0xFF;
        return record;
    }
};

TEST_F(AvcGreenMetadata, nullRecord) {
    checkRefused([](QVByteStream& stream) { return parseGreenMetadata(stream, nullptr); },
                 errorLine("parserAvcGreenMetaData", "parserAvcGreenMetaData: greenMetaData is NULL!\n"));
}

TEST_F(AvcGreenMetadata, periodsWithoutACount) {
    for (unsigned period_type = 0; period_type < 256; ++period_type) {
        if (period_type != 2 && period_type != 3) {
            const auto coded = static_cast<uint8_t>(period_type);
            checkRecord({0, coded, 0x1E, 0x3C, 0x5A, 0xFF, 0x77}, percentages(coded), 6);
        }
    }
}

TEST_F(AvcGreenMetadata, periodInSeconds) {
    Green record = percentages(2);
    record.num_seconds = 258;
    checkRecord({0, 2, 0x01, 0x02, 0x1E, 0x3C, 0x5A, 0xFF, 0x77}, record, 8);
}

TEST_F(AvcGreenMetadata, periodInPictures) {
    Green record = percentages(3);
    record.num_pictures = 258;
    checkRecord({0, 3, 0x01, 0x02, 0x1E, 0x3C, 0x5A, 0xFF, 0x77}, record, 8);
}

TEST_F(AvcGreenMetadata, qualityMetric) {
    Green record = patternRecord<Green>();
    record.green_metadata_type = 1;
    record.xsd_metric_type = 7;
    record.xsd_metric_value = 0xFFFE;
    checkRecord({1, 7, 0xFF, 0xFE, 0x77}, record, 4);
}

TEST_F(AvcGreenMetadata, otherTypesReadOneByte) {
    for (unsigned type = 2; type < 256; ++type) {
        Green record = patternRecord<Green>();
        record.green_metadata_type = static_cast<uint8_t>(type);
        checkRecord({static_cast<uint8_t>(type), 2, 3, 4, 5}, record, 1);
    }
}

TEST_F(AvcGreenMetadata, qualityMetricOfOneByte) {
    Green record = patternRecord<Green>();
    record.green_metadata_type = 1;
    record.xsd_metric_type = 0;
    record.xsd_metric_value = 0;
    checkRecord({1}, record, 1);
    record.xsd_metric_type = 9;
    checkRecord({1, 9}, record, 2);
    record.xsd_metric_value = 0xAB00;
    checkRecord({1, 9, 0xAB}, record, 3);
}

TEST_F(AvcGreenMetadata, missingPercentagesAreZero) {
    const Bytes bytes = {0, 2, 0x01, 0x02, 0x1E, 0x3C, 0x5A, 0xFF};
    for (size_t size = 0; size <= bytes.size(); ++size) {
        SCOPED_TRACE(size);
        Bytes padded(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
        const Bytes present = padded;
        padded.resize(bytes.size(), 0);
        Green record = percentages(padded[1]);
        if (padded[1] == 2) {
            record.num_seconds = static_cast<uint16_t>(padded[2] << 8 | padded[3]);
        }
        record.percent_non_zero_macroblocks = padded[4];
        record.percent_intra_coded_macroblocks = padded[5];
        record.percent_six_tap_filtering = padded[6];
        record.percent_alpha_point_deblocking_instance = padded[7];
        checkRecord(present, record, size);
    }
}

TEST_F(AvcGreenMetadata, withoutBuffer) {
    Green record = percentages(0);
    record.percent_non_zero_macroblocks = record.percent_intra_coded_macroblocks = 0;
    record.percent_six_tap_filtering = record.percent_alpha_point_deblocking_instance = 0;
    BufferlessStream stream(0);
    Outcome<Green> expected;
    expected.record = record;
    check(stream, parseGreenMetadata, expected);
    checkWithoutBuffer(greenMetadataContract, parseGreenMetadata);
}

TEST_F(AvcGreenMetadata, payloadSizeIsNotUsed) {
    for (const int payloadSize : {INT_MIN, -1, 0, 1, 1000, INT_MAX}) {
        Outcome<Green> expected;
        expected.record = percentages(0);
        expected.cursor = atBit(6 * 8);
        check(
            {0, 0, 0x1E, 0x3C, 0x5A, 0xFF, 0x77},
            [&](QVByteStream& stream, Green* record) {
                return QVNaluParser::parserAvcGreenMetaData(stream, payloadSize, record);
            },
            expected);
    }
}

TEST_F(AvcGreenMetadata, everyCut) {
    for (uint32_t period_type = 0; period_type < 5; ++period_type) {
        checkEveryCut(greenMetadataContract, parseGreenMetadata,
                      [&](BitWriter& out) { write(out, complexityMetrics(period_type)); });
    }
    for (uint32_t type = 1; type < 4; ++type) {
        GreenMetadataSyntax coded;
        coded.green_metadata_type = type;
        coded.xsd_metric_type = 0xDB;
        coded.xsd_metric_value = 0xB6DB;
        checkEveryCut(greenMetadataContract, parseGreenMetadata, [&](BitWriter& out) { write(out, coded); });
    }
}

TEST_F(AvcGreenMetadata, anyBytes) {
    checkAnyBytes(greenMetadataContract, parseGreenMetadata);
}

}  // namespace
}  // namespace qv_test
