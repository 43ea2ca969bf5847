#include "report/Output.h"

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

Output::Output(const std::string& path) : name_(outputName(path)) {
    if (const int error = file_.open(path); error != 0) {
        throw OutputError(fmt::format("{} cannot be opened for writing: {}", name_, reasonOf(error)), error);
    }
}

Output::~Output() {
    if (!isClosed_ && !file_.isUntouched()) {
        file_.write(text_.data(), text_.size());
    }
}

void Output::check(int error) {
    if (error != 0) {
        text_.clear();  // it would follow a gap
        throw OutputError(fmt::format("{} cannot be written: {}; {}", name_, reasonOf(error),
                                      file_.isUntouched() ? "it is unchanged" : "it is incomplete"),
                          error);
    }
}

void Output::write(const void* bytes, size_t size) {
    const char* const begin = static_cast<const char*>(bytes);
    text_.append(begin, begin + size);
    flushPiece();
}

void Output::flush() {
    check(file_.write(text_.data(), text_.size()));
    text_.clear();
}

void Output::close() {
    flush();
    isClosed_ = true;
    check(file_.close());
}

}  // namespace qvinspect
