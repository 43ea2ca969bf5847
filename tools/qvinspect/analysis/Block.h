// Named values as they are shown: a parsed structure with its fields.
#ifndef QVINSPECT_BLOCK_H
#define QVINSPECT_BLOCK_H

#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace qvinspect {

using FieldList = std::vector<int64_t>;  // elements that are told together, as x and y
using FieldValue = std::variant<int64_t, double, std::string, FieldList>;

struct Field {
    std::string name;   // the element's name in the standard, or our own for what is derived
    FieldValue value;   // as coded, or as derived
    std::string note;   // what the value stands for; may be empty
    int hexDigits = 0;  // an integer is shown in hexadecimal with so many digits; 0 for decimal

    // What the value, or each of a list, stands for in unit: may be empty.
    std::vector<double> derived;
    std::string unit;  // e.g. "cd/m2"; empty for a plain number

    void derive(std::vector<double> values, std::string unitOfValues = {}) {
        derived = std::move(values);
        unit = std::move(unitOfValues);
    }
};

// The value as people read it: the numbers of a list with blanks between them.
std::string valueText(const Field& field);

struct Block {
    std::vector<Field> fields;

    // The new field, valid until the next one is added.
    Field& add(std::string name, FieldValue value, std::string note = {}) {
        return fields.emplace_back(Field{std::move(name), std::move(value), std::move(note), 0, {}, {}});
    }

    void addHex(std::string name, int64_t value, int digits, std::string note = {}) {
        add(std::move(name), value, std::move(note)).hexDigits = digits;
    }
};

}  // namespace qvinspect

#endif
