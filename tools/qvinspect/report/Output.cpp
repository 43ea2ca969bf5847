#include "report/Output.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "report/PrintableName.h"

namespace qvinspect {

namespace {

std::string reasonOf(int error) {
    return std::generic_category().message(error);
}

}  // namespace

std::string outputName(const std::string& path) {
    return path == "-" ? "standard output" : printableName(path);
}

Output::Output(const std::string& path) : name_(outputName(path)), isOwned_(path != "-") {
    file_ = isOwned_ ? std::fopen(path.c_str(), "wb") : stdout;
    if (file_ == nullptr) {
        const int error = errno;
        throw OutputError(fmt::format("{} cannot be opened for writing: {}", name_, reasonOf(error)), error);
    }
}

Output::~Output() {
    if (file_ != nullptr) {
        std::fwrite(text_.data(), 1, text_.size(), file_);
        if (isOwned_) {
            std::fclose(file_);
        }
    }
}

void Output::fail(int error) {
    text_.clear();  // what stands in it would follow a gap
    throw OutputError(
        fmt::format("{} cannot be written: {}; what was written of it is not whole", name_, reasonOf(error)),
        error);
}

void Output::write(const void* bytes, size_t size) {
    const char* const begin = static_cast<const char*>(bytes);
    text_.append(begin, begin + size);
    flushPiece();
}

void Output::flush() {
    const size_t size = text_.size();
    if (std::fwrite(text_.data(), 1, size, file_) != size || std::fflush(file_) != 0) {
        fail(errno);
    }
    text_.clear();
}

void Output::close() {
    flush();
    if (isOwned_ && std::fclose(std::exchange(file_, nullptr)) != 0) {
        fail(errno);
    }
}

bool Output::isTerminal() const {
    return isatty(fileno(file_)) != 0;
}

}  // namespace qvinspect
