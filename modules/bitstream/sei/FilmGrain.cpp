// Film grain.
#include "bitstream/sei/FilmGrain.h"

#include "bitstream/sei/FilmGrainSyntax.h"
#include "bitstream/sei/PayloadTemplates.h"

namespace qv::sei {

QV_SEI_PAYLOAD(FilmGrainCharacteristics, film_grain_characteristics);

FilmGrainIntervals::FilmGrainIntervals(const FilmGrainCharacteristics& payload, uint32_t c) noexcept
    : reader_(c < FilmGrainCharacteristics::kColourComponents ? payload.intensity_intervals[c] : CodedBits()),
      modelValues_(c < FilmGrainCharacteristics::kColourComponents ? payload.num_model_values_minus1[c] + 1
                                                                   : 0) {}

bool FilmGrainIntervals::next(FilmGrainInterval& interval) noexcept {
    interval = {};
    if (!reader_.more_rbsp_data()) {
        return false;
    }
    film_grain_interval(reader_, 0, 0, modelValues_, ModelValueRange(), interval);
    return true;
}

}  // namespace qv::sei
