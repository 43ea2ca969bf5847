// Walks H.264 SEI units with any parameter set record and any list of requested types.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "FuzzItems.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    qv_fuzz::FuzzInput input(bytes, size);
    const std::deque<int> requested = input.payloadTypes(4);
    QVAvcSps sps{};
    const uint8_t record = input.byte();
    if ((record & 1) != 0) {
        input.fill(sps.nal_hrd_parameters_present_flag);
        input.fill(sps.vcl_hrd_parameters_present_flag);
        input.fill(sps.pic_struct_present_flag);
        input.fill(sps.time_offset_length);
        input.fill(sps.cpb_cnt);
        input.fill(sps.initial_cpb_removal_delay_length);
        input.fill(sps.cpb_removal_delay_length);
        input.fill(sps.dpb_output_delay_length);
    }
    const qv_fuzz::ExactBlock data = input.rest();

    qv_fuzz::Items items;
    QVNaluParser::parserAvcDataToSei(data.data(), data.size(), items.list, (record & 2) != 0 ? &sps : nullptr,
                                     requested);
    items.check(QVCodecIDAvc, requested);
    items.checkSideData();

    qv_fuzz::Items whole;
    const QVNaluParser::NaluInfo nalu{6, 0, data.size(), false};
    QVNaluParser::parserDataToSei(QVCodecIDAvc, data.data(), nalu, whole.list, &sps, requested);
    whole.check(QVCodecIDAvc, requested);
    return 0;
}
