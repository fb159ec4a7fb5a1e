#pragma once

#include <dataviews/platform/data/RowBitmap.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace analyzer {

/// A set of rows of a table in little memory, for keeping; cannot be changed.
///
/// Held as runs of rows that follow one another or as the part of the bitmap that is not empty, whichever is smaller.
class CompressedRows
{
public:
    explicit CompressedRows(const RowBitmap& rows);

    /// The rows again, for a table with as many of them as before.
    [[nodiscard]] RowBitmap toBitmap() const;

    /// How many rows are in the set.
    [[nodiscard]] std::size_t size() const { return m_size; }

    /// The memory that this takes, with the object itself.
    [[nodiscard]] std::size_t byteCount() const;

private:
    std::size_t m_rowCount; ///< of the table
    std::size_t m_size;
    std::vector<std::uint32_t>
        m_runs; ///< the first row of each and the row behind it; empty if there are words
    std::vector<std::uint64_t> m_words;
    std::size_t m_firstWord = 0; ///< where the words begin in the bitmap
};

} // namespace analyzer
