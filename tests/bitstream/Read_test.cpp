// Elements and faults as text.
#include "bitstream/Read.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using qv::Element;
using qv::Fault;
using qv::FaultKind;

TEST(Element, text) {
    EXPECT_EQ(qv::textOf(Element()), "");
    EXPECT_EQ(qv::textOf(qv::detail::elementOf("profile_idc")), "profile_idc");
    EXPECT_EQ(qv::textOf(qv::detail::elementOf(qv::at("bit_rate_value_minus1", 0))),
              "bit_rate_value_minus1[0]");
    EXPECT_EQ(qv::textOf(qv::detail::elementOf(qv::at("res_coeff_q", 1, 2, 3, 4, 4294967295U))),
              "res_coeff_q[1][2][3][4][4294967295]");
}

Fault faultOf(FaultKind kind) {
    static constexpr qv::Structure kStructure = {"hrd_parameters()", "E.1.2"};
    Fault fault;
    fault.kind = kind;
    fault.element = qv::detail::elementOf(qv::at("cpb_cnt_minus1", 2));
    fault.structure = &kStructure;
    fault.firstBit = 197;
    fault.value = 32;
    fault.least = -1;
    fault.most = 31;
    return fault;
}

TEST(Fault, text) {
    const std::string where = "cpb_cnt_minus1[2] in hrd_parameters() (E.1.2) at bit 197: ";
    EXPECT_EQ(qv::textOf(Fault()), "");
    EXPECT_EQ(qv::textOf(faultOf(FaultKind::EndOfData)), where + "the data ends");
    EXPECT_EQ(qv::textOf(faultOf(FaultKind::OutOfRange)), where + "32 is not in -1..31");
    EXPECT_EQ(qv::textOf(faultOf(FaultKind::CodeTooLong)),
              where + "an Exp-Golomb code of more than 31 leading zero bits");
    EXPECT_EQ(qv::textOf(faultOf(FaultKind::OtherUnit)), where + "a unit of type 32");
    EXPECT_EQ(qv::textOf(faultOf(FaultKind::TooManyEntries)), where + "32 entries");
    EXPECT_EQ(qv::textOf(faultOf(FaultKind::NoSuchSet)), where + "there is no parameter set 32");
    Fault oneValue = faultOf(FaultKind::OutOfRange);
    oneValue.least = 31;
    EXPECT_EQ(qv::textOf(oneValue), where + "32 instead of 31");
    Fault outside = faultOf(FaultKind::EndOfData);
    outside.structure = nullptr;
    EXPECT_EQ(qv::textOf(outside), "cpb_cnt_minus1[2] at bit 197: the data ends");
    EXPECT_EQ(qv::textOf(Fault()), "");
    EXPECT_EQ(qv::textOf(faultOf(static_cast<FaultKind>(99))), "");
}

TEST(Fault, isTrueWhenThereIsOne) {
    EXPECT_FALSE(Fault());
    EXPECT_TRUE(faultOf(FaultKind::EndOfData));
    qv::Read<int> read = {};
    EXPECT_TRUE(read.ok());
    read.fault = faultOf(FaultKind::OutOfRange);
    EXPECT_FALSE(read.ok());
    EXPECT_TRUE(qv::Written().ok());
    EXPECT_TRUE(qv::Sized().ok());
}

TEST(Bytes, parts) {
    constexpr uint8_t kBytes[] = {1, 2, 3, 4};
    const qv::Bytes bytes = {kBytes, 4};
    EXPECT_EQ(bytes.from(1).size, 3U);
    EXPECT_EQ(bytes.from(1)[0], 2);
    EXPECT_EQ(bytes.from(4).size, 0U);
    EXPECT_EQ(bytes.from(SIZE_MAX).size, 0U);
    EXPECT_EQ(bytes.first(2).size, 2U);
    EXPECT_EQ(bytes.first(9).size, 4U);
    EXPECT_TRUE(qv::Bytes().empty());
    EXPECT_EQ(qv::Bytes().begin(), qv::Bytes().end());
}

}  // namespace
