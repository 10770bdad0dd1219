#pragma once

#include <cstdio>
#include <cstdlib>

// A law a loader must keep for every input. When one is broken, the target says which and
// aborts, so that libFuzzer keeps the input as a crash.
#define FERRULE_LAW(condition)                                                                     \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            std::fprintf(stderr, "law broken at %s:%d: %s\n", __FILE__, __LINE__, #condition);     \
            std::abort();                                                                          \
        }                                                                                          \
    } while (false)
