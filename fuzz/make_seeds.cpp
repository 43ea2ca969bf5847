// Writes the seed corpus into one folder for each target. The seeds come from the tests' builders and from
// real streams. Usage: make_seeds FOLDER STREAM...
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

#include "SeedCorpus.h"

namespace {

namespace fs = std::filesystem;
using qv_test::Bytes;

class SeedFolder {
public:
    explicit SeedFolder(fs::path folder) : folder_(std::move(folder)) {}

    void write(const std::vector<qv_test::Seed>& seeds) {
        for (const qv_test::Seed& seed : seeds) {
            fs::create_directories(folder_ / seed.target);
            std::ofstream file(folder_ / seed.target / std::to_string(counts_[seed.target]++),
                               std::ios::binary);
            file.write(reinterpret_cast<const char*>(seed.bytes.data()),
                       static_cast<std::streamsize>(seed.bytes.size()));
            isGood_ &= static_cast<bool>(file.flush());
        }
    }

    bool isGood() const { return isGood_; }

private:
    fs::path folder_;
    std::map<std::string, size_t> counts_;
    bool isGood_ = true;
};

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: make_seeds FOLDER STREAM...\n");
        return 1;
    }
    SeedFolder folder(argv[1]);
    folder.write(qv_test::builtSeeds());
    for (int i = 2; i < argc; ++i) {
        std::ifstream file(argv[i], std::ios::binary);
        const Bytes stream{std::istreambuf_iterator<char>(file), {}};
        if (stream.empty()) {
            std::fprintf(stderr, "cannot read %s\n", argv[i]);
            return 1;
        }
        folder.write(qv_test::seedsOf(stream, fs::path(argv[i]).extension() == ".h265"));
    }
    return folder.isGood() ? 0 : 1;
}
