#include <dataviews/platform/data/RowBitmap.h>

#include <QtGlobal>

#include <algorithm>

namespace {

constexpr std::uint64_t allBits = ~std::uint64_t(0);

} // namespace

RowBitmap::RowBitmap(std::size_t rowCount, bool value)
    : m_words((rowCount + 63) / 64, value ? allBits : 0)
    , m_rowCount(rowCount)
{
    clearTail();
}

void RowBitmap::setRange(std::size_t first, std::size_t end, bool value)
{
    if (first >= end) {
        return;
    }
    Q_ASSERT_X(end <= m_rowCount, "RowBitmap::setRange", "the range ends behind the last row");
    const auto apply = [this, value](std::size_t word, std::uint64_t bits) {
        m_words[word] = value ? (m_words[word] | bits) : (m_words[word] & ~bits);
    };
    const std::size_t firstWord = first / 64;
    const std::size_t lastWord = (end - 1) / 64;
    const std::uint64_t firstBits = allBits << (first % 64);
    const std::uint64_t lastBits = allBits >> (63 - (end - 1) % 64);
    if (firstWord == lastWord) {
        apply(firstWord, firstBits & lastBits);
        return;
    }
    apply(firstWord, firstBits);
    std::fill(
        m_words.begin() + static_cast<std::ptrdiff_t>(firstWord + 1),
        m_words.begin() + static_cast<std::ptrdiff_t>(lastWord),
        value ? allBits : 0);
    apply(lastWord, lastBits);
}

void RowBitmap::fill(bool value)
{
    std::fill(m_words.begin(), m_words.end(), value ? allBits : 0);
    clearTail();
}

void RowBitmap::invert()
{
    for (std::uint64_t& word : m_words) {
        word = ~word;
    }
    clearTail();
}

void RowBitmap::intersect(const RowBitmap& other)
{
    Q_ASSERT_X(
        other.m_rowCount == m_rowCount,
        "RowBitmap::intersect",
        "the bitmaps are of different tables");
    for (std::size_t word = 0; word < m_words.size(); ++word) {
        m_words[word] &= other.m_words[word];
    }
}

std::size_t RowBitmap::count() const
{
    std::size_t result = 0;
    for (const std::uint64_t word : m_words) {
        result += static_cast<std::size_t>(__builtin_popcountll(word));
    }
    return result;
}

std::size_t RowBitmap::next(std::size_t row) const
{
    if (row >= m_rowCount) {
        return m_rowCount;
    }
    std::size_t word = row / 64;
    std::uint64_t bits = m_words[word] & (allBits << (row % 64));
    while (bits == 0) {
        if (++word == m_words.size()) {
            return m_rowCount;
        }
        bits = m_words[word];
    }
    return word * 64 + static_cast<std::size_t>(__builtin_ctzll(bits));
}

void RowBitmap::clearTail()
{
    if (m_rowCount % 64 != 0) {
        m_words.back() &= allBits >> (64 - m_rowCount % 64);
    }
}
