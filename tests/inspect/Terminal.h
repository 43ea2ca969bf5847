// A pseudo terminal that keeps what is written to it.
#ifndef QV_TESTS_TERMINAL_H
#define QV_TESTS_TERMINAL_H

#include <string>

namespace qv_test {

class Terminal {
public:
    Terminal();
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    // The program's side.
    int file() const { return program_; }

    // The output since the last call.
    std::string written() const;

private:
    int user_;
    int program_;
};

}  // namespace qv_test

#endif
