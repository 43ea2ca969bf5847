// Every element of slice headers against libavcodec's trace_headers filter, and every slice written again.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "FileUnits.h"
#include "StreamFolder.h"
#include "TraceHeaders.h"
#include "bitstream/avc/SliceHeader.h"
#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/hevc/SliceSegmentHeader.h"

namespace qv_test {

namespace {

namespace fs = std::filesystem;
using qv::Codec;

struct Counts {
    size_t slices = 0;
    size_t elements = 0;  // that agree in name, position, width and value
    size_t written = 0;   // slices that are written as they were
    size_t damaged = 0;   // slices with a fault that both find
    size_t passedBy = 0;  // slices that the filter does not read, or not to their end
};

class ElementList : public qv::TraceVisitor {
public:
    void element(const qv::TracedElement& traced) override {
        elements.push_back(
            {traced.firstBit, qv::textOf(traced.element), traced.width, traced.value, traced.bits});
    }

    std::vector<WitnessElement> elements;
};

std::string textOf(const std::vector<WitnessElement>& elements, size_t i) {
    if (i >= elements.size()) {
        return "no element";
    }
    const WitnessElement& element = elements[i];
    return element.name + " at bit " + std::to_string(element.firstBit) + ", " +
           std::to_string(element.width) + " bits: " + std::to_string(element.value);
}

std::string withoutSubscripts(const std::string& name) {
    return name.substr(0, name.find('['));
}

// Files with slices that the filter does not read, because it has not read a parameter set of theirs.
constexpr const char* kSetsNotRead[] = {"hevc_mvhevc.h265", "hevc_noise.h265"};

// The name in the semantics of 7.4.7.3; 7.3.6.3 has "delta_".
std::string standardName(const std::string& theirs) {
    return theirs.rfind("chroma_offset_l", 0) == 0 ? "delta_" + theirs : theirs;
}

// The filter gives subscripts to the commands of a list and to memory management control operations, where
// 7.3.3.1 and 7.3.3.3 have none.
bool isSame(const WitnessElement& ours, const WitnessElement& theirs) {
    return ours.firstBit == theirs.firstBit && ours.width == theirs.width && ours.value == theirs.value &&
           (ours.name == theirs.name || ours.name == withoutSubscripts(theirs.name) ||
            ours.name == standardName(theirs.name));
}

// The functions of a codec.
struct Avc {
    using Sets = qv::avc::ParameterSets;
    static constexpr Codec kCodec = Codec::Avc;

    static bool isSlice(qv::Bytes unit) {
        const uint32_t nal_unit_type = unit[0] & 0x1FU;
        return nal_unit_type == 1 || nal_unit_type == 2 || nal_unit_type == 5 || nal_unit_type == 19 ||
               nal_unit_type == 20;
    }
    static auto read(qv::Bytes unit, const Sets& sets) { return qv::avc::readSliceHeader(unit, sets); }
    static auto trace(qv::Bytes unit, const Sets& sets, qv::TraceVisitor& visitor) {
        return qv::avc::traceSliceHeader(unit, sets, visitor);
    }
    static qv::Written write(const qv::avc::SliceHeader& slice, const Sets& sets, qv::Bytes unit,
                             std::vector<uint8_t>& out) {
        return qv::avc::writeSlice(slice, sets, unit, out);
    }
};

struct Hevc {
    using Sets = qv::hevc::ParameterSets;
    static constexpr Codec kCodec = Codec::Hevc;

    static bool isSlice(qv::Bytes unit) {
        const bool isOfBaseLayer = (unit[0] & 1U) == 0 && unit.size > 1 && unit[1] >> 3 == 0;
        return isOfBaseLayer && qv::hevc::isSlice(unit[0] >> 1 & 0x3FU);
    }
    static auto read(qv::Bytes unit, const Sets& sets) {
        return qv::hevc::readSliceSegmentHeader(unit, sets);
    }
    static auto trace(qv::Bytes unit, const Sets& sets, qv::TraceVisitor& visitor) {
        return qv::hevc::traceSliceSegmentHeader(unit, sets, visitor);
    }
    static qv::Written write(const qv::hevc::SliceSegmentHeader& slice, const Sets& sets, qv::Bytes unit,
                             std::vector<uint8_t>& out) {
        return qv::hevc::writeSliceSegment(slice, sets, unit, out);
    }
};

template <class Functions>
class FileComparison {
public:
    FileComparison(std::string file, Counts& counts) : file_(std::move(file)), counts_(counts) {}

    void run(const std::vector<std::vector<uint8_t>>& units) {
        for (number_ = 0; number_ < units.size(); ++number_) {
            const qv::Bytes unit = {units[number_].data(), units[number_].size()};
            WitnessTrace theirs = witness_.trace(unit);
            if (!unit.empty() && Functions::isSlice(unit)) {
                compare(unit, theirs);
                write(unit, theirs);
            }
            sets_.take(unit);
        }
    }

private:
    void compare(qv::Bytes unit, WitnessTrace& theirs) {
        ElementList list;
        const auto traced = Functions::trace(unit, sets_, list);
        ++counts_.slices;
        // They come before slice_data().
        while (!theirs.elements.empty() && theirs.elements.back().name == "cabac_alignment_one_bit") {
            theirs.elements.pop_back();
        }
        if (theirs.elements.empty()) {
            ++counts_.passedBy;
            return;
        }
        size_t same = 0;
        while (same < std::min(list.elements.size(), theirs.elements.size()) &&
               isSame(list.elements[same], theirs.elements[same])) {
            ++same;
        }
        counts_.elements += same;
        if (traced.fault && !theirs.complaint.empty()) {
            ++counts_.damaged;
            return;
        }
        if (same == theirs.elements.size() && !theirs.complaint.empty() &&
            std::find(std::begin(kSetsNotRead), std::end(kSetsNotRead), file_) != std::end(kSetsNotRead)) {
            ++counts_.passedBy;
            return;
        }
        EXPECT_TRUE(traced.ok() && same == list.elements.size() && same == theirs.elements.size())
            << where() << "ours " << textOf(list.elements, same) << "; the filter's "
            << textOf(theirs.elements, same) << "; our fault: " << qv::textOf(traced.fault)
            << "; the filter's: " << theirs.complaint;
    }

    // A slice whose cabac_alignment_one_bit is 0 is not written; the filter complains of it too.
    void write(qv::Bytes unit, const WitnessTrace& theirs) {
        const auto slice = Functions::read(unit, sets_);
        if (!slice.ok()) {
            return;
        }
        std::vector<uint8_t> out;
        const qv::Written written = Functions::write(slice.record, sets_, unit, out);
        if (written.fault && !theirs.complaint.empty()) {
            ++counts_.damaged;
            EXPECT_TRUE(out.empty());
            return;
        }
        ++counts_.written;
        EXPECT_EQ(out, std::vector<uint8_t>(unit.begin(), unit.end()))
            << where() << qv::textOf(written.fault);
    }

    std::string where() const { return file_ + ", unit " + std::to_string(number_) + ": "; }

    std::string file_;
    Counts& counts_;
    typename Functions::Sets sets_;
    TraceHeaders witness_{Functions::kCodec};
    size_t number_ = 0;
};

class SliceParity : public StreamFolderTest<::testing::Test> {};

TEST_P(SliceParity, EveryElementAgreesWithTraceHeaders) {
    Counts counts;
    for (const Stream& stream : streamsIn(GetParam().path)) {
        const FileUnits in = unitsOf(GetParam().path / stream.name);
        if (in.codec == Codec::Avc) {
            FileComparison<Avc>(stream.name, counts).run(in.units);
        } else {
            FileComparison<Hevc>(stream.name, counts).run(in.units);
        }
    }
    std::cout << counts.slices << " slices, " << counts.elements << " elements agree; " << counts.written
              << " slices written as they were; " << counts.damaged << " damaged, " << counts.passedBy
              << " that the filter passes by\n";
    EXPECT_GT(counts.elements, 0U);
    EXPECT_GT(counts.written, 0U);
}

INSTANTIATE_TEST_SUITE_P(Streams, SliceParity, everyStreamFolder(),
                         [](const auto& folder) { return nameOf(folder); });

}  // namespace

}  // namespace qv_test
