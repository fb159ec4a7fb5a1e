#include <analyzer/filters/ListedFilter.h>
#include <analyzer/panels/ElidedLabel.h>
#include <analyzer/panels/FilterRow.h>
#include <analyzer/panels/RangeFilterField.h>
#include <analyzer/panels/ValueFilterField.h>

#include <QCheckBox>
#include <QHBoxLayout>
#include <QToolButton>
#include <QVBoxLayout>

#include <initializer_list>
#include <utility>

namespace analyzer {

FilterRow::FilterRow(boost::shared_ptr<ListedFilter> filter, QWidget* parent)
    : QFrame(parent)
    , m_filter(std::move(filter))
    , m_enabled(new QCheckBox(this))
    , m_invert(new QCheckBox(tr("Invert"), this))
    , m_remove(new QToolButton(this))
{
    setFrameShape(QFrame::StyledPanel);
    auto* layout = new QVBoxLayout(this);
    constexpr int margin = 6;
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->addWidget(makeHeader());
    if (m_filter->kind() == ListedFilter::Kind::Range) {
        m_range = new RangeFilterField(m_filter, this);
        layout->addWidget(m_range);
    } else if (m_filter->kind() == ListedFilter::Kind::Values) {
        m_values = new ValueFilterField(m_filter, this);
        layout->addWidget(m_values);
    }
    showSwitches();
    m_connections.add(m_filter->signalChanged.connect([this] { showSwitches(); }));
}

FilterRow::~FilterRow() = default;

QWidget* FilterRow::makeHeader()
{
    const QString name = QString::fromStdString(m_filter->name());
    m_enabled->setAccessibleName(tr("Filter on %1").arg(name));
    m_enabled->setToolTip(tr("Switch the filter on or off"));
    m_invert->setAccessibleName(tr("Invert filter on %1").arg(name));
    m_invert->setToolTip(tr("Keep the cases that it leaves out, and leave out the others"));
    m_remove->setText(QStringLiteral("×"));
    m_remove->setAutoRaise(true);
    m_remove->setFocusPolicy(Qt::StrongFocus);
    m_remove->setAccessibleName(tr("Remove filter on %1").arg(name));
    m_remove->setToolTip(tr("Remove the filter"));
    // The property is written at a click alone, not when the box is set to show it.
    connect(m_enabled, &QCheckBox::clicked, this, [this](bool checked) {
        m_filter->enabled()->setValue(checked);
    });
    connect(m_invert, &QCheckBox::clicked, this, [this](bool checked) {
        m_filter->inverted()->setValue(checked);
    });
    connect(m_remove, &QToolButton::clicked, this, &FilterRow::removeRequested);

    auto* header = new QWidget(this);
    auto* layout = new QHBoxLayout(header);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* label = new ElidedLabel(
        m_filter->kind() == ListedFilter::Kind::Tag ? tr("Tag %1").arg(name) : name, header);
    QFont bold = label->font();
    bold.setBold(true);
    label->setFont(bold);
    layout->addWidget(m_enabled);
    layout->addWidget(label, 1);
    layout->addWidget(m_invert);
    layout->addWidget(m_remove);
    return header;
}

void FilterRow::setNumber(int number)
{
    const QString prefix = QStringLiteral("filter%1").arg(number);
    setObjectName(prefix);
    m_enabled->setObjectName(prefix + QStringLiteral("-enabled"));
    m_invert->setObjectName(prefix + QStringLiteral("-invert"));
    m_remove->setObjectName(prefix + QStringLiteral("-remove"));
    if (m_range != nullptr) {
        m_range->setNames(prefix);
    }
    if (m_values != nullptr) {
        m_values->setNames(prefix);
    }
}

QWidget* FilterRow::placeInTabOrder(QWidget* before)
{
    for (QWidget* widget : std::initializer_list<QWidget*>{m_enabled, m_invert, m_remove}) {
        QWidget::setTabOrder(before, widget);
        before = widget;
    }
    if (m_range != nullptr) {
        return m_range->placeInTabOrder(before);
    }
    return m_values != nullptr ? m_values->placeInTabOrder(before) : before;
}

void FilterRow::retire()
{
    m_connections.clear();
    if (m_range != nullptr) {
        m_range->retire();
    }
    hide();
    setNumber(0);
}

void FilterRow::focusField()
{
    QWidget* field = m_enabled;
    if (m_range != nullptr) {
        field = m_range;
    } else if (m_values != nullptr) {
        field = m_values;
    }
    field->setFocus(Qt::OtherFocusReason);
}

void FilterRow::focusRemove()
{
    m_remove->setFocus(Qt::OtherFocusReason);
}

void FilterRow::showSwitches()
{
    m_enabled->setChecked(m_filter->enabled()->value());
    m_invert->setChecked(m_filter->inverted()->value());
}

} // namespace analyzer
