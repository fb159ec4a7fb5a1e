#pragma once

#include <QImage>
#include <QPaintDevice>
#include <QRectF>
#include <QSize>

#include <functional>
#include <memory>
#include <vector>

class QPainter;
class QTransform;

namespace analyzer {

/// A drawing that is painted later, perhaps on another thread.
///
/// Made with a QPainter, which brings pens, brushes, fonts, transformations, render hints and the opacity; clips are not
/// kept.
class PaintRecording : public QPaintDevice
{
public:
    /// Called now and then with the share of the work that is done, from 0 to 1; whether to go on.
    using Progress = std::function<bool(double)>;

    /// Makes an image; null if the progress said no.
    using ImageMaker = std::function<QImage(const Progress&)>;

    /// Of \p size units with \p dpi of them in an inch.
    PaintRecording(const QSize& size, int dpi);
    PaintRecording(const PaintRecording&) = delete;
    PaintRecording& operator=(const PaintRecording&) = delete;
    ~PaintRecording() override;

    /// Draws what \p make gives into \p place with \p painter, when the recording that it paints into is replayed. With
    /// any other device that is at once.
    static void drawLater(QPainter& painter, const QRectF& place, ImageMaker make);

    /// Paints everything with \p painter, in its present units; false if \p progress ended it. May be called any number of
    /// times, while nothing is recorded.
    bool replay(QPainter& painter, const Progress& progress) const;

    // ---- of the base class

    [[nodiscard]] QPaintEngine* paintEngine() const override;

protected:
    [[nodiscard]] int metric(PaintDeviceMetric which) const override;

private:
    class Engine;

    /// The second is the transformation of the painter of all.
    using Command = std::function<void(QPainter&, const QTransform&)>;

    struct Step
    {
        Command paint; ///< null for an image
        QRectF place;
        ImageMaker make;
    };

    void add(Command paint);

    QSize m_size;
    int m_dpi;
    std::vector<Step> m_steps;
    std::size_t m_imageCount = 0;
    std::unique_ptr<Engine> m_engine;
};

} // namespace analyzer
