#include <analyzer/views/Chart3DMouse.h>
#include <analyzer/views/Scatter3DPlot.h>

#include <dataviews/platform/undo/GenericUndoCommand.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QMouseEvent>
#include <QRubberBand>
#include <QWheelEvent>

#include <vtkCommand.h>
#include <vtkIdTypeArray.h>
#include <vtkNew.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace analyzer {

namespace {

constexpr double dragDistance = 4.0; // device-independent pixels, as all of the following
constexpr double leastReach = 5.0;
constexpr double degreesPerPixel = 0.5;
constexpr double zoomPerPixel = 1.01;
constexpr double zoomPerNotch = 1.2;
constexpr double anglePerNotch = 120.0; // of QWheelEvent
constexpr int wheelRestMs = 200; ///< after which a picture with all points is painted

} // namespace

Chart3DMouse::Chart3DMouse(
    QWidget& widget,
    Chart3D& chart,
    Scatter3DPlot& plot,
    boost::shared_ptr<CameraProperty> camera,
    boost::shared_ptr<const ModeProperty> mode)
    : m_widget(&widget)
    , m_chart(&chart)
    , m_plot(&plot)
    , m_camera(std::move(camera))
    , m_mode(std::move(mode))
    , m_wheelUndoID(UndoStack::nextUndoID())
{
    m_chart->setButtonListener(this);
    widget.installEventFilter(this);
    m_wheelRest.setSingleShot(true);
    m_wheelRest.setInterval(wheelRestMs);
    connect(&m_wheelRest, &QTimer::timeout, this, &Chart3DMouse::settle);
}

Chart3DMouse::~Chart3DMouse()
{
    m_chart->setButtonListener(nullptr);
    delete m_band.data();
}

void Chart3DMouse::setEnabled(bool isEnabled)
{
    if (!isEnabled) {
        cancel();
    }
    m_isEnabled = isEnabled;
}

bool Chart3DMouse::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        if (press(*static_cast<QMouseEvent*>(event))) {
            return true;
        }
        break;
    case QEvent::MouseMove:
        if (m_gesture != Gesture::None && m_button != Qt::LeftButton) {
            drag(static_cast<QMouseEvent*>(event)->localPos());
            return true;
        }
        break;
    case QEvent::MouseButtonRelease:
        if (release(*static_cast<QMouseEvent*>(event))) {
            return true;
        }
        break;
    case QEvent::Wheel:
        wheel(*static_cast<QWheelEvent*>(event));
        return true;
    case QEvent::Hide:
        cancel();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void Chart3DMouse::buttonPressed(const vtkVector2f& place, bool withShift)
{
    if (!m_isEnabled || m_gesture != Gesture::None) {
        return;
    }
    m_button = Qt::LeftButton;
    switch (m_mode->value()) {
    case DataViewInterface::Pan:
        begin(withShift ? Gesture::Move : Gesture::Turn, inWidget(place));
        break;
    case DataViewInterface::Zoom:
        begin(Gesture::Zoom, inWidget(place));
        break;
    default:
        begin(Gesture::Select, inWidget(place));
        break;
    }
}

void Chart3DMouse::mouseMoved(const vtkVector2f& place)
{
    if (m_button == Qt::LeftButton) {
        drag(inWidget(place));
    }
}

void Chart3DMouse::buttonReleased(const vtkVector2f& place)
{
    if (m_button == Qt::LeftButton) {
        end(inWidget(place));
    }
}

bool Chart3DMouse::press(const QMouseEvent& event)
{
    // The left button comes by way of the chart, whose legends have it first.
    if (event.button() == Qt::LeftButton) {
        return false;
    }
    if (!m_isEnabled || m_gesture != Gesture::None) {
        return true;
    }
    const bool withShift = event.modifiers().testFlag(Qt::ShiftModifier);
    if (event.button() == Qt::RightButton) {
        m_button = event.button();
        begin(withShift ? Gesture::Move : Gesture::Turn, event.localPos());
    } else if (event.button() == Qt::MiddleButton) {
        m_button = event.button();
        begin(Gesture::Move, event.localPos());
    }
    return true;
}

bool Chart3DMouse::release(const QMouseEvent& event)
{
    if (event.button() == Qt::LeftButton) {
        return false;
    }
    if (m_gesture != Gesture::None && event.button() == m_button) {
        const bool isClick = !m_isDrag && m_button == Qt::RightButton;
        end(event.localPos());
        if (isClick) {
            Q_EMIT menuRequested(event.pos());
        }
    }
    return true;
}

void Chart3DMouse::wheel(const QWheelEvent& event)
{
    // Another gesture would undo it by its own beginning.
    if (!m_isEnabled || m_gesture != Gesture::None || event.angleDelta().y() == 0) {
        return;
    }
    const Chart3DCamera before = m_camera->value();
    const QPointF place = inCamera(event.position());
    setCamera(before.zoomedAt(
        place.x(), place.y(), std::pow(zoomPerNotch, event.angleDelta().y() / anglePerNotch)));
    recordUndo(before, tr("Zoom View"), m_wheelUndoID);
    m_wheelRest.start();
}

void Chart3DMouse::begin(Gesture gesture, const QPointF& place)
{
    m_gesture = gesture;
    m_isDrag = false;
    m_begin = place;
    m_before = m_camera->value();
}

void Chart3DMouse::drag(const QPointF& place)
{
    if (m_gesture == Gesture::None) {
        return;
    }
    m_isDrag = m_isDrag || (place - m_begin).manhattanLength() >= dragDistance;
    if (!m_isDrag) {
        return;
    }
    const QPointF way = place - m_begin;
    switch (m_gesture) {
    case Gesture::Select: {
        if (!m_band && m_widget) {
            m_band = new QRubberBand(QRubberBand::Rectangle, m_widget);
        }
        if (m_band) {
            m_band->setGeometry(QRectF(m_begin, place).normalized().toAlignedRect());
            m_band->show();
        }
        break;
    }
    case Gesture::Turn:
        // What is in front follows the mouse.
        setCamera(m_before.turned(-way.x() * degreesPerPixel, way.y() * degreesPerPixel));
        break;
    case Gesture::Move:
        setCamera(m_before.moved(way.x() / side(), -way.y() / side()));
        break;
    case Gesture::Zoom: {
        const QPointF fixed = inCamera(m_begin);
        setCamera(m_before.zoomedAt(fixed.x(), fixed.y(), std::pow(zoomPerPixel, -way.y())));
        break;
    }
    case Gesture::None:
        break;
    }
}

void Chart3DMouse::end(const QPointF& place)
{
    if (m_gesture == Gesture::None) {
        return;
    }
    drag(place);
    // Whatever follows may begin another one.
    const Gesture gesture = std::exchange(m_gesture, Gesture::None);
    m_button = Qt::NoButton;
    if (m_band) {
        m_band->hide();
    }
    switch (gesture) {
    case Gesture::Select:
        pick(place);
        break;
    case Gesture::Turn:
        recordUndo(m_before, tr("Turn View"), -1);
        break;
    case Gesture::Move:
        recordUndo(m_before, tr("Move View"), -1);
        break;
    case Gesture::Zoom:
        recordUndo(m_before, tr("Zoom View"), -1);
        break;
    case Gesture::None:
        break;
    }
    settle();
}

void Chart3DMouse::cancel()
{
    if (std::exchange(m_gesture, Gesture::None) != Gesture::None) {
        m_button = Qt::NoButton;
        m_camera->setValue(m_before);
    }
    if (m_band) {
        m_band->hide();
    }
    settle();
}

void Chart3DMouse::pick(const QPointF& place)
{
    if (!m_plot->GetVisible()) {
        return;
    }
    vtkSmartPointer<vtkIdTypeArray> rows;
    if (m_isDrag) {
        const vtkVector2f first = inScene(m_begin);
        const vtkVector2f second = inScene(place);
        rows = m_plot->points().rowsWithin(vtkRectf(
            std::min(first[0], second[0]),
            std::min(first[1], second[1]),
            std::abs(second[0] - first[0]),
            std::abs(second[1] - first[1])));
    } else {
        rows = vtkSmartPointer<vtkIdTypeArray>::New();
        const vtkVector2f point = inScene(place);
        const auto reach = static_cast<float>(leastReach * m_widget->devicePixelRatioF());
        const vtkIdType row = m_plot->points().nearestRow(
            point[0], point[1], std::max(reach, m_plot->GetMarkerSize() / 2.0F));
        if (row >= 0) {
            rows->InsertNextValue(row);
        }
    }
    m_plot->SetSelection(rows);
    m_chart->InvokeEvent(vtkCommand::SelectionChangedEvent);
}

void Chart3DMouse::setCamera(const Chart3DCamera& camera)
{
    if (camera != m_camera->value()) {
        m_plot->setCoarse(true);
        m_camera->setValue(camera);
    }
}

void Chart3DMouse::recordUndo(const Chart3DCamera& before, const QString& text, int id)
{
    const Chart3DCamera after = m_camera->value();
    if (after == before) {
        return;
    }
    const boost::shared_ptr<CameraProperty> camera = m_camera;
    UndoStack::push(std::make_unique<GenericUndoCommand>(
        [camera, after] { camera->setValue(after); },
        [camera, before] { camera->setValue(before); },
        m_deleteSignaler,
        text,
        id));
}

void Chart3DMouse::settle()
{
    m_wheelRest.stop();
    m_plot->setCoarse(false);
    Q_EMIT paintingNeeded();
}

QPointF Chart3DMouse::inWidget(const vtkVector2f& place) const
{
    const double ratio = m_widget->devicePixelRatioF();
    return {place[0] / ratio, m_widget->height() - place[1] / ratio};
}

vtkVector2f Chart3DMouse::inScene(const QPointF& place) const
{
    const double ratio = m_widget->devicePixelRatioF();
    return {
        static_cast<float>(place.x() * ratio),
        static_cast<float>((m_widget->height() - place.y()) * ratio)};
}

QPointF Chart3DMouse::inCamera(const QPointF& place) const
{
    const vtkVector2f point = inScene(place);
    const Chart3DProjection& projection = m_plot->projection();
    const vtkRectf& area = projection.area();
    return {
        (point[0] - area.GetX() - area.GetWidth() / 2.0) / projection.side(),
        (point[1] - area.GetY() - area.GetHeight() / 2.0) / projection.side()};
}

double Chart3DMouse::side() const
{
    return m_plot->projection().side() / m_widget->devicePixelRatioF();
}

} // namespace analyzer
