#include <dataviews/common/images/GridDimension.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace {

/// Whether at least one of \p cases has it, for each code.
std::vector<std::uint8_t> presentCodes(const VariableCodes& codes, const TableCases& cases)
{
    std::vector<std::uint8_t> present(codes.valueCount(), cases.areAllInOrder() ? 1 : 0);
    codes.withCodes([&](const auto* codeOfRow) {
        for (const TableCases::Row row : cases.rows()) {
            present[codeOfRow[row]] = 1;
        }
    });
    return present;
}

} // namespace

void GridDimension::setTags(std::vector<std::string> tags)
{
    m_kind = Kind::Tags;
    m_tags = std::move(tags);
    m_codes.reset();
}

void GridDimension::setEverything()
{
    m_kind = Kind::Everything;
    m_codes.reset();
}

void GridDimension::setVariable(
    boost::shared_ptr<const VariableCodes> codes, const TableCases& cases)
{
    m_kind = Kind::Values;
    m_codes = std::move(codes);
    const std::vector<std::uint8_t> present = presentCodes(*m_codes, cases);
    m_headerCodes.clear();
    m_indices.resize(m_codes->valueCount());
    for (const VariableCodes::Code code : m_codes->order()) {
        if (present[code] != 0) {
            m_indices[code] = static_cast<std::uint32_t>(m_headerCodes.size());
            m_headerCodes.push_back(code);
        }
    }
}

std::size_t GridDimension::size() const
{
    switch (m_kind) {
    case Kind::Everything:
        return 1;
    case Kind::Tags:
        return m_tags.size();
    case Kind::Values:
        break;
    }
    return m_headerCodes.size();
}

void GridDimension::checkIndex(int index) const
{
    if (index < 0 || static_cast<std::size_t>(index) >= size()) {
        throw std::out_of_range("invalid vector<T> subscript");
    }
}

Variant GridDimension::header(int index) const
{
    const auto place = static_cast<std::size_t>(index);
    switch (m_kind) {
    case Kind::Everything:
        return Variant(0.0);
    case Kind::Tags:
        return Variant(m_tags[place]);
    case Kind::Values:
        break;
    }
    return m_codes->value(m_headerCodes[place]);
}
