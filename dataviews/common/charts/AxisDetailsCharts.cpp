#include <dataviews/common/charts/AxisDetailsCharts.h>
#include <dataviews/common/charts/AxisRangePropertyAbstract.h>
#include <dataviews/common/charts/VTKPropertyAbstract.h>
#include <dataviews/common/charts/axisRange.h>
#include <dataviews/common/views/UndoablePropertyProxy.h>

#include <dataviews/platform/data/makeNiceNumber.h>
#include <dataviews/platform/property/ValidationResult.h>
#include <dataviews/platform/property/ValidatorInterface.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <vtkAxis.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>

#include <boost/format.hpp>
#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

using DoubleProperty = corvane::PropertyAbstract<double>;
using BoolProperty = corvane::PropertyAbstract<bool>;

/// One end of the range of a vtkAxis.
class AxisRangeProperty : public AxisRangePropertyAbstract
{
public:
    AxisRangeProperty(
        const vtkSmartPointer<vtkAxis>& axis, RangeType type, const AxisDetailsInterface& details)
        : AxisRangePropertyAbstract(axis, type, details)
        , m_axis(axis)
    {
        rememberValue();
    }

protected:
    [[nodiscard]] double storedValue() const override
    {
        switch (rangeType()) {
        case Minimum:
            return m_axis->GetMinimum();
        case Maximum:
            return m_axis->GetMaximum();
        default:
            return -1.0;
        }
    }

    void writeRangeEnd(const double& value) override
    {
        switch (rangeType()) {
        case Minimum:
            m_axis->SetMinimum(value);
            break;
        case Maximum:
            m_axis->SetMaximum(value);
            break;
        default:
            break;
        }
    }

private:
    vtkSmartPointer<vtkAxis> m_axis;
};

/// Whether the axis has custom ticks.
class UseCustomGridSpacingProperty : public BoolProperty
{
public:
    explicit UseCustomGridSpacingProperty(vtkSmartPointer<vtkAxis> axis)
        : m_axis(std::move(axis))
    {}

protected:
    void storeValue(const bool& useCustom) override
    {
        if (useCustom) {
            m_axis->SetBehavior(vtkAxis::CUSTOM);
        } else {
            m_axis->SetBehavior(vtkAxis::FIXED);
            // An axis that holds custom ticks makes no others, whatever its behavior.
            m_axis->SetCustomTickPositions(nullptr);
            if (canBeDivided({m_axis->GetMinimum(), m_axis->GetMaximum()})) {
                m_axis->RecalculateTickSpacing();
            }
        }
        m_useCustom = useCustom;
    }

    [[nodiscard]] bool storedValue() const override { return m_useCustom; }

private:
    vtkSmartPointer<vtkAxis> m_axis;
    bool m_useCustom = false;
};

/// The distance of the ticks of an axis.
class GridSpacingProperty : public VTKPropertyAbstract<double>
{
public:
    /// Accepts custom spacings that give neither too many ticks nor too few.
    class GridSpacingValidator : public corvane::ValidatorInterface<double>
    {
    public:
        GridSpacingValidator(
            vtkSmartPointer<vtkAxis> axis, boost::shared_ptr<const BoolProperty> useCustom)
            : m_axis(std::move(axis))
            , m_useCustom(std::move(useCustom))
        {}

        [[nodiscard]] corvane::ValidationResult validate(const double& spacing) const override
        {
            if (!m_useCustom->value()) {
                return corvane::ValidationResult();
            }
            const double range = m_axis->GetMaximum() - m_axis->GetMinimum();
            double lo = range / 50.0;
            double hi = range * 10.0;
            if (lo > hi) {
                std::swap(lo, hi);
            }
            if (spacing < lo || spacing > hi || std::isnan(spacing)) {
                return corvane::ValidationResult(
                    (boost::format("Invalid grid spacing. Allowed value is between %1% and %2%.")
                     % lo % hi)
                        .str());
            }
            return corvane::ValidationResult();
        }

    private:
        vtkSmartPointer<vtkAxis> m_axis;
        boost::shared_ptr<const BoolProperty> m_useCustom;
    };

    GridSpacingProperty(
        const vtkSmartPointer<vtkAxis>& axis,
        const DoubleProperty& min,
        const DoubleProperty& max,
        const boost::shared_ptr<const BoolProperty>& useCustom)
        : VTKPropertyAbstract<double>(
            axis, boost::make_shared<GridSpacingValidator>(axis, useCustom))
        , m_axis(axis)
        , m_useCustom(useCustom)
    {
        const auto follow = [this](double) { storeValueInVTK(m_spacing); };
        m_connections.add(min.valueChanged.connect(follow));
        m_connections.add(max.valueChanged.connect(follow));
        rememberValue();
    }

    /// Gives the axis its first custom ticks, after custom spacing was switched on.
    void startCustomSpacing()
    {
        m_spacing = automaticSpacing();
        // Undo and redo bring the custom spacing back that was left; the automatic ticks may differ from it.
        const bool isReplay = UndoStack::undoOrRedoInProgress();
        storeValueInVTK(
            isReplay && fitsRange(m_lastCustomSpacing) ? m_lastCustomSpacing : m_spacing);
        rememberValue();
    }

protected:
    [[nodiscard]] double storedValue() const override
    {
        if (!m_useCustom->value()) {
            m_spacing = automaticSpacing();
        }
        return m_spacing;
    }

    void storeValueInVTK(const double& spacing) override
    {
        if (!m_useCustom->value() || !fitsRange(spacing)) {
            return;
        }
        m_spacing = spacing;
        m_lastCustomSpacing = spacing;

        const double min = m_axis->GetMinimum();
        const int count = static_cast<int>(intervals(spacing));
        const double first = std::trunc(min / spacing) * spacing;
        vtkNew<vtkDoubleArray> positions;
        positions->SetNumberOfValues(vtkIdType(count) + 1);
        for (int i = 0; i <= count; ++i) {
            positions->SetValue(i, first + i * spacing);
        }
        m_axis->SetCustomTickPositions(positions);
    }

    /// An undo or redo back to a spacing that no longer fits the range must not fail: the history would be stuck
    /// there. The spacing then stays as it is.
    void validate(const double& spacing) const override
    {
        if (!UndoStack::undoOrRedoInProgress()) {
            VTKPropertyAbstract<double>::validate(spacing);
        }
    }

private:
    /// How often \p spacing goes into the range, without the fraction.
    [[nodiscard]] double intervals(double spacing) const
    {
        return std::trunc((m_axis->GetMaximum() - m_axis->GetMinimum()) / spacing);
    }

    /// Whether ticks can be made: false for any spacing if the range is inverted or not a number.
    [[nodiscard]] bool fitsRange(double spacing) const
    {
        if (!(spacing > 0.0) || !validator()->validate(spacing).isValid()) {
            return false;
        }
        const double count = intervals(spacing);
        return count >= 0.0 && count < std::numeric_limits<int>::max();
    }

    [[nodiscard]] double automaticSpacing() const
    {
        vtkDoubleArray& ticks = *m_axis->GetTickPositions();
        const double spacing =
            ticks.GetNumberOfValues() < 2 ? 0.0 : ticks.GetValue(1) - ticks.GetValue(0);
        return makeNiceNumber(spacing);
    }

    vtkSmartPointer<vtkAxis> m_axis;
    boost::shared_ptr<const BoolProperty> m_useCustom;
    mutable double m_spacing = 0.0;
    double m_lastCustomSpacing = 0.0;
    SignalConnectionCollection m_connections;
};

} // namespace

struct AxisDetailsCharts::Implementation
{
    boost::shared_ptr<corvane::UndoablePropertyProxy<double>> min;
    boost::shared_ptr<corvane::UndoablePropertyProxy<double>> max;
    boost::shared_ptr<corvane::UndoablePropertyProxy<bool>> useCustomGridSpacing;
    boost::shared_ptr<corvane::UndoablePropertyProxy<double>> gridSpacing;
    SignalConnectionCollection connections;
};

AxisDetailsCharts::AxisDetailsCharts(
    const std::string& name,
    const corvane::PropertyAbstract<WeakPtr<Variable, std::size_t>>& variable,
    vtkSmartPointer<vtkAxis> axis)
    : m_implementation(std::make_unique<Implementation>())
{
    using DoubleProxy = corvane::UndoablePropertyProxy<double>;
    using BoolProxy = corvane::UndoablePropertyProxy<bool>;
    Implementation& d = *m_implementation;

    d.min = boost::make_shared<DoubleProxy>(
        name + " Min",
        boost::make_shared<AxisRangeProperty>(axis, AxisRangeProperty::Minimum, *this));
    d.max = boost::make_shared<DoubleProxy>(
        name + " Max",
        boost::make_shared<AxisRangeProperty>(axis, AxisRangeProperty::Maximum, *this));
    d.useCustomGridSpacing = boost::make_shared<BoolProxy>(
        name + " Grid Spacing Type", boost::make_shared<UseCustomGridSpacingProperty>(axis));
    const auto gridSpacing =
        boost::make_shared<GridSpacingProperty>(axis, *d.min, *d.max, d.useCustomGridSpacing);
    d.gridSpacing = boost::make_shared<DoubleProxy>(name + " Grid Spacing", gridSpacing);
    d.useCustomGridSpacing->setValue(false);

    // First, so that whoever hears of the change finds the ticks in place. Not through the proxy of the spacing:
    // undoing the switch is enough.
    d.connections.add(
        d.useCustomGridSpacing->valueChanged.connect([spacing = gridSpacing.get()](bool useCustom) {
            if (useCustom) {
                spacing->startCustomSpacing();
            }
        }));

    const auto tell = [this](const auto&) { emitAxisDetailsChanged(); };
    d.connections.add(d.min->valueChanged.connect(tell));
    d.connections.add(d.max->valueChanged.connect(tell));
    d.connections.add(d.useCustomGridSpacing->valueChanged.connect(tell));
    d.connections.add(d.gridSpacing->valueChanged.connect(tell));

    const auto checkSpacing = [this](double) { leaveUnfitCustomSpacing(); };
    d.connections.add(d.min->valueChanged.connect(checkSpacing));
    d.connections.add(d.max->valueChanged.connect(checkSpacing));
    d.connections.add(variable.valueChanged.connect([this](const auto&) { leaveCustomSpacing(); }));
}

AxisDetailsCharts::~AxisDetailsCharts() = default;

boost::shared_ptr<corvane::PropertyAbstract<double>> AxisDetailsCharts::min() const
{
    return m_implementation->min;
}

boost::shared_ptr<corvane::PropertyAbstract<double>> AxisDetailsCharts::max() const
{
    return m_implementation->max;
}

boost::shared_ptr<corvane::PropertyAbstract<bool>> AxisDetailsCharts::useCustomGridSpacing() const
{
    return m_implementation->useCustomGridSpacing;
}

boost::shared_ptr<corvane::PropertyAbstract<double>> AxisDetailsCharts::gridSpacing() const
{
    return m_implementation->gridSpacing;
}

boost::shared_ptr<corvane::PropertyAbstract<double>> AxisDetailsCharts::boundsMin() const
{
    return nullptr;
}

boost::shared_ptr<corvane::PropertyAbstract<double>> AxisDetailsCharts::boundsMax() const
{
    return nullptr;
}

void AxisDetailsCharts::leaveUnfitCustomSpacing()
{
    const Implementation& d = *m_implementation;
    // While one end takes the other along, the range is wider than it will be in the end.
    if (!d.useCustomGridSpacing->value() || AxisRangePropertyAbstract::isAdjustingOtherEnd()) {
        return;
    }
    if (!d.gridSpacing->validator()->validate(d.gridSpacing->value()).isValid()) {
        leaveCustomSpacing();
    }
}

void AxisDetailsCharts::leaveCustomSpacing()
{
    if (!UndoStack::recordingIsSuspended()) {
        m_implementation->useCustomGridSpacing->setValue(false);
    }
}
