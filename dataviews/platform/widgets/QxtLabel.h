#pragma once

#include <dataviews/platform/widgets/PlatformWidgetsExport.h>

#include <QFrame>
#include <QString>

/// A caption of one line that can stand upright or upside down.
///
/// Text that does not fit is shortened with an ellipsis and shown whole in the tool tip. The font is the widget's,
/// style sheets included.
class DATAVIEWS_PLATFORM_WIDGETS_EXPORT QxtLabel : public QFrame
{
    Q_OBJECT

public:
    /// Direction of reading.
    enum Rotation
    {
        NoRotation, ///< left to right
        Clockwise, ///< top to bottom
        UpsideDown, ///< right to left
        CounterClockwise ///< bottom to top
    };
    Q_ENUM(Rotation)

    explicit QxtLabel(QWidget* parent = nullptr);
    explicit QxtLabel(const QString& text, QWidget* parent = nullptr);
    QxtLabel(const QxtLabel&) = delete;
    QxtLabel& operator=(const QxtLabel&) = delete;
    ~QxtLabel() override;

    [[nodiscard]] QString text() const { return m_text; }

    [[nodiscard]] Qt::Alignment alignment() const { return m_alignment; }

    [[nodiscard]] Rotation rotation() const { return m_rotation; }

    /// Relative to the direction of reading; left and vertically centred at first.
    void setAlignment(Qt::Alignment alignment);
    void setRotation(Rotation rotation);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

public Q_SLOTS:
    void setText(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;

private:
    [[nodiscard]] bool isUpright() const;
    [[nodiscard]] QSize hint(int textWidth) const;
    [[nodiscard]] QString shownText() const;

    QString m_text;
    Qt::Alignment m_alignment = Qt::AlignLeft | Qt::AlignVCenter;
    Rotation m_rotation = NoRotation;
};
