// A parsed structure as a list of named values to be shown.
#ifndef QVINSPECT_BLOCK_H
#define QVINSPECT_BLOCK_H

#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace qvinspect {

using FieldList = std::vector<int64_t>;  // elements that belong together, such as x and y
using FieldValue = std::variant<int64_t, double, std::string, FieldList>;

struct Field {
    std::string name;   // of the syntax element in the standard, or a descriptive one for a derived value
    FieldValue value;   // as coded, or as derived
    std::string note;   // the meaning of the value; may be empty
    int hexDigits = 0;  // an integer is shown in hexadecimal with this many digits; 0 for decimal

    // The meaning in unit of the value, or of each in a list; may be empty.
    std::vector<double> derived;
    std::string unit;  // e.g. "cd/m2"; empty for a plain number

    void derive(std::vector<double> values, std::string unitOfValues = {}) {
        derived = std::move(values);
        unit = std::move(unitOfValues);
    }
};

// The value as text: the numbers of a list with blanks between them.
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
