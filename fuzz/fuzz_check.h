#pragma once
// A failed invariant in a fuzz target: says which and stops, so libFuzzer keeps the input
// that broke it as a crash.

#include <cstdio>
#include <cstdlib>

#define FUZZ_CHECK(condition, what)                                                  \
  do {                                                                               \
    if (!(condition)) {                                                              \
      std::fprintf(stderr, "%s:%d: invariant broken: %s (%s)\n", __FILE__, __LINE__, \
                   what, #condition);                                                \
      std::abort();                                                                  \
    }                                                                                \
  } while (false)
