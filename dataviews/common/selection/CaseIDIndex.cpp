#include <dataviews/common/selection/CaseIDColumn.h>
#include <dataviews/common/selection/CaseIDIndex.h>

#include <dataviews/platform/selection/CaseSet.h>

#include <vtkAbstractArray.h>
#include <vtkIdTypeArray.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <limits>

namespace {

using Key = CaseIDMembership::Key;

constexpr std::uint32_t noRow = std::numeric_limits<std::uint32_t>::max();

/// Of so many rows, one selected one is worth a look into the map; of fewer, a pass over all of them is faster.
constexpr std::size_t rowsPerLook = 16;

/// Rows found that are sorted by comparing them; more are sorted by marking them in a bitmap of all rows.
constexpr std::size_t rowsPerMark = 1024;

/// Where the IDs lie so close that a map has at most so many entries a row, it is an array.
constexpr std::size_t entriesPerRow = 4;

constexpr CaseSet::ID largestInt = std::numeric_limits<int>::max();

std::size_t wordCount(vtkIdType rowCount)
{
    return (static_cast<std::size_t>(rowCount) + 63) / 64;
}

bool goesUpByOne(const std::vector<Key>& keys)
{
    Key difference = 0;
    for (std::size_t row = 0; row < keys.size(); ++row) {
        difference |= keys[row] ^ (keys.front() + static_cast<Key>(row));
    }
    return difference == 0;
}

vtkSmartPointer<vtkIdTypeArray> newRows(vtkIdType count)
{
    auto rows = vtkSmartPointer<vtkIdTypeArray>::New();
    rows->SetNumberOfComponents(1);
    rows->SetNumberOfValues(count);
    return rows;
}

} // namespace

CaseIDIndex::State CaseIDIndex::State::of(vtkAbstractArray& column)
{
    // Others would make a copy of their values to have a pointer to give.
    const bool isPlain = column.GetArrayType() == vtkAbstractArray::AoSDataArrayTemplate;
    return {
        column.GetMTime(),
        column.GetNumberOfTuples(),
        column.GetNumberOfComponents(),
        isPlain ? column.GetVoidPointer(0) : nullptr};
}

bool CaseIDIndex::State::operator==(const State& other) const
{
    return time == other.time && rowCount == other.rowCount
        && componentCount == other.componentCount && values == other.values;
}

boost::shared_ptr<const CaseIDIndex> CaseIDIndex::of(vtkAbstractArray& column)
{
    // As many as there are charts on a screen, each of which may have a table of its own.
    constexpr std::size_t maxKnown = 12;
    static std::vector<boost::shared_ptr<const CaseIDIndex>> known; // lately used ones first
    known.erase(
        std::remove_if(
            known.begin(), known.end(), [](const auto& index) { return !index->isCurrent(); }),
        known.end());
    auto place = std::find_if(
        known.begin(), known.end(), [&column](const auto& index) { return index->isOf(column); });
    if (place == known.end()) {
        if (known.size() == maxKnown) {
            known.pop_back();
        }
        known.push_back(boost::make_shared<const CaseIDIndex>(column));
        place = known.end() - 1;
    }
    std::rotate(known.begin(), place, place + 1);
    return known.front();
}

CaseIDIndex::CaseIDIndex(vtkAbstractArray& column)
    : m_column(&column)
    , m_state(State::of(column))
{
    std::vector<Key> keys;
    CaseIDColumn(column).appendKeys(keys);
    if (!keys.empty()) {
        m_firstKey = keys.front();
        // Without negative ones, so that cases are in the order of their rows.
        m_isInOrder = m_firstKey <= largestInt
            && keys.size() - 1 <= static_cast<std::size_t>(largestInt - m_firstKey)
            && goesUpByOne(keys);
    }
}

CaseIDIndex::~CaseIDIndex() = default;

bool CaseIDIndex::isCurrent() const
{
    return m_column != nullptr && State::of(*m_column) == m_state;
}

bool CaseIDIndex::isOf(vtkAbstractArray& column) const
{
    return m_column == &column && isCurrent();
}

vtkSmartPointer<vtkIdTypeArray> CaseIDIndex::rowsOf(const CaseSet& cases) const
{
    if (cases.isEmpty() || m_state.rowCount == 0) {
        return newRows(0);
    }
    if (m_isInOrder) {
        return rowsInOrder(cases);
    }
    if (!takesPass(cases)) {
        return rowsByMap(cases);
    }
    return CaseIDColumn(*m_column).rowsOf(CaseIDMembership::of(cases));
}

vtkSmartPointer<vtkIdTypeArray> CaseIDIndex::rowsOf(
    const boost::shared_ptr<const CaseSet>& cases) const
{
    if (m_isInOrder || !takesPass(*cases)) {
        return rowsOf(*cases);
    }
    if (m_lastCases != cases) {
        m_lastRows = CaseIDColumn(*m_column).markedRows(CaseIDMembership::of(*cases));
        m_lastCases = cases;
    }
    return CaseIDColumn::toRows(m_lastRows);
}

/// Whether there are too many cases to look each one up.
bool CaseIDIndex::takesPass(const CaseSet& cases) const
{
    const auto rowCount = static_cast<std::size_t>(m_state.rowCount);
    return rowCount >= noRow || cases.size() > rowCount / rowsPerLook;
}

/// A row is the ID less the first one.
vtkSmartPointer<vtkIdTypeArray> CaseIDIndex::rowsInOrder(const CaseSet& cases) const
{
    const auto rowCount = static_cast<std::size_t>(m_state.rowCount);
    const CaseSet::ID first = m_firstKey;
    const CaseSet::ID last = first + rowCount - 1;
    if (cases.size() <= rowCount / rowsPerLook) {
        const auto rows = newRows(static_cast<vtkIdType>(cases.countBetween(first, last)));
        vtkIdType* next = rows->GetPointer(0);
        cases.anyOf([&next, first, last](CaseSet::ID id) {
            if (id >= first && id <= last) {
                *next++ = static_cast<vtkIdType>(id - first);
            }
            return id > last;
        });
        return rows;
    }
    std::vector<CaseSet::Word> words(wordCount(m_state.rowCount));
    addRowsTo(words, cases);
    return CaseIDColumn::toRows(words);
}

void CaseIDIndex::addRowsTo(std::vector<std::uint64_t>& words, const CaseSet& cases) const
{
    const auto rowCount = static_cast<std::size_t>(m_state.rowCount);
    if (rowCount == 0) {
        return;
    }
    if (!m_isInOrder) {
        const vtkSmartPointer<vtkIdTypeArray> rows = rowsOf(cases);
        const vtkIdType* row = rows->GetPointer(0);
        for (const vtkIdType* const end = row + rows->GetNumberOfValues(); row != end; ++row) {
            words[static_cast<std::size_t>(*row) / 64] |= CaseSet::Word(1) << *row % 64;
        }
        return;
    }
    cases.addTo(words, m_firstKey);
    // The last word has room for cases behind the last row.
    if (rowCount % 64 != 0) {
        words[rowCount / 64] &= ~CaseSet::Word(0) >> (64 - rowCount % 64);
    }
}

vtkSmartPointer<vtkIdTypeArray> CaseIDIndex::rowsByMap(const CaseSet& cases) const
{
    buildMap();
    std::vector<std::uint32_t> found;
    found.reserve(cases.size());
    cases.forEach([this, &found](CaseSet::ID id) {
        const Key key = static_cast<Key>(id);
        // Of a number that no column can hold, the lower half may be the key of another case.
        if (static_cast<CaseSet::ID>(static_cast<long long>(static_cast<int>(key))) == id) {
            appendRows(key, found);
        }
    });
    if (found.size() > static_cast<std::size_t>(m_state.rowCount) / rowsPerMark) {
        std::vector<CaseSet::Word> words(wordCount(m_state.rowCount));
        for (const std::uint32_t row : found) {
            words[row / 64] |= CaseSet::Word(1) << row % 64;
        }
        return CaseIDColumn::toRows(words);
    }
    std::sort(found.begin(), found.end());
    const auto rows = newRows(static_cast<vtkIdType>(found.size()));
    std::copy(found.begin(), found.end(), rows->GetPointer(0));
    return rows;
}

void CaseIDIndex::buildMap() const
{
    if (m_hasMap) {
        return;
    }
    m_hasMap = true;
    std::vector<Key> keys;
    CaseIDColumn(*m_column).appendKeys(keys);
    const auto [smallest, largest] = std::minmax_element(keys.begin(), keys.end());
    const std::size_t span = static_cast<std::size_t>(*largest - *smallest) + 1;
    if (span > entriesPerRow * keys.size()) {
        m_sorted.reserve(keys.size());
        for (std::size_t row = 0; row < keys.size(); ++row) {
            m_sorted.emplace_back(keys[row], static_cast<std::uint32_t>(row));
        }
        std::sort(m_sorted.begin(), m_sorted.end());
        return;
    }
    m_firstKey = *smallest;
    m_rowOfKey.assign(span, noRow);
    // From the last row up, so that each new one comes before those with the same ID.
    for (std::size_t row = keys.size(); row-- > 0;) {
        std::uint32_t& first = m_rowOfKey[keys[row] - m_firstKey];
        if (first != noRow) {
            if (m_nextRow.empty()) {
                m_nextRow.assign(keys.size(), noRow);
            }
            m_nextRow[row] = first;
        }
        first = static_cast<std::uint32_t>(row);
    }
}

void CaseIDIndex::appendRows(Key key, std::vector<std::uint32_t>& rows) const
{
    if (m_rowOfKey.empty()) {
        for (auto place = std::lower_bound(m_sorted.begin(), m_sorted.end(), std::pair(key, 0U));
             place != m_sorted.end() && place->first == key;
             ++place) {
            rows.push_back(place->second);
        }
        return;
    }
    const Key offset = key - m_firstKey;
    if (offset >= m_rowOfKey.size()) {
        return;
    }
    for (std::uint32_t row = m_rowOfKey[offset]; row != noRow;
         row = m_nextRow.empty() ? noRow : m_nextRow[row]) {
        rows.push_back(row);
    }
}
