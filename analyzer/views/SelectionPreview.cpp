#include <analyzer/views/SelectionPreview.h>

#include <dataviews/common/charts/DrawnPointsInterface.h>
#include <dataviews/common/selection/CaseIDColumn.h>

#include <QtGlobal>

#include <vtkIdTypeArray.h>
#include <vtkTable.h>

#include <algorithm>
#include <utility>

namespace analyzer {

SelectionPreview::SelectionPreview(
    const std::vector<vtkSmartPointer<vtkPlotPoints>>& plots, std::size_t selectedCount)
    : m_selectedCount(selectedCount)
{
    for (const vtkSmartPointer<vtkPlotPoints>& plot : plots) {
        const auto* drawn = dynamic_cast<const DrawnPointsInterface*>(plot.Get());
        Q_ASSERT_X(drawn != nullptr, "SelectionPreview", "a plot hides its points");
        Plot entry{plot, drawn, {}, {}};
        entry.isSelected.resize(static_cast<std::size_t>(drawn->drawnPoints().count));
        if (vtkIdTypeArray* selection = plot->GetSelection()) {
            for (vtkIdType i = 0; i < selection->GetNumberOfTuples(); ++i) {
                const auto row = static_cast<std::size_t>(selection->GetValue(i));
                if (row < entry.isSelected.size()) {
                    entry.isSelected[row] = 1;
                }
            }
        }
        m_plots.push_back(std::move(entry));
    }
    findRepeatedCases();
}

SelectionPreview::Change SelectionPreview::change(const SelectionArea& area, bool extends) const
{
    const SelectionArea::Count picked = countCases(area);
    Change change;
    change.added = picked.points - picked.marked;
    if (!extends) {
        change.removed = m_selectedCount - picked.marked;
    } else if (picked.points == 1) {
        change.removed = picked.marked;
    }
    return change;
}

bool SelectionPreview::isCurrent() const
{
    return std::all_of(m_plots.begin(), m_plots.end(), [](const Plot& plot) {
        return static_cast<std::size_t>(plot.drawn->drawnPoints().count) == plot.isSelected.size();
    });
}

void SelectionPreview::findRepeatedCases()
{
    std::vector<CaseIDMembership::Key> keys;
    for (const Plot& plot : m_plots) {
        CaseIDColumn(*plot.plot->GetInput()->GetColumn(0)).appendKeys(keys);
    }
    if (keys.empty()) {
        return;
    }
    const auto [least, greatest] = std::minmax_element(keys.begin(), keys.end());
    const CaseIDMembership::Key first = *least;
    const std::size_t range = static_cast<std::size_t>(*greatest) - first + 1;
    // Numbers of cases are the keys themselves where these lie close together, else their ranks.
    constexpr std::size_t close = 8;
    std::vector<CaseIDMembership::Key> ranked;
    if (range <= close * keys.size()) {
        m_caseCount = range;
        std::vector<bool> seen(range);
        for (const CaseIDMembership::Key key : keys) {
            m_hasRepeatedCases = m_hasRepeatedCases || seen[key - first];
            seen[key - first] = true;
        }
    } else {
        ranked = keys;
        std::sort(ranked.begin(), ranked.end());
        ranked.erase(std::unique(ranked.begin(), ranked.end()), ranked.end());
        m_caseCount = ranked.size();
        m_hasRepeatedCases = m_caseCount < keys.size();
    }
    if (!m_hasRepeatedCases) {
        return;
    }
    auto key = keys.begin();
    for (Plot& plot : m_plots) {
        plot.cases.resize(static_cast<std::size_t>(plot.plot->GetInput()->GetNumberOfRows()));
        for (std::uint32_t& number : plot.cases) {
            number = ranked.empty()
                ? *key - first
                : static_cast<std::uint32_t>(
                    std::lower_bound(ranked.begin(), ranked.end(), *key) - ranked.begin());
            ++key;
        }
    }
}

SelectionArea::Count SelectionPreview::countCases(const SelectionArea& area) const
{
    SelectionArea::Count count;
    std::vector<bool> seen(m_hasRepeatedCases ? m_caseCount : 0);
    for (const Plot& plot : m_plots) {
        const DrawnPointsInterface::Coordinates points = plot.drawn->drawnPoints();
        if (points.count == 0) {
            continue;
        }
        const SelectionArea inPlot = area.inPlot(*plot.plot);
        if (!m_hasRepeatedCases) {
            const SelectionArea::Count ofPlot = inPlot.count(points, plot.isSelected.data());
            count.points += ofPlot.points;
            count.marked += ofPlot.marked;
            continue;
        }
        inPlot.forEach(points, [&](vtkIdType row) {
            const auto index = static_cast<std::size_t>(row);
            if (!seen[plot.cases[index]]) {
                seen[plot.cases[index]] = true;
                ++count.points;
                count.marked += plot.isSelected[index];
            }
        });
    }
    return count;
}

} // namespace analyzer
