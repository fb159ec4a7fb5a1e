#include <analyzer/views/ChoiceSetting.h>
#include <analyzer/views/ColorBarState.h>
#include <analyzer/views/PointColors.h>
#include <analyzer/views/RealSetting.h>
#include <analyzer/views/VariableSetting.h>
#include <analyzer/views/paletteSetting.h>
#include <analyzer/views/viewState.h>

#include <dataviews/common/charts/CategoryLegend.h>
#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/ColorLegend.h>
#include <dataviews/common/charts/NiceLabelsColorBarWidget.h>
#include <dataviews/common/charts/colorBarToolTip.h>
#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/UndoablePropertyProxy.h>

#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <vtkContextView.h>
#include <vtkIntArray.h>
#include <vtkLookupTable.h>
#include <vtkPlotPoints.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkScalarBarActor.h>
#include <vtkScalarBarRepresentation.h>
#include <vtkTable.h>
#include <vtkTextProperty.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

namespace analyzer {

namespace {

/// No variable has this name: the reader takes control characters for blanks.
constexpr const char* categoryColumn = "\x01"
                                       "category";

constexpr double farRight =
    0.6; ///< a bar that begins there and reaches the edge stands beside the points

// Device-independent pixels: room for a title of a few words, and labels of a readable size.
constexpr double barWidth = 105.0;
constexpr double labelHeight = 22.0;
constexpr double titleHeight = 45.0;
constexpr double leastBarHeight = 130.0;
// Shares of the chart.
constexpr double largestBarWidth = 0.3;
constexpr double largestBarHeight = 0.95;
constexpr double barMargin = 0.01; ///< at the right and above

bool acceptsAny(const Variable& /*variable*/)
{
    return true;
}

/// Writes a number that a person typed as the number of labels.
void setLabelCount(corvane::PropertyAbstract<short>& property, double count)
{
    if (std::trunc(count) != count) {
        throw ExceptionBase("The number of labels is a whole number.");
    }
    // Far outside is refused like just outside.
    const double least = std::numeric_limits<short>::min();
    const double most = std::numeric_limits<short>::max();
    property.setValue(static_cast<short>(std::clamp(count, least, most)));
}

} // namespace

PointColors::PointColors(
    vtkPlotPoints& plot,
    ChartXY& chart,
    vtkContextView& view,
    const DataPipelineManagerInterface& pipeline,
    boost::shared_ptr<const corvane::PropertyAbstract<bool>> showLegend)
    : signalPaintingNeeded([this] { signalPaintingNeededConnected(); })
    , m_plot(&plot)
    , m_showLegend(std::move(showLegend))
    , m_plotProperty(boost::make_shared<ColorVariableProperty<vtkPlotPoints>>(&plot))
    , m_variable(boost::make_shared<corvane::UndoablePropertyProxy<WeakPtr<Variable>>>(
          "Color Variable", m_plotProperty))
    , m_palette(boost::make_shared<corvane::UndoablePropertyProxy<ColorPalette>>(
          "Color Palette",
          boost::make_shared<corvane::Property<ColorPalette>>(ColorPalette::Viridis)))
    , m_isBarAllowed(boost::make_shared<corvane::Property<bool>>(false))
    , m_bar(vtkSmartPointer<NiceLabelsColorBarWidget>::New())
    , m_categoryLegend(vtkSmartPointer<CategoryLegend>::New())
{
    applyColorPalette(*m_lookupTable, m_palette->value());
    m_bar->SetDefaultRenderer(view.GetRenderer());
    m_bar->SetCurrentRenderer(view.GetRenderer());
    m_legend = std::make_unique<ColorLegend>(
        m_variable, m_isBarAllowed, pipeline, m_lookupTable.Get(), *view.GetInteractor(), m_bar);
    {
        // Whoever colors points wants to know what the colors mean.
        const UndoStack::SuspendUndoRecording noRecording;
        m_legend->show()->setValue(true);
    }
    chart.addLegend(m_categoryLegend);

    const auto paint = [this] { signalPaintingNeeded(); };
    m_connections.add(m_legend->signalColorLegendUpdated.connect(paint));
    m_connections.add(m_legend->visible()->valueChanged.connect([paint](bool) { paint(); }));
    m_connections.add(m_legend->show()->valueChanged.connect([this](bool) { showLegends(); }));
    m_connections.add(m_showLegend->valueChanged.connect([this](bool) { showLegends(); }));
    m_connections.add(m_palette->valueChanged.connect([this](ColorPalette palette) {
        applyColorPalette(*m_lookupTable, palette);
        signalPaintingNeeded();
    }));
}

PointColors::~PointColors()
{
    m_connections.clear();
    m_bar->SetEnabled(0);
    m_bar->SetInteractor(nullptr);
}

CategoryLegend& PointColors::categoryLegend() const
{
    return *m_categoryLegend;
}

std::vector<boost::shared_ptr<SettingInterface>> PointColors::makeSettings() const
{
    const auto color = boost::make_shared<VariableSetting>(
        "color",
        "Color",
        m_variable,
        &acceptsAny,
        "variables",
        "(none)",
        [this](const WeakPtr<Variable>& variable) { chooseVariable(variable); });
    const auto palette = makePaletteSetting(m_palette, m_variable);
    const auto show = makeSwitchSetting("color-legend", "Color legend", m_legend->show());
    const auto rangeType = boost::make_shared<ChoiceSetting<ColorLegend::RangeType>>(
        SettingInterface::Kind::Choice,
        "color-range",
        "Range",
        m_legend->rangeType(),
        ChoiceSetting<ColorLegend::RangeType>::NamedValues{
            {"automatic", ColorLegend::Auto}, {"own", ColorLegend::Custom}});
    const auto range = m_legend->range();
    const auto min = boost::make_shared<RealSetting>(
        "color-min",
        "Minimum",
        [range] { return range->value().min; },
        [range](double value) {
            range->setValue({value, range->value().max});
        });
    const auto max = boost::make_shared<RealSetting>(
        "color-max",
        "Maximum",
        [range] { return range->value().max; },
        [range](double value) {
            range->setValue({range->value().min, value});
        });
    const auto numLabels = m_legend->numLabels();
    const auto labels = boost::make_shared<RealSetting>(
        "labels",
        "Labels",
        [numLabels] { return static_cast<double>(numLabels->value()); },
        [numLabels](double value) { setLabelCount(*numLabels, value); });
    min->follow(range);
    max->follow(range);
    labels->follow(numLabels);

    const auto isNumeric = [](const WeakPtr<Variable>& variable) {
        const boost::shared_ptr<Variable> locked = variable.lock();
        return locked && locked->isNumeric();
    };
    const auto isCustom = [](ColorLegend::RangeType type) { return type == ColorLegend::Custom; };
    show->enableWhile(
        m_variable, [](const WeakPtr<Variable>& variable) { return !variable.expired(); });
    rangeType->enableWhile(m_variable, isNumeric);
    labels->enableWhile(m_variable, isNumeric);
    for (const auto& end : {min, max}) {
        end->enableWhile(m_variable, isNumeric);
        end->enableWhile(m_legend->rangeType(), isCustom);
    }

    constexpr const char* section = "Colors";
    color->setSection(section);
    palette->setSection(section);
    show->setSection(section);
    rangeType->setSection(section);
    min->setSection(section);
    max->setSection(section);
    labels->setSection(section);
    return {color, palette, show, rangeType, min, max, labels};
}

void PointColors::keepState(SerializerInterface& state)
{
    viewState::keepVariable(state, "ColorVariable", m_variable);
    viewState::keepPalette(state, m_palette);
    state.addSubElement(m_legend->serializer());
    state.addSubElement(boost::make_shared<ColorBarState>(
        "ColorBar",
        *m_bar->GetScalarBarRepresentation(),
        [this] { return isBarUntouched(); },
        // No bar is fitted to nothing.
        [this] {
            m_fittedBar = {0.0, 0.0, 0.0, 0.0};
        }));
}

void PointColors::prepare(vtkTable& table)
{
    updateCategories();
    if (!m_categories) {
        return;
    }
    const std::vector<std::uint8_t> categories = m_categories->ofCases(table);
    const vtkNew<vtkIntArray> column;
    column->SetName(categoryColumn);
    column->SetNumberOfValues(static_cast<vtkIdType>(categories.size()));
    std::copy(categories.begin(), categories.end(), column->GetPointer(0));
    table.AddColumn(column);
}

void PointColors::apply()
{
    updateCategories();
    m_plotProperty->updateColors();
    vtkTable* table = m_plot->GetInput();
    const bool hasCategories =
        m_categories && table != nullptr && table->GetColumnByName(categoryColumn) != nullptr;
    if (hasCategories) {
        m_plot->SetLookupTable(m_categoryTable);
        m_plot->SelectColorArray(std::string(categoryColumn));
        m_plot->ScalarVisibilityOn();
    } else {
        m_plot->SetLookupTable(m_lookupTable);
    }
    m_isColored = m_plot->GetVisible() && m_plot->GetScalarVisibility() != 0;
    fillCategoryColors();
    showLegends();
}

void PointColors::applyAppearance(const Appearance& appearance)
{
    m_lookupTable->SetAlpha(appearance.opacity);
    m_categoryTable->SetAlpha(appearance.opacity);
    m_categoryLegend->setMarkerSize(appearance.markerSizePx);
    if (m_isDark != appearance.isDark) {
        m_isDark = appearance.isDark;
        fillCategoryColors();
    }
    vtkScalarBarActor& bar = *m_bar->GetScalarBarActor();
    const QColor& text = appearance.text;
    for (vtkTextProperty* property : {bar.GetTitleTextProperty(), bar.GetLabelTextProperty()}) {
        property->SetColor(text.redF(), text.greenF(), text.blueF());
    }
    m_bar->GetScalarBarRepresentation()->SetBorderColor(text.redF(), text.greenF(), text.blueF());
}

double PointColors::reservedWidth() const
{
    if (!m_legend->visible()->value()) {
        return 0.0;
    }
    vtkScalarBarRepresentation& bar = *m_bar->GetScalarBarRepresentation();
    const double left = bar.GetPosition()[0];
    const bool isAtEdge = left >= farRight && left + bar.GetPosition2()[0] > 1.0 - 2.0 * barMargin;
    return isAtEdge ? std::max(0.0, 1.0 - left) : 0.0;
}

void PointColors::fitBar(double width, double height)
{
    if (!isBarUntouched() || width <= 0.0 || height <= 0.0) {
        return;
    }
    vtkScalarBarRepresentation& bar = *m_bar->GetScalarBarRepresentation();
    // The texts are as large as there is room for them.
    const int labels = m_bar->GetScalarBarActor()->GetNumberOfLabels();
    const double share = std::min(barWidth / width, largestBarWidth);
    const double wanted = std::max(labels * labelHeight + titleHeight, leastBarHeight);
    const double shareUp = std::min(wanted / height, largestBarHeight);
    m_fittedBar = {1.0 - barMargin - share, 1.0 - barMargin - shareUp, share, shareUp};
    bar.SetPosition((*m_fittedBar)[0], (*m_fittedBar)[1]);
    bar.SetPosition2((*m_fittedBar)[2], (*m_fittedBar)[3]);
}

bool PointColors::isBarUntouched() const
{
    vtkScalarBarRepresentation& bar = *m_bar->GetScalarBarRepresentation();
    const double* place = bar.GetPosition();
    const double* size = bar.GetPosition2();
    return !m_fittedBar
        || *m_fittedBar == std::array<double, 4>{place[0], place[1], size[0], size[1]};
}

QString PointColors::toolTip(double x, double y) const
{
    const boost::shared_ptr<Variable> variable = m_variable->value().lock();
    if (!variable || !m_legend->visible()->value()) {
        return {};
    }
    vtkScalarBarRepresentation& bar = *m_bar->GetScalarBarRepresentation();
    const double* corner = bar.GetPosition();
    const double* size = bar.GetPosition2();
    if (x < corner[0] || x > corner[0] + size[0] || y < corner[1] || y > corner[1] + size[1]) {
        return {};
    }
    const double* range = m_lookupTable->GetRange();
    return QString::fromStdString(colorBarToolTip(
        variable->name(), {range[0], range[1]}, m_bar->GetScalarBarActor()->GetNumberOfLabels()));
}

void PointColors::chooseVariable(const WeakPtr<Variable>& variable) const
{
    const boost::shared_ptr<Variable> locked = variable.lock();
    if (locked && !locked->isNumeric()) {
        CaseCategories::checkCanDivideBy(*locked);
    }
    m_variable->setValue(variable);
}

void PointColors::updateCategories()
{
    const WeakPtr<Variable> handle = m_variable->value();
    if (handle == m_categoriesOf && !handle.expired()) {
        return;
    }
    m_categoriesOf = handle;
    m_categories.reset();
    const boost::shared_ptr<Variable> variable = handle.lock();
    if (variable && !variable->isNumeric() && CaseCategories::canDivideBy(*variable)) {
        m_categories.emplace(*variable);
    }
}

void PointColors::fillCategoryColors()
{
    if (!m_categories) {
        m_categoryLegend->setEntries({});
        return;
    }
    const std::size_t count = m_categories->names().size();
    std::vector<CategoryLegend::Entry> entries;
    for (std::size_t i = 0; i < count; ++i) {
        entries.push_back({m_categories->names()[i], categoryColor(i, m_isDark)});
    }
    if (m_categories->hasMissing()) {
        entries.push_back({"(missing)", missingColor(m_isDark)});
    }
    m_categoryTable->SetNumberOfTableValues(static_cast<vtkIdType>(count) + 1);
    m_categoryTable->SetTableRange(-0.5, static_cast<double>(count) + 0.5);
    constexpr double full = 255.0;
    for (std::size_t i = 0; i <= count; ++i) {
        const ColorBytes color = i < count ? categoryColor(i, m_isDark) : missingColor(m_isDark);
        m_categoryTable->SetTableValue(
            static_cast<vtkIdType>(i), color[0] / full, color[1] / full, color[2] / full);
    }
    const boost::shared_ptr<Variable> variable = m_categoriesOf.lock();
    m_categoryLegend->setTitle(variable ? variable->name() : std::string());
    m_categoryLegend->setEntries(entries);
}

void PointColors::showLegends()
{
    m_isBarAllowed->setValue(m_showLegend->value() && m_isColored && !m_categories);
    m_categoryLegend->SetVisible(m_showLegend->value() && m_isColored && m_legend->show()->value());
    signalPaintingNeeded();
}

} // namespace analyzer
