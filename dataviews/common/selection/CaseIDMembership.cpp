#include <dataviews/common/selection/CaseIDMembership.h>

#include <algorithm>
#include <iterator>

namespace {

/// Up to this many bits a bitmap costs next to nothing, however few members there are.
constexpr std::size_t smallBitmap = std::size_t(1) << 22;

/// A larger bitmap may spend this many bits on a member, as much as the alternative, a hash table, would.
constexpr std::size_t bitsPerMember = 64;

constexpr std::size_t allKeys = std::size_t(1) << 32;

constexpr std::uint64_t hashFactor =
    0x9e3779b97f4a7c15; // 2^64 / golden ratio: Knuth's multiplicative hashing

// A signed 32-bit number, widened with its sign, is below the one or not below the other.
constexpr unsigned long long endOfPositive = 0x80000000;
constexpr unsigned long long beginOfNegative = 0xffffffff80000000;

} // namespace

/// The cases that a record table can hold, in ascending order of their keys.
class CaseIDMembership::Members
{
public:
    explicit Members(const std::set<unsigned long long>& cases)
        : m_cases(cases)
        , m_endOfPositive(cases.lower_bound(endOfPositive))
        , m_beginOfNegative(cases.lower_bound(beginOfNegative))
        , m_count(
              cases.size()
              - static_cast<std::size_t>(std::distance(m_endOfPositive, m_beginOfNegative)))
    {}

    [[nodiscard]] std::size_t count() const { return m_count; }

    /// There must be one.
    [[nodiscard]] Key first() const
    {
        return toKey(m_endOfPositive != m_cases.begin() ? m_cases.begin() : m_beginOfNegative);
    }

    /// There must be one.
    [[nodiscard]] Key last() const
    {
        return toKey(
            std::prev(m_beginOfNegative != m_cases.end() ? m_cases.end() : m_endOfPositive));
    }

    /// Calls \p function with every key.
    template <class Function>
    void forEach(Function function) const
    {
        for (auto member = m_cases.begin(); member != m_endOfPositive; ++member) {
            function(toKey(member));
        }
        for (auto member = m_beginOfNegative; member != m_cases.end(); ++member) {
            function(toKey(member));
        }
    }

private:
    using Iterator = std::set<unsigned long long>::const_iterator;

    static Key toKey(Iterator member) { return static_cast<Key>(*member); }

    const std::set<unsigned long long>& m_cases;
    Iterator m_endOfPositive;
    Iterator m_beginOfNegative;
    std::size_t m_count;
};

CaseIDMembership::CaseIDMembership(const std::set<unsigned long long>& cases)
{
    const Members members(cases);
    m_count = members.count();
    if (m_count == 0) {
        return;
    }
    m_first = members.first();
    const std::size_t span = static_cast<std::size_t>(members.last() - m_first) + 1;
    if (span <= std::max(smallBitmap, bitsPerMember * m_count)) {
        // With a bit to spare, unless every key there is has one.
        m_bits.resize(std::min(span + 64, allKeys) / 64);
        buildBits(members);
    } else {
        buildSlots(members);
    }
}

void CaseIDMembership::buildBits(const Members& members)
{
    members.forEach([this](Key key) {
        const Key offset = key - m_first;
        m_bits[offset / 64] |= std::uint64_t(1) << (offset % 64);
    });
}

void CaseIDMembership::buildSlots(const Members& members)
{
    unsigned sizeBits = 4;
    while ((std::size_t(1) << sizeBits) < 2 * m_count) {
        ++sizeBits;
    }
    m_shift = 64 - sizeBits;
    m_slots.resize(std::size_t(1) << sizeBits);
    members.forEach([this](Key key) {
        std::size_t slot = (key * hashFactor) >> m_shift;
        while (m_slots[slot] != 0) {
            slot = (slot + 1) & (m_slots.size() - 1);
        }
        m_slots[slot] = std::uint64_t(key) + 1;
    });
}

bool CaseIDMembership::isInSlots(Key key) const
{
    std::size_t slot = (key * hashFactor) >> m_shift;
    while (m_slots[slot] != 0) {
        if (m_slots[slot] == std::uint64_t(key) + 1) {
            return true;
        }
        slot = (slot + 1) & (m_slots.size() - 1);
    }
    return false;
}
