/// \file
/// The profiles of H.264.
#ifndef QV_BITSTREAM_NAMES_AVCPROFILES_H
#define QV_BITSTREAM_NAMES_AVCPROFILES_H

#include <cstdint>

namespace qv::avc {

/// A profile, H.264 A.2, G.10.1, H.10.1, I.10.1 and J.10.1.
enum class Profile : uint32_t {
    ConstrainedBaseline,          ///< Constrained Baseline, A.2.1.1
    Baseline,                     ///< Baseline, A.2.1
    Main,                         ///< Main, A.2.2
    Extended,                     ///< Extended, A.2.3
    ConstrainedHigh,              ///< Constrained High, A.2.4.2
    ProgressiveHigh,              ///< Progressive High, A.2.4.1
    High,                         ///< High, A.2.4
    High10Intra,                  ///< High 10 Intra, A.2.8
    ProgressiveHigh10,            ///< Progressive High 10, A.2.5.1
    High10,                       ///< High 10, A.2.5
    High422Intra,                 ///< High 4:2:2 Intra, A.2.9
    High422,                      ///< High 4:2:2, A.2.6
    High444Intra,                 ///< High 4:4:4 Intra, A.2.10
    High444Predictive,            ///< High 4:4:4 Predictive, A.2.7
    Cavlc444Intra,                ///< CAVLC 4:4:4 Intra, A.2.11
    ScalableConstrainedBaseline,  ///< Scalable Constrained Baseline, G.10.1.1.1
    ScalableBaseline,             ///< Scalable Baseline, G.10.1.1
    ScalableHighIntra,            ///< Scalable High Intra, G.10.1.3
    ScalableConstrainedHigh,      ///< Scalable Constrained High, G.10.1.2.1
    ScalableHigh,                 ///< Scalable High, G.10.1.2
    MultiviewHigh,                ///< Multiview High, H.10.1.1
    StereoHigh,                   ///< Stereo High, H.10.1.2
    MfcHigh,                      ///< MFC High, H.10.1.3
    MfcDepthHigh,                 ///< MFC Depth High, I.10.1.2
    MultiviewDepthHigh,           ///< Multiview Depth High, I.10.1.1
    EnhancedMultiviewDepthHigh,   ///< Enhanced Multiview Depth High, J.10.1.1
};

// The constraint flags as the byte after profile_idc has them, reserved_zero_2bits in the lowest places.

constexpr uint32_t kConstraintSet0 = 0x80;  ///< constraint_set0_flag
constexpr uint32_t kConstraintSet1 = 0x40;  ///< constraint_set1_flag
constexpr uint32_t kConstraintSet2 = 0x20;  ///< constraint_set2_flag
constexpr uint32_t kConstraintSet3 = 0x10;  ///< constraint_set3_flag
constexpr uint32_t kConstraintSet4 = 0x08;  ///< constraint_set4_flag
constexpr uint32_t kConstraintSet5 = 0x04;  ///< constraint_set5_flag

/// What is known of a profile.
struct ProfileEntry {
    Profile profile;          ///< which one it is
    uint32_t profile_idc;     ///< as coded in the SPS
    uint32_t constraints;     ///< the constraint flags that are 1 here and not in the profiles after it
    const char* name;         ///< as the standard calls it: `Main`
    const char* clause;       ///< of H.264
    uint32_t cpbBrVclFactor;  ///< Table A-2, H.10.2.1, G.10.2.1: bit/s for each unit of MaxBR
    uint32_t cpbBrNalFactor;  ///< the same with the NAL HRD parameters
};

/// Every profile; one that is a subset of another with the same profile_idc comes before it.
constexpr ProfileEntry kProfiles[] = {
    {Profile::ConstrainedBaseline, 66, kConstraintSet1, "Constrained Baseline", "A.2.1.1", 1000, 1200},
    {Profile::Baseline, 66, 0, "Baseline", "A.2.1", 1000, 1200},
    {Profile::Main, 77, 0, "Main", "A.2.2", 1000, 1200},
    {Profile::Extended, 88, 0, "Extended", "A.2.3", 1000, 1200},
    {Profile::ConstrainedHigh, 100, kConstraintSet4 | kConstraintSet5, "Constrained High", "A.2.4.2", 1250,
     1500},
    {Profile::ProgressiveHigh, 100, kConstraintSet4, "Progressive High", "A.2.4.1", 1250, 1500},
    {Profile::High, 100, 0, "High", "A.2.4", 1250, 1500},
    {Profile::High10Intra, 110, kConstraintSet3, "High 10 Intra", "A.2.8", 3000, 3600},
    {Profile::ProgressiveHigh10, 110, kConstraintSet4, "Progressive High 10", "A.2.5.1", 3000, 3600},
    {Profile::High10, 110, 0, "High 10", "A.2.5", 3000, 3600},
    {Profile::High422Intra, 122, kConstraintSet3, "High 4:2:2 Intra", "A.2.9", 4000, 4800},
    {Profile::High422, 122, 0, "High 4:2:2", "A.2.6", 4000, 4800},
    {Profile::High444Intra, 244, kConstraintSet3, "High 4:4:4 Intra", "A.2.10", 4000, 4800},
    {Profile::High444Predictive, 244, 0, "High 4:4:4 Predictive", "A.2.7", 4000, 4800},
    {Profile::Cavlc444Intra, 44, 0, "CAVLC 4:4:4 Intra", "A.2.11", 4000, 4800},
    {Profile::ScalableConstrainedBaseline, 83, kConstraintSet5, "Scalable Constrained Baseline", "G.10.1.1.1",
     1250, 1500},
    {Profile::ScalableBaseline, 83, 0, "Scalable Baseline", "G.10.1.1", 1250, 1500},
    {Profile::ScalableHighIntra, 86, kConstraintSet3, "Scalable High Intra", "G.10.1.3", 1250, 1500},
    {Profile::ScalableConstrainedHigh, 86, kConstraintSet5, "Scalable Constrained High", "G.10.1.2.1", 1250,
     1500},
    {Profile::ScalableHigh, 86, 0, "Scalable High", "G.10.1.2", 1250, 1500},
    {Profile::MultiviewHigh, 118, 0, "Multiview High", "H.10.1.1", 1250, 1500},
    {Profile::StereoHigh, 128, 0, "Stereo High", "H.10.1.2", 1250, 1500},
    {Profile::MfcHigh, 134, 0, "MFC High", "H.10.1.3", 1250, 1500},
    {Profile::MfcDepthHigh, 135, 0, "MFC Depth High", "I.10.1.2", 1250, 1500},
    {Profile::MultiviewDepthHigh, 138, 0, "Multiview Depth High", "I.10.1.1", 1250, 1500},
    {Profile::EnhancedMultiviewDepthHigh, 139, 0, "Enhanced Multiview Depth High", "J.10.1.1", 1250, 1500},
};

/// The profile that a parameter set or a configuration record indicates.
///
/// \param profile_idc  as coded
/// \param constraints  the byte after profile_idc: constraint_set0_flag in the most significant bit
/// \return null when this edition does not define the profile
constexpr const ProfileEntry* findProfile(uint32_t profile_idc, uint32_t constraints) {
    for (const ProfileEntry& entry : kProfiles) {
        if (entry.profile_idc == profile_idc && (constraints & entry.constraints) == entry.constraints) {
            return &entry;
        }
    }
    return nullptr;
}

/// True for the profiles of several views, Annexes H, I and J.
constexpr bool isMultiview(uint32_t profile_idc) {
    switch (profile_idc) {
        case 118:
        case 128:
        case 134:
        case 135:
        case 138:
        case 139:
            return true;
        default:
            return false;
    }
}

}  // namespace qv::avc

#endif
