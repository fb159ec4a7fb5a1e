#pragma once

#include <dataviews/platform/data/PlatformDataExport.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/// A set of rows of a table with one bit for each row.
///
/// Cheap enough to hold one for every tag and every selection of a million cases (125 kB).
class DATAVIEWS_PLATFORM_DATA_EXPORT RowBitmap
{
public:
    /// For \p rowCount rows, all in or all out.
    explicit RowBitmap(std::size_t rowCount = 0, bool value = false);

    [[nodiscard]] std::size_t rowCount() const { return m_rowCount; }

    /// \p row must be below rowCount().
    [[nodiscard]] bool contains(std::size_t row) const
    {
        return ((m_words[row / 64] >> (row % 64)) & 1U) != 0;
    }

    /// \p row must be below rowCount().
    void set(std::size_t row, bool value = true)
    {
        const std::uint64_t bit = std::uint64_t(1) << (row % 64);
        m_words[row / 64] = value ? (m_words[row / 64] | bit) : (m_words[row / 64] & ~bit);
    }

    /// Sets the rows from \p first up to, but not including, \p end; both at most rowCount().
    void setRange(std::size_t first, std::size_t end, bool value = true);

    /// Sets all rows.
    void fill(bool value);

    /// Takes every row out that is in, and the other way round.
    void invert();

    /// Keeps the rows that are also in \p other, which has as many rows.
    void intersect(const RowBitmap& other);

    /// The number of rows in the set.
    [[nodiscard]] std::size_t count() const;

    /// The first row in the set at or after \p row; rowCount() if there is none.
    [[nodiscard]] std::size_t next(std::size_t row) const;

    /// Calls \p function with every row of the set, in ascending order.
    template <class Function>
    void forEach(Function function) const
    {
        for (std::size_t word = 0; word < m_words.size(); ++word) {
            for (std::uint64_t bits = m_words[word]; bits != 0; bits &= bits - 1) {
                function(word * 64 + static_cast<std::size_t>(__builtin_ctzll(bits)));
            }
        }
    }

    /// The bits, 64 rows a word, lowest bit first; bits beyond the last row are zero.
    [[nodiscard]] const std::vector<std::uint64_t>& words() const { return m_words; }

    /// For passes that write whole words; they leave the bits beyond the last row zero.
    [[nodiscard]] std::vector<std::uint64_t>& words() { return m_words; }

    friend bool operator==(const RowBitmap& left, const RowBitmap& right)
    {
        return left.m_rowCount == right.m_rowCount && left.m_words == right.m_words;
    }

    friend bool operator!=(const RowBitmap& left, const RowBitmap& right)
    {
        return !(left == right);
    }

private:
    void clearTail();

    std::vector<std::uint64_t> m_words;
    std::size_t m_rowCount;
};
