// Faults as text.
#include "bitstream/Read.h"

namespace qv {

namespace {

std::string problemOf(const Fault& fault) {
    switch (fault.kind) {
        case FaultKind::None:
            break;
        case FaultKind::EndOfData:
            return "the data ends";
        case FaultKind::OutOfRange:
            if (fault.least == fault.most) {
                return std::to_string(fault.value) + " instead of " + std::to_string(fault.least);
            }
            return std::to_string(fault.value) + " is not in " + std::to_string(fault.least) + ".." +
                   std::to_string(fault.most);
        case FaultKind::CodeTooLong:
            return "an Exp-Golomb code of more than 31 leading zero bits";
        case FaultKind::OtherUnit:
            return "a unit of type " + std::to_string(fault.value);
        case FaultKind::OtherPayload:
            return "a message of type " + std::to_string(fault.value);
        case FaultKind::DataLeft:
            return "more data follows";
        case FaultKind::TooManyEntries:
            return std::to_string(fault.value) + " entries";
        case FaultKind::NoSuchSet:
            return "there is no parameter set " + std::to_string(fault.value);
    }
    return {};
}

}  // namespace

std::string textOf(const Element& element) {
    std::string text = element.name != nullptr ? element.name : "";
    for (uint32_t i = 0; i < element.subscriptCount; ++i) {
        text += "[" + std::to_string(element.subscripts[i]) + "]";
    }
    return text;
}

std::string textOf(const Fault& fault) {
    const std::string problem = problemOf(fault);
    if (problem.empty()) {
        return {};
    }
    std::string text = textOf(fault.element);
    if (fault.structure != nullptr) {
        text += std::string(" in ") + fault.structure->name + " (" + fault.structure->clause + ")";
    }
    return text + " at bit " + std::to_string(fault.firstBit) + ": " + problem;
}

}  // namespace qv
