#pragma once

#include <analyzer/views/LeftOutCases.h>

#include <dataviews/platform/data/RowBitmap.h>
#include <dataviews/platform/data/WeakPtr.h>

#include <vector>

class Variable;

namespace analyzer {

/// The cases of the open study that a chart cannot draw, and why not.
///
/// What is missing counts before what is filtered out: it stays missing without the filter.
class NotDrawnCases
{
public:
    /// None of the cases.
    NotDrawnCases();

    /// Adds the cases without a value of \p variable, which is one of numbers, and, with \p infinite, those where it is
    /// infinite. A handle of nothing adds none.
    void addWithout(const WeakPtr<Variable>& variable, bool infinite);

    /// Adds \p rows of the study.
    void addFilteredOut(const RowBitmap& rows);

    /// In the order of adding; none with a count of 0.
    [[nodiscard]] const std::vector<LeftOutCases>& reasons() const { return m_reasons; }

    /// All of them.
    [[nodiscard]] const RowBitmap& rows() const { return m_rows; }

private:
    void add(const RowBitmap& rows, const std::string& reason);

    std::vector<LeftOutCases> m_reasons;
    RowBitmap m_rows;
};

} // namespace analyzer
