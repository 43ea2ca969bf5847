// SEI units of real streams: messages removed and inserted again, and what libavcodec's trace_headers filter
// reads of what is left.
#include "bitstream/sei/SeiEdit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <set>
#include <string>
#include <vector>

#include "FileUnits.h"
#include "StreamFolder.h"
#include "WitnessMessages.h"
#include "bitstream/units/Rbsp.h"

using qv::Codec;
using qv::SeiFault;
using qv::SeiMessage;

namespace qv_test {

namespace {

using Buffer = std::vector<uint8_t>;

qv::Bytes borrowed(const Buffer& bytes) {
    return {bytes.data(), bytes.size()};
}

Buffer unescaped(qv::Bytes unit, size_t headerBytes) {
    Buffer bytes(unit.size);
    bytes.resize(qv::unescape(unit, headerBytes, bytes.data(), bytes.size()));
    return bytes;
}

struct Counts {
    size_t units = 0;
    size_t messages = 0;
    size_t same = 0;        // units that are the same after their messages were inserted again
    size_t needless = 0;    // of the others, those with emulation prevention bytes that are not needed
    size_t damaged = 0;     // units with a fault
    size_t edits = 0;       // units from which the messages of a type were removed
    size_t gone = 0;        // of these, units that had no others; the rest is traced
    size_t complaints = 0;  // of the filter, about units before and after
};

std::vector<SeiMessage> messagesOf(qv::Bytes unit, Codec codec) {
    std::vector<SeiMessage> messages;
    for (const SeiMessage& message : qv::SeiMessages(unit, codec)) {
        messages.push_back(message);
    }
    return messages;
}

// All messages are removed and inserted again, into the unit without its last one and into a new one.
void insertAgain(qv::Bytes unit, Codec codec, Counts& counts) {
    const std::vector<SeiMessage> messages = messagesOf(unit, codec);
    Buffer none;
    const qv::sei::Removed removed =
        qv::sei::removeMessages(unit, codec, none, [](const SeiMessage&) { return true; });
    ++counts.units;
    counts.messages += removed.messages;
    if (!messages.back().ok()) {
        ++counts.damaged;
        std::cout << "  " << qv::textOf(messages.back().faults) << '\n';
        return;
    }
    ASSERT_TRUE(none.empty());
    EXPECT_TRUE(removed.isUnitGone);
    const size_t headerBytes = qv::nalUnitOf(unit, codec).headerBytes;
    Buffer built;
    qv::sei::SeiUnitWriter writer(unit.first(headerBytes), built);
    for (const SeiMessage& message : messages) {
        ASSERT_TRUE(writer.add(message));
    }
    writer.finish();
    Buffer inserted(unit.begin(), unit.begin() + headerBytes);
    for (size_t i = 0; i < messages.size(); ++i) {
        Buffer next;
        ASSERT_TRUE(qv::sei::insertMessage(borrowed(inserted), codec, i, messages[i], next));
        inserted = next;
    }
    EXPECT_TRUE(built == inserted);
    if (built == Buffer(unit.begin(), unit.end())) {
        ++counts.same;
        return;
    }
    ++counts.needless;
    EXPECT_TRUE(unescaped(borrowed(built), headerBytes) == unescaped(unit, headerBytes));
    EXPECT_LT(built.size(), unit.size);
}

std::vector<std::string> headersOf(const std::vector<WitnessMessage>& messages) {
    std::vector<std::string> texts;
    for (const WitnessMessage& message : messages) {
        texts.push_back(std::to_string(message.payloadType) + "/" + std::to_string(message.payloadSize));
    }
    return texts;
}

// For each type of the unit: the filter finds no message of the type, and the others as before.
void dropEachType(qv::Bytes unit, Codec codec, TraceHeaders& witness, const WitnessTrace& before,
                  Counts& counts) {
    std::set<uint64_t> types;
    for (const SeiMessage& message : messagesOf(unit, codec)) {
        if (!message.faults.has(SeiFault::HeaderCut)) {
            types.insert(message.payloadType);
        }
    }
    for (const uint64_t type : types) {
        Buffer left;
        const qv::sei::Removed removed = qv::sei::removeMessagesOfType(unit, codec, type, left);
        ++counts.edits;
        if (removed.isUnitGone) {
            EXPECT_TRUE(left.empty());
            ++counts.gone;
            continue;
        }
        const WitnessTrace after = witness.trace(borrowed(left));
        std::vector<WitnessMessage> expected = qv_test::messagesOf(before);
        expected.erase(
            std::remove_if(expected.begin(), expected.end(),
                           [&](const WitnessMessage& message) { return message.payloadType == type; }),
            expected.end());
        const std::vector<WitnessMessage> found = qv_test::messagesOf(after);
        for (const WitnessMessage& message : found) {
            EXPECT_NE(message.payloadType, type);
        }
        if (before.complaint.empty() && after.complaint.empty()) {
            EXPECT_EQ(headersOf(found), headersOf(expected)) << "without type " << type;
        } else {
            ++counts.complaints;
        }
    }
}

void editFile(const std::filesystem::path& file, Counts& counts) {
    SCOPED_TRACE(file.filename().string());
    const FileUnits in = unitsOf(file);
    TraceHeaders witness(in.codec);
    for (size_t i = 0; i < in.units.size(); ++i) {
        SCOPED_TRACE("unit " + std::to_string(i));
        const qv::Bytes unit = borrowed(in.units[i]);
        const WitnessTrace trace = witness.trace(unit);
        if (isSei(in.codec, unit)) {
            insertAgain(unit, in.codec, counts);
            dropEachType(unit, in.codec, witness, trace, counts);
        }
    }
}

class SeiEdits : public StreamFolderTest<::testing::Test> {};

TEST_P(SeiEdits, RemovedMessagesAreGoneAndInsertedOnesTheSame) {
    Counts counts;
    for (const Stream& stream : streamsIn(GetParam().path)) {
        editFile(GetParam().path / stream.name, counts);
    }
    std::cout << counts.units << " SEI units, " << counts.messages << " messages; " << counts.same
              << " units are the same after their messages were removed and inserted again, "
              << counts.needless << " have fewer emulation prevention bytes, " << counts.damaged
              << " are damaged; a type is removed from " << counts.edits << " units, of which " << counts.gone
              << " are gone, " << counts.complaints << " the filter does not read to their end\n";
    EXPECT_GT(counts.same, 0U);
    EXPECT_EQ(counts.same + counts.needless + counts.damaged, counts.units);
    EXPECT_GT(counts.edits, 0U);
}

INSTANTIATE_TEST_SUITE_P(Streams, SeiEdits, everyStreamFolder(),
                         [](const auto& folder) { return nameOf(folder); });

}  // namespace

}  // namespace qv_test
