#pragma once

#include <cstdio>
#include <cstdlib>

// A broken precondition is a programming error; no input reaches one in
// normal use, so stopping at once with the place is the useful answer.
#define PXR_PRECONDITION(condition, message)                                                 \
  do {                                                                                       \
    if (!(condition)) {                                                                      \
      std::fprintf(stderr, "%s:%d: precondition failed: %s\n", __FILE__, __LINE__, message); \
      std::abort();                                                                          \
    }                                                                                        \
  } while (0)
