// The program's inputs, the selected part of them, and the end of reading.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "ProgramSupport.h"
#include "QVNaluParser.h"
#include "StreamExpectation.h"
#include "Terminal.h"

namespace qv_test {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class ProgramInput : public Program {
protected:
    static std::string mp4WithIndexInFront() { return bundledStreams() / "avc_len1.mp4"; }

    std::string pipePath() const {
        const std::string path = folder() + "/pipe";
        if (mkfifo(path.c_str(), 0600) != 0) {
            throw std::runtime_error("no named pipe");
        }
        return path;
    }
};

// The listing with another name for the input.
std::string renamed(std::string text, const std::string& from, const std::string& to) {
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

// --- Standard input and pipes ---

TEST_F(ProgramInput, rawStreamOnStandardInput) {
    write("x.h265", rawStream());
    const std::string listing = renamed(inspect({"x.h265"}).out, "x.h265", "standard input");
    const Outcome piped = inspectPiped(rawStream(), {"-"});
    expectListed(piped, "standard input", "access units      4\n");
    EXPECT_EQ(piped.out, listing);
    EXPECT_EQ(inspectRedirected(folder() + "/x.h265", {"-"}).out, listing);
}

TEST_F(ProgramInput, standardInputByItsName) {
    expectListed(inspectPiped(rawStream(), {"/dev/stdin"}), "stdin", "access units      4\n");
    expectListed(inspectRedirected(sample("hevc_hdr10.h265"), {"/dev/stdin"}), "stdin",
                 "access units      4\n");
}

TEST_F(ProgramInput, restOfARedirectedFile) {
    const Bytes garbage(1000, 0x55);
    const int file = open(write("x", garbage + rawStream()).c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(lseek(file, 1000, SEEK_SET), 1000);
    const std::string out = folder() + "/out";
    const int output = openForWriting(out);
    EXPECT_EQ(run({"-"}, {file, output, output}, folder()), 0);
    close(file);
    close(output);
    EXPECT_THAT(textOf(out), Not(HasSubstr("note")));
    EXPECT_THAT(textOf(out), HasSubstr("access units      4\n"));
}

TEST_F(ProgramInput, emptyStandardInput) {
    expectRefused(inspectPiped({}, {"-"}), "standard input", "is empty; there is nothing to inspect");
    expectRefused(inspect({"-"}), "standard input", "is empty; there is nothing to inspect");
}

TEST_F(ProgramInput, terminalAsInput) {
    const Terminal terminal;
    const std::string err = folder() + "/err";
    const int output = openForWriting(err);
    EXPECT_EQ(run({"-"}, {terminal.file(), output, output}, folder()), 2);
    close(output);
    EXPECT_EQ(textOf(err),
              "qvinspect: standard input: is a terminal; name a file, or send a stream through a pipe\n");
}

TEST_F(ProgramInput, namedPipe) {
    const std::string path = pipePath();
    std::thread writer([&] {
        const Bytes bytes = rawStream();
        std::FILE* file = std::fopen(path.c_str(), "wb");
        std::fwrite(bytes.data(), 1, bytes.size(), file);
        std::fclose(file);
    });
    expectListed(inspect({"pipe"}), "pipe", "access units      4\n");
    writer.join();
}

TEST_F(ProgramInput, lengthPrefixedStream) {
    const Bytes mp4 = fileContent(mp4WithIndexInFront());
    const auto mdat = std::search(mp4.begin(), mp4.end(), std::begin("mdat"), std::end("mdat") - 1);
    ASSERT_NE(mdat, mp4.end());
    const Bytes units(mdat + 4, mp4.end());
    const Outcome outcome = inspectPiped(units, {"--format", "lp1", "--codec", "h264", "-"});
    expectListed(outcome, "standard input", "errors            0\n");
    EXPECT_THAT(outcome.out, HasSubstr("Stream   H.264, raw length-prefixed stream, 1-byte length fields\n"));

    Bytes broken = units;
    broken.pop_back();
    EXPECT_THAT(inspectPiped(broken, {"--format", "lp1", "--codec", "h264", "-"}).out,
                HasSubstr(", of which the stream has "));
}

#if QVINSPECT_HAS_LIBAVFORMAT

TEST_F(ProgramInput, containersOnStandardInput) {
    for (const std::string& path : {sample("avc.ts"), mp4WithIndexInFront()}) {
        const std::string name = std::filesystem::path(path).filename();
        const std::string listing = renamed(inspect({path}).out, name, "standard input");
        const Outcome piped = inspectPiped(fileContent(path), {"-"});
        expectListed(piped, "standard input", "errors            0\n");
        EXPECT_EQ(piped.out, listing);
        EXPECT_EQ(inspectRedirected(path, {"-"}).out, listing);
    }
}

TEST_F(ProgramInput, indexAfterTheSamples) {
    const std::string reason =
        "MP4 or QuickTime file: its index follows its samples, so it cannot be read from a pipe; "
        "name the file instead";
    for (const std::vector<std::string>& line :
         {std::vector<std::string>{"-"}, {"--format", "container", "-"}, {"--stream", "0", "-"}}) {
        expectRefused(inspectPiped(mp4(), line), "standard input", reason);
    }
    expectListed(inspectRedirected(sample("avc_avc1.mp4"), {"-"}), "standard input",
                 "access units      25\n");
}

TEST_F(ProgramInput, streamThatIsNoneOfTheTwo) {
    expectRefused(inspect({"--stream", "3", sample("avc.ts")}), sample("avc.ts"),
                  "stream 3 does not exist; select one with --stream: 0 video h264");
}

// Matroska has presentation times only: those of the first access units are 0, 0.16, 0.08, 0.04, 0.12 s.
TEST_F(ProgramInput, partByPresentationTimes) {
    if (!std::filesystem::is_directory(streamsFolder())) {
        GTEST_SKIP() << "no folder " << streamsFolder();
    }
    const std::string matroska = streamsFolder() / "avc_ff.mkv";
    const Outcome outcome = inspect({"--level", "samples", "--duration", "0.1", matroska});
    expectListed(outcome, "avc_ff.mkv", "access units      3\n");
    for (const char* shown : {"AU 1 ", "AU 3 ", "AU 4 "}) {
        EXPECT_THAT(outcome.out, HasSubstr(shown));
    }
}

TEST_F(ProgramInput, partOfAContainer) {
    // 25 frames a second, in decoding order.
    expectListed(inspect({"--start", "0.4", "--duration", "0.2", sample("avc_avc1.mp4")}), "avc_avc1.mp4",
                 "access units      5\n");
    expectListed(inspect({"--start", "0.9", sample("avc_avc1.mp4")}), "avc_avc1.mp4",
                 "access units      2\n");
    expectListed(inspect({"--start", "0.4", "--limit", "3", sample("avc_avc1.mp4")}), "avc_avc1.mp4",
                 "access units      3\n");
}

#endif

TEST_F(ProgramInput, streamOfARawStream) {
    for (const char* format : {"annexb", "lp1", "lp2", "lp4"}) {
        const Outcome outcome = inspect({"--stream", "0", "--format", format, "x"});
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_THAT(outcome.err, HasSubstr("leave one of them out"));
    }
}

// --- Parts ---

// The stream without VPS, SPS and PPS.
Bytes withoutParameterSets(const Bytes& stream) {
    std::vector<std::pair<int, int>> nalus;
    QVNaluParser::parserDataToNaluIdx(stream.data(), static_cast<int>(stream.size()), nalus);
    std::vector<Bytes> units;
    for (const auto& [offset, length] : nalus) {
        const int type = stream[static_cast<size_t>(offset)] >> 1 & 0x3F;
        if (type < 32 || type > 34) {
            units.emplace_back(stream.begin() + offset, stream.begin() + offset + length);
        }
    }
    return byteStream(units);
}

TEST_F(ProgramInput, partOfARawStream) {
    write("x", rawStream());
    const auto part = [&](std::vector<std::string> options) {
        options.emplace_back("x");
        return inspect(options);
    };
    expectListed(part({"--limit", "3"}), "x", "access units      3\n");
    expectListed(part({"--limit", "9"}), "x", "access units      4\n");
    expectListed(part({"--frame-rate", "25", "--duration", "0.08"}), "x", "access units      2\n");
    const Outcome later = part({"--frame-rate", "25", "--start", "0.08"});
    expectListed(later, "x", "access units      2\n");
    EXPECT_THAT(later.out, HasSubstr("AU 3 "));
    EXPECT_THAT(later.out, Not(HasSubstr("AU 2 ")));
    // By the timing of the parameter sets.
    expectListed(part({"--start", "0.08"}), "x", "access units      2\n");
    write("y", withoutParameterSets(rawStream()));
    expectRefused(inspect({"--codec", "h265", "--start", "0.08", "y"}), "y",
                  "has no times for --start and --duration; for a raw stream give "
                  "--frame-rate, or use --limit");
    expectRefused(part({"--frame-rate", "25", "--start", "9"}), "x",
                  "ends before the part that --start selects; give an earlier time");
}

// Parameter sets before the part determine how it is read.
TEST_F(ProgramInput, parameterSetsAheadOfThePart) {
    write("x", rawStream() + withoutParameterSets(rawStream()));
    const std::vector<std::string> part = {
        "--check", "parameter-sets-first", "--frame-rate", "25", "--start", "0.16", "x"};
    const Outcome outcome = inspect(part);
    expectListed(outcome, "x", "key access units  1\n");
    EXPECT_THAT(outcome.out, HasSubstr("picture           320x180, cropped from 320x184"));
}

// A live stream: after the last access unit of the part, the program does not wait for more.
TEST_F(ProgramInput, limitOfAStreamThatStaysOpen) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    Bytes bytes;
    while (bytes.size() < (size_t{1} << 20)) {  // what is examined before reading
        bytes = bytes + rawStream();
    }
    const std::string out = folder() + "/out";
    const int output = openForWriting(out);
    RunningProgram program({"--limit", "3", "-"}, {ends[0], output, output}, folder());
    close(ends[0]);
    std::thread([&] { feed(ends[1], bytes); }).join();
    EXPECT_EQ(program.wait(), 0);
    close(ends[1]);
    close(output);
    EXPECT_THAT(textOf(out), HasSubstr("access units      3\n"));
}

// --- Interrupts ---

// The program reading a pipe that stays open.
class Interrupted : public ProgramInput {
protected:
    // Sends the signal when the program has read everything.
    Outcome interrupt(const Bytes& bytes, int number, const std::vector<std::string>& arguments) {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) {
            throw std::runtime_error("no pipe");
        }
        const int out = openForWriting(folder() + "/out");
        const int err = openForWriting(folder() + "/err");
        RunningProgram program(arguments, {ends[0], out, err}, folder());
        close(ends[0]);
        std::thread([&] { feed(ends[1], bytes); }).join();
        for (int unread = 1; unread > 0 && program.isRunning();) {
            usleep(1000);
            ioctl(ends[1], FIONREAD, &unread);
        }
        while (!program.catches(number) && program.isRunning()) {
            usleep(1000);
        }
        program.signal(number);
        const int exitCode = program.wait();
        for (const int file : {ends[1], out, err}) {
            close(file);
        }
        return {exitCode, textOf(folder() + "/out"), textOf(folder() + "/err")};
    }
};

TEST_F(Interrupted, whatIsWholeIsListed) {
    for (const int number : {SIGINT, SIGTERM}) {
        for (const int copies : {1, 100}) {  // less and more than is examined before reading
            Bytes bytes;
            for (int i = 0; i < copies; ++i) {
                bytes = bytes + rawStream();
            }
            const Outcome outcome = interrupt(bytes, number, {"-"});
            EXPECT_EQ(outcome.exitCode, 130);
            EXPECT_EQ(outcome.err, "");
            EXPECT_THAT(outcome.out, HasSubstr("interrupted: this is what was read so far\n"));
            EXPECT_THAT(outcome.out, HasSubstr("access units      " + std::to_string(4 * copies - 1) + "\n"));
            EXPECT_THAT(outcome.out, HasSubstr("errors            0\n"));
            EXPECT_THAT(outcome.out, EndsWith("\n"));
        }
    }
}

TEST_F(Interrupted, lengthPrefixedStream) {
    const Bytes unit = hex("65 88 80 10");
    const Outcome outcome = interrupt(lengthPrefixed({unit, unit}, 2) + hex("00"), SIGINT,
                                      {"--format", "lp2", "--codec", "h264", "-"});
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_THAT(outcome.out, HasSubstr("access units      1\n"));
    EXPECT_THAT(outcome.out, HasSubstr("errors            0\n"));
}

TEST_F(Interrupted, nothingWhole) {
    const Outcome outcome = interrupt(hex("00 00 01"), SIGINT, {"--codec", "h264", "-"});
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_EQ(outcome.err,
              "qvinspect: standard input: interrupted before the end of its first access unit; nothing is "
              "listed\n");
    EXPECT_EQ(interrupt({}, SIGINT, {"-"}).exitCode, 130);
}

TEST_F(Interrupted, laterInputsAreLeftOut) {
    write("x", rawStream());
    const Outcome outcome = interrupt(rawStream(), SIGINT, {"-", "x"});
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_THAT(outcome.out, Not(HasSubstr("Summary of x\n")));
}

#if QVINSPECT_HAS_LIBAVFORMAT

TEST_F(Interrupted, container) {
    Bytes bytes;
    while (bytes.size() < (size_t{3} << 20)) {
        bytes = bytes + fileContent(sampleFolder() / "avc.ts");
    }
    const Outcome outcome = interrupt(bytes, SIGINT, {"-"});
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.out, HasSubstr("interrupted: this is what was read so far\n"));
}

#endif

// --- The progress line ---

TEST_F(ProgramInput, progressOnATerminal) {
    const Terminal terminal;
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const int out = openForWriting(folder() + "/out");
    RunningProgram program({"--level", "summary", "-"}, {ends[0], out, terminal.file()}, folder());
    close(ends[0]);
    // The stream goes on until the line shows.
    const Bytes bytes = rawStream();
    std::string shown;
    while (shown.empty() && program.isRunning()) {
        std::thread([&] { feed(ends[1], bytes); }).join();
        shown = terminal.written();
    }
    close(ends[1]);
    EXPECT_EQ(program.wait(), 0);
    close(out);
    EXPECT_THAT(shown, StartsWith("\r"));
    EXPECT_THAT(shown, HasSubstr(" MB at "));
    const std::string last = shown + terminal.written();
    EXPECT_EQ(last.find_last_not_of(" \r"), last.rfind("MB/s") + 3);
    EXPECT_THAT(last, EndsWith(" \r"));
}

TEST_F(ProgramInput, noProgressForAShortWork) {
    const Terminal terminal;
    write("x", rawStream());
    const int out = openForWriting(folder() + "/out");
    EXPECT_EQ(run({"--level", "summary", "--limit", "1", "x"}, {kNoInput, out, terminal.file()}, folder()),
              0);
    close(out);
    EXPECT_EQ(terminal.written(), "");
}

}  // namespace
}  // namespace qv_test
