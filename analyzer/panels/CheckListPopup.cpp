#include <analyzer/panels/CheckListDelegate.h>
#include <analyzer/panels/CheckListPopup.h>
#include <analyzer/panels/plainToolTip.h>

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSet>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

namespace analyzer {

CheckListPopup::CheckListPopup(const QString& name, const QString& label, QWidget* parent)
    : ChooserFrame(parent)
    , m_filter(new QLineEdit(this))
    , m_list(new QListWidget(this))
    , m_nothing(new QLabel(tr("There is nothing to choose from."), this))
    , m_all(new QPushButton(tr("&All"), this))
    , m_none(new QPushButton(tr("&None"), this))
{
    setObjectName(name + QStringLiteral("-popup"));
    m_filter->setObjectName(name + QStringLiteral("-filter"));
    m_filter->setPlaceholderText(tr("Filter"));
    m_filter->setAccessibleName(tr("Filter for %1").arg(label));
    m_filter->setClearButtonEnabled(true);
    m_filter->installEventFilter(this);
    m_list->setObjectName(name + QStringLiteral("-list"));
    m_list->setAccessibleName(label);
    m_list->setUniformItemSizes(true);
    m_list->setTextElideMode(Qt::ElideMiddle); // names of one study often begin alike
    m_list->setItemDelegate(new CheckListDelegate(m_list));
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->installEventFilter(this);
    m_all->setObjectName(name + QStringLiteral("-all"));
    m_all->setToolTip(tr("Choose all that are listed"));
    m_none->setObjectName(name + QStringLiteral("-none"));
    m_none->setToolTip(tr("Choose none of those that are listed"));

    auto* layout = new QVBoxLayout(this);
    constexpr int margin = 4;
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(margin);
    layout->addWidget(m_filter);
    layout->addWidget(m_nothing);
    layout->addWidget(m_list, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_all);
    buttons->addWidget(m_none);
    layout->addLayout(buttons);

    connect(m_filter, &QLineEdit::textChanged, this, &CheckListPopup::filter);
    connect(m_filter, &QLineEdit::returnPressed, this, &CheckListPopup::toggleFirstShown);
    connect(m_list, &QListWidget::itemChanged, this, [this](QListWidgetItem* item) {
        Q_EMIT toggled({item->text()}, item->checkState() == Qt::Checked);
    });
    connect(m_all, &QPushButton::clicked, this, [this] { toggleAllShown(true); });
    connect(m_none, &QPushButton::clicked, this, [this] { toggleAllShown(false); });
}

void CheckListPopup::open(
    const QWidget& field, const QStringList& names, const QStringList& checked)
{
    {
        const QSignalBlocker blocker(m_list);
        m_list->clear();
        m_list->addItems(names);
        for (int row = 0; row < m_list->count(); ++row) {
            m_list->item(row)->setToolTip(plainToolTip(names[row]));
        }
    }
    setChecked(checked);
    m_filter->clear();
    for (QWidget* widget : std::initializer_list<QWidget*>{m_filter, m_list, m_all, m_none}) {
        widget->setVisible(!names.isEmpty());
    }
    m_nothing->setVisible(names.isEmpty());
    place(field);
    show();
    m_filter->setFocus(Qt::PopupFocusReason);
}

void CheckListPopup::setChecked(const QStringList& checked)
{
    const QSignalBlocker blocker(m_list);
    const QSet<QString> chosen(checked.begin(), checked.end());
    for (int row = 0; row < m_list->count(); ++row) {
        QListWidgetItem* item = m_list->item(row);
        item->setCheckState(chosen.contains(item->text()) ? Qt::Checked : Qt::Unchecked);
    }
    m_list->viewport()->update(); // the blocked model does not say what changed
}

bool CheckListPopup::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (watched == m_filter && key->key() == Qt::Key_Down && firstShown() != nullptr) {
            m_list->setCurrentItem(firstShown());
            m_list->setFocus();
            return true;
        }
        if (watched == m_list && key->key() == Qt::Key_Up
            && m_list->currentItem() == firstShown()) {
            m_filter->setFocus();
            return true;
        }
    }
    return ChooserFrame::eventFilter(watched, event);
}

void CheckListPopup::filter(const QString& text)
{
    for (int row = 0; row < m_list->count(); ++row) {
        const QListWidgetItem* item = m_list->item(row);
        m_list->setRowHidden(row, !item->text().contains(text.trimmed(), Qt::CaseInsensitive));
    }
}

void CheckListPopup::toggleFirstShown()
{
    if (QListWidgetItem* item = firstShown()) {
        item->setCheckState(item->checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
    }
}

void CheckListPopup::toggleAllShown(bool checked)
{
    QStringList names;
    for (int row = 0; row < m_list->count(); ++row) {
        if (!m_list->isRowHidden(row)) {
            names.append(m_list->item(row)->text());
        }
    }
    Q_EMIT toggled(names, checked);
}

void CheckListPopup::place(const QWidget& field)
{
    const int rows = rowsFor(m_list->count());
    m_list->setFixedHeight(
        m_list->count() == 0 ? 0 : rows * m_list->sizeHintForRow(0) + 2 * m_list->frameWidth());
    layout()->activate();
    const int width = widthFor(field, m_list->sizeHintForColumn(0));
    placeAt(field, {std::max(width, sizeHint().width() / 2), sizeHint().height()});
}

QListWidgetItem* CheckListPopup::firstShown() const
{
    for (int row = 0; row < m_list->count(); ++row) {
        if (!m_list->isRowHidden(row)) {
            return m_list->item(row);
        }
    }
    return nullptr;
}

} // namespace analyzer
