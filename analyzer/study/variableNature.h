#pragma once

#include <dataviews/platform/data/Variable.h>

namespace analyzer {

class ReadProgress;

/// What \p variable is by its values, where the file does not say: an input with 2 to 50 different values, at most half
/// as many as there are cases; an identifier if it holds texts or whole numbers, a different one in every case; else an
/// output.
/// \throws ReadCancelled
[[nodiscard]] Variable::Nature variableNature(
    const Variable& variable, const ReadProgress& progress);

} // namespace analyzer
