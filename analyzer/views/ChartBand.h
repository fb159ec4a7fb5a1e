#pragma once

#include <analyzer/views/SelectionPreview.h>

#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QWidget>

#include <vtkSmartPointer.h>

#include <functional>
#include <optional>

class ChartXY;
class QVTKOpenGLNativeWidget;

namespace analyzer {

/// Shows over a chart the band that the mouse drags and, for one that selects, how many cases letting go would add to the
/// selection and take from it, as in "+1,204 −17".
///
/// Lies over the picture, so that nothing is rendered anew while the mouse is dragged. Events of the widget are watched,
/// not taken. Moves of the mouse that have queued up are answered once. Used on the GUI thread.
class ChartBand : public QObject
{
    Q_OBJECT

public:
    /// \p widget shows \p chart, whose own band is switched off. It may go before this object. \p makePreview is called
    /// once for a drag that selects, and again after forgetCases().
    ChartBand(
        QVTKOpenGLNativeWidget& widget,
        ChartXY& chart,
        std::function<SelectionPreview()> makePreview);
    ChartBand(const ChartBand&) = delete;
    ChartBand& operator=(const ChartBand&) = delete;
    ~ChartBand() override;

    /// The selection or the cases that are drawn have changed.
    void forgetCases();

    /// Nothing is dragged any more.
    void end();

    /// What would change, in words; empty while nothing is dragged that selects.
    [[nodiscard]] const QString& text() const { return m_text; }

    /// What lies over the picture, hidden while nothing is dragged. For tests.
    [[nodiscard]] QWidget* overlay() const { return m_overlay; }

    /// "+1,204 −17", without a part of which there is nothing, "±0" if nothing would change.
    [[nodiscard]] static QString changeText(const SelectionPreview::Change& change);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void look();

    QPointer<QWidget> m_widget;
    vtkSmartPointer<ChartXY> m_chart;
    std::function<SelectionPreview()> m_makePreview;
    std::optional<SelectionPreview> m_preview;
    QPointer<QWidget> m_overlay;
    QString m_text;
    QPointF m_mouse; ///< at its last move, in the widget
    bool m_extends = false; ///< Control is held
    QTimer m_later;
};

} // namespace analyzer
