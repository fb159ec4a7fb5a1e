#include <analyzer/views/NotDrawnCases.h>
#include <analyzer/views/withNumbers.h>

#include <dataviews/platform/data/Project.h>

#include <cmath>
#include <cstdint>

namespace analyzer {

namespace {

/// The rows for which \p isOut is true.
template <class IsOut>
RowBitmap rowsWhere(std::size_t rowCount, IsOut isOut)
{
    RowBitmap rows(rowCount);
    std::vector<std::uint64_t>& words = rows.words();
    for (std::size_t row = 0; row < rowCount; ++row) {
        words[row / 64] |= static_cast<std::uint64_t>(isOut(row)) << (row % 64);
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
        add(rowsWhere(
                m_rows.rowCount(),
                [values](std::size_t row) { return std::isnan(static_cast<double>(values[row])); }),
            "without " + locked->name());
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
