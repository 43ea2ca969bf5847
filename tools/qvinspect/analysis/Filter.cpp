#include "analysis/Filter.h"

#include <algorithm>

#include "analysis/SeiTypes.h"

namespace qvinspect {

namespace {

bool isAmong(const std::vector<uint32_t>& values, uint32_t value) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

// payload: without emulation prevention bytes. A country code of 0xFF is followed by one more byte of it.
bool hasCodes(const std::vector<uint8_t>& payload, const qv::sei::T35Code& wanted) {
    qv::sei::T35Code code;
    size_t next = 0;
    const auto take = [&] { return next < payload.size() ? payload[next++] : uint8_t{0}; };
    code.itu_t_t35_country_code = take();
    if (code.itu_t_t35_country_code == qv::sei::T35Code::kExtendedCountry) {
        code.itu_t_t35_country_code_extension_byte = take();
    }
    if (payload.size() >= next + 2) {
        code.itu_t_t35_terminal_provider_code = static_cast<uint32_t>(payload[next] << 8 | payload[next + 1]);
    }
    return !payload.empty() && wanted.covers(code);
}

template <typename Value, typename Condition>
void keepOnly(std::vector<Value>& values, const Condition& condition) {
    values.erase(
        std::remove_if(values.begin(), values.end(), [&](const Value& value) { return !condition(value); }),
        values.end());
}

}  // namespace

void Filter::apply(AccessUnitView& view) const {
    view.isShown = (!keyOnly || view.report.isKey) && (!errorsOnly || view.errors > 0);
    if (!view.isShown) {
        view.units.clear();
        view.recordItems.clear();
        return;
    }
    const auto isPayloadShown = [this](uint32_t payloadType, const std::vector<uint8_t>& payload) {
        return (seiTypes.empty() || isAmong(seiTypes, payloadType)) &&
               (t35.empty() || (payloadType == kUserDataRegistered &&
                                std::any_of(t35.begin(), t35.end(), [&](const qv::sei::T35Code& codes) {
                                    return hasCodes(payload, codes);
                                })));
    };
    const bool choosesMessages = !seiTypes.empty() || !t35.empty();
    const auto isUnitShown = [&](const UnitView& unit) {
        const bool isTyped = unit.report->state == UnitState::Typed;
        return (unitTypes.empty() || (isTyped && isAmong(unitTypes, unit.report->type))) &&
               (!choosesMessages || !unit.messages.empty() || !unit.items.empty());
    };
    for (UnitView& unit : view.units) {
        keepOnly(unit.messages, [&](const SeiMessage* message) {
            return isPayloadShown(message->payloadType, message->payload);
        });
        keepOnly(unit.items,
                 [&](const SeiItem* item) { return isPayloadShown(item->payloadType, item->bytes); });
    }
    keepOnly(view.units, isUnitShown);
    keepOnly(view.recordItems, [&](const RecordItemView& record) {
        return (unitTypes.empty() || isAmong(unitTypes, record.nalUnitType)) &&
               isPayloadShown(record.item->payloadType, record.item->bytes);
    });
    const bool choosesUnits = !unitTypes.empty() || choosesMessages;
    view.isShown = !choosesUnits || !view.units.empty();
}

}  // namespace qvinspect
