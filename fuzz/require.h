#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the program with \p what was expected, unless \p holds: that is a finding.
inline void require(bool holds, const char* what)
{
    if (!holds) {
        std::fprintf(stderr, "Expected: %s\n", what);
        std::abort();
    }
}
