#include <analyzer/export/PainterContextDevice2D.h>
#include <analyzer/export/chartPicture.h>

#include <QLinearGradient>
#include <QPainter>
#include <QVTKOpenGLNativeWidget.h>

#include <vtkAbstractContextItem.h>
#include <vtkCommand.h>
#include <vtkContext2D.h>
#include <vtkContextActor.h>
#include <vtkContextScene.h>
#include <vtkLookupTable.h>
#include <vtkNew.h>
#include <vtkPropCollection.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkRendererCollection.h>
#include <vtkScalarBarActor.h>
#include <vtkScalarBarActorInternal.h>
#include <vtkScalarBarRepresentation.h>
#include <vtkTextActor.h>
#include <vtkTextProperty.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

namespace analyzer {

namespace {

template <class Function>
void forEachRenderer(vtkRenderWindow& window, Function function)
{
    vtkCollectionSimpleIterator place = nullptr;
    vtkRendererCollection& renderers = *window.GetRenderers();
    renderers.InitTraversal(place);
    while (vtkRenderer* renderer = renderers.GetNextRenderer(place)) {
        function(*renderer);
    }
}

template <class Function>
void forEachVisibleProp(vtkRenderer& renderer, Function function)
{
    vtkCollectionSimpleIterator place = nullptr;
    vtkPropCollection& props = *renderer.GetViewProps();
    props.InitTraversal(place);
    while (vtkProp* prop = props.GetNextProp(place)) {
        if (prop->GetVisibility() != 0) {
            function(*prop);
        }
    }
}

/// Gives a look at how a color bar has laid itself out.
class ColorBarLayout : public vtkScalarBarActor
{
public:
    static void rebuild(vtkScalarBarActor& bar, vtkViewport& viewport)
    {
        constexpr auto function = &ColorBarLayout::RebuildLayout;
        (bar.*function)(&viewport);
    }

    static vtkScalarBarActorInternal& parts(vtkScalarBarActor& bar)
    {
        constexpr auto member = &ColorBarLayout::P;
        return *(bar.*member);
    }

    static vtkTextActor& title(vtkScalarBarActor& bar)
    {
        constexpr auto member = &ColorBarLayout::TitleActor;
        return *(bar.*member);
    }
};

std::vector<QColor> colorsOf(vtkScalarsToColors& table, int most)
{
    const auto toColor = [](const double* rgb) {
        QColor color;
        color.setRgbF(rgb[0], rgb[1], rgb[2]);
        return color;
    };
    std::vector<QColor> colors;
    if (auto* indexed = vtkLookupTable::SafeDownCast(&table)) {
        for (vtkIdType i = 0; i < indexed->GetNumberOfTableValues(); ++i) {
            colors.push_back(toColor(indexed->GetTableValue(i)));
        }
        return colors;
    }
    const double* range = table.GetRange();
    std::array<double, 3> rgb{};
    for (int i = 0; i < most; ++i) {
        table.GetColor(range[0] + (range[1] - range[0]) * (i + 0.5) / most, rgb.data());
        colors.push_back(toColor(rgb.data()));
    }
    return colors;
}

/// The colors from the left or the bottom to the opposite end of \p box, which is in the painter's units.
void paintColors(
    QPainter& painter, const QRectF& box, const std::vector<QColor>& colors, bool isVertical)
{
    if (colors.empty() || box.isEmpty()) {
        return;
    }
    const auto count = static_cast<double>(colors.size());
    painter.setPen(Qt::NoPen);
    constexpr std::size_t mostStripes = 32;
    if (colors.size() > mostStripes) {
        QLinearGradient gradient(
            isVertical ? box.bottomLeft() : box.topLeft(),
            isVertical ? box.topLeft() : box.topRight());
        for (std::size_t i = 0; i < colors.size(); ++i) {
            gradient.setColorAt((static_cast<double>(i) + 0.5) / count, colors[i]);
        }
        painter.fillRect(box, gradient);
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing, false);
    for (std::size_t i = 0; i < colors.size(); ++i) {
        const double begin = static_cast<double>(i) / count;
        painter.fillRect(
            isVertical
                ? QRectF(
                    box.left(),
                    box.bottom() - box.height() * (begin + 1.0 / count),
                    box.width(),
                    box.height() / count)
                : QRectF(
                    box.left() + box.width() * begin, box.top(), box.width() / count, box.height()),
            colors[i]);
    }
    painter.setRenderHint(QPainter::Antialiasing);
}

/// The place of \p text in pixels from the lower left corner of \p viewport.
QRectF boxOf(vtkTextActor& text, vtkViewport& viewport)
{
    double box[4] = {0.0, 0.0, 0.0, 0.0};
    text.GetBoundingBox(&viewport, box);
    const int* place = text.GetPositionCoordinate()->GetComputedViewportValue(&viewport);
    return {place[0] + box[0], place[1] + box[2], box[1] - box[0] + 1.0, box[3] - box[2] + 1.0};
}

void paintColorBar(
    PainterContextDevice2D& device,
    vtkScalarBarRepresentation& representation,
    vtkRenderer& renderer)
{
    vtkScalarBarActor* bar = representation.GetScalarBarActor();
    if (bar == nullptr || bar->GetLookupTable() == nullptr) {
        return;
    }
    representation.BuildRepresentation();
    bar->GetLookupTable()->Build();
    ColorBarLayout::rebuild(*bar, renderer);
    vtkScalarBarActorInternal& parts = ColorBarLayout::parts(*bar);
    const int* origin = bar->GetPositionCoordinate()->GetComputedViewportValue(&renderer);
    const bool isVertical = bar->GetOrientation() == VTK_ORIENT_VERTICAL;
    // The sizes of a box are its thickness and its length.
    const int across = isVertical ? 0 : 1;
    const QSizeF size(parts.ScalarBarBox.Size[across], parts.ScalarBarBox.Size[1 - across]);
    const QPointF corner = device.toPainter(
        origin[0] + parts.ScalarBarBox.Posn[0],
        origin[1] + parts.ScalarBarBox.Posn[1] + size.height());
    paintColors(
        device.painter(),
        QRectF(corner, size),
        colorsOf(*bar->GetLookupTable(), bar->GetMaximumNumberOfColors()),
        isVertical);

    const auto paintText = [&](vtkTextActor& text) {
        if (text.GetVisibility() != 0 && text.GetInput() != nullptr && *text.GetInput() != '\0') {
            device.drawTextInBox(text.GetInput(), *text.GetTextProperty(), boxOf(text, renderer));
        }
    };
    if (bar->GetTitle() != nullptr && *bar->GetTitle() != '\0') {
        paintText(ColorBarLayout::title(*bar));
    }
    if (bar->GetDrawTickLabels() != 0) {
        for (const vtkSmartPointer<vtkTextActor>& label : parts.TextActors) {
            paintText(*label);
        }
    }
}

void paintRenderer(
    PainterContextDevice2D& device, vtkContext2D& context, vtkRenderer& renderer, const QSize& size)
{
    const double* background = renderer.GetBackground();
    QColor color;
    color.setRgbF(background[0], background[1], background[2]);
    device.painter().fillRect(QRectF(QPointF(0.0, 0.0), QSizeF(size)), color);

    forEachVisibleProp(renderer, [&](vtkProp& prop) {
        if (auto* actor = vtkContextActor::SafeDownCast(&prop)) {
            vtkContextScene& scene = *actor->GetScene();
            scene.SetGeometry(size.width(), size.height());
            scene.Paint(&context);
            // What is on the screen was laid out for another painter.
            scene.SetDirty(true);
        } else if (auto* bar = vtkScalarBarRepresentation::SafeDownCast(&prop)) {
            paintColorBar(device, *bar, renderer);
        }
    });
}

} // namespace

bool isPaintableChart(QVTKOpenGLNativeWidget& widget)
{
    bool hasScene = false;
    bool hasOthers = false;
    forEachRenderer(*widget.renderWindow(), [&](vtkRenderer& renderer) {
        forEachVisibleProp(renderer, [&](vtkProp& prop) {
            if (auto* actor = vtkContextActor::SafeDownCast(&prop)) {
                hasScene = true;
                for (unsigned i = 0; i < actor->GetScene()->GetNumberOfItems(); ++i) {
                    hasOthers = hasOthers || actor->GetScene()->GetItem(i)->IsA("vtkChartXYZ") != 0;
                }
            } else {
                hasOthers = hasOthers || vtkScalarBarRepresentation::SafeDownCast(&prop) == nullptr;
            }
        });
    });
    return hasScene && !hasOthers;
}

void paintChart(QVTKOpenGLNativeWidget& widget, QPainter& painter, double scale, bool isVector)
{
    vtkRenderWindow& window = *widget.renderWindow();
    const double ratio = widget.devicePixelRatioF();
    const QSize size(
        static_cast<int>(std::lround(widget.width() * ratio)),
        static_cast<int>(std::lround(widget.height() * ratio)));
    // Widgets that were never shown have not told it yet.
    if (window.GetSize()[0] != size.width() || window.GetSize()[1] != size.height()) {
        window.SetSize(size.width(), size.height());
    }

    painter.save();
    painter.scale(1.0 / ratio, 1.0 / ratio);
    const vtkNew<PainterContextDevice2D> device;
    const vtkNew<vtkContext2D> context;
    device->startPainting(painter, {size, window.GetDPI(), scale / ratio, isVector});
    context->Begin(device);
    // Views lay out what stands beside the points when they hear that a picture begins.
    window.InvokeEvent(vtkCommand::StartEvent);
    forEachRenderer(
        window, [&](vtkRenderer& renderer) { paintRenderer(*device, *context, renderer, size); });
    window.InvokeEvent(vtkCommand::EndEvent);
    context->End();
    device->finishPainting();
    painter.restore();
}

} // namespace analyzer
