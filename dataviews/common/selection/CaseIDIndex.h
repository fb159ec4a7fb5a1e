#pragma once

#include <dataviews/common/selection/CaseIDMembership.h>
#include <dataviews/common/selection/SelectionExport.h>

#include <vtkSmartPointer.h>
#include <vtkType.h>
#include <vtkWeakPointer.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

class CaseSet;
class vtkAbstractArray;
class vtkIdTypeArray;

/// Finds the rows of cases in a case ID column without a pass over the column, as long as the column stays the same.
///
/// Gives what CaseIDColumn::rowsOf() gives. Of IDs that go up by one from row to row, as in the table of a whole study,
/// nothing is remembered; of others a map from IDs to rows (4 bytes an ID) is made when it is asked for few cases the
/// first time. Many cases are found by a typed pass, which is faster for them. Used on the GUI thread.
///
/// An index is of one state of one array: isCurrent() ends with a call of the array's Modified() and with any change of
/// its size, type or memory, and of() never hands out an index that is not current. VTK does not notice values that
/// are written with SetValue() or through a pointer: as everywhere in VTK, who writes them calls Modified().
class DATAVIEWS_SELECTION_EXPORT CaseIDIndex
{
public:
    /// The current index of \p column, shared by all who ask for it. The last few columns are remembered, by weak
    /// pointers.
    [[nodiscard]] static boost::shared_ptr<const CaseIDIndex> of(vtkAbstractArray& column);

    explicit CaseIDIndex(vtkAbstractArray& column);
    CaseIDIndex(const CaseIDIndex&) = delete;
    CaseIDIndex& operator=(const CaseIDIndex&) = delete;
    ~CaseIDIndex();

    /// Whether the column is as it was when the index was made; it may be gone.
    [[nodiscard]] bool isCurrent() const;

    /// Whether this is the current index of \p column.
    [[nodiscard]] bool isOf(vtkAbstractArray& column) const;

    /// Whether the IDs go up by one from row to row and none is negative.
    [[nodiscard]] bool isInOrder() const { return m_isInOrder; }

    /// Sets the bits of the rows whose case is in \p cases in \p words, 64 rows a word, which have room for all rows. The
    /// index must be current.
    void addRowsTo(std::vector<std::uint64_t>& words, const CaseSet& cases) const;

    /// The rows whose case is in \p cases, in ascending order: a new array with one component. The index must be current.
    [[nodiscard]] vtkSmartPointer<vtkIdTypeArray> rowsOf(const CaseSet& cases) const;

    /// The same for cases that are not null. Of many cases, the rows of the last ones are remembered: further plots that
    /// ask for the same ones cost little more than the array that they get.
    [[nodiscard]] vtkSmartPointer<vtkIdTypeArray> rowsOf(
        const boost::shared_ptr<const CaseSet>& cases) const;

private:
    using Key = CaseIDMembership::Key;

    /// What a change of an array shows in.
    struct State
    {
        vtkMTimeType time = 0;
        vtkIdType rowCount = 0;
        int componentCount = 0;
        const void* values = nullptr;

        [[nodiscard]] static State of(vtkAbstractArray& column);
        [[nodiscard]] bool operator==(const State& other) const;
    };

    [[nodiscard]] bool takesPass(const CaseSet& cases) const;
    [[nodiscard]] vtkSmartPointer<vtkIdTypeArray> rowsInOrder(const CaseSet& cases) const;
    [[nodiscard]] vtkSmartPointer<vtkIdTypeArray> rowsByMap(const CaseSet& cases) const;
    void buildMap() const;
    void appendRows(Key key, std::vector<std::uint32_t>& rows) const;

    vtkWeakPointer<vtkAbstractArray> m_column;
    State m_state;
    bool m_isInOrder = false; ///< the IDs go up by one from row to row, the first one is m_firstKey
    mutable Key m_firstKey = 0;
    mutable bool m_hasMap = false;
    mutable std::vector<std::uint32_t>
        m_rowOfKey; ///< from m_firstKey on: the first row, or noRow; if the IDs lie close enough
    mutable std::vector<std::uint32_t>
        m_nextRow; ///< with the same ID, by row; empty if all are different
    mutable std::vector<std::pair<Key, std::uint32_t>> m_sorted; ///< else: IDs with their rows
    mutable boost::shared_ptr<const CaseSet> m_lastCases;
    mutable std::vector<std::uint64_t> m_lastRows; ///< of m_lastCases, a bit for each
};
