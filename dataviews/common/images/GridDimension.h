#pragma once

#include <dataviews/common/images/TableCases.h>
#include <dataviews/common/images/VariableCodes.h>

#include <dataviews/platform/data/Variant.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// The rows, or the columns, of a grid of cases: one for each value of a variable, one for each of some tags, or a
/// single one for everything.
class GridDimension
{
public:
    void setTags(std::vector<std::string> tags);
    void setEverything();

    /// The values that the cases \p cases have, ascending.
    void setVariable(boost::shared_ptr<const VariableCodes> codes, const TableCases& cases);

    [[nodiscard]] bool isByTag() const { return m_kind == Kind::Tags; }

    /// What the cases are divided by; null for tags and everything.
    [[nodiscard]] const VariableCodes* codes() const { return m_codes.get(); }

    [[nodiscard]] std::size_t size() const;

    /// \throws std::out_of_range ("invalid vector<T> subscript")
    void checkIndex(int index) const;

    /// \p index must be valid.
    [[nodiscard]] Variant header(int index) const;

    /// With isByTag(); \p index must be valid.
    [[nodiscard]] const std::string& tag(int index) const
    {
        return m_tags[static_cast<std::size_t>(index)];
    }

    /// With codes(): the codes of the indices.
    [[nodiscard]] const std::vector<VariableCodes::Code>& headerCodes() const
    {
        return m_headerCodes;
    }

    /// The index to which the case in \p row of the project belongs; 0 without codes().
    [[nodiscard]] std::uint32_t indexOfRow(std::size_t row) const
    {
        return m_codes ? m_indices[m_codes->code(row)] : 0;
    }

private:
    enum class Kind
    {
        Everything,
        Tags,
        Values
    };

    Kind m_kind = Kind::Everything;
    std::vector<std::string> m_tags;
    boost::shared_ptr<const VariableCodes> m_codes;
    std::vector<VariableCodes::Code> m_headerCodes;
    std::vector<std::uint32_t> m_indices; ///< by code
};
