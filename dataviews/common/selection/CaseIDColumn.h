#pragma once

#include <dataviews/common/selection/CaseIDMembership.h>
#include <dataviews/common/selection/SelectionExport.h>

#include <dataviews/platform/selection/CaseSet.h>

#include <vtkSmartPointer.h>
#include <vtkType.h>

#include <cstdint>
#include <set>
#include <vector>

class vtkAbstractArray;
class vtkIdTypeArray;

/// Reads the case IDs of a record table from its column 0.
///
/// An ID is the value as a signed 32-bit integer, as vtkVariant::ToInt() gives it, widened with its sign to 64 bits.
/// VTK's numeric arrays with one component are read in a typed pass, all others value by value through a variant;
/// both give the same IDs. Nothing is remembered between calls; see CaseIDIndex for what is.
class DATAVIEWS_SELECTION_EXPORT CaseIDColumn
{
public:
    /// \p column must outlive this object.
    explicit CaseIDColumn(vtkAbstractArray& column);

    /// \p row must be a row of the table.
    [[nodiscard]] unsigned long long caseID(vtkIdType row) const;

    /// Appends the keys (see CaseIDMembership) of all rows to \p keys.
    void appendKeys(std::vector<CaseIDMembership::Key>& keys) const;

    /// Appends the keys of \p rows to \p keys, in that order.
    void appendKeys(vtkIdTypeArray& rows, std::vector<CaseIDMembership::Key>& keys) const;

    /// The rows whose case is in \p cases, in ascending order: a new array with one component.
    [[nodiscard]] vtkSmartPointer<vtkIdTypeArray> rowsOf(const CaseIDMembership& cases) const;

    /// The same as a bit for each row, 64 rows a word; no words for no cases.
    [[nodiscard]] std::vector<std::uint64_t> markedRows(const CaseIDMembership& cases) const;

    /// The case IDs that belong to \p keys, each once. Built in ascending order, so that walking the set is fast.
    [[nodiscard]] static std::set<unsigned long long> toCaseIDs(
        std::vector<CaseIDMembership::Key> keys);

    /// The same in the form that costs little.
    [[nodiscard]] static CaseSet toCases(std::vector<CaseIDMembership::Key> keys);

    /// The rows whose bits are set in \p words, 64 rows a word, in ascending order: a new array with one component.
    [[nodiscard]] static vtkSmartPointer<vtkIdTypeArray> toRows(
        const std::vector<std::uint64_t>& words);

private:
    template <class Function>
    void withReader(Function function) const;

    vtkAbstractArray& m_column;
};
