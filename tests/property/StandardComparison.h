// One sequence parameter set read by the player's library and as the standard says, and what explains each
// difference: the tag of a departure in docs/departures.md.
#ifndef QV_TESTS_STANDARDCOMPARISON_H
#define QV_TESTS_STANDARDCOMPARISON_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "BitWriter.h"
#include "QVNaluParser.h"

namespace qv_test {

struct StandardComparison {
    std::map<std::string, int> tags;       // differences by the tag that explains them
    std::vector<std::string> unexplained;  // the others, in words
    int fieldsCompared = 0;
};

// What parseAvcSps is given.
enum class AvcInput {
    Unit,            // the unit as it is in the stream
    WithoutEscapes,  // the unit without emulation prevention bytes, as its documentation asks
};

// A unit of type 7, its header included. The verdict and every field up to vui_parameters_present_flag are
// compared.
StandardComparison compareAvcSps(const Bytes& unit, AvcInput input);

// A unit of type 33, its header included. The verdict and every field up to
// sps_sub_layer_ordering_info_present_flag are compared.
StandardComparison compareHevcSps(const Bytes& unit);

// The same for what a parser is said to have made of the unit.
StandardComparison compareAvcSps(const Bytes& unit, AvcInput input, bool isAccepted, const QVAvcSps& sps);
StandardComparison compareHevcSps(const Bytes& unit, bool isAccepted, const QVHevcSps& sps);

}  // namespace qv_test

#endif
