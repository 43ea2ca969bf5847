#include "AvcSeiRecord.h"

#include "SyntaxElements.h"

namespace qv_test {

namespace {

void append(Fields& fields, const std::string& name, const QVAvcClockTimestamp& timestamp) {
    fields.emplace_back(name + ".full_timestamp_flag", timestamp.full_timestamp_flag);
    fields.emplace_back(name + ".n_frames", timestamp.n_frames);
    fields.emplace_back(name + ".seconds_value", timestamp.seconds_value);
    fields.emplace_back(name + ".minutes_value", timestamp.minutes_value);
    fields.emplace_back(name + ".hours_value", timestamp.hours_value);
    fields.emplace_back(name + ".isDropFrame", timestamp.isDropFrame);
}

}  // namespace

Fields fieldsOf(const QVAvcSeiRecoveryPoint& record) {
    return {{"recovery_frame_cnt", record.recovery_frame_cnt}};
}

Fields fieldsOf(const QVAvcSeiBufferingPeriod& record) {
    Fields fields = {{"isValid", record.isValid}};
    for (size_t i = 0; i < 32; ++i) {
        fields.emplace_back(indexed("initial_cpb_removal_delay", i), record.initial_cpb_removal_delay[i]);
    }
    return fields;
}

Fields fieldsOf(const QVAvcSeiPictureTiming& record) {
    Fields fields = {{"isValid", record.isValid},
                     {"pic_struct", record.pic_struct},
                     {"ctTypeMask", record.ctTypeMask},
                     {"dpb_output_delay", record.dpb_output_delay},
                     {"cpb_removal_delay", record.cpb_removal_delay}};
    for (size_t i = 0; i < 3; ++i) {
        append(fields, indexed("clockTimestamps", i), record.clockTimestamps[i]);
    }
    fields.emplace_back("numClockTimestamps", record.numClockTimestamps);
    return fields;
}

Fields fieldsOf(const QVAvcSeiAfd& record) {
    return {{"isValid", record.isValid}, {"active_format", record.active_format}};
}

Fields fieldsOf(const QVAvcSeiFramePacking& record) {
    return {
        {"isValid", record.isValid},
        {"frame_packing_arrangement_id", record.frame_packing_arrangement_id},
        {"frame_packing_arrangement_cancel_flag", record.frame_packing_arrangement_cancel_flag},
        {"frame_packing_arrangement_type", record.frame_packing_arrangement_type},
        {"frame_packing_arrangement_repetition_period", record.frame_packing_arrangement_repetition_period},
        {"content_interpretation_type", record.content_interpretation_type},
        {"quincunx_sampling_flag", record.quincunx_sampling_flag},
        {"current_frame_is_frame0_flag", record.current_frame_is_frame0_flag}};
}

Fields fieldsOf(const QVAvcSeiDisplayOrientation& record) {
    return {{"isValid", record.isValid},
            {"anticlockwise_rotation", record.anticlockwise_rotation},
            {"hor_flip", record.hor_flip},
            {"ver_flip", record.ver_flip}};
}

Fields fieldsOf(const QVAvcSeiAlternativeTransfer& record) {
    return {{"isValid", record.isValid},
            {"preferred_transfer_characteristics", record.preferred_transfer_characteristics}};
}

Fields fieldsOf(const QVAvcSeiGreenMetaData& record) {
    return {{"green_metadata_type", record.green_metadata_type},
            {"period_type", record.period_type},
            {"num_seconds", record.num_seconds},
            {"num_pictures", record.num_pictures},
            {"percent_non_zero_macroblocks", record.percent_non_zero_macroblocks},
            {"percent_intra_coded_macroblocks", record.percent_intra_coded_macroblocks},
            {"percent_six_tap_filtering", record.percent_six_tap_filtering},
            {"percent_alpha_point_deblocking_instance", record.percent_alpha_point_deblocking_instance},
            {"xsd_metric_type", record.xsd_metric_type},
            {"xsd_metric_value", record.xsd_metric_value}};
}

::testing::AssertionResult sameFields(const Fields& actual, const Fields& expected) {
    std::string differences;
    for (size_t i = 0; i < actual.size(); ++i) {
        if (actual[i].second != expected[i].second) {
            differences += "\n  " + actual[i].first + " is " + std::to_string(actual[i].second) +
                           ", expected " + std::to_string(expected[i].second);
        }
    }
    if (!differences.empty()) {
        return ::testing::AssertionFailure() << "the records differ:" << differences;
    }
    return ::testing::AssertionSuccess();
}

ModelledData::ModelledData(const Bytes& bytes, unsigned firstBit, Buffer buffer)
    : CursorModel(bytes), size_(bytes.size()), buffer_(buffer) {
    skipBits(firstBit);
}

ExpectedLine errorLine(const std::string& function, const std::string& text) {
    return {0, function, text};
}

}  // namespace qv_test
