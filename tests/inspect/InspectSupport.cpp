#include "InspectSupport.h"

#include <stdlib.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "analysis/AccessUnitView.h"
#include "analysis/StreamDetails.h"

namespace qv_test {

namespace fs = std::filesystem;

MemorySource::MemorySource(Bytes bytes, size_t mostBytes, std::string failure)
    : bytes_(std::move(bytes)), mostBytes_(mostBytes), failure_(std::move(failure)) {}

size_t MemorySource::read(unsigned char* to, size_t size) {
    const size_t count = std::min({size, mostBytes_, bytes_.size() - position_});
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(position_), count, to);
    position_ += count;
    return count;
}

fs::path sampleFolder() {
    return QVINSPECT_SAMPLES_DIR;
}

Bytes fileContent(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

Bytes hex(const std::string& text) {
    std::istringstream in(text);
    Bytes bytes;
    for (std::string word; in >> word;) {
        size_t used = 0;
        bytes.push_back(static_cast<uint8_t>(std::stoul(word, &used, 16)));
        if (used != word.size() || word.size() != 2) {
            throw std::invalid_argument("no byte: " + word);
        }
    }
    return bytes;
}

Bytes operator+(const Bytes& a, const Bytes& b) {
    Bytes sum = a;
    sum.insert(sum.end(), b.begin(), b.end());
    return sum;
}

Bytes byteStream(const std::vector<Bytes>& units) {
    Bytes stream;
    for (const Bytes& unit : units) {
        stream.insert(stream.end(), {0, 0, 0, 1});
        stream.insert(stream.end(), unit.begin(), unit.end());
    }
    return stream;
}

Bytes lengthPrefixed(const std::vector<Bytes>& units, unsigned lengthSize) {
    Bytes stream;
    for (const Bytes& unit : units) {
        for (unsigned i = lengthSize; i > 0; --i) {
            stream.push_back(static_cast<uint8_t>(unit.size() >> (i - 1) * 8));
        }
        stream.insert(stream.end(), unit.begin(), unit.end());
    }
    return stream;
}

TemporaryFolder::TemporaryFolder() {
    std::string pattern = (fs::temp_directory_path() / "qvinspect_XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no temporary folder: " + pattern);
    }
    path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::string TemporaryFolder::write(const std::string& name, const Bytes& content) const {
    const fs::path path = path_ / name;
    std::ofstream file(path, std::ios::binary);
    std::copy(content.begin(), content.end(), std::ostreambuf_iterator<char>(file));
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + path.string());
    }
    return path.string();
}

bool operator==(const KeptAccessUnit& a, const KeptAccessUnit& b) {
    return a.bytes == b.bytes && a.offset == b.offset && a.findings == b.findings;
}

void PrintTo(const KeptAccessUnit& unit, std::ostream* out) {
    *out << unit.bytes.size() << " bytes at " << unit.offset;
}

std::string describe(const qvinspect::Finding& finding) {
    const std::string severity = finding.severity == qvinspect::Severity::Error ? "error" : "note";
    const std::string place = finding.offset ? " at " + std::to_string(*finding.offset) : "";
    return severity + place + ": " + finding.text;
}

std::vector<std::string> describe(const std::vector<qvinspect::Finding>& findings) {
    std::vector<std::string> texts;
    for (const auto& finding : findings) {
        texts.push_back(describe(finding));
    }
    return texts;
}

QVCodecParameters byteStreamOf(QVCodecID codec) {
    return {codec, 1, 0};
}

KeptStream readRaw(std::unique_ptr<qvinspect::ByteSource> source, const QVCodecParameters& raw,
                   qvinspect::RawLimits limits) {
    qvinspect::RawReader reader(std::move(source), raw, limits);
    KeptStream stream;
    qvinspect::AccessUnit accessUnit;
    while (reader.next(accessUnit)) {
        stream.accessUnits.push_back({Bytes(accessUnit.data, accessUnit.data + accessUnit.size),
                                      accessUnit.fileOffset.value(), describe(accessUnit.findings)});
    }
    stream.findings = describe(accessUnit.findings);
    return stream;
}

void present(qvinspect::Presenter& presenter, const qvinspect::StreamInfo& info,
             const std::vector<Bytes>& accessUnits, const qvinspect::CommandLine& line) {
    qvinspect::StreamDetails details(info.parameters.codecId, line.requested);
    const auto configuration = details.addConfiguration(info.configuration);
    presenter.begin({"stream", info, false, configuration.parameterSets, configuration.seiUnits});
    uint64_t number = 0;
    for (const Bytes& bytes : accessUnits) {
        qvinspect::AccessUnit accessUnit;
        accessUnit.data = bytes.data();
        accessUnit.size = bytes.size();
        accessUnit.parameters = info.parameters;
        auto report = qvinspect::analyse(accessUnit);
        const auto accessUnitDetails = details.add(accessUnit, report);
        auto view = qvinspect::viewOf(++number, accessUnit, report, accessUnitDetails);
        line.filter.apply(view);
        presenter.add(view);
    }
    const qvinspect::StreamTotals totals;
    presenter.end({totals, {}, {}, false});
}

}  // namespace qv_test
