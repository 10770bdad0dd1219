#pragma once

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace ferrule {

// ALSA and RtMidi print their own complaints to stderr before RtMidi throws; the programs say
// what went wrong once, in their own words, so stderr is quiet while RtMidi is set up.
class QuietStderr {
public:
    QuietStderr() {
        std::fflush(stderr);
        saved_ = dup(STDERR_FILENO);
        const int null = ::open("/dev/null", O_WRONLY);
        if (null >= 0) {
            dup2(null, STDERR_FILENO);
            ::close(null);
        }
    }
    ~QuietStderr() {
        std::fflush(stderr);
        if (saved_ >= 0) {
            dup2(saved_, STDERR_FILENO);
            ::close(saved_);
        }
    }
    QuietStderr(const QuietStderr&) = delete;
    QuietStderr& operator=(const QuietStderr&) = delete;

private:
    int saved_ = -1;
};

} // namespace ferrule
