#include <analyzer/views/CaseTableOrder.h>
#include <analyzer/views/LinePlotView.h>
#include <analyzer/views/NumberSetting.h>
#include <analyzer/views/VariableSetting.h>
#include <analyzer/views/paletteSetting.h>
#include <analyzer/views/viewState.h>
#include <analyzer/views/withNumbers.h>

#include <dataviews/common/charts/RingedPlotLine.h>
#include <dataviews/common/views/BoundedValueValidator.h>
#include <dataviews/common/views/DataViewVisitorInterface.h>
#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/UndoablePropertyProxy.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <vtkAbstractArray.h>
#include <vtkLookupTable.h>
#include <vtkNew.h>
#include <vtkSMPTools.h>
#include <vtkTable.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <type_traits>

namespace analyzer {

namespace {

constexpr std::uint64_t defaultLineWidth = 2; // device-independent pixels
constexpr std::uint64_t largestLineWidth = 20;
constexpr std::size_t fewSeries = 12; ///< as many are chosen without being asked for

bool canBeSeries(const Variable& variable)
{
    return !variable.isNumeric() || CaseCategories::canDivideBy(variable);
}

/// The rows of \p column, one of numbers, in the order of their values; equal ones keep theirs.
CaseTableOrder orderOf(vtkAbstractArray& column)
{
    bool isSorted = true;
    withNumbers(&column, [&](const auto* values) {
        isSorted = std::is_sorted(values, values + column.GetNumberOfTuples());
    });
    // As it mostly is where X is a time.
    return isSorted ? CaseTableOrder() : CaseTableOrder::sorted(column, Qt::AscendingOrder);
}

/// The values of \p column, one of numbers, in \p rows.
vtkSmartPointer<vtkAbstractArray> valuesIn(
    vtkAbstractArray* column, const std::vector<vtkIdType>& rows)
{
    auto result = vtkSmartPointer<vtkAbstractArray>::Take(column->NewInstance());
    result->SetName(column->GetName());
    result->SetNumberOfTuples(static_cast<vtkIdType>(rows.size()));
    withNumbers(column, [&](const auto* values) {
        using Value = std::decay_t<decltype(*values)>;
        auto* const chosen = static_cast<Value*>(result->GetVoidPointer(0));
        constexpr vtkIdType rowsWorthThread = 20000;
        vtkSMPTools::For(
            0,
            static_cast<vtkIdType>(rows.size()),
            rowsWorthThread,
            [&](vtkIdType begin, vtkIdType end) {
                std::transform(
                    rows.data() + begin,
                    rows.data() + end,
                    chosen + begin,
                    [values](vtkIdType row) { return values[row]; });
            });
    });
    return result;
}

} // namespace

LinePlotView::LinePlotView(const ViewServices& services)
    : ChartViewAbstract(services, "LinePlot")
    , m_seriesVariable(boost::make_shared<corvane::UndoablePropertyProxy<WeakPtr<Variable>>>(
          "Series Variable",
          boost::make_shared<corvane::Property<WeakPtr<Variable>>>(WeakPtr<Variable>())))
    , m_palette(boost::make_shared<corvane::UndoablePropertyProxy<ColorPalette>>(
          "Color Palette",
          boost::make_shared<corvane::Property<ColorPalette>>(ColorPalette::Viridis)))
    , m_lineWidth(boost::make_shared<corvane::UndoablePropertyProxy<std::uint64_t>>(
          "Line Width",
          boost::make_shared<corvane::Property<std::uint64_t>>(
              defaultLineWidth,
              boost::make_shared<corvane::BoundedValueValidator<std::uint64_t>>(
                  1, largestLineWidth)),
          UndoStack::nextUndoID()))
{
    // One for the missing values too.
    for (std::size_t i = 0; i <= CaseCategories::largestCount; ++i) {
        m_lines.push_back(vtkSmartPointer<RingedPlotLine>::New());
        addPlot(*m_lines.back());
    }
    addSettings();
    viewState::keepVariable(serializer(), "SeriesVariable", m_seriesVariable);
    viewState::keepPalette(serializer(), m_palette);
    viewState::keep(serializer(), "LineWidth", m_lineWidth);
    start({});
    connections().add(m_palette->valueChanged.connect([this](ColorPalette) { applyAppearance(); }));
    connections().add(
        m_lineWidth->valueChanged.connect([this](std::uint64_t) { applyAppearance(); }));
    connections().add(m_seriesVariable->valueChanged.connect([this](const WeakPtr<Variable>&) {
        takeTable();
        emitTitleChanged();
    }));
}

LinePlotView::~LinePlotView()
{
    stop();
}

void LinePlotView::accept(DataViewVisitorInterface& visitor)
{
    visitor.visit(boost::shared_ptr<LinePlotInterface>(shared_from_this()));
}

std::string LinePlotView::kind() const
{
    return "line";
}

std::string LinePlotView::title() const
{
    const std::string series = variableName(m_seriesVariable->value());
    return ChartViewAbstract::title() + (series.empty() ? series : ", by " + series);
}

std::vector<vtkSmartPointer<vtkPlotPoints>> LinePlotView::visiblePlots() const
{
    std::vector<vtkSmartPointer<vtkPlotPoints>> visible;
    for (const vtkSmartPointer<RingedPlotLine>& line : m_lines) {
        if (line->GetVisible()) {
            visible.emplace_back(line);
        }
    }
    return visible;
}

void LinePlotView::showTable(vtkTable& table)
{
    updateSeries();
    vtkAbstractArray* const caseIDs = table.GetColumn(0);
    vtkAbstractArray* const x =
        table.GetColumnByName(variableName(xVariableProperty()->value()).c_str());
    vtkAbstractArray* const y =
        table.GetColumnByName(variableName(yVariableProperty()->value()).c_str());
    // Cases with the same X stay in the order of the study.
    const std::vector<std::vector<vtkIdType>> rowsOf = rowsOfSeries(table, orderOf(*x));
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        const std::vector<vtkIdType>& rows = rowsOf[i];
        RingedPlotLine& line = *m_lines[i];
        line.SetVisible(!rows.empty());
        if (rows.empty()) {
            continue;
        }
        const vtkNew<vtkTable> cases;
        for (vtkAbstractArray* column : {caseIDs, x}) {
            cases->AddColumn(valuesIn(column, rows));
        }
        if (y != x) {
            cases->AddColumn(valuesIn(y, rows));
        }
        line.SetInputData(cases);
        line.SetLabel(seriesName(i));
    }
}

void LinePlotView::hidePlots()
{
    for (const vtkSmartPointer<RingedPlotLine>& line : m_lines) {
        line->SetVisible(false);
    }
}

std::vector<WeakPtr<Variable>> LinePlotView::furtherVariables() const
{
    return {m_seriesVariable->value()};
}

void LinePlotView::chooseFurtherVariables()
{
    // The fewer lines, the more they say.
    WeakPtr<Variable> best;
    std::size_t fewest = fewSeries + 1;
    for (const WeakPtr<Variable>& handle : Project::project().variables()) {
        const boost::shared_ptr<Variable> variable = handle.lock();
        const bool isAxis =
            handle == xVariableProperty()->value() || handle == yVariableProperty()->value();
        if (!variable || isAxis || variable->nature() != Variable::Input) {
            continue;
        }
        const std::size_t count = variable->distinctValueCount();
        if (count > 1 && count < fewest) {
            best = handle;
            fewest = count;
        }
    }
    const UndoStack::SuspendUndoRecording noRecording;
    m_seriesVariable->setValue(best);
}

void LinePlotView::applyOwnAppearance(const AppearanceColors& colors)
{
    const vtkNew<vtkLookupTable> palette;
    applyColorPalette(*palette, m_palette->value());
    palette->SetRange(0.0, 1.0);
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        RingedPlotLine& line = *m_lines[i];
        const ColorBytes color = seriesColor(i, colors, *palette);
        line.SetColor(color[0], color[1], color[2], alpha());
        line.SetWidth(devicePixels(static_cast<double>(m_lineWidth->value())));
        line.SetMarkerSize(pointSizePx());
        line.setDeepening(OverlapColors::Deepening::None); // the color tells the series
        line.setSelectionColors(selectionColors(colors, false));
    }
}

void LinePlotView::addSettings()
{
    const auto series = boost::make_shared<VariableSetting>(
        "color",
        "Series",
        m_seriesVariable,
        &canBeSeries,
        "variables of few values",
        "(none)",
        [this](const WeakPtr<Variable>& variable) { chooseSeries(variable); });
    const auto palette = makePaletteSetting(m_palette, m_seriesVariable);
    const auto width = boost::make_shared<NumberSetting>(
        "line-width",
        "Line width",
        m_lineWidth,
        NumberSetting::Range{1, largestLineWidth, 1},
        " px");
    series->setSection("Series");
    palette->setSection("Series");
    width->setSection("Series");
    addSetting(series);
    addSetting(palette);
    addSetting(width);
    addAxisSettings();
    addPointSettings();
}

void LinePlotView::chooseSeries(const WeakPtr<Variable>& variable) const
{
    if (const boost::shared_ptr<Variable> locked = variable.lock()) {
        CaseCategories::checkCanDivideBy(*locked);
    }
    m_seriesVariable->setValue(variable);
}

void LinePlotView::updateSeries()
{
    const WeakPtr<Variable> handle = m_seriesVariable->value();
    if (handle == m_seriesOf && !handle.expired()) {
        return;
    }
    m_seriesOf = handle;
    m_series.reset();
    const boost::shared_ptr<Variable> variable = handle.lock();
    if (variable && CaseCategories::canDivideBy(*variable)) {
        m_series.emplace(*variable);
    }
}

std::vector<std::vector<vtkIdType>> LinePlotView::rowsOfSeries(
    vtkTable& table, const CaseTableOrder& order) const
{
    std::vector<std::vector<vtkIdType>> rowsOf(m_lines.size());
    const int rowCount = static_cast<int>(table.GetNumberOfRows());
    if (m_series) {
        const std::vector<std::uint8_t> seriesOf = m_series->ofCases(table);
        std::vector<std::size_t> counts(m_lines.size());
        for (const std::uint8_t series : seriesOf) {
            ++counts[series];
        }
        for (std::size_t series = 0; series < counts.size(); ++series) {
            rowsOf[series].reserve(counts[series]);
        }
        for (int i = 0; i < rowCount; ++i) {
            const int row = order.tableRow(i);
            rowsOf[seriesOf[static_cast<std::size_t>(row)]].push_back(row);
        }
    } else {
        rowsOf.front().reserve(static_cast<std::size_t>(rowCount));
        for (int i = 0; i < rowCount; ++i) {
            rowsOf.front().push_back(order.tableRow(i));
        }
    }
    return rowsOf;
}

std::string LinePlotView::seriesName(std::size_t series) const
{
    if (!m_series) {
        return variableName(yVariableProperty()->value());
    }
    return series < m_series->names().size() ? m_series->names()[series] : "(missing)";
}

ColorBytes LinePlotView::seriesColor(
    std::size_t series, const AppearanceColors& colors, vtkLookupTable& palette) const
{
    if (!m_series) {
        return plainColor(colors);
    }
    const std::size_t count = m_series->names().size();
    if (series >= count) {
        return missingColor(colors.isDark);
    }
    const boost::shared_ptr<Variable> variable = m_seriesOf.lock();
    if (!variable || !variable->isNumeric()) {
        return categoryColor(series, colors.isDark);
    }
    // The ends of a palette can be close to the background.
    constexpr double kept = 0.85;
    const double share =
        count > 1 ? static_cast<double>(series) / static_cast<double>(count - 1) : 0.5;
    const unsigned char* color =
        palette.MapValue(colors.isDark ? 1.0 - kept * (1.0 - share) : kept * share);
    return {color[0], color[1], color[2]};
}

} // namespace analyzer
