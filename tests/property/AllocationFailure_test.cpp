// Every operation with each of its allocations failing in turn: the result is the documented one, the
// caller's lists hold what was found before, nothing leaks, and the next call succeeds.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <new>
#include <optional>
#include <string>

#include "AllocationFault.h"
#include "EveryOperation.h"
#include "QVMemory.h"
#include "SeiMessages.h"

namespace qv_test {
namespace {

constexpr int kOk = QVResultOk;
constexpr int kFailed = QVResultFailed;
constexpr int kInvalidData = QVResultInvalidData;
constexpr int kNoMemory = QVResultNoMemory;

// Each operation with input that makes it allocate everything it can. A result is that of a call in which an
// allocation of the kind fails; without a result the operation has no such allocation.
struct Case {
    Bytes input;
    Parameters parameters;
    std::optional<int> withoutMalloc;        // working copies
    std::optional<int> withoutScratch;       // the arrays that hold a length each
    std::optional<int> withoutPlayerMemory;  // qvMalloc and qvMallocz
    bool growsContainers = false;            // the caller's or its own: std::bad_alloc passes through
};

const Bytes kByteStream = {0, 0, 0, 1,    0x67, 0x42, 0, 0, 1,    0x68, 0xCE,
                           0, 0, 1, 0x65, 0x88, 0,    0, 1, 0x41, 0x9A};
const Bytes kLengths = {0, 0, 0, 2, 0x67, 0x42, 0, 0, 0, 2, 0x65, 0x88, 0, 0, 0, 1, 0x41};

Parameters payloadOf(int payloadType, int payloadSize) {
    Parameters parameters;
    parameters.payloadType = payloadType;
    parameters.payloadSize = payloadSize;
    parameters.requested = {200};
    return parameters;
}

// Kept messages, one that was asked for, and one that is parsed.
Bytes avcSei() {
    return seiUnit({seiMessage(5, Bytes(20, 0x11)), seiMessage(1, {0x21, 0x43}), seiMessage(200, {0x77}),
                    seiMessage(6, {0x84, 0x80})});
}

std::map<std::string, Case> casesWithAllocations() {
    const Bytes hevcSei = seiUnit({seiMessage(137, Bytes(24, 0x33))});
    return {
        {"parserDataToNaluIdx", {kByteStream, {}, {}, {}, {}, true}},
        {"parserDataToNalus", {kLengths, {}, kOk, kOk, {}, true}},
        {"parseNalusToNaluType", {kByteStream, {}, {}, {}, {}, true}},
        {"parserDataToNaluType, Annex B", {kByteStream, {}, {}, {}, {}, true}},
        {"parserDataToNaluType, lengths", {kLengths, {}, kOk, kOk, {}, true}},
        {"isKeyFrame", {kLengths, {}, 0, {}, {}}},
        {"converAnnexBToAvcC", {kByteStream, {}, {}, {}, {}, true}},
        // With a length that counts as 0 the last unit does not end at the end of the buffer.
        {"connvertAvcCToAnnexB", {kLengths, {}, kInvalidData, kInvalidData, kNoMemory, true}},
        {"parserDataToSei", {Bytes{0x06} + avcSei(), payloadOf(0, 0), kOk, {}, kFailed, true}},
        {"parserAvcDataToSei", {avcSei(), payloadOf(0, 0), kOk, {}, kFailed, true}},
        {"parserHevcDataToSei", {hevcSei, payloadOf(0, 0), kOk, {}, kFailed, true}},
        {"parserHevcSeiPrefix", {Bytes(24, 0x33), payloadOf(137, 24), {}, {}, kFailed, true}},
        {"parserHevcSeiSuffix", {Bytes(24, 0x33), payloadOf(200, 24), {}, {}, kOk, true}},
        {"fillSeiDataWithoutParsing", {Bytes(24, 0x33), payloadOf(5, 24), {}, {}, kFailed, true}},
        {"parserHevcDisplayOrientation", {{0x20, 0x00, 0x10}, payloadOf(47, 3), {}, {}, kFailed, true}},
        {"fillHDR10StaticMetadataFromHevcMasteringDisplayInfoSei", {Bytes(24, 0x33), {}, kOk, {}, {}}},
        {"QVByteStream", {Bytes(24, 0x33), {}, 0, {}, {}}},
    };
}

// Allocates the lists that an operation of the table keeps between calls, before anything is counted.
void warmUp(const Operation& operation, const Case& what) {
    Bytes input = what.input;
    Caller caller;
    operation.call(input.data(), input.size(), what.parameters, caller);
}

// The payload parsers and other operations that allocate nothing.
Case caseWithoutAllocations() {
    return {Bytes(400, 0x44), payloadOf(5, 40), {}, {}, {}};
}

void freshCore() {
    core() = RecordingCore();
    core().onlyCounts = true;
}

// The nth allocation of one of these fails.
struct Fault {
    enum class Kind { None, Malloc, Scratch, Container, Player } kind;
    int nth;
};

Allocator allocatorOf(Fault::Kind kind) {
    return kind == Fault::Kind::Container ? Allocator::New
           : kind == Fault::Kind::Scratch ? Allocator::NothrowNewArray
                                          : Allocator::Malloc;
}

// Lists that are not empty, as a caller may pass them.
void fill(Caller& caller) {
    caller.nalus = {{0, 0}};
    caller.items.push_back({QVCodecIDAvc, 5, 1, false, static_cast<uint8_t*>(qvMallocz(1))});
    caller.nalus.shrink_to_fit();
    caller.items.shrink_to_fit();
}

class AllocationFailure : public CoreTest {
protected:
    struct Run {
        Outcome outcome;
        bool isTriggered;
        bool isThrown;
    };

    // In a static program the runtime sorts its tables at the first exception, in memory that it keeps.
    static void SetUpTestSuite() {
        try {
            throw std::bad_alloc();
        } catch (const std::bad_alloc&) {
        }
    }

    // One call. Everything that it leaves is released again.
    static Run run(const Operation& operation, const Case& what, const Fault& fault, bool isFilled) {
        freshCore();
        Bytes input = what.input;
        Run done{};
        const long before = liveBlocks();
        long kept = 0;  // blocks of the outcome
        {
            Caller caller;
            if (isFilled) {
                fill(caller);
            }
            core().playerAllocations = 0;
            int result = 0;
            call(operation, what, fault, input, caller, result, done);
            const long held = liveBlocks();
            done.outcome = outcomeOf(result, caller);
            kept = liveBlocks() - held;
        }
        freshCore();
        EXPECT_EQ(liveBlocks() - before, kept) << "blocks left over";
        return done;
    }

    static void expectBeginning(const Outcome& some, const Outcome& whole, bool areItemsAlone) {
        ASSERT_LE(some.items.size(), whole.items.size());
        EXPECT_TRUE(std::equal(some.items.begin(), some.items.end(), whole.items.begin()));
        if (areItemsAlone) {
            return;
        }
        ASSERT_LE(some.nalus.size(), whole.nalus.size());
        for (size_t i = 0; i < some.nalus.size(); ++i) {
            EXPECT_EQ(some.nalus[i].first, whole.nalus[i].first);
            if (i + 1 < some.nalus.size()) {  // what follows the last one determines its length
                EXPECT_EQ(some.nalus[i].second, whole.nalus[i].second);
            }
        }
    }

    // The length that could not be read counts as 0; those before it are unchanged.
    static void expectZeroLength(const Outcome& some, const Outcome& whole, size_t nth, size_t filled) {
        if (whole.nalus.size() == filled) {
            return;  // an operation whose list is local
        }
        const size_t at = filled + nth - 1;
        ASSERT_GT(some.nalus.size(), at);
        EXPECT_TRUE(std::equal(some.nalus.begin(), some.nalus.begin() + static_cast<std::ptrdiff_t>(at),
                               whole.nalus.begin()));
        EXPECT_EQ(some.nalus[at], std::make_pair(whole.nalus[at].first, 0));
    }

    // Lets each allocation of the kind fail in turn. Returns their number.
    static int failEach(const Operation& operation, const Case& what, Fault::Kind kind,
                        const std::optional<int>& stated, bool isFilled) {
        const Outcome whole = run(operation, what, {Fault::Kind::None, 0}, isFilled).outcome;
        int nth = 1;
        for (;; ++nth) {
            SCOPED_TRACE(std::string(operation.name) + ", kind " + std::to_string(static_cast<int>(kind)) +
                         ", allocation " + std::to_string(nth) + (isFilled ? ", filled lists" : ""));
            const Run failed = run(operation, what, {kind, nth}, isFilled);
            if (!failed.isTriggered) {
                EXPECT_EQ(failed.outcome, whole);
                return nth - 1;
            }
            EXPECT_EQ(failed.isThrown, kind == Fault::Kind::Container);
            if (!failed.isThrown) {
                EXPECT_EQ(failed.outcome.result, stated.value_or(-1));
            }
            if (kind == Fault::Kind::Scratch) {
                expectZeroLength(failed.outcome, whole, static_cast<size_t>(nth), isFilled ? 1 : 0);
            }
            expectBeginning(failed.outcome, whole, kind == Fault::Kind::Scratch);
            EXPECT_TRUE(failed.outcome.buffer.empty());
            EXPECT_EQ(run(operation, what, {Fault::Kind::None, 0}, isFilled).outcome, whole);
            if (HasFatalFailure() || nth > 1000) {
                ADD_FAILURE() << "given up";
                return nth;
            }
        }
    }

private:
    static void call(const Operation& operation, const Case& what, const Fault& fault, Bytes& input,
                     Caller& caller, int& result, Run& done) {
        const bool isOurs = fault.kind != Fault::Kind::None && fault.kind != Fault::Kind::Player;
        core().failPlayerAllocation = fault.kind == Fault::Kind::Player ? fault.nth : 0;
        const AllocationFault armed(allocatorOf(fault.kind), isOurs ? fault.nth : 0);
        try {
            result = operation.call(input.data(), input.size(), what.parameters, caller);
        } catch (const std::bad_alloc&) {
            done.isThrown = true;
        }
        done.isTriggered = isOurs
                               ? armed.triggered()
                               : fault.kind == Fault::Kind::Player && core().playerAllocations >= fault.nth;
    }
};

TEST_F(AllocationFailure, atEverySiteOfEveryOperation) {
    std::map<std::string, Case> cases = casesWithAllocations();
    int sites = 0;
    for (const Operation& operation : everyOperation()) {
        const auto found = cases.find(operation.name);
        const Case what = found != cases.end() ? found->second : caseWithoutAllocations();
        warmUp(operation, what);
        const struct {
            Fault::Kind kind;
            std::optional<int> stated;
            bool isThere;
        } kinds[] = {
            {Fault::Kind::Malloc, what.withoutMalloc, what.withoutMalloc.has_value()},
            {Fault::Kind::Scratch, what.withoutScratch, what.withoutScratch.has_value()},
            {Fault::Kind::Player, what.withoutPlayerMemory, what.withoutPlayerMemory.has_value()},
            {Fault::Kind::Container, {}, what.growsContainers},
        };
        for (const auto& [kind, stated, isThere] : kinds) {
            for (const bool isFilled : {false, true}) {
                const int count = failEach(operation, what, kind, stated, isFilled);
                EXPECT_EQ(count > 0, isThere) << operation.name << ", kind " << static_cast<int>(kind);
                sites += count;
            }
        }
        cases.erase(operation.name);
    }
    EXPECT_TRUE(cases.empty()) << "no operation is called " << cases.begin()->first;
    RecordProperty("sites", sites);
    std::printf("%d allocations failed, one at a time\n", sites);
}

TEST_F(AllocationFailure, ofTheSideDataDescription) {
    core().failCreateSeiInfo = true;
    unsigned char* out = nullptr;
    int size = -7;
    EXPECT_EQ(QVNaluParser::assembleSeiSideDataBuffer({}, &out, size), kFailed);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(size, -7);
}

}  // namespace
}  // namespace qv_test
