#include "input/AccessUnitSplitter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace qv_test {
namespace {

using qvinspect::AccessUnitSplitter;
using qvinspect::UnitRole;
using qvinspect::UnitRoles;

// One letter a unit: D delimiter, M may begin, P begins a picture, c continues it, s seems to, b belongs.
class ScriptedRoles : public UnitRoles {
public:
    UnitRole roleOf(const unsigned char* unit, size_t) override {
        switch (*unit) {
            case 'D':
                return UnitRole::Delimiter;
            case 'M':
                return UnitRole::MayBegin;
            case 'P':
                return UnitRole::BeginsPicture;
            case 'c':
                return UnitRole::ContinuesPicture;
            case 's':
                return UnitRole::SeemsToContinue;
            default:
                return UnitRole::Belongs;
        }
    }
};

// The script with a bar before each access unit except the first.
std::string split(const std::string& script) {
    AccessUnitSplitter splitter(std::make_unique<ScriptedRoles>());
    std::string text;
    for (const char unit : script) {
        const auto byte = static_cast<unsigned char>(unit);
        const size_t begun = splitter.take(&byte, 1);
        text += unit;
        if (begun > 0) {
            text.insert(text.size() - begun, "|");
        }
    }
    const size_t last = splitter.unitsWithoutPicture();
    if (last > 0) {
        text.insert(text.size() - last, "|");
    }
    return text;
}

struct Case {
    const char* name;
    const char* expected;
};

void PrintTo(const Case& row, std::ostream* out) {
    *out << row.expected;
}

class SplitterTable : public ::testing::TestWithParam<Case> {};

TEST_P(SplitterTable, splits) {
    const std::string expected = GetParam().expected;
    std::string script = expected;
    script.erase(std::remove(script.begin(), script.end(), '|'), script.end());
    EXPECT_EQ(split(script), expected);
}

INSTANTIATE_TEST_SUITE_P(Rows, SplitterTable,
                         ::testing::Values(Case{"pictures", "P|P|P"},                        //
                                           Case{"slices", "Pcc|Pcc|Pc"},                     //
                                           Case{"parameterSetsAhead", "MMP|MMP|P"},          //
                                           Case{"delimiters", "DP|DP|DMP"},                  //
                                           Case{"delimiterBehindHeld", "P|MDP"},             //
                                           Case{"heldBetweenSlices", "MPMcMc|MMP"},          //
                                           Case{"heldWithOthersBetweenSlices", "PMbMbc|P"},  //
                                           Case{"trailingUnits", "Pbb|P"},                   //
                                           Case{"trailingUnitsBehindHeld", "Pb|MbbP"},       //
                                           Case{"onlyOthers", "bbb"},                        //
                                           Case{"onlyHeld", "MMM"},                          //
                                           Case{"othersAheadOfTheFirstPicture", "bMbP|P"},   //
                                           Case{"streamBeginsInsideAPicture", "cc|P"},       //
                                           Case{"seemsToContinue", "Pss|Ps"},                //
                                           Case{"seemsToContinueBehindHeld", "Ps|Mss|P"},    //
                                           Case{"delimiterBreaksAPicture", "P|Dc|P"},        //
                                           Case{"delimitersWithoutPictures", "DDP"},         //
                                           Case{"nothingBehindHeld", "P|MMb"},               //
                                           Case{"nothingAfterDelimiter", "P|D"}),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace qv_test
