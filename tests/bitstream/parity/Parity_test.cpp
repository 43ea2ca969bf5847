// Every element of parameter sets, delimiters, ends and filler data against libavcodec's trace_headers
// filter: name with subscripts, position, width and value.
#include <gtest/gtest.h>

#include <algorithm>
#include <bitset>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "FileUnits.h"
#include "StreamFolder.h"
#include "TraceHeaders.h"
#include "bitstream/avc/Unit.h"
#include "bitstream/hevc/Unit.h"

using qv::Codec;

namespace qv_test {

namespace {

namespace fs = std::filesystem;

// A name that the filter prints otherwise than the standard.
struct Alias {
    const char* theirs;
    const char* ours;
};

constexpr Alias kAliases[] = {
    // The name of the editions before 2012; 7.3.2.1.1 has "value".
    {"gaps_in_frame_num_allowed_flag", "gaps_in_frame_num_value_allowed_flag"},
    // The name of D.1.40 and D.2.49 is longer.
    {"payload_byte", "reserved_sei_message_payload_byte"},
    // The names in H.264 D.1.1; H.265 D.2.1 has "payload" in them.
    {"bit_equal_to_one", "payload_bit_equal_to_one"},
    {"bit_equal_to_zero", "payload_bit_equal_to_zero"},
    // The name in H.264; H.265 E.2.1 shortens it.
    {"matrix_coefficients", "matrix_coeffs"},
    // The names of H.264 D.1.1; H.265 D.2.1 has longer ones.
    {"bit_equal_to_one", "payload_bit_equal_to_one"},
    {"bit_equal_to_zero", "payload_bit_equal_to_zero"},
};

// A unit where the traces part, and the filter's last element before that.
struct KnownDifference {
    const char* file;
    uint32_t nal_unit_type;
    const char* theirLast;
    const char* reason;
};

constexpr KnownDifference kKnownDifferences[] = {
    {"avc_green.h264", 6, "rbsp_alignment_zero_bit",
     "D.1.28: the filter does not know green_metadata(), which is cut"},
    {"hevc_alpha.h265", 32, "extension_data", "F.7.3.2.1.1: the filter does not know vps_extension()"},
    {"hevc_mvhevc.h265", 32, "extension_data", "F.7.3.2.1.1: the filter does not know vps_extension()"},
    {"hevc_mvhevc.h265", 33, "sps_extension_4bits",
     "F.7.3.2.2.4: the filter does not know sps_multilayer_extension()"},
    {"hevc_mvhevc.h265", 34, "pps_seq_parameter_set_id", "the filter has not read the SPS"},
    {"hevc_noise.h265", 32, "rbsp_stop_one_bit",
     "7.2: the last 1 bit is the rbsp_stop_one_bit; the filter takes the first one after the elements"},
    {"hevc_noise.h265", 34, "pps_seq_parameter_set_id", "the filter has not read the SPS, which is damaged"},
};

// Units that the filter passes by: prefix units and subset SPS of H.264; ends and filler data of H.265, and
// layers above 0.
bool isPassedBy(Codec codec, qv::Bytes unit) {
    const uint32_t avcType = unit[0] & 0x1FU;
    const uint32_t hevcType = unit[0] >> 1 & 0x3FU;
    const bool isOfBaseLayer = (unit[0] & 1U) == 0 && unit[1] >> 3 == 0;
    return codec == Codec::Avc ? avcType == 14 || avcType == 15
                               : (hevcType >= 36 && hevcType <= 38) || !isOfBaseLayer;
}

class ElementList : public qv::TraceVisitor {
public:
    void element(const qv::TracedElement& traced) override {
        elements.push_back(
            {traced.firstBit, qv::textOf(traced.element), traced.width, traced.value, traced.bits});
    }

    std::vector<WitnessElement> elements;
};

struct Counts {
    size_t files = 0;
    size_t units = 0;
    size_t elements = 0;   // that agree in name, position, width and value
    size_t damaged = 0;    // units with a fault that both find, or in a payload that the filter does not read
    size_t known = 0;      // units in kKnownDifferences, which agree up to the difference
    size_t notTraced = 0;  // units that the filter passes by
};

std::string withoutSubscripts(const std::string& name) {
    return name.substr(0, name.find('['));
}

std::string standardName(const std::string& theirs) {
    for (const Alias& alias : kAliases) {
        if (theirs == alias.theirs) {
            return alias.ours;
        }
    }
    return theirs;
}

// True for an element that has subscripts in the standard's table but not in the filter's trace
// (reserved_zero_2bits[ i ], 7.3.3), or the other way round (delta_scale, 7.3.2.1.1.1), or other ones: the
// filter counts the bytes of a T.35 payload from its country code on, where neither standard has a subscript.
bool hasOtherSubscripts(const std::string& name) {
    return name == "reserved_zero_2bits" || name == "delta_scale" || name == "itu_t_t35_payload_byte";
}

bool isSameName(const std::string& ours, const std::string& theirs) {
    return ours == theirs || ours == standardName(theirs) ||
           (hasOtherSubscripts(withoutSubscripts(ours)) &&
            withoutSubscripts(ours) == withoutSubscripts(theirs));
}

// True for a byte of a payload that the filter has no table for, or of user data, whose content it does not
// look at.
bool isPayloadByte(const WitnessElement& element) {
    return withoutSubscripts(element.name) == "payload_byte" ||
           withoutSubscripts(element.name) == "itu_t_t35_payload_byte" ||
           withoutSubscripts(element.name) == "user_data_payload_byte";
}

// The filter's bytes of a payload as the elements that are read in them here: each gets the bits of the bytes
// that it is in.
//
// endsAtFault: true when elements of a payload end before its bytes do, which a fault may explain.
std::vector<WitnessElement> asElements(const std::vector<WitnessElement>& theirs,
                                       const std::vector<WitnessElement>& ours, bool& endsAtFault) {
    std::vector<WitnessElement> elements;
    size_t next = 0;
    for (size_t i = 0; i < theirs.size();) {
        size_t end = i;
        std::string bits;
        for (; end < theirs.size() && isPayloadByte(theirs[end]); ++end) {
            bits += std::bitset<8>(theirs[end].bits).to_string();
        }
        if (end == i) {
            elements.push_back(theirs[i++]);
            continue;
        }
        const uint64_t first = theirs[i].firstBit;
        while (next < ours.size() && ours[next].firstBit < first) {
            ++next;
        }
        const size_t before = elements.size();
        uint64_t at = first;
        for (; next < ours.size() && ours[next].firstBit == at && ours[next].width <= 64 &&
               at + ours[next].width <= first + bits.size();
             ++next) {
            WitnessElement element = ours[next];
            const std::string own = bits.substr(at - first, element.width);
            const uint64_t value = own.empty() ? 0 : std::stoull(own, nullptr, 2);
            if (value != element.bits) {
                break;
            }
            elements.push_back(element);
            at += element.width;
        }
        const uint64_t payloadEnd = first + bits.size();
        if (at != payloadEnd && at != first && (next == ours.size() || ours[next].firstBit >= payloadEnd)) {
            endsAtFault = true;
        } else if (at != payloadEnd) {
            elements.resize(before);
            elements.insert(elements.end(), theirs.begin() + static_cast<std::ptrdiff_t>(i),
                            theirs.begin() + static_cast<std::ptrdiff_t>(end));
        }
        i = end;
    }
    return elements;
}

std::string textOf(const WitnessElement& element) {
    return element.name + " at bit " + std::to_string(element.firstBit) + ", " +
           std::to_string(element.width) + " bits: " + std::to_string(element.value);
}

bool isSame(const WitnessElement& ours, const WitnessElement& theirs) {
    return ours.firstBit == theirs.firstBit && ours.width == theirs.width && ours.value == theirs.value &&
           isSameName(ours.name, theirs.name);
}

// The filter reads reserved bits in pieces of 24 bits at most, each under the name of the whole; those of an
// extension of a payload in pieces of 8.
std::vector<WitnessElement> joined(const std::vector<WitnessElement>& elements) {
    std::vector<WitnessElement> whole;
    for (const WitnessElement& element : elements) {
        const uint32_t piece = element.name == "reserved_payload_extension_data" ? 8 : 24;
        const bool isPiece = !whole.empty() && whole.back().name == element.name &&
                             whole.back().width % piece == 0 &&
                             element.name.find("reserved") != std::string::npos;
        if (isPiece) {
            whole.back().value = whole.back().value << element.width | element.value;
            whole.back().width += element.width;
        } else {
            whole.push_back(element);
        }
    }
    return whole;
}

// Elements that agree before the first difference.
size_t agreeing(const std::vector<WitnessElement>& ours, const std::vector<WitnessElement>& theirs) {
    const size_t both = std::min(ours.size(), theirs.size());
    size_t same = 0;
    while (same < both && isSame(ours[same], theirs[same])) {
        ++same;
    }
    return same;
}

// After a fault in an SEI message the trace of the unit goes on with the next one.
size_t elementsBefore(const qv::Fault& fault, const std::vector<WitnessElement>& elements) {
    const auto later = std::find_if(elements.begin(), elements.end(), [&](const WitnessElement& element) {
        return element.firstBit >= fault.firstBit;
    });
    return static_cast<size_t>(later - elements.begin());
}

std::string elementAt(const std::vector<WitnessElement>& elements, size_t i) {
    return i < elements.size() ? textOf(elements[i]) : "no element";
}

class FileComparison {
public:
    FileComparison(std::string file, const FileUnits& in, Counts& counts)
        : file_(std::move(file)), in_(in), counts_(counts), witness_(in.codec) {}

    template <class Sets, class Trace>
    void run(const Trace& traceUnit) {
        Sets sets;
        for (number_ = 0; number_ < in_.units.size(); ++number_) {
            const qv::Bytes unit = {in_.units[number_].data(), in_.units[number_].size()};
            ElementList list;
            const qv::UnitTrace trace = traceUnit(unit, sets, list);
            sets.take(unit);
            if (trace.isWhole) {
                compare(unit, trace, list.elements);
            }
        }
    }

private:
    void compare(qv::Bytes unit, const qv::UnitTrace& trace, const std::vector<WitnessElement>& ours) {
        WitnessTrace theirs = witness_.trace(unit);
        if (theirs.elements.empty()) {
            ++counts_.notTraced;
            EXPECT_TRUE(isPassedBy(in_.codec, unit)) << where(trace) << theirs.complaint;
            return;
        }
        bool endsAtFault = false;
        theirs.elements = asElements(joined(theirs.elements), ours, endsAtFault);
        const size_t same = agreeing(ours, theirs.elements);
        ++counts_.units;
        counts_.elements += same;
        const bool isWhole =
            same == ours.size() && same == theirs.elements.size() && theirs.complaint.empty();
        const bool bothStop = trace.fault && !theirs.complaint.empty() &&
                              same >= std::min(elementsBefore(trace.fault, ours), theirs.elements.size());
        if (isWhole && trace.ok()) {
            return;
        }
        if (bothStop || (isWhole && endsAtFault && trace.fault)) {
            ++counts_.damaged;
        } else if (isKnown(trace, theirs, same)) {
            ++counts_.known;
        } else {
            ADD_FAILURE() << where(trace) << "ours " << elementAt(ours, same) << "; the filter's "
                          << elementAt(theirs.elements, same) << "; our fault: " << qv::textOf(trace.fault)
                          << "; the filter's: " << theirs.complaint;
        }
    }

    // Everything before the difference agrees, and the filter's trace ends there.
    bool isKnown(const qv::UnitTrace& trace, const WitnessTrace& theirs, size_t same) const {
        const size_t last = std::min(same, theirs.elements.size() - 1);
        return std::any_of(std::begin(kKnownDifferences), std::end(kKnownDifferences),
                           [&](const KnownDifference& known) {
                               return file_ == known.file && trace.nal_unit_type == known.nal_unit_type &&
                                      theirs.elements[last].name == known.theirLast;
                           });
    }

    std::string where(const qv::UnitTrace& trace) const {
        return file_ + ", unit " + std::to_string(number_) + " of type " +
               std::to_string(trace.nal_unit_type) + ": ";
    }

    std::string file_;
    const FileUnits& in_;
    Counts& counts_;
    TraceHeaders witness_;
    size_t number_ = 0;
};

void compareFile(const fs::path& file, Counts& counts) {
    const FileUnits in = unitsOf(file);
    FileComparison comparison(file.filename(), in, counts);
    ++counts.files;
    if (in.codec == Codec::Avc) {
        comparison.run<qv::avc::ParameterSets>(qv::avc::traceUnit);
    } else {
        comparison.run<qv::hevc::ParameterSets>(qv::hevc::traceUnit);
    }
}

class Parity : public StreamFolderTest<::testing::Test> {};

TEST_P(Parity, EveryElementAgreesWithTraceHeaders) {
    Counts counts;
    for (const Stream& stream : streamsIn(GetParam().path)) {
        compareFile(GetParam().path / stream.name, counts);
    }
    std::cout << counts.files << " files, " << counts.units << " units, " << counts.elements
              << " elements agree; " << counts.damaged << " damaged units, " << counts.known
              << " units with a known difference, " << counts.notTraced << " that the filter passes by\n";
    EXPECT_GT(counts.files, 0U);
    EXPECT_GT(counts.elements, 0U);
}

INSTANTIATE_TEST_SUITE_P(Streams, Parity, everyStreamFolder(),
                         [](const auto& folder) { return nameOf(folder); });

}  // namespace

}  // namespace qv_test
