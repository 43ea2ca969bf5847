// Names of SEI payloads and codes in the standards and in public registrations.
#ifndef QVINSPECT_SEINAMES_H
#define QVINSPECT_SEINAMES_H

#include <cstdint>
#include <string>
#include <vector>

#include "QVCodecParameters.h"

namespace qvinspect {

// The syntax structure of a payloadType: H.264 D.1.1, H.265 D.2.1. "reserved" for others.
const char* seiName(QVCodecID codec, uint32_t payloadType);

// Kinds of user_data_registered_itu_t_t35 that public registrations name.
enum class T35Kind { Unknown, A53Captions, Afd, Hdr10Plus, HdrVivid };

T35Kind t35Kind(const std::vector<uint8_t>& payload);
const char* t35KindName(T35Kind kind);

// transfer_characteristics of H.264 Table E-5 and H.265 Table E.4.
const char* transferName(uint32_t transfer_characteristics);

// active_format of ETSI TS 101 154 Table B.2 and its meaning in a 16:9 frame.
const char* activeFormatName(uint32_t active_format);

// frame_packing_arrangement_type, H.264 Table D-8 and H.265 Table D.7.
const char* framePackingName(uint32_t frame_packing_arrangement_type);

// pic_struct of H.264 Table D-1.
const char* avcPicStructName(uint32_t pic_struct);

}  // namespace qvinspect

#endif
