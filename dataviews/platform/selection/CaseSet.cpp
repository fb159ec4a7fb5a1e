#include <dataviews/platform/selection/CaseSet.h>

#include <algorithm>
#include <iterator>
#include <type_traits>

namespace {

using ID = CaseSet::ID;
using Word = CaseSet::Word;

static_assert(
    sizeof(ID) == sizeof(Word) && std::is_unsigned_v<ID>, "ranges and words share a vector");

constexpr ID wordBits = 64;
constexpr Word allBits = ~Word(0);

/// Up to this many words a bitmap costs next to nothing, however few members there are.
constexpr ID smallBitmap = 1024;

/// The number of words from the bit of \p first to that of \p last. No overflow: also the words of all IDs there can
/// be are far fewer than the largest number.
ID wordsBetween(ID first, ID last)
{
    return (last - first) / wordBits + 1;
}

/// Whether a bitmap of \p wordCount words is no more work than \p size numbers.
bool isCheap(ID wordCount, std::size_t size)
{
    return wordCount <= 2 * static_cast<ID>(size) + smallBitmap;
}

std::size_t bitCount(const std::vector<Word>& words)
{
    std::size_t count = 0;
    for (const Word word : words) {
        count += static_cast<std::size_t>(__builtin_popcountll(word));
    }
    return count;
}

/// The number of runs of set bits.
std::size_t runCount(const std::vector<Word>& words)
{
    std::size_t count = 0;
    Word before = 0;
    for (const Word word : words) {
        count += static_cast<std::size_t>(__builtin_popcountll(word & ~(word << 1U | before)));
        before = word >> (wordBits - 1);
    }
    return count;
}

/// The first and the last bit of each run of set bits.
std::vector<Word> runsOf(const std::vector<Word>& words, std::size_t count)
{
    std::vector<Word> runs;
    runs.reserve(2 * count);
    Word before = 0;
    for (std::size_t place = 0; place < words.size(); ++place) {
        const Word word = words[place];
        const Word next = place + 1 < words.size() ? words[place + 1] & 1U : 0;
        const Word begins = word & ~(word << 1U | before);
        const Word ends = word & ~(word >> 1U | next << (wordBits - 1));
        before = word >> (wordBits - 1);
        // Begins and ends take turns, so that they come into the right order by themselves.
        for (Word bits = begins | ends; bits != 0; bits &= bits - 1) {
            const auto bit = static_cast<unsigned>(__builtin_ctzll(bits));
            const ID number = place * wordBits + bit;
            const Word mask = Word(1) << bit;
            if ((begins & mask) != 0) {
                runs.push_back(number);
            }
            if ((ends & mask) != 0) {
                runs.push_back(number);
            }
        }
    }
    return runs;
}

void setBits(std::vector<Word>& words, ID first, ID last)
{
    const auto firstWord = static_cast<std::size_t>(first / wordBits);
    const auto lastWord = static_cast<std::size_t>(last / wordBits);
    const Word fromFirst = allBits << (first % wordBits);
    const Word toLast = allBits >> (wordBits - 1 - last % wordBits);
    if (firstWord == lastWord) {
        words[firstWord] |= fromFirst & toLast;
        return;
    }
    words[firstWord] |= fromFirst;
    std::fill(
        words.begin() + static_cast<std::ptrdiff_t>(firstWord + 1),
        words.begin() + static_cast<std::ptrdiff_t>(lastWord),
        allBits);
    words[lastWord] |= toLast;
}

/// Of \p words, bits \p shift and up as the bits from 0.
std::vector<Word> withoutFirst(const std::vector<Word>& words, std::size_t shift)
{
    const std::size_t wholeWords = shift / wordBits;
    const unsigned rest = shift % wordBits;
    std::vector<Word> result(words.begin() + static_cast<std::ptrdiff_t>(wholeWords), words.end());
    if (rest != 0) {
        for (std::size_t place = 0; place < result.size(); ++place) {
            const Word next = place + 1 < result.size() ? result[place + 1] : 0;
            result[place] = result[place] >> rest | next << (wordBits - rest);
        }
    }
    return result;
}

} // namespace

CaseSet::CaseSet(const std::set<ID>& cases)
{
    if (cases.empty()) {
        return;
    }
    const ID first = *cases.begin();
    const ID wordCount = wordsBetween(first, *cases.rbegin());
    if (isCheap(wordCount, cases.size())) {
        std::vector<Word> words(static_cast<std::size_t>(wordCount));
        for (const ID id : cases) {
            const ID place = id - first;
            words[static_cast<std::size_t>(place / wordBits)] |= Word(1) << place % wordBits;
        }
        takeWords(first, std::move(words));
        return;
    }
    *this = ofSorted({cases.begin(), cases.end()});
}

CaseSet CaseSet::ofBits(ID first, const std::vector<Word>& words)
{
    CaseSet result;
    const auto isUsed = [](Word word) { return word != 0; };
    const auto begin = std::find_if(words.begin(), words.end(), isUsed);
    if (begin == words.end()) {
        return result;
    }
    const auto end = std::find_if(words.rbegin(), words.rend(), isUsed).base();
    const std::vector<Word> used(begin, end);
    const auto shift = static_cast<std::size_t>(__builtin_ctzll(used.front()));
    std::vector<Word> shifted = withoutFirst(used, shift);
    if (shifted.back() == 0) {
        shifted.pop_back();
    }
    result.takeWords(
        first + static_cast<ID>(begin - words.begin()) * wordBits + shift, std::move(shifted));
    return result;
}

CaseSet CaseSet::ofSorted(const std::vector<ID>& ids)
{
    CaseSet result;
    if (ids.empty()) {
        return result;
    }
    const ID wordCount = wordsBetween(ids.front(), ids.back());
    if (isCheap(wordCount, ids.size())) {
        std::vector<Word> words(static_cast<std::size_t>(wordCount));
        for (const ID id : ids) {
            const ID place = id - ids.front();
            words[static_cast<std::size_t>(place / wordBits)] |= Word(1) << place % wordBits;
        }
        result.takeWords(ids.front(), std::move(words));
        return result;
    }
    std::vector<Word> ranges;
    for (const ID id : ids) {
        if (ranges.empty() || id - ranges.back() > 1) {
            ranges.push_back(id);
            ranges.push_back(id);
        } else {
            ranges.back() = id;
        }
    }
    result.takeRanges(std::move(ranges));
    return result;
}

/// The first bit and one of the last word are set.
void CaseSet::takeWords(ID first, std::vector<Word>&& words)
{
    m_first = first;
    m_size = bitCount(words);
    const std::size_t runs = runCount(words);
    m_isBitmap = 2 * runs > words.size();
    if (m_isBitmap) {
        m_numbers = std::move(words);
        return;
    }
    m_numbers = runsOf(words, runs);
    for (Word& number : m_numbers) {
        number += first;
    }
}

/// There is one at least, and they are too far apart for a bitmap.
void CaseSet::takeRanges(std::vector<Word>&& ranges)
{
    m_first = ranges.front();
    m_isBitmap = false;
    m_numbers = std::move(ranges);
    m_numbers.shrink_to_fit();
    for (std::size_t range = 0; range < m_numbers.size(); range += 2) {
        m_size += static_cast<std::size_t>(m_numbers[range + 1] - m_numbers[range]) + 1;
    }
}

template <class WordOperation, class Merge>
CaseSet CaseSet::combined(
    const CaseSet& left, const CaseSet& right, WordOperation operation, Merge merge)
{
    if (left.isEmpty() || right.isEmpty()) {
        return left.isEmpty() ? right : left;
    }
    const ID first = std::min(left.m_first, right.m_first);
    const ID wordCount = wordsBetween(first, std::max(left.largest(), right.largest()));
    if (isCheap(wordCount, left.m_size + right.m_size)) {
        std::vector<Word> words(static_cast<std::size_t>(wordCount));
        std::vector<Word> others(static_cast<std::size_t>(wordCount));
        left.addTo(words, first);
        right.addTo(others, first);
        std::transform(words.begin(), words.end(), others.begin(), words.begin(), operation);
        return ofBits(first, words);
    }
    const auto idsOf = [](const CaseSet& cases) {
        std::vector<ID> ids;
        ids.reserve(cases.m_size);
        cases.forEach([&ids](ID id) { ids.push_back(id); });
        return ids;
    };
    const std::vector<ID> leftIDs = idsOf(left);
    const std::vector<ID> rightIDs = idsOf(right);
    std::vector<ID> result;
    merge(leftIDs, rightIDs, std::back_inserter(result));
    return ofSorted(result);
}

CaseSet CaseSet::united(const CaseSet& left, const CaseSet& right)
{
    return combined(
        left,
        right,
        [](Word a, Word b) { return a | b; },
        [](const auto& a, const auto& b, auto to) {
            std::set_union(a.begin(), a.end(), b.begin(), b.end(), to);
        });
}

CaseSet CaseSet::symmetricDifference(const CaseSet& left, const CaseSet& right)
{
    return combined(
        left,
        right,
        [](Word a, Word b) { return a ^ b; },
        [](const auto& a, const auto& b, auto to) {
            std::set_symmetric_difference(a.begin(), a.end(), b.begin(), b.end(), to);
        });
}

bool CaseSet::includes(const CaseSet& part) const
{
    if (part.m_size > m_size) {
        return false;
    }
    if (part.m_isBitmap) {
        std::vector<Word> words(part.m_numbers.size());
        addTo(words, part.m_first);
        return std::equal(
            words.begin(), words.end(), part.m_numbers.begin(), [](Word all, Word wanted) {
                return (wanted & ~all) == 0;
            });
    }
    return !part.anyOf([this](ID id) { return !contains(id); });
}

std::set<ID> CaseSet::toSet() const
{
    std::set<ID> cases;
    // At the end, where the place is known: the nodes come to lie in memory in the order of walking.
    forEach([&cases](ID id) { cases.insert(cases.end(), id); });
    return cases;
}

ID CaseSet::smallest() const
{
    return m_first;
}

ID CaseSet::largest() const
{
    if (!m_isBitmap) {
        return m_numbers.back();
    }
    return m_first + static_cast<ID>(m_numbers.size() - 1) * wordBits
        + (wordBits - 1 - static_cast<unsigned>(__builtin_clzll(m_numbers.back())));
}

bool CaseSet::contains(ID id) const
{
    if (m_size == 0 || id < m_first) {
        return false;
    }
    if (m_isBitmap) {
        const ID place = id - m_first;
        return place / wordBits < m_numbers.size()
            && (m_numbers[static_cast<std::size_t>(place / wordBits)] >> place % wordBits & 1U)
            != 0;
    }
    // Begins and ends of ranges take turns: one that contains the ID ends at or behind it.
    const auto notBelow = std::lower_bound(m_numbers.begin(), m_numbers.end(), id);
    return notBelow != m_numbers.end()
        && (*notBelow == id || (notBelow - m_numbers.begin()) % 2 != 0);
}

void CaseSet::addTo(std::vector<Word>& words, ID first) const
{
    if (m_size == 0 || words.empty()) {
        return;
    }
    const ID lastBit = static_cast<ID>(words.size()) * wordBits - 1;
    if (!m_isBitmap) {
        const auto from = std::lower_bound(m_numbers.begin(), m_numbers.end(), first);
        auto range =
            static_cast<std::size_t>(from - m_numbers.begin()) / 2 * 2; // may have begun before
        for (; range < m_numbers.size(); range += 2) {
            const ID begin = std::max<ID>(m_numbers[range], first) - first;
            if (begin > lastBit) {
                break;
            }
            setBits(words, begin, std::min<ID>(m_numbers[range + 1] - first, lastBit));
        }
        return;
    }
    // Word by word of the target, each out of two neighbours.
    const auto wordAt = [this](ID place) {
        return place < m_numbers.size() ? m_numbers[static_cast<std::size_t>(place)] : Word(0);
    };
    if (m_first >= first) {
        const ID offset = m_first - first;
        const ID wholeWords = offset / wordBits;
        const unsigned rest = offset % wordBits;
        for (ID place = 0; place <= m_numbers.size(); ++place) {
            if (wholeWords >= words.size() || place >= words.size() - wholeWords) {
                break;
            }
            const Word low = wordAt(place);
            const Word high = rest == 0 || place == 0 ? 0 : wordAt(place - 1) >> (wordBits - rest);
            words[static_cast<std::size_t>(wholeWords + place)] |= low << rest | high;
        }
        return;
    }
    const ID offset = first - m_first;
    const ID wholeWords = offset / wordBits;
    const unsigned rest = offset % wordBits;
    for (std::size_t place = 0; place < words.size() && wholeWords < m_numbers.size()
         && place < m_numbers.size() - wholeWords;
         ++place) {
        const ID from = wholeWords + place;
        words[place] |=
            wordAt(from) >> rest | (rest == 0 ? 0 : wordAt(from + 1) << (wordBits - rest));
    }
}

std::size_t CaseSet::countBetween(ID first, ID last) const
{
    if (m_size == 0 || first > largest() || last < m_first || last < first) {
        return 0;
    }
    if (first <= m_first && last >= largest()) {
        return m_size;
    }
    std::size_t count = 0;
    if (!m_isBitmap) {
        for (std::size_t range = 0; range < m_numbers.size(); range += 2) {
            const ID begin = std::max<ID>(m_numbers[range], first);
            const ID end = std::min<ID>(m_numbers[range + 1], last);
            count += begin <= end ? static_cast<std::size_t>(end - begin) + 1 : 0;
        }
        return count;
    }
    const ID begin = std::max(first, m_first) - m_first;
    const ID end = std::min(last, largest()) - m_first;
    for (ID place = begin / wordBits; place <= end / wordBits; ++place) {
        Word word = m_numbers[static_cast<std::size_t>(place)];
        if (place == begin / wordBits) {
            word &= allBits << begin % wordBits;
        }
        if (place == end / wordBits) {
            word &= allBits >> (wordBits - 1 - end % wordBits);
        }
        count += static_cast<std::size_t>(__builtin_popcountll(word));
    }
    return count;
}

std::size_t CaseSet::byteCount() const
{
    return sizeof(*this) + m_numbers.capacity() * sizeof(m_numbers.front());
}

bool CaseSet::operator==(const CaseSet& other) const
{
    return this == &other
        || (m_size == other.m_size && m_first == other.m_first && m_isBitmap == other.m_isBitmap
            && m_numbers == other.m_numbers);
}
