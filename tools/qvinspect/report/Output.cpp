#include "report/Output.h"

#include <unistd.h>

#include <cerrno>

#include "report/PrintableName.h"

namespace qvinspect {

Output::Output(const std::string& path)
    : name_(path == "-" ? "standard output" : printableName(path)), isOwned_(path != "-") {
    file_ = isOwned_ ? std::fopen(path.c_str(), "wb") : stdout;
    if (file_ == nullptr) {
        fail(errno);
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

void Output::fail(int error) const {
    throw OutputError(name_, error);
}

void Output::write(const void* bytes, size_t size) {
    const char* const begin = static_cast<const char*>(bytes);
    text_.append(begin, begin + size);
    flushPiece();
}

void Output::flush() {
    const size_t size = text_.size();
    const bool isWritten = std::fwrite(text_.data(), 1, size, file_) == size && std::fflush(file_) == 0;
    const int error = errno;
    text_.clear();
    if (!isWritten) {
        fail(error);
    }
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
