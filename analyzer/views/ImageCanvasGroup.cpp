#include <analyzer/views/ImageCanvasGroup.h>

#include <dataviews/common/serializers/GenericSerializer.h>
#include <dataviews/common/views/Property.h>

#include <dataviews/platform/property/ValidatorInterface.h>
#include <dataviews/platform/serialize/Serializer.h>
#include <dataviews/platform/undo/GenericUndoCommand.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QCoreApplication>

#include <boost/lexical_cast.hpp>
#include <boost/make_shared.hpp>

#include <memory>
#include <string>
#include <utility>

namespace analyzer {

namespace {

using ZoomPtr = boost::shared_ptr<corvane::PropertyAbstract<ImageCanvasZoom>>;

QString tr(const char* text)
{
    return QCoreApplication::translate("ImageCanvasGroup", text);
}

class ZoomValidator : public corvane::ValidatorInterface<ImageCanvasZoom>
{
public:
    [[nodiscard]] corvane::ValidationResult validate(const ImageCanvasZoom& zoom) const override
    {
        // Far beyond what fits the largest picture into the smallest window and the other way round.
        constexpr double smallest = 1e-8;
        constexpr double largest = 1e5;
        if (!isWithin(zoom.scale, smallest, largest)) {
            return invalid("scale", zoom.scale, "0.00000001 to 100000");
        }
        if (!isWithin(zoom.centerX, 0.0, 1.0)) {
            return invalid("center", zoom.centerX, "0 to 1");
        }
        if (!isWithin(zoom.centerY, 0.0, 1.0)) {
            return invalid("center", zoom.centerY, "0 to 1");
        }
        return corvane::ValidationResult();
    }

private:
    static bool isWithin(double value, double smallest, double largest)
    {
        return value >= smallest && value <= largest; // false for NaN
    }

    static corvane::ValidationResult invalid(const char* what, double value, const char* range)
    {
        return corvane::ValidationResult(
            "The " + std::string(what) + " of a picture must be from " + range + ", not "
            + boost::lexical_cast<std::string>(value) + ".");
    }
};

/// A part of the zoom as a property of its own, with an undo step for every change.
class FitProperty : public corvane::PropertyAbstract<bool>
{
public:
    explicit FitProperty(ZoomPtr zoom)
        : m_zoom(std::move(zoom))
        , m_fits(m_zoom->value().fits)
        , m_connection(m_zoom->valueChanged.connect([this](const ImageCanvasZoom& value) {
            if (std::exchange(m_fits, value.fits) != value.fits) {
                PropertyAbstract<bool>::emitValueChangedSignal(value.fits);
            }
        }))
    {}

protected:
    void storeValue(const bool& fits) override
    {
        const ImageCanvasZoom before = m_zoom->value();
        ImageCanvasZoom after = before;
        if (!fits) {
            after = {};
        }
        after.fits = fits;
        UndoStack::push(std::make_unique<GenericUndoCommand>(
            [zoom = m_zoom, after] { zoom->setValue(after); },
            [zoom = m_zoom, before] { zoom->setValue(before); },
            m_deleteSignaler,
            QStringLiteral("Change Fit To Window")));
    }

    [[nodiscard]] bool storedValue() const override { return m_zoom->value().fits; }

    /// Nothing: the listener of the zoom has told already.
    void emitValueChangedSignal(const bool& /*fits*/) const override {}

private:
    ZoomPtr m_zoom;
    bool m_fits;
    boost::signals2::scoped_connection m_connection;
    DeleteSignaler m_deleteSignaler;
};

template <class T>
boost::shared_ptr<SerializerInterface> partSerializer(
    const char* name, const ZoomPtr& zoom, T ImageCanvasZoom::*part)
{
    return boost::make_shared<GenericSerializer<T>>(
        name,
        [zoom, part] { return zoom->value().*part; },
        [zoom, part](const T& value) {
            ImageCanvasZoom changed = zoom->value();
            changed.*part = value;
            zoom->setValue(changed);
        });
}

} // namespace

ImageCanvasGroup::ImageCanvasGroup()
    : m_zoom(boost::make_shared<corvane::Property<ImageCanvasZoom>>(
        ImageCanvasZoom(), boost::make_shared<ZoomValidator>()))
    , m_fitToWindow(boost::make_shared<FitProperty>(m_zoom))
    , m_zoomUndoID(UndoStack::nextUndoID())
    , m_panUndoID(UndoStack::nextUndoID())
    , m_zoomConnection(m_zoom->valueChanged.connect([this](const ImageCanvasZoom&) { showZoom(); }))
{}

ImageCanvasGroup::~ImageCanvasGroup() = default;

void ImageCanvasGroup::add(ImageCanvas& canvas)
{
    canvas.setZoom(m_zoom->value());
    m_canvases.emplace_back(&canvas);
    QObject::connect(
        &canvas,
        &ImageCanvas::zoomChosen,
        &m_context,
        [this, &canvas](ImageCanvas::Gesture gesture) { chosen(canvas, gesture); });
}

void ImageCanvasGroup::showActualSize()
{
    const ImageCanvasZoom before = m_zoom->value();
    ImageCanvasZoom after = before.fits ? ImageCanvasZoom() : before;
    after.fits = false;
    after.scale = 1.0;
    if (after != before) {
        m_zoom->setValue(after);
        record(before, tr("Change Zoom"), m_zoomUndoID);
    }
}

void ImageCanvasGroup::keepIn(SerializerInterface& parent) const
{
    const auto element = boost::make_shared<Serializer>("Zoom");
    element->addSubElement(partSerializer("Fit", m_zoom, &ImageCanvasZoom::fits));
    element->addSubElement(partSerializer("Scale", m_zoom, &ImageCanvasZoom::scale));
    element->addSubElement(partSerializer("CenterX", m_zoom, &ImageCanvasZoom::centerX));
    element->addSubElement(partSerializer("CenterY", m_zoom, &ImageCanvasZoom::centerY));
    parent.addSubElement(element);
}

void ImageCanvasGroup::chosen(const ImageCanvas& canvas, ImageCanvas::Gesture gesture)
{
    using Gesture = ImageCanvas::Gesture;
    const ImageCanvasZoom before = m_zoom->value();
    if (gesture == Gesture::DragEnd) {
        if (m_beforeDrag) {
            record(*std::exchange(m_beforeDrag, std::nullopt), tr("Move Image"), -1);
        }
        return;
    }
    m_zoom->setValue(canvas.zoom());
    if (gesture == Gesture::Drag) {
        m_beforeDrag = m_beforeDrag.value_or(before);
    } else if (gesture == Gesture::PanStep) {
        record(before, tr("Move Image"), m_panUndoID);
    } else {
        record(before, tr("Change Zoom"), m_zoomUndoID);
    }
}

/// Puts the way from \p before to the present zoom on the undo stack.
void ImageCanvasGroup::record(const ImageCanvasZoom& before, const QString& text, int undoID) const
{
    const ImageCanvasZoom after = m_zoom->value();
    if (after == before) {
        return; // dragged there and back
    }
    UndoStack::push(std::make_unique<GenericUndoCommand>(
        [zoom = m_zoom, after] { zoom->setValue(after); },
        [zoom = m_zoom, before] { zoom->setValue(before); },
        m_deleteSignaler,
        text,
        undoID));
}

void ImageCanvasGroup::showZoom()
{
    const ImageCanvasZoom zoom = m_zoom->value();
    for (const QPointer<ImageCanvas>& canvas : m_canvases) {
        if (canvas) {
            canvas->setZoom(zoom);
        }
    }
}

} // namespace analyzer
