#pragma once

#include <dataviews/platform/selection/PlatformSelectionExport.h>

#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

/// A set of case IDs in little memory, which cannot be changed.
///
/// Held as ranges of IDs that follow one another or as a bitmap from the first ID to the last, whichever is smaller:
/// no set of IDs from 1 to N takes more than N / 8 bytes, rounded up to 8. Any IDs are allowed. Whoever works on many
/// cases does so by whole words: at a million cases a walk over a std::set takes about as long as painting a view.
/// Reading is safe from any thread.
class DATAVIEWS_PLATFORM_SELECTION_EXPORT CaseSet
{
public:
    using ID = unsigned long long;

    /// 64 IDs, the lowest bit first.
    using Word = std::uint64_t;

    CaseSet() = default;

    /// In time linear in the number of \p cases.
    explicit CaseSet(const std::set<ID>& cases);

    /// The members are the bits of \p words that are set; the lowest one of the first word stands for \p first. The
    /// bit of the largest ID there is may be the last one.
    [[nodiscard]] static CaseSet ofBits(ID first, const std::vector<Word>& words);

    /// \p ids ascend; the same one may come several times.
    [[nodiscard]] static CaseSet ofSorted(const std::vector<ID>& ids);

    /// The cases that are in either, or in just one.
    [[nodiscard]] static CaseSet united(const CaseSet& left, const CaseSet& right);
    [[nodiscard]] static CaseSet symmetricDifference(const CaseSet& left, const CaseSet& right);

    /// Whether all of \p part is in here.
    [[nodiscard]] bool includes(const CaseSet& part) const;

    /// The cases again, in time linear in their number and in byteCount().
    [[nodiscard]] std::set<ID> toSet() const;

    /// How many cases there are.
    [[nodiscard]] std::size_t size() const { return m_size; }

    [[nodiscard]] bool isEmpty() const { return m_size == 0; }

    /// There must be a case.
    [[nodiscard]] ID smallest() const;
    [[nodiscard]] ID largest() const;

    [[nodiscard]] bool contains(ID id) const;

    /// Sets the bits of the members in \p words, the lowest one of the first word standing for \p first. Members that
    /// have no bit there are left out.
    void addTo(std::vector<Word>& words, ID first) const;

    /// How many members there are from \p first to \p last, both included.
    [[nodiscard]] std::size_t countBetween(ID first, ID last) const;

    /// Calls \p function with every case in ascending order until it gives true; whether it did.
    template <class Function>
    bool anyOf(Function function) const
    {
        if (m_isBitmap) {
            ID wordFirst = m_first;
            for (const Word word : m_numbers) {
                for (Word bits = word; bits != 0; bits &= bits - 1) {
                    if (function(wordFirst + static_cast<unsigned>(__builtin_ctzll(bits)))) {
                        return true;
                    }
                }
                wordFirst += wordBits;
            }
            return false;
        }
        for (std::size_t range = 0; range < m_numbers.size(); range += 2) {
            // Not in the head of the loop: behind the largest ID there is none to end it.
            for (ID id = m_numbers[range];; ++id) {
                if (function(id)) {
                    return true;
                }
                if (id == m_numbers[range + 1]) {
                    break;
                }
            }
        }
        return false;
    }

    /// Calls \p function with every case in ascending order.
    template <class Function>
    void forEach(Function function) const
    {
        anyOf([&function](ID id) {
            function(id);
            return false;
        });
    }

    /// The memory that this takes, with the object itself.
    [[nodiscard]] std::size_t byteCount() const;

    [[nodiscard]] bool operator==(const CaseSet& other) const;

    [[nodiscard]] bool operator!=(const CaseSet& other) const { return !(*this == other); }

private:
    static constexpr unsigned wordBits = 64;

    /// Combines both word by word where that takes little memory, else ID by ID.
    template <class WordOperation, class Merge>
    static CaseSet combined(
        const CaseSet& left, const CaseSet& right, WordOperation operation, Merge merge);
    void takeWords(ID first, std::vector<Word>&& words);
    void takeRanges(std::vector<Word>&& ranges);

    std::size_t m_size = 0;
    ID m_first = 0; ///< the smallest: of the bitmap's first bit
    bool m_isBitmap = false;

    /// The words of the bitmap, or the first and the last ID of each range, in ascending order.
    std::vector<Word> m_numbers;
};
