#pragma once

#include <cstddef>
#include <set>
#include <vector>

namespace analyzer {

/// A set of case IDs in little memory, for keeping; cannot be changed.
///
/// Held as ranges of IDs that follow one another or as a bitmap from the first ID to the last, whichever is smaller:
/// no set of IDs from 1 to N takes more than N / 8 bytes, rounded up to 8. Any IDs are allowed.
class CompressedCases
{
public:
    CompressedCases() = default;

    /// In time linear in the number of \p cases.
    explicit CompressedCases(const std::set<unsigned long long>& cases);

    /// The cases again, in time linear in their number and in byteCount().
    [[nodiscard]] std::set<unsigned long long> toSet() const;

    /// How many cases there are.
    [[nodiscard]] std::size_t size() const { return m_size; }

    /// The memory that this takes, with the object itself.
    [[nodiscard]] std::size_t byteCount() const;

    [[nodiscard]] bool operator==(const CompressedCases& other) const;

    [[nodiscard]] bool operator!=(const CompressedCases& other) const { return !(*this == other); }

private:
    /// False, with the ranges so far, if they would take more than \p maxNumbers numbers.
    bool fillRanges(const std::set<unsigned long long>& cases, unsigned long long maxNumbers);
    void fillBitmap(const std::set<unsigned long long>& cases, std::size_t wordCount);

    std::size_t m_size = 0;
    unsigned long long m_first = 0; ///< the ID of the bitmap's first bit
    bool m_isBitmap = false;

    /// The words of the bitmap, or the first and the last ID of each range, in ascending order.
    std::vector<unsigned long long> m_numbers;
};

} // namespace analyzer
