// Support for the tests of the inspector.
#ifndef QV_TESTS_INSPECTSUPPORT_H
#define QV_TESTS_INSPECTSUPPORT_H

#include <cstddef>
#include <filesystem>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "BitWriter.h"
#include "CommandLine.h"
#include "input/AccessUnitReader.h"
#include "input/ByteSource.h"
#include "input/RawReader.h"
#include "report/Presenter.h"

namespace qv_test {

// A source of bytes in memory that returns at most mostBytes at a time, and fails at its end if failure is
// not empty.
class MemorySource : public qvinspect::ByteSource {
public:
    explicit MemorySource(Bytes bytes, size_t mostBytes = SIZE_MAX, std::string failure = {});
    size_t read(unsigned char* to, size_t size) override;
    std::string failure() const override { return failure_; }

private:
    Bytes bytes_;
    size_t mostBytes_;
    std::string failure_;
    size_t position_ = 0;
};

// The streams in the repository.
std::filesystem::path sampleFolder();

Bytes fileContent(const std::filesystem::path& path);

// Blank-separated hexadecimal bytes.
Bytes hex(const std::string& text);

Bytes operator+(const Bytes& a, const Bytes& b);

// Each unit after a 4-byte start code.
Bytes byteStream(const std::vector<Bytes>& units);

// Each unit after a length field of lengthSize bytes.
Bytes lengthPrefixed(const std::vector<Bytes>& units, unsigned lengthSize);

// A temporary folder, removed with its contents.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

    // Writes a file of any name, also one that is not text.
    std::string write(const std::string& name, const Bytes& content) const;

private:
    std::filesystem::path path_;
};

// An access unit of a raw stream, with its bytes, after the reader went on.
struct KeptAccessUnit {
    Bytes bytes;
    uint64_t offset;
    std::vector<std::string> findings;  // "error at 12: text"
};

bool operator==(const KeptAccessUnit& a, const KeptAccessUnit& b);
void PrintTo(const KeptAccessUnit& unit, std::ostream* out);

struct KeptStream {
    std::vector<KeptAccessUnit> accessUnits;
    std::vector<std::string> findings;  // after the last access unit
};

std::string describe(const qvinspect::Finding& finding);
std::vector<std::string> describe(const std::vector<qvinspect::Finding>& findings);

QVCodecParameters byteStreamOf(QVCodecID codec);

KeptStream readRaw(std::unique_ptr<qvinspect::ByteSource> source, const QVCodecParameters& raw,
                   qvinspect::RawLimits limits = {});

// Passes a stream with these access units to presenter, up to its end.
void present(qvinspect::Presenter& presenter, const qvinspect::StreamInfo& info,
             const std::vector<Bytes>& accessUnits, const qvinspect::CommandLine& line = {});

}  // namespace qv_test

#endif
