#pragma once

#include <dataviews/common/charts/SelectionArea.h>

#include <vtkPlotPoints.h>
#include <vtkSmartPointer.h>

#include <cstddef>
#include <cstdint>
#include <vector>

class DrawnPointsInterface;

namespace analyzer {

/// Counts what picking in an area of a chart would change in the selection of cases, for one area after the other.
///
/// Built once for a drag, with a pass over all points; each count then is one more pass. A case with several points
/// counts once. Knows the selection and the tables as they were when it was built.
class SelectionPreview
{
public:
    struct Change
    {
        std::size_t added = 0; ///< cases that would be selected and are not
        std::size_t removed = 0; ///< selected cases that would not be any more, drawn or not

        [[nodiscard]] bool operator==(const Change& other) const
        {
            return added == other.added && removed == other.removed;
        }
    };

    /// \p plots belong to one chart, let their points be seen (DrawnPointsInterface), hold the case IDs in column 0 of
    /// their tables, and show the selection, \p selectedCount cases of which some need not be drawn.
    SelectionPreview(
        const std::vector<vtkSmartPointer<vtkPlotPoints>>& plots, std::size_t selectedCount);

    /// Picks what lies in \p area, in pixels of the scene. With \p extends as DataView2DSelectionSynchronizer does while
    /// Control is held: a single case is toggled, several are added; otherwise they replace the selection.
    [[nodiscard]] Change change(const SelectionArea& area, bool extends) const;

    /// Whether the plots still draw as many points as when this was built.
    [[nodiscard]] bool isCurrent() const;

private:
    struct Plot
    {
        vtkSmartPointer<vtkPlotPoints> plot;
        const DrawnPointsInterface* drawn;
        std::vector<std::uint8_t> isSelected; ///< by row
        std::vector<std::uint32_t>
            cases; ///< by row, numbers below m_caseCount; only if some case has several points
    };

    void findRepeatedCases();
    [[nodiscard]] SelectionArea::Count countCases(const SelectionArea& area) const;

    std::vector<Plot> m_plots;
    std::size_t m_selectedCount;
    std::size_t m_caseCount = 0;
    bool m_hasRepeatedCases = false;
};

} // namespace analyzer
