#include "analysis/Filter.h"

#include <algorithm>

#include "analysis/SeiTypes.h"

namespace qvinspect {

namespace {

bool isAmong(const std::vector<uint32_t>& values, uint32_t value) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

// ITU-T T.35: a country code of 0xFF is followed by one more byte of it.
bool hasCodes(const std::vector<uint8_t>& payload, const T35Codes& codes) {
    constexpr uint8_t kExtended = 0xFF;
    if (payload.empty() || payload[0] != codes.itu_t_t35_country_code) {
        return false;
    }
    if (!codes.itu_t_t35_provider_code) {
        return true;
    }
    const size_t provider = payload[0] == kExtended ? 2 : 1;
    return payload.size() >= provider + 2 &&
           (payload[provider] << 8 | payload[provider + 1]) == *codes.itu_t_t35_provider_code;
}

}  // namespace

void Filter::apply(AccessUnitView& view) const {
    view.isShown = (!keyOnly || view.report.isKey) && (!errorsOnly || view.errors > 0);
    if (!view.isShown) {
        view.units.clear();
        return;
    }
    const auto isMessageShown = [this](const SeiMessage& message) {
        return (seiTypes.empty() || isAmong(seiTypes, message.payloadType)) &&
               (t35.empty() || (message.payloadType == kUserDataRegistered &&
                                std::any_of(t35.begin(), t35.end(), [&](const T35Codes& codes) {
                                    return hasCodes(message.payload, codes);
                                })));
    };
    const bool choosesMessages = !seiTypes.empty() || !t35.empty();
    const auto isUnitShown = [&](const UnitView& unit) {
        const bool isTyped = unit.report->state == UnitState::Typed;
        return (unitTypes.empty() || (isTyped && isAmong(unitTypes, unit.report->type))) &&
               (!choosesMessages || !unit.messages.empty());
    };
    for (UnitView& unit : view.units) {
        unit.messages.erase(
            std::remove_if(unit.messages.begin(), unit.messages.end(),
                           [&](const SeiMessage* message) { return !isMessageShown(*message); }),
            unit.messages.end());
    }
    view.units.erase(std::remove_if(view.units.begin(), view.units.end(),
                                    [&](const UnitView& unit) { return !isUnitShown(unit); }),
                     view.units.end());
    const bool choosesUnits = !unitTypes.empty() || choosesMessages;
    view.isShown = !choosesUnits || !view.units.empty();
}

}  // namespace qvinspect
