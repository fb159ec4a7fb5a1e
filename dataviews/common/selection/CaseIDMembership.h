#pragma once

#include <dataviews/common/selection/SelectionExport.h>

#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

class CaseSet;

/// Answers for many rows whether their case is in a selection, without looking into a tree for each.
///
/// Built once for a selection and asked for every row of every plot. Keys are the low 32 bits of a case ID as it is
/// read from a record table; IDs that no record table can hold are members of nothing.
class DATAVIEWS_SELECTION_EXPORT CaseIDMembership
{
public:
    using Key = std::uint32_t;

    explicit CaseIDMembership(const std::set<unsigned long long>& cases);
    [[nodiscard]] static CaseIDMembership of(const CaseSet& cases);

    [[nodiscard]] bool isEmpty() const { return m_count == 0; }

    /// Whether there is one member only, singleKey().
    [[nodiscard]] bool isSingle() const { return m_count == 1; }

    [[nodiscard]] Key singleKey() const { return m_first; }

    /// Whether membership is one bit of bits() for each key from firstKey() on; keys outside are no members. The last
    /// bit is zero, or the key before firstKey() has it.
    [[nodiscard]] bool isBitmap() const { return !m_bits.empty(); }

    [[nodiscard]] Key firstKey() const { return m_first; }

    [[nodiscard]] const std::vector<std::uint64_t>& bits() const { return m_bits; }

    [[nodiscard]] bool contains(Key key) const
    {
        if (isBitmap()) {
            const Key offset = key - m_first;
            const std::size_t word = offset / 64;
            return word < m_bits.size() && ((m_bits[word] >> (offset % 64)) & 1U) != 0;
        }
        return !m_slots.empty() && isInSlots(key);
    }

    /// For a bitmap: the lowest bit tells whether \p key is a member, the highest whether \p key + 63 is.
    [[nodiscard]] std::uint64_t membersFrom(Key key) const
    {
        const Key offset = key - m_first;
        const std::size_t word = offset / 64;
        const unsigned shift = offset % 64;
        std::uint64_t members = word < m_bits.size() ? m_bits[word] >> shift : 0;
        if (shift != 0) {
            // Behind the largest key comes key 0: an offset just below 0 reaches the first word.
            const std::size_t next = static_cast<Key>(offset + 63) / 64;
            members |= next < m_bits.size() ? m_bits[next] << (64 - shift) : 0;
        }
        return members;
    }

private:
    enum class Form
    {
        Compact
    };

    CaseIDMembership(Form form, const CaseSet& cases);

    void buildSlots(const CaseSet& cases);
    [[nodiscard]] bool isInSlots(Key key) const;

    std::size_t m_count = 0;
    Key m_first = 0; ///< the smallest key
    std::vector<std::uint64_t> m_bits; ///< if the keys lie close enough together
    std::vector<std::uint64_t>
        m_slots; ///< else a hash table: the key plus one, 0 where free; a power of two long
    unsigned m_shift = 0;
};
