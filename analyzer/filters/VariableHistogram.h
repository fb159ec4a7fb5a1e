#pragma once

#include <cstddef>
#include <vector>

class Variable;

namespace analyzer {

/// How many cases of the whole study have a number in each of equal parts of a variable's range.
///
/// The parts split Variable::range(); a number on the edge between two counts in the upper one, the largest number in
/// the last. Missing and infinite values count nowhere. Where all numbers are equal, they are in the first part.
/// Numbers within a few rounding errors of an edge may count on either side of it.
class VariableHistogram
{
public:
    /// Passes over the column once. \p variable holds numbers; \p binCount is at least 1.
    VariableHistogram(const Variable& variable, std::size_t binCount);

    /// One for each part, in ascending order.
    [[nodiscard]] const std::vector<std::size_t>& counts() const { return m_counts; }

    [[nodiscard]] std::size_t largestCount() const { return m_largestCount; }

private:
    std::vector<std::size_t> m_counts;
    std::size_t m_largestCount = 0;
};

} // namespace analyzer
