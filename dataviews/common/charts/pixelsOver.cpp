#include <dataviews/common/charts/pixelsOver.h>

#include <algorithm>
#include <array>

namespace {

constexpr std::size_t blockSize = 64; ///< pixels that are handled in the nearest cache

/// Loops without branches, and with products that fit into 16 bits: the compiler handles eight at a time.
template <std::size_t Size>
void paintBlockOver(std::uint32_t* pixels, const std::uint32_t* upper)
{
    std::array<std::uint32_t, Size> shares;
    for (std::size_t i = 0; i < Size; ++i) {
        std::uint32_t share = ~upper[i] >> 24U;
        share |= share << 8U;
        shares[i] = share | share << 16U;
    }
    constexpr std::size_t bytes = Size * sizeof(std::uint32_t);
    std::array<unsigned char, bytes> lower;
    auto* const out = reinterpret_cast<unsigned char*>(pixels);
    const auto* const share = reinterpret_cast<const unsigned char*>(shares.data());
    std::copy_n(out, bytes, lower.data());
    for (std::size_t i = 0; i < bytes; ++i) {
        const auto product = static_cast<std::uint16_t>(lower[i] * share[i] + 128);
        lower[i] =
            static_cast<unsigned char>(static_cast<std::uint16_t>(product + (product >> 8U)) >> 8U);
    }
    const auto* const through = reinterpret_cast<const std::uint32_t*>(lower.data());
    for (std::size_t i = 0; i < Size; ++i) {
        pixels[i] = upper[i] + through[i];
    }
}

} // namespace

void paintOver(std::uint32_t* pixels, const std::uint32_t* upper, std::size_t count)
{
    std::size_t i = 0;
    for (; i + blockSize <= count; i += blockSize) {
        paintBlockOver<blockSize>(pixels + i, upper + i);
    }
    for (; i < count; ++i) {
        pixels[i] = pixelOver(upper[i], pixels[i]);
    }
}
