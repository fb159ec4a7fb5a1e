#include <analyzer/panels/SectionHeading.h>
#include <analyzer/panels/withoutMnemonic.h>

#include <QStyleOptionToolButton>
#include <QStylePainter>

namespace analyzer {

SectionHeading::SectionHeading(const QString& section, QWidget* parent)
    : QToolButton(parent)
{
    setObjectName(QStringLiteral("section-") + section);
    setText(withoutMnemonic(section));
    setAccessibleName(section);
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setAutoRaise(true);
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus); // before the field that has the keyboard is hidden
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    QFont bold = font();
    bold.setBold(true);
    setFont(bold);
    const auto showArrow = [this](bool checked) {
        setArrowType(checked ? Qt::DownArrow : Qt::RightArrow);
    };
    showArrow(isChecked());
    connect(this, &QToolButton::toggled, this, showArrow);
}

void SectionHeading::paintEvent(QPaintEvent* /*event*/)
{
    QStylePainter painter(this);
    QStyleOptionToolButton option;
    initStyleOption(&option);
    // The arrow says it; the look of a pressed button would make collapsed headings seem not to be any.
    option.state &= ~QStyle::State_On;
    painter.drawComplexControl(QStyle::CC_ToolButton, option);
}

} // namespace analyzer
