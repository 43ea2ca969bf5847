#include "Terminal.h"

#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <stdexcept>

namespace qv_test {

Terminal::Terminal() : user_(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)), program_(-1) {
    if (user_ >= 0 && grantpt(user_) == 0 && unlockpt(user_) == 0) {
        program_ = open(ptsname(user_), O_RDWR | O_NOCTTY | O_CLOEXEC);
    }
    termios mode = {};
    if (program_ < 0 || tcgetattr(program_, &mode) != 0) {
        throw std::runtime_error("no pseudo terminal");
    }
    cfmakeraw(&mode);  // bytes as they are written
    tcsetattr(program_, TCSANOW, &mode);
}

Terminal::~Terminal() {
    close(program_);
    close(user_);
}

std::string Terminal::written() const {
    std::string text;
    char piece[1024];
    for (ssize_t count = 0; (count = read(user_, piece, sizeof piece)) > 0;) {
        text.append(piece, piece + count);
    }
    return text;
}

}  // namespace qv_test
