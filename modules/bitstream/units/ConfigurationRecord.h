/// \file
/// What a container keeps beside its samples: a decoder configuration record, or parameter sets after start
/// codes.
#ifndef QV_BITSTREAM_UNITS_CONFIGURATIONRECORD_H
#define QV_BITSTREAM_UNITS_CONFIGURATIONRECORD_H

#include <cstdint>
#include <optional>

#include "bitstream/Bytes.h"
#include "bitstream/Codec.h"
#include "bitstream/units/AvcConfigurationRecord.h"
#include "bitstream/units/Framing.h"
#include "bitstream/units/HevcConfigurationRecord.h"
#include "bitstream/units/NalUnits.h"

namespace qv {

/// The forms of a configuration.
enum class ConfigurationKind : uint8_t {
    None,        ///< neither of the others
    Record,      ///< an `avcC` or `hvcC` record, as far as lengthSizeMinusOne at least
    ByteStream,  ///< units after start codes
};

/// Which form the configuration of a codec has, by its first bytes: a start code after any number of zero
/// bytes, or a configurationVersion that readConfigurationRecord() accepts.
ConfigurationKind configurationKindOf(Codec codec, Bytes configuration) noexcept;

/// The framing of the samples beside a configuration: that of its record, or start codes. Empty for None.
std::optional<Framing> framingOf(Codec codec, Bytes configuration) noexcept;

/// Calls visit(const NalUnit&) with each unit of a configuration of either form. A record that is damaged is
/// followed as far as its lists are whole; readConfigurationRecord() reports what is wrong with it.
template <class Visit>
void forEachConfigurationUnit(Codec codec, Bytes configuration, Visit visit) {
    const ConfigurationKind kind = configurationKindOf(codec, configuration);
    if (kind == ConfigurationKind::ByteStream) {
        for (const NalUnit& unit : NalUnits(configuration, Framing::StartCodes, codec)) {
            visit(unit);
        }
    } else if (kind == ConfigurationKind::Record && codec == Codec::Avc) {
        avc::forEachUnit(avc::readConfigurationRecord(configuration).record, visit);
    } else if (kind == ConfigurationKind::Record) {
        hevc::forEachUnit(hevc::readConfigurationRecord(configuration).record, visit);
    }
}

}  // namespace qv

#endif
