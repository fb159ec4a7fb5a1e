#pragma once

#include <cstddef>
#include <string>

namespace analyzer {

/// Why a view leaves some cases of the study out. A case that is left out for several reasons counts for the first.
struct LeftOutCases
{
    std::size_t count;
    std::string reason; ///< goes behind the number, UTF-8: "filtered", "without Drag"
};

} // namespace analyzer
