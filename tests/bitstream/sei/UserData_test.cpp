// SEI payloads that hold bytes.
#include "bitstream/sei/UserData.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "PayloadChecks.h"
#include "bitstream/sei/UserDataSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;

constexpr Codec kCodecs[] = {Codec::Avc, Codec::Hevc};

PayloadUnderTest<FillerPayload> filler(Codec codec) {
    auto structure = payloadUnderTest<FillerPayload>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { filler_payload(s, c, payload); });
    structure.optional = {"ff_byte"};
    return structure;
}

PayloadUnderTest<UserDataRegistered> registered(Codec codec) {
    auto structure = payloadUnderTest<UserDataRegistered>(
        Context(codec),
        [](auto& s, const auto& c, auto& payload) { user_data_registered_itu_t_t35(s, c, payload); });
    structure.optional = {"itu_t_t35_payload_byte"};
    structure.steer = [](RandomUnit& unit, Random& random) {
        if (random() % 2 == 0) {
            unit.choose("itu_t_t35_country_code", {0xFF});
        }
    };
    return structure;
}

PayloadUnderTest<UserDataUnregistered> unregistered(Codec codec) {
    auto structure = payloadUnderTest<UserDataUnregistered>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { user_data_unregistered(s, c, payload); });
    structure.optional = {"user_data_payload_byte"};
    return structure;
}

PayloadUnderTest<ReservedSeiMessage> reserved(Codec codec) {
    auto structure = payloadUnderTest<ReservedSeiMessage>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { reserved_sei_message(s, c, payload); });
    structure.optional = {"reserved_sei_message_payload_byte"};
    return structure;
}

TEST(SeiUserData, roundTrips) {
    for (const Codec codec : kCodecs) {
        checkRoundTrips(filler(codec), unitRounds());
        checkRoundTrips(registered(codec), unitRounds());
        checkRoundTrips(unregistered(codec), unitRounds());
        checkRoundTrips(reserved(codec), unitRounds());
    }
}

TEST(SeiUserData, cutAtEveryByte) {
    for (const Codec codec : kCodecs) {
        checkCuts(filler(codec), unitRounds(50));
        checkCuts(registered(codec), unitRounds(50));
        checkCuts(unregistered(codec), unitRounds(50));
        checkCuts(reserved(codec), unitRounds(50));
    }
}

TEST(SeiUserData, noAllocationAndNoByteOutside) {
    for (const Codec codec : kCodecs) {
        checkMemory(filler(codec), unitRounds(25));
        checkMemory(registered(codec), unitRounds(25));
        checkMemory(unregistered(codec), unitRounds(25));
        checkMemory(reserved(codec), unitRounds(25));
    }
}

}  // namespace
