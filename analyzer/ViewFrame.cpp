#include <analyzer/ViewFrame.h>
#include <analyzer/export/makeReport.h>
#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/countText.h>

#include <dataviews/common/views/CvWaitCursor.h>

#include <dataviews/platform/selection/SelectionModelInterface.h>

#include <QFontMetrics>
#include <QPushButton>
#include <QStyleOptionButton>
#include <QStylePainter>
#include <QVBoxLayout>

#include <numeric>
#include <utility>
#include <vector>

namespace analyzer {

namespace {

constexpr int paddingPx = 6;

/// A flat button with one line of plain text at the left, cut short where it does not fit.
class TextLine : public QPushButton
{
public:
    explicit TextLine(QWidget* parent)
        : QPushButton(parent)
    {
        setFlat(true);
        setObjectName(QStringLiteral("LeftOutLine"));
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        setCursor(Qt::PointingHandCursor);
    }

    /// Not the button's own text, in which an ampersand would stand for a shortcut.
    void setLine(const QString& line)
    {
        m_line = line;
        setAccessibleName(line);
        updateToolTip();
        updateGeometry();
        update();
    }

    [[nodiscard]] QSize sizeHint() const override
    {
        return {fontMetrics().horizontalAdvance(m_line) + 2 * paddingPx, lineHeight()};
    }

    [[nodiscard]] QSize minimumSizeHint() const override { return {2 * paddingPx, lineHeight()}; }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QStylePainter painter(this);
        QStyleOptionButton option;
        initStyleOption(&option);
        painter.drawControl(QStyle::CE_PushButtonBevel, option);
        painter.setPen(option.palette.color(QPalette::ButtonText));
        painter.drawText(
            rect().adjusted(paddingPx, 0, -paddingPx, 0),
            Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
            shownLine());
        if (option.state.testFlag(QStyle::State_HasFocus)) {
            QStyleOptionFocusRect focus;
            focus.initFrom(this);
            focus.rect = rect().adjusted(1, 1, -1, -1);
            painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
        }
    }

    void resizeEvent(QResizeEvent* event) override
    {
        QPushButton::resizeEvent(event);
        updateToolTip();
    }

private:
    [[nodiscard]] int lineHeight() const { return fontMetrics().height() + paddingPx; }

    [[nodiscard]] QString shownLine() const
    {
        return fontMetrics().elidedText(m_line, Qt::ElideRight, width() - 2 * paddingPx);
    }

    void updateToolTip()
    {
        const QString what = ViewFrame::tr("Select these cases");
        // Names of variables are no markup.
        setToolTip(
            shownLine() == m_line
                ? what
                : QStringLiteral("<qt>%1<br>%2</qt>").arg(m_line.toHtmlEscaped(), what));
    }

    QString m_line;
};

} // namespace

ViewFrame::ViewFrame(
    const boost::shared_ptr<AnalyzerViewInterface>& view,
    boost::shared_ptr<SelectionModelInterface> selection,
    QWidget* parent)
    : QWidget(parent)
    , m_view(view)
    , m_selection(std::move(selection))
    , m_line(new TextLine(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(&view->widget(), 1);
    layout->addWidget(m_line);
    setFocusProxy(&view->widget());
    m_line->hide();
    connect(m_line, &QAbstractButton::clicked, this, &ViewFrame::selectLeftOutCases);
    m_later.setSingleShot(true);
    m_later.setInterval(0);
    connect(&m_later, &QTimer::timeout, this, &ViewFrame::updateLine);
    m_connections.add(view->signalLeftOutChanged.connect([this] { m_later.start(); }));
}

ViewFrame::~ViewFrame() = default;

QString ViewFrame::text() const
{
    return m_line->isHidden() ? QString() : m_line->accessibleName();
}

void ViewFrame::showEvent(QShowEvent* event)
{
    updateLine(); // before the view is painted in a size that would not last
    QWidget::showEvent(event);
}

void ViewFrame::updateLine()
{
    const boost::shared_ptr<AnalyzerViewInterface> view = m_view.lock();
    if (!view || !isVisible()) {
        return;
    }
    m_later.stop();
    const QString text = QString::fromStdString(leftOutInWords(*view));
    if (!text.isEmpty()) {
        static_cast<TextLine*>(m_line)->setLine(text);
        QSizePolicy policy = m_line->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        m_line->setSizePolicy(policy);
    }
    m_line->setVisible(!text.isEmpty());
}

void ViewFrame::selectLeftOutCases()
{
    if (const boost::shared_ptr<AnalyzerViewInterface> view = m_view.lock()) {
        const CvWaitCursor waitCursor;
        m_selection->takeSelection(view->leftOutCaseIDs());
    }
}

} // namespace analyzer
