#include <analyzer/tags/CompressedRows.h>

#include <algorithm>

namespace analyzer {

namespace {

/// How many runs of rows begin in \p words.
std::size_t runCount(const std::vector<std::uint64_t>& words)
{
    std::size_t count = 0;
    std::uint64_t lastOfFormer = 0;
    for (const std::uint64_t word : words) {
        const std::uint64_t begins = word & ~((word << 1) | lastOfFormer);
        count += static_cast<std::size_t>(__builtin_popcountll(begins));
        lastOfFormer = word >> 63;
    }
    return count;
}

} // namespace

CompressedRows::CompressedRows(const RowBitmap& rows)
    : m_rowCount(rows.rowCount())
    , m_size(rows.count())
{
    const std::vector<std::uint64_t>& words = rows.words();
    const auto isUsed = [](std::uint64_t word) { return word != 0; };
    const auto first = std::find_if(words.begin(), words.end(), isUsed);
    const auto end = std::find_if(words.rbegin(), std::make_reverse_iterator(first), isUsed).base();
    const std::size_t runs = runCount(words);
    // A run takes as much as a word.
    if (runs > static_cast<std::size_t>(end - first)) {
        m_firstWord = static_cast<std::size_t>(first - words.begin());
        m_words.assign(first, end);
        return;
    }
    m_runs.reserve(2 * runs);
    rows.forEach([this](std::size_t row) {
        const auto number = static_cast<std::uint32_t>(row);
        if (m_runs.empty() || m_runs.back() != number) {
            m_runs.insert(m_runs.end(), {number, number});
        }
        m_runs.back() = number + 1;
    });
}

RowBitmap CompressedRows::toBitmap() const
{
    RowBitmap rows(m_rowCount);
    std::copy(
        m_words.begin(),
        m_words.end(),
        rows.words().begin() + static_cast<std::ptrdiff_t>(m_firstWord));
    for (std::size_t i = 0; i < m_runs.size(); i += 2) {
        rows.setRange(m_runs[i], m_runs[i + 1]);
    }
    return rows;
}

std::size_t CompressedRows::byteCount() const
{
    return sizeof(*this) + m_runs.capacity() * sizeof(std::uint32_t)
        + m_words.capacity() * sizeof(std::uint64_t);
}

} // namespace analyzer
