#include <dataviews/common/selection/CaseIDMembership.h>

#include <dataviews/platform/selection/CaseSet.h>

#include <algorithm>
#include <limits>

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

bool isRepresentable(CaseSet::ID id)
{
    return id < endOfPositive || id >= beginOfNegative;
}

struct Extremes
{
    CaseSet::ID smallest;
    CaseSet::ID largest;
};

/// Of the representable cases, of which there is one.
Extremes extremesOf(const CaseSet& cases, bool hasPositive, bool hasNegative)
{
    Extremes result{cases.smallest(), cases.largest()};
    if (!hasPositive || !hasNegative) {
        // What lies between the two may be at either end.
        if (!isRepresentable(result.smallest)) {
            cases.anyOf([&result](CaseSet::ID id) {
                result.smallest = id;
                return isRepresentable(id);
            });
        }
        if (!isRepresentable(result.largest)) {
            cases.anyOf([&result](CaseSet::ID id) {
                if (isRepresentable(id)) {
                    result.largest = id;
                }
                return !isRepresentable(id);
            });
        }
    }
    return result;
}

} // namespace

CaseIDMembership::CaseIDMembership(const std::set<unsigned long long>& cases)
    : CaseIDMembership(Form::Compact, CaseSet(cases))
{}

CaseIDMembership CaseIDMembership::of(const CaseSet& cases)
{
    return {Form::Compact, cases};
}

CaseIDMembership::CaseIDMembership(Form /*form*/, const CaseSet& cases)
{
    const std::size_t positive = cases.countBetween(0, endOfPositive - 1);
    const std::size_t negative =
        cases.countBetween(beginOfNegative, std::numeric_limits<CaseSet::ID>::max());
    m_count = positive + negative;
    if (m_count == 0) {
        return;
    }
    // In the order of keys, the negative IDs follow right behind the positive ones.
    const Extremes extremes = extremesOf(cases, positive > 0, negative > 0);
    m_first = static_cast<Key>(extremes.smallest);
    const std::size_t span =
        static_cast<std::size_t>(static_cast<Key>(extremes.largest) - m_first) + 1;
    if (span > std::max(smallBitmap, bitsPerMember * m_count)) {
        buildSlots(cases);
        return;
    }
    // With a bit to spare, unless every key there is has one.
    m_bits.resize(std::min(span + 64, allKeys) / 64);
    if (negative == 0 && cases.size() == positive) {
        cases.addTo(m_bits, m_first);
    } else {
        cases.forEach([this](CaseSet::ID id) {
            if (isRepresentable(id)) {
                const Key offset = static_cast<Key>(id) - m_first;
                m_bits[offset / 64] |= std::uint64_t(1) << (offset % 64);
            }
        });
    }
}

void CaseIDMembership::buildSlots(const CaseSet& cases)
{
    unsigned sizeBits = 4;
    while ((std::size_t(1) << sizeBits) < 2 * m_count) {
        ++sizeBits;
    }
    m_shift = 64 - sizeBits;
    m_slots.resize(std::size_t(1) << sizeBits);
    cases.forEach([this](CaseSet::ID id) {
        if (!isRepresentable(id)) {
            return;
        }
        const Key key = static_cast<Key>(id);
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
