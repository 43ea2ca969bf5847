// The payloads that have a record, and the record of a payloadType.
#ifndef QV_BITSTREAM_SEI_PAYLOADLIST_H
#define QV_BITSTREAM_SEI_PAYLOADLIST_H

#include <cstdint>

#include "bitstream/Codec.h"
#include "bitstream/sei/ActiveParameterSets.h"
#include "bitstream/sei/AlternativeDepth.h"
#include "bitstream/sei/AnnotatedRegions.h"
#include "bitstream/sei/AvcScalableNesting.h"
#include "bitstream/sei/ColourRemapping.h"
#include "bitstream/sei/ColourVolume.h"
#include "bitstream/sei/DepthRepresentation.h"
#include "bitstream/sei/Display.h"
#include "bitstream/sei/FilmGrain.h"
#include "bitstream/sei/FilterHints.h"
#include "bitstream/sei/FramePacking.h"
#include "bitstream/sei/FullFrame.h"
#include "bitstream/sei/GreenMetadata.h"
#include "bitstream/sei/HevcLayers.h"
#include "bitstream/sei/LayerSets.h"
#include "bitstream/sei/MultiviewScene.h"
#include "bitstream/sei/Omnidirectional.h"
#include "bitstream/sei/PayloadUses.h"
#include "bitstream/sei/PictureDisplay.h"
#include "bitstream/sei/PictureHash.h"
#include "bitstream/sei/PictureMarking.h"
#include "bitstream/sei/PictureStructure.h"
#include "bitstream/sei/QualityLayers.h"
#include "bitstream/sei/RandomAccess.h"
#include "bitstream/sei/ReferenceDisplays.h"
#include "bitstream/sei/RegionalNesting.h"
#include "bitstream/sei/ScalabilityInfo.h"
#include "bitstream/sei/SceneInfo.h"
#include "bitstream/sei/SeiManifest.h"
#include "bitstream/sei/ShutterInterval.h"
#include "bitstream/sei/SignedContent.h"
#include "bitstream/sei/SliceGroupSet.h"
#include "bitstream/sei/SubSequences.h"
#include "bitstream/sei/TemporalHrd.h"
#include "bitstream/sei/TileSets.h"
#include "bitstream/sei/TimeCode.h"
#include "bitstream/sei/Timing.h"
#include "bitstream/sei/ToneMapping.h"
#include "bitstream/sei/UserData.h"
#include "bitstream/sei/ViewScalability.h"
#include "bitstream/sei/ViewSets.h"

namespace qv::sei {

template <class... Payloads>
struct PayloadList {
    // Calls use(PayloadUses<Payload>) for the payload of a type; false when there is none.
    template <class Use>
    static bool with([[maybe_unused]] Codec codec, [[maybe_unused]] uint64_t payloadType,
                     [[maybe_unused]] const Use& use) {
        return (... ||
                (Payloads::kPayloadTypes.is(codec, payloadType) && (use(PayloadUses<Payloads>()), true)));
    }
};

using UserDataPayloads = PayloadList<FillerPayload, UserDataRegistered, UserDataUnregistered>;

using TimingPayloads =
    PayloadList<AvcPicTiming, HevcPicTiming, AvcBufferingPeriod, HevcBufferingPeriod, DecodedPictureHash,
                AvcRecoveryPoint, HevcRecoveryPoint, ActiveParameterSets, TimeCode, DecodingUnitInfo,
                FrameFieldInfo, StructureOfPicturesInfo, TemporalSubLayerZeroIdx, RegionRefreshInfo,
                NoDisplay, DependentRapIndication, CodedRegionCompletion, DeinterlacedFieldIdentification,
                ShutterIntervalInfo, PanScanRect>;

using PicturePayloads =
    PayloadList<DecRefPicMarkingRepetition, SparePic, SceneInfo, SubSeqInfo, SubSeqLayerCharacteristics,
                SubSeqCharacteristics, FullFrameFreeze, FullFrameFreezeRelease, PictureSnapshot,
                ProgressiveRefinementSegmentStart, ProgressiveRefinementSegmentEnd,
                MotionConstrainedSliceGroupSet, FilmGrainCharacteristics, DeblockingFilterDisplayPreference,
                StereoVideoInfo, PostFilterHint, ToneMappingInfo, FramePackingArrangement, DisplayOrientation,
                GreenMetadata, SegmentedRectFramePackingArrangement, ChromaResamplingFilterHint>;

using DisplayPayloads =
    PayloadList<MasteringDisplayColourVolume, ContentLightLevelInfo, AlternativeTransferCharacteristics,
                AmbientViewingEnvironment, ContentColourVolume, KneeFunctionInfo, ColourRemappingInfo>;

using RegionPayloads =
    PayloadList<EquirectangularProjection, CubemapProjection, FisheyeVideoInfo, SphereRotation,
                RegionwisePacking, OmniViewport, TemporalMotionConstrainedTileSets, MctsExtractionInfoSets,
                MctsExtractionInfoNesting, RegionalNesting, SeiManifest, SeiPrefixIndication,
                AnnotatedRegions, DigitallySignedContentInitialization, DigitallySignedContentSelection,
                DigitallySignedContentVerification>;

using ViewPayloads =
    PayloadList<ScalabilityInfo, SubPicScalableLayer, NonRequiredLayerRep, PriorityLayerInfo,
                AvcLayersNotPresent, LayerDependencyChange, AvcScalableNesting, BaseLayerTemporalHrd,
                QualityLayerIntegrityCheck, RedundantPicProperty, Tl0DepRepIndex, TlSwitchingPoint,
                MvcScalableNesting, ViewScalabilityInfo, MultiviewSceneInfo, MultiviewAcquisitionInfo,
                NonRequiredViewComponent, OperationPointNotPresent, BaseViewTemporalHrd,
                MultiviewViewPosition, MvcdScalableNesting, MvcdViewScalabilityInfo, DepthRepresentationInfo,
                ThreeDimensionalReferenceDisplaysInfo, DepthTiming, DepthSamplingInfo,
                ConstrainedDepthParameterSetIdentifier, AlternativeDepthInfo>;

using LayerPayloads =
    PayloadList<HevcScalableNesting, LayersNotPresent, InterLayerConstrainedTileSets, BspNesting,
                SubBitstreamProperty, AlphaChannelInfo, OverlayInfo, TemporalMvPredictionConstraints>;

template <class... Families>
struct FamilyList {
    template <class Use>
    static bool with([[maybe_unused]] Codec codec, [[maybe_unused]] uint64_t payloadType,
                     [[maybe_unused]] const Use& use) {
        return (... || Families::with(codec, payloadType, use));
    }
};

using AllPayloads = FamilyList<UserDataPayloads, TimingPayloads, PicturePayloads, DisplayPayloads,
                               RegionPayloads, ViewPayloads, LayerPayloads>;

// Calls use(PayloadUses<Payload>) for the payload of a type; for types without a record, of which the
// standards reserve most, that of ReservedSeiMessage.
template <class Use>
void withPayload(Codec codec, uint64_t payloadType, const Use& use) {
    if (!AllPayloads::with(codec, payloadType, use)) {
        use(PayloadUses<ReservedSeiMessage>());
    }
}

}  // namespace qv::sei

#endif
