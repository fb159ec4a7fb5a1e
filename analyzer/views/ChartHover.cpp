#include <analyzer/views/AxisMapping.h>
#include <analyzer/views/CaseToolTip.h>
#include <analyzer/views/ChartHover.h>
#include <analyzer/views/HoveredCase.h>

#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/PointSearchInterface.h>

#include <dataviews/platform/vtk/vtkCvCommandProxy.h>

#include <QEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QVTKOpenGLNativeWidget.h>

#include <vtkAxis.h>
#include <vtkCommand.h>
#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkPlotPoints.h>
#include <vtkRenderWindow.h>
#include <vtkTable.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace analyzer {

namespace {

constexpr double leastReach = 5.0; // device-independent pixels, as all of the following
constexpr double ringGap = 2.5; ///< between what the mouse reaches and the ring
constexpr double outerWidth = 4.0;
constexpr double innerWidth = 2.0;

/// A ring in two tones, dark between two light lines: to be seen on any background and around points of any color.
class HoverMark : public QWidget
{
public:
    explicit HoverMark(QWidget& parent)
        : QWidget(&parent)
    {
        setObjectName(QStringLiteral("HoverMark"));
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setAttribute(Qt::WA_NoSystemBackground);
        hide();
    }

    /// Shows a ring with \p radius around \p center, in the parent's coordinates.
    void showAround(const QPointF& center, double radius)
    {
        // No larger than the ring: what lies under the widget is composed again when it moves.
        const double reach = radius + outerWidth / 2.0 + 1.0;
        const QRect place = QRectF(center - QPointF(reach, reach), QSizeF(2.0 * reach, 2.0 * reach))
                                .toAlignedRect();
        const QPointF within = center - place.topLeft();
        if (within != m_center || radius != m_radius) {
            m_center = within;
            m_radius = radius;
            update();
        }
        setGeometry(place);
        show();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(Qt::white, outerWidth));
        painter.drawEllipse(m_center, m_radius, m_radius);
        painter.setPen(QPen(Qt::black, innerWidth));
        painter.drawEllipse(m_center, m_radius, m_radius);
    }

private:
    QPointF m_center;
    double m_radius = 0.0;
};

/// How near the values along one axis are to the mouse.
class Nearness
{
public:
    /// \p pixel is that of the mouse in the scene, \p reach is in device pixels.
    Nearness(vtkAxis& axis, int coordinate, double pixel, double reach)
        : m_pixelsPerUnit(
            (axis.GetPoint2()[coordinate] - axis.GetPoint1()[coordinate])
            / (axis.GetMaximum() - axis.GetMinimum()))
        , m_center(AxisMapping(axis, coordinate).toData(pixel))
        , m_reach(std::abs(reach / m_pixelsPerUnit))
        , m_low(std::min(axis.GetMinimum(), axis.GetMaximum()))
        , m_high(std::max(axis.GetMinimum(), axis.GetMaximum()))
    {}

    /// Not for NaN. One comparison, and nearly always false: what a processor expects right.
    [[nodiscard]] bool isWithinReach(double value) const
    {
        return std::abs(value - m_center) <= m_reach;
    }

    /// A point outside of the axes is not drawn.
    [[nodiscard]] bool isWithinAxis(double value) const
    {
        return value >= m_low && value <= m_high;
    }

    /// In device pixels.
    [[nodiscard]] double distance(double value) const
    {
        return (value - m_center) * m_pixelsPerUnit;
    }

private:
    double m_pixelsPerUnit;
    double m_center;
    double m_reach;
    double m_low;
    double m_high;
};

/// Calls \p function with the values of a column that ChartHover::Plot allows.
template <class Function>
void withValues(vtkDataArray& column, Function function)
{
    if (auto* reals = vtkDoubleArray::SafeDownCast(&column)) {
        function(static_cast<const double*>(reals->GetPointer(0)));
    } else {
        function(static_cast<const int*>(vtkIntArray::SafeDownCast(&column)->GetPointer(0)));
    }
}

struct NearestRow
{
    double squaredDistance; ///< rows that are farther do not count
    vtkIdType row = -1;
};

/// Looks at \p row, if the mouse reaches it. Of rows at the same distance the last one counts, which is drawn over the
/// others.
template <class X, class Y>
void consider(
    vtkIdType row,
    const X* x,
    const Y* y,
    const Nearness& nearX,
    const Nearness& nearY,
    NearestRow& nearest)
{
    const auto valueX = static_cast<double>(x[row]);
    if (!nearX.isWithinReach(valueX)) {
        return;
    }
    const auto valueY = static_cast<double>(y[row]);
    if (!nearY.isWithinReach(valueY) || !nearX.isWithinAxis(valueX)
        || !nearY.isWithinAxis(valueY)) {
        return;
    }
    const double dx = nearX.distance(valueX);
    const double dy = nearY.distance(valueY);
    const double squaredDistance = dx * dx + dy * dy;
    if (squaredDistance <= nearest.squaredDistance) {
        nearest.squaredDistance = squaredDistance;
        nearest.row = row;
    }
}

bool isAllowed(vtkDataArray* column)
{
    return column != nullptr && column->GetNumberOfComponents() == 1
        && (vtkDoubleArray::SafeDownCast(column) != nullptr
            || vtkIntArray::SafeDownCast(column) != nullptr);
}

bool hasExtent(vtkAxis& axis, int coordinate)
{
    const double units = axis.GetMaximum() - axis.GetMinimum();
    return std::isfinite(units) && units != 0.0
        && axis.GetPoint1()[coordinate] != axis.GetPoint2()[coordinate];
}

} // namespace

ChartHover::ChartHover(
    QVTKOpenGLNativeWidget& widget,
    ChartXY& chart,
    boost::shared_ptr<HoveredCase> hovered,
    boost::shared_ptr<AsyncImageCache> images)
    : m_widget(&widget)
    , m_chart(&chart)
    , m_window(widget.renderWindow())
    , m_hovered(std::move(hovered))
    , m_images(std::move(images))
    , m_mark(new HoverMark(widget))
{
    Q_ASSERT_X(m_window != nullptr, "ChartHover", "the widget has no render window");
    chart.SetTooltip(nullptr); // the chart's own says less, and is part of the picture
    widget.setMouseTracking(true);
    widget.installEventFilter(this);
    m_later.setSingleShot(true);
    m_later.setInterval(0);
    connect(&m_later, &QTimer::timeout, this, &ChartHover::catchUp);
    m_endObserver = vtkCvCommandProxy::New([this] {
        // Later: this is in the middle of painting.
        m_hasNewPicture = true;
        m_later.start();
    });
    m_window->AddObserver(vtkCommand::EndEvent, m_endObserver);
    m_connections.add(
        m_hovered->signalHoveredCaseChanged.connect([this] { hoveredCaseChanged(); }));
}

ChartHover::~ChartHover()
{
    m_window->RemoveObserver(m_endObserver);
    m_connections.clear();
    leave();
    // Both may have gone with the chart's widget.
    delete m_toolTip.data();
    delete m_mark.data();
}

std::optional<ChartHover::Plot> ChartHover::plotOf(
    vtkTable& table, const std::string& x, const std::string& y)
{
    Plot plot{
        vtkIntArray::SafeDownCast(table.GetColumn(0)),
        vtkDataArray::SafeDownCast(table.GetColumnByName(x.c_str())),
        vtkDataArray::SafeDownCast(table.GetColumnByName(y.c_str()))};
    if (plot.caseIDs == nullptr || !isAllowed(plot.x) || !isAllowed(plot.y)) {
        return std::nullopt;
    }
    return plot;
}

void ChartHover::setPlots(std::vector<Plot> plots)
{
    for (const Plot& plot : plots) {
        Q_ASSERT_X(
            isAllowed(plot.x) && isAllowed(plot.y)
                && plot.x->GetNumberOfTuples() == plot.caseIDs->GetNumberOfTuples()
                && plot.y->GetNumberOfTuples() == plot.caseIDs->GetNumberOfTuples(),
            "ChartHover::setPlots",
            "the columns do not fit");
    }
    m_plots = std::move(plots);
    const std::optional<unsigned long long> caseID = m_hovered->caseID();
    m_point = caseID ? pointOf(*caseID) : std::nullopt;
    placeMark();
}

void ChartHover::setToolTipVariables(std::vector<WeakPtr<Variable>> variables)
{
    m_variables = std::move(variables);
}

void ChartHover::setMarkerRadius(double radius)
{
    m_markerRadius = radius;
    placeMark();
}

CaseToolTip* ChartHover::toolTip() const
{
    return m_toolTip;
}

bool ChartHover::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseMove: {
        const auto* move = static_cast<QMouseEvent*>(event);
        if (move->buttons() != Qt::NoButton) {
            leave();
            break;
        }
        m_mouse = move->pos();
        m_hasMouseMoved = true;
        m_later.start();
        break;
    }
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Leave:
    case QEvent::Hide:
        leave();
        break;
    case QEvent::WindowDeactivate:
        if (m_toolTip) {
            m_toolTip->leave();
        }
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void ChartHover::catchUp()
{
    const bool looks = m_mouse && (m_hasMouseMoved || m_hasNewPicture);
    m_hasMouseMoved = false;
    m_hasNewPicture = false;
    if (looks) {
        look();
    } else {
        placeMark();
    }
}

void ChartHover::look()
{
    const std::optional<Point> point = pointAt(*m_mouse);
    if (!point) {
        leaveCase();
        return;
    }
    const auto caseID =
        static_cast<unsigned long long>(m_plots[point->plot].caseIDs->GetValue(point->row));
    {
        const QScopedValueRollback<bool> setting(m_isSettingCase, true);
        m_hovered->setCaseID(caseID);
    }
    m_isOurs = true;
    m_point = point;
    placeMark();
    showToolTip(caseID);
}

void ChartHover::leave()
{
    m_mouse.reset();
    m_hasMouseMoved = false;
    leaveCase();
}

void ChartHover::leaveCase()
{
    if (m_toolTip) {
        m_toolTip->leave();
    }
    if (std::exchange(m_isOurs, false)) {
        m_hovered->setCaseID(std::nullopt);
        // Also when nobody listens to that any more.
        m_point.reset();
    }
    placeMark();
}

void ChartHover::hoveredCaseChanged()
{
    if (m_isSettingCase) {
        return;
    }
    m_isOurs = false;
    if (m_toolTip) {
        m_toolTip->leave();
    }
    const std::optional<unsigned long long> caseID = m_hovered->caseID();
    m_point = caseID ? pointOf(*caseID) : std::nullopt;
    placeMark();
}

void ChartHover::placeMark()
{
    if (!m_widget || !m_mark) {
        return;
    }
    if (!m_point || !hasAxes()) {
        m_mark->hide();
        return;
    }
    const Plot& plot = m_plots[m_point->plot];
    const AxisMapping bottom(*m_chart->GetAxis(vtkAxis::BOTTOM), 0);
    const AxisMapping left(*m_chart->GetAxis(vtkAxis::LEFT), 1);
    const double x = bottom.toPixel(plot.x->GetComponent(m_point->row, 0));
    const double y = left.toPixel(plot.y->GetComponent(m_point->row, 0));
    if (!bottom.contains(x) || !left.contains(y)) {
        m_mark->hide();
        return;
    }
    const double ratio = m_widget->devicePixelRatioF();
    static_cast<HoverMark*>(m_mark.data())
        ->showAround(
            QPointF(x / ratio, m_widget->height() - y / ratio),
            std::max(leastReach, m_markerRadius) + ringGap);
}

void ChartHover::showToolTip(unsigned long long caseID)
{
    if (!m_toolTip) {
        m_toolTip = new CaseToolTip(m_images, m_widget);
    }
    m_toolTip->showCase(caseID, m_variables, m_widget->mapToGlobal(*m_mouse));
}

bool ChartHover::hasAxes() const
{
    return hasExtent(*m_chart->GetAxis(vtkAxis::BOTTOM), 0)
        && hasExtent(*m_chart->GetAxis(vtkAxis::LEFT), 1);
}

std::optional<ChartHover::Point> ChartHover::pointAt(const QPoint& place) const
{
    if (!m_widget || !hasAxes()) {
        return std::nullopt;
    }
    vtkAxis& bottom = *m_chart->GetAxis(vtkAxis::BOTTOM);
    vtkAxis& left = *m_chart->GetAxis(vtkAxis::LEFT);
    // The middle of the pixel, in the scene, which goes up.
    const double ratio = m_widget->devicePixelRatioF();
    const double x = (place.x() + 0.5) * ratio;
    const double y = (m_widget->height() - place.y() - 0.5) * ratio;
    if (!AxisMapping(bottom, 0).contains(x) || !AxisMapping(left, 1).contains(y)) {
        return std::nullopt;
    }
    const double reach = std::max(leastReach, m_markerRadius) * ratio;
    const Nearness nearX(bottom, 0, x, reach);
    const Nearness nearY(left, 1, y, reach);
    NearestRow nearest{reach * reach};
    std::optional<Point> found;
    for (std::size_t i = 0; i < m_plots.size(); ++i) {
        const Plot& plot = m_plots[i];
        nearest.row = -1;
        const std::optional<std::vector<vtkIdType>> rows = rowsAround(plot, x, y, reach);
        withValues(*plot.x, [&](const auto* valuesX) {
            withValues(*plot.y, [&](const auto* valuesY) {
                if (rows) {
                    for (const vtkIdType row : *rows) {
                        consider(row, valuesX, valuesY, nearX, nearY, nearest);
                    }
                    return;
                }
                for (vtkIdType row = 0; row < plot.caseIDs->GetNumberOfTuples(); ++row) {
                    consider(row, valuesX, valuesY, nearX, nearY, nearest);
                }
            });
        });
        if (nearest.row >= 0) {
            found = Point{i, nearest.row};
        }
    }
    return found;
}

std::optional<std::vector<vtkIdType>> ChartHover::rowsAround(
    const Plot& plot, double x, double y, double reach) const
{
    auto* const search = dynamic_cast<PointSearchInterface*>(plot.drawing.GetPointer());
    if (search == nullptr) {
        return std::nullopt;
    }
    // A pixel more, for the plot knows its points less exactly.
    const double margin = reach + 1.0;
    const AxisMapping bottom(*m_chart->GetAxis(vtkAxis::BOTTOM), 0);
    const AxisMapping left(*m_chart->GetAxis(vtkAxis::LEFT), 1);
    const vtkRectd shiftScale = plot.drawing->GetShiftScale();
    const auto alongX = [&](double pixel) {
        return static_cast<float>(
            (bottom.toData(pixel) + shiftScale.GetX()) * shiftScale.GetWidth());
    };
    const auto alongY = [&](double pixel) {
        return static_cast<float>(
            (left.toData(pixel) + shiftScale.GetY()) * shiftScale.GetHeight());
    };
    const auto [minX, maxX] = std::minmax({alongX(x - margin), alongX(x + margin)});
    const auto [minY, maxY] = std::minmax({alongY(y - margin), alongY(y + margin)});
    return search->rowsIn({minX, minY, maxX, maxY});
}

std::optional<ChartHover::Point> ChartHover::pointOf(unsigned long long caseID) const
{
    const int id = static_cast<int>(caseID);
    if (static_cast<unsigned long long>(id) != caseID) {
        return std::nullopt; // no such ID fits into a column
    }
    for (std::size_t i = 0; i < m_plots.size(); ++i) {
        const int* begin = m_plots[i].caseIDs->GetPointer(0);
        const int* end = begin + m_plots[i].caseIDs->GetNumberOfTuples();
        const int* place = std::find(begin, end, id);
        if (place != end) {
            return Point{i, place - begin};
        }
    }
    return std::nullopt;
}

} // namespace analyzer
