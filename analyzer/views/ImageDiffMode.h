#pragma once

namespace analyzer {

/// How two pictures are compared.
enum class ImageDiffMode
{
    SideBySide,
    Blend,
    Difference
};

} // namespace analyzer
