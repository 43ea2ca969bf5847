// Names of active_format.
#include "bitstream/names/ActiveFormat.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using testing::StrEq;

const std::set<uint32_t> kDefined = {2, 3, 4, 8, 9, 10, 11, 13, 14, 15};

TEST(ActiveFormat, othersAreReserved) {
    for (uint32_t active_format = 0; active_format < 16; ++active_format) {
        const bool isReserved = kDefined.count(active_format) == 0;
        for (const qv::Name& name :
             {qv::nameOfActiveFormat(active_format), qv::meaningOfActiveFormat(active_format, true),
              qv::meaningOfActiveFormat(active_format, false)}) {
            EXPECT_EQ(name.number, active_format);
            EXPECT_EQ(std::string(name.name) == "Reserved", isReserved) << active_format;
            EXPECT_STRNE(name.clause, "");
        }
    }
}

TEST(ActiveFormat, meaningDependsOnTheCodedFrame) {
    EXPECT_THAT(qv::nameOfActiveFormat(8).name, StrEq("As the coded frame"));
    EXPECT_THAT(qv::meaningOfActiveFormat(8, false).name, StrEq("Full frame 4:3"));
    EXPECT_THAT(qv::meaningOfActiveFormat(8, true).name, StrEq("Full frame 16:9"));
    EXPECT_THAT(qv::meaningOfActiveFormat(9, true).name, StrEq("4:3 pillarbox, centred"));
    EXPECT_THAT(qv::meaningOfActiveFormat(10, false).name, StrEq("16:9 letterbox, centred"));
    EXPECT_THAT(qv::meaningOfActiveFormat(11, true).name, StrEq("14:9 pillarbox, centred"));
}

}  // namespace
