#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class Variable;
class vtkTable;

namespace analyzer {

/// The different values of a variable as categories, and the category of each case of the study.
///
/// Numbered from 0 in the ascending order of the values; cases without a value are in a category of their own behind
/// the others.
class CaseCategories
{
public:
    /// As many as can be told apart by their colors.
    static constexpr std::size_t largestCount = 24;

    /// Whether \p variable has no more different values than that.
    [[nodiscard]] static bool canDivideBy(const Variable& variable);

    /// \throws ExceptionBase with a sentence for people if canDivideBy() is false.
    static void checkCanDivideBy(const Variable& variable);

    /// \throws ExceptionBase as checkCanDivideBy() does.
    explicit CaseCategories(const Variable& variable);

    /// The values as people read them, UTF-8; the category of missing values has no name.
    [[nodiscard]] const std::vector<std::string>& names() const { return m_names; }

    /// The category of cases without a value.
    [[nodiscard]] std::size_t missing() const { return m_names.size(); }

    /// Whether some case has no value.
    [[nodiscard]] bool hasMissing() const { return m_hasMissing; }

    /// The category of each row of \p cases: a table whose column 0 holds IDs of cases of the open study, as int and in
    /// the order of the study. The variable is one of that study.
    [[nodiscard]] std::vector<std::uint8_t> ofCases(vtkTable& cases) const;

private:
    std::vector<std::string> m_names;
    std::vector<std::uint8_t> m_ofRow; ///< of the study
    bool m_hasMissing = false;
};

} // namespace analyzer
