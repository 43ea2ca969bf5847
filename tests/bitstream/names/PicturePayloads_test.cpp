// Names of values in SEI payloads that describe pictures.
#include <gtest/gtest.h>

#include <string>

#include "bitstream/names/FilmGrain.h"
#include "bitstream/names/FramePacking.h"
#include "bitstream/names/SceneTransitions.h"
#include "bitstream/names/ToneMapping.h"

namespace {

// Each value up to the last one has a name of its own; those after it are reserved.
template <size_t N, class NameOf>
void expectNames(const qv::Name (&table)[N], NameOf nameOf) {
    for (uint32_t number = 0; number < N + 300; ++number) {
        SCOPED_TRACE(number);
        const qv::Name name = nameOf(number);
        EXPECT_EQ(name.number, number);
        EXPECT_EQ(std::string(name.name) == "Reserved", number >= N);
        EXPECT_NE(std::string(name.clause), "");
        if (number < N) {
            EXPECT_EQ(table[number].number, number);
            EXPECT_STREQ(name.name, table[number].name);
        }
    }
}

TEST(PicturePayloadNames, everyValue) {
    expectNames(qv::kFramePackingArrangementTypes, qv::framePackingArrangementTypeName);
    expectNames(qv::kContentInterpretationTypes, qv::contentInterpretationTypeName);
    expectNames(qv::kSceneTransitionTypes, qv::sceneTransitionTypeName);
    expectNames(qv::kFilmGrainModels, qv::filmGrainModelName);
    expectNames(qv::kFilmGrainBlendingModes, qv::filmGrainBlendingModeName);
    expectNames(qv::kToneMapModels, qv::toneMapModelName);
}

TEST(PicturePayloadNames, wellKnownValues) {
    EXPECT_STREQ(qv::framePackingArrangementTypeName(3).name, "Side by side");
    EXPECT_STREQ(qv::framePackingArrangementTypeName(3).clause, "H.264 D.2.26, H.265 D.3.16");
    EXPECT_STREQ(qv::framePackingArrangementTypeName(7).clause, "H.264 D.2.26");
    EXPECT_STREQ(qv::contentInterpretationTypeName(1).name, "Frame 0 is the left view");
    EXPECT_STREQ(qv::sceneTransitionTypeName(4).name, "Dissolve");
    EXPECT_STREQ(qv::filmGrainModelName(0).name, "Frequency filtering");
    EXPECT_STREQ(qv::filmGrainBlendingModeName(1).name, "Multiplicative");
    EXPECT_STREQ(qv::toneMapModelName(3).name, "Piece-wise linear mapping");
}

}  // namespace
