// Prints what the sequence parameter sets of a raw H.264 or H.265 stream declare: codec string, size, sample
// aspect ratio, frame rate, colour and HRD.
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "bitstream/avc/FrameRate.h"
#include "bitstream/avc/HrdRates.h"
#include "bitstream/avc/PictureFormat.h"
#include "bitstream/hevc/FrameRate.h"
#include "bitstream/hevc/HrdRates.h"
#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/hevc/PictureFormat.h"
#include "bitstream/names/Colour.h"
#include "bitstream/units/CodecProbe.h"
#include "bitstream/units/CodecString.h"
#include "bitstream/units/NalUnits.h"

namespace {

std::string textOf(qv::Ratio ratio) {
    return std::to_string(ratio.numerator) + ":" + std::to_string(ratio.denominator);
}

// Both codecs have a PictureFormat. An unknown ratio is 0:0.
template <class PictureFormat>
void printPictures(const PictureFormat& format, qv::Ratio framesPerSecond, uint32_t primaries,
                   uint32_t transfer, uint32_t matrix) {
    std::cout << "  size " << format.crop.width << "x" << format.crop.height << ", " << format.chroma.name
              << ", " << format.bitDepthLuma << " bit, SAR " << textOf(format.sampleAspectRatio)
              << "\n  frames per second " << textOf(framesPerSecond) << "\n  colour "
              << qv::colourPrimariesName(primaries).name << ", "
              << qv::transferCharacteristicsName(transfer).name << ", "
              << qv::matrixCoefficientsName(matrix).name << "\n";
}

void print(const qv::avc::Sps& sps) {
    const qv::avc::Vui& vui = sps.data.vui;
    printPictures(pictureFormatOf(sps.data), frameRateOf(vui).framesPerSecond, vui.colour_primaries,
                  vui.transfer_characteristics, vui.matrix_coefficients);
    if (vui.nal_hrd_parameters_present_flag) {
        std::cout << "  HRD " << bitRate(vui.nal_hrd_parameters, 0) << " bit/s, CPB of "
                  << cpbSize(vui.nal_hrd_parameters, 0) << " bits\n";
    }
}

void print(const qv::hevc::Sps& sps) {
    const qv::hevc::HrdCommon& hrd = sps.vui.hrd_parameters.common;
    const qv::hevc::CpbParameters& cpb = sps.vui.hrd_parameters.sub_layer[sps.sps_max_sub_layers_minus1].nal;
    printPictures(pictureFormatOf(sps), frameRateOf(sps).framesPerSecond, sps.vui.colour_primaries,
                  sps.vui.transfer_characteristics, sps.vui.matrix_coeffs);
    if (sps.vui.vui_hrd_parameters_present_flag && hrd.nal_hrd_parameters_present_flag) {
        std::cout << "  HRD " << bitRate(hrd, cpb, 0) << " bit/s, CPB of " << cpbSize(hrd, cpb, 0)
                  << " bits\n";
    }
}

template <class Sps, class CodecString>
void print(size_t offset, const qv::Read<CodecString>& string, const qv::Read<Sps>& sps) {
    std::cout << "SPS at byte " << offset << ": " << textOf(string.record) << "\n";
    if (sps.ok()) {
        print(sps.record);
    } else {
        std::cout << "  " << textOf(sps.fault) << "\n";
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::ifstream file(argc > 1 ? argv[1] : "samples/hevc_hdr10.h265", std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    const qv::Bytes stream(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    const qv::CodecProbe probe = qv::probeCodec(stream);
    if (!probe.codec()) {
        std::cerr << textOf(probe) << "\n";
        return 1;
    }
    for (const qv::NalUnit& unit : qv::NalUnits(stream, probe.framing, *probe.codec())) {
        if (probe.codec() == qv::Codec::Avc && unit.nal_unit_type == qv::avc::kNalSps) {
            print(unit.offset, qv::avc::codecStringOfSps(unit.bytes), qv::avc::readSps(unit.bytes));
        } else if (probe.codec() == qv::Codec::Hevc && unit.nal_unit_type == qv::hevc::kNalSps) {
            print(unit.offset, qv::hevc::codecStringOfSps(unit.bytes), qv::hevc::readSps(unit.bytes));
        }
    }
}
