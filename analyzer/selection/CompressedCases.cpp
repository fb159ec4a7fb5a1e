#include <analyzer/selection/CompressedCases.h>

#include <limits>

namespace analyzer {

namespace {

constexpr unsigned long long wordBits = std::numeric_limits<unsigned long long>::digits;

} // namespace

CompressedCases::CompressedCases(const std::set<unsigned long long>& cases)
    : m_size(cases.size())
{
    if (cases.empty()) {
        return;
    }
    m_first = *cases.begin();
    // No overflow: also the words of all IDs there can be are far fewer than the largest number.
    const unsigned long long wordCount = (*cases.rbegin() - m_first) / wordBits + 1;
    if (!fillRanges(cases, wordCount)) {
        // As many words as the ranges would need at most, which fit into memory.
        fillBitmap(cases, static_cast<std::size_t>(wordCount));
    }
}

std::set<unsigned long long> CompressedCases::toSet() const
{
    std::set<unsigned long long> cases;
    if (m_isBitmap) {
        unsigned long long wordFirst = m_first;
        for (const unsigned long long word : m_numbers) {
            for (unsigned long long bits = word; bits != 0; bits &= bits - 1) {
                const auto bit = static_cast<unsigned>(__builtin_ctzll(bits));
                cases.insert(cases.end(), wordFirst + bit);
            }
            wordFirst += wordBits;
        }
        return cases;
    }
    for (std::size_t range = 0; range < m_numbers.size(); range += 2) {
        const unsigned long long last = m_numbers[range + 1];
        for (unsigned long long id = m_numbers[range]; id != last; ++id) {
            cases.insert(cases.end(), id);
        }
        cases.insert(
            cases.end(), last); // not in the loop: behind the largest ID there is none to end it
    }
    return cases;
}

std::size_t CompressedCases::byteCount() const
{
    return sizeof(*this) + m_numbers.capacity() * sizeof(m_numbers.front());
}

bool CompressedCases::operator==(const CompressedCases& other) const
{
    return m_size == other.m_size && m_first == other.m_first && m_isBitmap == other.m_isBitmap
        && m_numbers == other.m_numbers;
}

bool CompressedCases::fillRanges(
    const std::set<unsigned long long>& cases, unsigned long long maxNumbers)
{
    for (auto id = cases.begin(); id != cases.end();) {
        if (m_numbers.size() + 2 > maxNumbers) {
            return false;
        }
        const unsigned long long first = *id;
        unsigned long long last = first;
        for (++id; id != cases.end() && *id == last + 1; ++id) {
            last = *id;
        }
        m_numbers.push_back(first);
        m_numbers.push_back(last);
    }
    m_numbers.shrink_to_fit();
    return true;
}

void CompressedCases::fillBitmap(const std::set<unsigned long long>& cases, std::size_t wordCount)
{
    m_isBitmap = true;
    m_numbers = std::vector<unsigned long long>(wordCount);
    for (const unsigned long long id : cases) {
        const unsigned long long place = id - m_first;
        m_numbers[static_cast<std::size_t>(place / wordBits)] |= 1ULL << place % wordBits;
    }
}

} // namespace analyzer
