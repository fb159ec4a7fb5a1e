#pragma once

#include <dataviews/platform/data/RowBitmap.h>

#include <vtkSMPTools.h>

#include <cstddef>
#include <cstdint>

/// Takes the rows for which `passes(row)` is false out of \p rows, many of them by several threads.
///
/// For conditions that cost less than a branch: they are evaluated for every row of a word that has
/// any row left, and the answers are put together without jumps.
template <class Predicate>
void keepRows(RowBitmap& rows, Predicate passes)
{
    constexpr std::size_t wordSize = 64;
    const auto bitsOf = [&passes](std::size_t first, std::size_t count) {
        std::uint64_t bits = 0;
        for (std::size_t bit = 0; bit < count; ++bit) {
            bits |= static_cast<std::uint64_t>(passes(first + bit)) << bit;
        }
        return bits;
    };
    std::uint64_t* words = rows.words().data();
    const std::size_t fullWords = rows.rowCount() / wordSize;
    constexpr vtkIdType wordsWorthThread = 1024;
    vtkSMPTools::For(
        0,
        static_cast<vtkIdType>(fullWords),
        wordsWorthThread,
        [&](vtkIdType first, vtkIdType last) {
            const auto end = static_cast<std::size_t>(last);
            for (auto word = static_cast<std::size_t>(first); word < end; ++word) {
                if (words[word] != 0) {
                    words[word] &= bitsOf(word * wordSize, wordSize);
                }
            }
        });
    if (const std::size_t rest = rows.rowCount() % wordSize; rest != 0) {
        words[fullWords] &= bitsOf(fullWords * wordSize, rest);
    }
}
