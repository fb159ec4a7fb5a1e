#include <dataviews/common/selection/CaseIDColumn.h>

#include <vtkAbstractArray.h>
#include <vtkIdTypeArray.h>
#include <vtkVariant.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace {

using Key = CaseIDMembership::Key;

/// The number that vtkVariant::ToInt() makes of \p value.
template <class Value>
int toInt(Value value)
{
    if constexpr (std::is_floating_point_v<Value>) {
        // What the processor gives for all that does not fit, NaN included; a bare cast would be undefined.
        constexpr double tooSmall = -2147483649.0;
        constexpr double tooLarge = 2147483648.0;
        const auto number = static_cast<double>(value);
        return number > tooSmall && number < tooLarge ? static_cast<int>(number)
                                                      : std::numeric_limits<int>::min();
    } else {
        return static_cast<int>(value);
    }
}

template <class Value>
class TypedReader
{
public:
    explicit TypedReader(vtkAbstractArray& column)
        : m_values(static_cast<const Value*>(column.GetVoidPointer(0)))
    {}

    Key operator()(vtkIdType row) const { return static_cast<Key>(toInt(m_values[row])); }

private:
    const Value* m_values;
};

class VariantReader
{
public:
    explicit VariantReader(vtkAbstractArray& column)
        : m_column(column)
    {}

    Key operator()(vtkIdType row) const
    {
        return static_cast<Key>(m_column.GetVariantValue(row).ToInt());
    }

private:
    vtkAbstractArray& m_column;
};

constexpr vtkIdType rowsPerWord = 64;
constexpr unsigned bitsPerByte = 8;

/// The places of the set bits of a byte.
struct SetBits
{
    std::array<std::uint8_t, bitsPerByte> places{};
    std::uint8_t count = 0;
};

constexpr std::array<SetBits, 256> setBits = [] {
    std::array<SetBits, 256> bytes{};
    for (std::size_t byte = 0; byte < bytes.size(); ++byte) {
        for (std::uint8_t bit = 0; bit < bitsPerByte; ++bit) {
            if ((byte >> bit & 1U) != 0) {
                bytes[byte].places[bytes[byte].count++] = bit;
            }
        }
    }
    return bytes;
}();

/// One bit for each of the \p count rows from \p first on that \p matches.
template <class Predicate>
std::uint64_t matchingRows(vtkIdType first, vtkIdType count, Predicate matches)
{
    std::uint64_t bits = 0;
    for (vtkIdType bit = 0; bit < count; ++bit) {
        bits |= std::uint64_t(matches(first + bit)) << bit;
    }
    return bits;
}

/// Sets a bit for every row that \p matches, 64 rows a word.
template <class Predicate>
void markRows(std::vector<std::uint64_t>& words, vtkIdType rowCount, Predicate matches)
{
    vtkIdType first = 0;
    for (std::uint64_t& word : words) {
        word = matchingRows(first, std::min(rowsPerWord, rowCount - first), matches);
        first += rowsPerWord;
    }
}

/// Whether the keys of the 64 rows from \p first on go up by one from row to row.
template <class Reader>
bool isDense(const Reader& reader, vtkIdType first)
{
    const Key start = reader(first);
    if (reader(first + 1) != start + 1
        || reader(first + rowsPerWord - 1) != start + static_cast<Key>(rowsPerWord - 1)) {
        return false; // nearly all that are not
    }
    // All of them without an early end, so that the processor compares several at once.
    Key difference = 0;
    for (Key row = 0; row < static_cast<Key>(rowsPerWord); ++row) {
        difference |= reader(first + static_cast<vtkIdType>(row)) ^ (start + row);
    }
    return difference == 0;
}

/// markRows() for a membership that is a bitmap.
///
/// Where the keys go up by one, as in the table of a whole study, the words are cut out of the bitmap.
template <class Reader>
void markRowsInBitmap(
    std::vector<std::uint64_t>& words,
    vtkIdType rowCount,
    const Reader& reader,
    const CaseIDMembership& cases)
{
    const Key firstKey = cases.firstKey();
    const Key lastBit = static_cast<Key>(cases.bits().size() * 64 - 1);
    const std::uint64_t* bits = cases.bits().data();
    const auto matches = [=, &reader](vtkIdType row) {
        // Keys outside read the last bit, of no member: cheaper than a branch that cannot be foretold.
        const Key bit = std::min(reader(row) - firstKey, lastBit);
        return (bits[bit / 64] >> (bit % 64)) & 1U;
    };
    vtkIdType first = 0;
    for (std::uint64_t& word : words) {
        if (rowCount - first < rowsPerWord) {
            word = matchingRows(first, rowCount - first, matches);
        } else if (isDense(reader, first)) {
            word = cases.membersFrom(reader(first));
        } else {
            word = matchingRows(first, rowsPerWord, matches);
        }
        first += rowsPerWord;
    }
}

/// markRows() for one wanted key: most blocks of rows do not hold it, which the processor finds out for several rows
/// at once.
template <class Reader>
void markRowsWithKey(
    std::vector<std::uint64_t>& words, vtkIdType rowCount, const Reader& reader, Key wanted)
{
    constexpr vtkIdType blockRows = 16 * rowsPerWord;
    vtkIdType first = 0;
    for (; first + blockRows <= rowCount; first += blockRows) {
        Key found = 0;
        for (vtkIdType row = first; row < first + blockRows; ++row) {
            found |= static_cast<Key>(reader(row) == wanted);
        }
        if (found == 0) {
            continue;
        }
        for (vtkIdType row = first; row < first + blockRows; ++row) {
            words[static_cast<std::size_t>(row / rowsPerWord)] |=
                std::uint64_t(reader(row) == wanted) << (row % rowsPerWord);
        }
    }
    for (vtkIdType row = first; row < rowCount; ++row) {
        words[static_cast<std::size_t>(row / rowsPerWord)] |= std::uint64_t(reader(row) == wanted)
            << (row % rowsPerWord);
    }
}

/// Brings \p keys, at least one, into ascending order; of equal ones at least one stays.
void sortKeys(std::vector<Key>& keys)
{
    const auto [smallest, largest] = std::minmax_element(keys.begin(), keys.end());
    const Key first = *smallest;
    const std::size_t wordCount = static_cast<std::size_t>(*largest - first) / 64 + 1;
    if (wordCount > keys.size()) {
        std::sort(keys.begin(), keys.end());
        return;
    }
    // Where they lie close enough together, as the IDs of a study do, a bit for each brings order in linear time.
    std::vector<std::uint64_t> words(wordCount);
    for (const Key key : keys) {
        const Key offset = key - first;
        words[offset / 64] |= std::uint64_t(1) << (offset % 64);
    }
    auto next = keys.begin();
    Key wordFirst = first;
    for (const std::uint64_t word : words) {
        for (std::uint64_t bits = word; bits != 0; bits &= bits - 1) {
            *next++ = wordFirst + static_cast<Key>(__builtin_ctzll(bits));
        }
        wordFirst += 64;
    }
    keys.erase(next, keys.end());
}

} // namespace

CaseIDColumn::CaseIDColumn(vtkAbstractArray& column)
    : m_column(column)
{}

template <class Function>
void CaseIDColumn::withReader(Function function) const
{
    // The values of an array with several components do not stand one a row.
    const bool isPlain = m_column.GetArrayType() == vtkAbstractArray::AoSDataArrayTemplate
        && m_column.GetNumberOfComponents() == 1;
    switch (isPlain ? m_column.GetDataType() : VTK_VARIANT) {
    case VTK_CHAR:
        return function(TypedReader<char>(m_column));
    case VTK_SIGNED_CHAR:
        return function(TypedReader<signed char>(m_column));
    case VTK_UNSIGNED_CHAR:
        return function(TypedReader<unsigned char>(m_column));
    case VTK_SHORT:
        return function(TypedReader<short>(m_column));
    case VTK_UNSIGNED_SHORT:
        return function(TypedReader<unsigned short>(m_column));
    case VTK_INT:
        return function(TypedReader<int>(m_column));
    case VTK_UNSIGNED_INT:
        return function(TypedReader<unsigned int>(m_column));
    case VTK_LONG:
        return function(TypedReader<long>(m_column));
    case VTK_UNSIGNED_LONG:
        return function(TypedReader<unsigned long>(m_column));
    case VTK_LONG_LONG:
        return function(TypedReader<long long>(m_column));
    case VTK_UNSIGNED_LONG_LONG:
        return function(TypedReader<unsigned long long>(m_column));
    case VTK_ID_TYPE:
        return function(TypedReader<vtkIdType>(m_column));
    case VTK_FLOAT:
        return function(TypedReader<float>(m_column));
    case VTK_DOUBLE:
        return function(TypedReader<double>(m_column));
    default:
        return function(VariantReader(m_column));
    }
}

unsigned long long CaseIDColumn::caseID(vtkIdType row) const
{
    return static_cast<unsigned long long>(
        static_cast<long long>(m_column.GetVariantValue(row).ToInt()));
}

void CaseIDColumn::appendKeys(std::vector<Key>& keys) const
{
    const vtkIdType rowCount = m_column.GetNumberOfTuples();
    const std::size_t before = keys.size();
    keys.resize(before + static_cast<std::size_t>(rowCount));
    Key* next = keys.data() + before;
    withReader([rowCount, next](const auto& reader) {
        for (vtkIdType row = 0; row < rowCount; ++row) {
            next[row] = reader(row);
        }
    });
}

void CaseIDColumn::appendKeys(vtkIdTypeArray& rows, std::vector<Key>& keys) const
{
    const vtkIdType count = rows.GetNumberOfTuples();
    const std::size_t before = keys.size();
    keys.resize(before + static_cast<std::size_t>(count));
    Key* next = keys.data() + before;
    const vtkIdType* row = rows.GetPointer(0);
    withReader([count, next, row](const auto& reader) {
        for (vtkIdType i = 0; i < count; ++i) {
            next[i] = reader(row[i]);
        }
    });
}

vtkSmartPointer<vtkIdTypeArray> CaseIDColumn::rowsOf(const CaseIDMembership& cases) const
{
    return toRows(markedRows(cases));
}

std::vector<std::uint64_t> CaseIDColumn::markedRows(const CaseIDMembership& cases) const
{
    const vtkIdType rowCount = m_column.GetNumberOfTuples();
    std::vector<std::uint64_t> words;
    if (!cases.isEmpty()) {
        words.resize(static_cast<std::size_t>((rowCount + rowsPerWord - 1) / rowsPerWord));
        withReader([&](const auto& reader) {
            if (cases.isSingle()) {
                markRowsWithKey(words, rowCount, reader, cases.singleKey());
            } else if (cases.isBitmap()) {
                markRowsInBitmap(words, rowCount, reader, cases);
            } else {
                markRows(words, rowCount, [&cases, &reader](vtkIdType row) {
                    return cases.contains(reader(row));
                });
            }
        });
    }
    return words;
}

std::set<unsigned long long> CaseIDColumn::toCaseIDs(std::vector<Key> keys)
{
    if (!std::is_sorted(keys.begin(), keys.end())) {
        sortKeys(keys);
    }
    std::set<unsigned long long> ids;
    for (const Key key : keys) {
        // At the end, where the place is known: the nodes come to lie in memory in the order of walking.
        ids.emplace_hint(
            ids.end(),
            static_cast<unsigned long long>(static_cast<long long>(static_cast<int>(key))));
    }
    return ids;
}

CaseSet CaseIDColumn::toCases(std::vector<Key> keys)
{
    if (keys.empty()) {
        return {};
    }
    const auto [smallest, largest] = std::minmax_element(keys.begin(), keys.end());
    const Key first = *smallest;
    const std::size_t wordCount = static_cast<std::size_t>(*largest - first) / 64 + 1;
    // A negative ID is far from where its key is.
    if (static_cast<int>(*largest) >= 0 && wordCount <= keys.size()) {
        std::vector<CaseSet::Word> words(wordCount);
        for (const Key key : keys) {
            const Key offset = key - first;
            words[offset / 64] |= CaseSet::Word(1) << (offset % 64);
        }
        return CaseSet::ofBits(first, words);
    }
    std::sort(keys.begin(), keys.end());
    std::vector<CaseSet::ID> ids;
    ids.reserve(keys.size());
    for (const Key key : keys) {
        ids.push_back(static_cast<CaseSet::ID>(static_cast<long long>(static_cast<int>(key))));
    }
    return CaseSet::ofSorted(ids);
}

vtkSmartPointer<vtkIdTypeArray> CaseIDColumn::toRows(const std::vector<std::uint64_t>& words)
{
    vtkIdType count = 0;
    for (const std::uint64_t word : words) {
        count += __builtin_popcountll(word);
    }
    vtkSmartPointer<vtkIdTypeArray> rows = vtkSmartPointer<vtkIdTypeArray>::New();
    rows->SetNumberOfComponents(1);
    rows->SetNumberOfValues(count);
    vtkIdType* next = rows->GetPointer(0);
    const vtkIdType* const end = next + count;
    vtkIdType first = 0;
    for (const std::uint64_t word : words) {
        vtkIdType row = first;
        for (std::uint64_t bits = word; bits != 0; bits >>= bitsPerByte) {
            const SetBits& byte = setBits[bits & 0xFFU];
            // All eight while there is room: those behind the last bit are written over by the next ones.
            const auto written =
                static_cast<std::size_t>(std::min<vtkIdType>(end - next, bitsPerByte));
            if (written == bitsPerByte) {
                for (std::size_t i = 0; i < bitsPerByte; ++i) {
                    next[i] = row + byte.places[i];
                }
            } else {
                for (std::size_t i = 0; i < written; ++i) {
                    next[i] = row + byte.places[i];
                }
            }
            next += byte.count;
            row += bitsPerByte;
        }
        first += rowsPerWord;
    }
    return rows;
}
