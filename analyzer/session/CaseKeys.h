#pragma once

#include <dataviews/platform/data/RowBitmap.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class Project;

namespace analyzer {

/// What finds cases again in a study that has changed: a hash of the values of some variables for each of them.
struct CaseKeys
{
    /// More cases are not given keys, which would make a session too large.
    static constexpr std::size_t mostCases = 50000;

    std::vector<std::string>
        variables; ///< whose values make the keys; none if no variable tells cases apart
    RowBitmap rows; ///< of the study that was saved: the cases with keys
    std::vector<std::uint64_t> hashes; ///< of rows, in ascending order
};

/// The keys of the cases in \p rows of \p project: by an identifier or else an input whose values are all different, else
/// by all inputs, else by any variable whose values are all different. Cases whose key another case of the study has get
/// none, and nobody does if there are more than CaseKeys::mostCases.
[[nodiscard]] CaseKeys caseKeys(const Project& project, const RowBitmap& rows);

/// Where the cases of a saved study are in the present one.
class CaseMatch
{
public:
    /// The study is the same, with \p caseCount cases.
    explicit CaseMatch(std::size_t caseCount);

    /// The study has changed into \p project; cases are found by \p keys alone.
    CaseMatch(const CaseKeys& keys, const Project& project);

    /// The present row of the saved study's \p row; none if no case has its key or several have.
    [[nodiscard]] std::optional<std::size_t> row(std::size_t row) const;

    /// The present rows of \p rows; those without one are left out and added to \p lost, a bitmap of the same size.
    [[nodiscard]] RowBitmap rows(const RowBitmap& rows, RowBitmap& lost) const;

private:
    std::size_t m_caseCount; ///< of the present study
    bool m_isSame;
    RowBitmap m_known;
    std::vector<std::optional<std::size_t>> m_rows; ///< of the known ones, in ascending order
    std::vector<std::size_t> m_ranks; ///< how many known rows there are before each word of m_known
};

} // namespace analyzer
