#include <analyzer/views/ChoiceSetting.h>
#include <analyzer/views/LinePlotView.h>
#include <analyzer/views/NumberSetting.h>
#include <analyzer/views/VariableSetting.h>
#include <analyzer/views/withNumbers.h>

#include <dataviews/common/charts/RingedPlotLine.h>
#include <dataviews/common/views/BoundedValueValidator.h>
#include <dataviews/common/views/DataViewVisitorInterface.h>
#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/UndoablePropertyProxy.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkLookupTable.h>
#include <vtkNew.h>
#include <vtkPen.h>
#include <vtkTable.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

namespace analyzer {

namespace {

constexpr std::uint64_t defaultLineWidth = 2; // device-independent pixels
constexpr std::uint64_t largestLineWidth = 20;
constexpr std::size_t fewSeries = 12; ///< as many are chosen without being asked for

// As the points of XY charts.
constexpr ColorBytes lineColor = {0, 114, 178};
constexpr ColorBytes lineColorOnDark = {86, 180, 233};

bool canBeSeries(const Variable& variable)
{
    return !variable.isNumeric() || CaseCategories::canDivideBy(variable);
}

std::vector<double> numbersOf(vtkAbstractArray* column, vtkIdType count)
{
    std::vector<double> numbers(static_cast<std::size_t>(count));
    withNumbers(column, [&](const auto* values) {
        std::transform(values, values + count, numbers.begin(), [](auto value) {
            return static_cast<double>(value);
        });
    });
    return numbers;
}

vtkSmartPointer<vtkDoubleArray> chosen(
    const std::vector<double>& numbers, const std::vector<vtkIdType>& rows, const char* name)
{
    const auto column = vtkSmartPointer<vtkDoubleArray>::New();
    column->SetName(name);
    column->SetNumberOfValues(static_cast<vtkIdType>(rows.size()));
    std::transform(rows.begin(), rows.end(), column->GetPointer(0), [&numbers](vtkIdType row) {
        return numbers[static_cast<std::size_t>(row)];
    });
    return column;
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
    const vtkIdType count = table.GetNumberOfRows();
    const std::string xName = variableName(xVariableProperty()->value());
    const std::string yName = variableName(yVariableProperty()->value());
    const std::vector<double> x = numbersOf(table.GetColumnByName(xName.c_str()), count);
    const std::vector<double> y = numbersOf(table.GetColumnByName(yName.c_str()), count);
    vtkIntArray* caseIDs = vtkIntArray::SafeDownCast(table.GetColumn(0));

    std::vector<std::vector<vtkIdType>> rowsOf(m_lines.size());
    for (vtkIdType i = 0; i < count; ++i) {
        std::size_t series = 0;
        if (m_series) {
            const auto row =
                Project::project().row(static_cast<unsigned long long>(caseIDs->GetValue(i)));
            series = row ? m_series->ofRow(*row) : m_series->missing();
        }
        rowsOf[series].push_back(i);
    }
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        std::vector<vtkIdType>& rows = rowsOf[i];
        RingedPlotLine& line = *m_lines[i];
        line.SetVisible(!rows.empty());
        if (rows.empty()) {
            continue;
        }
        // Cases with the same X stay in the order of the study.
        std::stable_sort(rows.begin(), rows.end(), [&x](vtkIdType left, vtkIdType right) {
            return x[static_cast<std::size_t>(left)] < x[static_cast<std::size_t>(right)];
        });
        const vtkNew<vtkIntArray> ids;
        ids->SetName(caseIDs->GetName());
        ids->SetNumberOfValues(static_cast<vtkIdType>(rows.size()));
        std::transform(rows.begin(), rows.end(), ids->GetPointer(0), [caseIDs](vtkIdType row) {
            return caseIDs->GetValue(row);
        });
        const vtkNew<vtkTable> series;
        series->AddColumn(ids);
        series->AddColumn(chosen(x, rows, xName.c_str()));
        if (yName != xName) {
            series->AddColumn(chosen(y, rows, yName.c_str()));
        }
        line.SetInputData(series);
        if (!m_series) {
            line.SetLabel(yName);
        } else {
            line.SetLabel(i < m_series->names().size() ? m_series->names()[i] : "(missing)");
        }
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
    constexpr double opaque = 255.0;
    const auto alpha = static_cast<unsigned char>(std::lround(opacity() * opaque));
    const float pixel = pointSizePx() / static_cast<float>(pointSize());
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        RingedPlotLine& line = *m_lines[i];
        const ColorBytes color = seriesColor(i, colors.isDark);
        line.SetColor(color[0], color[1], color[2], alpha);
        line.SetWidth(static_cast<float>(m_lineWidth->value()) * pixel);
        line.SetMarkerSize(pointSizePx());
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
    const auto palette = boost::make_shared<ChoiceSetting<ColorPalette>>(
        SettingInterface::Kind::Choice,
        "palette",
        "Palette",
        m_palette,
        ChoiceSetting<ColorPalette>::NamedValues{
            {"viridis", ColorPalette::Viridis},
            {"cividis", ColorPalette::Cividis},
            {"coolwarm", ColorPalette::CoolWarm}});
    palette->enableWhile(m_seriesVariable, [](const WeakPtr<Variable>& variable) {
        const boost::shared_ptr<Variable> locked = variable.lock();
        return locked && locked->isNumeric();
    });
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
        const CaseCategories check(*locked); // refuses too many
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

ColorBytes LinePlotView::seriesColor(std::size_t series, bool isDark) const
{
    if (!m_series) {
        return isDark ? lineColorOnDark : lineColor;
    }
    const std::size_t count = m_series->names().size();
    if (series >= count) {
        return missingColor(isDark);
    }
    const boost::shared_ptr<Variable> variable = m_seriesOf.lock();
    if (!variable || !variable->isNumeric()) {
        return categoryColor(series, isDark);
    }
    const vtkNew<vtkLookupTable> table;
    applyColorPalette(*table, m_palette->value());
    // The ends of a palette can be close to the background.
    constexpr double kept = 0.85;
    const double share =
        count > 1 ? static_cast<double>(series) / static_cast<double>(count - 1) : 0.5;
    table->SetRange(0.0, 1.0);
    const unsigned char* color =
        table->MapValue(isDark ? 1.0 - kept * (1.0 - share) : kept * share);
    return {color[0], color[1], color[2]};
}

} // namespace analyzer
