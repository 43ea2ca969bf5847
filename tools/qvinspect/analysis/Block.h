// Named values as they are shown: a parsed structure with its fields.
#ifndef QVINSPECT_BLOCK_H
#define QVINSPECT_BLOCK_H

#include <fmt/format.h>

#include <string>
#include <utility>
#include <vector>

namespace qvinspect {

struct Field {
    std::string name;   // the element's name in the standard, or our own for what is derived
    std::string value;  // as coded, or as derived
    std::string note;   // what the value stands for; may be empty
};

struct Block {
    std::vector<Field> fields;

    template <typename Value>
    void add(std::string name, const Value& value, std::string note = {}) {
        fields.push_back({std::move(name), fmt::format("{}", value), std::move(note)});
    }
};

}  // namespace qvinspect

#endif
