// The access units of a raw stream that are fields.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "AvcPictures.h"
#include "InspectSupport.h"

namespace qv_test {
namespace {

std::vector<bool> fieldsOf(const std::vector<Bytes>& units) {
    qvinspect::RawReader reader(std::make_unique<MemorySource>(byteStream(units)),
                                byteStreamOf(QVCodecIDAvc));
    std::vector<bool> fields;
    qvinspect::AccessUnit accessUnit;
    while (reader.next(accessUnit)) {
        fields.push_back(accessUnit.isField);
    }
    return fields;
}

Bytes interlaced(uint32_t frame_num, uint32_t field_pic_flag, uint32_t bottom_field_flag = 0,
                 uint32_t first_mb_in_slice = 0) {
    AvcSliceSyntax slice;
    slice.writesFieldFlag = true;
    slice.frame_num = frame_num;
    slice.field_pic_flag = field_pic_flag;
    slice.bottom_field_flag = bottom_field_flag;
    slice.first_mb_in_slice = first_mb_in_slice;
    return avcSliceUnit(slice);
}

// The slice that begins an access unit is read before the previous one is delivered.
TEST(Fields, areReportedForTheirAccessUnit) {
    const Bytes sps = avcSpsUnit([](auto& s) {
        s.frame_mbs_only_flag = 0;
        s.mb_adaptive_frame_field_flag = 0;
    });
    const Bytes sei = hex("06 05 01 AA 80");
    EXPECT_EQ(fieldsOf({sps, avcPpsUnit(),                         //
                        interlaced(0, 1), interlaced(0, 1, 0, 5),  // two slices
                        interlaced(0, 1, 1),                       //
                        sei, interlaced(1, 0),                     //
                        interlaced(2, 1), sei, interlaced(2, 1, 1), interlaced(3, 0)}),
              (std::vector<bool>{true, true, false, true, true, false}));
}

TEST(Fields, framesAlone) {
    EXPECT_EQ(fieldsOf({avcSpsUnit(), avcPpsUnit(), avcSliceUnit({})}), std::vector<bool>{false});
}

}  // namespace
}  // namespace qv_test
