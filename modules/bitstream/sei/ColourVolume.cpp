// The colours and luminances of content, display and room.
#include "bitstream/sei/ColourVolume.h"

#include "bitstream/sei/ColourVolumeSyntax.h"
#include "bitstream/sei/PayloadTemplates.h"

namespace qv::sei {

QV_SEI_PAYLOAD(MasteringDisplayColourVolume, mastering_display_colour_volume);
QV_SEI_PAYLOAD(ContentLightLevelInfo, content_light_level_info);
QV_SEI_PAYLOAD(AlternativeTransferCharacteristics, alternative_transfer_characteristics);
QV_SEI_PAYLOAD(AmbientViewingEnvironment, ambient_viewing_environment);
QV_SEI_PAYLOAD(ContentColourVolume, content_colour_volume);

namespace {

constexpr uint32_t kStepsOfCoordinate = 50000;
constexpr uint32_t kStepsOfLuminance = 10000;

// A value in steps; 0:0 outside its range.
Ratio ratioWithin(uint32_t value, uint32_t least, uint32_t most, uint32_t steps) {
    if (value < least || value > most) {
        return {};
    }
    return value == 0 ? Ratio{0, 1} : ratioOf(value, steps);
}

Chromaticity chromaticityOf(uint32_t x, uint32_t y) {
    return {ratioWithin(x, 5, 37000, kStepsOfCoordinate), ratioWithin(y, 5, 42000, kStepsOfCoordinate)};
}

}  // namespace

MasteringDisplay masteringDisplayOf(const MasteringDisplayColourVolume& volume) noexcept {
    const uint16_t* const x = volume.display_primaries_x;
    const uint16_t* const y = volume.display_primaries_y;
    MasteringDisplay display;
    display.green = chromaticityOf(x[0], y[0]);
    display.blue = chromaticityOf(x[1], y[1]);
    display.red = chromaticityOf(x[2], y[2]);
    display.whitePoint = chromaticityOf(volume.white_point_x, volume.white_point_y);
    display.maxLuminance =
        ratioWithin(volume.max_display_mastering_luminance, 50000, 100000000, kStepsOfLuminance);
    display.minLuminance = ratioWithin(volume.min_display_mastering_luminance, 1, 50000, kStepsOfLuminance);
    return display;
}

AmbientViewing ambientViewingOf(const AmbientViewingEnvironment& environment) noexcept {
    AmbientViewing viewing;
    viewing.illuminance = ratioOf(environment.ambient_illuminance, kStepsOfLuminance);
    viewing.light.x = ratioWithin(environment.ambient_light_x, 0, kStepsOfCoordinate, kStepsOfCoordinate);
    viewing.light.y = ratioWithin(environment.ambient_light_y, 0, kStepsOfCoordinate, kStepsOfCoordinate);
    return viewing;
}

}  // namespace qv::sei
