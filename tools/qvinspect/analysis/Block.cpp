#include "analysis/Block.h"

#include <fmt/format.h>

namespace qvinspect {

namespace {

struct ValueText {
    int hexDigits;

    std::string operator()(int64_t value) const {
        return hexDigits > 0 ? fmt::format("0x{:0{}x}", value, hexDigits) : fmt::format("{}", value);
    }
    std::string operator()(double value) const { return fmt::format("{}", value); }
    std::string operator()(const std::string& value) const { return value; }
    std::string operator()(const FieldList& value) const { return fmt::format("{}", fmt::join(value, " ")); }
};

}  // namespace

std::string valueText(const Field& field) {
    return std::visit(ValueText{field.hexDigits}, field.value);
}

}  // namespace qvinspect
