// The units and messages of access units that filters select.
#include "analysis/Filter.h"

#include <gtest/gtest.h>

#include "AccessUnits.h"
#include "InspectSupport.h"
#include "report/Level.h"

namespace qv_test {
namespace {

using qvinspect::Filter;
using qvinspect::Level;

const Bytes kCaptions = hex("B5 00 31 47 41 39 34 03");
const Bytes kVivid = hex("26 00 04 00 05");
const Bytes kExtended = hex("FF 01 00 31 00");

// Two units of slices, and two of SEI with the messages 4 1 4 and 5 4.
MadeAccessUnit accessUnit() {
    return MadeAccessUnit()
        .seiUnit(6, {{4, kCaptions}, {1, hex("00")}, {4, kVivid}})
        .seiUnit(6, {{5, hex("B5 00 31")}, {4, kExtended}})
        .unit(1)
        .unit(5);
}

// Each unit by its type, with the types of its messages: "6(4 1 4) 6(5 4) 1 5"; "-" if not shown.
std::string shown(const Filter& filter, const MadeAccessUnit& made) {
    qvinspect::AccessUnitView view = made.view(1);
    filter.apply(view);
    if (!view.isShown) {
        EXPECT_TRUE(view.units.empty());
        return "-";
    }
    std::string text;
    for (const auto& unit : view.units) {
        text += (text.empty() ? "" : " ") + std::to_string(unit.report->type);
        std::string messages;
        for (const auto* message : unit.messages) {
            messages += (messages.empty() ? "" : " ") + std::to_string(message->payloadType);
        }
        text += messages.empty() ? "" : "(" + messages + ")";
    }
    return text;
}

Filter types(std::vector<uint32_t> unitTypes, std::vector<uint32_t> seiTypes = {}) {
    Filter filter;
    filter.unitTypes = std::move(unitTypes);
    filter.seiTypes = std::move(seiTypes);
    return filter;
}

Filter t35(uint32_t country, std::optional<uint32_t> provider = std::nullopt) {
    Filter filter;
    filter.t35 = {{country, 0, provider}};
    return filter;
}

TEST(Filter, chooses) {
    Filter both = t35(0xB5);
    both.t35.push_back({0x26, 0, 0x0004});
    Filter captionsIn5 = t35(0xB5);
    captionsIn5.seiTypes = {5};
    Filter captionsInSlices = t35(0xB5);
    captionsInSlices.unitTypes = {1};
    const std::pair<Filter, const char*> cases[] = {
        {{}, "6(4 1 4) 6(5 4) 1 5"},
        {types({5}), "5"},
        {types({1, 5}), "1 5"},
        {types({6}), "6(4 1 4) 6(5 4)"},
        {types({7}), "-"},
        {types({}, {1}), "6(1)"},
        {types({}, {5, 1}), "6(1) 6(5)"},
        {types({}, {137}), "-"},
        {types({6}, {4}), "6(4 4) 6(4)"},
        {types({1}, {4}), "-"},
        {t35(0xB5), "6(4)"},
        {t35(0xB5, 0x0031), "6(4)"},
        {t35(0xB5, 0x002F), "-"},
        {t35(0x26, 0x0004), "6(4)"},
        {t35(0xFF), "6(4)"},
        {t35(0xFF, 0x0031), "6(4)"},  // after the extension byte
        {both, "6(4 4)"},
        {captionsIn5, "-"},  // a message of type 5 is never a T.35 message
        {captionsInSlices, "-"},
    };
    for (const auto& [filter, expected] : cases) {
        EXPECT_EQ(shown(filter, accessUnit()), expected);
    }
}

TEST(Filter, payloadsTooShortForTheirCodes) {
    const std::pair<Bytes, const char*> cases[] = {
        {{}, "-"}, {hex("B5"), "-"}, {hex("B5 00"), "-"}, {hex("FF 01 00"), "-"}, {hex("B5 00 31"), "6(4)"}};
    for (const auto& [payload, expected] : cases) {
        Filter filter = t35(0xB5, 0x0031);
        filter.t35.push_back({0xFF, 0, 0x0031});
        EXPECT_EQ(shown(filter, MadeAccessUnit().seiUnit(6, {{4, payload}})), expected);
    }
    EXPECT_EQ(shown(t35(0xB5), MadeAccessUnit().seiUnit(6, {{4, hex("B5")}})), "6(4)");
}

TEST(Filter, keyOnly) {
    Filter filter;
    filter.keyOnly = true;
    EXPECT_EQ(shown(filter, MadeAccessUnit().unit(5)), "-");
    EXPECT_EQ(shown(filter, MadeAccessUnit().unit(5).key()), "5");
    filter.unitTypes = {1};
    EXPECT_EQ(shown(filter, MadeAccessUnit().unit(5).key()), "-");
}

TEST(Filter, errorsOnly) {
    using qvinspect::Severity;
    Filter filter;
    filter.errorsOnly = true;
    EXPECT_EQ(shown(filter, MadeAccessUnit().unit(1)), "-");
    EXPECT_EQ(shown(filter, MadeAccessUnit().unit(1).finding(Severity::Note, 0, "note")), "-");
    EXPECT_EQ(shown(filter, MadeAccessUnit().unit(1).finding(Severity::Error, 0, "error")), "1");
    EXPECT_EQ(shown(filter, MadeAccessUnit().unit(1).brokenUnit(qvinspect::UnitState::ForbiddenBit)), "1 0");
    filter.unitTypes = {0};  // a unit that is not typed has no type
    EXPECT_EQ(shown(filter, MadeAccessUnit().unit(1).brokenUnit(qvinspect::UnitState::ForbiddenBit)), "-");
}

TEST(Filter, theLevelThatShowsWhatIsChosen) {
    Filter key;
    key.keyOnly = true;
    Filter errors;
    errors.errorsOnly = true;
    Filter keySei = key;
    keySei.seiTypes = {4};
    EXPECT_EQ(levelFor(Filter()), Level::Summary);
    EXPECT_EQ(levelFor(key), Level::Samples);
    EXPECT_EQ(levelFor(errors), Level::Samples);
    EXPECT_EQ(levelFor(types({5})), Level::Nalus);
    EXPECT_EQ(levelFor(types({6}, {4})), Level::Sei);
    EXPECT_EQ(levelFor(t35(0xB5)), Level::Sei);
    EXPECT_EQ(levelFor(keySei), Level::Sei);
}

}  // namespace
}  // namespace qv_test
