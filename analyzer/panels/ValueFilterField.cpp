#include <analyzer/filters/ListedFilter.h>
#include <analyzer/panels/CheckListDelegate.h>
#include <analyzer/panels/ValueFilterField.h>
#include <analyzer/panels/ValueListModel.h>
#include <analyzer/views/countText.h>

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QVBoxLayout>

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace analyzer {

namespace {

constexpr int fewValues = 8; ///< are seen at once and need no search

} // namespace

ValueFilterField::ValueFilterField(boost::shared_ptr<ListedFilter> filter, QWidget* parent)
    : QWidget(parent)
    , m_filter(std::move(filter))
    , m_model(new ValueListModel(ValueListModel::Values(m_filter, &m_filter->choices()), this))
    , m_listed(new QSortFilterProxyModel(this))
    , m_search(new QLineEdit(this))
    , m_list(new QListView(this))
    , m_all(new QPushButton(tr("All"), this))
    , m_none(new QPushButton(tr("None"), this))
    , m_count(new QLabel(this))
{
    const QString name = QString::fromStdString(m_filter->name());
    m_listed->setSourceModel(m_model);
    m_listed->setFilterCaseSensitivity(Qt::CaseInsensitive);
    m_listed->setDynamicSortFilter(false); // ticks do not change what is listed
    m_search->setPlaceholderText(tr("Find values"));
    m_search->setAccessibleName(tr("Find values of %1").arg(name));
    m_search->setClearButtonEnabled(true);
    m_search->setVisible(m_model->rowCount() > fewValues);
    m_search->installEventFilter(this);
    m_list->setModel(m_listed);
    m_list->setAccessibleName(tr("Values of %1").arg(name));
    m_list->setUniformItemSizes(true);
    m_list->setItemDelegate(new CheckListDelegate(m_list));
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setTextElideMode(Qt::ElideRight);
    m_list->setTabKeyNavigation(false);
    m_list->setMinimumWidth(0);
    m_all->setAccessibleName(tr("Choose all listed values of %1").arg(name));
    m_none->setAccessibleName(tr("Choose none of the listed values of %1").arg(name));
    setFocusProxy(m_search->isHidden() ? static_cast<QWidget*>(m_list) : m_search);

    const int lines = std::clamp(m_model->rowCount(), 2, fewValues);
    const int line = std::max(m_list->sizeHintForRow(0), m_list->fontMetrics().height());
    m_list->setFixedHeight(lines * line + 2 * m_list->frameWidth());

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_search);
    layout->addWidget(m_list);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_all);
    buttons->addWidget(m_none);
    buttons->addStretch(1);
    buttons->addWidget(m_count);
    layout->addLayout(buttons);
    showValues();

    connect(m_search, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_listed->setFilterFixedString(text);
        m_all->setEnabled(m_listed->rowCount() > 0);
        m_none->setEnabled(m_listed->rowCount() > 0);
    });
    connect(m_model, &ValueListModel::toggled, this, [this](int row, bool checked) {
        ListedFilter::Values values = m_filter->values()->value();
        const Variant& value = m_model->value(m_model->index(row));
        if (checked) {
            values.insert(value);
        } else {
            values.erase(value);
        }
        m_filter->values()->setValue(values);
    });
    connect(m_all, &QPushButton::clicked, this, [this] { setListed(true); });
    connect(m_none, &QPushButton::clicked, this, [this] { setListed(false); });
    m_connections.add(m_filter->values()->valueChanged.connect(
        [this](const ListedFilter::Values&) { showValues(); }));
}

void ValueFilterField::setNames(const QString& prefix)
{
    m_search->setObjectName(prefix + QStringLiteral("-search"));
    m_list->setObjectName(prefix + QStringLiteral("-values"));
    m_all->setObjectName(prefix + QStringLiteral("-all"));
    m_none->setObjectName(prefix + QStringLiteral("-none"));
    m_count->setObjectName(prefix + QStringLiteral("-count"));
}

QWidget* ValueFilterField::placeInTabOrder(QWidget* before)
{
    for (QWidget* widget : std::initializer_list<QWidget*>{m_search, m_list, m_all, m_none}) {
        QWidget::setTabOrder(before, widget);
        before = widget;
    }
    return before;
}

bool ValueFilterField::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_search && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Down && m_listed->rowCount() > 0) {
            m_list->setCurrentIndex(m_listed->index(0, 0));
            m_list->setFocus();
            return true;
        }
        if (key == Qt::Key_Escape && !m_search->text().isEmpty()) {
            m_search->clear();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ValueFilterField::showValues()
{
    const ListedFilter::Values values = m_filter->values()->value();
    m_model->setChecked(values);
    const auto chosen = std::count_if(
        m_filter->choices().begin(), m_filter->choices().end(), [&values](const Variant& value) {
            return values.count(value) != 0;
        });
    m_count->setText(tr("%1 of %2")
                         .arg(
                             countText(static_cast<std::size_t>(chosen)),
                             countText(m_filter->choices().size())));
}

void ValueFilterField::setListed(bool checked)
{
    ListedFilter::Values values = m_filter->values()->value();
    for (int row = 0; row < m_listed->rowCount(); ++row) {
        const Variant& value = m_model->value(m_listed->mapToSource(m_listed->index(row, 0)));
        if (checked) {
            values.insert(value);
        } else {
            values.erase(value);
        }
    }
    m_filter->values()->setValue(values);
}

} // namespace analyzer
