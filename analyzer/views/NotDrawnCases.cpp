#include <analyzer/views/NotDrawnCases.h>
#include <analyzer/views/withNumbers.h>

#include <dataviews/platform/data/Project.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace analyzer {

namespace {

/// The rows for which \p isOut is true; in a form that needs no look at the memory of the result for each row.
template <class IsOut>
RowBitmap rowsWhere(std::size_t rowCount, IsOut isOut)
{
    constexpr std::size_t wordBits = 64;
    RowBitmap rows(rowCount);
    std::vector<std::uint64_t>& words = rows.words();
    for (std::size_t word = 0; word < words.size(); ++word) {
        const std::size_t first = word * wordBits;
        const std::size_t count = std::min(wordBits, rowCount - first);
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < count; ++i) {
            bits |= static_cast<std::uint64_t>(isOut(first + i)) << i;
        }
        words[word] = bits;
    }
    return rows;
}

} // namespace

NotDrawnCases::NotDrawnCases()
    : m_rows(Project::project().caseCount())
{}

void NotDrawnCases::addWithout(const WeakPtr<Variable>& variable, bool infinite)
{
    const boost::shared_ptr<Variable> locked = variable.lock();
    if (!locked) {
        return;
    }
    withNumbers(&locked->column(), [&](const auto* values) {
        if (locked->missingCount() > 0) {
            add(rowsWhere(
                    m_rows.rowCount(),
                    [values](std::size_t row) {
                        return std::isnan(static_cast<double>(values[row]));
                    }),
                "without " + locked->name());
        }
        if (infinite) {
            add(rowsWhere(
                    m_rows.rowCount(),
                    [values](std::size_t row) {
                        return std::isinf(static_cast<double>(values[row]));
                    }),
                "with infinite " + locked->name());
        }
    });
}

void NotDrawnCases::addFilteredOut(const RowBitmap& rows)
{
    add(rows, "filtered");
}

void NotDrawnCases::add(const RowBitmap& rows, const std::string& reason)
{
    std::size_t count = 0;
    std::vector<std::uint64_t>& known = m_rows.words();
    for (std::size_t word = 0; word < known.size(); ++word) {
        const std::uint64_t fresh = rows.words()[word] & ~known[word];
        count += static_cast<std::size_t>(__builtin_popcountll(fresh));
        known[word] |= fresh;
    }
    if (count > 0) {
        m_reasons.push_back({count, reason});
    }
}

} // namespace analyzer
