#pragma once

#include <dataviews/platform/data/RowBitmap.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

/// Copies the values of \p rows one behind the other to \p to, which has room for just so many.
///
/// Words of neighbours that are all in \p rows, as in ordered columns, are copied as a block, and words with many of
/// them without jumps.
template <class Value>
void copyRows(const Value* from, const RowBitmap& rows, Value* to)
{
    constexpr std::size_t wordSize = 64;
    constexpr int fewRows = 16;
    const std::vector<std::uint64_t>& words = rows.words();
    std::size_t end = words.size();
    while (end != 0 && words[end - 1] == 0) {
        --end;
    }
    for (std::size_t word = 0; word < end; ++word, from += wordSize) {
        std::uint64_t bits = words[word];
        if (bits == ~std::uint64_t(0)) {
            to = std::copy_n(from, wordSize, to);
            continue;
        }
        if constexpr (std::is_arithmetic_v<Value>) {
            // A value that is left out is overwritten by the next one; behind the last word there is none.
            if (word + 1 != end && __builtin_popcountll(bits) > fewRows) {
                for (std::size_t bit = 0; bit < wordSize; ++bit) {
                    *to = from[bit];
                    to += (bits >> bit) & 1U;
                }
                continue;
            }
        }
        for (; bits != 0; bits &= bits - 1) {
            *to++ = from[__builtin_ctzll(bits)];
        }
    }
}
