#pragma once

#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/data/WeakPtr.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

/// The values of a variable as small numbers, one a case: what cases are sorted by instead of values.
///
/// Values that are equal as Variants have the same code; a missing value has one of its own. Codes are given in the
/// order in which the values turn up. A byte a case as long as that is enough, else four.
class VariableCodes
{
public:
    using Code = std::uint32_t;

    /// Reads the column of \p variable in one pass. Memory of an earlier variable is used again.
    void assign(const boost::shared_ptr<Variable>& variable);

    [[nodiscard]] const WeakPtr<Variable>& variable() const { return m_variable; }

    /// The number of different values.
    [[nodiscard]] std::size_t valueCount() const { return m_firstRows.size(); }

    /// The codes in ascending order of their values.
    [[nodiscard]] const std::vector<Code>& order() const { return m_order; }

    /// The code of the case in \p row of the project.
    [[nodiscard]] Code code(std::size_t row) const
    {
        return m_isWide ? m_wide[row] : Code(m_narrow[row]);
    }

    /// Calls \p function with the codes of all cases, a pointer to std::uint8_t or to std::uint32_t.
    template <class Function>
    void withCodes(Function function) const
    {
        if (m_isWide) {
            function(m_wide.data());
        } else {
            function(m_narrow.data());
        }
    }

    /// What Variable::value() gives for the first case with \p code; empty once the study is closed.
    [[nodiscard]] Variant value(Code code) const;

    /// The code of the value that equals \p value, if a case has it.
    [[nodiscard]] std::optional<Code> find(const Variant& value) const;

private:
    template <class Values>
    void number(std::size_t rowCount, Values& values);

    WeakPtr<Variable> m_variable;
    std::vector<std::uint8_t> m_narrow;
    std::vector<Code> m_wide;
    bool m_isWide = false;
    std::vector<std::uint32_t> m_firstRows; ///< by code
    std::vector<Code> m_order;
};
